#include "archive/modules/common/extraction.h"

#include <functional>

#include "archive/modules/common/response_file.h"
#include "support/file_systems.h"
#include "support/picture.h"
#include "support/scripted_family.h"
#include "support/temp_folder.h"

namespace quendle::modules {
namespace {

using test::ScriptedEntry;
using Files = std::map<std::string, std::string>;

// A host that answers by its members and notes what it hears.
struct Host {
  std::vector<std::string> problems;
  std::vector<std::string> passwords;  // given in turn
  std::size_t asked_passwords = 0;
  int overwrite = ARCHIVER_NO;
  int asked_overwrite = 0;
  int proceed = ARCHIVER_NO;
  std::vector<std::string> questions;
  bool go_on = true;

  ArchiverSession Session() {
    return {sizeof(ArchiverSession),
            this,
            "",
            [](void* user, const char*, std::uint64_t, std::uint64_t) { return Of(user).go_on ? 1 : 0; },
            [](void* user, const ArchiverVersion*, const ArchiverVersion*) {
              ++Of(user).asked_overwrite;
              return Of(user).overwrite;
            },
            [](void* user, const char*, char* buffer, std::uint32_t size) {
              Host& host = Of(user);
              if (host.asked_passwords++ >= host.passwords.size()) return ARCHIVER_NO;
              std::snprintf(buffer, size, "%s", host.passwords[host.asked_passwords - 1].c_str());
              return ARCHIVER_YES;
            },
            [](void* user, const char* question) {
              Of(user).questions.push_back(question);
              return Of(user).proceed;
            },
            [](void* user, const char* entry, const char* reason) {
              Of(user).problems.push_back(std::string(entry) + ": " + reason);
            },
            nullptr,
            [](void*, const char*) {},
            nullptr,
            nullptr};
  }

 private:
  static Host& Of(void* user) { return *static_cast<Host*>(user); }
};

// An extraction of everything in the scripted archive into folder/out.
struct Fixture {
  test::TempFolder folder;
  Host host;
  std::vector<Call> calls{1};
  Limits limits;

  Fixture() {
    test::g_first_engine = {};
    test::g_second_engine.reset();
    test::WriteFile(folder / "a", "archive");
    std::filesystem::create_directories(folder / "out");
    calls[0].request = {folder / "a", folder / "out", "", true, Existing::kReplace};
  }

  void Run() {
    std::unique_ptr<platform::InputFile> file;
    ASSERT_TRUE(platform::InputFile::Open(folder / "a", &file).ok());
    Reason reason;
    const auto archive = ListArchive(test::kScriptedFamily, ArchiveInput(std::move(file), 0),
                                     {"", [] { return std::nullopt; }}, &reason);
    ASSERT_TRUE(archive) << reason;
    const ArchiverSession abi = host.Session();
    Session session(&abi);
    Extract(*archive, limits, &session, &calls);
  }

