// How the text of an INI file falls into lines and headers. There are two readings, and they agree in files of
// one kind of line end whose headers stand alone on their lines:
//
// - Keys are read and written by lines that end at any line break, and by headers that may have blanks around
//   them and text behind them.
// - Whole sections are listed, moved and removed by lines between separators of one kind, and by headers that
//   fill their line.
//
// Every line of the second reading begins where one of the first begins, and a header that both see has the
// same name for both.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quendle::platform {

// The separator of whole sections' lines: "\r\n" when the text contains it, else "\r" when it contains that,
// else "\n". Only one is used: in a text with "\r\n" a lone "\n" is part of its line.
std::string_view LineSeparatorOf(std::string_view text);

// The lines between separators. Text that ends in a separator has an empty last line.
//   "a\r\nb\r\n" => "a", "b", ""    "a\nb\r\nc" => "a\nb", "c"    "" => ""
std::vector<std::string_view> SplitProfileLines(std::string_view text);

// Lines one by one, for texts that may have more of them than should be in memory at once.
class ProfileLineReader {
 public:
  // At each "\r\n", and at each "\r" and "\n" that is not part of one.
  //   "a\nb\r\nc\rd\n" => "a", "b", "c", "d", ""    "a\r\r\nb" => "a", "", "b"
  explicit ProfileLineReader(std::string_view text) : text_(text) {}

  // At each `separator` only.
  ProfileLineReader(std::string_view text, std::string_view separator) : text_(text), separator_(separator) {}

  // False when there are no more lines.
  bool Next(std::string_view* line);

 private:
  std::string_view text_;
  std::string_view separator_;  // empty: any line break
  std::size_t next_ = 0;
};

// The name in a header as keys are read: from behind the "[" that is the first character but blanks (space and
// tab) to before the last "]" of the line, so that a name may have brackets in it and end in one. Nothing when
// the line is no header.
//   "[a]" => "a"    " \t[a] " => "a"    "[a] x" => "a"    "[ a]" => " a"    "[a]]" => "a]"
//   "[a] [b] x" => "a] [b"    "[]" => ""    "[a" => nothing    "x[a]" => nothing    ";[a]" => nothing
std::optional<std::string_view> KeyHeaderName(std::string_view line);

// A header of whole sections is a line whose first character is "[" and whose last is "]"; nothing is trimmed.
//   "[a]" => true    " [a]" => false    "[a] " => false    "[]" => true    "[" => false
bool IsHeaderLine(std::string_view line);

// The name in such a line: what stands between its brackets. And back.
std::string_view HeaderName(std::string_view line);
std::string HeaderText(std::string_view name);

}  // namespace quendle::platform
