#include "core/profile_match.h"

#include "platform/text/unicode.h"
#include "settings/clsIniFile.h"

namespace quendle {
Regex ProfileRegex(const std::string& pattern) {
  return MayBeCut(pattern) ? Regex::Unusable(why::kPatternMayBeCut) : Regex(pattern);
}

std::string MatchSubject(std::string_view name) {
  return platform::UpperCase(platform::WithReplacementCharacters(name));
}

}  // namespace quendle
