#include "platform/process/process.h"
#include "platform/services/keyboard.h"

#include <iterator>
#include <string_view>

#include "platform/text/wide_win32.h"

namespace quendle::platform {
namespace {

// The only window station that is ever on a screen; services run in others.
bool IsOnScreen() {
  wchar_t name[64] = {};
  DWORD needed = 0;
  const BOOL named =
      GetUserObjectInformationW(GetProcessWindowStation(), UOI_NAME, name, sizeof name, &needed);
  return named != 0 && _wcsicmp(name, L"WinSta0") == 0;
}

// A session can be out of what windows are made of.
bool CanMakeWindow() {
  const HWND window =
      CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
  if (window != nullptr) DestroyWindow(window);
  return window != nullptr;
}

}  // namespace

bool IsKeyDown(Key key) {
  return (GetAsyncKeyState(key == Key::kControl ? VK_CONTROL : VK_MENU) & 0x8000) != 0;
}

bool HasDisplay() {
  // Somebody who says where windows go is believed.
  return EnvironmentVariable("QT_QPA_PLATFORM").has_value() || (IsOnScreen() && CanMakeWindow());
}

}  // namespace quendle::platform
