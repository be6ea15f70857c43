#include "archive/archiver_table.h"

#include "base/modString.h"

namespace quendle {
namespace {

GTEST_TEST(ArchiverTable, CommandLines) {
  const struct {
    std::int16_t type;
    const char* flat;
    const char* confirm;
    std::int16_t mode;  // 0: 1 and 2
    const char* line;   // before the paths
  } rows[] = {
      {1, "0", "0", 3, " -s -i -C -o"},
      {1, "1", "0", 1, "-x -s -i -C -j -o"},
      {1, "1", "1", 2, "-u -s -i -C -j"},
      {2, "0", "0", 1, "x -+ -a1 -jp1 -x1 -c1 -m1"},
      {2, "0", "1", 0, "x -+ -a1 -jp1 -x1 -c1 -m0"},
      {2, "1", "0", 2, "x -+ -a1 -jp1 -x0 -c0 -m1"},
      {3, "0", "0", 1, "-x  -o"},
      {3, "0", "1", 0, "-x "},
      {3, "1", "0", 2, "-x -j -n"},
      {4, "0", "0", 1, "-x  -o"},
      {4, "0", "1", 0, "-x "},
      {4, "1", "0", 2, "-e  -u"},
      {5, "0", "0", 0, "x \"-o/d e\" -aoa"},
      {5, "1", "1", 0, "e \"-o/d e\""},
  };
  for (const auto& row : rows) {
    for (const std::int16_t mode : {std::int16_t{1}, std::int16_t{2}, std::int16_t{3}}) {
      if (row.mode == 0 ? mode == 3 : mode != row.mode) continue;
      const CommandOptions options{*row.flat == '1', *row.confirm == '1', mode};
      const std::string folder = row.type == 5 ? "" : std::string(" \"/d e") + Separator(kHostStyle) + "\"";
      EXPECT_EQ(CommandLine(ArchiverRowOf(row.type), options, "/a b.x", "/d e", "/tmp/r"),
                row.line + std::string(" \"/a b.x\"") + folder + " \"@/tmp/r\"")
          << row.type << row.flat << row.confirm << mode;
    }
  }
}

}  // namespace
}  // namespace quendle
