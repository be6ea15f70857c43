#include "platform/profile_edit.h"

#include <optional>
#include <utility>
#include <vector>

#include "platform/code_page.h"
#include "platform/profile_document.h"
#include "platform/profile_lines.h"
#include "platform/unicode.h"

namespace quendle::platform {
namespace {

constexpr std::string_view kNewSeparator = "\r\n";

struct LineRange {
  std::size_t first;
  std::size_t last;  // the one behind it
};

// A file's bytes beside their text: lines are found in the text and replaced in the bytes.
class Editor {
 public:
  explicit Editor(std::string_view bytes)
      : bytes_(bytes), text_(DecodeProfile(bytes)), is_utf16_(IsTakenForUtf16(bytes)) {
    // Half a unit at the end reads as nothing, and would shift everything written after it by one byte.
    if (is_utf16_) bytes_.resize(bytes_.size() / 2 * 2);
    separator_ = LineSeparatorOf(text_);
    if (text_.find(separator_) == std::string::npos) separator_ = kNewSeparator;
    FindLines();
  }

  const std::string& text() const { return text_; }
  std::string_view separator() const { return separator_; }
  std::size_t line_count() const { return line_begins_.size() - 1; }

  // Puts new lines, each with a separator at its end, in place of the lines from `first` to before `last`.
  void ReplaceLines(std::size_t first, std::size_t last, const std::vector<std::string>& lines) {
    const bool continues_open_line = first == line_count() && !text_.empty() && !text_.ends_with(separator_);
    std::string text(continues_open_line ? separator_ : "");
    for (const std::string& line : lines) text.append(line).append(separator_);
    std::optional<std::string> encoded = is_utf16_ ? ToUtf16Le(text) : AnsiFromText(text);
    if (!encoded) {
      TurnIntoUtf16();
      ++first;
      ++last;
      encoded = ToUtf16Le(text);
    }
    bytes_.replace(line_begins_[first], line_begins_[last] - line_begins_[first], *encoded);
  }

  void RemoveLines(const std::vector<LineRange>& ranges) {
    std::string kept;
    std::size_t next = 0;
    for (const LineRange& range : ranges) {
      kept.append(bytes_, next, line_begins_[range.first] - next);
      next = line_begins_[range.last];
    }
    bytes_ = kept.append(bytes_, next);
  }

  std::string TakeBytes() { return std::move(bytes_); }

 private:
  // The code page's second bytes of characters are all above those of line breaks, so that separators can be
  // looked for in its bytes as they are.
  void FindLines() {
    const std::string separator = is_utf16_ ? ToUtf16Le(separator_) : std::string(separator_);
    const std::size_t unit = is_utf16_ ? 2 : 1;
    std::size_t begin = bytes_.starts_with(kUtf16LeMark) ? kUtf16LeMark.size() : 0;
    line_begins_ = {begin};
    for (std::size_t at = begin; (at = bytes_.find(separator, at)) != std::string::npos;) {
      if (at % unit != 0) {
        ++at;
        continue;
      }
      at += separator.size();
      line_begins_.push_back(at);
    }
    // What lies behind the last line: every line, also the last, then ends where the next begins.
    line_begins_.push_back(bytes_.size());
  }

  // Adds an empty line in front of all others.
  void TurnIntoUtf16() {
    bytes_ = std::string(kUtf16LeMark) + ToUtf16Le(separator_) + ToUtf16Le(text_);
    is_utf16_ = true;
    FindLines();
  }

