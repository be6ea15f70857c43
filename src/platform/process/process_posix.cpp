#include "platform/process/process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <initializer_list>

namespace quendle::platform {
namespace {

volatile sig_atomic_t interrupted = 0;
int interrupt_pipe[2] = {-1, -1};

extern "C" void NoteInterrupt(int) {
  const int error = errno;
  // One byte is enough to wake who waits; the pipe never fills up.
  if (interrupted == 0 && interrupt_pipe[1] != -1) {
    const ssize_t ignored = write(interrupt_pipe[1], "", 1);
    static_cast<void>(ignored);  // without a waker the flag is still seen
  }
  interrupted = 1;
  errno = error;
}

}  // namespace

void SecureProcess() {}

void OpenStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // The lowest free number is this one: those below it are open by now.
    if (fcntl(stream, F_GETFD) == -1 && open("/dev/null", O_RDWR) != stream) _exit(1);
  }
}

std::vector<std::string> ProgramArguments(int argc, char** argv) {
  return {argv, argv + argc};
}

std::optional<std::string> EnvironmentVariable(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  return value;
}

void CatchInterrupts() {
  if (pipe2(interrupt_pipe, O_CLOEXEC | O_NONBLOCK) != 0) interrupt_pipe[0] = interrupt_pipe[1] = -1;
  struct sigaction action = {};
  action.sa_handler = NoteInterrupt;
  action.sa_flags = SA_RESTART;
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction current;
    // nohup and shells that start a job in the background ask for these to be ignored.
    if (sigaction(number, nullptr, &current) == 0 && current.sa_handler == SIG_IGN) continue;
    sigaction(number, &action, nullptr);
  }
  signal(SIGPIPE, SIG_IGN);  // a closed pipe must not end a move half way
  signal(SIGXFSZ, SIG_IGN);  // a file-size limit is an error like a full disk
}

bool InterruptRequested() {
  return interrupted != 0;
}

std::intptr_t InterruptHandle() {
  return interrupt_pipe[0];
}

int ErrorStreamColumns() {
  constexpr int kUsual = 80;
  struct winsize size = {};
  if (isatty(STDERR_FILENO) != 1) return 0;
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

}  // namespace quendle::platform
