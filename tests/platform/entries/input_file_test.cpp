#include "platform/entries/input_file.h"

#include <chrono>
#include <filesystem>
#include <thread>

#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

std::string IdentityOf(const std::string& path) {
  std::unique_ptr<InputFile> file;
  return InputFile::Open(path, &file).ok() ? file->Identity() : "not opened";
}

GTEST_TEST(InputFile, ReadsAtAnyPositionUpToTheEnd) {
  const test::TempFolder folder;
  const std::string path = folder / "表 é.bin";
  test::WriteFile(path, "0123456789");
  std::unique_ptr<InputFile> file;
  ASSERT_TRUE(InputFile::Open(path, &file).ok());
  EXPECT_EQ(file->Size(), 10U);
  const struct {
    std::uint64_t position;
    std::size_t size;
    const char* bytes;
  } rows[] = {{0, 3, "012"}, {8, 2, "89"}, {8, 5, "89"}, {10, 1, ""}, {1ULL << 40, 1, ""}, {2, 0, ""}};
  for (const auto& row : rows) {
    std::string bytes(row.size, '\0');
    std::size_t got = 99;
    EXPECT_TRUE(file->ReadAt(row.position, bytes.data(), row.size, &got).ok());
    EXPECT_EQ(bytes.substr(0, got), row.bytes) << row.position;
  }
  std::filesystem::rename(test::FsPath(path), test::FsPath(folder / "moved"));  // it is in nobody's way
}

GTEST_TEST(InputFile, WhatIsNoFileHasAReason) {
  const test::TempFolder folder;
  std::unique_ptr<InputFile> file;
  EXPECT_EQ(InputFile::Open(folder.path(), &file).code, Code::kIsFolder);
  const Result missing = InputFile::Open(folder / "none", &file);
  EXPECT_EQ(missing.code, Code::kNotFound);
  EXPECT_EQ(missing.path, folder / "none");
}

GTEST_TEST(InputFile, AnIdentityIsThatOfTheFileAsItIs) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a", "one");
  test::WriteFile(folder / "b", "one");
  const std::string before = IdentityOf(folder / "a");
  EXPECT_EQ(IdentityOf(folder / "a"), before);
  EXPECT_NE(IdentityOf(folder / "b"), before);
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  test::WriteFile(folder / "a", "two");
  EXPECT_NE(IdentityOf(folder / "a"), before);
}

}  // namespace
}  // namespace quendle::platform
