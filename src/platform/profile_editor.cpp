#include "platform/profile_editor.h"

#include <optional>
#include <utility>

#include "platform/code_page.h"
#include "platform/profile_document.h"
#include "platform/profile_lines.h"
#include "platform/unicode.h"

namespace quendle::platform {
namespace {

std::string SeparatorBytes(std::string_view separator, bool is_utf16) {
  return is_utf16 ? ToUtf16Le(separator) : std::string(separator);
}

}  // namespace

ProfileEditor::ProfileEditor(std::string_view bytes)
    : bytes_(bytes), text_(DecodeProfile(bytes)), is_utf16_(IsTakenForUtf16(bytes)) {
  // Half a unit at the end reads as nothing, and would shift everything written after it by one byte.
  if (is_utf16_) bytes_.resize(bytes_.size() / 2 * 2);
  separator_ = LineSeparatorOf(text_);
  if (text_.find(separator_) == std::string::npos) separator_ = kNewSeparator;
  FindLines(bytes_.starts_with(kUtf16LeMark) ? kUtf16LeMark.size() : 0);
}

std::string_view ProfileEditor::LineBytes(std::size_t number) const {
  const std::size_t begin = line_begins_[number];
  std::size_t end = line_begins_[number + 1];
  if (number + 1 < line_count()) end -= separator_.size() * (is_utf16_ ? 2 : 1);
  return std::string_view(bytes_).substr(begin, end - begin);
}

std::string ProfileEditor::NewSeparatorBytes() const {
  return SeparatorBytes(kNewSeparator, is_utf16_);
}

Result ProfileEditor::ReplaceLines(std::size_t first, std::size_t last,
                                   const std::vector<std::string>& lines) {
  const bool continues_open_line = first == line_count() && !text_.empty() && !text_.ends_with(separator_);
  std::string text(continues_open_line ? separator_ : "");
  for (const std::string& line : lines) text.append(line).append(separator_);
  std::string encoded;
  if (Result result = Encode(text, &encoded); !result.ok()) return result;
  bytes_.replace(line_begins_[first], line_begins_[last] - line_begins_[first], encoded);
  return Success();
}

Result ProfileEditor::ReplaceLine(std::size_t number, const std::string& line) {
  std::string encoded;
  if (Result result = Encode(line, &encoded); !result.ok()) return result;
  bytes_.replace(line_begins_[number], LineBytes(number).size(), encoded);
  return Success();
}

void ProfileEditor::RemoveLines(const std::vector<LineRange>& ranges) {
  std::string kept;
  std::size_t next = 0;
  for (const LineRange& range : ranges) {
    kept.append(bytes_, next, line_begins_[range.first] - next);
    next = line_begins_[range.last];
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
  *this = ProfileEditor(bytes);
}

std::string ProfileEditor::TakeBytes() {
  return std::move(bytes_);
}

Result ProfileEditor::Encode(const std::string& text, std::string* encoded) {
  std::optional<std::string> ansi;
  if (!is_utf16_) ansi = AnsiFromText(text);
  if (!is_utf16_ && !ansi) {
    if (Result turned = TurnIntoUtf16(); !turned.ok()) return turned;
  }
  *encoded = ansi ? *ansi : ToUtf16Le(text);
  return Success();
}

// The mark and the empty line behind it come before line 0, so that lines keep their numbers.
Result ProfileEditor::TurnIntoUtf16() {
  if (Result check = CheckDecoded(text_); !check.ok()) return check;
  const std::string start = std::string(kUtf16LeMark) + ToUtf16Le(separator_);
  bytes_ = start + ToUtf16Le(text_);
  is_utf16_ = true;
  FindLines(start.size());
  return Success();
}

// The code page's second bytes of characters are all above those of line breaks, so that separators can be
// looked for in its bytes as they are.
void ProfileEditor::FindLines(std::size_t begin) {
  const std::string separator = SeparatorBytes(separator_, is_utf16_);
  const std::size_t unit = is_utf16_ ? 2 : 1;
  line_begins_ = {begin};
  for (std::size_t at = begin; (at = bytes_.find(separator, at)) != std::string::npos;) {
    if (at % unit != 0) {
      ++at;
      continue;
    }
    at += separator.size();
    line_begins_.push_back(at);
  }
  line_begins_.push_back(bytes_.size());
}

}  // namespace quendle::platform
