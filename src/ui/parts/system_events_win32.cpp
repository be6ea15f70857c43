#include "ui/parts/system_events.h"

#include <QWinEventNotifier>

#include "platform/text/wide_win32.h"

namespace quendle {

Reason MissingPlatform() {
  return {};  // it is a part of the windows' library
}

// The icons have the system's numbers.
void SoundMessage(std::int32_t icon) {
  MessageBeep(static_cast<UINT>(icon));
}

void WhenReady(std::intptr_t handle, QObject* owner, std::function<bool()> act) {
  if (handle == -1) return;
  auto* notifier = new QWinEventNotifier(reinterpret_cast<Qt::HANDLE>(handle), owner);
  QObject::connect(notifier, &QWinEventNotifier::activated, notifier,
                   [notifier, act = std::move(act)] { notifier->setEnabled(act()); });
}

}  // namespace quendle
