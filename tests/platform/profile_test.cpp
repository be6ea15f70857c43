#include "platform/profile.h"

#include <chrono>
#include <fstream>
#include <thread>

#include "platform/entry_status.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;

std::string Read(const std::string& file, const std::string& section, const std::string& key,
                 std::size_t buffer_bytes = 1024) {
  return ReadProfileString(file, section, key, "<none>", buffer_bytes);
}

// Long enough for a parse of the file to be kept.
void LetItSettle() {
  std::this_thread::sleep_for(std::chrono::milliseconds(40));
}

GTEST_TEST(ReadProfile, CutsValuesBetweenCharacters) {
  const test::TempFolder folder;
  const std::string file = folder / "a.ini";
  std::string wide;
  for (int i = 0; i < 600; ++i) wide += "表";
  ASSERT_TRUE(WriteProfileString(file, "a", "narrow", std::string(2000, 'x')).ok());
  ASSERT_TRUE(WriteProfileString(file, "a", "wide", wide).ok());
  EXPECT_EQ(Read(file, "a", "narrow"), std::string(1023, 'x'));
  EXPECT_EQ(Read(file, "a", "wide"), wide.substr(0, 511 * std::string("表").size()));
  EXPECT_EQ(Read(file, "a", "wide", 4), "表");
  EXPECT_EQ(Read(file, "a", "none", 4), "<no");
  EXPECT_EQ(Read(file, "a", "wide", 0), "");
}

GTEST_TEST(ReadProfile, SeesWhatOthersWriteAtOnce) {
  const test::TempFolder folder;
  const std::string file = folder / "a.ini";
  const auto write_in_place = [&file](const std::string& bytes) {
    std::fstream(test::FsPath(file), std::ios::in | std::ios::out | std::ios::binary) << bytes;
  };
  test::WriteFile(file, "[a]\r\nk=0");
  for (int round = 1; round < 8; ++round) {
    if (round % 3 == 0) LetItSettle();
    EXPECT_EQ(Read(file, "a", "k"), std::to_string(round - 1));
    const std::string bytes = "[a]\r\nk=" + std::to_string(round);  // the size never changes
    if (round % 2 == 0) {
      write_in_place(bytes);
    } else {
      test::WriteFile(folder / "other", bytes);
      fs::rename(folder / "other", file);
    }
    EXPECT_EQ(Read(file, "a", "k"), std::to_string(round));
  }
  for (int round = 1000; round < 1300; ++round) {  // many times under one time stamp
    write_in_place("[a]\r\nk=" + std::to_string(round));
    ASSERT_EQ(Read(file, "a", "k"), std::to_string(round));
  }
  LetItSettle();
  EXPECT_EQ(Read(file, "a", "k"), "1299");
  ProfileParse before;
  ProfileParse now;
  EXPECT_TRUE(ReadProfile(file, &before).ok());
  write_in_place("[a]\r\nk=1299");
  EXPECT_TRUE(ReadProfile(file, &now).ok());
  EXPECT_EQ(now, before) << "it was only touched";
  fs::remove(file);
  EXPECT_EQ(Read(file, "a", "k"), "<none>");
}

GTEST_TEST(WriteProfile, ValuesComeBack) {
  const test::TempFolder folder;
  const std::string values[] = {"",        "plain",   " a",     "a\t",        "  ",     "\"a\"",  "'a'",
                                "\"",      "a=b;c",   "[a]",    "C:\\表\\能", "ソ[ー]", "ｱｲｳ",    "é",
                                "😀",       "\uEFFF",  "한국어", "\"a",        "Б ａ ⅲ", "\u00A5", "''",
                                "\" ' \"", "\u3000a", "\uFEFF", ";x",         "a\u301C"};
  for (const bool one_file : {true, false}) {
    int number = 0;
    for (const std::string& value : values) {
      const std::string name = std::to_string(++number);
      const std::string file = folder / (one_file ? "all.ini" : name);
      const std::string key = "機能" + name;
      ASSERT_TRUE(WriteProfileString(file, "設定ソ", key, value).ok()) << value;
      EXPECT_EQ(Read(file, "設定ソ", key), value);
    }
  }
  for (int number = 1; number <= static_cast<int>(std::size(values)); ++number) {
    EXPECT_EQ(Read(folder / "all.ini", "設定ソ", "機能" + std::to_string(number)), values[number - 1]);
  }
}

