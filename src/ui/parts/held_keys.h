// Keys that are held down.
#pragma once

class QCoreApplication;

namespace quendle {

// From now on a key that is still held down from one window ends no other: Return and Esc count once until they
// are let go. Everybody else can trust QKeyEvent::isAutoRepeat, which is often false where it should be true.
// Once for an application.
void TellHeldKeys(QCoreApplication* application);

}  // namespace quendle
