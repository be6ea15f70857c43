// A file's bytes beside their text: lines are found in the text and replaced in the bytes, so that lines
// which a change does not concern keep their bytes, whatever the conversion to text makes of them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/result.h"

namespace quendle::platform {

struct LineRange {
  std::size_t first;
  std::size_t last;  // the one behind it
};

class ProfileEditor {
 public:
  static constexpr std::string_view kNewSeparator = "\r\n";

  explicit ProfileEditor(std::string_view bytes);

  bool is_utf16() const { return is_utf16_; }
  const std::string& text() const { return text_; }
  std::string_view separator() const { return separator_; }
  std::size_t line_count() const { return line_begins_.size() - 1; }
  bool has_separators() const { return line_count() > 1; }

  // In the file's encoding: what stands before the first line, one line without its separator, and
  // kNewSeparator.
  std::string_view Mark() const { return std::string_view(bytes_).substr(0, line_begins_.front()); }
  std::string_view LineBytes(std::size_t number) const;
  std::string NewSeparatorBytes() const;

  // Lines which the code page cannot hold turn the file into UTF-16. That is refused, and nothing changed,
  // when the old bytes cannot be decoded.
  //
  // ReplaceLines puts new lines, each with a separator at its end, in place of the lines from `first` to
  // before `last`. ReplaceLine leaves the end of its line as it is.
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

  std::string bytes_;
  std::string text_;
  bool is_utf16_;
  std::string_view separator_;
  std::vector<std::size_t> line_begins_;  // and where the last line ends
};

}  // namespace quendle::platform
