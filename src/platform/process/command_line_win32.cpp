#include "platform/process/command_line_win32.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace quendle::platform {
namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

std::size_t BackslashesAtEnd(std::string_view text) {
  const std::size_t last = text.find_last_not_of('\\');
  return last == std::string_view::npos ? text.size() : text.size() - last - 1;
}

// As it stands between quotes: backslashes in front of a quote are written twice, and that quote with one more.
std::string Escaped(std::string_view word, bool is_before_quote) {
  std::string escaped;
  for (const char c : word) {
    if (c == '"') escaped.append(BackslashesAtEnd(escaped) + 1, '\\');
    escaped += c;
  }
  if (is_before_quote) escaped.append(BackslashesAtEnd(escaped), '\\');
  return escaped;
}

}  // namespace

std::string QuotedWord(std::string_view word) {
  if (!word.empty() && word.find_first_of(" \t\n\v\"") == std::string_view::npos) return std::string(word);
  std::string quoted = "\"";
  quoted.append(Escaped(word, true)).append("\"");
  return quoted;
}

std::string FilledParameters(std::string_view parameters, std::string_view value) {
  std::string filled;
  bool is_quoted = false;
  std::size_t backslashes = 0;  // in front of what comes next
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (parameters.substr(i, 2) == "%1") {
      ++i;
      const bool is_before_quote = parameters.substr(i + 1, 1) == "\"";
      filled += is_quoted ? Escaped(value, is_before_quote) : QuotedWord(value);
      backslashes = 0;
      continue;
    }
    const char c = parameters[i];
    if (c == '"' && backslashes % 2 == 0) is_quoted = !is_quoted;
    backslashes = c == '\\' ? backslashes + 1 : 0;
    filled += c;
  }
  return filled;
}

std::vector<std::string> CommandLineWords(std::string_view command_line) {
  std::vector<std::string> words;
  std::optional<std::string> word;
  bool is_quoted = false;
  for (const char c : command_line) {
    if (IsBlank(c) && !is_quoted) {
      if (word) words.push_back(*std::exchange(word, std::nullopt));
      continue;
    }
    if (!word) word.emplace();
    if (c == '"') {
      is_quoted = !is_quoted;
      if (const std::size_t count = BackslashesAtEnd(*word); count % 2 == 0)
        word->resize(word->size() - count / 2);
    } else {
      *word += c;
    }
  }
  if (word) words.push_back(*std::move(word));
  return words;
}

}  // namespace quendle::platform
