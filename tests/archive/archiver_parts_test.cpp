// The parts that clsArchiver is made of.
#include "archive/archiver_table.h"
#include "archive/clsOutput.h"
#include "archive/extraction_list.h"
#include "base/modString.h"
#include "platform/entries/entry_path.h"
#include "support/scripted_user.h"

namespace quendle {
namespace {

using namespace std::string_literals;
using Names = std::vector<std::string>;

GTEST_TEST(ArchiverTable, CommandLines) {
  const struct {
    std::int16_t type;
    const char *flat, *confirm;
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

GTEST_TEST(ClsOutput, Logs) {
  const struct {
    std::int16_t type;
    std::vector<std::string> outputs;
    std::string shown;
  } rows[] = {
      {2, {"h1\r\nh2\r\nbody\r\n\0garbage"s}, "h1\r\nh2\r\nbody\r\n"},
      {1, {"a\nb\0"s}, "a\r\nb"},
      {1, {"cut\xE8\xA1"}, "cut\r\n...more"},
      {1, {"cut表"}, "cut表\r\n...more"},
      {1, {""}, "\r\n...more"},
      {2,
       {"h1\r\nh2\r\none\r\n\0"s, "h1\r\nh2\r\ntwo\0"s, "h1\r\nh2\r\nthree"s},
       "Extracted from /a:\r\n\r\nPhase 1:\r\none\r\n\r\nPhase 2:\r\ntwo\r\nPhase 3:\r\nthree\r\n...more"},
      {1, {"h\r\none\0"s, "one line\0"s}, "Extracted from /a:\r\n\r\nPhase 1:\r\none\r\nPhase 2:\r\n"},
      {3, {"one\0"s, "two\0"s}, "Extracted from /a:\r\n\r\nPhase 1:\r\none\r\nPhase 2:\r\ntwo"},
      {4, {"h\r\n\0"s, "h\r\ntwo\0"s}, "Extracted from /a:\r\n\r\nPhase 1:\r\n\r\nPhase 2:\r\ntwo"},
  };
  test::ScriptedUser user;
  clsOutput output(user);  // one for all: each run begins anew
  for (const auto& row : rows) {
    output.BeginRun();
    output.ARCTYPE = row.type;
    output.FILENAME = "/a";
    output.RESFILECOUNT(static_cast<std::int32_t>(row.outputs.size()) - 1);
    for (const std::string& text : row.outputs) output.SetOutputText(text);
    output.ShowOutputWindow();
    EXPECT_EQ(user.logs.back(), row.shown);
  }
}

GTEST_TEST(ExtractionList, OneTopFolder) {
  const struct {
    Names names;
    bool one;
  } rows[] = {
      {{"TOP/A.TXT", "top/SUB/B.TXT"}, true},
      {{"TOP/", "TOP/A"}, true},
      {{"TOP/A.TXT", "B.TXT"}, false},
      {{"A.TXT"}, false},
      {{"表/a", "表/b"}, true},
      {{"/a", "/b"}, true},
      {{}, false},
      {{"TOP", "TOP/A"}, false},
  };
  for (const auto& row : rows) EXPECT_EQ(HaveOneTopFolder(row.names), row.one) << row.names.size();
}

GTEST_TEST(ExtractionList, Filter) {
  const struct {
    const char *include, *exclude;
    Names passing;
  } rows[] = {
      {"", "", {"a.txt", "D/b.TXT", "D/c.dat", "D/", "D/S/表.txt"}},
      {"\\.txt$", "", {}},
      {".*\\.txt", "", {"a.txt", "D/b.TXT", "D/S/表.txt"}},
      {"表.*", "", {"D/S/表.txt"}},
      {"D/[^/]*;A.TXT", "", {"a.txt", "D/b.TXT", "D/c.dat"}},
      {";.*\\.txt", "", {"a.txt", "D/b.TXT", "D/c.dat", "D/", "D/S/表.txt"}},
      {"", "b.txt", {"a.txt", "D/c.dat", "D/", "D/S/表.txt"}},
      {"", "[^/]*;x", {"D/b.TXT", "D/c.dat", "D/", "D/S/表.txt"}},
      {"", "[^x]*", {"a.txt", "D/b.TXT", "D/S/表.txt"}},
      {".*\\.txt", "a.*;(", {"D/b.TXT", "D/S/表.txt"}},
      {"(", "", {}},
  };
  for (const auto& row : rows) {
    const EntryFilter filter(row.include, row.exclude);
    Names passing;
    for (const char* name : {"a.txt", "D/b.TXT", "D/c.dat", "D/", "D/S/表.txt"}) {
      if (filter.Passes(name)) passing.push_back(name);
    }
    EXPECT_EQ(passing, row.passing) << row.include << " " << row.exclude;
  }
}

GTEST_TEST(ExtractionList, Groups) {
  const struct {
    Names names;
    bool flat;
    std::vector<std::pair<std::string, Names>> groups;
  } rows[] = {
      {{"T/b", "a"}, false, {{"", {"T/b", "a"}}}},
      {{"T/A.TXT", "T/SUB/B.TXT"}, true, {{"", {"T/A.TXT"}}, {"SUB", {"T/SUB/B.TXT"}}}},
      // A folder entry belongs to its own folder; the spelling is that of the first in order.
      {{"T/Sub/b", "t/sUB/A", "T/", "T/Sub/Deep/x"},
       true,
       {{"", {"T/"}}, {"sUB", {"t/sUB/A", "T/Sub/b"}}, {"Sub/Deep", {"T/Sub/Deep/x"}}}},
      {{"T/S/b", "T/z", "T/a"}, true, {{"", {"T/a"}}, {"S", {"T/S/b"}}, {"", {"T/z"}}}},
      {{"T/C:x/a", "./y"},
       true,
       {{"", {"./y"}}, {platform::kHostNames == platform::NameRules::kPosix ? "C:x" : "C_x", {"T/C:x/a"}}}},
      {{}, true, {}},
  };
  for (const auto& row : rows) {
    std::vector<std::pair<std::string, Names>> groups;
    for (const ExtractionGroup& group : GroupEntries(row.names, row.flat)) {
      groups.emplace_back(group.sub_folder, group.names);
    }
    EXPECT_EQ(groups, row.groups) << (row.names.empty() ? "nothing" : row.names.front());
  }
}

}  // namespace
}  // namespace quendle
