#include "platform/entries/entry_status.h"
#include "platform/entries/paths.h"
#include "platform/process/system_failure.h"
#include "platform/text/wide_win32.h"
#include "support/outcome.h"
#include "support/ways.h"

namespace quendle::platform {
namespace {

using test::Picture, test::WriteFile;

class FileOperationOnWindows : public test::WayTest {};

INSTANTIATE_TEST_SUITE_P(Ways, FileOperationOnWindows,
                         testing::Values(test::kMove, test::kMoveAcross, test::kCopy, test::kCopyAcross),
                         test::NameOfWay);

DWORD AttributesOf(const std::string& path) {
  return GetFileAttributesW(SystemPath(path).c_str());
}

void SetAttributes(const std::string& path, DWORD attributes) {
  EXPECT_NE(SetFileAttributesW(SystemPath(path).c_str(), attributes), 0);
}

TEST_P(FileOperationOnWindows, KeepsTimesAndAttributes) {
  constexpr DWORD kAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  WriteFile(At("S/d/f"), "f");
  WriteFile(At("S/d/e/empty"), "");
  fs::last_write_time(At("S/d/f"), fs::file_time_type::clock::now() - std::chrono::hours(30'000));
  SetAttributes(At("S/d/f"), kAttributes);
  EntryStatus before;
  EntryStatus folder_before;
  ASSERT_TRUE(ReadStatus(At("S/d/f"), &before).ok());
  ASSERT_TRUE(ReadStatus(At("S/d/e"), &folder_before).ok());
  ASSERT_TRUE(test::Succeeds(Run("S/d", "D/d")));
  EntryStatus after;
  ASSERT_TRUE(ReadStatus(At("D/d/f"), &after).ok());
  EXPECT_EQ(after.write_time, before.write_time);
  EXPECT_EQ(after.mode & kAttributes, before.mode & kAttributes);
  ASSERT_TRUE(ReadStatus(At("D/d/e"), &after).ok());
  EXPECT_EQ(after.write_time, folder_before.write_time);
  EXPECT_EQ(AttributesOf(At("D/d")) & FILE_ATTRIBUTE_HIDDEN, 0U);
  EXPECT_EQ(IsThere("S/d"), !GetParam().moves);
  EXPECT_TRUE(DeleteEntry(At("D/d"), {}, &observer_).ok()) << "also what is read-only";
}

TEST_P(FileOperationOnWindows, AYesReplacesWhatIsReadOnly) {
  WriteFile(At("S/f"), "new");
  WriteFile(At("D/f"), "old");
  SetAttributes(At("D/f"), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(Run("S/f", "D/f").code, Code::kExists);
  EXPECT_NE(AttributesOf(At("D/f")) & FILE_ATTRIBUTE_READONLY, 0U);
  observer_.answers = {FileOperationObserver::Answer::kYes};
  EXPECT_TRUE(test::Succeeds(Run("S/f", "D/f")));
  EXPECT_EQ(test::Listing(At("D")), "f=new");
  EXPECT_EQ(AttributesOf(At("D/f")) & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN), 0U);
}

// The names that the system would rewrite, and those that it takes for something else.
TEST_P(FileOperationOnWindows, NamesMeanWhatTheySay) {
  WriteFile(At("S/a"), "another");
  for (const std::string name : {"con", "a.", "a ", "nul.txt"}) {
    SCOPED_TRACE(name);
    Handle made(
        CreateFileW(SystemPath(At("S/" + name)).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    ASSERT_TRUE(made.ok());
    made.Close();
    EXPECT_TRUE(test::Succeeds(Run("S/" + name, "D/" + name)));
    EXPECT_TRUE(IsTaken(At("D/" + name)));
    EXPECT_EQ(IsTaken(At("S/" + name)), !GetParam().moves);
    EXPECT_FALSE(IsTaken(At("D/a")));
    EXPECT_TRUE(DeleteEntry(At("D/" + name), {}, &observer_).ok());
    EXPECT_EQ(DeleteEntry(At("S/" + name), {}, &observer_).ok(), !GetParam().moves);
  }
  for (const char* stream : {"S/a:s", "S/a::$DATA"})
    EXPECT_EQ(Run(stream, "D/x").code, Code::kRefused) << stream;
  EXPECT_EQ(Run("S/a", "D/x:s").code, Code::kRefused);
  EXPECT_EQ(DeleteEntry(At("S/a:s"), {}, &observer_).code, Code::kRefused);
  EXPECT_EQ(test::Listing(At("S")), "a=another");
  EXPECT_TRUE(Picture(At("D")).empty());
}

TEST_P(FileOperationOnWindows, PathsMayBeLong) {
  std::string deep = "S";
  for (int depth = 0; depth < 3; ++depth) {
    deep += "/" + std::string(120, 'd');
    ASSERT_TRUE(MakeFolder(At(deep)).ok());
  }
  EXPECT_TRUE(IsFolder(At(deep)));
  EXPECT_EQ(LongPath(At(deep)), At(deep));
  const std::string longest(255, L'f');
  Handle made(CreateFileW(SystemPath(At(deep + "/" + longest)).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                          0, nullptr));
  ASSERT_TRUE(made.ok());
  made.Close();
  const std::string top = std::string(120, 'd');
  const std::string too_long = English(SystemFailure(ERROR_FILENAME_EXCED_RANGE, "").reason);
  EXPECT_EQ(Run("S/" + top, "D/" + longest + "f").reason, too_long);
  EXPECT_TRUE(test::Succeeds(Run("S/" + top, "D/" + top)));
  EXPECT_TRUE(IsTaken(At("D" + deep.substr(1) + "/" + longest)));
  EXPECT_EQ(IsTaken(At("S/" + top)), !GetParam().moves);
  for (const char* side : {"S/", "D/"}) (void)DeleteEntry(At(side + top), {}, &observer_);
}

GTEST_TEST(MoveEntry, RespellsNames) {
  const test::TempFolder folder;
  WriteFile(folder / "file.txt", "f");
  WriteFile(folder / "folder/x", "x");
  test::ScriptedObserver observer;
  for (const char* name : {"File.TXT", "Folder"}) {
    EXPECT_TRUE(test::Succeeds(MoveEntry(LongPath(folder / name), folder / name, {}, &observer)));
    EXPECT_TRUE(IsTaken(folder / name));
  }
  EXPECT_EQ(Picture(folder.path()).size(), 3U);  // Wine keeps the spelling
}

GTEST_TEST(DeleteEntry, TakesNothingThatIsInUse) {
  const test::TempFolder folder;
  WriteFile(folder / "f", "f");
  test::ScriptedObserver observer;
  const Handle open(CreateFileW(SystemPath(folder / "f").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                OPEN_EXISTING, 0, nullptr));
  const Result result = DeleteEntry(folder / "f", {}, &observer);
  EXPECT_EQ(result.code, Code::kDenied);
  EXPECT_EQ(result.reason, "another program uses it");
  EXPECT_TRUE(IsTaken(folder / "f"));
}

GTEST_TEST(RecycleBin, TakesFilesAndRefusesWhatItWouldMistake) {
  const test::TempFolder folder;
  test::ScriptedObserver observer;
  WriteFile(folder / "a", "another");
  const std::string dotted = folder / "a.";
  Handle made(CreateFileW(SystemPath(dotted).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
  made.Close();
  const Result result = DeleteEntry(dotted, {.allow_undo = true}, &observer);
  EXPECT_FALSE(result.ok());
  EXPECT_TRUE(English(result.reason).starts_with("there is no trash")) << result.reason;
  EXPECT_TRUE(IsTaken(folder / "a") && IsTaken(dotted));
  EXPECT_TRUE(DeleteEntry(folder / "a", {.allow_undo = true}, &observer).ok());
  EXPECT_TRUE(!IsTaken(folder / "a") && IsTaken(dotted));
  EXPECT_TRUE(DeleteEntry(dotted, {}, &observer).ok());
}

}  // namespace
}  // namespace quendle::platform
