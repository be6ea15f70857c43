// The program itself, run as a user runs it.
#include "support/program.h"

#include <nlohmann/json.hpp>
#include <sstream>

namespace quendle {
namespace {

using namespace std::string_literals;

GTEST_TEST(Program, ExitStatusAndStreams) {
  test::TempFolder folder;
  test::WriteSettings(
      folder,
      "[Texts]\r\nPattern=.*\\.txt\r\nID=1\r\nAction=2\r\n[All a]\r\nPattern=a.*\r\nID=1\r\nAction=4\r\n");
  const struct {
    const char* arguments;
    int status;
    const char* out;  // each is somewhere in its stream; empty: the stream is empty
    const char* err;
  } rows[] = {
      {"--help", 0, "usage: quendle", ""},
      {"--batch -h", 0, "--help, -h  ", ""},
      {"--version", 0, "Quendle ", ""},
      {"--unknown b.txt", 2, "", "usage:"},
      {"--batch", 2, "", "no path given"},
      {"--batch --profile Nobody b.txt", 2, "", "no profile is called Nobody"},
      {"--dry-run b.txt", 0, "planned    ", ""},
      {"--batch b.txt", 0, "[Texts] move to ", ""},
      {"--batch b.txt", 1, "missing    ", "b.txt: "},
      {"--batch a.txt", 1, "ambiguous  ", "All a, Texts"},
      {"--batch -- -c.txt", 0, "done       ", ""},
      {"--batch none.dat d.txt", 1, "d.txt [Texts]", "none.dat: no profile matches"},
      {"--batch --profile texts a.txt", 0, "[Texts] move to ", ""},
      {"--batch \"表 示.txt\"", 0, "表 示.txt [Texts]", ""},
      {"1.txt 2.txt 3.txt 4.txt 5.txt 6.txt 7.txt 8.txt 9.txt 10.txt 11.txt", 1, "10.txt [Texts] move to ",
       "11.txt: left out"},
  };
  for (const char* name : {"a.txt", "b.txt", "-c.txt", "d.txt", "表 示.txt", "none.dat"}) {
    test::WriteFile(folder / name, "x");
  }
  for (int i = 1; i <= 11; ++i) test::WriteFile(folder / (std::to_string(i) + ".txt"), "x");
  for (const auto& row : rows) {
    SCOPED_TRACE(row.arguments);
    const test::Ended ended = test::RunProgram(folder, row.arguments);
    EXPECT_EQ(ended.status, row.status);
    EXPECT_NE(ended.out.find(row.out), std::string::npos) << ended.out;
    EXPECT_NE(ended.err.find(row.err), std::string::npos) << ended.err;
    EXPECT_EQ(ended.out.empty(), *row.out == '\0') << ended.out;
    EXPECT_EQ(ended.err.empty(), *row.err == '\0') << ended.err;
  }
  EXPECT_TRUE(fs::exists(folder / "m/10.txt") && fs::exists(folder / "11.txt"));
}

GTEST_TEST(Program, JsonObjects) {
  test::TempFolder folder;
  test::WriteSettings(folder, "[T]\r\nPattern=.*t\r\nID=1\r\nAction=6\r\nCopyTo=" + folder / "c" + "\r\n");
  test::WriteFile(folder / "in/b.t", "x");
  test::WriteFile(folder / "in/表 示.t", "x");
  test::WriteFile(folder / "m/b.t", "old");
  const test::Ended ended = test::RunProgram(folder, "--batch --json in/b.t \"in/表 示.t\" in/gone");
  EXPECT_EQ(ended.status, 1);
  std::istringstream lines(ended.out);
  std::vector<nlohmann::json> objects;
  for (std::string line; std::getline(lines, line);) objects.push_back(nlohmann::json::parse(line));
  ASSERT_EQ(objects.size(), 3U);
  const std::string root = test::TextOf(fs::canonical(test::FsPath(folder.path())));
  EXPECT_EQ(objects[0], nlohmann::json({{"path", root + test::Native("/in/b.t")},
                                        {"name", "b.t"},
                                        {"archive", nullptr},
                                        {"matches", {"T"}},
                                        {"profile", "T"},
                                        {"steps",
                                         {{{"step", "copy"}, {"to", folder / "c/b.t"}, {"result", "done"}},
                                          {{"step", "move"},
                                           {"to", folder / "m/b.t"},
                                           {"result", "failed"},
                                           {"error", objects[0]["steps"][1]["error"]}}}},
                                        {"result", "failed"},
                                        {"error", objects[0]["steps"][1]["error"]}}));
  EXPECT_EQ(objects[1]["name"], "表 示.t");
  EXPECT_EQ(objects[1]["steps"][1]["to"], folder / "m/表 示.t");
  EXPECT_EQ(objects[1]["result"], "done");
  EXPECT_EQ(objects[2]["path"], root + test::Native("/in/gone"));
  EXPECT_EQ(objects[2]["result"], "missing");
  EXPECT_EQ(objects[2]["profile"], nullptr);
}

GTEST_TEST(Program, DamagedSettingsGetAClearLine) {
  const std::pair<std::string, const char*> rows[] = {
      {"[Slow]\r\nPattern=(x+)+\\d\r\n", "profile Slow: its pattern cannot be used: match limit exceeded"},
      {"", "there are no profiles"},
      {"[表]\r\nPattern=never\r\n", "profile 陦ｨ: its title looks like UTF-8"},
      {"[Bad]\r\nPattern=(\r\n", "profile Bad: its pattern cannot be used: missing closing parenthesis"},
  };
  for (const auto& [items, err] : rows) {
    test::TempFolder folder;
    test::WriteSettings(folder, items);
    const std::string name(200, 'x');
    test::WriteFile(folder / name, "x");
    const test::Ended ended = test::RunProgram(folder, "--dry-run " + name);
    EXPECT_EQ(ended.status, 1);
    EXPECT_NE(ended.err.find(err), std::string::npos) << ended.err;
    EXPECT_EQ(ended.out.substr(0, 10), "unmatched ");
  }
  test::TempFolder folder;
  test::WriteSettings(folder, "[a\0b]\r\nPattern=\0x\r\n"s);
  test::WriteFile(folder / "x.txt", "x");
  EXPECT_NE(test::RunProgram(folder, "--batch x.txt").err.find("line 1: a NUL"), std::string::npos);
  fs::remove_all(folder / "s");
  fs::create_directories(folder / "s/items.ini");
  const test::Ended ended = test::RunProgram(folder, "--dry-run x.txt");
  EXPECT_NE(ended.err.find(test::Native("s/items.ini: ")), std::string::npos) << ended.err;
  EXPECT_EQ(ended.out.substr(0, 7) + std::to_string(ended.status), "failed 1");
  EXPECT_FALSE(fs::exists(folder / "s/mover.ini")) << "a dry run makes no settings files";
}

GTEST_TEST(Program, NoSettingsComeIntoBeingWhereNobodyMeantThem) {
  test::TempFolder folder;
  test::WriteFile(folder / "file", "");
  test::WriteFile(folder / "x.txt", "");
  const struct {
    const char *settings, *reason;  // null: they are made
  } rows[] = {{"none/new", "there is no folder to make it in"},
              {"none/new/", "there is no folder to make it in"},
              {"file/new", "there is no folder to make it in"},
              {"file", "this is not a folder"},
              {"new", nullptr},
              {"new/", nullptr}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.settings);
    fs::remove_all(test::FsPath(folder / "new"));
    const std::string arguments = std::string("--batch --settings ") + row.settings + " x.txt";
    const test::Ended ended = test::RunProgram(folder, arguments);
    EXPECT_EQ(ended.status, row.reason == nullptr ? 1 : 2);
    if (row.reason != nullptr) {
      EXPECT_NE(ended.err.find(row.reason), std::string::npos) << ended.err;
    }
    EXPECT_EQ(fs::exists(test::FsPath(folder / "new/mover.ini")), row.reason == nullptr);
    EXPECT_FALSE(fs::exists(test::FsPath(folder / "none")));
  }
}

}  // namespace
}  // namespace quendle
