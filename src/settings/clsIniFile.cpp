#include "settings/clsIniFile.h"

#include <algorithm>

#include "base/modString.h"
#include "base/modSystem.h"
#include "platform/ini/profile.h"
#include "platform/ini/profile_lines.h"
#include "platform/text/code_page.h"
#include "platform/text/unicode.h"
#include "settings/modOpenFile.h"

namespace quendle {
namespace {

constexpr std::int32_t kDefaultBuffer = 1024;
constexpr std::int32_t kSmallestBuffer = 256;
constexpr std::int32_t kGreatestBuffer = 131072;

constexpr std::string_view kLineBreak = "\r\n";

using Lines = std::vector<std::string_view>;

// With the mark in it the first line would be no header, and the first section would be missing.
std::string ReadText(const std::string& path) {
  bool is_unicode = false;
  return platform::WithoutMark(ReadTextFile(path, &is_unicode));
}

// A text that cannot be split has no lines at all, not one: a lone "[General]" is no section.
Lines LinesOf(std::string_view text) {
  Lines lines = platform::SplitProfileLines(text);
  if (lines.size() == 1) lines.front() = {};
  return lines;
}

std::int32_t LeaveOneEmpty(std::vector<std::string>* array) {
  array->assign(1, "");
  return 0;
}

std::int32_t CountUnlessFirstIsEmpty(std::vector<std::string>* array) {
  if (array->empty() || array->front().empty()) return LeaveOneEmpty(array);
  return static_cast<std::int32_t>(array->size());
}

Lines::const_iterator FindHeader(const Lines& lines, const std::string& section) {
  const std::string wanted = platform::UpperCase(platform::HeaderText(section));
  return std::find_if(lines.begin(), lines.end(),
                      [&wanted](std::string_view line) { return platform::UpperCase(line) == wanted; });
}

// The lines of the section that begins at `header` which are not empty, each with a line break.
std::string BodyFrom(Lines::const_iterator header, Lines::const_iterator end) {
  std::string body;
  for (auto line = header + 1; line < end && !platform::IsHeaderLine(*line); ++line) {
    if (!line->empty()) body.append(*line).append(kLineBreak);
  }
  return body;
}

}  // namespace

// Sizes that are permitted do not take effect:
//   0 => 1024
//   below 256 => 256
//   256 to 131072 => 1024
//   above 131072 => 131072
void clsIniFile::pBUFFER(std::int32_t size) {
  if (size != 0 && size < kSmallestBuffer) {
    buffer_ = kSmallestBuffer;
  } else if (size > kGreatestBuffer) {
    buffer_ = kGreatestBuffer;
  } else {
    buffer_ = kDefaultBuffer;
  }
}

bool clsIniFile::SetStr(const std::string& section, const std::string& key, const std::string& value) {
  last_failure_ = platform::WriteProfileString(pFileName, section, key, value);
  return last_failure_.ok();
}

bool clsIniFile::SetStrings(const std::string& section, const std::function<KeysAndValues()>& choose) {
  last_failure_ = platform::WriteProfileStrings(pFileName, section, choose);
  return last_failure_.ok();
}

std::string clsIniFile::GetStr(const std::string& section, const std::string& key,
                               const std::string& fallback) const {
  const std::string value =
      platform::ReadProfileString(pFileName, section, key, fallback, static_cast<std::size_t>(buffer_));
  return value.empty() ? fallback : value;
}

void clsIniFile::DeleteSection(const std::string& section) {
  last_failure_ = platform::DeleteProfileSection(pFileName, section);
}

void clsIniFile::DeleteSections(const std::vector<std::string>& sections) {
  last_failure_ = platform::DeleteProfileSections(pFileName, sections);
}

std::int32_t clsIniFile::EnumSection(std::vector<std::string>* names) const {
  *names = SectionNames(ReadText(pFileName));
  return names->empty() ? LeaveOneEmpty(names) : static_cast<std::int32_t>(names->size());
}

std::int32_t clsIniFile::EnumSectionItem(const std::string& section, std::vector<std::string>* items) const {
  const std::string text = ReadText(pFileName);
  const Lines lines = LinesOf(text);
  const auto header = std::find(lines.begin(), lines.end(), platform::HeaderText(section));
  if (header == lines.end()) return LeaveOneEmpty(items);
  auto end = std::find_if(header + 1, lines.end(), platform::IsHeaderLine);
  if (end == lines.end() - 1) ++end;  // a header that is the last line belongs to the items
  items->assign(header + 1, end);
  return CountUnlessFirstIsEmpty(items);
}

std::string clsIniFile::GetSectionData(const std::string& section) const {
  const std::string text = ReadText(pFileName);
  const Lines lines = LinesOf(text);
  const auto header = FindHeader(lines, section);
  if (header == lines.end()) return "";
  std::string body = BodyFrom(header, lines.end() - 1);
  if (!body.empty()) body.resize(body.size() - kLineBreak.size());
  return body;
}

void clsIniFile::SetSectionData(const std::string& section, const std::string& body) {
  last_failure_ = platform::WriteProfileSection(pFileName, section, body);
}

std::int32_t clsIniFile::GetAllDataByArray(std::vector<std::string>* lines) const {
  const std::string text = ReadText(pFileName);
  const Lines found = LinesOf(text);
  lines->assign(found.begin(), found.end());
  return static_cast<std::int32_t>(lines->size()) - 1;
}

void clsIniFile::RenameSection(const std::string& old_name, const std::string& new_name) {
  last_failure_ = platform::RenameProfileSection(pFileName, old_name, new_name);
}

// The file is put together in memory: writing section by section to a temporary file would sync that file
// once for each of maybe 10,000 profiles. All lines count there, also one that no line break ends:
// GetSectionData would leave it out, and it would be lost.
void clsIniFile::OptimizeFile(bool sort) {
  last_failure_ = platform::ArrangeProfile(pFileName, [sort](std::vector<std::string> names) {
    const std::int32_t count = CountUnlessFirstIsEmpty(&names);
    if (count == 0) return std::vector<std::string>();
    if (sort) SortStrings(&names, 0, count - 1);
    // A section without a name sorts to the front, where it would hide all others from EnumSection.
    std::stable_partition(names.begin(), names.end(), [](const std::string& name) { return !name.empty(); });
    return names;
  });
}

std::vector<std::string> SectionNames(std::string_view text) {
  std::vector<std::string> names;
  for (const std::string_view line : LinesOf(text)) {
    if (platform::IsHeaderLine(line)) names.emplace_back(platform::HeaderName(line));
  }
  if (!names.empty() && names.front().empty()) names.clear();
  return names;
}

std::string AsRead(std::string_view value) {
  return std::string(platform::CutToAnsiBytes(value.substr(0, value.find('\0')), kDefaultBuffer - 1));
}

// One byte of the buffer is for the end. A character of two bytes may not have fitted into the last one.
bool MayBeCut(const std::string& value) {
  constexpr std::size_t kLongestValue = kDefaultBuffer - 1;
  return platform::CutToAnsiBytes(value, kLongestValue - 2).size() < value.size();
}

}  // namespace quendle