  std::string bytes_;
  std::string text_;
  bool is_utf16_;
  std::string_view separator_;
  std::vector<std::size_t> line_begins_;
};

Result Refusal(std::string reason) {
  return Failure(Code::kRefused, "", std::move(reason));
}

bool HasBreak(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

Result CheckFile(std::string_view bytes) {
  if (!IsTakenForUtf16(bytes) || bytes.starts_with(kUtf16LeMark)) return Success();
  return Refusal("the file begins like UTF-16 but not with the little-endian mark, so it is not changed");
}

Result CheckSection(std::string_view section) {
  if (section.empty()) return Refusal("the section name is empty");
  if (HasBreak(section)) return Refusal("the section name contains a line break or NUL");
  if (section.ends_with(']')) return Refusal("the section name ends in \"]\"");
  if (!IsUtf8(section)) return Refusal("the section name is not valid UTF-8");
  return Success();
}

Result CheckKeyAndValue(std::string_view key, std::string_view value) {
  if (key.empty()) return Refusal("the key is empty");
  if (HasBreak(key)) return Refusal("the key contains a line break or NUL");
  const std::string line = std::string(key) + "=";
  const std::optional<KeyLine> parsed = ParseKeyLine(line);
  if (!parsed || parsed->key != key) {
    return Refusal("the key contains \"=\", begins with \";\" or has blanks at an end");
  }
  if (HasBreak(value)) return Refusal("the value contains a line break or NUL");
  if (!IsUtf8(key) || !IsUtf8(value)) return Refusal("the key or the value is not valid UTF-8");
  return Success();
}

// Quotes are added when reading would strip something else.
std::string KeyLineText(std::string_view key, std::string_view value) {
  std::string line = std::string(key).append("=");
  if (ParseKeyLine(line + std::string(value))->value == value) return line.append(value);
  return line.append("\"").append(value).append("\"");
}

std::string HeaderText(std::string_view section) {
  return std::string("[").append(section).append("]");
}

// All sections of that name, headers included.
std::vector<LineRange> FindSections(const Editor& editor, std::string_view name) {
  const std::string upper_name = UpperCase(name);
  std::vector<LineRange> sections;
  bool is_inside = false;
  ProfileLineReader reader(editor.text(), editor.separator());
  std::size_t number = 0;
  for (std::string_view line; reader.Next(&line); ++number) {
    if (!IsHeaderLine(line)) continue;
    if (is_inside) sections.back().last = number;
    is_inside = UpperCase(HeaderName(line)) == upper_name;
    if (is_inside) sections.push_back({number, editor.line_count()});
  }
  return sections;
}

// The line of the key, or the empty range behind the last line of the section that is not blank.
LineRange PlaceOfKey(const Editor& editor, const LineRange& section, std::string_view key) {
  const std::string upper_key = UpperCase(key);
  std::size_t behind_last = section.first + 1;
  ProfileLineReader reader(editor.text(), editor.separator());
  std::size_t number = 0;
  for (std::string_view line; number < section.last && reader.Next(&line); ++number) {
    if (number <= section.first) continue;
    const std::optional<KeyLine> parsed = ParseKeyLine(line);
    if (parsed && UpperCase(parsed->key) == upper_key) return {number, number + 1};
    if (line.find_first_not_of(" \t") != std::string_view::npos) behind_last = number + 1;
  }
  return {behind_last, behind_last};
}

Result SplitBody(std::string_view body, std::string_view separator, std::vector<std::string>* lines) {
  if (!IsUtf8(body)) return Refusal("the section body is not valid UTF-8");
  ProfileLineReader reader(body, kNewSeparator);
  for (std::string_view line; reader.Next(&line);) {
    if (IsHeaderLine(line)) return Refusal("the section body contains a section header");
    if (separator != kNewSeparator && HasBreak(line)) {
      return Refusal("a line of the section body contains a line break");
    }
    lines->emplace_back(line);
  }
  if (lines->back().empty()) lines->pop_back();
  return Success();
}

}  // namespace

Result SetKey(std::string_view section, std::string_view key, std::string_view value, std::string* bytes) {
  for (const Result& check : {CheckFile(*bytes), CheckSection(section), CheckKeyAndValue(key, value)}) {
    if (!check.ok()) return check;
  }
  const std::string line = KeyLineText(key, value);
  if (IsHeaderLine(line)) return Refusal("the key and the value together read as a section header");
  Editor editor(*bytes);
  if (const std::vector<LineRange> found = FindSections(editor, section); !found.empty()) {
    const LineRange place = PlaceOfKey(editor, found.front(), key);
    editor.ReplaceLines(place.first, place.last, {line});
  } else {
    editor.ReplaceLines(editor.line_count(), editor.line_count(), {HeaderText(section), line});
  }
  *bytes = editor.TakeBytes();
  return Success();
}

Result RemoveSections(std::string_view section, std::string* bytes) {
  Editor editor(*bytes);
  const std::vector<LineRange> found = FindSections(editor, section);
  if (found.empty()) return Success();
  if (Result check = CheckFile(*bytes); !check.ok()) return check;
  editor.RemoveLines(found);
  *bytes = editor.TakeBytes();
  return Success();
}

Result SetBody(std::string_view section, std::string_view body, std::string* bytes) {
  for (const Result& check : {CheckFile(*bytes), CheckSection(section)}) {
    if (!check.ok()) return check;
  }
  Editor editor(*bytes);
  std::vector<std::string> lines;
  if (Result split = SplitBody(body, editor.separator(), &lines); !split.ok()) return split;
  if (const std::vector<LineRange> found = FindSections(editor, section); !found.empty()) {
    editor.ReplaceLines(found.front().first + 1, found.front().last, lines);
  } else {
    lines.insert(lines.begin(), HeaderText(section));
    editor.ReplaceLines(editor.line_count(), editor.line_count(), lines);
  }
  *bytes = editor.TakeBytes();
  return Success();
}

}  // namespace quendle::platform
