#include <chrono>
#include <thread>

#include "platform/services/keyboard.h"
#include "platform/services/running_copy.h"
#include "platform/text/wide_win32.h"
#include "support/outcome.h"
#include "support/scoped_variable.h"

namespace quendle::platform {
namespace {

constexpr const char* kKeyVariable = "QUENDLE_TEST_KEY";

std::string OwnKey() {
  return "running copy of " + std::to_string(GetCurrentProcessId());
}

bool IsFirst(const std::string& key, std::unique_ptr<RunningCopy>* copy) {
  EXPECT_TRUE(test::Succeeds(RunningCopy::Claim(key, {}, copy)));
  return *copy != nullptr;
}

HWND WindowOf(const std::string& key) {
  return FindWindowW(L"STATIC", WideFromText(key).c_str());
}

// The test program itself, in which the first copy with a window that is an icon lives until it is ended.
class OtherProcess {
 public:
  explicit OtherProcess(const std::string& key) {
    const test::ScopedVariable variable(kKeyVariable, key);
    std::wstring program(32768, L'\0');
    GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
    std::wstring line = L"x --gtest_also_run_disabled_tests --gtest_filter=RunningCopyWin32.DISABLED_LivesOn";
    STARTUPINFOW how = {};
    how.cb = sizeof how;
    PROCESS_INFORMATION started;
    if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &how,
                       &started) == 0) {
      return;
    }
    CloseHandle(started.hThread);
    process_ = Handle(started.hProcess);
    for (int i = 0; i < 1000 && WindowOf(key) == nullptr; ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  ~OtherProcess() { Kill(); }

  void Kill() {
    if (!process_.ok()) return;
    TerminateProcess(process_.get(), 1);
    WaitForSingleObject(process_.get(), INFINITE);
    process_.Close();
  }

 private:
  Handle process_;
};

GTEST_TEST(RunningCopyWin32, DISABLED_LivesOn) {
  const char* key = std::getenv(kKeyVariable);
  std::unique_ptr<RunningCopy> copy;
  if (key == nullptr || !IsFirst(key, &copy)) return;
  CreateWindowExW(0, L"STATIC", WideFromText(key).c_str(), WS_OVERLAPPEDWINDOW | WS_VISIBLE | WS_MINIMIZE, 0,
                  0, 200, 100, nullptr, nullptr, nullptr, nullptr);
  for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) DispatchMessageW(&message);
}

GTEST_TEST(RunningCopyWin32, TheFirstOnesWindowComesToTheFront) {
  if (!HasDisplay()) GTEST_SKIP() << "no window can be shown";
  const std::string key = OwnKey();
  OtherProcess other(key);
  const HWND window = WindowOf(key);
  ASSERT_NE(window, nullptr);
  ASSERT_TRUE(IsIconic(window));
  std::unique_ptr<RunningCopy> copy;
  EXPECT_FALSE(IsFirst(key, &copy));
  for (int i = 0; i < 500 && IsIconic(window); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_FALSE(IsIconic(window));
  EXPECT_EQ(GetForegroundWindow(), window);

  other.Kill();
  EXPECT_TRUE(IsFirst(key, &copy)) << "what a crash leaves behind";
}

GTEST_TEST(RunningCopyWin32, TheHandleIsSetUntilTheRequestIsTaken) {
  std::unique_ptr<RunningCopy> copy;
  std::unique_ptr<RunningCopy> second;
  ASSERT_TRUE(IsFirst(OwnKey(), &copy));
  const auto is_set = [&] {
    return WaitForSingleObject(reinterpret_cast<HANDLE>(copy->WaitHandle()), 0) == WAIT_OBJECT_0;
  };
  EXPECT_FALSE(is_set());
  EXPECT_FALSE(IsFirst(OwnKey(), &second));
  EXPECT_TRUE(is_set());
  EXPECT_TRUE(is_set());
  EXPECT_TRUE(copy->TakeRequest());
  EXPECT_FALSE(is_set());
}

}  // namespace
}  // namespace quendle::platform
