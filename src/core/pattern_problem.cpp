#include "core/pattern_problem.h"

#include <algorithm>
#include <optional>

#include "base/text.h"

namespace quendle {
namespace {

std::size_t CountCharacters(std::string_view utf8) {
  return static_cast<std::size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

}  // namespace

std::string PatternProblem(const std::string& pattern) {
  return PatternProblem(pattern, Regex(pattern));
}

std::string PatternProblem(const std::string& pattern, const Regex& expression) {
  const std::string cause = LoadText(expression.ErrorCause());
  const std::optional<std::size_t> offset = expression.ErrorOffset();
  if (!offset) return cause;
  // The engine counts bytes, and stands behind the character that it does not like.
  const std::size_t place = CountCharacters(std::string_view(pattern).substr(0, *offset));
  return LoadText(TextId::kPatternPlaceAndReason, {std::to_string(std::max<std::size_t>(place, 1)), cause});
}

}  // namespace quendle
