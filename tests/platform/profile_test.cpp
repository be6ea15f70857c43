#include "platform/profile.h"

#include <chrono>
#include <fstream>
#include <random>
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

// What a write leaves behind. "Set" is section, key, value; bodies and deletions name no key.
GTEST_TEST(WriteProfile, ChangesOnlyItsLines) {
  const test::TempFolder folder;
  const char* const kDelete = "<delete>";
  const char* const kBody = "<body>";
  const struct {
    std::string before;
    std::string section;
    std::string key;
    std::string value;
    std::string after;
  } rows[] = {
      {"", "a", "k", "v", "[a]\r\nk=v\r\n"},
      {"[a]\r\nk=1\r\n", "A", "K", "2", "[a]\r\nK=2\r\n"},
      {"[a]\r\nk=1\r\n\r\n \r\n[b]\r\nk=1\r\n", "a", "n", "2",
       "[a]\r\nk=1\r\nn=2\r\n\r\n \r\n[b]\r\nk=1\r\n"},
      {"[a]\r\n\r\n[b]\r\n", "a", "k", "v", "[a]\r\nk=v\r\n\r\n[b]\r\n"},
      {"[a]\nk=1\n", "a", "n", "2", "[a]\nk=1\nn=2\n"},
      {"[a]\rk=1", "a", "n", "2", "[a]\rk=1\rn=2\r"},
      {"[a]\nk=1", "a", "k", "2", "[a]\nk=2\n"},
      {"[a]\nk=1", "b", "k", "2", "[a]\nk=1\n[b]\nk=2\n"},
      {"[a]", "a", "k", "v", "[a]\r\nk=v\r\n"},
      {"junk", "a", "k", "v", "junk\r\n[a]\r\nk=v\r\n"},
      {"[a]\r\nk=1\r\nk=2\r\n[A]\r\nk=3\r\n", "a", "k", "4", "[a]\r\nk=4\r\nk=2\r\n[A]\r\nk=3\r\n"},
      // odd bytes, a lone LF, a NUL, the second spelling of a character, blanks
      {"x\xFF\r\n[a]\r\n;\x95\r\n\xFD\ny\0 \r\n\xED\x40 =\r\nk = 1\r\n"s, "a", "k", "表",
       "x\xFF\r\n[a]\r\n;\x95\r\n\xFD\ny\0 \r\n\xED\x40 =\r\nk=\x95\x5C\r\n"s},
      {"[a]\r\n\x81\x5B=1\r\n\x81\x5D=2\r\n", "a", "‐", "3", "[a]\r\n\x81\x5B=1\r\n\x81\x5D=3\r\n"},
      // what the code page cannot hold
      {"[a]\r\n\xFF", "a", "k", "é",
       "\xFF\xFE\r\0\n\0[\0a\0]\0\r\0\n\0\xFF\xEF\r\0\n\0k\0=\0\xE9\0\r\0\n\0"s},
      {"[a]", "a", "k", "é", "\xFF\xFE\r\0\n\0[\0a\0]\0\r\0\n\0k\0=\0\xE9\0\r\0\n\0"s},
      {"[a]\n", "é", "k", "", "\xFF\xFE\n\0[\0a\0]\0\n\0[\0\xE9\0]\0\n\0k\0=\0\n\0"s},
      // UTF-16 keeps its units, half of one at the end excepted
      {"\xFF\xFE[\0a\0]\0\n\0\x00\xDC\n\0k\0=\0\x31"s, "a", "k", "2",
       "\xFF\xFE[\0a\0]\0\n\0\x00\xDC\n\0k\0=\0\x32\0\n\0"s},
      {"\xFF\xFE"s, "a", "k", "", "\xFF\xFE[\0a\0]\0\r\0\n\0k\0=\0\r\0\n\0"s},
      // the bytes of a line feed across two units are none
      {"\xFF\xFE[\0a\0]\0\n\0\x41\x0A\0\x42\n\0"s, "a", "k", "",
       "\xFF\xFE[\0a\0]\0\n\0\x41\x0A\0\x42\n\0k\0=\0\n\0"s},
      {"x\r\n[a]\r\nk=1\r\n[b]\r\n\xFF\r\n[A]\r\n", "a", kDelete, "", "x\r\n[b]\r\n\xFF\r\n"},
      {"\xFF\xFE[\0a\0]\0"s, "A", kDelete, "", "\xFF\xFE"s},
      {"[a]\r\nk=1", "b", kDelete, "", "[a]\r\nk=1"},
      {"[a]\r\nk=1\r\n\r\n[b]\r\nk=2\r\n", "A", kBody, "x=1\r\n\r\n;y",
       "[a]\r\nx=1\r\n\r\n;y\r\n[b]\r\nk=2\r\n"},
      {"[a]\nk=1", "a", kBody, "x=1\r\ny=2\r\n", "[a]\nx=1\ny=2\n"},
      {"[a]\r\nk=1\r\n", "b", kBody, "x\ny", "[a]\r\nk=1\r\n[b]\r\nx\ny\r\n"},
      {"[a]\r\nk=1\r\n", "a", kBody, "", "[a]\r\n"},
      {"[a]", "a", kBody, "k=v", "[a]\r\nk=v\r\n"},
      {"", "é", kBody, "k=v", "\xFF\xFE\r\0\n\0[\0\xE9\0]\0\r\0\n\0k\0=\0v\0\r\0\n\0"s},
  };
  for (const auto& row : rows) {
    const std::string file = folder / "a.ini";
    test::WriteFile(file, row.before);
    const Result result = row.key == kDelete ? DeleteProfileSection(file, row.section)
                          : row.key == kBody ? WriteProfileSection(file, row.section, row.value)
                                             : WriteProfileString(file, row.section, row.key, row.value);
    EXPECT_TRUE(result.ok()) << row.before << ": " << result.reason;
    EXPECT_EQ(test::ReadFile(file), row.after);
  }
}

