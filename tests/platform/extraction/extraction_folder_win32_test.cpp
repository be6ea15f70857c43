#include "platform/text/wide_win32.h"
#include "support/extraction.h"

namespace quendle::platform {
namespace {

using test::ExtractionFolderTest;
using Replace = ExtractionFolder::Replace;

TEST_F(ExtractionFolderTest, FilesGetTheMarkOfTheirArchive) {
  const std::string mark = "[ZoneTransfer]\r\nZoneId=3\r\n";
  test::WriteFile(outside_ / "a.zip", "zip");
  test::WriteFile(outside_ / "a.zip:Zone.Identifier", mark);
  folder_->MarkLike(outside_ / "a.zip");
  const EntryAttributes attributes{EntryTime{1'000'000'000, 0}, false};
  EXPECT_TRUE(Extract("d/f", "x", Replace::kNothing, attributes).ok());
  EXPECT_EQ(test::ReadFile(At("d/f:Zone.Identifier")), mark);
  ExtractionFolder::Occupant occupant;
  ASSERT_TRUE(folder_->Look("d/f", &occupant).ok());
  EXPECT_EQ(occupant.version.write_time, 1'000'000'000);
  folder_->MarkLike(outside_ / "victim");
  EXPECT_TRUE(Extract("d/g", "x").ok());
  EXPECT_EQ(test::ReadFile(At("d/g:Zone.Identifier")), "");
  // Wine has files of these names, which the library's removal of a folder takes for paths with a drive.
  for (const std::string& stream : {outside_ / "a.zip:Zone.Identifier", At("d/f:Zone.Identifier")})
    EXPECT_NE(DeleteFileW(SystemPath(stream).c_str()), 0);
}

TEST_F(ExtractionFolderTest, HiddenOnlyUntilTheyAreComplete) {
  const auto attributes_of_first = [this] {
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((SystemPath(destination_.path()) + L"\\*").c_str(), &found);
    while ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 && FindNextFileW(search, &found) != 0) {
    }
    FindClose(search);
    return found.dwFileAttributes;
  };
  ASSERT_TRUE(folder_->BeginFile("f", {}).ok());
  const bool was_hidden = (attributes_of_first() & FILE_ATTRIBUTE_HIDDEN) != 0;
  EXPECT_TRUE(folder_->CommitFile("f", {}, Replace::kNothing).ok());
  EXPECT_EQ(attributes_of_first() & FILE_ATTRIBUTE_HIDDEN, 0U);
  EXPECT_TRUE(was_hidden);
}

TEST_F(ExtractionFolderTest, NamesOfOtherLettersAreOne) {
  EXPECT_TRUE(Extract("Folder/Name.txt", "first").ok());
  EXPECT_EQ(Look("folder/NAME.TXT"), Taken::kOurs);
  EXPECT_EQ(Extract("folder/NAME.TXT", "second").code, Code::kExists);
  for (const char* name : {"con", "a:b", "a.", "d/nul.txt"})
    EXPECT_EQ(Extract(name, "x").code, Code::kRefused) << name;
  folder_.reset();
  EXPECT_EQ(Inside(), "Folder/ Folder/Name.txt=first");
}

}  // namespace
}  // namespace quendle::platform
