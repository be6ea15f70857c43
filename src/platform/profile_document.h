// The text of an INI file with an index of its sections, as the profile functions read it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/profile.h"

namespace quendle::platform {

// What a body line says about a key, as parts of that line: both without the blanks around them, the value
// without enclosing quotes.
//   " a = \" b \" " => "a", " b "    " ;a=1" => nothing    "a" => nothing    "a==b" => "a", "=b"
struct KeyLine {
  std::string_view key;
  std::string_view value;
};
std::optional<KeyLine> ParseKeyLine(std::string_view line);

// The text of a file: ANSI code page or UTF-16, whose mark is not part of the text.
std::string DecodeProfile(std::string_view bytes);

class ProfileDocument {
 public:
  // `bytes` is the whole file, below 1 GiB.
  explicit ProfileDocument(std::string_view bytes);

  std::string SectionProblem() const { return ""; }  // STANDIN
  const std::string& text() const { return text_; }  // without a mark

  bool HasSection(std::string_view section) const { return TextBehindHeader(section).has_value(); }

  // The value of the first key of that name in the first section of that name.
  std::optional<std::string_view> FindValue(std::string_view section, std::string_view key) const;

  // As VisitProfileSections says.
  void VisitSections(const ProfileSectionVisitor& visit) const;

 private:
  std::optional<std::string_view> TextBehindHeader(std::string_view section) const;

  std::string text_;
  std::string_view separator_;
  // For each header a hash of its name above where it begins in the text, sorted: files of nothing but
  // headers have millions, and the first of equal names is found first.
  std::vector<std::uint64_t> headers_;
};

}  // namespace quendle::platform
namespace quendle::platform { inline bool LooksLikeMisreadUtf8(std::string_view) { return false; } }  // STANDIN
