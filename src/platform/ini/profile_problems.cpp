#include "platform/ini/profile_problems.h"

#include <algorithm>
#include <optional>

#include "platform/ini/profile_document.h"
#include "platform/ini/profile_lines.h"
#include "platform/text/code_page.h"
#include "platform/text/misread_utf8.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

// A problem of a line, which takes its number; nothing when there is none.
using LineProblem = std::optional<ReasonForm<1>>;

// The lines of the text, each with its number and, where that can be told, the bytes it was decoded from.
class LineWalk {
 public:
  LineWalk(std::string_view bytes, std::string_view text)
      : lines_(text), raw_lines_(EncodingOf(bytes) == ProfileEncoding::kAnsi ? bytes : text) {}

  bool Next() {
    raw_lines_.Next(&raw_);
    ++number_;
    return lines_.Next(&line_);
  }

  std::string_view line() const { return line_; }
  std::string_view raw() const { return raw_; }
  Reason At(ReasonForm<1> problem) const { return problem(number_); }

 private:
  ProfileLineReader lines_;
  ProfileLineReader raw_lines_;  // the code page has line breaks in no character
  std::string_view line_;
  std::string_view raw_;
  std::size_t number_ = 0;
};

char FirstCharacter(std::string_view line) {
  const std::size_t first = line.find_first_not_of(" \t");
  return first == std::string_view::npos ? '\0' : line[first];
}

bool HasReplacement(std::string_view text) {
  std::string replacement;
  AppendCodePoint(kReplacementCharacter, &replacement);
  return text.find(replacement) != std::string_view::npos;
}

bool HasUndecodableByte(std::string_view text) {
  constexpr char kFirstOfThem = '\xEE';  // in UTF-8
  for (std::size_t at = 0; (at = text.find(kFirstOfThem, at)) != std::string_view::npos; ++at) {
    std::string_view rest = text.substr(at);
    char32_t code_point = 0;
    if (TakeCodePoint(&rest, &code_point) && IsUndecodableByte(code_point)) return true;
  }
  return false;
}

// Does `line`, which is part of `text`, begin and end where lines between separators do?
bool IsWholeLine(std::string_view line, std::string_view text, std::string_view separator) {
  const auto begin = static_cast<std::size_t>(line.data() - text.data());
  const std::string_view behind = text.substr(begin + line.size());
  return (begin == 0 || text.substr(0, begin).ends_with(separator)) &&
         (behind.empty() || behind.starts_with(separator));
}

// Is there a header of several lines in one line between separators, which begins with `line`?
bool BeginsLongHeader(std::string_view line, std::string_view text, std::string_view separator) {
  const auto begin = static_cast<std::size_t>(line.data() - text.data());
  if (begin != 0 && !text.substr(0, begin).ends_with(separator)) return false;
  return IsHeaderLine(text.substr(begin, text.find(separator, begin) - begin));
}

bool HasLostBracket(const LineWalk& walk) {
  const auto brackets_in = [](std::string_view line) { return std::count(line.begin(), line.end(), ']'); };
  return brackets_in(walk.raw()) != brackets_in(walk.line()) && LooksLikeUtf8(walk.raw());
}

// Of a line whose first character is "[".
LineProblem HeaderProblem(const LineWalk& walk, std::string_view text, std::string_view separator) {
  const std::string_view line = walk.line();
  if (HasLostBracket(walk)) return why::kLineSeemsUtf8;
  const auto name = KeyHeaderName(line);
  if (!name && BeginsLongHeader(line, text, separator)) return why::kLineMixesBreaks;
  if (!name) return std::nullopt;
  if (HasReplacement(*name)) return why::kLineHasUnclearHeader;
  if (!IsHeaderLine(line)) return why::kLineHasMoreThanHeader;
  if (!IsWholeLine(line, text, separator)) return why::kLineMixesBreaks;
  return std::nullopt;
}

}  // namespace

Reason SectionProblemOf(std::string_view bytes, std::string_view text) {
  const std::string_view separator = LineSeparatorOf(text);
  for (LineWalk walk(bytes, text); walk.Next();) {
    if (FirstCharacter(walk.line()) != '[') continue;
    if (const LineProblem problem = HeaderProblem(walk, text, separator)) return walk.At(*problem);
  }
  return {};
}

Reason DecodingProblemOf(std::string_view bytes, std::string_view text) {
  const ProfileEncoding encoding = EncodingOf(bytes);
  if (encoding == ProfileEncoding::kUtf16 && !bytes.starts_with(kUtf16LeMark)) return why::kOtherUtf16;
  if (encoding == ProfileEncoding::kUtf16 && bytes.size() % 2 != 0) return why::kHalfUnit;
  const auto is_undecodable = encoding == ProfileEncoding::kAnsi ? HasUndecodableByte : HasReplacement;
  const auto has_nul = [](std::string_view part) { return part.find('\0') != std::string_view::npos; };
  if (!is_undecodable(text) && !has_nul(text)) return {};
  if (encoding == ProfileEncoding::kAnsi) {
    if (Result decoded = CheckDecoded(text); !decoded.ok()) return decoded.reason;
  }
  for (LineWalk walk(bytes, text); walk.Next();) {
    if (FirstCharacter(walk.line()) == ';') continue;
    if (has_nul(walk.line())) return walk.At(why::kLineHasNul);
    if (!is_undecodable(walk.line())) continue;
    const bool is_misread = encoding == ProfileEncoding::kAnsi && LooksLikeUtf8(walk.raw());
    return walk.At(is_misread ? why::kLineSeemsUtf8 : why::kLineUndecodable);
  }
  return {};
}

}  // namespace quendle::platform
