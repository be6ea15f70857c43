#include "platform/ini/profile_edit.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/ini/profile_document.h"
#include "platform/ini/profile_editor.h"
#include "platform/ini/profile_lines.h"
#include "platform/ini/profile_problems.h"
#include "platform/text/code_page.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

Result Refusal(Reason reason) {
  return Failure(Code::kRefused, "", std::move(reason));
}

bool HasBreak(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

Result CheckFile(std::string_view bytes) {
  if (!IsTakenForUtf16(bytes) || bytes.starts_with(kUtf16LeMark)) return Success();
  return Refusal(why::kUtf16NotChanged);
}

Result CheckSection(std::string_view section) {
  if (section.empty()) return Refusal(why::kSectionNameEmpty);
  if (HasBreak(section)) return Refusal(why::kSectionNameHasBreak);
  if (!IsUtf8(section)) return Refusal(why::kSectionNameNotUtf8);
  return Success();
}

// Other programs may not find such a name: it ends at the first "]" for some, and blanks do not count for others.
Result CheckNewSection(std::string_view section) {
  if (Result check = CheckSection(section); !check.ok()) return check;
  if (section.ends_with(']')) return Refusal(why::kSectionNameEndsInBracket);
  const auto is_blank = [](char c) { return c == ' ' || c == '\t'; };
  if (is_blank(section.front()) || is_blank(section.back())) {
    return Refusal(why::kSectionNameHasBlanks);
  }
  return Success();
}

Result CheckSections(std::string_view bytes, const ProfileEditor& editor) {
  Reason problem = SectionProblemOf(bytes, editor.text());
  return problem.empty() ? Success() : Refusal(std::move(problem));
}

Result CheckKeyAndValue(std::string_view key, std::string_view value) {
  if (key.empty()) return Refusal(why::kKeyEmpty);
  if (HasBreak(key)) return Refusal(why::kKeyHasBreak);
  const std::string line = std::string(key) + "=";
  const std::optional<KeyLine> parsed = ParseKeyLine(line);
  if (!parsed || parsed->key != key) {
    return Refusal(why::kKeyMisread);
  }
  if (HasBreak(value)) return Refusal(why::kValueHasBreak);
  if (!IsUtf8(key)) return Refusal(why::kKeyNotUtf8);
  if (!IsUtf8(value)) return Refusal(why::kValueNotUtf8(std::string(key)));
  return Success();
}

// Quotes are added when reading would strip something else.
std::string KeyLineText(std::string_view key, std::string_view value) {
  std::string line = std::string(key).append("=");
  if (ParseKeyLine(line + std::string(value))->value == value) return line.append(value);
  return line.append("\"").append(value).append("\"");
}

// Calls `visit(lines, name)` for every section; the lines include the header.
template <typename Visit>
void VisitSections(const ProfileEditor& editor, Visit visit) {
  std::optional<LineRange> section;
  std::string_view name;
  ProfileLineReader reader = editor.Lines();
  std::size_t number = 0;
  for (std::string_view line; reader.Next(&line); ++number) {
    const std::optional<std::string_view> header = editor.HeaderOf(line);
    if (!header) continue;
    if (section) visit(LineRange{section->first, number}, name);
    section = {number, editor.line_count()};
    name = *header;
  }
  if (section) visit(*section, name);
}

std::vector<LineRange> FindSections(const ProfileEditor& editor, const std::vector<std::string>& wanted) {
  std::unordered_set<std::string> upper_names;
  for (const std::string& name : wanted) upper_names.insert(UpperCase(name));
  std::vector<LineRange> sections;
  VisitSections(editor, [&](const LineRange& lines, std::string_view name) {
    if (upper_names.contains(UpperCase(name))) sections.push_back(lines);
  });
  return sections;
}

std::vector<LineRange> FindSections(const ProfileEditor& editor, std::string_view wanted) {
  return FindSections(editor, std::vector<std::string>{std::string(wanted)});
}

// The line of the key, or the empty range behind the last line of the section that is not blank.
LineRange PlaceOfKey(const ProfileEditor& editor, const LineRange& section, std::string_view key) {
  const std::string upper_key = UpperCase(key);
  std::size_t behind_last = section.first + 1;
  ProfileLineReader reader = editor.Lines();
  std::size_t number = 0;
  for (std::string_view line; number < section.last && reader.Next(&line); ++number) {
    if (number <= section.first) continue;
    const std::optional<KeyLine> parsed = ParseKeyLine(line);
    if (parsed && UpperCase(parsed->key) == upper_key) return {number, number + 1};
    if (line.find_first_not_of(" \t") != std::string_view::npos) behind_last = number + 1;
  }
  return {behind_last, behind_last};
}

// To either reading.
bool HasHeader(std::string_view body_line) {
  ProfileLineReader reader(body_line);
  for (std::string_view line; reader.Next(&line);) {
    if (KeyHeaderName(line)) return true;
  }
  return IsHeaderLine(body_line);
}

Result SplitBody(std::string_view body, std::string_view separator, std::vector<std::string>* lines) {
  if (!IsUtf8(body)) return Refusal(why::kBodyNotUtf8);
  if (body.find('\0') != std::string_view::npos) return Refusal(why::kBodyHasNul);
  ProfileLineReader reader(body, ProfileEditor::kNewSeparator);
  for (std::string_view line; reader.Next(&line);) {
    if (HasHeader(line)) return Refusal(why::kBodyHasHeader);
    if (separator != ProfileEditor::kNewSeparator && HasBreak(line)) {
      return Refusal(why::kBodyLineHasBreak);
    }
    lines->emplace_back(line);
  }
  if (lines->back().empty()) lines->pop_back();
  return Success();
}

// Where the lines of a section to be arranged are: the first header spelled like that, and the body that
// belongs to the name however it is spelled.
class SectionIndex {
 public:
  explicit SectionIndex(const ProfileEditor& editor) : editor_(editor) {
    VisitSections(editor, [this](const LineRange& lines, std::string_view name) {
      names_.emplace_back(name);
      headers_.try_emplace(names_.back(), lines.first);
      bodies_.try_emplace(UpperCase(name), LineRange{lines.first + 1, lines.last});
    });
  }

  const std::vector<std::string>& names() const { return names_; }

  // The bytes of the sections in this order, each name once, without empty lines.
  std::string Arranged(const std::vector<std::string>& names) {
    std::string bytes(editor_.Mark());
    const std::string separator = editor_.NewSeparatorBytes();
    for (const std::string& name : names) {
      const auto body = bodies_.find(UpperCase(name));
      if (body == bodies_.end()) continue;  // written already
      bytes.append(editor_.LineBytes(headers_.at(name))).append(separator);
      for (std::size_t number = body->second.first; number < body->second.last; ++number) {
        const std::string_view line = editor_.LineBytes(number);
        if (!line.empty()) bytes.append(line).append(separator);
      }
      bodies_.erase(body);
    }
    return bytes;
  }

 private:
  const ProfileEditor& editor_;
  std::vector<std::string> names_;
  std::unordered_map<std::string, std::size_t> headers_;
  std::unordered_map<std::string, LineRange> bodies_;
};

}  // namespace

