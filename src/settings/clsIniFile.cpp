#include "settings/clsIniFile.h"

#include <algorithm>
#include <memory>
#include <unordered_map>
#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "platform/durable_file.h"
#include "platform/profile.h"
#include "platform/profile_lines.h"
#include "platform/unicode.h"
#include "settings/modOpenFile.h"

namespace quendle {
namespace {

constexpr std::int32_t kDefaultBuffer = 1024;
constexpr std::int32_t kSmallestBuffer = 256;
constexpr std::int32_t kGreatestBuffer = 131072;

constexpr std::string_view kLineBreak = "\r\n";

using Lines = std::vector<std::string_view>;

// A file's text without its mark. With the mark in it the first line would be no header, and the first
// section would be missing; a rename would write a second mark in front of it.
std::string ReadText(const std::string& path, bool* is_unicode) {
  std::string text = ReadTextFile(path, is_unicode);
  if (*is_unicode && text.starts_with(platform::kMark)) text.erase(0, platform::kMark.size());
  return text;
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

std::int32_t ListSections(const Lines& lines, std::vector<std::string>* names) {
  names->clear();
  for (const std::string_view line : lines) {
    if (platform::IsHeaderLine(line)) names->emplace_back(platform::HeaderName(line));
  }
  return CountUnlessFirstIsEmpty(names);
}

std::string HeaderText(const std::string& section) {
  return "[" + section + "]";
}

Lines::const_iterator FindHeader(const Lines& lines, const std::string& section) {
  const std::string wanted = platform::UpperCase(HeaderText(section));
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

// The sections' text, with names[i] as the i-th header over the body of the first section of that name.
std::string Assemble(const std::vector<std::string>& names, const Lines& lines) {
  std::unordered_map<std::string, std::string> bodies;
  for (auto line = lines.begin(); line != lines.end(); ++line) {
    if (!platform::IsHeaderLine(*line)) continue;
    const auto [body, is_first] = bodies.try_emplace(platform::UpperCase(platform::HeaderName(*line)));
    if (is_first) body->second = BodyFrom(line, lines.end());
  }
  std::string text;
  for (const std::string& name : names) {
    const auto body = bodies.find(platform::UpperCase(name));
    if (body == bodies.end()) continue;  // written already
    text.append(HeaderText(name)).append(kLineBreak).append(body->second);
    bodies.erase(body);
  }
  return text;
}

}  // namespace

void clsIniFile::pBUFFER(std::int32_t size) {
  if (size != 0 && size < kSmallestBuffer) {
    buffer_ = kSmallestBuffer;
  } else if (size > kGreatestBuffer) {
    buffer_ = kGreatestBuffer;
  } else {
    buffer_ =
        kDefaultBuffer;  // not `size`: what is permitted has never taken effect, and nobody relies on it
  }
}

bool clsIniFile::SetStr(const std::string& section, const std::string& key, const std::string& value) {
  last_failure_ = platform::WriteProfileString(pFileName, section, key, value);
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

std::int32_t clsIniFile::EnumSection(std::vector<std::string>* names) const {
  bool is_unicode = false;
  const std::string text = ReadText(pFileName, &is_unicode);
  return ListSections(LinesOf(text), names);
}

std::int32_t clsIniFile::EnumSectionItem(const std::string& section, std::vector<std::string>* items) const {
  bool is_unicode = false;
  const std::string text = ReadText(pFileName, &is_unicode);
  const Lines lines = LinesOf(text);
  const auto header = std::find(lines.begin(), lines.end(), HeaderText(section));
  if (header == lines.end()) return LeaveOneEmpty(items);
  auto end = std::find_if(header + 1, lines.end(), platform::IsHeaderLine);
  if (end == lines.end() - 1) ++end;  // a header that is the last line belongs to the items
  items->assign(header + 1, end);
  return CountUnlessFirstIsEmpty(items);
}

std::string clsIniFile::GetSectionData(const std::string& section) const {
  bool is_unicode = false;
  const std::string text = ReadText(pFileName, &is_unicode);
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
  bool is_unicode = false;
  const std::string text = ReadText(pFileName, &is_unicode);
  const Lines found = LinesOf(text);
  lines->assign(found.begin(), found.end());
  return static_cast<std::int32_t>(lines->size()) - 1;
}

void clsIniFile::RenameSection(const std::string& old_name, const std::string& new_name) {
  last_failure_ = Rename(old_name, new_name);
}

platform::Result clsIniFile::Rename(const std::string& old_name, const std::string& new_name) const {
  if (new_name.find_first_of(kLineBreak) != std::string::npos) {
    return platform::Failure(platform::Code::kRefused, pFileName, "the section name contains a line break");
  }
  std::unique_ptr<platform::FolderLock> lock;
  if (platform::Result taken = platform::FolderLock::Take(pFileName, &lock); !taken.ok()) return taken;
  bool is_unicode = false;
  const std::string old_text = ReadText(pFileName, &is_unicode);
  const Lines lines = LinesOf(old_text);
  const auto header = FindHeader(lines, old_name);
  if (header == lines.end()) return platform::Success();
  std::string text;
  for (auto line = lines.begin(); line != lines.end(); ++line) {
    if (line != lines.begin()) text += kLineBreak;
    line == header ? text.append(HeaderText(new_name)) : text.append(*line);
  }
  platform::Result result;
  WriteTextFile(pFileName, text, kReplaceText, is_unicode, &result);
  return result;
}

void clsIniFile::OptimizeFile(bool sort) {
  last_failure_ = Optimize(sort);
}

// The text is assembled in memory: writing section by section to a temporary file would sync that file once
// for each of maybe 10,000 profiles.
platform::Result clsIniFile::Optimize(bool sort) const {
  std::unique_ptr<platform::FolderLock> lock;
  if (platform::Result taken = platform::FolderLock::Take(pFileName, &lock); !taken.ok()) return taken;
  bool is_unicode = false;
  const std::string old_text = ReadText(pFileName, &is_unicode);
  // All lines count here, also one that no line break ends: GetSectionData would leave it out, and it would
  // be lost.
  const Lines lines = LinesOf(old_text);
  std::vector<std::string> names;
  const std::int32_t count = ListSections(lines, &names);
  if (count == 0) return platform::Success();
  if (sort) SortStrings(&names, 0, count - 1);
  // A section without a name sorts to the front, where it would hide all others from EnumSection.
  std::stable_partition(names.begin(), names.end(), [](const std::string& name) { return !name.empty(); });
  platform::Result result;
  WriteTextFile(pFileName, Assemble(names, lines), kReplaceText, false, &result);
  return result;
}

}  // namespace quendle
