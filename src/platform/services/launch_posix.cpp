#include "platform/process/system_failure.h"
#include "platform/services/launch.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "platform/entries/descriptor_posix.h"
#include "platform/entries/entry_status.h"
#include "platform/entries/path_names.h"
#include "platform/entries/paths.h"
#include "platform/services/launch_words.h"

namespace quendle::platform {
namespace {

// Runs in the second child: only calls that are safe after a fork. Returns when the program could not be
// started.
void BecomeProgram(char* const* arguments) {
  // This process ignores them; programs expect the usual.
  signal(SIGPIPE, SIG_DFL);
  signal(SIGXFSZ, SIG_DFL);
  const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
  if (null < 0 || dup2(null, STDIN_FILENO) < 0 || dup2(null, STDOUT_FILENO) < 0 ||
      dup2(null, STDERR_FILENO) < 0 || chdir("/") != 0) {
    return;
  }
  execv(arguments[0], arguments);
}

// Runs in the first child, which ends at once so that the program belongs to nobody and leaves no zombie
// here.
[[noreturn]] void StartDetached(char* const* arguments, int report) {
  setsid();
  const pid_t second = fork();
  if (second == 0) BecomeProgram(arguments);
  if (second <= 0) {
    const int error = errno;
    const ssize_t ignored = write(report, &error, sizeof error);
    static_cast<void>(ignored);  // without a reader there is nobody left to tell
  }
  _exit(0);
}

bool IsInside(const std::string& path, const std::string& folder) {
  return !folder.empty() && (path + "/").starts_with(folder.back() == '/' ? folder : folder + "/");
}

}  // namespace

Result StartProgram(const std::vector<std::string>& arguments) {
  std::vector<char*> raw;
  raw.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) raw.push_back(const_cast<char*>(argument.c_str()));
  raw.push_back(nullptr);

  int channel[2];  // closes by itself when the program starts, carries errno when it does not
  if (pipe2(channel, O_CLOEXEC) != 0) return LastSystemFailure(arguments.front());
  const pid_t first = fork();
  if (first == 0) StartDetached(raw.data(), channel[1]);
  const int fork_error = errno;
  close(channel[1]);
  int error = first < 0 ? fork_error : 0;
  if (first > 0) {
    Retried([&] { return waitpid(first, nullptr, 0); });
    if (Retried([&] { return read(channel[0], &error, sizeof error); }) != sizeof error) error = 0;
  }
  close(channel[0]);
  return error == 0 ? Success() : SystemFailure(error, arguments.front());
}

Result StartProgramFor(const std::string& program, const std::string& parameters, const std::string& value) {
  std::vector<std::string> arguments = LaunchWords(parameters, value);
  arguments.insert(arguments.begin(), program);
  return StartProgram(arguments);
}

Result OpenWithDesktop(const std::string& path, const std::string& untrusted_folder) {
  const std::string opener = FindOnSearchPath("xdg-open");
  if (opener.empty() || IsInside(WithRealFolder(opener), RealPath(untrusted_folder))) {
    return Failure(Code::kNotFound, path, why::kNoXdgOpen);
  }
  if (!IsTaken(path)) return SystemFailure(ENOENT, path);
  return StartProgram({opener, path});
}

}  // namespace quendle::platform