GTEST_TEST(WriteProfile, RefusesWhatWouldComeBackDifferent) {
  const test::TempFolder folder;
  const std::string ansi = "[a]\nk=1\n";
  const std::string big_endian = "\xFE\xFF\0[\0a\0]"s;
  const std::string misread = "[\xC3\x84]\n";  // UTF-8, which would stay misread as UTF-16
  const struct {
    std::string before;
    std::string section;
    std::string key;
    std::string value;
  } rows[] = {
      {ansi, "", "k", "v"},      {ansi, "a\n", "k", "v"},     {ansi, "a\0"s, "k", "v"},
      {ansi, "b]", "k", "v"},    {ansi, "a\xFF", "k", "v"},   {ansi, "a", "", "v"},
      {ansi, "a", "k\r", "v"},   {ansi, "a", "k\0"s, "v"},    {ansi, "a", "k=x", "v"},
      {ansi, "a", " k", "v"},    {ansi, "a", "k\t", "v"},     {ansi, "a", ";k", "v"},
      {ansi, "a", "k\xFF", "v"}, {ansi, "a", "k", "v\n[b]"},  {ansi, "a", "k", "\r"},
      {ansi, "a", "k", "v\0"s},  {ansi, "a", "k", "v\xFF"},   {ansi, "a", "[k", "v]"},
      {ansi, "a", "[k", "] "},   {ansi, " b", "k", "v"},      {ansi, "b\t", "k", "v"},
      {misread, "a", "k", "é"},  {big_endian, "a", "k", "v"}, {"\xFF[a]", "a", "k", "v"},
  };
  const std::string file = folder / "a.ini";
  for (const auto& row : rows) {
    test::WriteFile(file, row.before);
    const Result result = WriteProfileString(file, row.section, row.key, row.value);
    EXPECT_EQ(result.code, Code::kRefused) << row.section << row.key << row.value;
    EXPECT_EQ(result.path, file);
    EXPECT_NE(result.reason, "");
    EXPECT_EQ(test::ReadFile(file), row.before);
  }
  test::WriteFile(file, ansi);
  for (const std::string& body : {"[b]"s, "x=1\r\n[b]"s, "x=1\n[b]"s, "\r"s, "\xFF"s, "x\0"s}) {
    EXPECT_EQ(WriteProfileSection(file, "a", body).code, Code::kRefused) << body;
  }
  EXPECT_EQ(WriteProfileSection(file, "a]", "x=1").code, Code::kRefused);
  EXPECT_EQ(test::ReadFile(file), ansi);
  test::WriteFile(file, "[a]\r\n");
  for (const std::string& body : {"x\0"s, "x=1\n[b]"s, " [b] x"s, "[x\ny]"s}) {
    EXPECT_EQ(WriteProfileSection(file, "a", body).code, Code::kRefused) << body;
  }
  test::WriteFile(file, "\xFE\xFF[\0a\0]\0"s);
  EXPECT_EQ(WriteProfileSection(file, "a", "x=1").code, Code::kRefused);
  EXPECT_EQ(WriteProfileString(folder.path(), "a", "k", "v").code, Code::kIsFolder);
  EXPECT_EQ(WriteProfileString(folder / "none/a.ini", "a", "k", "v").code, Code::kNotFound);
  EXPECT_TRUE(DeleteProfileSection(folder / "none/a.ini", "a").ok());
}

GTEST_TEST(WriteProfile, LeavesTheFileAloneWhenNothingChanges) {
  const test::TempFolder folder;
  const std::string file = folder / "a.ini";
  const auto id = [&file] {
    EntryStatus status;
    EXPECT_TRUE(ReadStatus(file, &status).ok());
    return status.id;
  };
  test::WriteFile(file, "[a]\r\nk=v\r\n");
  fs::create_hard_link(file, folder / "keeps the number taken");
  const EntryId before = id();
  EXPECT_TRUE(WriteProfileString(file, "a", "k", "v").ok());
  EXPECT_TRUE(WriteProfileSection(file, "a", "k=v").ok());
  EXPECT_TRUE(DeleteProfileSection(file, "b").ok());
  EXPECT_EQ(id(), before);
  EXPECT_TRUE(WriteProfileString(file, "a", "k", "w").ok());
  EXPECT_NE(id(), before);
}

}  // namespace
}  // namespace quendle::platform
