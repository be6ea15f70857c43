#include "archive/extraction_list.h"

#include "platform/entries/entry_path.h"

namespace quendle {
namespace {

using Names = std::vector<std::string>;

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
    const char* include;
    const char* exclude;
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
