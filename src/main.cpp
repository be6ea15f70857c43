#include <cstdio>
#include <string>
#include <vector>

#include "base/display.h"
#include "cli/options.h"
#include "cli/start.h"
#include "cli/unattended.h"
#include "cli/windowed.h"
#include "core/modMain.h"
#include "platform/process/process.h"
#include "platform/services/keyboard.h"
#include "resources/version.h"

int main(int argc, char** argv) {
  using namespace quendle;
  platform::SecureProcess();
  platform::OpenStandardStreams();
  std::string problem;
  const auto options = ParseOptions(platform::ProgramArguments(argc, argv), &problem);
  if (!options) {
    std::fprintf(stderr, "quendle: %s\n%s", ForDisplay(problem).c_str(), UsageText().c_str());
    return kExitUsage;
  }
  if (options->help) {
    std::fputs(UsageText().c_str(), stdout);
    return kExitDone;
  }
  if (options->version) {
    std::printf("%s %s\n", kProductName, GetVersionString().c_str());
    return kExitDone;
  }
  if (IsWindowed(*options) && platform::HasDisplay()) return RunWindowed(*options);
  if (options->paths.empty()) {
    std::fprintf(stderr, "quendle: no path given, and no window can be shown here\n%s", UsageText().c_str());
    return kExitUsage;
  }
  return RunUnattended(*options);
}
