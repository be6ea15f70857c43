#include "archive/modules/common/response_file.h"

#include <algorithm>

#include "platform/entries/entry_path.h"
#include "platform/text/unicode.h"

namespace quendle::modules {

std::string ComparableName(std::string_view name) {
  std::string comparable = platform::UpperCase(name);
  std::replace(comparable.begin(), comparable.end(), '\\', '/');
  return comparable;
}

std::string ListedName(std::string_view path) {
  std::string listed(platform::WithoutRoot(path));
  for (char& c : listed) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '_';
  }
  if (listed.starts_with('"')) listed.front() = '_';
  if (listed.ends_with('"')) listed.back() = '_';
  return listed;
}

std::vector<std::string> ParseResponseFile(std::string_view text) {
  std::vector<std::string> names;
  while (!text.empty()) {
    const std::size_t end = text.find_first_of("\r\n");
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.size() >= 2 && line.front() == '"' && line.back() == '"') {
      line.remove_prefix(1);
      line.remove_suffix(1);
    }
    if (!line.empty()) names.push_back(ComparableName(line));
  }
  return names;
}

}  // namespace quendle::modules
