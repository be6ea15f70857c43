#include "platform/ini/profile.h"

#include <chrono>
#include <fstream>
#include <thread>

#include "platform/entries/entry_status.h"
#include "platform/ini/profile_document.h"
#include "platform/text/code_page.h"
#include "platform/text/misread_utf8.h"
#include "support/outcome.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

using namespace std::string_literals;

std::string Read(const std::string& file, const std::string& section, const std::string& key,
                 std::size_t buffer_bytes = 1024) {
  return ReadProfileString(file, section, key, "<none>", buffer_bytes);
}

// Long enough for a parse of the file to be kept.
void LetItSettle() {
  std::this_thread::sleep_for(std::chrono::milliseconds(40));
}

GTEST_TEST(ReadProfile, FindsKeys) {
  const test::TempFolder folder;
  const struct {
    std::string bytes, section, key, value;
  } rows[] = {
      {"[a]\r\nk=v\r\n", "a", "k", "v"},
      {"[a]\r\nk=v", "A", "K", "v"},
      {"[a]\nk=v\n[b]\nk=w\n", "b", "k", "w"},
      {"[a]\r\nx=1\nk=v\rj=w\r\n", "a", "k", "v"},  // every line break ends a line
      {"[a]\rx=1\r\r\nk=v\r\n", "a", "k", "v"},
      {"[a]\r\n \tk\t = \t v w \t\r\n", "a", "k", "v w"},
      {"[a]\r\nk=\" v \"\r\n", "a", "k", " v "},
      {"[a]\r\nk='v'\r\n", "a", "k", "v"},
      {"[a]\r\nk=\"v'\r\n", "a", "k", "\"v'"},
      {"[a]\r\nk=\"\"v\"\"\r\n", "a", "k", "\"v\""},
      {"[a]\r\nk=\"\r\n", "a", "k", "\""},
      {"[a]\r\nk=\r\n", "a", "k", ""},
      {"[a]\r\nk==v=\r\n", "a", "k", "=v="},
      {"[a]\r\nk=v ; w\r\n", "a", "k", "v ; w"},
      {"[a]\r\n;k=v\r\n", "a", ";k", "<none>"},
      {"[a]\r\nk=1\r\nK=2\r\n", "a", "k", "1"},
      {"[a]\r\n[A]\r\nk=2\r\n", "a", "k", "<none>"},  // the first section wins though it has no such key
      {"k=0\r\n[a]\r\n", "a", "k", "<none>"},
      {" \t[a] \t\r\nk=v\r\n", "a", "k", "v"},
      {"[a] ; x\r\nk=v\r\n", "a", "k", "v"},
      {"[a]]\r\nk=v\r\n", "a]", "k", "v"},
      {"[b] [a]\r\nk=v\r\n", "b] [a", "k", "v"},
      {";[a]\r\nk=v\r\n", "a", "k", "<none>"},
      {"[b]\r\n[a\r\nk=v\r\n", "b", "k", "v"},  // no header
      {"[ a]\r\nk=v\r\n", "a", "k", "<none>"},
      {"[]\r\nk=v\r\n", "", "k", "v"},
      {"[a]\r\nk=v\0w\r\n"s, "a", "k", "v"},
      {"[a]\r\n\0k=v\r\nk=w\r\n"s, "a", "k", "w"},
      {"[\x83\x5C\x83\x5D]\r\n\x95\x5C=\x81\x5B\x81\x5D\r\n", "ソゾ", "表", "ー‐"},
      {"[x\x81\x5D\r\nk=v\r\n", "x", "k", "<none>"},  // ends in "]" as a byte, not as a character
      {"[\x82\x86\x84\x71]\r\nk=v\r\n", "ＦБ", "k", "v"},
      {"[a]\r\n\xFF=\x80\r\n", "a", "\uEFFF", "\uEF80"},
      {"\xFF\xFE[\0a\0]\0\n\0k\0=\0\x3D\xD8\x00\xDE"s, "a", "k", "😀"},
      {"\xFE\xFF\0[\0a\0]\0\r\0\n\0k\0=\0v"s, "a", "k", "<none>"},
      {"\xEF\xBB\xBF[\xC3\x84]\r\nk=\xC3\xA9\r\n", "ä", "k", "é"},
      {"\xEF\xBB\xBFk=0\n[a]\nk=\xC3", "a", "k", "\uFFFD"},
      {"\xFF", "a", "k", "<none>"},
      {"", "a", "k", "<none>"},
  };
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const std::string file = folder / std::to_string(i);
    test::WriteFile(file, rows[i].bytes);
    EXPECT_EQ(Read(file, rows[i].section, rows[i].key), rows[i].value) << rows[i].bytes;
  }
  EXPECT_EQ(Read(folder.path(), "a", "k"), "<none>");
  EXPECT_EQ(Read(folder / "missing", "a", "k"), "<none>");
  EXPECT_EQ(ReadProfileString(folder / "missing", "a", "k", " d \t", 1024), " d");
  EXPECT_EQ(Read(folder / "missing", "a", "k", 4), "<no");
  EXPECT_EQ(ReadProfileString(folder / "missing", "a", "k", "表表", 3), "表") << "cut between characters";
  EXPECT_EQ(Read(folder / "missing", "a", "k", 0), "");
}

