#include "archive/modules/common/entry_names.h"

namespace quendle::modules {
namespace {

GTEST_TEST(EntryNames, Decodes) {
  const struct {
    std::string bytes;
    bool says_utf8;
    std::string charset;
    std::string name;
  } rows[] = {
      {"\x95\x5C.txt", false, "", "表.txt"},
      {"\xCA\xDD.txt", false, "", "ﾊﾝ.txt"},
      {"\x87\x40\x81\x60\xFA\x40", false, "", "①～ⅰ"},
      {"caf\xE9.txt", false, "", "café.txt"},
      {"\xE9.\x80\x81", false, "", "é.€\u0081"},  // the last byte is no character there
      {"表\\a", false, "", "表/a"},
      {"表\\a", true, "", "表/a"},
      {"\x95\x5C", true, "", "表"},  // it does not, after all
      {"caf\xE9.txt", false, "CP437", "cafΘ.txt"},
      {"caf\xC3\xA9", false, "CP437", "caf├⌐"},
      {"caf\xC3\xA9", true, "CP437", "café"},
      {"\x95\x5C\\a", false, "Shift_JIS", "表/a"},
      {"\xA4\xA2\\a", false, "EUC-JP", "あ/a"},
      {"\xC9\xBD", false, "EUC-JP", "表"},  // valid in the usual encoding as well
      {"\xA4", false, "EUC-JP", "､"},
      {std::string("a\0b", 3), false, "", std::string("a\0b", 3)},
      {"", false, "", ""},
  };
  for (const auto& row : rows) EXPECT_EQ(DecodeName(row.bytes, row.says_utf8, row.charset), row.name);
}

GTEST_TEST(EntryNames, KnowsCharsets) {
  for (const char* charset : {"CP932", "shift_jis", "Windows-31J", "UTF-8", "EUC-JP", "CP437"}) {
    EXPECT_TRUE(IsKnownCharset(charset)) << charset;
  }
  for (const char* charset : {"", "CP932//IGNORE", "klingon"})
    EXPECT_FALSE(IsKnownCharset(charset)) << charset;
}

}  // namespace
}  // namespace quendle::modules
