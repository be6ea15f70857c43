#include "platform/running_copy.h"

#include <string_view>
#include <utility>

#include "platform/text_hash.h"
#include "platform/wide_win32.h"

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

std::wstring ProcessName(const std::string& name) {
  return WideFromText(name + "-process");
}

// A few bytes under a name in which the first copy says which process it is.
Handle TellProcess(const std::string& name) {
  Handle section(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(DWORD),
                                    ProcessName(name).c_str()));
  if (!section.ok()) return section;
  if (void* view = MapViewOfFile(section.get(), FILE_MAP_WRITE, 0, 0, sizeof(DWORD))) {
    *static_cast<DWORD*>(view) = GetCurrentProcessId();
    UnmapViewOfFile(view);
  }
  return section;
}

// 0 when it has not said it yet.
DWORD ProcessOfFirst(const std::string& name) {
  const Handle section(OpenFileMappingW(FILE_MAP_READ, FALSE, ProcessName(name).c_str()));
  if (!section.ok()) return 0;
  const void* view = MapViewOfFile(section.get(), FILE_MAP_READ, 0, 0, sizeof(DWORD));
  if (view == nullptr) return 0;
  const DWORD process = *static_cast<const DWORD*>(view);
  UnmapViewOfFile(view);
  return process;
}

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
  Handle request;
  Handle process;
};

RunningCopy::RunningCopy(std::unique_ptr<State> state) : state_(std::move(state)) {}
RunningCopy::~RunningCopy() = default;

Result RunningCopy::Claim(const std::string& key, std::unique_ptr<RunningCopy>* copy) {
  copy->reset();
  const std::string name = MeetingName(key);
  Handle request(CreateEventW(nullptr, TRUE, FALSE, WideFromText(name).c_str()));
  const DWORD error = GetLastError();
  if (!request.ok()) {
    if (error != ERROR_ACCESS_DENIED) return SystemFailure(static_cast<int>(error), name);
    return Failure(Code::kDenied, name, "another copy is running, but with other rights");
  }
  if (error != ERROR_ALREADY_EXISTS) {
    auto state = std::make_unique<State>();
    state->request = std::move(request);
    state->process = TellProcess(name);
    copy->reset(new RunningCopy(std::move(state)));
    return Success();
  }
  if (SetEvent(request.get()) == 0) return LastSystemFailure(name);
  request.Close();  // for a copy that begins now it would still be there when the first one is gone
  BringToFront(ProcessOfFirst(name));
  return Success();
}

std::intptr_t RunningCopy::WaitHandle() const {
  return reinterpret_cast<std::intptr_t>(state_->request.get());
}

bool RunningCopy::TakeRequest() const {
  return WaitForSingleObject(state_->request.get(), 0) == WAIT_OBJECT_0 &&
         ResetEvent(state_->request.get()) != 0;
}

}  // namespace quendle::platform
