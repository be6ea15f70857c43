#include "platform/services/launch.h"
#include "support/recorder.h"
#include "support/scoped_variable.h"

namespace quendle::platform {
namespace {

namespace fs = std::filesystem;

GTEST_TEST(Launch, StartsTheOpenerWithTheFileAsOneArgument) {
  const test::TempFolder folder;
  test::Recorder opener(folder / "bin/xdg-open");
  const std::string file = folder / "a b; $(touch x).txt";
  test::WriteFile(file, "x");
  const test::ScopedVariable path("PATH", folder / "bin" + ":/bin:/usr/bin");

  fs::create_directory_symlink(folder.path(), folder / "link");
  for (const std::string& untrusted : {folder.path(), folder / "bin", folder / "link"}) {
    EXPECT_FALSE(OpenWithDesktop(file, untrusted).ok()) << "an opener in the untrusted folder";
  }
  EXPECT_FALSE(OpenWithDesktop(folder / "none", "/nowhere").ok());
  ASSERT_TRUE(OpenWithDesktop(file, "/nowhere").ok());
  EXPECT_EQ(opener.Take(), "1\n" + file + "\n");
}

}  // namespace
}  // namespace quendle::platform
