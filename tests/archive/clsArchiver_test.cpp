#include "archive/clsArchiver.h"

#include <chrono>
#include <ctime>
#include <thread>

#include "support/archiver_bench.h"
#include "support/file_systems.h"
#include "support/picture.h"

namespace quendle {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* kLibraries[] = {"UnZIP32", "UnLHA32", "Cab32", "unrar32", "7-zip32"};
constexpr const char* kAccepted[] = {"accept UnZip\n", "accept Unlha\n", "accept Cab\n", "accept Unrar\n",
                                     "accept SevenZip\n"};

GTEST_TEST(ClsArchiver, TheFirstLibraryThatAcceptsCounts) {
  test::ArchiverBench bench;
  EXPECT_EQ(bench.Take("a.zip", kAccepted[0]), 0) << "nothing is installed";
  fs::create_directories(bench.Module("UnZIP32"));
  EXPECT_EQ(bench.Take("a.zip", kAccepted[0]), 0) << "a folder is no library";
  EXPECT_TRUE(bench.archiver.LibraryProblems().empty());
  fs::remove(bench.Module("UnZIP32"));
  for (int i = 0; i < 5; ++i) {
    bench.Install(kLibraries[i], i % 2 == 0 ? "plain" : "full");
    EXPECT_EQ(bench.Take("x", kAccepted[i]), i + 1) << "installed while the program runs";
  }
  EXPECT_EQ(bench.Take("a.zip", "accept SevenZip\naccept Cab\naccept Unrar\n"), 3);
  EXPECT_EQ(bench.Take("a.zip", "entry a\n"), 0);
  std::error_code in_use;  // some systems keep what is loaded
  if (fs::remove(bench.Module("Cab32"), in_use)) {
    EXPECT_EQ(bench.Take("a.zip", "accept SevenZip\naccept Cab\naccept Unrar\n"), 4) << "gone again";
  }
}

GTEST_TEST(ClsArchiver, LibrariesThatCannotBeUsedCountAsMissing) {
  test::ArchiverBench bench;
  bench.Install("UnLHA32", "broken");
  test::WriteFile(bench.Module("UnZIP32"), "no library");
  bench.Install("7-zip32", "plain");
  EXPECT_EQ(bench.Take("a", "accept UnZip\naccept Unlha\naccept SevenZip\n"), 5);
  const Texts problems = bench.archiver.LibraryProblems();
  ASSERT_EQ(problems.size(), 2U);
  EXPECT_TRUE(problems[0].starts_with(bench.Module("UnZIP32") + ": ")) << problems[0];
  EXPECT_EQ(problems[0].rfind("UnZIP32."), problems[0].find("UnZIP32.")) << problems[0];
  EXPECT_NE(problems[1].find("no function UnlhaCloseArchive"), std::string::npos) << problems[1];
  fs::remove(bench.Module("UnZIP32"));
  bench.Install("UnZIP32", "full");
  EXPECT_EQ(bench.Take("a", "accept UnZip\n"), 1) << "repaired";
  EXPECT_EQ(bench.archiver.LibraryProblems().size(), 1U);
}

GTEST_TEST(ClsArchiver, SaysWhyAFileHasNoType) {
  test::ArchiverBench bench;
  const auto why = [&bench](const std::string& name, bool is_asked) {
    bench.archiver.pFileName = bench.folder / name;
    const int type = is_asked ? bench.archiver.GetArcType() : 0;
    EXPECT_EQ(type, 0);
    const std::string reason = English(bench.archiver.WhyNoType());
    return reason.substr(0, reason.find(bench.folder.path()));
  };
  test::WriteFile(bench.folder / "b.txt", "x");
  EXPECT_EQ(why("b.txt", true), "no archiver library is installed");
  bench.Install("7-zip32", "full");
  test::WriteFile(bench.Module("UnLHA32"), "no library");
  const std::string later =
      "accept SevenZip\nclosed\nlisting the archive begins in " + bench.folder.path() + "\n";
  const struct {
    const char* name;
    bool is_asked;
    std::string content;
    const char* reason;
  } rows[] = {
      {"gone.zip", false, "", "it cannot be opened: No such file or directory"},
      {"modules", false, "", "a folder is no archive"},
      {"pipe", true, "", "a pipe or device is no archive"},
      {"a.txt", false, "x", "its name has no archive's ending, and CheckArchive is 0"},
      {"a.002", false, "x", "its name has no archive's ending, and CheckArchive is 0"},
      {"b.002", false, "accept SevenZip\nentry a\n",
       "its name has no archive's ending, and CheckArchive is 0"},
      {"a.7z.002", false, later, "the archive begins in "},
      {"a.dat", false, later, "its name has no archive's ending, and CheckArchive is 0"},
      {"a.txt", true, "x", "no archiver library takes it for an archive"},
      {"a.7z", true, "x", "no archiver library takes it for an archive"},
      {"a.Zip", true, "x", "no archiver library for ZIP is installed"},
      {"a.lzh", true, "x", "the archiver library for LZH cannot be used: "},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    if (!row.content.empty()) test::WriteFile(bench.folder / row.name, row.content);
    if (std::string(row.name) == "pipe" && !test::MakePipe(bench.folder / row.name)) continue;
    if (std::string(row.name) == "gone.zip" && test::kSeparator != '/')
      continue;  // the system's words are others
    EXPECT_TRUE(why(row.name, row.is_asked).starts_with(row.reason)) << why(row.name, row.is_asked);
  }
}

GTEST_TEST(ClsArchiver, Plans) {
  const std::string part(200, 'a');
  const std::string runs = "entry T/b\nentry T/" + std::string(200, 'x') + "\nentry T/c\n";
  const std::string exceeded = "cannot be used: match limit exceeded";
  const std::string deep_name = part + "/" + part + "/" + part;
  const struct {
    const char* variant;
    bool smart;
    const char* include;
    std::string script;
    std::size_t all, chosen;
    Texts folders;  // below the destination
    bool avoided;
    Texts problems;  // their beginnings
  } rows[] = {
      {"full", true, "", "entry TOP/A.TXT\nentry Top\\Sub\\B.TXT\n", 2, 2, {"", "/Sub"}, true, {}},
      {"full", false, "", "entry TOP/A.TXT\nentry TOP/SUB/B.TXT\n", 2, 2, {""}, false, {}},
      {"full", true, "", "entry TOP/A.TXT\nentry B.TXT\n", 2, 2, {""}, false, {}},
      {"full", true, ".*\\.txt", "entry T/\nentry T/a.txt\nentry T/b.dat\n", 3, 1, {""}, true, {}},
      {"full", true, "\\.txt$", "entry T/a.txt\n", 1, 0, {}, true, {}},
      {"full", true, "", "", 0, 0, {}, false, {}},
      {"full", true, "b;(", "entry b\n", 1, 0, {}, false, {": the pattern ( of Include cannot be used: "}},
      {"full", true, "b;(x+)+\\d", runs, 3, 0, {}, true, {": the pattern (x+)+\\d of Include " + exceeded}},
      {"plain", false, "", "closed\n", 0, 0, {}, false, {}},
      {"full", false, "", "closed\nlisting it is cut\n", 0, 0, {}, false, {": it is cut"}},
      {"full", true, "", "entry ../x\nentry a\n", 2, 1, {""}, false, {"../x: "}},
      {"full", false, "", "entry /x\nentry a\"\n", 2, 0, {}, false, {"/x: ", "a\": "}},
      {"full", true, "", "entry T/link/a\nentry T/b\n", 2, 2, {}, true, {": "}},
      {"full",
       false,
       "",
       "entry link/a\nentry b\nentry link/c\n",
       3,
       3,
       {},
       false,
       {"link/a: a link", "link/c: a link"}},
      {"plain", true, "", "entry T/a\"b/c\nentry T/d\n", 2, 2, {"/a\"b", ""}, true, {": "}},
      // Without a NUL the name fills the field; with the optional export it is whole.
      {"plain", false, "(a{200}/){2}a{111}", "entry " + deep_name + "\n", 1, 1, {""}, false, {}},
      {"full", false, "(a{200}/){2}a{200}", "entry " + deep_name + "\n", 1, 1, {""}, false, {}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.script.substr(0, 60));
    if (test::kSeparator != '/' && row.script.starts_with("entry T/a\""))
      continue;  // no name has a quote there
    test::ArchiverBench bench;
    bench.archiver.INCLUDE = row.include;
    bench.Install("UnZIP32", row.variant);
    ASSERT_EQ(bench.Take("a.zip", "accept UnZip\n" + row.script), 1);
    fs::create_directory(bench.folder / "d");
    const bool links = row.script.find("link") != std::string::npos;
    if (!test::MakeLink("/", bench.folder / "d/link") && links) continue;
    const std::string destination = bench.folder / (links ? "d" : "new/d");
    bench.archiver.SMARTMAKEDIR = row.smart;
    const auto before = test::Picture(bench.folder.path());
    const ExtractionReport report = bench.archiver.PlanExtraction(destination);
    EXPECT_EQ(test::Picture(bench.folder.path()), before);
    EXPECT_EQ(report.all, row.all);
    EXPECT_EQ(report.chosen, row.chosen);
    EXPECT_EQ(report.doubled_folder_avoided, row.avoided);
    EXPECT_EQ(bench.archiver.SMARTMAKEDIR, row.smart);
    Texts folders;
    for (const std::string& name : row.folders) folders.push_back(test::Native(destination + name));
    EXPECT_EQ(report.folders, folders);
    EXPECT_TRUE(bench.Tells(report, row.problems));
  }
}

GTEST_TEST(ClsArchiver, PlansSeeWhatIsInTheWay) {
  const std::string no_folder = test::kSeparator == '/' ? "Not a directory" : "a file or a link is where";
  const struct {
    bool confirm, smart;
    const char* destination;
    Texts problems;  // their beginnings
  } rows[] = {
      {false, true, "d", {}},
      {false, false, "d", {}},
      {true, true, "d", {"T/a: it exists already"}},
      {true, false, "d", {"T/a: it exists already"}},
      {true, true, "d/T", {"T/a: it exists already"}},
      {true, false, "new", {}},
      {false, false, "d/a", {"T/a: " + no_folder, "T/s/b: " + no_folder}},
      {false, true, "e", {"T/a: a folder", "T/s/b: " + no_folder}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.destination);
    test::ArchiverBench bench;
    bench.archiver.CONFIRMOVERWRITE = row.confirm;
    bench.Install("UnZIP32", "full");
    ASSERT_EQ(bench.Take("a.zip", "accept UnZip\nentry T/\nentry T/a\nentry T/s/b\n"), 1);
    for (const char* file : {"d/a", "d/T/a", "e/a/x", "e/s"}) test::WriteFile(bench.folder / file, "");
    bench.archiver.SMARTMAKEDIR = row.smart;
    EXPECT_TRUE(bench.Tells(bench.archiver.PlanExtraction(bench.folder / row.destination), row.problems));
  }
}

// What one entry has shown of a folder holds for the others in it, but not for longer paths.
GTEST_TEST(ClsArchiver, PlansSeePathsThatAreTooLong) {
  if (test::kSeparator != '/') GTEST_SKIP() << "Windows has another limit";
  test::ArchiverBench bench;
  bench.Install("UnZIP32", "full");
  ASSERT_EQ(bench.Take("a.zip", "accept UnZip\nentry a\nentry " + std::string(200, 'b') + "\nentry c\n"), 1);
  std::string destination = bench.folder / "new";
  while (destination.size() < 4000) destination += "/" + std::string(89, 'x');
  EXPECT_TRUE(bench.Tells(bench.archiver.PlanExtraction(destination), {std::string(200, 'b') + ": "}));
}

constexpr std::uint32_t kDosTime = 0x5A8F6000;  // 15 April 2025, noon on the local clock

GTEST_TEST(ClsArchiver, PlansSayWhatWouldBeReplaced) {
  const std::string dated = "dated " + std::to_string(kDosTime) + "\n";
  const std::string not_dated;
  const std::vector<std::size_t> all = {2, 0, 0};
  const struct {
    std::int16_t type, mode;
    bool confirm;
    std::string script;
    std::int64_t later;               // seconds by which the files are younger than the entries
    std::vector<std::size_t> counts;  // that are, may be and are asked about
  } rows[] = {
      {0, 1, false, not_dated, 0, all},
      {0, 1, true, dated, 0, {0, 0, 2}},
      {0, 2, true, dated, 9, {0, 0, 2}},
      {0, 2, false, dated, -1, all},
      {0, 2, false, dated, 0, {0, 2, 0}},
      {0, 2, false, dated, 1, {0, 0, 0}},
      {0, 2, false, not_dated, 1, {0, 2, 0}},
      {1, 2, false, dated, 1, {0, 0, 0}},
      {2, 2, false, dated, 1, {0, 0, 0}},
      {3, 2, false, dated, 1, {0, 0, 0}},
      {4, 2, false, dated, 1, all},  // 7Z knows no update
      {0, 1, false, "listing it is cut\n", 0, {}},
  };
  std::tm noon{};
  noon.tm_year = 125, noon.tm_mon = 3, noon.tm_mday = 15, noon.tm_hour = 12, noon.tm_isdst = -1;
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.type << " " << row.mode << row.confirm << row.script << row.later);
    test::ArchiverBench bench;
    const auto type = static_cast<std::size_t>(row.type);
    bench.Install(kLibraries[type], "full");
    bench.Take("x", kAccepted[type] + row.script + "entry a\nentry a\nentry s/b\nentry s/c\nentry d/\n");
    for (const char* file : {"to/a", "to/s/b", "to/e"}) {
      test::WriteFile(bench.folder / file, "");
      test::SetWriteTime(bench.folder / file, std::mktime(&noon) + row.later);
    }
    bench.archiver.EXTRACTTYPE = row.mode;
    bench.archiver.CONFIRMOVERWRITE = row.confirm;
    const auto replaces = bench.archiver.PlanExtraction(bench.folder / "to").replaces;
    EXPECT_EQ(replaces.has_value(), !row.counts.empty());
    if (!replaces) continue;
    EXPECT_EQ((std::vector{replaces->sure, replaces->unsure, replaces->asked}), row.counts);
    EXPECT_TRUE(replaces->is_whole);
    const Texts both = {bench.folder / "to/a", bench.folder / "to/s/b"};
    EXPECT_EQ(replaces->files, replaces->All() > 0 ? both : Texts());
  }
}

