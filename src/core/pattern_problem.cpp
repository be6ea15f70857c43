#include "core/pattern_problem.h"

#include <algorithm>
#include <charconv>

#include "base/regex.h"
#include "base/text.h"

namespace quendle {
namespace {

constexpr int kPlaceAndReason = 6672;

// The engine's words.
constexpr struct {
  std::string_view english;
  int text;
} kReasons[] = {
    {"missing closing parenthesis", 6691},
    {"unmatched closing parenthesis", 6692},
    {"missing terminating ] for character class", 6693},
    {"quantifier does not follow a repeatable item", 6694},
    {"\\ at end of pattern", 6695},
    {"range out of order in character class", 6696},
    {"numbers out of order in {} quantifier", 6697},
    {"number too big in {} quantifier", 6698},
    {"match limit exceeded", 6707},
    {"matching depth limit exceeded", 6707},
    {"it is too long to be read whole", 6673},
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
  return LoadText(kPlaceAndReason,
                  {std::to_string(std::max<std::size_t>(place, 1)), Translated(error.substr(0, at))});
}

}  // namespace quendle
