#include "cli/options.h"

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
      {{"--", "-h"}, {"-h"}, nullptr},
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
      {{"-h=1", "a"}, "no value"},
      {{"--batch"}, "no path"},
      {{"--json", "a"}, "--json"},
      {{"--batch=1", "a"}, "no value"},
      {{"--batch", "a", "--profile"}, "TITLE"},
      {{"--batch", "a", "--settings="}, "DIR"},
      {{"--dry-run"}, "no path"},
  };
  for (const auto& row : rows) {
    Arguments arguments = {"quendle"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    std::string problem;
    EXPECT_FALSE(ParseOptions(arguments, &problem)) << row.problem;
    EXPECT_NE(problem.find(row.problem), std::string::npos) << problem;
  }
}

}  // namespace
}  // namespace quendle
