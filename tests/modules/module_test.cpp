#include "archive/modules/common/module.h"

#include <chrono>
#include <thread>

#include "archive/modules/zip/zip_family.h"
#include "support/archives.h"
#include "support/picture.h"
#include "support/scripted_family.h"

namespace quendle::modules {
namespace {

struct Fixture {
  test::TempFolder folder;
  Module module;
  std::vector<std::string> problems;
  ArchiverSession session{};

  explicit Fixture(bool utf8 = true, const Family& family = test::kScriptedFamily) : module(family) {
    test::g_first_engine = {};
    test::g_second_engine.reset();
    test::WriteFile(folder / "a", "archive");
    fs::create_directories(folder / "out");
    if (utf8) module.UseUtf8(1);
    session.struct_size = sizeof session;
    session.user = this;
    session.charset = "";
    session.progress = [](void*, const char*, std::uint64_t, std::uint64_t) { return 1; };
    session.problem = [](void* user, const char* entry, const char* reason) {
      static_cast<Fixture*>(user)->problems.push_back(std::string(entry) + ": " + reason);
    };
    module.SetSession(&session);
  }

  std::vector<std::string> List() {
    std::vector<std::string> names;
    const ArchiverHandle handle = module.OpenArchive((folder / "a").c_str());
    ArchiverEntry entry;
    for (auto more = module.FindFirst(handle, &entry); more == 0; more = module.FindNext(handle, &entry)) {
      std::string full(module.FullName(handle, nullptr, 0), '\0');
      module.FullName(handle, full.data(), static_cast<std::uint32_t>(full.size() + 1));
      EXPECT_EQ(entry.file_name[sizeof entry.file_name - 1], '\0');
      EXPECT_TRUE(full.starts_with(entry.file_name)) << entry.file_name;
      names.push_back(full);
    }
    EXPECT_EQ(module.CloseArchive(handle) == 0, handle != 0);
    EXPECT_NE(module.CloseArchive(handle), 0);
    return names;
  }

