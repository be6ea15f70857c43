// The ANSI code page: the encoding of the settings files and of the archiver libraries' strings. On Windows it is the
// system's. On systems that have none of their own it is Windows-31J (CP932, the Microsoft form of Shift_JIS, in which
// 0x5C is the backslash), which the examples here mean.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "reasons/result.h"

namespace quendle::platform {

// The private-use character that stands for byte 0x80 where it belongs to no character of the code page; the
// 127 characters after it stand for the bytes after it.
inline constexpr char32_t kFirstUndecodableByte = 0xEF80;
bool IsUndecodableByte(char32_t code_point);

// Bytes of the code page as UTF-8. A byte that belongs to no character becomes U+EF80 + (byte - 0x80), a
// private-use character that AnsiFromText turns back into the same byte, so that text which is only passed
// through keeps every byte. Where the system cannot decode the code page at all, that is every byte from 0x80
// up. Decode before looking for "[", "\", "]" or "|": those values are also second bytes of characters.
//   "\x95\x5C" => "表"    "\xFF" => "\uEFFF"
std::string TextFromAnsi(std::string_view bytes);

// Nothing when the text does not come back the same after being encoded and decoded; characters are never
// replaced. Some bytes are two spellings of one character, so decoding and encoding again may change bytes,
// never text.
//   "表" => "\x95\x5C"    "é" => nothing    "\uEFFF" => "\xFF"
std::optional<std::string> AnsiFromText(std::string_view text);

// Refused when the system cannot decode the code page and `text` has characters in it that stand for bytes:
// stored in another encoding those would never become the characters again that they are.
Result CheckDecoded(std::string_view text);

// Bytes of another encoding, by its usual name, as UTF-8. The names of Shift_JIS all mean Windows-31J.
// Nothing when not all of them are characters of that encoding, or when the system does not know it.
//   ("\xA4\xA2", "EUC-JP") => "あ"    ("\xA4", "EUC-JP") => nothing
std::optional<std::string> TextFromEncoding(std::string_view bytes, const std::string& encoding);

// How many bytes the character takes in the code page; a character outside of it counts as two.
std::size_t AnsiWidth(char32_t code_point);

// The longest beginning of `text` that takes at most `limit` bytes in the code page, without cutting a
// character.
//   ("aソb", 2) => "a"    ("aソb", 3) => "aソ"
std::string_view CutToAnsiBytes(std::string_view text, std::size_t limit);

}  // namespace quendle::platform
