// When a profile's pattern applies to a name: what the dispatcher goes by and the list of profiles shows.
#pragma once

#include <string>
#include <string_view>

#include "base/regex.h"

namespace quendle {

// The pattern of a profile, which cannot be used when it may be cut.
Regex ProfileRegex(const std::string& pattern);

// What the patterns are matched against, by Regex::MatchWhole: the name in upper case, made valid UTF-8.
// `name` is the last component of the path.
std::string MatchSubject(std::string_view name);

}  // namespace quendle