  Files Out() const { return test::Picture(folder / "out"); }
  bool HasLinks() const { return test::MakeLink("target", folder / "link"); }
};

GTEST_TEST(Extraction, EachEntryIsWrittenOrNamed) {
  const struct {
    ScriptedEntry entry;
    Files out;
    const char* problem;  // part of the only one; empty: none
  } rows[] = {
      {{"a.txt", "x"}, {{"a.txt", "file x"}}, ""},
      {{"d/e/a.txt", ""}, {{"d", "folder"}, {"d/e", "folder"}, {"d/e/a.txt", "file "}}, ""},
      {{"d/", "", ReadStatus::kEnd, EntryKind::kFolder}, {{"d", "folder"}}, ""},
      {{"l", "", ReadStatus::kEnd, EntryKind::kLink, "a"}, {{"l", "link to a"}}, ""},
      {{"l", "", ReadStatus::kEnd, EntryKind::kLink, "../a"}, {}, "l: "},
      {{"l", "", ReadStatus::kEnd, EntryKind::kLink, "/etc/passwd"}, {}, "l: "},
      {{"dev", "", ReadStatus::kEnd, EntryKind::kOther}, {}, "dev: it is neither"},
      {{"../a.txt", "x"}, {}, "../a.txt: "},
      {{"half", "xxx", ReadStatus::kFailed}, {}, "half: scripted"},
      {{"odd", "", ReadStatus::kUnsupported}, {}, "odd: scripted"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.entry.path + " " + row.entry.link_target);
    Fixture fixture;
    test::g_first_engine.entries = {{"before", "1"}, row.entry, {"z", "2"}};
    fixture.Run();
    Files expected = row.out;
    expected["before"] = "file 1";
    expected["z"] = "file 2";
    if (row.out.contains("l") && !fixture.HasLinks()) continue;
    EXPECT_EQ(fixture.Out(), expected);
    EXPECT_EQ(fixture.calls[0].failed, *row.problem != '\0');
    ASSERT_EQ(fixture.host.problems.size(), *row.problem == '\0' ? 0U : 1U);
    if (*row.problem != '\0') {
      EXPECT_NE(fixture.host.problems[0].find(row.problem), std::string::npos) << fixture.host.problems[0];
    }
    EXPECT_EQ(fixture.calls[0].log.size(), 3U);
  }
}

GTEST_TEST(Extraction, WithoutPathsAColonIsNoDrive) {
  Fixture fixture;
  test::g_first_engine.entries = {{"T/x:y", "1"}, {"T/C:s/x", "2"}};
  fixture.calls[0].request.with_paths = false;
  fixture.Run();
  EXPECT_EQ(fixture.Out(), (Files{{test::kSeparator == '/' ? "x:y" : "x_y", "file 1"}, {"x", "file 2"}}));
  EXPECT_EQ(fixture.host.problems, std::vector<std::string>{});
}

// Links are made last, but have had their names all along.
GTEST_TEST(Extraction, LinksOfOneNameAreToldApart) {
  Fixture fixture;
  if (!fixture.HasLinks()) GTEST_SKIP() << "no links can be made here";
  test::g_first_engine.entries = {{"l", "", ReadStatus::kEnd, EntryKind::kLink, "a"},
                                  {"l", "", ReadStatus::kEnd, EntryKind::kLink, "b"},
                                  {"l", "", ReadStatus::kEnd, EntryKind::kLink, "c"},
                                  {"l", "4"}};
  fixture.Run();
  EXPECT_EQ(fixture.Out(),
            (Files{{"l", "link to a"}, {"l (2)", "link to b"}, {"l (3)", "link to c"}, {"l (4)", "file 4"}}));
  EXPECT_FALSE(fixture.calls[0].failed);
}

GTEST_TEST(Extraction, SecondEngine) {
  Fixture fixture;
  test::g_first_engine.entries = {
      {"a", "1"}, {"b", "no", ReadStatus::kUnsupported}, {"b", "3"}, {"c", "", ReadStatus::kUnsupported}};
  test::g_second_engine =
      test::ScriptedArchive{{{"c", "", ReadStatus::kUnsupported}, {"b", "2"}, {"b", "never"}, {"new", "x"}}};
  fixture.Run();
  EXPECT_EQ(fixture.Out(), (Files{{"a", "file 1"}, {"b", "file 3"}, {"b (2)", "file 2"}}));
  EXPECT_EQ(fixture.host.problems, std::vector<std::string>{"c: scripted"});
}

GTEST_TEST(Extraction, WhatIsThereAlready) {
  const struct {
    Existing existing;
    std::int64_t there;  // its time; the archive's is 1,000,000,000
    int answer;
    const char* content;
    int asked;
    bool failed;
  } rows[] = {
      {Existing::kReplace, 2'000'000'000, ARCHIVER_NO, "file new", 0, false},
      {Existing::kUpdate, 999'999'999, ARCHIVER_NO, "file new", 0, false},
      {Existing::kUpdate, 1'000'000'000, ARCHIVER_NO, "file old", 0, false},
      {Existing::kAsk, 0, ARCHIVER_YES, "file new", 1, false},
      {Existing::kAsk, 0, ARCHIVER_NO, "file old", 1, false},
      {Existing::kAsk, 0, ARCHIVER_CANCEL, "file old", 1, true},
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
    EXPECT_EQ(fixture.Out(), (Files{{"a", row.content}}));
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
  std::filesystem::create_directories(fixture.folder / "out/s");
  Request request{fixture.folder / "a", fixture.folder / "out", "r", false, Existing::kReplace};
  fixture.calls = {Call{request, {"T/", "T/A"}, {}, false}, Call{request, {"T/S/A", "T/GONE"}, {}, false}};
  fixture.calls[1].request.folder += "/s";
  fixture.Run();
  const bool ignores_case = test::kSeparator != '/';
  EXPECT_EQ(fixture.Out(), (Files{{"a", "file 1"},
                                  {"s", "folder"},
                                  {"s/a", "file 2"},
                                  {ignores_case ? "s/A (2)" : "s/A", "file 3"},
                                  {ignores_case ? "s/a (3)" : "s/a (2)", "file 4"}}));
  EXPECT_FALSE(fixture.calls[0].failed);
  EXPECT_EQ(fixture.calls[0].log, std::vector<std::string>{"extracted  T/a"});
  EXPECT_TRUE(fixture.calls[1].failed);
  EXPECT_EQ(fixture.host.problems, std::vector<std::string>{"T/GONE: there is no such entry"});
}

GTEST_TEST(Extraction, DamagedBehindAnEntry) {
  Fixture fixture;
  test::g_first_engine = {{{"a", "1"}}, ReadStatus::kFailed, ""};
  fixture.Run();
  EXPECT_EQ(fixture.Out(), (Files{{"a", "file 1"}}));
  EXPECT_TRUE(fixture.calls[0].failed);
  EXPECT_EQ(fixture.host.problems, std::vector<std::string>{": scripted"});
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
  for (const auto& row : rows) {
    SCOPED_TRACE(row.given.size());
    Fixture fixture;
    test::g_first_engine = {{{"a", "1"}, {"b", "2"}}, ReadStatus::kEnd, "right"};
    test::g_second_engine = test::g_first_engine;
    fixture.host.passwords = row.given;
    fixture.Run();
    EXPECT_EQ(fixture.Out().size(), row.fits ? 2U : 0U);
    EXPECT_EQ(fixture.calls[0].failed, !row.fits);
    EXPECT_EQ(fixture.host.asked_passwords, row.asked);
  }
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
    EXPECT_EQ(fixture.Out().size(), row.extracted);
    EXPECT_EQ(fixture.calls[0].failed, row.answer == ARCHIVER_NO);
  }
}

GTEST_TEST(Extraction, SizesThatFitNoDiskAreRefusedBeforehand) {
  Fixture fixture;
  ScriptedEntry large{"a", "1"};
  large.declared_size = std::uint64_t{1} << 63;
  test::g_first_engine.entries = {large, large, {"b", "2"}};
  fixture.Run();
  EXPECT_TRUE(fixture.calls[0].failed);
  ASSERT_EQ(fixture.host.problems.size(), 1U);
  EXPECT_NE(fixture.host.problems[0].find("bytes free"), std::string::npos) << fixture.host.problems[0];
  EXPECT_TRUE(fixture.Out().empty());
}

GTEST_TEST(Extraction, CancelLeavesNothingIncomplete) {
  Fixture fixture;
  test::g_first_engine.entries = {{"a", "1"}};
  fixture.host.go_on = false;
  fixture.Run();
  EXPECT_EQ(fixture.Out(), Files{});
  EXPECT_EQ(fixture.host.problems, std::vector<std::string>{": cancelled"});
}

}  // namespace
}  // namespace quendle::modules
