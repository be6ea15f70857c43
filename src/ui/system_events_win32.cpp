#include <QWinEventNotifier>

#include "ui/system_events.h"

namespace quendle {

std::string MissingPlatform() {
  return "";  // it is a part of the windows' library
}

void WhenReady(std::intptr_t handle, QObject* owner, std::function<bool()> act) {
  if (handle == -1) return;
  auto* notifier = new QWinEventNotifier(reinterpret_cast<Qt::HANDLE>(handle), owner);
  QObject::connect(notifier, &QWinEventNotifier::activated, notifier,
                   [notifier, act = std::move(act)] { notifier->setEnabled(act()); });
}

}  // namespace quendle
