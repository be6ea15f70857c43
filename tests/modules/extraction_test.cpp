#include "archive/modules/common/response_file.h"
#include "support/archives.h"
#include "support/scripted_extraction.h"

namespace quendle::modules {
namespace {

using test::ScriptedEntry;
using Fixture = test::ScriptedExtraction;

GTEST_TEST(Extraction, EachEntryIsWrittenOrNamed) {
  const struct {
    ScriptedEntry entry;
    const char* out;
    const char* problem;  // how the only one begins; empty: none
  } rows[] = {
      {{"a.txt", "x"}, " a.txt=x", ""},
      {{"d/e/a.txt", ""}, " d/ d/e/ d/e/a.txt=", ""},
      {{"d/", "", ReadStatus::kEnd, EntryKind::kFolder}, " d/", ""},
      {{"l", "", ReadStatus::kEnd, EntryKind::kLink, "a"}, " l>a", ""},
      {{"l", "", ReadStatus::kEnd, EntryKind::kLink, "../a"}, "", "l: "},
      {{"l", "", ReadStatus::kEnd, EntryKind::kLink, "/etc/passwd"}, "", "l: "},
      {{"dev", "", ReadStatus::kEnd, EntryKind::kOther}, "", "dev: it is neither"},
      {{"../a.txt", "x"}, "", "../a.txt: "},
      {{"half", "xxx", ReadStatus::kFailed}, "", "half: scripted"},
      {{"odd", "", ReadStatus::kUnsupported}, "", "odd: scripted"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.entry.path + " " + row.entry.link_target);
    Fixture fixture;
    test::g_first_engine.entries = {{".before", "1"}, row.entry, {"z", "2"}};
    fixture.Run();
    if (std::string(row.out) == " l>a" && !fixture.HasLinks()) continue;
    EXPECT_EQ(fixture.Out(), ".before=1" + std::string(row.out) + " z=2");
    EXPECT_TRUE(fixture.FailedOnlyWith(row.problem)) << testing::PrintToString(fixture.host.problems);
    EXPECT_EQ(fixture.calls[0].log.size(), 3U);
  }
}

GTEST_TEST(Extraction, WhatComesOutOfAnArchive) {
  const auto link = [](const char* target) {
    return ScriptedEntry{"l", "", ReadStatus::kEnd, EntryKind::kLink, target};
  };
  ScriptedEntry huge{"a", "1"};
  huge.declared_size = std::uint64_t{1} << 63;
  const ScriptedEntry none{"c", "", ReadStatus::kUnsupported};
  const ScriptedEntry half{"b", "no", ReadStatus::kUnsupported};
  const test::ScriptedArchive other{{none, {"b", "2"}, {"b", "never"}, {"new", "x"}}};
  const char* const no_drives = test::kSeparator == '/' ? "x=2 x:y=1" : "x=2 x_y=1";
  const struct {
    const char* what;
    test::ScriptedArchive first;
    std::string out;
    const char* problem;
    std::optional<test::ScriptedArchive> second = {};
    bool with_paths = true, go_on = true;
  } rows[] = {
      {"names with colons", {{{"T/x:y", "1"}, {"T/C:s/x", "2"}}}, no_drives, "", {}, false},
      // They are made last, but have had their names all along.
      {"links", {{link("a"), link("b"), link("c"), {"l", "4"}}}, "l>a l (2)>b l (3)>c l (4)=4", ""},
      {"two engines", {{{"a", "1"}, half, {"b", "3"}, none}}, "a=1 b=3 b (2)=2", "c: scripted", other},
      {"a second engine that is not there",
       {{{"a", "1"}, none}},
       "a=1",
       "c: not installed",
       test::ScriptedArchive{{}, ReadStatus::kEnd, "", "not installed"}},
      {"that would not help",
       {{{"a", "1"}, {"b", "2", ReadStatus::kFailed}}},
       "a=1",
       "b: scripted",
       test::ScriptedArchive{{}, ReadStatus::kEnd, "", "not installed"}},
      {"damage behind an entry", {{{"a", "1"}}, ReadStatus::kFailed}, "a=1", ": scripted"},
      {"sizes that fit no disk", {{huge, huge, {"b", "2"}}}, "", "bytes free"},
      {"a cancel", {{{"a", "1"}}}, "", ": cancelled", {}, true, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    Fixture fixture;
    if (row.out.starts_with("l>") && !fixture.HasLinks()) continue;
    test::g_first_engine = row.first;
    test::g_second_engine = row.second;
    fixture.calls[0].request.with_paths = row.with_paths;
    fixture.host.go_on = row.go_on;
    fixture.Run();
    EXPECT_EQ(fixture.Out(), row.out);
    EXPECT_TRUE(fixture.FailedOnlyWith(row.problem)) << testing::PrintToString(fixture.host.problems);
  }
}

GTEST_TEST(Extraction, WhatIsThereAlready) {
  const struct {
    Existing existing;
    int answer;
    std::int64_t there;  // its time; the archive's is 1,000,000,000
    const char* out;
    int asked;
    bool failed;
  } rows[] = {
      {Existing::kReplace, ARCHIVER_NO, 2'000'000'000, "a=new", 0, false},
      {Existing::kUpdate, ARCHIVER_NO, 999'999'999, "a=new", 0, false},
      {Existing::kUpdate, ARCHIVER_NO, 1'000'000'000, "a=old", 0, false},
      {Existing::kAsk, ARCHIVER_YES, 0, "a=new", 1, false},
      {Existing::kAsk, ARCHIVER_NO, 0, "a=old", 1, false},
      {Existing::kAsk, ARCHIVER_CANCEL, 0, "a=old", 1, true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << static_cast<int>(row.existing) << " " << row.there << " "
                                    << row.answer);
    Fixture fixture;
    test::WriteFile(fixture.folder / "out/a", "old");
    test::SetWriteTime(fixture.folder / "out/a", row.there);
    fixture.calls[0].request.existing = row.existing;
    fixture.host.overwrite = row.answer;
    test::g_first_engine.entries = {{"a", "new"}};
    fixture.Run();
    EXPECT_EQ(fixture.Out(), row.out);
    EXPECT_EQ(fixture.host.asked_overwrite, row.asked);
    EXPECT_EQ(fixture.calls[0].failed, row.failed);
  }
}

// Without their folders two entries have one name; neither may be lost. Entries go to the call that names them.
GTEST_TEST(Extraction, CallsWithoutPaths) {
  Fixture fixture;
  test::g_first_engine.entries = {{"T/", "", ReadStatus::kEnd, EntryKind::kFolder},
                                  {"T/a", "1"},
                                  {"T/s/a", "2"},
                                  {"T/S/A", "3"},
                                  {"T/s/a", "4"},
                                  {"rest", "5"}};
  fs::create_directories(fixture.folder / "out/s");
  Request request{fixture.folder / "a", fixture.folder / "out", "r", false, Existing::kReplace};
  fixture.calls = {Call{request, {"T/", "T/A"}, {}, false}, Call{request, {"T/S/A", "T/GONE"}, {}, false}};
  fixture.calls[1].request.folder += "/s";
  fixture.Run();
  const bool ignores_case = test::kSeparator != '/';
  EXPECT_EQ(fixture.Out(),
            ignores_case ? "a=1 s/ s/A (2)=3 s/a=2 s/a (3)=4" : "a=1 s/ s/A=3 s/a=2 s/a (2)=4");
  EXPECT_FALSE(fixture.calls[0].failed);
  EXPECT_EQ(fixture.calls[0].log, std::vector<std::string>{"extracted  T/a"});
  EXPECT_TRUE(fixture.calls[1].failed);
  EXPECT_EQ(fixture.host.problems, std::vector<std::string>{"T/GONE: there is no such entry"});
}

// They are asked for as they are listed; two that become one are both kept.
GTEST_TEST(Extraction, NamesWithRoots) {
  Fixture fixture;
  test::g_first_engine.entries = {{"/", "", ReadStatus::kEnd, EntryKind::kFolder},
                                  {"/T/a", "1"},
                                  {"C:/T/a", "2"},
                                  {".//T/a", "3"},
                                  {"/T/l", "", ReadStatus::kEnd, EntryKind::kLink, "/T/a"},
                                  {"C:/../x", "4"},
                                  {"/t/A", "5"}};
  fixture.calls[0].request.response_file = "r";
  fixture.calls[0].names = {"T/A", "T/L", "../X"};
  fixture.Run();
  const bool ignores_case = test::kSeparator != '/';
  EXPECT_EQ(fixture.Out(), ignores_case ? "T/ T/A (4)=5 T/a=1 T/a (2)=2 T/a (3)=3"
                                        : "T/ T/a=1 T/a (2)=2 T/a (3)=3 t/ t/A=5");
  const std::vector<std::string> log = {
      "extracted  T/a (in the archive /T/a)",
      "extracted  T/a (in the archive C:/T/a) as a (2), since another entry has that name",
      "extracted  T/a as a (3), since another entry has that name",
      "failed     T/l: the link may lead out of the folder",
      "failed     ../x: the name leads out of the folder: there is a \"..\" in it",
      std::string("extracted  t/A (in the archive /t/A)")
          .append(ignores_case ? " as A (4), since another entry has that name" : "")};
  EXPECT_EQ(fixture.calls[0].log, log);
}

GTEST_TEST(Extraction, Passwords) {
  const struct {
    std::vector<std::string> given;
    bool fits;
    std::size_t asked;
  } rows[] = {{{"right"}, true, 1},
              {{"x", "y", "right"}, true, 3},
              {{"x", "y", "z", "right"}, true, 4},
              {{"x", "y"}, false, 3},
              {{}, false, 1}};
  const auto extract = [](Fixture* fixture, const test::ScriptedArchive& archive,
                          const std::vector<std::string>& given) {
    test::g_first_engine = archive;
    test::g_second_engine = archive;
    fixture->host.passwords = given;
    fixture->Run();
    return fixture->Out();
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.given.size());
    Fixture fixture;
    EXPECT_EQ(extract(&fixture, {{{"a", "1"}, {"b", "2"}}, ReadStatus::kEnd, "right"}, row.given),
              row.fits ? "a=1 b=2" : "");
    EXPECT_EQ(fixture.calls[0].failed, !row.fits);
    EXPECT_EQ(fixture.host.asked_passwords, row.asked);
  }
  // Entries may have passwords of their own, or none; damage to one that opened is not the password's fault.
  ScriptedEntry own[] = {{"a", "1"}, {"b", "2"}, {"c", "3"}, {"d", "4", ReadStatus::kFailed}};
  own[0].password = own[3].password = "x";
  own[2].password = "y";
  Fixture fixture;
  EXPECT_EQ(extract(&fixture, {{std::begin(own), std::end(own)}}, {"x", "y", "z"}), "a=1 b=2 c=3");
  EXPECT_EQ(fixture.host.asked_passwords, 2U);
  EXPECT_TRUE(fixture.FailedOnlyWith("d: scripted"));
}

GTEST_TEST(Extraction, SuspiciousArchivesAreAskedAbout) {
  const std::string big(10'000, 'x');
  const struct {
    Limits limits;
    int answer;
    std::size_t extracted;
  } rows[] = {
      {{1, 1U << 30, 200}, ARCHIVER_NO, 0},
      {{1, 1U << 30, 200}, ARCHIVER_YES, 2},
      {{9, 5'000, 200}, ARCHIVER_NO, 1},
      {{9, 5'000, 200}, ARCHIVER_YES, 2},
  };
  for (const auto& row : rows) {
    Fixture fixture;
    fixture.limits = row.limits;
    fixture.host.proceed = row.answer;
    test::g_first_engine.entries = {{"a", "1"}, {"b", big}};
    fixture.Run();
    EXPECT_EQ(fixture.host.questions.size(), 1U);
    EXPECT_EQ(test::Picture(fixture.folder / "out").size(), row.extracted);
    EXPECT_EQ(fixture.calls[0].failed, row.answer == ARCHIVER_NO);
  }
}

}  // namespace
}  // namespace quendle::modules
