// The encoding of names in archives.
#pragma once

#include <string>
#include <string_view>

namespace quendle::modules {

// The name's bytes as UTF-8, "\" as "/". `says_utf8`: the archive says that they are.
//
// Without that word and with `charset` empty: UTF-8 if they are valid UTF-8, else Windows-31J (CP932), else,
// when not all of them are characters of that, Windows-1252. With a charset: that one, and the same rule where
// it cannot decode them. Decoding comes first, since "\" is also the second byte of characters such as 表.
//   "\x95\x5C.txt" => "表.txt"    "\xCA\xDD.txt" => "ﾊﾝ.txt"    "caf\xE9.txt" => "café.txt"
std::string DecodeName(std::string_view bytes, bool says_utf8, const std::string& charset);

// The path without "./" in front, by which some packers say that it is below the folder that they packed.
//   "./a/b" => "a/b"    ".//a" => "a"    "./" => ""    "../a" => "../a"    "/a" => "/a"
std::string WithoutCurrentFolder(std::string path);

// Is there an encoding of that name?
bool IsKnownCharset(const std::string& charset);

}  // namespace quendle::modules
