#include "archive/clsOutput.h"

#include "archive/archiver_table.h"
#include "base/modString.h"
#include "platform/text/unicode.h"

namespace quendle {
namespace {

constexpr const char* kLineBreak = "\r\n";

// Without the beginning of a UTF-8 character whose rest did not fit.
std::string WithoutHalfCharacter(std::string text) {
  std::size_t first = text.size();
  for (int back = 0; back < 3 && first > 0; ++back) {
    const auto byte = static_cast<unsigned char>(text[--first]);
    if ((byte & 0xC0) == 0x80) continue;
    if (byte >= 0xC0 && !platform::IsUtf8(text.substr(first))) text.resize(first);
    break;
  }
  return text;
}

// The text after that many line breaks; nothing where it has fewer lines.
std::string WithoutLines(const std::string& text, int lines) {
  std::size_t begin = 0;
  for (; lines > 0; --lines) {
    const std::size_t end = text.find(kLineBreak, begin);
    if (end == std::string::npos) return "";
    begin = end + 2;
  }
  return text.substr(begin);
}

}  // namespace

void clsOutput::BeginRun() {
  ARCTYPE = 0;
  FILENAME.clear();
  next_ = 0;
  RESFILECOUNT(0);
}

void clsOutput::SetOutputText(const std::string& text) {
  std::string output = text;
  NormalizeNewlines(&output);
  const std::size_t end = output.find('\0');
  const bool is_whole = end != std::string::npos;
  output = is_whole ? output.substr(0, end) : WithoutHalfCharacter(std::move(output));
  std::string& slot = texts_.at(next_);
  if (RESFILECOUNT() != 0) {
    output = WithoutLines(output, ArchiverRowOf(ARCTYPE).header_lines);
    slot = "Phase " + std::to_string(next_ + 1) + ":" + kLineBreak;
  }
  slot += output;
  if (!is_whole) slot.append(kLineBreak).append("...more");
  ++next_;
}

void clsOutput::ShowOutputWindow() {
  std::string shown = texts_.front();
  if (RESFILECOUNT() != 0) {
    shown = "Extracted from " + FILENAME + ":" + kLineBreak + kLineBreak + shown;
    for (std::size_t i = 1; i < texts_.size(); ++i) shown += kLineBreak + texts_[i];
  }
  user_.ShowExtractionLog(shown);
}

}  // namespace quendle
