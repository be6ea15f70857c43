#include "core/pattern_problem.h"

#include <algorithm>
#include <charconv>

#include "base/regex.h"
#include "base/text.h"

namespace quendle {
namespace {

// The engine's words.
constexpr struct {
  std::string_view english;
  TextId text;
} kReasons[] = {
    {"missing closing parenthesis", TextId::kPatternNoClosing},
    {"unmatched closing parenthesis", TextId::kPatternNoOpening},
    {"missing terminating ] for character class", TextId::kPatternNoClassEnd},
    {"quantifier does not follow a repeatable item", TextId::kPatternNothingToRepeat},
    {"\\ at end of pattern", TextId::kPatternEndsInBackslash},
    {"range out of order in character class", TextId::kPatternRangeReversed},
    {"numbers out of order in {} quantifier", TextId::kPatternCountsReversed},
    {"number too big in {} quantifier", TextId::kPatternCountTooBig},
    {"match limit exceeded", TextId::kPatternTakesTooLong},
    {"matching depth limit exceeded", TextId::kPatternTakesTooLong},
    {"it is too long to be read whole", TextId::kTooLong},
};

std::string Translated(const std::string& reason) {
  for (const auto& row : kReasons) {
    if (row.english == reason) return LoadText(row.text);
  }
  return reason;
}

std::size_t CountCharacters(std::string_view utf8) {
  return static_cast<std::size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

}  // namespace

std::string PatternProblem(const std::string& pattern) {
  return PatternProblem(pattern, Regex(pattern).Error());
}

std::string PatternProblem(const std::string& pattern, const std::string& error) {
  constexpr std::string_view kAt = " at offset ";
  const std::size_t at = error.rfind(kAt);
  if (at == std::string::npos) return Translated(error);
  std::size_t offset = 0;
  std::from_chars(error.data() + at + kAt.size(), error.data() + error.size(), offset);
  // The engine counts bytes, and stands behind the character that it does not like.
  const std::size_t place = CountCharacters(std::string_view(pattern).substr(0, offset));
  return LoadText(TextId::kPatternPlaceAndReason,
                  {std::to_string(std::max<std::size_t>(place, 1)), Translated(error.substr(0, at))});
}

}  // namespace quendle
