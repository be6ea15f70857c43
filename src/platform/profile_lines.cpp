#include "platform/profile_lines.h"

namespace quendle::platform {

std::string_view LineSeparatorOf(std::string_view text) {
  for (const std::string_view separator : {"\r\n", "\r"}) {
    if (text.find(separator) != std::string_view::npos) return separator;
  }
  return "\n";
}

bool ProfileLineReader::Next(std::string_view* line) {
  if (next_ == std::string_view::npos) return false;
  const std::size_t end = text_.find(separator_, next_);
  *line = text_.substr(next_, end - next_);
  next_ = end == std::string_view::npos ? end : end + separator_.size();
  return true;
}

std::vector<std::string_view> SplitProfileLines(std::string_view text) {
  std::vector<std::string_view> lines;
  ProfileLineReader reader(text, LineSeparatorOf(text));
  for (std::string_view line; reader.Next(&line);) lines.push_back(line);
  return lines;
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
