#include "platform/process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <initializer_list>

namespace quendle::platform {
namespace {

volatile sig_atomic_t interrupted = 0;

extern "C" void NoteInterrupt(int) {
  interrupted = 1;
}

}  // namespace

void OpenStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // The lowest free number is this one: those below it are open by now.
    if (fcntl(stream, F_GETFD) == -1 && open("/dev/null", O_RDWR) != stream) _exit(1);
  }
}

void CatchInterrupts() {
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

int ErrorStreamColumns() {
  constexpr int kUsual = 80;
  struct winsize size = {};
  if (isatty(STDERR_FILENO) != 1) return 0;
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

}  // namespace quendle::platform
