#include "platform/profile_document.h"

#include <algorithm>
#include <functional>

#include "platform/code_page.h"
#include "platform/profile_lines.h"
#include "platform/unicode.h"

namespace quendle::platform {
namespace {

std::string_view TrimBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

std::string_view WithoutQuotes(std::string_view value) {
  const bool quoted =
      value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
  return quoted ? value.substr(1, value.size() - 2) : value;
}

std::string DecodeFile(std::string_view bytes) {
  if (!IsTakenForUtf16(bytes)) return TextFromAnsi(bytes);
  if (bytes.starts_with(kUtf16LeMark)) bytes.remove_prefix(kUtf16LeMark.size());
  return FromUtf16Le(bytes);
}

std::size_t HashOf(const std::string& upper_name) {
  return std::hash<std::string>()(upper_name);
}

}  // namespace

std::optional<KeyLine> ParseKeyLine(std::string_view line) {
  const std::size_t equals_sign = line.find('=');
  if (equals_sign == std::string_view::npos || line.front() == ';') return std::nullopt;
  return KeyLine{TrimBlanks(line.substr(0, equals_sign)),
                 WithoutQuotes(TrimBlanks(line.substr(equals_sign + 1)))};
}

ProfileDocument::ProfileDocument(std::string_view bytes)
    : text_(DecodeFile(bytes)), separator_(LineSeparatorOf(text_)) {
  IndexSections();
  std::stable_sort(sections_.begin(), sections_.end(),
                   [](const Section& a, const Section& b) { return a.name_hash < b.name_hash; });
}

void ProfileDocument::IndexSections() {
  const auto close_last = [this](std::size_t offset) {
    if (sections_.empty()) return;
    sections_.back().body_end = offset;
    sections_.back().end_line = line_count_;
  };
  ProfileLineReader reader(text_, separator_);
  for (std::string_view line; reader.Next(&line); ++line_count_) {
    if (!IsHeaderLine(line)) continue;
    const auto begin = static_cast<std::size_t>(line.data() - text_.data());
    close_last(begin);
    Section section;
    section.name_hash = HashOf(UpperCase(HeaderName(line)));
    section.header_begin = begin;
    section.body_begin = std::min(begin + line.size() + separator_.size(), text_.size());
    section.header_line = line_count_;
    sections_.push_back(section);
  }
  close_last(text_.size());
}

template <typename Visitor>
void ProfileDocument::VisitSections(std::string_view name, Visitor visit) const {
  const std::string upper_name = UpperCase(name);
  const std::size_t hash = HashOf(upper_name);
  auto section = std::lower_bound(sections_.begin(), sections_.end(), hash,
                                  [](const Section& a, std::size_t b) { return a.name_hash < b; });
  for (; section != sections_.end() && section->name_hash == hash; ++section) {
    const std::string_view header = std::string_view(text_).substr(section->header_begin);
    const std::string_view line = header.substr(0, header.find(separator_));
    if (UpperCase(HeaderName(line)) == upper_name && !visit(*section)) return;
  }
}

std::vector<const ProfileDocument::Section*> ProfileDocument::FindSections(std::string_view name) const {
  std::vector<const Section*> found;
  VisitSections(name, [&found](const Section& section) {
    found.push_back(&section);
    return true;
  });
  return found;
}

const ProfileDocument::Section* ProfileDocument::FindSection(std::string_view name) const {
  const Section* found = nullptr;
  VisitSections(name, [&found](const Section& section) {
    found = &section;
    return false;
  });
  return found;
}

std::string_view ProfileDocument::BodyOf(const Section& section) const {
  return std::string_view(text_).substr(section.body_begin, section.body_end - section.body_begin);
}

std::optional<std::string_view> ProfileDocument::FindValue(std::string_view section,
                                                           std::string_view key) const {
  const Section* found = FindSection(section);
  if (found == nullptr) return std::nullopt;
  const std::string upper_key = UpperCase(key);
  ProfileLineReader reader(BodyOf(*found), separator_);
  for (std::string_view line; reader.Next(&line);) {
    const std::optional<KeyLine> parsed = ParseKeyLine(line);
    if (parsed && UpperCase(parsed->key) == upper_key) return parsed->value;
  }
  return std::nullopt;
}

}  // namespace quendle::platform
