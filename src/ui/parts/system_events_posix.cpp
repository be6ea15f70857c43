#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QSocketNotifier>

#include "ui/parts/system_events.h"

namespace quendle {

Reason MissingPlatform() {
  if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY")) return {};
  const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms");
  if (!plugins.entryList({"*wayland*"}).isEmpty()) return {};
  return why::kNoWayland;
}

void SoundMessage(std::int32_t /*icon*/) {
  QApplication::beep();
}

void WhenReady(std::intptr_t handle, QObject* owner, std::function<bool()> act) {
  if (handle < 0) return;
  auto* notifier = new QSocketNotifier(static_cast<qintptr>(handle), QSocketNotifier::Read, owner);
  QObject::connect(notifier, &QSocketNotifier::activated, notifier,
                   [notifier, act = std::move(act)] { notifier->setEnabled(act()); });
}

}  // namespace quendle
