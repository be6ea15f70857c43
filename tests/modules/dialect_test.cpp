#include "archive/modules/common/dialect.h"

#include "archive/modules/common/response_file.h"

namespace quendle::modules {
namespace {

GTEST_TEST(Dialect, CommandLines) {
  const struct {
    const Dialect& dialect;
    const char* words;
    bool with_paths;
    Existing existing;
  } rows[] = {
      {kZipDialect, "-x -s -i -C", true, Existing::kAsk},
      {kZipDialect, "-x -s -i -C -o", true, Existing::kReplace},
      {kZipDialect, "-u -s -i -C -o", true, Existing::kUpdate},
      {kZipDialect, "-u -s -i -C", true, Existing::kAsk},
      {kZipDialect, "-x -s -i -C -j -o", false, Existing::kReplace},
      {kZipDialect, " -s -i -C -j -o", false, Existing::kReplace},
      {kLzhDialect, "x -+ -a1 -jp1 -x1 -c1 -m0", true, Existing::kAsk},
      {kLzhDialect, "x -+ -a1 -jp1 -x1 -c1 -m1", true, Existing::kReplace},
      {kLzhDialect, "x -+ -a1 -jp1 -x0 -c0 -m1", false, Existing::kUpdate},
      {kLzhDialect, "x -+ -a1 -jp1 -x0", false, Existing::kAsk},
      {kCabDialect, "-x ", true, Existing::kAsk},
      {kCabDialect, "-x  -o", true, Existing::kReplace},
      {kCabDialect, "-x -j -n", false, Existing::kUpdate},
      {kRarDialect, "-x ", true, Existing::kAsk},
      {kRarDialect, "-x  -o", true, Existing::kReplace},
      {kRarDialect, "-e  -u", false, Existing::kUpdate},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.words);
    Request request;
    Reason problem;
    const std::string line = std::string(row.words).append(R"( "/a b/x.zip" "/out dir/" "@/tmp/r")");
    ASSERT_TRUE(ParseCommandLine(row.dialect, line, &request, &problem)) << problem;
    EXPECT_EQ(request.archive, "/a b/x.zip");
    EXPECT_EQ(request.folder, "/out dir");
    EXPECT_EQ(request.response_file, "/tmp/r");
    EXPECT_EQ(request.with_paths, row.with_paths);
    EXPECT_EQ(request.existing, row.existing);
  }
}

GTEST_TEST(Dialect, FolderAsSwitch) {
  Request request;
  Reason problem;
  ASSERT_TRUE(ParseCommandLine(kSevenZipDialect, R"(e "-o/" -aoa "/a".7z" "@/tmp/r")", &request, &problem));
  EXPECT_EQ(request.archive, "/a\".7z");
  EXPECT_EQ(request.folder, "/");
  EXPECT_FALSE(request.with_paths);
  EXPECT_EQ(request.existing, Existing::kReplace);
  ASSERT_TRUE(ParseCommandLine(kSevenZipDialect, R"(x "-o/out" "/a.7z" "@/r")", &request, &problem));
  EXPECT_TRUE(request.with_paths);
  EXPECT_EQ(request.existing, Existing::kAsk);
}

GTEST_TEST(Dialect, RefusedCommandLines) {
  const struct {
    const Dialect& dialect;
    const char* line;
    const char* problem;
  } rows[] = {
      {kZipDialect, "", "lacks"},
      {kZipDialect, R"(-x "/a.zip")", "lacks"},
      {kZipDialect, R"(-x --delete "/a.zip" "/out")", "unknown word: --delete"},
      {kZipDialect, R"(-x "/a.zip" "/out" "/other")", "unknown word: /other"},
      {kLzhDialect, R"(-x1 "/a.lzh" "/out")", "no command"},
      {kSevenZipDialect, R"(d "-o/out" "/a.7z")", "unknown word: /a.7z"},
      {kRarDialect, R"(-x "/a.rar" "/out" "@/r" "@/s")", "unknown word: @/s"},
      {kCabDialect, R"(-x "/a.cab)", "lacks"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    Request request;
    Reason problem;
    EXPECT_FALSE(ParseCommandLine(row.dialect, row.line, &request, &problem));
    EXPECT_NE(English(problem).find(row.problem), std::string::npos) << problem;
  }
}

GTEST_TEST(ResponseFile, Names) {
  EXPECT_EQ(ParseResponseFile("\"TOP/A.TXT\"\r\n\"top\\表.txt\"\r\n\r\nbare\n\"a\"b\"\r\"\"\r\n\"open"),
            (std::vector<std::string>{"TOP/A.TXT", "TOP/表.TXT", "BARE", "A\"B", "\"OPEN"}));
  EXPECT_TRUE(ParseResponseFile("").empty());
}

}  // namespace
}  // namespace quendle::modules
