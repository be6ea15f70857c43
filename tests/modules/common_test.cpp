#include <memory>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/dialect.h"
#include "archive/modules/common/entry_matcher.h"
#include "archive/modules/common/entry_names.h"
#include "archive/modules/common/entry_times.h"
#include "archive/modules/common/response_file.h"
#include "archive/modules/common/signature_scan.h"
#include "support/archives.h"
#include "support/scoped_variable.h"

namespace quendle::modules {
namespace {

// The figures that the checks are known by, and any division into pieces gives the same.
GTEST_TEST(Checksum, AgreesWithTheKnownFigures) {
  const std::string text = "123456789123456789123456789";
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    Crc16Sum short_sum, whole_16, parts_16;
    Crc32Sum long_sum;
    short_sum.Add(std::string_view(text).substr(0, 9));
    long_sum.Add(std::string_view(text).substr(0, 9));
    EXPECT_EQ(short_sum.Value(), 0xBB3DU);
    EXPECT_EQ(long_sum.Value(), 0xCBF43926U);
    for (const char c : text) whole_16.Add({&c, 1});
    parts_16.Add(std::string_view(text).substr(0, cut));
    parts_16.Add(std::string_view(text).substr(cut));
    EXPECT_EQ(parts_16.Value(), whole_16.Value()) << cut;
  }
}

GTEST_TEST(EntryTimes, DosTimesAreOfTheLocalClock) {
  if (test::kSeparator != '/') GTEST_SKIP() << "Windows knows the zones of its own only";
  const test::TimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  const struct {
    std::uint32_t month, day, hour;
    std::int64_t time;
  } rows[] = {{7, 1, 12, 1'782'900'000},   // far from any change
              {6, 31, 12, 1'782'900'000},  // the day behind the last
              {3, 29, 12, 1'774'778'400},  // days on which the clock is changed
              {10, 25, 12, 1'792'926'000}};
  for (const auto& [month, day, hour, time] : rows) {
    EXPECT_EQ(TimeFromDos(46U << 25 | month << 21 | day << 16 | hour << 11)->seconds, time) << month;
  }
}

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
    const char *line, *problem;
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

GTEST_TEST(EntryNames, Decodes) {
  const struct {
    std::string bytes;
    bool says_utf8;
    std::string charset, name;
  } rows[] = {
      {"\x95\x5C.txt", false, "", "表.txt"},
      {"\xCA\xDD.txt", false, "", "ﾊﾝ.txt"},
      {"\x87\x40\x81\x60\xFA\x40", false, "", "①～ⅰ"},
      {"caf\xE9.txt", false, "", "café.txt"},
      {"\xE9.\x80\x81", false, "", "é.€\u0081"},  // the last byte is no character there
      {"表\\a", false, "", "表/a"},
      {"表\\a", true, "", "表/a"},
      {"\x95\x5C", true, "", "表"},  // it does not, after all
      {"caf\xE9.txt", false, "CP437", "cafΘ.txt"},
      {"caf\xC3\xA9", false, "CP437", "caf├⌐"},
      {"caf\xC3\xA9", true, "CP437", "café"},
      {"\x95\x5C\\a", false, "Shift_JIS", "表/a"},
      {"\xA4\xA2\\a", false, "EUC-JP", "あ/a"},
      {"\xC9\xBD", false, "EUC-JP", "表"},  // valid in the usual encoding as well
      {"\xA4", false, "EUC-JP", "､"},
      {std::string("a\0b", 3), false, "", std::string("a\0b", 3)},
      {"", false, "", ""},
  };
  for (const auto& row : rows) EXPECT_EQ(DecodeName(row.bytes, row.says_utf8, row.charset), row.name);
}

GTEST_TEST(EntryNames, KnowsCharsets) {
  for (const char* charset : {"CP932", "shift_jis", "Windows-31J", "UTF-8", "EUC-JP", "CP437"}) {
    EXPECT_TRUE(IsKnownCharset(charset)) << charset;
  }
  for (const char* charset : {"", "CP932//IGNORE", "klingon"})
    EXPECT_FALSE(IsKnownCharset(charset)) << charset;
}

GTEST_TEST(EntryMatcher, FindsWhatWasListed) {
  std::vector<Entry> listed(6);
  for (std::size_t i = 0; i < listed.size(); ++i) listed[i].path = "abacab"[i];
  const struct {
    const char* read;
    const char* places;  // "-": not listed
  } rows[] = {{"abacab", "012345"}, {"abcaaab", "01324-5"}, {"bbaacxca", "15023-34"}, {"ab", "01"}};
  for (const auto& row : rows) {
    EntryMatcher matcher(listed);
    std::string places;
    for (const char path : std::string(row.read)) {
      Entry entry;
      entry.path = path;
      const auto place = matcher.Find(entry);
      places += place ? std::to_string(*place) : "-";
    }
    EXPECT_EQ(places, row.places) << row.read;
  }
}

GTEST_TEST(SignatureScan, FindsArchivesAtTheBeginningAndBehindPrograms) {
  constexpr std::size_t kBlock = 256 << 10;  // what is read at a time
  const std::string filler(3 * kBlock, 'P');
  const auto program = [&](std::size_t size) { return "MZ" + filler.substr(0, size - 2); };
  std::string marks = "MZ";
  for (int i = 0; i < 10'001; ++i) marks += "PK\3\4";
  const struct {
    const char* what;
    std::string bytes;
    std::size_t lead;
    std::uint64_t reach;
    std::uint64_t from;  // the first position that fits
    std::optional<std::uint64_t> found;
    bool behind_anything = false;
  } rows[] = {
      {"beginning", "PK\3\4", 0, 100, 0, 0},
      {"beginning, with a lead", "..PK\3\4", 2, 100, 0, 0},
      {"beginning, shorter than the lead", ".", 2, 100, 0, {}},
      {"beginning, no reach", "PK\3\4", 0, 0, 0, 0},
      {"empty", "", 0, 100, 0, {}},
      {"ELF", "\177ELF PK\3\4", 0, 100, 0, 5},
      {"the other signature", "MZ -lh5- PK\3\4", 0, 100, 0, 3},
      {"a lead in a program", "MZ -lh5-", 2, 100, 0, 1},
      {"a lead that begins before the program", "MZ-lh5-", 3, 100, 0, {}},
      {"the first that fits", "MZPK\3\4-lh5-PK\3\4", 0, 100, 7, 11},
      {"Mach-O", "\xCF\xFA\xED\xFE PK\3\4", 0, 100, 0, 5},
      {"Mach-O for several machines", "\xCA\xFE\xBA\xBE PK\3\4", 0, 100, 0, 5},
      {"behind anything", "text PK\3\4", 0, 100, 0, 5, true},
      {"not behind anything", "text PK\3\4", 0, 100, 0, {}},
      {"in another archive", "Rar!\x1A\7 PK\3\4", 0, 100, 0, {}, true},
      {"the last that is tried", marks, 0, kBlock, 2 + 4 * 9'999, 2 + 4 * 9'999},
      {"behind as many as are tried", marks, 0, kBlock, 2 + 4 * 10'000, {}},
      {"none fits", "MZPK\3\4", 0, 100, 99, {}},
      {"the last within reach", "MZ....PK\3\4", 0, 7, 0, 6},
      {"behind reach", "MZ....PK\3\4", 0, 6, 0, {}},
      {"reach counts without the lead", "MZ....PK\3\4", 4, 3, 0, 2},
      {"at the end of a block", program(kBlock - 4) + "PK\3\4", 0, kBlock * 9, 0, kBlock - 4},
      {"across blocks", program(kBlock - 1) + "PK\3\4", 0, kBlock * 9, 0, kBlock - 1},
      {"at the start of a block", program(kBlock) + "PK\3\4", 0, kBlock * 9, 0, kBlock},
      {"across blocks with a lead", program(2 * kBlock + 1) + "PK\3\4", 3, kBlock * 9, 0, 2 * kBlock - 2},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const test::TempFolder folder;
    test::WriteFile(folder / "in", "??" + row.bytes);
    const ArchiveInput input(test::Opened(folder / "in"), 2);
    std::vector<std::uint64_t> tried;
    const auto found = FindSignature(input, {{"PK\3\4", "-lh5-"}, row.lead, row.reach, row.behind_anything},
                                     [&](auto position) {
                                       EXPECT_TRUE(tried.empty() || tried.back() < position);
                                       tried.push_back(position);
                                       return position >= row.from;
                                     });
    EXPECT_EQ(found, row.found);
  }
}

}  // namespace
}  // namespace quendle::modules
