#include "platform/entries/paths.h"
#include "platform/process/process.h"
#include "platform/services/known_folders.h"
#include "platform/services/launch.h"
#include "platform/services/library.h"
#include "platform/services/send_to.h"
#include "platform/text/wide_win32.h"
#include "support/outcome.h"
#include "support/recorder.h"
#include "support/scoped_variable.h"
#include "support/version_images.h"

// They need the system's header before them.
#include <knownfolders.h>
#include <shlobj.h>

namespace quendle::platform {
namespace {

GTEST_TEST(KnownFolders, AreAbsoluteAndEndWithTheirName) {
  for (const std::string& folder : {CurrentFolder(), ExecutableFolder(), TemporaryFolder(), SettingsRoot(),
                                    StateFolder(), DownloadFolder()}) {
    EXPECT_TRUE(folder.size() > 3 && folder[1] == ':' && folder.back() != '\\') << folder;
    EXPECT_EQ(SystemPath(folder), L"\\\\?\\" + WideFromText(folder));
  }
  EXPECT_NE(SettingsRoot(), StateFolder());
  ASSERT_EQ(LibraryFolders().size(), 2U);
  EXPECT_TRUE(fs::exists(LibraryFolders()[1] + "\\kernel32.dll")) << LibraryFolders()[1];
  EXPECT_TRUE(fs::exists(ExecutableFolder()));
}

GTEST_TEST(KnownFolders, TheTemporaryOneIsSpelledOut) {
  const test::TempFolder folder;
  const std::string spelled = folder / "long folder name.ext";
  fs::create_directory(spelled);
  wchar_t short_path[MAX_PATH];
  ASSERT_GT(GetShortPathNameW(WideFromText(spelled).c_str(), short_path, MAX_PATH), 0U);
  for (const std::string& value : {spelled, spelled + "\\", TextFromWide(short_path)}) {
    const test::ScopedVariable variable("TMP", value);
    EXPECT_EQ(TemporaryFolder(), spelled) << value;
  }
}

GTEST_TEST(KnownFolders, VariablesHaveEveryCharacter) {
  const std::string value = "é表😀" + std::string(2 * MAX_PATH, 'x');
  SetEnvironmentVariableW(L"QUENDLE_TEST", WideFromText(value).c_str());
  EXPECT_EQ(EnvironmentVariable("QUENDLE_TEST"), value);
  SetEnvironmentVariableW(L"QUENDLE_TEST", L"");
  EXPECT_EQ(EnvironmentVariable("QUENDLE_TEST"), std::nullopt);
  SetEnvironmentVariableW(L"QUENDLE_TEST", nullptr);
  EXPECT_EQ(EnvironmentVariable("QUENDLE_TEST"), std::nullopt);
}

GTEST_TEST(Library, FailuresSayWhatIsWrongWithTheModule) {
  const test::TempFolder folder;
  test::WriteFile(folder / "32.dll", test::PeFile(32, {1, 2, 3, 4}));
  test::WriteFile(folder / "text.dll", "MZ, but no module");
  test::WriteFile(folder / "empty.dll", "");
  const struct {
    const char* name;
    Code code;
    const char* reason;
  } rows[] = {
      {"32.dll", Code::kFailed, "it is made for 32-bit programs, and this one is made for 64-bit programs"},
      {"text.dll", Code::kFailed, "it is damaged or no module"},
      {"empty.dll", Code::kFailed, "it is damaged or no module"},
      {"none.dll", Code::kNotFound, ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    std::unique_ptr<Library> library;
    const Result failure = Library::Load(folder / row.name, &library);
    EXPECT_EQ(failure.code, row.code);
    EXPECT_EQ(failure.path, folder / row.name);
    if (row.code == Code::kFailed) {
      EXPECT_EQ(failure.reason, row.reason);
    }
    EXPECT_EQ(library, nullptr);
  }
}

GTEST_TEST(Library, IsLoadedFromItsPathHoweverLong) {
  const test::TempFolder folder;
  wchar_t system[MAX_PATH];
  ASSERT_GT(GetSystemDirectoryW(system, MAX_PATH), 0U);
  const std::string module = TextFromWide(system) + "\\version.dll";
  const std::string deep = folder / std::string(200, 'd') + "\\" + std::string(100, 'e');
  fs::create_directories(SystemPath(deep));
  ASSERT_NE(CopyFileW(SystemPath(module).c_str(), SystemPath(deep + "\\v.dll").c_str(), TRUE), 0);
  for (const std::string& path : {module, deep + "\\v.dll"}) {
    std::unique_ptr<Library> library;
    const Result loaded = Library::Load(path, &library);
    ASSERT_TRUE(loaded.ok()) << path << ": " << loaded.reason;
    EXPECT_NE(library->Find<void (*)()>("GetFileVersionInfoSizeW"), nullptr);
    EXPECT_EQ(library->Find<void (*)()>("NoSuchFunction"), nullptr);
  }
  DeleteFileW(SystemPath(deep + "\\v.dll").c_str());
  RemoveDirectoryW(SystemPath(deep).c_str());
}

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
  ASSERT_TRUE(test::Succeeds(OpenWithDesktop(file, folder.path())));
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

std::string EntryPath() {
  PWSTR folder = nullptr;
  SHGetKnownFolderPath(FOLDERID_SendTo, KF_FLAG_CREATE, nullptr, &folder);
  const std::string path = TextFromWide(folder) + "\\Quendle.lnk";
  CoTaskMemFree(folder);
  return path;
}

GTEST_TEST(SendTo, OneEntryForThisProgram) {
  const fs::path entry = test::FsPath(EntryPath());
  if (fs::exists(entry)) GTEST_SKIP() << "whoever runs this has an entry already";
  const test::TempFolder folder;
  const std::string first = folder / "表 1\\Quendle.exe";
  const std::string moved = folder / "2\\quendle.exe";
  const std::string foreign = folder / "other.exe";
  for (const std::string& program : {first, moved, foreign}) test::WriteFile(program, "");

  EXPECT_TRUE(RemoveFromSendTo().ok()) << "there is none";
  for (const std::string& program : {first, moved}) {
    EXPECT_FALSE(IsInSendTo(program));
    EXPECT_TRUE(AddToSendTo(program).ok());
    EXPECT_TRUE(IsInSendTo(program));
  }
  EXPECT_FALSE(IsInSendTo(first));
  EXPECT_TRUE(RemoveFromSendTo().ok());
  EXPECT_FALSE(fs::exists(entry));

  ASSERT_TRUE(AddToSendTo(foreign).ok());
  EXPECT_EQ(AddToSendTo(first).code, Code::kExists) << "somebody else's entry of that name";
  EXPECT_TRUE(RemoveFromSendTo().ok());
  EXPECT_TRUE(IsInSendTo(foreign)) << "it stays";
  fs::remove(entry);
}

}  // namespace
}  // namespace quendle::platform