  std::string CommandLine() { return "-x -o \"" + folder / "a" + "\" \"" + folder / "out/" + "\""; }
};

GTEST_TEST(Module, AcceptsItsArchivesAlsoIncompleteOnes) {
  Fixture fixture;
  test::WriteFile(fixture.folder / "text", "no archive");
  test::WriteFile(fixture.folder / "two", "archive of two");
  EXPECT_NE(fixture.module.CheckArchive((fixture.folder / "a").c_str()), 0);
  EXPECT_NE(fixture.module.CheckArchive((fixture.folder / "two").c_str()), 0);
  for (const char* name : {"text", "gone", "out"}) {
    EXPECT_EQ(fixture.module.CheckArchive((fixture.folder / name).c_str()), 0) << name;
  }
  const auto problem_of = [](void* user, const char*, const ArchiverReason* reason) {
    const ArchiverReason& part = reason->parts[reason->part_count - 1];
    static_cast<Fixture*>(user)->problems.push_back(std::string(reason->name) + "(" + part.words + ")");
    EXPECT_EQ(part.name, nullptr);
  };
  for (const bool in_parts : {false, true}) {
    if (in_parts) fixture.session.problem_of = problem_of;
    fixture.module.SetSession(&fixture.session);
    EXPECT_EQ(fixture.module.OpenArchive((fixture.folder / "two").c_str()), 0U);
  }
  EXPECT_EQ(fixture.problems,
            (std::vector<std::string>{": the volume x.002 is missing", "kVolumeMissing(x.002)"}));
}

GTEST_TEST(Module, CanBeStoppedWhileItLooksAtAFile) {
  Fixture fixture(true, kZipFamily);
  const std::string path = fixture.folder / "a";
  test::WriteFile(path, test::StoredZip({{"a.txt", "1"}}));
  fixture.session.progress = [](void*, const char* archive, std::uint64_t, std::uint64_t) {
    EXPECT_TRUE(std::string(archive).ends_with("a"));
    return 0;
  };
  const auto try_all = [&] {
    fixture.module.SetSession(&fixture.session);
    const auto wait = [] { std::this_thread::sleep_for(std::chrono::milliseconds(25)); };  // until it asks
    wait();
    const bool is_archive = fixture.module.CheckArchive(path.c_str()) != 0;
    wait();
    return std::pair(is_archive, fixture.List());
  };
  EXPECT_EQ(try_all(), std::pair(false, std::vector<std::string>()));
  EXPECT_EQ(fixture.problems, std::vector<std::string>{": cancelled"});
  fixture.session.progress = [](void*, const char*, std::uint64_t, std::uint64_t) { return 1; };
  EXPECT_EQ(try_all(), std::pair(true, std::vector<std::string>{"a.txt"})) << "nothing is kept of it";
}

GTEST_TEST(Module, ListsNamesOfAnyLength) {
  std::string long_name = "x";  // the record's 512 bytes end in the middle of a character
  for (int i = 0; i < 300; ++i) long_name += "表";
  const std::vector<std::string> names = {"a.txt", "d/", long_name, "b_c", "T/x"};
  for (const bool utf8 : {true, false}) {
    SCOPED_TRACE(utf8);
    Fixture fixture(utf8);
    const auto folder = [](const char* name) {
      return test::ScriptedEntry{name, "", ReadStatus::kEnd, EntryKind::kFolder};
    };
    test::g_first_engine.entries = {{"a.txt", "1"}, folder("d/"),    folder("./"), {long_name, ""},
                                    {"b\nc", ""},   {"/C:/T/x", ""}, folder("/")};
    std::vector<std::string> expected = names;
    if (!utf8) {
      expected[2] = "x";
      for (int i = 0; i < 300; ++i) expected[2] += "\x95\x5C";
    }
    EXPECT_EQ(fixture.List(), expected);
  }
  Fixture fixture;
  test::g_first_engine = {{{"a", ""}}, ReadStatus::kFailed, ""};
  EXPECT_EQ(fixture.List(), std::vector<std::string>{"a"});
  EXPECT_EQ(fixture.problems, std::vector<std::string>{": scripted"});
}

// A change of the archive between listing and extraction must not go unnoticed.
GTEST_TEST(Module, RemembersAListOnlyWhileTheArchiveIsTheSame) {
  Fixture fixture;
  test::g_first_engine.entries = {{"a", ""}};
  EXPECT_EQ(fixture.List(), std::vector<std::string>{"a"});
  test::g_first_engine.entries = {{"b", ""}};
  EXPECT_EQ(fixture.List(), std::vector<std::string>{"a"});
  test::WriteFile(fixture.folder / "a", "archive, longer");
  EXPECT_EQ(fixture.List(), std::vector<std::string>{"b"});
}

GTEST_TEST(Module, CommandWritesTheLog) {
  Fixture fixture;
  test::g_first_engine.entries = {{"a.txt", "1"}, {"../b", "2"}};
  const std::string head = "Archive: " + fixture.folder / "a" + "\r\n";
  std::vector<char> output(1000, '?');
  EXPECT_NE(fixture.module.Command(fixture.CommandLine().c_str(), output.data(), 1000), 0);
  const std::string log = output.data();
  EXPECT_TRUE(log.starts_with(head + "extracted  a.txt\r\nfailed     ../b: ")) << log;
  // A log as long as the buffer, and a longer one, leave no room for a NUL.
  for (const std::size_t size : {log.size() + 1, log.size(), log.size() - 5, std::size_t{1}}) {
    std::vector<char> small(size + 1, '?');
    fixture.module.Command(fixture.CommandLine().c_str(), small.data(), static_cast<std::uint32_t>(size));
    EXPECT_EQ(std::string(small.data(), size), std::string(log.c_str(), size));
    EXPECT_EQ(small.back(), '?');
  }
  EXPECT_NE(fixture.module.Command("-x --what", output.data(), 1000), 0);
  EXPECT_EQ(std::string(output.data()),
            "Archive: \r\nfailed     the command line has an unknown word: --what\r\n");
}

// Several libraries fail over damaged content; one of them knows only that.
GTEST_TEST(Module, NamesTheReasonThatTellsMost) {
  Fixture fixture(true, kZipFamily);
  std::string zip = test::StoredZip({{"a", "12345678"}});
  test::Patch(&zip, 31, 'x', 1);
  test::WriteFile(fixture.folder / "a", zip);
  std::vector<char> output(1000);
  EXPECT_NE(fixture.module.Command(fixture.CommandLine().c_str(), output.data(), 1000), 0);
  ASSERT_EQ(fixture.problems.size(), 1U);
  EXPECT_TRUE(fixture.problems[0].starts_with("a: its checksum")) << fixture.problems[0];
}

// Also for a host that does not know that it could protect anything.
GTEST_TEST(Module, NeverReplacesWhatItReadsFromOrIsToKeep) {
  const std::string zip =
      test::StoredZip({{"a.zip.001", "evil"}, {"twin", "evil"}, {"own.ini", "2"}, {"b", "3"}});
  for (const bool is_old_host : {false, true}) {
    SCOPED_TRACE(is_old_host);
    Fixture fixture(true, kZipFamily);
    const std::string first = fixture.folder / "a.zip.001";
    test::WriteFile(first, zip.substr(0, 100));
    test::WriteFile(fixture.folder / "a.zip.002", zip.substr(100));
    fs::create_hard_link(fixture.folder / "a.zip.002", fixture.folder / "twin");
    const std::string own = fixture.folder / "own.ini";
    const char* const protected_paths[] = {own.c_str(), nullptr};
    static std::vector<std::string> read_from;
    read_from.clear();
    fixture.session.protected_paths = protected_paths;
    fixture.session.reads_from = [](void*, const char* path) { read_from.push_back(path); };
    if (is_old_host) fixture.session.struct_size = offsetof(ArchiverSession, protected_paths);
    fixture.module.SetSession(&fixture.session);
    auto expected = test::Picture(fixture.folder.path());
    expected["b"] = "file 3";
    if (is_old_host) expected["own.ini"] = "file 2";
    char output[1000];
    EXPECT_NE(fixture.module.Command(("-x -o \"" + first + "\" \"" + fixture.folder / "" + "\"").c_str(),
                                     output, 1000),
              0);
    EXPECT_EQ(test::Picture(fixture.folder.path()), expected);
    for (std::string& problem : fixture.problems) problem.resize(problem.rfind(": "));
    std::vector<std::string> problems = {"a.zip.001: it would replace the archive that it comes from",
                                         "twin: it would replace the archive that it comes from"};
    if (!is_old_host) {
      problems.push_back("own.ini: this place is kept for a file that Quendle itself needs");
      EXPECT_EQ(read_from, (std::vector<std::string>{first, fixture.folder / "a.zip.002"}));
    }
    EXPECT_EQ(fixture.problems, problems);
  }
}

GTEST_TEST(Module, CallsOverOneArchive) {
  Fixture fixture;
  test::g_first_engine.entries = {{"T/a", "1"}, {"T/s/b", "", ReadStatus::kFailed}, {"T/c/c", "3"}};
  test::WriteFile(fixture.folder / "r1", "\"T/A\"");
  test::WriteFile(fixture.folder / "r2", "\"T/S/B\"\r\n\"T/C/C\"");
  std::string lines[2];
  char outputs[2][300];
  std::vector<ArchiverCall> calls;
  for (int i = 0; i < 2; ++i) {
    lines[i] = "-x -j -o" + fixture.CommandLine().substr(5) + " \"@" + fixture.folder / "r" +
               std::to_string(i + 1) + "\"";
    calls.push_back({lines[i].c_str(), outputs[i], sizeof outputs[i], -9});
  }
  EXPECT_NE(fixture.module.ExtractCalls(calls.data(), 2), 0);
  EXPECT_EQ(calls[0].result, 0);
  EXPECT_NE(calls[1].result, 0);
  EXPECT_NE(std::string(outputs[0]).find("extracted  T/a\r\n"), std::string::npos) << outputs[0];
  EXPECT_NE(std::string(outputs[1]).find("failed     T/s/b: scripted\r\n"), std::string::npos) << outputs[1];
  EXPECT_EQ(test::Listing(fixture.folder / "out"), "a=1 c=3");
  test::WriteFile(fixture.folder / "b", "archive");
  lines[1].replace(lines[1].find("a\""), 2, "b\"");
  calls[1].command_line = lines[1].c_str();
  fixture.problems.clear();
  EXPECT_NE(fixture.module.ExtractCalls(calls.data(), 2), 0);
  EXPECT_EQ(fixture.problems, std::vector<std::string>{": the calls are over different archives"});
}

GTEST_TEST(Module, CreditsFitAnyBuffer) {
  for (const bool utf8 : {true, false}) {
    const Fixture fixture(utf8);
    const std::string whole =
        std::string("Quendle contributors; scripts ") + (utf8 ? "日本" : "\x93\xFA\x96\x7B");
    std::string text(whole.size() + 1, '?');
    EXPECT_EQ(fixture.module.Credits(nullptr, 0), whole.size());
    EXPECT_EQ(fixture.module.Credits(text.data(), 8), whole.size());
    EXPECT_EQ(text.substr(0, 9), std::string("Quendle\0?", 9));
    EXPECT_EQ(fixture.module.Credits(text.data(), static_cast<std::uint32_t>(text.size())), whole.size());
    EXPECT_EQ(text.c_str(), whole);
  }
}

}  // namespace
}  // namespace quendle::modules
