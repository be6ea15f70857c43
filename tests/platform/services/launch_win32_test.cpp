#include "platform/services/launch.h"
#include "platform/text/wide_win32.h"
#include "support/recorder.h"

namespace quendle::platform {
namespace {

// A type of files for the time of a test.
class FileType {
 public:
  FileType(const std::string& ending, const std::string& command)
      : ending_(L"." + WideFromText(ending)), type_(WideFromText(ending)) {
    is_known =
        Set(ending_, WideFromText(ending)) && Set(type_ + L"\\shell\\open\\command", WideFromText(command));
  }
  ~FileType() {
    RegDeleteTreeW(HKEY_CLASSES_ROOT, ending_.c_str());
    RegDeleteTreeW(HKEY_CLASSES_ROOT, type_.c_str());
  }
  FileType(const FileType&) = delete;
  FileType& operator=(const FileType&) = delete;

  bool is_known = false;

 private:
  static bool Set(const std::wstring& key, const std::wstring& value) {
    const auto size = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
    return RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, REG_SZ, value.c_str(), size) ==
           ERROR_SUCCESS;
  }

  std::wstring ending_;
  std::wstring type_;
};

GTEST_TEST(LaunchWin32, FilesAreOpenedByTheProgramOfTheirType) {
  const test::TempFolder folder;
  test::Recorder opener(folder / "opener.exe");
  const FileType type("quendle-test", "\"" + folder / "opener.exe" + "\" \"%1\"");
  if (!type.is_known) GTEST_SKIP() << "types of files are not this user's to set";
  const std::string file = folder / "a b & 表.quendle-test";
  test::WriteFile(file, "x");
  const Result opened = OpenWithDesktop(file, folder.path());
  ASSERT_TRUE(opened.ok()) << opened.reason;
  EXPECT_EQ(opener.Take(), "1\n" + file + "\n");
  EXPECT_EQ(OpenWithDesktop(folder / "none.quendle-test", "").code, Code::kNotFound);
}

GTEST_TEST(LaunchWin32, NothingElseIsStartedUnderTheName) {
  const test::TempFolder folder;
  test::Recorder program(folder / "readme.exe");
  test::WriteFile(folder / "readme", "x");
  (void)OpenWithDesktop(folder / "readme", folder.path());
  EXPECT_EQ(program.Take(std::chrono::milliseconds(300)), "not started");

  test::WriteFile(folder / "run.BAT", "");
  for (const char* name : {"run.BAT", "readme.exe.", "nul"}) {
    EXPECT_EQ(StartProgram({folder / name}).code, Code::kRefused) << name;
  }
}

}  // namespace
}  // namespace quendle::platform
