#include "platform/process/system_failure.h"
#include "platform/services/running_copy.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/text/text_hash.h"
#include "platform/text/wide_win32.h"

namespace quendle::platform {
namespace {

// Copies that run for different users in one session do not meet.
std::string UserIdentity() {
  HANDLE opened = nullptr;
  if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened) == 0) return "";
  const Handle token(opened);
  DWORD size = 0;
  GetTokenInformation(token.get(), TokenUser, nullptr, 0, &size);
  std::string user(size, '\0');
  if (size == 0 || GetTokenInformation(token.get(), TokenUser, user.data(), size, &size) == 0) return "";
  const PSID identity = reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid;
  return {static_cast<const char*>(identity), GetLengthSid(identity)};
}

// Of this session: its windows are the only ones that could come to the front.
std::string MeetingName(const std::string& key) {
  return "Local\\quendle-" + HashText(UserIdentity() + "/" + key);
}

// Memory under a name in which the first copy says which process it is, and the others what they leave.
struct Board {
  static constexpr DWORD kRoom = 65536;

  DWORD process;  // 0 when it has not said it yet
  DWORD used;     // of the messages, which are only touched under the lock
  char messages[kRoom];
};

// Whoever comes first makes it, so that it is there before anybody can ask.
class SharedBoard {
 public:
  explicit SharedBoard(const std::string& name)
      : section_(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(Board),
                                    WideFromText(name + "-board").c_str())),
        lock_(CreateMutexW(nullptr, FALSE, WideFromText(name + "-lock").c_str())) {
    if (section_.ok())
      board_ = static_cast<Board*>(MapViewOfFile(section_.get(), FILE_MAP_WRITE, 0, 0, sizeof(Board)));
  }
  ~SharedBoard() {
    if (board_ != nullptr) UnmapViewOfFile(board_);
  }
  SharedBoard(const SharedBoard&) = delete;
  SharedBoard& operator=(const SharedBoard&) = delete;

  void TellProcess() {
    if (board_ != nullptr) board_->process = GetCurrentProcessId();
  }
  DWORD Process() const { return board_ == nullptr ? 0 : board_->process; }

  void Put(const std::vector<std::string>& paths) {
    Locked([&paths](Board* board) {
      const DWORD used = std::min(board->used, Board::kRoom);
      const std::string message = PackPaths(paths, Board::kRoom - used);
      std::copy(message.begin(), message.end(), board->messages + used);
      board->used = used + static_cast<DWORD>(message.size());
    });
  }
  LeftPaths Take() {
    LeftPaths paths;
    Locked([&paths](Board* board) {
      paths = UnpackPaths({board->messages, std::min(board->used, Board::kRoom)});
      board->used = 0;
    });
    return paths;
  }

 private:
  template <typename Action>
  void Locked(Action action) {
    constexpr DWORD kPatience = 1000;  // milliseconds, with a copy that has been suspended
    if (board_ == nullptr || !lock_.ok()) return;
    const DWORD waited = WaitForSingleObject(lock_.get(), kPatience);
    if (waited != WAIT_OBJECT_0 && waited != WAIT_ABANDONED) return;
    action(board_);
    ReleaseMutex(lock_.get());
  }

  Handle section_;
  Handle lock_;
  Board* board_ = nullptr;
};

struct WindowSearch {
  DWORD process;
  HWND found;
};

// Windows come in the order in which they lie on each other, so that the first is the one last worked with.
BOOL CALLBACK TakeMainWindow(HWND window, LPARAM parameter) {
  auto* search = reinterpret_cast<WindowSearch*>(parameter);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != search->process || !IsWindowVisible(window) || GetWindow(window, GW_OWNER) != nullptr)
    return TRUE;
  search->found = window;
  return FALSE;
}

// Found by the process: copies with other settings have windows of the same class and caption.
void BringToFront(DWORD process) {
  if (process == 0) return;
  AllowSetForegroundWindow(
      process);  // this process was started by the user, who looks at it; the first one was not
  WindowSearch search = {process, nullptr};
  EnumWindows(TakeMainWindow, reinterpret_cast<LPARAM>(&search));
  if (search.found == nullptr) return;
  if (IsIconic(search.found)) ShowWindowAsync(search.found, SW_RESTORE);  // it may be busy
  SetForegroundWindow(GetLastActivePopup(search.found));
}

}  // namespace

// Who has made the event is the first copy, and the system forgets it with the process. Being set is the request.
struct RunningCopy::State {
  explicit State(const std::string& name) : board(name) {}

  SharedBoard board;
  Handle request;
};

RunningCopy::RunningCopy(std::unique_ptr<State> state) : state_(std::move(state)) {}
RunningCopy::~RunningCopy() = default;

Result RunningCopy::Claim(const std::string& key, const std::vector<std::string>& paths,
                          std::unique_ptr<RunningCopy>* copy) {
  copy->reset();
  const std::string name = MeetingName(key);
  auto state = std::make_unique<State>(name);
  Handle request(CreateEventW(nullptr, TRUE, FALSE, WideFromText(name).c_str()));
  const DWORD error = GetLastError();
  state->request = std::move(request);
  if (!state->request.ok()) {
    if (error != ERROR_ACCESS_DENIED) return SystemFailure(static_cast<int>(error), name);
    return Failure(Code::kDenied, name, why::kRunsWithOtherRights);
  }
  if (error != ERROR_ALREADY_EXISTS) {
    state->board.TellProcess();
    copy->reset(new RunningCopy(std::move(state)));
    return Success();
  }
  if (!paths.empty()) state->board.Put(paths);
  if (SetEvent(state->request.get()) == 0) return LastSystemFailure(name);
  const DWORD process = state->board.Process();
  state.reset();  // for a copy that begins now the event would still be there when the first one is gone
  BringToFront(process);
  return Success();
}

std::intptr_t RunningCopy::WaitHandle() const {
  return reinterpret_cast<std::intptr_t>(state_->request.get());
}

bool RunningCopy::TakeRequest() {
  return WaitForSingleObject(state_->request.get(), 0) == WAIT_OBJECT_0 &&
         ResetEvent(state_->request.get()) != 0;
}

LeftPaths RunningCopy::TakeLeftPaths() {
  return state_->board.Take();
}

}  // namespace quendle::platform
