#include "settings/clsIniFile.h"

#include <thread>

#include "support/temp_folder.h"

namespace quendle {
namespace {

using namespace std::string_literals;

using Texts = std::vector<std::string>;

std::string Utf16(const std::string& ascii) {
  std::string bytes = "\xFF\xFE";
  for (const char c : ascii) bytes.append({c, '\0'});
  return bytes;
}

class IniFile : public testing::Test {
 protected:
  IniFile() { ini_.pFileName = folder_ / "a.ini"; }

  void Write(const std::string& bytes) { test::WriteFile(ini_.pFileName, bytes); }
  std::string Bytes() const { return test::ReadFile(ini_.pFileName); }

  test::TempFolder folder_;
  clsIniFile ini_;
};

TEST_F(IniFile, BufferClampsAndLimitsValues) {
  EXPECT_EQ(ini_.pBUFFER(), 1024);
  const std::string value(131'100, 'x');
  ASSERT_TRUE(ini_.SetStr("a", "k", value));
  const std::pair<std::int32_t, std::uint32_t> rows[] = {
      {0, 1024},   {100, 256},   {-5, 256},      {1, 256},         {255, 256},      {256, 1024},
      {300, 1024}, {5000, 1024}, {131072, 1024}, {131073, 131072}, {200000, 131072}};
  for (const auto& [set, read] : rows) {
    ini_.pBUFFER(set);
    EXPECT_EQ(ini_.pBUFFER(), read) << set;
    EXPECT_EQ(ini_.GetStr("a", "k", "").size(), read - 1) << set;
  }
}

TEST_F(IniFile, EmptyValueReadsAsTheDefault) {
  Write("[a]\r\nk=\r\nquoted=\"\"\r\nfull=v\r\n");
  EXPECT_EQ(ini_.GetStr("a", "k", "d"), "d");
  EXPECT_EQ(ini_.GetStr("a", "quoted", "d"), "d");
  EXPECT_EQ(ini_.GetStr("a", "missing", "d"), "d");
  EXPECT_EQ(ini_.GetStr("A", "FULL", "d"), "v");
}

TEST_F(IniFile, KeepsTheLastFailure) {
  EXPECT_FALSE(ini_.SetStr("a]", "k", "v"));
  EXPECT_EQ(ini_.LastFailure().code, platform::Code::kRefused);
  EXPECT_TRUE(ini_.SetStr("a", "k", "v"));
  EXPECT_TRUE(ini_.LastFailure().ok());
  ini_.SetSectionData("a", "[b]");
  EXPECT_EQ(ini_.LastFailure().code, platform::Code::kRefused);
  ini_.DeleteSection("a");
  EXPECT_TRUE(ini_.LastFailure().ok());
  const std::pair<std::string, platform::Code> rows[] = {{folder_ / "none/a.ini", platform::Code::kNotFound},
                                                         {folder_.path(), platform::Code::kIsFolder},
                                                         {folder_ / "missing.ini", platform::Code::kOk}};
  for (const auto& [path, code] : rows) {
    ini_.pFileName = path;
    ini_.OptimizeFile(true);
    EXPECT_EQ(ini_.LastFailure().code, code) << path;
    ini_.RenameSection("a", "b");
    EXPECT_EQ(ini_.LastFailure().code, code) << path;
  }
}

TEST_F(IniFile, EnumSectionListsHeadersInOrder) {
  const struct {
    std::string bytes;
    std::int32_t count;
    Texts names;
  } rows[] = {
      {"x\r\n[b]\r\n[A]\r\nk=1\r\n[b]\r\n", 3, {"b", "A", "b"}},
      {"[a]\r[b]", 2, {"a", "b"}},
      {"[a]\r\nk=1\n[b]\n[c]\r\n", 1, {"a"}},  // lone line feeds end no line here
      {"[a]\r\n [b]\r\n[ c]\r\n[d] \r\n", 2, {"a", " c"}},
      {"[\x83\x5C]\r\n[\x81\x5D\r\n[\x94\x5C]\r\n", 2, {"ソ", "能"}},
      {Utf16("[a]\r\n[b]\r\n"), 2, {"a", "b"}},
      {"\xEF\xBB\xBF[\xC3\x84]\n[b]\n", 2, {"Ä", "b"}},
      {"[a]\r\n[]\r\n[b]\r\n", 3, {"a", "", "b"}},
      {"[]\r\n[b]\r\n", 0, {""}},
      {"[General]", 0, {""}},
      {"k=1\r\n", 0, {""}},
      {"", 0, {""}},
      {"\xFE\xFF\0[\0a\0]\0\r\0\n"s, 0, {""}},
  };
  for (const auto& row : rows) {
    Write(row.bytes);
    Texts names = {"left", "over"};
    EXPECT_EQ(ini_.EnumSection(&names), row.count) << row.bytes;
    EXPECT_EQ(names, row.names) << row.bytes;
  }
}

TEST_F(IniFile, ItemsAndDataOfASection) {
  const struct {
    std::string bytes, section;
    std::int32_t count;
    Texts items;
    std::string data;
  } rows[] = {
      {"[a]\r\nk=1\r\n\r\nj=2\r\n[b]\r\nx\r\n", "a", 3, {"k=1", "", "j=2"}, "k=1\r\nj=2"},
      {"[General]\r\nk=1\r\n", "general", 0, {""}, "k=1"},
      {"[x]\r\ny\r\n[\x83\x86]\r\nk=1\r\n", "ユ", 2, {"k=1", ""}, "k=1"},
      {"[a]\r\nk=1\r\nj=2\r\n", "a", 3, {"k=1", "j=2", ""}, "k=1\r\nj=2"},
      {"[a]\r\nk=1\r\nj=2", "a", 2, {"k=1", "j=2"}, "k=1"},  // the data leave the last line out
      {"[a]\r\nk=1\r\n[b]", "a", 2, {"k=1", "[b]"}, "k=1"},  // the items take a header that comes last
      {"[a]\r\n[b]", "a", 1, {"[b]"}, ""},
      {"[a]\r\n[b]\r\n", "a", 0, {""}, ""},
      {"[a]\r\n[b]", "b", 0, {""}, ""},
      {"[a]\r\n\r\nk=1\r\n[b]\r\n", "a", 0, {""}, "k=1"},
      {"[a]\r\nk=1\r\n[a]\r\nk=2\r\n", "a", 1, {"k=1"}, "k=1"},
      {"[A]\r\nk=1\r\n[a]\r\nk=2\r\n", "a", 2, {"k=2", ""}, "k=1"},
      {"[a]\r\nk=1\nj=2\r\n", "a", 2, {"k=1\nj=2", ""}, "k=1\nj=2"},
      {"[a]\nk=1\n", "a", 2, {"k=1", ""}, "k=1"},
      {Utf16("[a]\nk=1\n"), "a", 2, {"k=1", ""}, "k=1"},
      {"[a]\r\nk=1\r\n", "missing", 0, {""}, ""},
      {"[a]", "a", 0, {""}, ""},
      {"", "", 0, {""}, ""},
  };
  for (const auto& row : rows) {
    Write(row.bytes);
    Texts items = {"left", "over"};
    EXPECT_EQ(ini_.EnumSectionItem(row.section, &items), row.count) << row.bytes;
    EXPECT_EQ(items, row.items) << row.bytes;
    EXPECT_EQ(ini_.GetSectionData(row.section), row.data) << row.bytes;
  }
}

TEST_F(IniFile, AllData) {
  const std::pair<std::string, Texts> rows[] = {{"", {""}},
                                                {"[a]", {""}},
                                                {"[a]\r\n", {"[a]", ""}},
                                                {"a\rb\nc", {"a", "b\nc"}},
                                                {"\na\r\nb", {"\na", "b"}},
                                                {Utf16("a\nb"), {"a", "b"}}};
  for (const auto& [bytes, expected] : rows) {
    Write(bytes);
    Texts lines = {"left", "over"};
    EXPECT_EQ(ini_.GetAllDataByArray(&lines), static_cast<std::int32_t>(expected.size()) - 1) << bytes;
    EXPECT_EQ(lines, expected) << bytes;
  }
  ini_.pFileName = folder_ / "missing";
  Texts lines;
  EXPECT_EQ(ini_.GetAllDataByArray(&lines), 0);
  EXPECT_EQ(lines, Texts{""});
}

TEST_F(IniFile, RenameSection) {
  const struct {
    std::string before, old_name, new_name, after;
    bool is_refused = false;
  } rows[] = {
      {"x\r\n[a]\r\nk = 1\r\n[A]\r\n", "A", "New", "x\r\n[New]\r\nk = 1\r\n[A]\r\n"},
      {"[a]\n\xFFk=1\n", "a", "表", "[\x95\x5C]\r\n\xFFk=1\r\n"},
      {"[a]\nk=1", "missing", "b", "[a]\nk=1"},
      {"[a]", "a", "b", "[a]"},
      {"[ a]\r\n", "a", "b", "[ a]\r\n"},
      {" [a]\r\n[ a]\r\n", "a", "b", " [a]\r\n[ a]\r\n", true},
      {"[x]]\r\nk=1\r\n", "x]", "x", "[x]\r\nk=1\r\n"},
      {"\xEF\xBB\xBF[a]\n\xC3\xA9\n", "a", "é", "\xEF\xBB\xBF[\xC3\xA9]\r\n\xC3\xA9\r\n"},
      {"[\x84\x71]\r\n", "б", "x", "[x]\r\n"},
      {Utf16("[a]\r\nk=1\r\n"), "a", "b", Utf16("[b]\r\nk=1\r\n")},
      {"x\n[a]\n", "a", "é", "\xFF\xFE\r\0\n\0x\0\r\0\n\0[\0\xE9\0]\0\r\0\n\0"s},
      {"x\r[a]", "a", "b", "x\r\n[b]"},  // the open line stays open
      // other lines keep their bytes: the second spelling of a character, half of a UTF-16 character
      {"\xED\x40\n[a]\n", "a", "b", "\xED\x40\r\n[b]\r\n"},
      {"\xFF\xFE[\0a\0]\0\n\0\x00\xDC\n\0x"s, "a", "b", "\xFF\xFE[\0b\0]\0\r\0\n\0\x00\xDC\r\0\n\0"s},
      {"\xFE\xFF\n\0[\0a\0]\0\n\0"s, "a", "b", "\xFE\xFF\n\0[\0a\0]\0\n\0"s, true},
      {"[a]\n", "a", "x\r\n[y", "[a]\n", true},
      {"[a]\n", "a", "x\0"s, "[a]\n", true},
      {"[a]\n", "a", "", "[a]\n", true},
      {"[a]\n", "a", "b]", "[a]\n", true},
      {"[a]\n", "a", "b\xFF", "[a]\n", true},
      {"[a]\n", "missing", "b]", "[a]\n", true},
  };
  for (const auto& row : rows) {
    Write(row.before);
    ini_.RenameSection(row.old_name, row.new_name);
    EXPECT_EQ(Bytes(), row.after) << row.before;
    EXPECT_EQ(ini_.LastFailure().code, row.is_refused ? platform::Code::kRefused : platform::Code::kOk)
        << row.before << row.new_name;
  }
}

TEST_F(IniFile, RenameLosesNoKeyOfAnotherWriter) {
  Write("[x]\r\n[keys]\r\n");
  std::thread other([this] {
    clsIniFile ini;
    ini.pFileName = ini_.pFileName;
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(ini.SetStr("keys", std::to_string(i), "v"));
  });
  for (int i = 0; i < 100; ++i) {
    ini_.RenameSection(i % 2 == 0 ? "x" : "y", i % 2 == 0 ? "y" : "x");
    EXPECT_TRUE(ini_.LastFailure().ok()) << ini_.LastFailure().reason;
  }
  other.join();
  Texts names;
  ini_.EnumSection(&names);
  EXPECT_EQ(names, (Texts{"x", "keys"}));
  for (int i = 0; i < 100; ++i) EXPECT_EQ(ini_.GetStr("keys", std::to_string(i), ""), "v") << i;
}

TEST_F(IniFile, OptimizeFile) {
  const struct {
    std::string before;
    bool sort;
    std::string after;
    bool is_refused = false;
  } rows[] = {
      // one of these lines was rewritten by a program that knows only "\n"
      {"[b]\r\nk=1\r\n[a]\nk=2\r\n", true, "[b]\r\nk=1\r\n[a]\nk=2\r\n", true},
      {"[b]\r\nID=1\nMoveTo=/m\r\n\r\n[a]\r\n", true, "[a]\r\n[b]\r\nID=1\nMoveTo=/m\r\n"},
      {"\xEF\xBB\xBFx\n[b]\n\n[a]\n\xC3\xA9\n", true, "\xEF\xBB\xBF[a]\r\n\xC3\xA9\r\n[b]\r\n"},
      {"x\r\n[b]\r\nk=1\r\n\r\n[A]\r\n\r\n;y\r\n[c]\r\n", true, "[A]\r\n;y\r\n[b]\r\nk=1\r\n[c]\r\n"},
      {"[b]\r\nk=1\r\n\r\n[A]\r\n\xFF\r\n", false, "[b]\r\nk=1\r\n[A]\r\n\xFF\r\n"},
      {"[b]\nk=1\n[a]\nlast=1", true, "[a]\r\nlast=1\r\n[b]\r\nk=1\r\n"},  // the open line is kept
      {"[b]\r\n[a]", true, "[a]\r\n[b]\r\n"},
      {"[B]\r\nk=1\r\n[a]\r\n[b]\r\nk=2\r\n", true, "[a]\r\n[B]\r\nk=1\r\n"},
      {"[b]\r\nk=1\r\n[a]\r\n[B]\r\nk=2\r\n", false, "[b]\r\nk=1\r\n[a]\r\n"},
      {"[b]\r\n[]\r\nk=1\r\n[a]\r\n", true, "[a]\r\n[b]\r\n[]\r\nk=1\r\n"},
      {Utf16("[b]\r\n\r\n[a]\r\nk=1\r\n"), true, "[a]\r\nk=1\r\n[b]\r\n"},
      {"\xFF\xFE[\0\xE9\0]\0\n\0\n\0k\0\n\0"s, true, "\xFF\xFE[\0\xE9\0]\0\r\0\n\0k\0\r\0\n\0"s},
      // lines keep their bytes while the encoding stays
      {"[\xED\x40]\n\xED\x40=\xFA\x5C\n[a]\n", false, "[\xED\x40]\r\n\xED\x40=\xFA\x5C\r\n[a]\r\n"},
      {"\xFF\xFE[\0b\0]\0\n\0\x00\xDC\n\0[\0a\0]\0\n\0"s, true,
       "\xFF\xFE[\0a\0]\0\r\0\n\0[\0b\0]\0\r\0\n\0\x00\xDC\r\0\n\0"s},
      {"x\r\n\r\ny\r\n", true, "x\r\n\r\ny\r\n"},
      {"[]\r\n\r\n[a]\r\n", true, "[]\r\n\r\n[a]\r\n"},
      {"[a]", true, "[a]"},
      {"", true, ""},
  };
  for (const auto& row : rows) {
    Write(row.before);
    ini_.OptimizeFile(row.sort);
    EXPECT_EQ(Bytes(), row.after) << row.before;
    EXPECT_EQ(ini_.LastFailure().ok(), !row.is_refused) << row.before;
  }
}

}  // namespace
}  // namespace quendle
