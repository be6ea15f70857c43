#include "platform/process.h"

#include <signal.h>
#include <unistd.h>

#include <initializer_list>

namespace quendle::platform {
namespace {

volatile sig_atomic_t interrupted = 0;

extern "C" void NoteInterrupt(int) {
  interrupted = 1;
}

}  // namespace

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

bool IsErrorStreamTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

}  // namespace quendle::platform
