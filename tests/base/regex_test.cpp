#include "base/regex.h"

#include <ctime>

namespace quendle {
namespace {

GTEST_TEST(Regex, WholeNames) {
  using enum RegexAnswer;
  const struct {
    const char *pattern, *subject;
    RegexAnswer answer;
  } rows[] = {
      {"\\.ZIP$", "A.ZIP", kNotWhole},
      {"A|AB", "AB", kNotWhole},  // the first alternative wins and leaves a rest
      {"AB|A", "AB", kWhole},
      {".*\\.txt", "README.TXT", kWhole},
      {"", "", kWhole},
      {"", "A", kNotWhole},
      {"表.*ｚ", "表能Ｚ", kWhole},
      {"ж+", "ЖЖ", kWhole},
      {".*", "A\xEF\xBF\xBDZ", kWhole},
      {".*", "A\nB", kNotWhole},
      {"A$", "A\n", kNotWhole},  // "$" is the very end
      {"[^]+", "A\nB", kWhole},
      {"A[]", "A", kNotWhole},
      {"\\u0041\\x42", "AB", kWhole},
      {"(?:(X)|A)\\1", "A", kWhole},  // a group that took no part matches empty
      {"\\d+", "１２", kNotWhole},    // digits and word characters are those of ASCII
      {"(?<=A)B", "B", kNotWhole},
      {"(", "A", kError},
      {"[z-a]", "A", kError},
      {"A\xFF", "A", kError},
      {"A", "A\xFF", kError},
  };
  for (const auto& row : rows) {
    const Regex regex(row.pattern);
    EXPECT_EQ(regex.MatchWhole(row.subject), row.answer) << row.pattern << " against " << row.subject;
    EXPECT_EQ(regex.Error().empty(), row.answer != kError) << row.pattern;
  }
}

GTEST_TEST(Regex, RunawayPatternsEndSoon) {
  const std::string as(255, 'A');
  for (const char* pattern :
       {"(a+)+\\d", "(a|aa)+!", "(.*.*.*.*.*.*)*!", "(a*)*b", "((a+)+)+$!", "[ab](?:[ab]|[ab][ab]){0,17}\\d",
        "a.{0,64}a.{0,64}a.{0,64}\\d", "(.+)(.+)\\1\\2\\d", "(.*)(.*)(.*)(.*)\\4\\3\\2\\1\\d"}) {
    const Regex regex(pattern);
    const std::clock_t begin = std::clock();
    EXPECT_NE(regex.MatchWhole(as), RegexAnswer::kWhole);
    const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    EXPECT_LT(seconds, 0.2) << pattern;  // some milliseconds, with room for a sanitized machine
  }
  EXPECT_EQ(Regex("(a+)+$").MatchWhole(as), RegexAnswer::kWhole);
  EXPECT_EQ(Regex("(?:a|b)*(?:x?y?A)+").MatchWhole(as), RegexAnswer::kWhole);
}

}  // namespace
}  // namespace quendle
