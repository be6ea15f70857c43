#include "cli/terminal_user.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "base/display.h"
#include "base/modString.h"
#include "files/file_manager.h"
#include "platform/process/process.h"
#include "platform/services/launch.h"
#include "platform/text/unicode.h"

namespace quendle {
namespace {

constexpr std::chrono::seconds kQuietTime{1};
constexpr std::chrono::milliseconds kBetweenLines{200};

//   1536 => "1.5 KiB"    12 => "12 B"
std::string SizeText(double bytes) {
  constexpr std::array<const char*, 5> kUnits = {"B", "KiB", "MiB", "GiB", "TiB"};
  std::size_t unit = 0;
  while (bytes >= 1024 && unit + 1 < kUnits.size()) {
    bytes /= 1024;
    ++unit;
  }
  char text[32];
  std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", bytes, kUnits[unit]);
  return text;
}

//   => "1.2 MiB of 4.0 GiB, 300.0 MiB/s", without the total where it is not known
std::string AmountText(const platform::FileProgress& progress, double seconds) {
  const double done = static_cast<double>(progress.bytes_done);
  std::string text = SizeText(done);
  if (progress.bytes_total > 0) text += " of " + SizeText(static_cast<double>(progress.bytes_total));
  return text + ", " + SizeText(done / seconds) + "/s";
}

void WarnUnlessOpened(const std::string& path, const platform::Result& opened) {
  if (opened.ok()) return;
  const std::string reason = Sentence(opened.reason, Language::kEnglish);
  TerminalUser::Warn(ForDisplay(path + ": it is not opened: " + reason));
}

// Whatever an archive makes its library say is shown line by line, so that it can neither move the cursor nor
// pass for a line of the program's own results.
void WarnOfLines(const std::string& text, bool is_shown_so = false) {
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find("\r\n", begin), text.size());
    const std::string line = text.substr(begin, end - begin);
    TerminalUser::Warn(is_shown_so ? line : ForDisplay(line));
    begin = end + 2;
  }
}

}  // namespace

UserInterface::OverwriteAnswer TerminalUser::AskOverwrite(const platform::FileSide&,
                                                          const platform::FileSide&) {
  return OverwriteAnswer::kNobody;
}

bool TerminalUser::AskMakeFolder(const std::string&) {
  return false;
}

bool TerminalUser::AskDelete(const std::string&) {
  return false;
}

std::optional<std::string> TerminalUser::AskPassword(const std::string&, bool) {
  return std::nullopt;
}

bool TerminalUser::AskProceed(const Reason& question) {
  WarnOfLines(Sentence(question, Language::kEnglish) + ": no");
  return false;
}

void TerminalUser::ShowMessage(MessageKind, const std::string& text) {
  WarnOfLines(text, true);
}

void TerminalUser::ShowExtractionLog(const std::string& text) {
  WarnOfLines(text);
}

bool TerminalUser::ShowProgress(const platform::FileProgress& progress, bool simple) {
  if (platform::InterruptRequested()) return false;
  if (columns_ == 0) return true;
  const Clock::time_point now = Clock::now();
  if (!running_) begin_ = now;
  running_ = true;
  if (now - begin_ < kQuietTime || now - shown_ < kBetweenLines) return true;
  shown_ = now;
  line_shown_ = true;
  std::string line = AmountText(progress, std::chrono::duration<double>(now - begin_).count());
  // A line that wraps could not be taken back.
  const int left = columns_ - 3 - static_cast<int>(line.size());
  const std::string name = simple ? "" : ForDisplay(SplitPath(progress.path).name);
  line.append("  ").append(platform::EndOfColumns(name, std::max(left, 0)));
  std::fprintf(stderr, "\r\x1b[K%s", line.c_str());
  std::fflush(stderr);
  return true;
}

void TerminalUser::EndProgress() {
  if (line_shown_) std::fputs("\r\x1b[K", stderr);
  running_ = line_shown_ = false;
}

void TerminalUser::SetBusy(bool) {}  // the terminal shows by itself that the program has not ended

void TerminalUser::ShowInFileManager(const std::string& folder, const FileManager& manager) {
  WarnUnlessOpened(folder, OpenFolderWithFiler(manager, folder));
}

void TerminalUser::OpenFile(const std::string& path, const std::string& untrusted_folder) {
  WarnUnlessOpened(path, platform::OpenWithDesktop(path, untrusted_folder));
}

void TerminalUser::Warn(const std::string& text) {
  std::fflush(stdout);
  std::fprintf(stderr, "quendle: %s\n", text.c_str());
  std::fflush(stderr);
}

}  // namespace quendle
