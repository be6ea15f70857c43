#include "cli/options.h"

#include "base/display.h"

namespace quendle {
namespace {

using Arguments = std::vector<std::string>;

GTEST_TEST(Options, ReadsPathsAndOptions) {
  const struct {
    Arguments arguments;
    Arguments paths;
    const char* profile;
  } rows[] = {
      {{"--batch", "a", "b"}, {"a", "b"}, nullptr},
      {{"a", "--batch", "--json", "b"}, {"a", "b"}, nullptr},
      {{"--batch", "--profile", "A B", "a"}, {"a"}, "A B"},
      {{"--batch", "--profile=--x", "a"}, {"a"}, "--x"},
      {{"--batch", "--", "-a", "--batch", "--"}, {"-a", "--batch", "--"}, nullptr},
      {{"--dry-run", "-", "", "/dir//", "/"}, {"-", "", "/dir//", "/"}, nullptr},
      {{"a"}, {"a"}, nullptr},
  };
  for (const auto& row : rows) {
    Arguments arguments = {"quendle"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    std::string problem;
    const auto options = ParseOptions(arguments, &problem);
    ASSERT_TRUE(options) << problem;
    EXPECT_EQ(options->paths, row.paths);
    EXPECT_EQ(options->profile.value_or("none"), row.profile == nullptr ? "none" : row.profile);
  }
}

GTEST_TEST(Options, RefusesWrongUsage) {
  const struct {
    Arguments arguments;
    const char* problem;
  } rows[] = {
      {{"--bathc", "a"}, "--bathc"},
      {{"-x", "a"}, "-x"},
      {{"--batch"}, "no path"},
      {{"--json", "a"}, "--json"},
      {{"--batch=1", "a"}, "no value"},
      {{"--batch", "a", "--profile"}, "TITLE"},
      {{"--batch", "a", "--settings="}, "DIR"},
      {{}, "no path"},
  };
  for (const auto& row : rows) {
    Arguments arguments = {"quendle"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    std::string problem;
    EXPECT_FALSE(ParseOptions(arguments, &problem)) << row.problem;
    EXPECT_NE(problem.find(row.problem), std::string::npos) << problem;
  }
}

GTEST_TEST(Display, NamesCannotDeceive) {
  const struct {
    std::string name;
    const char* shown;
    const char* in_json;  // where bytes are escaped
  } rows[] = {
      {"a.txt", "a.txt", "a.txt"},
      {"表\\x41", "表\\\\x41", "表\\\\x41"},
      {"a\xFF\\", "a\\xFF\\\\", "a\\xFF\\\\"},
      {"a\nb\t\x1b[1m", "a\\nb\\t\\u{1B}[1m", "a\nb\t\x1b[1m"},
      {"x\u202Etxt.exe", "x\\u{202E}txt.exe", "x\u202Etxt.exe"},
      {"a\u2028b\u0085", "a\\u{2028}b\\u{85}", "a\u2028b\u0085"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ForDisplay(row.name), row.shown);
    EXPECT_EQ(WithEscapedBytes(row.name), row.in_json);
  }
}

}  // namespace
}  // namespace quendle