Result SetKey(std::string_view section, std::string_view key, std::string_view value, std::string* bytes) {
  for (const Result& check : {CheckFile(*bytes), CheckSection(section), CheckKeyAndValue(key, value)}) {
    if (!check.ok()) return check;
  }
  const std::string line = KeyLineText(key, value);
  if (KeyHeaderName(line)) return Refusal(why::kKeyLooksLikeHeader);
  ProfileEditor editor(*bytes, ProfileEditor::Reading::kKeys);
  Result result;
  if (const std::vector<LineRange> found = FindSections(editor, section); !found.empty()) {
    const LineRange place = PlaceOfKey(editor, found.front(), key);
    result = editor.ReplaceLines(place.first, place.last, {line});
  } else if (result = CheckNewSection(section); result.ok()) {
    result = editor.ReplaceLines(editor.line_count(), editor.line_count(), {HeaderText(section), line});
  }
  *bytes = editor.TakeBytes();
  return result;
}

Result RemoveSections(const std::vector<std::string>& sections, std::string* bytes) {
  ProfileEditor editor(*bytes, ProfileEditor::Reading::kSections);
  if (Result check = CheckSections(*bytes, editor); !check.ok()) return check;
  const std::vector<LineRange> found = FindSections(editor, sections);
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
  ProfileEditor editor(*bytes, ProfileEditor::Reading::kSections);
  if (Result check = CheckSections(*bytes, editor); !check.ok()) return check;
  std::vector<std::string> lines;
  if (Result split = SplitBody(body, editor.separator(), &lines); !split.ok()) return split;
  Result result;
  if (const std::vector<LineRange> found = FindSections(editor, section); !found.empty()) {
    result = editor.ReplaceLines(found.front().first + 1, found.front().last, lines);
  } else if (result = CheckNewSection(section); result.ok()) {
    lines.insert(lines.begin(), HeaderText(section));
    result = editor.ReplaceLines(editor.line_count(), editor.line_count(), lines);
  }
  *bytes = editor.TakeBytes();
  return result;
}

Result RenameFirstSection(std::string_view old_name, std::string_view new_name, std::string* bytes) {
  if (Result check = CheckNewSection(new_name); !check.ok()) return check;
  ProfileEditor editor(*bytes, ProfileEditor::Reading::kSections);
  if (Result check = CheckSections(*bytes, editor); !check.ok()) return check;
  const std::vector<LineRange> found = FindSections(editor, old_name);
  if (found.empty() || !editor.has_separators()) return Success();
  if (Result check = CheckFile(*bytes); !check.ok()) return check;
  editor.RenewSeparators();
  Result result = editor.ReplaceLine(found.front().first, HeaderText(new_name));
  *bytes = editor.TakeBytes();
  return result;
}

Result ArrangeSections(const SectionOrder& order, std::string* bytes) {
  const ProfileEditor editor(*bytes, ProfileEditor::Reading::kSections);
  if (!editor.has_separators()) return Success();
  if (Result check = CheckSections(*bytes, editor); !check.ok()) return check;
  SectionIndex index(editor);
  const std::vector<std::string> names = order(index.names());
  if (names.empty()) return Success();
  if (Result check = CheckFile(*bytes); !check.ok()) return check;
  std::string arranged = index.Arranged(names);
  std::optional<std::string> ansi;
  if (editor.encoding() == ProfileEncoding::kUtf16) ansi = AnsiFromText(DecodeProfile(arranged));
  *bytes = ansi ? *ansi : arranged;
  return Success();
}

}  // namespace quendle::platform
