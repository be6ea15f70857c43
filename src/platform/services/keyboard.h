// The keyboard and the display of the session, asked for without any windows.
#pragma once

namespace quendle::platform {

enum class Key { kControl, kAlt };

// Is it held down at this moment? False where the display system does not tell: a Wayland session without an X server,
// or one whose X server knows no key that is pressed in other windows.
bool IsKeyDown(Key key);

// Can windows be shown: is there a display that answers?
bool HasDisplay();

}  // namespace quendle::platform
