#include "ui/parts/held_keys.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <utility>

namespace quendle {
namespace {

// An X server repeats a key as a release and a press at the same time; Qt tells them from real ones only when it
// finds both waiting. No finger is that quick.
constexpr quint64 kRepeatTime = 10;  // milliseconds

class HeldKeys : public QObject {
 public:
  using QObject::QObject;

  // Of the native windows, through which all keys come.
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (!watched->isWindowType()) return false;
    if (event->type() == QEvent::KeyPress) {
      const auto& key = *static_cast<QKeyEvent*>(event);
      const int before = std::exchange(pressed_, key.key());
      // When a release went astray between two windows, the system takes the next press for a repetition.
      if (key.isAutoRepeat() && key.key() != before) {
        released_ = 0;  // together with the press, it made up a release as well
        return Send(watched, key, false);
      }
      return IsHandled(watched, key);
    }
    if (event->type() == QEvent::KeyRelease) {
      released_ = static_cast<QKeyEvent*>(event)->key();
      released_at_ = static_cast<QKeyEvent*>(event)->timestamp();
    }
    return false;
  }

 private:
  bool IsHandled(QObject* window, const QKeyEvent& key) const {
    const bool follows = key.key() == released_ && key.timestamp() - released_at_ <= kRepeatTime;
    if (!follows && !key.isAutoRepeat()) return false;
    if (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter || key.key() == Qt::Key_Escape) return true;
    return !key.isAutoRepeat() && Send(window, key, true);
  }

  static bool Send(QObject* window, const QKeyEvent& key, bool is_repeat) {
    QKeyEvent told(key.type(), key.key(), key.modifiers(), key.nativeScanCode(), key.nativeVirtualKey(),
                   key.nativeModifiers(), key.text(), is_repeat, static_cast<quint16>(key.count()));
    told.setTimestamp(key.timestamp());
    QCoreApplication::sendEvent(window, &told);
    return true;
  }

  int pressed_ = 0;
  int released_ = 0;
  quint64 released_at_ = 0;
};

}  // namespace

void TellHeldKeys(QCoreApplication* application) {
  application->installEventFilter(new HeldKeys(application));
}

}  // namespace quendle
