#include "platform/ini/profile_editor.h"

#include <utility>

#include "platform/text/code_page.h"
#include "platform/text/misread_utf8.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

// One character for each unit: that of its number when it is ASCII, another for all others.
std::string AsciiOfUnits(std::string_view utf16) {
  std::string ascii;
  ascii.reserve(utf16.size() / 2);
  for (std::size_t i = 0; i + 1 < utf16.size(); i += 2) ascii += utf16[i + 1] == '\0' ? utf16[i] : 'x';
  return ascii;
}

}  // namespace

ProfileEditor::ProfileEditor(std::string_view bytes, Reading reading)
    : bytes_(bytes), text_(DecodeProfile(bytes)), reading_(reading), encoding_(EncodingOf(bytes)) {
  // Half a unit at the end reads as nothing, and would shift everything written after it by one byte.
  if (encoding_ == ProfileEncoding::kUtf16) bytes_.resize(bytes_.size() / 2 * 2);
  separator_ = LineSeparatorOf(text_);
  if (text_.find(separator_) == std::string::npos) separator_ = kNewSeparator;
  std::size_t begin = 0;
  if (encoding_ == ProfileEncoding::kUtf8) begin = kMark.size();
  if (bytes_.starts_with(kUtf16LeMark)) begin = kUtf16LeMark.size();
  FindLines(begin);
}

ProfileLineReader ProfileEditor::Lines() const {
  return ReaderOf(text_);
}

std::optional<std::string_view> ProfileEditor::HeaderOf(std::string_view line) const {
  if (reading_ == Reading::kKeys) return KeyHeaderName(line);
  return IsHeaderLine(line) ? std::optional(HeaderName(line)) : std::nullopt;
}

std::string_view ProfileEditor::LineBytes(std::size_t number) const {
  const Line& line = lines_[number];
  return std::string_view(bytes_).substr(line.begin, line.end - line.begin);
}

std::string ProfileEditor::NewSeparatorBytes() const {
  return encoding_ == ProfileEncoding::kUtf16 ? ToUtf16Le(kNewSeparator) : std::string(kNewSeparator);
}

Result ProfileEditor::ReplaceLines(std::size_t first, std::size_t last,
                                   const std::vector<std::string>& lines) {
  const bool continues_open_line = first == line_count() && !text_.empty() && !text_.ends_with(separator_);
  std::string text(continues_open_line ? separator_ : "");
  const std::string line_break = BreakBefore(last);
  for (const std::string& line : lines) text.append(line).append(line_break);
  std::string encoded;
  if (Result result = Encode(text, &encoded); !result.ok()) return result;
  bytes_.replace(BeginOf(first), BeginOf(last) - BeginOf(first), encoded);
  return Success();
}

Result ProfileEditor::ReplaceLine(std::size_t number, const std::string& line) {
  std::string encoded;
  if (Result result = Encode(line, &encoded); !result.ok()) return result;
  bytes_.replace(BeginOf(number), LineBytes(number).size(), encoded);
  return Success();
}

void ProfileEditor::RemoveLines(const std::vector<LineRange>& ranges) {
  std::string kept;
  std::size_t next = 0;
  for (const LineRange& range : ranges) {
    kept.append(bytes_, next, BeginOf(range.first) - next);
    next = BeginOf(range.last);
  }
  bytes_ = kept.append(bytes_, next);
}

void ProfileEditor::RenewSeparators() {
  if (separator_ == kNewSeparator) return;
  const std::string separator = NewSeparatorBytes();
  std::string bytes(Mark());
  for (std::size_t number = 0; number < line_count(); ++number) {
    if (number > 0) bytes += separator;
    bytes += LineBytes(number);
  }
  *this = ProfileEditor(bytes, reading_);
}

std::string ProfileEditor::TakeBytes() {
  return std::move(bytes_);
}

Result ProfileEditor::Encode(const std::string& text, std::string* encoded) {
  *encoded = text;
  if (encoding_ == ProfileEncoding::kUtf8) return Success();
  if (encoding_ == ProfileEncoding::kAnsi) {
    if (const std::optional<std::string> ansi = AnsiFromText(text)) {
      *encoded = *ansi;
      return Success();
    }
    if (Result turned = TurnIntoUtf16(); !turned.ok()) return turned;
  }
  *encoded = ToUtf16Le(text);
  return Success();
}

// The mark and the empty line behind it come before line 0, so that lines keep their numbers.
Result ProfileEditor::TurnIntoUtf16() {
  if (Result check = CheckDecoded(text_); !check.ok()) return check;
  if (LooksLikeUtf8(bytes_)) {  // which would stay misread for good
    return Failure(Code::kRefused, "", why::kFileSeemsUtf8);
  }
  const std::string start = std::string(kUtf16LeMark) + ToUtf16Le(separator_);
  bytes_ = start + ToUtf16Le(text_);
  encoding_ = ProfileEncoding::kUtf16;
  FindLines(start.size());
  return Success();
}

// The code page's second bytes of characters are all above those of line breaks, so that breaks can be looked
// for in its bytes as they are.
void ProfileEditor::FindLines(std::size_t begin) {
  const bool is_utf16 = encoding_ == ProfileEncoding::kUtf16;
  const std::string_view content = std::string_view(bytes_).substr(begin);
  const std::string ascii = is_utf16 ? AsciiOfUnits(content) : "";
  const std::string_view units = is_utf16 ? ascii : content;
  const std::size_t unit_size = is_utf16 ? 2 : 1;
  lines_.clear();
  ProfileLineReader reader = ReaderOf(units);
  for (std::string_view line; reader.Next(&line);) {
    const std::size_t at = begin + unit_size * static_cast<std::size_t>(line.data() - units.data());
    lines_.push_back({at, at + unit_size * line.size()});
  }
}

ProfileLineReader ProfileEditor::ReaderOf(std::string_view text) const {
  return reading_ == Reading::kKeys ? ProfileLineReader(text) : ProfileLineReader(text, separator_);
}

std::size_t ProfileEditor::BeginOf(std::size_t number) const {
  return number < line_count() ? lines_[number].begin : bytes_.size();
}

// What ends the line before that one, as text.
std::string ProfileEditor::BreakBefore(std::size_t number) const {
  if (number == 0 || number == line_count()) return std::string(separator_);
  const std::size_t end = lines_[number - 1].end;
  const std::string_view bytes = std::string_view(bytes_).substr(end, BeginOf(number) - end);
  return encoding_ == ProfileEncoding::kUtf16 ? FromUtf16Le(bytes) : std::string(bytes);
}

}  // namespace quendle::platform
