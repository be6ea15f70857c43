// A file's bytes beside their text: lines are found in the text and replaced in the bytes, so that lines
// which a change does not concern keep their bytes, whatever the conversion to text makes of them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ini/profile_document.h"
#include "platform/ini/profile_lines.h"
#include "reasons/result.h"

namespace quendle::platform {

struct LineRange {
  std::size_t first;
  std::size_t last;  // the one behind it
};

class ProfileEditor {
 public:
  static constexpr std::string_view kNewSeparator = "\r\n";

  // By which of the readings of platform/ini/profile_lines.h the lines and headers are told.
  enum class Reading { kKeys, kSections };

  ProfileEditor(std::string_view bytes, Reading reading);

  ProfileEncoding encoding() const { return encoding_; }
  const std::string& text() const { return text_; }
  std::string_view separator() const {
    return separator_;
  }  // of whole sections; kNewSeparator when none is there
  std::size_t line_count() const { return lines_.size(); }
  bool has_separators() const { return line_count() > 1; }

  // The lines of text(), and the name in one that is a header.
  ProfileLineReader Lines() const;
  std::optional<std::string_view> HeaderOf(std::string_view line) const;

  // In the file's encoding: what stands before the first line, one line without its break, and kNewSeparator.
  std::string_view Mark() const { return std::string_view(bytes_).substr(0, lines_.front().begin); }
  std::string_view LineBytes(std::size_t number) const;
  std::string NewSeparatorBytes() const;

  // Lines which the code page cannot hold turn a file in it into UTF-16. That is refused, and nothing changed,
  // when the old bytes cannot be decoded or seem to be UTF-8.
  //
  // ReplaceLines puts new lines in place of the lines from `first` to before `last`, which are ended like the
  // line before `last`, or by the separator where that line has no end. ReplaceLine leaves the end of its line
  // as it is.
  Result ReplaceLines(std::size_t first, std::size_t last, const std::vector<std::string>& lines);
  Result ReplaceLine(std::size_t number, const std::string& line);

  void RemoveLines(const std::vector<LineRange>& ranges);

  // Puts kNewSeparator between the lines.
  void RenewSeparators();

  std::string TakeBytes();

 private:
  Result Encode(const std::string& text, std::string* encoded);
  Result TurnIntoUtf16();
  void FindLines(std::size_t begin);
  ProfileLineReader ReaderOf(std::string_view text) const;
  std::size_t BeginOf(std::size_t number) const;
  std::string BreakBefore(std::size_t number) const;

  struct Line {
    std::size_t begin;
    std::size_t end;  // without the break
  };

  std::string bytes_;
  std::string text_;
  Reading reading_;
  ProfileEncoding encoding_;
  std::string_view separator_;
  std::vector<Line> lines_;
};

}  // namespace quendle::platform
