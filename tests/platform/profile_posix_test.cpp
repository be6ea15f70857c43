#include <filesystem>

#include <sys/wait.h>
#include <unistd.h>

#include "platform/profile.h"
#include "support/temp_folder.h"

namespace quendle::platform {
namespace {

namespace fs = std::filesystem;

GTEST_TEST(WriteProfile, TwoProcessesLoseNothing) {
  const test::TempFolder folder;
  test::WriteFile(folder / "real/a.ini", "");
  fs::create_symlink("real/a.ini", folder / "link.ini");
  const std::string names[] = {folder / "real/a.ini", folder / "link.ini"};
  const char* const sections[] = {"s0", "s1", "s2"};
  pid_t children[2];
  for (int who = 0; who < 2; ++who) {
    children[who] = fork();
    if (children[who] != 0) continue;
    bool all = true;
    for (int i = 0; i < 200; ++i) {
      all &= WriteProfileString(names[who], sections[i % 3], std::to_string(who * 1000 + i), "v").ok();
    }
    _exit(all ? 0 : 1);
  }
  for (const pid_t child : children) {
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  for (int i = 0; i < 200; ++i) {
    for (const int key : {i, 1000 + i}) {
      ASSERT_EQ(ReadProfileString(names[0], sections[i % 3], std::to_string(key), "", 1024), "v") << key;
    }
  }
  EXPECT_TRUE(fs::is_symlink(folder / "link.ini"));
}

}  // namespace
}  // namespace quendle::platform
