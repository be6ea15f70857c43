// What of the program only POSIX has: displays that may not be there, closed streams, links, signals.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "platform/text/unicode.h"
#include "support/file_systems.h"
#include "support/program.h"

namespace quendle {
namespace {

GTEST_TEST(Program, WithoutADisplayThatAnswersNoWindowIsTried) {
  test::TempFolder folder;
  test::WriteSettings(folder, "[Texts]\r\nPattern=.*\\.txt\r\nID=1\r\nAction=2\r\n");
  test::WriteFile(folder / "b.txt", "x");
  const test::Ended unasked = test::RunProgram(folder, "b.txt");
  EXPECT_EQ(unasked.out.substr(0, 5), "done ");
  EXPECT_EQ(unasked.err, "");
  for (const char* variables : {"", "QT_QPA_PLATFORM=xcb", "DISPLAY=:9999",
                                "DISPLAY=:9999 QT_QPA_PLATFORM=xcb", "WAYLAND_DISPLAY=/nowhere"}) {
    SCOPED_TRACE(variables);
    fs::remove(folder / "m/a.txt");
    test::WriteFile(folder / "a.txt", "x");
    const test::Ended ended =
        test::RunProgram(folder, std::string(variables) + " '" QUENDLE_PROGRAM "' --confirm a.txt", "env");
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out.substr(0, 5), "done ");
    EXPECT_NE(ended.err.find("no window can be shown here"), std::string::npos) << ended.err;
  }
}

// What a name does to a terminal, "\u202e" among it, is only written as a number.
GTEST_TEST(Program, JsonNamesThatAreNoText) {
  test::TempFolder folder;
  test::WriteSettings(folder, "[T]\r\nPattern=.*t\r\nID=1\r\nAction=2\r\n");
  std::string deceptive, numbers;
  constexpr std::u32string_view kDeceptive =
      U"\u007F\u0080\u009B\u009F\u061C\u200E\u200F\u2028\u202A\u202E\u2066\u2069";
  for (const char32_t c : kDeceptive) {
    char number[16];
    std::snprintf(number, sizeof number, "\\u%04x", static_cast<unsigned>(c));
    numbers += number;
    platform::AppendCodePoint(c, &deceptive);
  }
  const std::string harmless = "\u00A0\u200D\u2065\u206A表";
  const std::string name = deceptive + harmless + "q\"\xFF\\.t";
  const std::string shown = deceptive + harmless + "q\"\\xFF\\\\.t";
  test::WriteFile(folder / "in/" + name, "x");
  const std::string out = test::RunProgram(folder, "--batch --json in/*").out;
  EXPECT_NE(out.find("/m/" + numbers + harmless + "q"), std::string::npos) << out;
  const auto object = nlohmann::json::parse(out);
  EXPECT_EQ(object["name"], shown);
  EXPECT_EQ(object["steps"][0]["to"], folder / "m/" + shown);
  EXPECT_EQ(object["escaped"], true);
  EXPECT_EQ(object["result"], "done");
  EXPECT_TRUE(fs::exists(folder / "m/" + name));
}

GTEST_TEST(Program, ResultsThatCannotBeWritten) {
  test::TempFolder folder;
  test::WriteSettings(folder, "[T]\r\nPattern=.*t\r\nID=1\r\nAction=2\r\n");
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

GTEST_TEST(Program, OneCopyForEachFolderWithSettings) {
  test::TempFolder folder;
  test::WriteSettings(folder, "[Texts]\r\nPattern=.*\\.txt\r\nID=1\r\nAction=2\r\n");
  fs::copy(folder / "s", folder / "other");
  fs::create_directory_symlink(folder / "s", folder / "link");
  const test::TempFolder run;
  const std::string windowed =
      "XDG_RUNTIME_DIR='" + run.path() + "' QT_QPA_PLATFORM=offscreen '" QUENDLE_PROGRAM "' --settings ";
  const auto start = [&](const std::string& command) {
    return std::system(("cd '" + folder.path() + "' || exit; exec >>err 2>&1; " + command).c_str());
  };
  test::WriteFile(folder / "a.txt", "x");
  ASSERT_EQ(start(windowed + "s --confirm a.txt & echo $! >first"), 0);
  const auto listens = [&] {
    const auto in = fs::directory_iterator(run.path());
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

// Starts the program beside the test; what it says goes nowhere.
pid_t Start(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), QUENDLE_PROGRAM);
  std::vector<char*> raw;
  for (std::string& argument : arguments) raw.push_back(argument.data());
  raw.push_back(nullptr);
  const pid_t child = fork();
  if (child != 0) return child;
  signal(SIGINT, SIG_DFL);  // ignored where the tests run in the background
  if (std::freopen("/dev/null", "w", stdout) != nullptr &&
      std::freopen("/dev/null", "w", stderr) != nullptr) {
    execv(raw[0], raw.data());
  }
  _exit(127);
}

// Whoever drops files on an icon sees no terminal.
GTEST_TEST(Program, WhatIsLeftOutIsToldInAWindow) {
  const test::TempFolder folder;
  test::WriteSettings(folder, "[Texts]\r\nPattern=.*\\.txt\r\nID=1\r\nAction=2\r\n");
  const test::TempFolder run;
  const test::ScopedVariable runtime("XDG_RUNTIME_DIR", run.path());
  const test::ScopedVariable platform("QT_QPA_PLATFORM", "offscreen");
  const struct {
    int files;
    bool one_is_missing, is_told;
  } rows[] = {{1, false, false}, {1, true, true}, {10, false, false}, {11, false, true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.files) + (row.one_is_missing ? " and a missing one" : ""));
    std::vector<std::string> arguments = {"--settings", folder / "s"};
    if (row.one_is_missing) arguments.push_back(folder / "missing.txt");
    for (int i = 0; i < row.files; ++i) {
      arguments.push_back(folder / (std::to_string(i) + ".txt"));
      test::WriteFile(arguments.back(), "x");
    }
    fs::remove_all(folder / "m");
    const pid_t process = Start(arguments);
    const auto has_windows = [process] {
      return test::ReadFile("/proc/" + std::to_string(process) + "/maps").find("QuendleWindows") !=
             std::string::npos;
    };
    int status = -1;
    bool is_told = false;
    while (waitpid(process, &status, WNOHANG) == 0) {
      if (!is_told && (is_told = has_windows())) kill(process, SIGINT);
      usleep(1000);
    }
    EXPECT_EQ(is_told, row.is_told);
    EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, row.is_told ? 1 : 0);
    EXPECT_TRUE(fs::exists(folder / "m/0.txt"));
  }
}

