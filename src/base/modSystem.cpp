#include "base/modSystem.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "platform/entries/paths.h"
#include "platform/text/unicode.h"

namespace quendle {

bool MakeDirNested(const std::string& path, platform::Result* why, std::vector<std::string>* made) {
  if (FolderExists(path)) return true;
  const auto make = [made](const std::string& folder) {
    platform::Result result = platform::MakeFolder(folder);
    if (result.ok() && made != nullptr) made->push_back(folder);
    return result;
  };
  if (make(path).ok()) return true;
  const char separator = Separator(kHostStyle);
  const std::string whole = AddBackslash(path);
  platform::Result first_failure;
  for (std::size_t cut = whole.find(separator); cut != std::string::npos;
       cut = whole.find(separator, cut + 1)) {
    const std::string part = RemoveBackslash(whole.substr(0, cut + 1));
    if (FolderExists(part)) continue;
    platform::Result result = make(part);
    if (result.code == platform::Code::kExists) {
      result = Failure(platform::Code::kNotFolder, part, why::kFileInFoldersPlace);
    }
    // A root or a network share cannot be made and need not be: what counts is what is there in the end.
    if (!result.ok() && first_failure.ok()) first_failure = std::move(result);
  }
  if (FolderExists(whole)) return true;
  if (first_failure.ok()) first_failure = Failure(platform::Code::kRefused, path, why::kNoFolderPath);
  if (why != nullptr) *why = std::move(first_failure);
  return false;
}

void RemoveMadeFolders(const std::vector<std::string>& made) {
  // One that has something in it stays, and then those above it do so by themselves.
  for (auto folder = made.rbegin(); folder != made.rend(); ++folder)
    (void)platform::RemoveEmptyFolder(*folder);
}

void SortStrings(std::vector<std::string>* strings, std::int32_t lowest, std::int32_t highest) {
  if (lowest < 0 || highest <= lowest || static_cast<std::size_t>(highest) >= strings->size()) return;
  std::vector<std::pair<std::string, std::string>> keyed;  // upper-cased once, not once per comparison
  keyed.reserve(static_cast<std::size_t>(highest - lowest) + 1);
  for (std::int32_t i = lowest; i <= highest; ++i) {
    std::string& text = (*strings)[static_cast<std::size_t>(i)];
    std::string key = platform::UpperCase(text);
    keyed.emplace_back(std::move(key), std::move(text));
  }
  std::stable_sort(keyed.begin(), keyed.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  auto target = strings->begin() + lowest;
  for (auto& entry : keyed) *target++ = std::move(entry.second);
}

bool ToNumber(std::string_view text, double* number) {
  const std::string trimmed = TrimBlanks(text);
  const char* begin = trimmed.c_str();
  const char* end = begin + trimmed.size();
  const char* digits = *begin == '+' || *begin == '-' ? begin + 1 : begin;
  // The library would also take "inf" and "nan".
  if ((*digits < '0' || *digits > '9') && *digits != '.') return false;
  if (*begin == '+') ++begin;
  double value = 0;
  const auto [stop, error] = std::from_chars(begin, end, value);
  if (error != std::errc() || stop != end) return false;
  *number = value;
  return true;
}

bool ToBoolean(std::string_view text) {
  double number = 0;
  if (ToNumber(text, &number)) return number != 0;
  return EqualsIgnoringCase(TrimBlanks(text), "true");
}

std::vector<std::string> SplitCommandLine(std::string_view text, std::int16_t greatest) {
  std::vector<std::string> arguments(static_cast<std::size_t>(greatest) + 1);
  std::size_t n = 1;
  bool quoting = false;
  for (const char c : text) {
    if (c == '"') {
      quoting = !quoting;
    } else if ((c == ' ' || c == '\t') && !quoting) {
      if (n == static_cast<std::size_t>(greatest)) break;
      ++n;
    } else {
      arguments[n] += c;
    }
  }
  if (n == 1 && arguments[1].empty()) n = 0;
  arguments.resize(n + 1);
  return arguments;
}

void ProgrammingError(const char* what) {
  std::fprintf(stderr, "quendle: programming error: %s\n", what);
  std::fflush(stderr);
  std::abort();
}

}  // namespace quendle
