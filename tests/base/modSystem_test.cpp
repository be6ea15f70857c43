#include "base/modSystem.h"

namespace quendle {
namespace {

using Strings = std::vector<std::string>;

GTEST_TEST(ModSystem, Sorting) {
  const struct {
    Strings input;
    std::int32_t lowest, highest;
    Strings sorted;
  } rows[] = {
      {{"b", "A", "c"}, 0, 2, {"A", "b", "c"}},
      {{"z", "b", "A", "a"}, 1, 3, {"z", "A", "a", "b"}},
      {{"б", "А", "ｂ", "Ａ"}, 0, 3, {"А", "б", "Ａ", "ｂ"}},
      {{"b", "a"}, 0, 0, {"b", "a"}},
      {{"b", "a"}, 1, 0, {"b", "a"}},
      {{"b", "a"}, 0, 2, {"b", "a"}},
      {{}, 0, -1, {}},
  };
  for (const auto& row : rows) {
    Strings strings = row.input;
    SortStrings(&strings, row.lowest, row.highest);
    EXPECT_EQ(strings, row.sorted);
  }
}

GTEST_TEST(ModSystem, Conversions) {
  const struct {
    const char* text;
    bool flag, is_number;
    double number;
  } rows[] = {
      {"1", true, true, 1},     {"-1", true, true, -1},   {"0", false, true, 0},
      {"0.5", true, true, 0.5}, {" 3 ", true, true, 3},   {"+2", true, true, 2},
      {"1e2", true, true, 100}, {"True", true, false, 0}, {"FALSE", false, false, 0},
      {"yes", false, false, 0}, {"", false, false, 0},    {"1x", false, false, 0},
      {"nan", false, false, 0}, {"inf", false, false, 0}, {"+-1", false, false, 0},
      {".5", true, true, 0.5},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(ToBoolean(row.text), row.flag);
    double number = 0;
    EXPECT_EQ(ToNumber(row.text, &number), row.is_number);
    EXPECT_EQ(number, row.number);
  }
}

GTEST_TEST(ModSystem, CommandLines) {
  const std::pair<const char*, Strings> rows[] = {
      // from the first argument on
      {"", {}},
      {" ", {"", ""}},
      {"\"C:\\a b\\x.zip\" y.txt", {"C:\\a b\\x.zip", "y.txt"}},
      {"a  b", {"a", "", "b"}},
      {"a\tb ", {"a", "b", ""}},
      {"a\" \"b", {"a b"}},
      {"\"\"", {}},
      {"1 2 3 4 5 6 7 8 9 10 11", {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}},
  };
  for (const auto& [text, arguments] : rows) {
    Strings expected = {""};
    expected.insert(expected.end(), arguments.begin(), arguments.end());
    EXPECT_EQ(SplitCommandLine(text, 10), expected) << text;
  }
}

}  // namespace
}  // namespace quendle
