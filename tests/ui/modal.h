// Acting on modal windows, which only return when somebody acts on them.
#pragma once

#include <QTest>
#include <QtWidgets>
#include <algorithm>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

namespace quendle::test {

// Does this with each modal window that opens while it lives, once it takes input. A window that it leaves open is a
// failure, and closed, so that no test waits for ever.
class WithModal {
 public:
  explicit WithModal(std::function<void(QWidget&)> action) : action_(std::move(action)) {
    // A window that is there already, such as that of the progress, is not the one to come.
    if (QWidget* window = QApplication::activeModalWidget()) seen_.emplace_back(window);
    QObject::connect(&timer_, &QTimer::timeout, [this] { Look(); });
    timer_.start(5);
  }
  WithModal(const WithModal&) = delete;
  WithModal& operator=(const WithModal&) = delete;

  int windows() const { return windows_; }

 private:
  // Not from within the timer's own turn, in which it would not fire for a window that the action opens.
  void Look() {
    QWidget* window = QApplication::activeModalWidget();
    if (window == nullptr || !window->isVisible()) return;
    if (std::find(seen_.begin(), seen_.end(), window) != seen_.end()) {
      if (++idle_ <= kPatience) return;
      ADD_FAILURE() << "a window was left open: " << window->windowTitle().toStdString();
      return window->hide();
    }
    seen_.emplace_back(window);
    idle_ = 0;
    ++windows_;
    QTimer::singleShot(0, window, [this, window] {
      EXPECT_TRUE(QTest::qWaitForWindowActive(window));
      action_(*window);
    });
  }

  static constexpr int kPatience = 8000;  // with a machine that does other things, too
  std::function<void(QWidget&)> action_;
  QTimer timer_;
  std::vector<QPointer<QWidget>> seen_;
  int idle_ = 0;
  int windows_ = 0;
};

// The visible button with that text, but for its mnemonic.
inline QAbstractButton* FindButton(const QWidget& window, const QString& text) {
  for (QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
    if (button->isVisible() && button->text().remove(u'&') == text) return button;
  }
  return nullptr;
}

inline void Click(const QWidget& window, const QString& text) {
  if (QAbstractButton* button = FindButton(window, text)) QTest::mouseClick(button, Qt::LeftButton);
}

}  // namespace quendle::test
