#include "platform/services/send_to.h"

#include "platform/text/wide_win32.h"
#include "support/temp_folder.h"

// They need the system's header before them.
#include <knownfolders.h>
#include <shlobj.h>

namespace quendle::platform {
namespace {

namespace fs = std::filesystem;

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
