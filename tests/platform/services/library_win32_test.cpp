#include "platform/services/library.h"

#include "platform/text/wide_win32.h"
#include "support/temp_folder.h"
#include "support/version_images.h"

namespace quendle::platform {
namespace {

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
  std::filesystem::create_directories(SystemPath(deep));
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

}  // namespace
}  // namespace quendle::platform
