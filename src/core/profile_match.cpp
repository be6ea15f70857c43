#include "core/profile_match.h"

#include <cstddef>

#include "platform/code_page.h"
#include "platform/unicode.h"

namespace quendle {
namespace {

constexpr std::size_t kLongestValue = 1023;

}  // namespace

bool MayBeCut(const std::string& value) {
  return platform::CutToAnsiBytes(value, kLongestValue - 2).size() < value.size();
}

Regex ProfileRegex(const std::string& pattern) {
  return MayBeCut(pattern) ? Regex::Unusable("it is too long to be read whole") : Regex(pattern);
}

std::string MatchSubject(std::string_view name) {
  return platform::UpperCase(platform::WithReplacementCharacters(name));
}

}  // namespace quendle
