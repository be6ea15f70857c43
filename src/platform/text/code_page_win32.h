// Decoding by the system's tables, without what they add of their own.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/text/wide_win32.h"

namespace quendle::platform {

// Can the code page of that number be decoded strictly?
bool IsKnownCodePage(UINT code_page);

// The length of the character that `bytes`, which are not empty, begin with; its text is appended to `*wide`. 0 when
// they begin with none.
std::size_t DecodeCharacter(UINT code_page, std::string_view bytes, std::wstring* wide);

// Nothing when not all bytes are characters of the code page.
std::optional<std::wstring> DecodeStrictly(UINT code_page, std::string_view bytes);

}  // namespace quendle::platform
