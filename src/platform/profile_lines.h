// How the text of an INI file falls into lines and headers. The profile functions and the code that works on
// whole sections share these rules, so that both see the same sections.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quendle::platform {

// The separator that the whole text is split at: "\r\n" when the text contains it, else "\r" when it contains
// that, else "\n". Only one is used: in a text with "\r\n" a lone "\n" is part of its line.
std::string_view LineSeparatorOf(std::string_view text);

// The lines between separators. Text that ends in a separator has an empty last line.
//   "a\r\nb\r\n" => "a", "b", ""    "a\nb\r\nc" => "a\nb", "c"    "" => ""
std::vector<std::string_view> SplitProfileLines(std::string_view text);

// The same lines one by one, for texts that may have more of them than should be in memory at once.
class ProfileLineReader {
 public:
  ProfileLineReader(std::string_view text, std::string_view separator) : text_(text), separator_(separator) {}

  // False when there are no more lines.
  bool Next(std::string_view* line);

 private:
  std::string_view text_;
  std::string_view separator_;
  std::size_t next_ = 0;
};

// A header is a line whose first character is "[" and whose last is "]"; nothing is trimmed.
//   "[a]" => true    " [a]" => false    "[a] " => false    "[]" => true    "[" => false
bool IsHeaderLine(std::string_view line);

// The name in a header line: what stands between its brackets. And back.
std::string_view HeaderName(std::string_view line);
std::string HeaderText(std::string_view name);

}  // namespace quendle::platform