GTEST_TEST(Program, AnInterruptLeavesNothingHalfDone) {
  test::TempFolder folder;
  const std::string elsewhere = test::OtherFileSystem();
  if (elsewhere.empty()) GTEST_SKIP() << "there is no second file system";
  const test::TempFolder other(elsewhere);
  constexpr int kFiles = 30;
  constexpr std::uintmax_t kSize = 8 << 20;
  test::WriteSettings(
      folder, "[T]\r\nPattern=.*\\.big\r\nID=1\r\nAction=2\r\nMoveTo=" + folder / "moving/to" + "\r\n");
  for (int i = 0; i < kFiles; ++i) {
    test::WriteFile(other / (std::to_string(i) + ".big"), std::string(kSize, 'x'));
  }
  fs::create_directory_symlink(other.path(), folder / "in");
  std::vector<std::string> arguments = {"--settings", folder / "s", "--batch"};
  for (const auto& entry : fs::directory_iterator(folder / "in")) arguments.push_back(entry.path().string());
  const pid_t process = Start(arguments);
  for (int i = 0; i < 20'000 && !fs::exists(folder / "moving"); ++i) usleep(1000);  // made by the first move
  kill(process, SIGINT);
  int status = 0;
  waitpid(process, &status, 0);
  EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 1);
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