// A window says that it does not know all rather than to keep somebody waiting.
GTEST_TEST(ClsArchiver, PlansForSomebodyComeToAnEnd) {
  test::ArchiverBench bench({}, std::chrono::milliseconds(0));
  bench.Install("UnZIP32", "full");
  ASSERT_EQ(bench.Take("a.zip", "accept UnZip\nentry b\n"), 1);
  for (const bool waits : {true, false})
    EXPECT_EQ(bench.archiver.PlanExtraction(bench.folder / "d", waits).replaces.value().is_whole, !waits);
}

GTEST_TEST(ExistingFiles, TimesThatTheClockShowsTwice) {
  if (test::kSeparator != '/') GTEST_SKIP() << "Windows knows the zones of its own only";
  const test::TimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  const std::uint32_t autumn =
      46U << 25 | 10U << 21 | 25U << 16 | 2U << 11 | 30U << 5;  // 25 October 2026, 2:30, twice
  const std::uint32_t spring = 46U << 25 | 3U << 21 | 29U << 16 | 2U << 11 | 30U << 5;  // never
  const std::int64_t first = 1'792'888'200;                                             // 0:30 UTC
  const struct {
    std::uint32_t time;
    std::int64_t existing;
    Fate fate;
  } rows[] = {{autumn, first - 1, Fate::kReplaced},     {autumn, first, Fate::kUnsure},
              {autumn, first + 3600, Fate::kUnsure},    {autumn, first + 3601, Fate::kKept},
              {autumn + 1, first + 1, Fate::kReplaced}, {spring, first, Fate::kUnsure},
              {spring + (1 << 11), first, Fate::kKept}, {0, first, Fate::kUnsure}};
  for (const auto& row : rows) {
    platform::EntryStatus existing;
    existing.write_time.seconds = row.existing;
    EXPECT_EQ(FateByTime(row.time, existing), row.fate) << row.time << " " << row.existing;
  }
}

