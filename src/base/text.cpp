#include "base/text.h"

#include "base/modSystem.h"

namespace quendle {

std::string LoadText(TextId id) {
  const char* text = TextOf(id);
  if (text == nullptr) ProgrammingError("no such text");
  return text;
}

std::string LoadText(TextId id, const std::vector<std::string>& values) {
  const std::string pattern = LoadText(id);
  std::string text;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const std::size_t value = i + 1 < pattern.size() ? static_cast<std::size_t>(pattern[i + 1] - '1') : 0;
    if (pattern[i] == '%' && i + 1 < pattern.size() && value < values.size()) {
      text += values[value];
      ++i;
    } else {
      text += pattern[i];
    }
  }
  return text;
}

std::string LoadText(const Reason& reason) {
  return Sentence(reason, Language::kJapanese);
}

}  // namespace quendle
