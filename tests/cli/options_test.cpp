#include "cli/options.h"

namespace quendle {
namespace {

using Arguments = std::vector<std::string>;

GTEST_TEST(Options, ReadsArgumentsOrSaysWhatIsWrong) {
  const struct {
    Arguments arguments, paths;
    const char* profile;
    const char* problem = nullptr;  // a part of it
  } rows[] = {
      {{"a", "--batch", "--json", "b"}, {"a", "b"}, "none"},
      {{"--batch", "--profile", "A B", "a"}, {"a"}, "A B"},
      {{"--batch", "--profile=--x", "a"}, {"a"}, "--x"},
      {{"--batch", "--", "-a", "--batch", "--"}, {"-a", "--batch", "--"}, "none"},
      {{"--", "-h"}, {"-h"}, "none"},
      {{"--dry-run", "-", "", "/dir//", "/"}, {"-", "", "/dir//", "/"}, "none"},
      {{"--bathc", "a"}, {}, "", "--bathc"},
      {{"-x", "a"}, {}, "", "-x"},
      {{"-h=1", "a"}, {}, "", "no value"},
      {{"--json", "a"}, {}, "", "--json"},
      {{"--batch=1", "a"}, {}, "", "no value"},
      {{"--batch", "a", "--profile"}, {}, "", "TITLE"},
      {{"--batch", "a", "--settings="}, {}, "", "DIR"},
      {{"--dry-run"}, {}, "", "no path"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.arguments));
    Arguments arguments = {"quendle"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    std::string problem;
    const auto options = ParseOptions(arguments, &problem);
    ASSERT_EQ(options.has_value(), row.problem == nullptr) << problem;
    if (options) {
      EXPECT_EQ(options->paths, row.paths);
      EXPECT_EQ(options->profile.value_or("none"), row.profile);
    } else {
      EXPECT_NE(problem.find(row.problem), std::string::npos) << problem;
    }
  }
}

}  // namespace
}  // namespace quendle
