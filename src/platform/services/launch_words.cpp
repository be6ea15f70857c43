#include "platform/services/launch_words.h"

#include <optional>
#include <utility>

namespace quendle::platform {

std::vector<std::string> LaunchWords(std::string_view parameters, std::string_view value) {
  std::vector<std::string> words;
  std::optional<std::string> word;  // empty text between quotes is a word, blanks between words are none
  bool is_quoted = false;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    const char c = parameters[i];
    const char next = i + 1 < parameters.size() ? parameters[i + 1] : '\0';
    if ((c == ' ' || c == '\t') && !is_quoted) {
      if (word) words.push_back(*std::exchange(word, std::nullopt));
      continue;
    }
    if (!word) word.emplace();
    if (c == '"') {
      is_quoted = !is_quoted;
    } else if (c == '%' && next == '1') {
      word->append(value);
      ++i;
    } else if (c == '\\' && (next == '"' || next == '\\')) {
      *word += next;
      ++i;
    } else {
      *word += c;
    }
  }
  if (word) words.push_back(*std::move(word));
  return words;
}

}  // namespace quendle::platform
