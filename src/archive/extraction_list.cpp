#include "archive/extraction_list.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/modSystem.h"
#include "platform/entries/entry_path.h"
#include "platform/text/unicode.h"

namespace quendle {
namespace {

std::string TopFolder(const std::string& name) {
  return platform::UpperCase(name.substr(0, name.find('/') + 1));
}

// The text up to and including the last separator.
std::string FolderPart(const std::string& name) {
  return name.substr(0, name.rfind('/') + 1);
}

// `folder` is the folder part of a name that is safe as a whole.
std::string BelowTopFolder(const std::string& folder) {
  std::string safe;
  const platform::Result result =
      platform::SafeRestOfPath(folder.substr(folder.find('/') + 1), platform::kHostNames, &safe);
  if (!result.ok()) ProgrammingError("an unsafe name in the extraction list");
  return safe;
}

}  // namespace

bool HaveOneTopFolder(const std::vector<std::string>& names) {
  if (names.empty()) return false;
  const std::string top = TopFolder(names.front());
  const std::string_view spelled =
      std::string_view(names.front()).substr(0, top.empty() ? 0 : names.front().find('/') + 1);
  return !top.empty() && std::all_of(names.begin(), names.end(), [&](const std::string& name) {
    return name.starts_with(spelled) || TopFolder(name) == top;
  });
}

EntryFilter::EntryFilter(const std::string& include, const std::string& exclude)
    : includes_all_(include.empty() || include.front() == ';'),
      include_(Compile(include, "Include")),
      exclude_(Compile(exclude, "Exclude")) {}

std::vector<EntryFilter::Pattern> EntryFilter::Compile(const std::string& patterns, const char* key) {
  std::vector<Pattern> compiled;
  if (patterns.empty()) return compiled;
  const std::string list = patterns + ";";
  for (std::size_t begin = 0, end; (end = list.find(';', begin)) != std::string::npos; begin = end + 1) {
    const std::string pattern = list.substr(begin, end - begin);
    compiled.push_back({pattern, key, Regex(pattern), pattern.find('/') != std::string::npos});
  }
  return compiled;
}

bool EntryFilter::AnyFits(const std::vector<Pattern>& patterns, const std::string& upper) {
  const std::string last_part = upper.substr(upper.rfind('/') + 1);
  return std::any_of(patterns.begin(), patterns.end(), [&](const Pattern& pattern) {
    return pattern.expression.MatchWhole(pattern.for_whole_name ? upper : last_part) == RegexAnswer::kWhole;
  });
}

bool EntryFilter::Passes(const std::string& name) const {
  if (includes_all_ && exclude_.empty()) return true;
  const std::string upper = platform::UpperCase(platform::WithReplacementCharacters(name));
  if (!includes_all_ && (name.ends_with('/') || !AnyFits(include_, upper))) return false;
  return !AnyFits(exclude_, upper);
}

const EntryFilter::Pattern* EntryFilter::Unusable() const {
  for (const auto* patterns : {&include_, &exclude_}) {
    for (const Pattern& pattern : *patterns) {
      if (!pattern.expression.Error().empty()) return &pattern;
    }
  }
  return nullptr;
}

Reason EntryFilter::Problem() const {
  const Pattern* pattern = Unusable();
  if (pattern == nullptr) return {};
  return why::kEntryPatternUnusable(pattern->text, pattern->key, pattern->expression.Error());
}

std::vector<ExtractionGroup> GroupEntries(std::vector<std::string> names, bool flat) {
  std::vector<ExtractionGroup> groups;
  if (names.empty()) return groups;
  if (!flat) {
    groups.push_back({"", std::move(names)});
    return groups;
  }
  SortStrings(&names, 0, static_cast<std::int32_t>(names.size()) - 1);
  std::string folder;  // upper-cased, of the group at hand
  for (std::string& name : names) {
    const std::string part = FolderPart(name);
    std::string upper = platform::UpperCase(part);
    if (groups.empty() || upper != folder) groups.push_back({BelowTopFolder(part), {}});
    folder = std::move(upper);
    groups.back().names.push_back(std::move(name));
  }
  return groups;
}

}  // namespace quendle