GTEST_TEST(WriteProfile, RefusesWhatWouldComeBackDifferent) {
  const test::TempFolder folder;
  const std::string ansi = "[a]\nk=1\n";
  const std::string big_endian = "\xFE\xFF\0[\0a\0]"s;
  const struct {
    std::string before;
    std::string section;
    std::string key;
    std::string value;
  } rows[] = {
      {ansi, "", "k", "v"},        {ansi, "a\n", "k", "v"},    {ansi, "a\0"s, "k", "v"},
      {ansi, "a]", "k", "v"},      {ansi, "a\xFF", "k", "v"},  {ansi, "a", "", "v"},
      {ansi, "a", "k\r", "v"},     {ansi, "a", "k\0"s, "v"},   {ansi, "a", "k=x", "v"},
      {ansi, "a", " k", "v"},      {ansi, "a", "k\t", "v"},    {ansi, "a", ";k", "v"},
      {ansi, "a", "k\xFF", "v"},   {ansi, "a", "k", "v\n[b]"}, {ansi, "a", "k", "\r"},
      {ansi, "a", "k", "v\0"s},    {ansi, "a", "k", "v\xFF"},  {ansi, "a", "[k", "v]"},
      {big_endian, "a", "k", "v"}, {"\xFF[a]", "a", "k", "v"},
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
  EXPECT_EQ(WriteProfileSection(file, "a", "x\0"s).code, Code::kRefused);
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

GTEST_TEST(Profile, SurvivesRandomBytes) {
  const test::TempFolder folder;
  const std::string file = folder / "a.ini";
  std::mt19937 random(20240229);
  const std::string alphabet = "[]=;\r\n\"ak \x81\x5C\xFF\xFE\0"s;
  for (int round = 0; round < 300; ++round) {
    std::string bytes;
    for (std::size_t i = random() % 60; i > 0; --i) {
      bytes += random() % 4 == 0 ? static_cast<char>(random()) : alphabet[random() % alphabet.size()];
    }
    test::WriteFile(file, bytes);
    const bool writable = WriteProfileString(file, "a", "new", "v").ok();
    EXPECT_EQ(Read(file, "a", "new"), writable ? "v" : "<none>") << testing::PrintToString(bytes);
  }
}

}  // namespace
}  // namespace quendle::platform
