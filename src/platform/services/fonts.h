// The fonts that are installed.
#pragma once

namespace quendle::platform {

// Makes the process know the installed fonts, which takes milliseconds where the files that describe them are read by each
// process: a toolkit finds them known when it asks first. Nothing happens where the system itself keeps them, or when it
// fails: who asks then learns why. Any thread may call it as long as no other one uses fonts.
void ReadFontList();

}  // namespace quendle::platform