GTEST_TEST(ExistingFiles, FindsThoseThatAreOthersNow) {
  const test::TempFolder folder;
  ExistingFiles files;
  Texts replaced;
  const auto add = [&](const std::string& path) {
    platform::EntryStatus status;
    ASSERT_TRUE(platform::ReadStatus(path, &status).ok());
    files.Note(path, status, Fate::kReplaced);
  };
  for (const char* name : {"renamed over", "written into", "other", "gone", "kept", "linked"}) {
    test::WriteFile(folder / name, "old");
    test::SetWriteTime(folder / name, 1'000'000'000);
    add(folder / name);
    add(folder / name);
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(30));  // the clock of a file system goes in steps
  test::WriteFile(folder / "new", "old");
  test::SetWriteTime(folder / "new", 1'000'000'000);
  fs::rename(folder / "new", folder / "renamed over");
  test::WriteFile(folder / "written into", "new");  // a library that does so may set the time, too
  test::SetWriteTime(folder / "written into", 1'000'000'000);
  test::WriteFile(folder / "other", "longer");
  fs::remove(folder / "gone");
  fs::create_hard_link(folder / "linked", folder / "another name");
  const Replacements found = files.Found();
  EXPECT_EQ(found.files, (Texts{folder / "renamed over", folder / "written into", folder / "other"}));
  EXPECT_EQ(found.sure, 3U);
}

}  // namespace
}  // namespace quendle
