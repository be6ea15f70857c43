// The text of an INI file with an index of its sections, as the profile functions read it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quendle::platform {

// What a body line says about a key, as parts of that line: both without the blanks around them, the value
// without enclosing quotes.
//   " a = \" b \" " => "a", " b "    ";a=1" => nothing    "a" => nothing    "a==b" => "a", "=b"
struct KeyLine {
  std::string_view key;
  std::string_view value;
};
std::optional<KeyLine> ParseKeyLine(std::string_view line);

class ProfileDocument {
 public:
  struct Section {
    std::size_t name_hash = 0;
    std::size_t header_begin = 0;  // in text()
    std::size_t body_begin = 0;
    std::size_t body_end = 0;
    std::size_t header_line = 0;  // counted from 0
    std::size_t end_line = 0;     // the next header's line, or the number of lines
  };

  // `bytes` is the whole file: ANSI code page or UTF-16, whose mark is not part of the text.
  explicit ProfileDocument(std::string_view bytes);

  const std::string& text() const { return text_; }
  std::string_view separator() const { return separator_; }
  std::size_t line_count() const { return line_count_; }

  // All sections of a name without regard to case, in file order.
  std::vector<const Section*> FindSections(std::string_view name) const;

  // The first of them; null when there is none.
  const Section* FindSection(std::string_view name) const;

  // The lines of a section's body.
  std::string_view BodyOf(const Section& section) const;

  // The value of the first key of that name in the first section of that name.
  std::optional<std::string_view> FindValue(std::string_view section, std::string_view key) const;

 private:
  void IndexSections();
  template <typename Visitor>
  void VisitSections(std::string_view name, Visitor visit) const;

  std::string text_;
  std::string_view separator_;
  std::size_t line_count_ = 0;
  std::vector<Section> sections_;  // by hash; in file order where hashes are equal
};

}  // namespace quendle::platform
