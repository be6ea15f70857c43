// The program itself, run as a user runs it.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>

#include "support/file_systems.h"
#include "support/temp_folder.h"

namespace quendle {
namespace {

namespace fs = std::filesystem;

struct Ended {
  int status;
  std::string out;
  std::string err;
};

// Runs the program by the shell with `arguments` as they stand, in `folder`, with the settings in folder/s.
Ended RunProgram(const test::TempFolder& folder, const std::string& arguments,
                 const std::string& variables = "") {
  const std::string command = "cd '" + folder.path() +
                              "' && unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM; " + variables +
                              " QUENDLE_HOME='" + folder / "s" + "' '" QUENDLE_PROGRAM "' " + arguments +
                              " >'" + folder / "out" + "' 2>'" + folder / "err" + "' </dev/null";
  const int status = std::system(command.c_str());
  return {WEXITSTATUS(status), test::ReadFile(folder / "out"), test::ReadFile(folder / "err")};
}

void WriteSettings(const test::TempFolder& folder, const std::string& items) {
  test::WriteFile(folder / "s/mover.ini", "[General]\r\nMoveTo=" + folder / "m" + "\r\n");
  test::WriteFile(folder / "s/items.ini", items);
}

GTEST_TEST(Program, ExitStatusAndStreams) {
  test::TempFolder folder;
  WriteSettings(
      folder,
      "[Texts]\r\nPattern=.*\\.txt\r\nID=1\r\nAction=2\r\n[All a]\r\nPattern=a.*\r\nID=1\r\nAction=4\r\n");
  const struct {
    const char* arguments;
    int status;
    const char* out;  // each is somewhere in its stream; empty: the stream is empty
    const char* err;
  } rows[] = {
      {"--help", 0, "usage: quendle", ""},
      {"--version", 0, "Quendle ", ""},
      {"--unknown b.txt", 2, "", "usage:"},
      {"--batch", 2, "", "no path given"},
      {"--batch --profile Nobody b.txt", 2, "", "no profile is called Nobody"},
      {"--dry-run b.txt", 0, "planned    ", ""},
      {"--batch b.txt", 0, "[Texts] move to ", ""},
      {"--batch b.txt", 1, "missing    ", "b.txt: No such file or directory"},
      {"--batch a.txt", 1, "ambiguous  ", "All a, Texts"},
      {"--batch -- -c.txt", 0, "done       ", ""},
      {"--batch none.dat d.txt", 1, "d.txt [Texts]", "none.dat: no profile matches"},
      {"--batch --profile texts a.txt", 0, "[Texts] move to ", ""},
      {"e.txt", 0, "done       ", ""},
      {"--confirm f.txt", 0, "done       ", "confirmation is asked for"},
  };
  for (const char* name : {"a.txt", "b.txt", "-c.txt", "d.txt", "e.txt", "f.txt", "none.dat"}) {
    test::WriteFile(folder / name, "x");
  }
  for (const auto& row : rows) {
    SCOPED_TRACE(row.arguments);
    const Ended ended = RunProgram(folder, row.arguments);
    EXPECT_EQ(ended.status, row.status);
    EXPECT_NE(ended.out.find(row.out), std::string::npos) << ended.out;
    EXPECT_NE(ended.err.find(row.err), std::string::npos) << ended.err;
    EXPECT_EQ(ended.out.empty(), *row.out == '\0') << ended.out;
    EXPECT_EQ(ended.err.empty(), *row.err == '\0') << ended.err;
  }
}

GTEST_TEST(Program, WithoutADisplayThatAnswersNoWindowIsTried) {
  test::TempFolder folder;
  WriteSettings(folder, "[Texts]\r\nPattern=.*\\.txt\r\nID=1\r\nAction=2\r\n");
  for (const char* variables : {"QT_QPA_PLATFORM=xcb", "DISPLAY=:9999", "DISPLAY=:9999 QT_QPA_PLATFORM=xcb",
                                "WAYLAND_DISPLAY=/nowhere"}) {
    SCOPED_TRACE(variables);
    fs::remove(folder / "m/a.txt");
    test::WriteFile(folder / "a.txt", "x");
    const Ended ended = RunProgram(folder, "--confirm a.txt", variables);
    EXPECT_EQ(ended.status, 0);
    EXPECT_NE(ended.err.find("no window can be shown here"), std::string::npos) << ended.err;
  }
}

GTEST_TEST(Program, JsonObjects) {
  test::TempFolder folder;
  WriteSettings(folder, "[T]\r\nPattern=.*t\r\nID=1\r\nAction=6\r\nCopyTo=" + folder / "c" + "\r\n");
  test::WriteFile(folder / "in/q\"\xFF\\.t", "x");
  test::WriteFile(folder / "in/b.t", "x");
  test::WriteFile(folder / "m/b.t", "old");
  const Ended ended = RunProgram(folder, "--batch --json in/* in/gone");
  EXPECT_EQ(ended.status, 1);
  std::istringstream lines(ended.out);
  std::vector<nlohmann::json> objects;
  for (std::string line; std::getline(lines, line);) objects.push_back(nlohmann::json::parse(line));
  ASSERT_EQ(objects.size(), 3U);
  const std::string root = fs::canonical(folder.path()).string();
  EXPECT_EQ(objects[0], nlohmann::json({{"path", root + "/in/b.t"},
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
  EXPECT_EQ(objects[1]["name"], "q\"\\xFF\\\\.t");
  EXPECT_EQ(objects[1]["steps"][1]["to"], folder / "m/q\"\\xFF\\\\.t");
  EXPECT_EQ(objects[1]["escaped"], true);
  EXPECT_EQ(objects[1]["result"], "done");
  EXPECT_TRUE(fs::exists(folder / "m/q\"\xFF\\.t"));
  EXPECT_EQ(objects[2]["result"], "missing");
  EXPECT_EQ(objects[2]["profile"], nullptr);
}

GTEST_TEST(Program, ResultsThatCannotBeWritten) {
  test::TempFolder folder;
  WriteSettings(folder, "[T]\r\nPattern=.*t\r\nID=1\r\nAction=2\r\n");
  const std::string program = "cd '" + folder.path() + "'; '" QUENDLE_PROGRAM "' --settings s --batch ";
  test::WriteFile(folder / "a.t", "a");
  test::WriteFile(folder / "b.t", "b");
  EXPECT_EQ(WEXITSTATUS(std::system((program + "a.t b.t >/dev/full 2>err").c_str())), 1);
  EXPECT_NE(test::ReadFile(folder / "err").find("not begun: 1"), std::string::npos)
      << test::ReadFile(folder / "err");
  EXPECT_TRUE(fs::exists(folder / "m/a.t") && fs::exists(folder / "b.t"));
  // With its streams closed, what the program prints must not end in the files that it opens.
  std::system((program + "b.t >&- 2>&- <&-").c_str());
  EXPECT_EQ(test::ReadFile(folder / "m/b.t"), "b");
}

GTEST_TEST(Program, OnlyTenPathsWithoutBatch) {
  test::TempFolder folder;
  WriteSettings(folder, "[T]\r\nPattern=f.*\r\nID=1\r\nAction=2\r\n");
  std::string paths;
  for (int i = 10; i <= 21; ++i) {
    const std::string name = std::string("f").append(std::to_string(i));
    paths.append(" ").append(name);
    test::WriteFile(folder / name, "x");
  }
  const Ended ended = RunProgram(folder, paths);
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.err.find("f20: left out"), std::string::npos) << ended.err;
  EXPECT_NE(ended.err.find("f21: left out"), std::string::npos) << ended.err;
  EXPECT_TRUE(fs::exists(folder / "m/f19"));
  EXPECT_TRUE(fs::exists(folder / "f20"));
}

GTEST_TEST(Program, OneCopyForEachFolderWithSettings) {
  test::TempFolder folder;
  WriteSettings(folder, "[Texts]\r\nPattern=.*\\.txt\r\nID=1\r\nAction=2\r\n");
  fs::copy(folder / "s", folder / "other");
  fs::create_directory_symlink(folder / "s", folder / "link");
  fs::create_directory(folder / "run");
  fs::permissions(folder / "run", fs::perms::owner_all);
  const std::string windowed =
      "XDG_RUNTIME_DIR='" + folder / "run" + "' QT_QPA_PLATFORM=offscreen '" QUENDLE_PROGRAM "' --settings ";
  const auto start = [&](const std::string& command) {
    return std::system(("cd '" + folder.path() + "' || exit; exec >>err 2>&1; " + command).c_str());
  };
  test::WriteFile(folder / "a.txt", "x");
  ASSERT_EQ(start(windowed + "s --confirm a.txt & echo $! >first"), 0);
  const auto listens = [&] {
    const auto in = fs::directory_iterator(folder / "run");
    return std::any_of(begin(in), end(in), [](const auto& entry) { return entry.is_socket(); });
  };
  for (int i = 0; i < 20'000 && !listens(); ++i) usleep(1000);
  for (const std::string settings : {"s", "./s", "s//", "link", "link/../s", "other"}) {
    SCOPED_TRACE(settings);
    test::WriteFile(folder / "b.txt", "x");
    EXPECT_EQ(WEXITSTATUS(start(windowed + settings + " b.txt")), settings == "other" ? 0 : 1);
    EXPECT_EQ(fs::exists(folder / "b.txt"), settings != "other");
  }
  EXPECT_NE(test::ReadFile(folder / "err").find("another copy is running"), std::string::npos);
  EXPECT_EQ(start("kill $(cat first)"), 0);
}

GTEST_TEST(Program, DamagedSettingsGetAClearLine) {
  std::string random(200'000, '\0');
  unsigned state = 7;
  for (char& c : random) c = static_cast<char>((state = state * 1664525U + 1013904223U) >> 24);
  const struct {
    std::string items;
    const char* err;
  } rows[] = {
      {random, "there are no profiles in it"},
      {"[a\0b]\r\nPattern=\0x\r\n" + std::string(1, '\0'), "no profile matches"},
      {"[Slow]\r\nPattern=(x+)+\\d\r\n", "profile Slow: its pattern cannot be used: match limit exceeded"},
      {"", "there are no profiles"},
      {"[表]\r\nPattern=never\r\n", "this looks like UTF-8"},
      {"[Bad]\r\nPattern=(\r\n", "profile Bad: its pattern cannot be used: missing closing parenthesis"},
  };
  for (const auto& row : rows) {
    test::TempFolder folder;
    WriteSettings(folder, row.items);
    const std::string name(200, 'x');
    test::WriteFile(folder / name, "x");
    const Ended ended = RunProgram(folder, "--dry-run " + name);
    EXPECT_EQ(ended.status, 1);
    EXPECT_NE(ended.err.find(row.err), std::string::npos) << ended.err;
    EXPECT_EQ(ended.out.substr(0, 10), "unmatched ");
  }
  test::TempFolder folder;
  fs::create_directories(folder / "s/items.ini");
  test::WriteFile(folder / "x.txt", "x");
  const Ended ended = RunProgram(folder, "--dry-run x.txt");
  EXPECT_NE(ended.err.find("s/items.ini: Is a directory"), std::string::npos) << ended.err;
  EXPECT_FALSE(fs::exists(folder / "s/mover.ini")) << "a dry run makes no settings files";

  test::WriteFile(folder / "file", "");
  const Ended unwritable = RunProgram(folder, "--batch --settings file x.txt");
  EXPECT_EQ(unwritable.status, 1);
  EXPECT_NE(unwritable.err.find("the settings files could not be made"), std::string::npos) << unwritable.err;
}

// Starts the program on every file of folder/in, interrupts it, and waits for its end.
int InterruptedStatus(const test::TempFolder& folder) {
  std::vector<std::string> arguments = {QUENDLE_PROGRAM, "--settings", folder / "s", "--batch"};
  for (const auto& entry : fs::directory_iterator(folder / "in")) arguments.push_back(entry.path().string());
  std::vector<char*> raw;
  for (std::string& argument : arguments) raw.push_back(argument.data());
  raw.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    if (std::freopen("/dev/null", "w", stdout) != nullptr &&
        std::freopen("/dev/null", "w", stderr) != nullptr) {
      execv(raw[0], raw.data());
    }
    _exit(127);
  }
  for (int i = 0; i < 20'000 && !fs::exists(folder / "moving"); ++i) usleep(1000);  // made by the first move
  kill(child, SIGINT);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

GTEST_TEST(Program, AnInterruptLeavesNothingHalfDone) {
  test::TempFolder folder;
  const std::string elsewhere = test::OtherFileSystem();
  if (elsewhere.empty()) GTEST_SKIP() << "there is no second file system";
  const test::TempFolder other(elsewhere);
  constexpr int kFiles = 30;
  constexpr std::uintmax_t kSize = 8 << 20;
  WriteSettings(folder,
                "[T]\r\nPattern=.*\\.big\r\nID=1\r\nAction=2\r\nMoveTo=" + folder / "moving/to" + "\r\n");
  for (int i = 0; i < kFiles; ++i) {
    test::WriteFile(other / (std::to_string(i) + ".big"), std::string(kSize, 'x'));
  }
  fs::create_directory_symlink(other.path(), folder / "in");
  EXPECT_EQ(InterruptedStatus(folder), 1);
  int whole = 0;
  for (const std::string& place : {other.path(), folder / "moving/to"}) {
    if (!fs::exists(place)) continue;
    for (const auto& entry : fs::directory_iterator(place)) {
      EXPECT_EQ(entry.path().extension(), ".big") << entry.path();
      EXPECT_EQ(entry.file_size(), kSize) << entry.path();
      ++whole;
    }
  }
  EXPECT_EQ(whole, kFiles);
}

}  // namespace
}  // namespace quendle
