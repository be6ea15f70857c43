#include "platform/ini/profile_document.h"

#include <algorithm>
#include <functional>

#include "platform/ini/profile_lines.h"
#include "platform/ini/profile_problems.h"
#include "platform/text/code_page.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

std::string_view TrimSpaces(std::string_view text) {
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

// The upper half of an element of the index.
std::uint64_t HashOf(const std::string& upper_name) {
  return static_cast<std::uint64_t>(std::hash<std::string>()(upper_name)) << 32;
}

constexpr std::uint64_t kOffsetMask = 0xFFFFFFFF;

}  // namespace

std::optional<KeyLine> ParseKeyLine(std::string_view line) {
  const std::size_t equals_sign = line.find('=');
  if (equals_sign == std::string_view::npos) return std::nullopt;
  const std::string_view key = TrimSpaces(line.substr(0, equals_sign));
  if (key.starts_with(';')) return std::nullopt;
  return KeyLine{key, WithoutQuotes(TrimSpaces(line.substr(equals_sign + 1)))};
}

ProfileEncoding EncodingOf(std::string_view bytes) {
  if (IsTakenForUtf16(bytes)) return ProfileEncoding::kUtf16;
  return bytes.starts_with(kMark) ? ProfileEncoding::kUtf8 : ProfileEncoding::kAnsi;
}

std::string DecodeProfile(std::string_view bytes) {
  switch (EncodingOf(bytes)) {
    case ProfileEncoding::kUtf16:
      return WithoutMark(FromUtf16Le(bytes));
    case ProfileEncoding::kUtf8:
      return WithoutMark(WithReplacementCharacters(bytes));
    case ProfileEncoding::kAnsi:
      break;
  }
  return TextFromAnsi(bytes);
}

ProfileDocument::ProfileDocument(std::string_view bytes)
    : is_ansi_(EncodingOf(bytes) == ProfileEncoding::kAnsi),
      text_(DecodeProfile(bytes)),
      section_problem_(SectionProblemOf(bytes, text_)),
      decoding_problem_(DecodingProblemOf(bytes, text_)) {
  ProfileLineReader reader(text_);
  for (std::string_view line; reader.Next(&line);) {
    const std::optional<std::string_view> name = KeyHeaderName(line);
    if (!name) continue;
    const auto begin = static_cast<std::uint64_t>(line.data() - text_.data());
    headers_.push_back(HashOf(UpperCase(*name)) | begin);
  }
  std::sort(headers_.begin(), headers_.end());
}

std::optional<std::string_view> ProfileDocument::TextBehindHeader(std::string_view section) const {
  const std::string upper_name = UpperCase(section);
  const std::uint64_t hash = HashOf(upper_name);
  auto header = std::lower_bound(headers_.begin(), headers_.end(), hash);
  for (; header != headers_.end() && (*header & ~kOffsetMask) == hash; ++header) {
    const std::string_view rest = std::string_view(text_).substr(*header & kOffsetMask);
    std::string_view line;
    ProfileLineReader(rest).Next(&line);
    if (UpperCase(*KeyHeaderName(line)) == upper_name) return rest.substr(line.size());
  }
  return std::nullopt;
}

std::optional<std::string_view> ProfileDocument::FindValue(std::string_view section,
                                                           std::string_view key) const {
  const std::optional<std::string_view> text = TextBehindHeader(section);
  if (!text) return std::nullopt;
  const std::string upper_key = UpperCase(key);
  ProfileLineReader reader(*text);
  for (std::string_view line; reader.Next(&line) && !KeyHeaderName(line);) {
    const std::optional<KeyLine> parsed = ParseKeyLine(line);
    if (parsed && UpperCase(parsed->key) == upper_key) return parsed->value;
  }
  return std::nullopt;
}

void ProfileDocument::VisitSections(const ProfileSectionVisitor& visit) const {
  std::optional<std::string_view> name;
  ProfileKeys keys;
  ProfileLineReader reader(text_);
  for (std::string_view line; reader.Next(&line);) {
    if (const std::optional<std::string_view> header = KeyHeaderName(line)) {
      if (name) visit(*name, keys);
      name = header;
      keys.clear();
    } else if (const std::optional<KeyLine> parsed = name ? ParseKeyLine(line) : std::nullopt) {
      keys.emplace_back(parsed->key, parsed->value);
    }
  }
  if (name) visit(*name, keys);
}

}  // namespace quendle::platform