GTEST_TEST(ProfileDocument, TellsWhatCannotBeReadForSure) {
  const struct {
    std::string bytes;
    std::string_view section_problem;  // the beginning
    std::string_view decoding_problem;
  } rows[] = {
      {"", "", ""},
      {"k=1\r\n[a]\r\nk=1\nj=2\r[\r\n[b]]\r\n;[ ]x \r\n[c]", "", ""},
      {"[a]\r\nk=1\n[b]\r\n", "line 3: line ends", ""},
      {"[a]\r\nk=1\r\n[b]\nk=2\r\n", "line 3: line ends", ""},
      {"[a]\n\r[b]\r", "line 1: line ends", ""},
      {"\r\n\n[a]\r\n", "line 3: line ends", ""},
      {"[a]\r\n\t[b]\r\n", "line 2: blanks or text", ""},
      {"\xEF\xBB\xBF[a] ;x\n", "line 1: blanks or text", ""},
      // characters of the code page
      {"[\x95\x5C\x81\x5D]\n\x83\x5C=\xC8\xBA\n", "", ""},
      {"[a]\n;\xFF\n \t;\xFF\0\n"s, "", ""},
      {"[a]\n\nk=\xFF\n", "", "line 3: bytes"},
      {"[\x82]\n", "", "line 1: bytes"},
      {"[a]\nk\0\n"s, "", "line 2: a NUL"},
      {std::string(99, '\0'), "", "line 1: a NUL"},
      // UTF-8 that the code page takes for its own: the bracket goes, or bytes do
      {"[a]\nk=1\n[\xC3\x84]\nk=2\n", "line 3: this seems to be UTF-8", ""},
      {"[\xC3\x84] ]\n", "line 1: this seems to be UTF-8", ""},
      {"[\xE3\x81\x82]\n", "", "line 1: this seems to be UTF-8"},
      // with its mark it is no problem, but for what is not valid
      {"\xEF\xBB\xBF[\xC3\x84]\n\xE3\x81\x82=1\n;\xC3\n\xEE\xBE\x80", "", ""},
      {"\xEF\xBB\xBF[a]\nk=\xC3\n", "", "line 2: bytes"},
      {"\xEF\xBB\xBF[\xC3]\nk=1\n[\xC4]\n", "line 1: a section header", "line 1: bytes"},
      {"\xFF\xFE[\0a\0]\0\n\0\x80\xEF"s, "", ""},
      {"\xFF\xFE[\0a\0]\0\n\0\x00\xDC"s, "", "line 2: bytes"},
      {"\xFF\xFE[\0a\0]\0\n\0k"s, "", "the file ends in half"},
      {"\xFE\xFF\0[\0a\0]"s, "", "the file begins like UTF-16"},
      {"\xFF", "", "the file begins like UTF-16"},
  };
  for (const auto& row : rows) {
    const auto is_told = [](const Reason& problem, std::string_view beginning) {
      return beginning.empty() ? problem.empty() : English(problem).starts_with(beginning);
    };
    const ProfileDocument document(row.bytes);
    EXPECT_TRUE(is_told(document.SectionProblem(), row.section_problem))
        << testing::PrintToString(row.bytes) << document.SectionProblem();
    EXPECT_TRUE(is_told(document.DecodingProblem(), row.decoding_problem))
        << testing::PrintToString(row.bytes) << document.DecodingProblem();
  }
}

GTEST_TEST(LooksLikeMisreadUtf8, TellsWhatWasSavedInTheWrongEncoding) {
  for (const char* text : {"Téléchargé", "ș", "Te\u0301le\u0301", "Ελλάδα", "Фото", "ґ", "שלום", "ملف",
                           "فارسی گ", "日本語", "ｶﾅ", "한국어", "문서/é", "😀", "“a”"}) {
    EXPECT_TRUE(LooksLikeMisreadUtf8(TextFromAnsi(text))) << text;
  }
  for (const char* text : {"", "a", "C:\\表\\能", "データ", "ﾈｺ", "ﾃﾞｰﾀ", "ﾌｧｲﾙ", "ｶﾀｶﾅ ﾅｶﾞｲ", "日本語",
                           "ソ.txt", "ーﾃｩ", "Téléchargé", "한", "ﾃｩ\uEFFF"}) {
    EXPECT_FALSE(LooksLikeMisreadUtf8(text)) << text;
  }
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
    std::string before, section, key, value;
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
    EXPECT_TRUE(test::Fails(WriteProfileString(file, row.section, row.key, row.value), Code::kRefused, file));
    EXPECT_EQ(test::ReadFile(file), row.before);
  }
  test::WriteFile(file, ansi);
  EXPECT_EQ(WriteProfileSection(file, "a]", "x=1").code, Code::kRefused);
  for (const std::string& before : {ansi, "[a]\r\n"s}) {
    test::WriteFile(file, before);
    for (const std::string& body :
         {"[b]"s, "x=1\n[b]"s, before == ansi ? "\r"s : "[x\ny]"s, " [b] x"s, "\xFF"s, "x\0"s})
      EXPECT_EQ(WriteProfileSection(file, "a", body).code, Code::kRefused) << body;
    EXPECT_EQ(test::ReadFile(file), before);
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
