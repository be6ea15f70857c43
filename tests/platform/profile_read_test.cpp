#include "platform/code_page.h"
#include "platform/profile.h"
#include "platform/profile_document.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

using namespace std::string_literals;

GTEST_TEST(ReadProfile, FindsKeys) {
  const test::TempFolder folder;
  const auto read = [](const std::string& file, const std::string& section, const std::string& key) {
    return ReadProfileString(file, section, key, "<none>", 1024);
  };
  const struct {
    std::string bytes;
    std::string section;
    std::string key;
    std::string value;
  } rows[] = {
      {"[a]\r\nk=v\r\n", "a", "k", "v"},
      {"[a]\r\nk=v", "A", "K", "v"},
      {"[a]\nk=v\n[b]\nk=w\n", "b", "k", "w"},
      {"[a]\rk=v\r", "a", "k", "v"},
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
      {"[a]\r\n \t;k=v\r\n", "a", ";k", "<none>"},
      {"[a]\r\nk=1\r\nK=2\r\n", "a", "k", "1"},
      {"[a]\r\n[A]\r\nk=2\r\n", "a", "k", "<none>"},  // the first section wins though it has no such key
      {"k=0\r\n[a]\r\n", "a", "k", "<none>"},
      {" \t[a] \t\r\nk=v\r\n", "a", "k", "v"},
      {"[a] ; x\r\nk=v\r\n", "a", "k", "v"},
      {"[a]]\r\nk=v\r\n", "a]", "k", "v"},
      {"[b] [a]\r\nk=v\r\n", "b] [a", "k", "v"},
      {";[a]\r\nk=v\r\n", "a", "k", "<none>"},
      {"x[a]\r\nk=v\r\n", "a", "k", "<none>"},
      {"[b]\r\n[a\r\nk=v\r\n", "b", "k", "v"},  // no header
      {"[ a]\r\nk=v\r\n", "a", "k", "<none>"},
      {"[]\r\nk=v\r\n", "", "k", "v"},
      {"[a]", "a", "k", "<none>"},
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
    EXPECT_EQ(read(file, rows[i].section, rows[i].key), rows[i].value) << rows[i].bytes;
  }
  EXPECT_EQ(read(folder.path(), "a", "k"), "<none>");
  EXPECT_EQ(read(folder / "missing", "a", "k"), "<none>");
  EXPECT_EQ(ReadProfileString(folder / "missing", "a", "k", " d \t", 1024), " d");
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
      {"[a]\r\n[b\nc]\r\n", "line 2: line ends", ""},
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
      {"[\0a\0]\0\n\0"s, "line 1: blanks or text", "line 1: a NUL"},
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
      {"\xFF\xFE", "", ""},
      {"\xFE\xFF\0[\0a\0]"s, "", "the file begins like UTF-16"},
      {"\xFF", "", "the file begins like UTF-16"},
  };
  for (const auto& row : rows) {
    const auto is_told = [](const std::string& problem, std::string_view beginning) {
      return beginning.empty() ? problem.empty() : problem.starts_with(beginning);
    };
    const ProfileDocument document(row.bytes);
    EXPECT_TRUE(is_told(document.SectionProblem(), row.section_problem))
        << testing::PrintToString(row.bytes) << document.SectionProblem();
    EXPECT_TRUE(is_told(document.DecodingProblem(), row.decoding_problem))
        << testing::PrintToString(row.bytes) << document.DecodingProblem();
  }
}

GTEST_TEST(LooksLikeMisreadUtf8, TellsWhatWasSavedInTheWrongEncoding) {
  for (const char* text : {"/home/hana/Téléchargé",
                           "Möbel",
                           "é",
                           "Øre",
                           "ș",
                           "Te\u0301le\u0301",
                           "Ελλάδα",
                           "Фото",
                           "ґ",
                           "שלום",
                           "ملف",
                           "فارسی گ",
                           "日本語",
                           "書類/データ",
                           "ｶﾅ",
                           "한국어",
                           "문서/é",
                           "😀",
                           "€",
                           "“a”"}) {
    EXPECT_TRUE(LooksLikeMisreadUtf8(TextFromAnsi(text))) << text;
  }
  for (const char* text : {"", "a", "C:\\表\\能", "データ", "ﾈｺ", "ﾃﾞｰﾀ", "ﾌｧｲﾙ", "ｶﾀｶﾅ ﾅｶﾞｲ", "日本語",
                           "ソ.txt", "ーﾃｩ", "Téléchargé", "한", "ﾃｩ\uEFFF"}) {
    EXPECT_FALSE(LooksLikeMisreadUtf8(text)) << text;
  }
}

}  // namespace
}  // namespace quendle::platform
