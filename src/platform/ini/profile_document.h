// The text of an INI file with an index of its sections, as the profile functions read it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/ini/profile.h"

namespace quendle::platform {

// What a body line says about a key, as parts of that line: both without the blanks around them, the value
// without enclosing quotes.
//   " a = \" b \" " => "a", " b "    " ;a=1" => nothing    "a" => nothing    "a==b" => "a", "=b"
struct KeyLine {
  std::string_view key;
  std::string_view value;
};
std::optional<KeyLine> ParseKeyLine(std::string_view line);

// Told by a file's first bytes: the first of UTF-16's marks, the whole mark of UTF-8.
enum class ProfileEncoding { kAnsi, kUtf16, kUtf8 };
ProfileEncoding EncodingOf(std::string_view bytes);

// The text of a file without the mark. What cannot be decoded is U+FFFD, in the code page as TextFromAnsi says.
std::string DecodeProfile(std::string_view bytes);

using ProfileKeys = std::vector<std::pair<std::string_view, std::string_view>>;
using ProfileSectionVisitor = std::function<void(std::string_view name, const ProfileKeys& keys)>;

class ProfileDocument {
 public:
  // `bytes` is the whole file, below 1 GiB.
  explicit ProfileDocument(std::string_view bytes);

  const std::string& text() const { return text_; }  // without a mark

  // Is it text in the code page, which may be something else that was saved without a mark?
  bool IsAnsi() const { return is_ansi_; }

  bool HasSection(std::string_view section) const { return TextBehindHeader(section).has_value(); }

  // The value of the first key of that name in the first section of that name.
  std::optional<std::string_view> FindValue(std::string_view section, std::string_view key) const;

  // Calls `visit` with each section in file order, also those whose name is there already, with its keys and values as
  // they stand: not cut, and those too that a key of the same name hides. They are parts of the text.
  void VisitSections(const ProfileSectionVisitor& visit) const;

  // Each is empty when there is no problem, as platform/ini/profile_problems.h says: why
  // whole sections are not those that keys are read from, and why the bytes cannot be read at all.
  const Reason& SectionProblem() const { return section_problem_; }
  const Reason& DecodingProblem() const { return decoding_problem_; }

 private:
  std::optional<std::string_view> TextBehindHeader(std::string_view section) const;

  bool is_ansi_;
  std::string text_;
  Reason section_problem_;
  Reason decoding_problem_;
  // For each header a hash of its name above where it begins in the text, sorted: files of nothing but
  // headers have millions, and the first of equal names is found first.
  std::vector<std::uint64_t> headers_;
};

}  // namespace quendle::platform
