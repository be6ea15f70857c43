// UTF-8 and UTF-16 text: validity, letter case and conversions. Text is UTF-8 everywhere in the program;
// names of files on POSIX are raw bytes that only usually are.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quendle::platform {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

// Takes the first code point off `text`, which must not be empty, and stores it. False means that the first
// byte begins no valid UTF-8 sequence (overlong forms and surrogates are invalid): that one byte is taken off
// and `*code_point` is its value.
bool TakeCodePoint(std::string_view* text, char32_t* code_point);

void AppendCodePoint(char32_t code_point, std::string* text);

bool IsUtf8(std::string_view bytes);

// A copy in which every byte outside a valid sequence is U+FFFD; for matching and for showing, never for
// opening.
//   "a\xFF.txt" => "a\uFFFD.txt"
std::string WithReplacementCharacters(std::string_view bytes);

// Upper case by Unicode's simple mapping, one code point for one, whatever the locale. Invalid bytes stay.
//   "readme.txt" => "README.TXT"
//   "ｆｕｌｌ" => "ＦＵＬＬ"
//   "ж" => "Ж"
//   "ⅲ" => "Ⅲ"
std::string UpperCase(std::string_view text);

// One for all names that a file system which knows cases or composed characters may take for one:
//   "readme.txt" => "README.TXT"
//   "か" + U+3099 => "が"
//   "ß" => "SS"
std::string FoldedName(std::string_view name);

// The longest end of `text` that takes at most `columns` columns of a terminal, on which a Japanese character
// takes two.
//   ("report.txt", 4) => ".txt"    ("日本", 3) => "本"
std::string_view EndOfColumns(std::string_view text, int columns);

// UTF-16 little-endian bytes to UTF-8 and back. Unpaired surrogates become U+FFFD; a byte left over at the
// end is dropped. The mark U+FEFF is a character like any other here.
std::string FromUtf16Le(std::string_view bytes);
std::string ToUtf16Le(std::string_view text);

inline constexpr std::string_view kMark = "\uFEFF";
inline constexpr std::string_view kUtf16LeMark = "\xFF\xFE";
std::string WithoutMark(std::string text);

// Is a file with these bytes taken for UTF-16? Its first byte alone decides, so that the big-endian mark
// counts too; everything is read as little-endian all the same.
bool IsTakenForUtf16(std::string_view bytes);

}  // namespace quendle::platform
