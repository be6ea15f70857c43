#include "platform/ini/profile_lines.h"

#include <algorithm>

namespace quendle::platform {

std::string_view LineSeparatorOf(std::string_view text) {
  for (const std::string_view separator : {"\r\n", "\r"}) {
    if (text.find(separator) != std::string_view::npos) return separator;
  }
  return "\n";
}

bool ProfileLineReader::Next(std::string_view* line) {
  if (next_ == std::string_view::npos) return false;
  const std::string_view rest = text_.substr(next_);
  std::size_t length = rest.find(separator_);
  std::size_t break_length = separator_.size();
  if (separator_.empty()) {
    // Not a search for either character in turn: one that the text lacks would be looked for to its end.
    const auto is_break = [](char c) { return c == '\r' || c == '\n'; };
    length = static_cast<std::size_t>(std::find_if(rest.begin(), rest.end(), is_break) - rest.begin());
    break_length = rest.substr(length).starts_with("\r\n") ? 2 : 1;
  }
  *line = rest.substr(0, length);
  next_ = line->size() == rest.size() ? std::string_view::npos : next_ + length + break_length;
  return true;
}

std::vector<std::string_view> SplitProfileLines(std::string_view text) {
  std::vector<std::string_view> lines;
  ProfileLineReader reader(text, LineSeparatorOf(text));
  for (std::string_view line; reader.Next(&line);) lines.push_back(line);
  return lines;
}

std::optional<std::string_view> KeyHeaderName(std::string_view line) {
  const std::size_t begin = line.find_first_not_of(" \t");
  if (begin == std::string_view::npos || line[begin] != '[') return std::nullopt;
  const std::size_t end = line.rfind(']');
  if (end == std::string_view::npos) return std::nullopt;
  return line.substr(begin + 1, end - begin - 1);
}

bool IsHeaderLine(std::string_view line) {
  return line.size() >= 2 && line.front() == '[' && line.back() == ']';
}

std::string_view HeaderName(std::string_view line) {
  return line.substr(1, line.size() - 2);
}

std::string HeaderText(std::string_view name) {
  return std::string("[").append(name).append("]");
}

}  // namespace quendle::platform
