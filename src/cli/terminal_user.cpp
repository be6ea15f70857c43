#include "cli/terminal_user.h"

#include <array>
#include <cstdio>

#include "base/modString.h"
#include "cli/display.h"
#include "platform/launch.h"
#include "platform/process.h"

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

void WarnOf(const platform::Result& result) {
  if (!result.ok()) TerminalUser::Warn(ForDisplay(result.path) + ": " + result.reason);
}

}  // namespace

UserInterface::OverwriteAnswer TerminalUser::AskOverwrite(const platform::FileVersion&,
                                                          const platform::FileVersion&) {
  return OverwriteAnswer::kNoToAll;
}

bool TerminalUser::AskMakeFolder(const std::string&) {
  return false;
}

bool TerminalUser::AskDelete(const std::string&) {
  return false;
}

bool TerminalUser::ShowProgress(const platform::FileProgress& progress, bool simple) {
  if (platform::InterruptRequested()) return false;
  if (!show_progress_) return true;
  const Clock::time_point now = Clock::now();
  if (!running_) begin_ = now;
  running_ = true;
  if (now - begin_ < kQuietTime || now - shown_ < kBetweenLines) return true;
  shown_ = now;
  line_shown_ = true;
  const double seconds = std::chrono::duration<double>(now - begin_).count();
  const double done = static_cast<double>(progress.bytes_done);
  const std::string name = simple ? "" : ForDisplay(SplitPath(progress.path).name) + "  ";
  std::fprintf(stderr, "\r\x1b[K%s%s of %s, %s/s", name.c_str(), SizeText(done).c_str(),
               SizeText(static_cast<double>(progress.bytes_total)).c_str(), SizeText(done / seconds).c_str());
  std::fflush(stderr);
  return true;
}

void TerminalUser::EndProgress() {
  if (line_shown_) std::fputs("\r\x1b[K", stderr);
  running_ = line_shown_ = false;
}

void TerminalUser::SetBusy(bool) {}  // the terminal shows by itself that the program has not ended

void TerminalUser::OpenFolder(const std::string& folder) {
  WarnOf(platform::OpenWithDesktop(folder, folder));
}

void TerminalUser::OpenFile(const std::string& path, const std::string& untrusted_folder) {
  WarnOf(platform::OpenWithDesktop(path, untrusted_folder));
}

void TerminalUser::Warn(const std::string& text) {
  std::fflush(stdout);
  std::fprintf(stderr, "quendle: %s\n", text.c_str());
}

}  // namespace quendle
