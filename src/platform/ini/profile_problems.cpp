#include "platform/ini/profile_problems.h"

#include <algorithm>

#include "platform/ini/profile_document.h"
#include "platform/ini/profile_lines.h"
#include "platform/text/code_page.h"
#include "platform/text/misread_utf8.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

// What follows the number of a line.
constexpr std::string_view kMisread = ": this seems to be UTF-8; save the file as UTF-8 with its mark (BOM)";
constexpr std::string_view kMixedBreaks =
    ": line ends of several kinds at a section header; save the file with one kind of line ends";
constexpr std::string_view kNotAlone =
    ": blanks or text around a section header; leave only the brackets and what they enclose";
constexpr std::string_view kUnclearHeader =
    ": a section header has characters that cannot be read; write it anew";
constexpr std::string_view kNul =
    ": a NUL character, as in damaged files and UTF-16 without its mark; save the file anew";
constexpr std::string_view kUndecodable =
    ": bytes that are no text in the file's encoding; write the line anew";
// What is said of the whole file.
constexpr std::string_view kHalfUnit = "the file ends in half a character; save it anew";
constexpr std::string_view kOtherUtf16 =
    "the file begins like UTF-16 but not with the little-endian mark; save it as UTF-8 with its mark (BOM)";

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
  std::string At(std::string_view problem) const {
    return std::string("line ").append(std::to_string(number_)).append(problem);
  }

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
std::string_view HeaderProblem(const LineWalk& walk, std::string_view text, std::string_view separator) {
  const std::string_view line = walk.line();
  if (HasLostBracket(walk)) return kMisread;
  const auto name = KeyHeaderName(line);
  if (!name) return BeginsLongHeader(line, text, separator) ? kMixedBreaks : "";
  if (HasReplacement(*name)) return kUnclearHeader;
  if (!IsHeaderLine(line)) return kNotAlone;
  return IsWholeLine(line, text, separator) ? "" : kMixedBreaks;
}

}  // namespace

std::string SectionProblemOf(std::string_view bytes, std::string_view text) {
  const std::string_view separator = LineSeparatorOf(text);
  for (LineWalk walk(bytes, text); walk.Next();) {
    if (FirstCharacter(walk.line()) != '[') continue;
    const std::string_view problem = HeaderProblem(walk, text, separator);
    if (!problem.empty()) return walk.At(problem);
  }
  return "";
}

std::string DecodingProblemOf(std::string_view bytes, std::string_view text) {
  const ProfileEncoding encoding = EncodingOf(bytes);
  if (encoding == ProfileEncoding::kUtf16 && !bytes.starts_with(kUtf16LeMark))
    return std::string(kOtherUtf16);
  if (encoding == ProfileEncoding::kUtf16 && bytes.size() % 2 != 0) return std::string(kHalfUnit);
  const auto is_undecodable = encoding == ProfileEncoding::kAnsi ? HasUndecodableByte : HasReplacement;
  const auto has_nul = [](std::string_view part) { return part.find('\0') != std::string_view::npos; };
  if (!is_undecodable(text) && !has_nul(text)) return "";
  if (encoding == ProfileEncoding::kAnsi) {
    if (Result decoded = CheckDecoded(text); !decoded.ok()) return decoded.reason;
  }
  for (LineWalk walk(bytes, text); walk.Next();) {
    if (FirstCharacter(walk.line()) == ';') continue;
    if (has_nul(walk.line())) return walk.At(kNul);
    if (!is_undecodable(walk.line())) continue;
    const bool is_misread = encoding == ProfileEncoding::kAnsi && LooksLikeUtf8(walk.raw());
    return walk.At(is_misread ? kMisread : kUndecodable);
  }
  return "";
}

}  // namespace quendle::platform
