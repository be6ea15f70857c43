#include "files/clsFileInfo.h"

#include <ctime>
#include <iomanip>
#include <sstream>

#include "base/modString.h"
#include "platform/text/unicode.h"
#include "support/picture.h"
#include "support/scoped_variable.h"

namespace quendle {
namespace {

GTEST_TEST(ClsFileInfo, PartsOfNames) {
  const test::TempFolder folder;
  const std::string root = fs::canonical(folder.path()).string() + test::kSeparator;
  const struct {
    const char *name, *base, *extension;
  } rows[] = {
      {"report.txt", "report", "txt"},   {"A.B.C", "A.B", "C"}, {"README", "", "README"},
      {".profile", "", "profile"},       {"a. ", "a", " "},     {"表.ｔxt", "表", "ｔxt"},
      {"raw\xFF.bin", "raw\xFF", "bin"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    if (kHostStyle == PathStyle::kWindows && !platform::IsUtf8(row.name)) continue;  // names are text there
    test::WriteFile(root + row.name, "x");
    clsFileInfo info;
    ASSERT_TRUE(info.SetFilename(root + "." + test::kSeparator + row.name));
    EXPECT_EQ(info.pFilePathLong(), root + row.name);
    EXPECT_EQ(info.pFolderPathLong() + test::kSeparator, root);
    EXPECT_EQ(info.pFileNameLong(), row.name);
    EXPECT_EQ(info.pFileNameNoExt(), row.base);
    EXPECT_EQ(info.pFileNameExtension(), row.extension);
  }
}

GTEST_TEST(ClsFileInfo, WhatIsNotFoundLeavesNothing) {
  const test::TempFolder folder;
  fs::create_directory(folder / "sub");
  clsFileInfo info;
  ASSERT_TRUE(info.SetFilename(folder / "sub"));
  EXPECT_EQ(info.pFileNameLong(), "sub");
  for (const std::string& path : {folder / "none", folder / "sub/", std::string()}) {
    EXPECT_FALSE(info.SetFilename(path)) << path;
    EXPECT_EQ(info.pFilePathLong() + info.pFileNameLong() + info.pFolderPathLong(), "");
  }
  if (kHostStyle == PathStyle::kWindows) return;  // a root is no entry of a folder there
  ASSERT_TRUE(info.SetFilename("/"));
  EXPECT_EQ(info.pFilePathLong(), "/");
}

GTEST_TEST(ClsFileInfo, TimesAreLocal) {
  const test::TempFolder folder;
  test::WriteFile(folder / "x", "x");
  std::tm local = {};
  std::istringstream("2003-11-07 23:30") >> std::get_time(&local, "%Y-%m-%d %H:%M");
  local.tm_isdst = -1;
  for (const char* zone : test::kZones) {
    const test::TimeZone changed(zone);
    test::SetWriteTime(folder / "x", std::mktime(&local));
    clsFileInfo info;
    ASSERT_TRUE(info.SetFilename(folder / "x"));
    EXPECT_EQ(info.WriteDay().year, 2003);
    EXPECT_EQ(info.WriteDay().month, 11U);
    EXPECT_EQ(info.WriteDay().day, 7U);
    EXPECT_NEAR(info.pTimeWrite(), 37932 + 23.5 / 24, 1e-6) << zone;
  }
}

}  // namespace
}  // namespace quendle
