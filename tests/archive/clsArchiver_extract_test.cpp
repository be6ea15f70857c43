#include <stdexcept>

#include "archive/clsArchiver.h"
#include "platform/text/code_page.h"
#include "support/archiver_bench.h"
#include "support/file_systems.h"

namespace quendle {
namespace {

using Texts = std::vector<std::string>;

const std::string kTree =
    "accept Unlha\nentry Top/Sub/b.txt\nentry Top/a.txt\nentry Top/Sub/Deep/表.txt\nentry Top/\n";

const std::string kTreeCalls =
    "x -+ -a1 -jp1 -x0 -c1 -m1 \"~/a.lzh\" \"~/d/\" \"@\"\n\"TOP/\"\r\n\"TOP/A.TXT\"\n"
    "x -+ -a1 -jp1 -x0 -c1 -m1 \"~/a.lzh\" \"~/d/Sub/\" \"@\"\n\"TOP/SUB/B.TXT\"\n"
    "x -+ -a1 -jp1 -x0 -c1 -m1 \"~/a.lzh\" \"~/d/Sub/Deep/\" \"@\"\n\"TOP/SUB/DEEP/表.TXT\"\n";

// Single calls and calls in one pass must not be told apart by their results; in one pass none is left out.
GTEST_TEST(ClsArchiverExtract, AResultThatIsNotZeroFails) {
  const struct {
    const char* results;
    const char* problem;
    std::ptrdiff_t left;
    const char* log;  // of single calls
  } rows[] = {
      {"", "", 0, "Phase 1:\r\none\r\nPhase 2:\r\ntwo\r\nPhase 3:\r\nthree"},
      {"result 0\nresult 5\n", "error 5", 1, "Phase 1:\r\none\r\nPhase 2:\r\ntwo\r\n"},
      {"result -1\nresult 5\nresult 6\n", "error -1", 2, "Phase 1:\r\none\r\n\r\n"},
  };
  for (const auto& row : rows) {
    for (const char* variant : {"plain", "full"}) {
      SCOPED_TRACE(std::string(row.results) + variant);
      test::ArchiverBench bench;
      bench.output.SHOWRESULT = true;
      bench.Install("UnLHA32", variant);
      std::string script =
          kTree + "output h\\nh\\none\noutput h\\nh\\ntwo\noutput h\\nh\\nthree\n" + row.results;
      const bool is_plain = variant[0] == 'p';
      if (is_plain) script = *platform::AnsiFromText(script);
      ASSERT_EQ(bench.Take("a.lzh", script), 2);
      bench.archiver.SMARTMAKEDIR = true;
      const bool succeeds = *row.problem == '\0';
      EXPECT_EQ(bench.archiver.mExtractArchive(bench.folder / "d"), succeeds);
      EXPECT_TRUE(bench.archiver.SMARTMAKEDIR);
      EXPECT_EQ(bench.ResponseFilesLeft(), is_plain ? row.left : 0);
      const std::string calls = bench.Calls(is_plain);
      EXPECT_TRUE(succeeds || !is_plain ? calls == kTreeCalls : kTreeCalls.starts_with(calls)) << calls;
      EXPECT_EQ(bench.user.logs, Texts{"Extracted from " + bench.folder / "a.lzh" + ":\r\n\r\n" +
                                       (is_plain ? row.log : rows[0].log)});
      EXPECT_EQ(fs::exists(bench.folder / "d"), succeeds) << "folders for nothing";
      const std::string problem = English(DescribeProblems(bench.archiver.LastReport().problems));
      EXPECT_TRUE(succeeds ? problem.empty() : problem.ends_with(row.problem)) << problem;
    }
  }
}

GTEST_TEST(ClsArchiverExtract, WhatIsLeftToExtract) {
  const char* const one = "-x  -o \"~/a.cab\" \"~/d/\" \"@\"\n\"A\"\n";
  const struct {
    const char *script, *exclude;
    bool succeeds;
    const char* calls;
    Texts problems;
  } rows[] = {
      {"entry TOP/a\nentry b\n", "", true, "-x  -o \"~/a.cab\" \"~/d/\" \"@\"\n\"TOP/A\"\r\n\"B\"\n", {}},
      {"entry a.txt\nentry b.dat\n", ".*dat", true, "-x  -o \"~/a.cab\" \"~/d/\" \"@\"\n\"A.TXT\"\n", {}},
      {"", "", true, "", {}},
      {"entry a\n", "a", true, "", {}},
      {"entry a\n", "(", false, "", {": the pattern ( of Exclude cannot be used: missing"}},
      {"closed\n", "", true, "", {}},
      {"closed\nlisting it is cut\n", "", false, "", {": it is cut"}},
      {"entry ../a\nentry b\n", "", false, "-x  -o \"~/a.cab\" \"~/d/\" \"@\"\n\"B\"\n", {"../a: "}},
      {"entry ..\n", "", false, "", {"..: "}},
      {"entry \n", "", false, "", {": there is no name for 1 of its entries"}},
      {"entry a\nproblem bad sum\nproblem x\n", "", false, one, {"e: bad sum", "e: x"}},
      {"entry a\nresult 32\n", "", false, one, {": the archiver library reported error 32"}},
      {"entry a\nresult 3\nproblem no\n", "", false, one, {"e: no"}},
      {"entry a\ntold kVolumeMissing|x: %1\ntold kStopped|x\ntold kOfLaterVersion|x\n",
       "",
       false,
       one,
       {"e: the volume x: %1 is missing", "e: as it was told", "e: as it was told"}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.script);
    test::ArchiverBench bench;
    bench.archiver.EXCLUDE = row.exclude;
    bench.Install("Cab32", "full");
    ASSERT_EQ(bench.Take("a.cab", std::string("accept Cab\n") + row.script), 3);
    bench.archiver.SMARTMAKEDIR = true;
    EXPECT_EQ(bench.archiver.mExtractArchive(bench.folder / "d"), row.succeeds);
    EXPECT_FALSE(bench.archiver.SMARTMAKEDIR);
    EXPECT_EQ(bench.Calls(), row.calls);
    EXPECT_EQ(fs::exists(bench.folder / "d"), row.succeeds && *row.calls != '\0');
    EXPECT_TRUE(bench.Tells(bench.archiver.LastReport(), row.problems));
    EXPECT_TRUE(bench.user.logs.empty());
    EXPECT_EQ(bench.ResponseFilesLeft(), 0);
  }
}

GTEST_TEST(ClsArchiverExtract, PlacesThatCannotBeUsed) {
  const struct {
    const char *archive, *destination, *reason, *calls;
    const char* temporary = "tmp";
  } rows[] = {
      {"a\"b", "d", "double quote", ""},
      {"a", "d", "double quote", "", "t\""},
      {"a", "d\"", "double quote", ""},
      {"a", "a/d", "where the folder should be", ""},
      {"a", "linked", "a link is in the place", "e \"-o~/linked\" -aoa \"~/a\" \"@\"\n\"T/A\"\n"},
  };
  for (const auto& row : rows) {
    for (const char* variant : {"plain", "full"}) {
      SCOPED_TRACE(std::string(row.destination) + variant);
      test::ArchiverBench bench;
      bench.Install("7-zip32", variant);
      fs::create_directories(bench.folder / "linked");
      const bool has_link = test::MakeLink(bench.folder / "tmp", bench.folder / "linked/s");
      const bool has_quotes = test::kSeparator == '/';
      if (!has_link && std::string(row.destination) == "linked") continue;
      if (!has_quotes && std::string(row.reason) == "double quote") continue;
      fs::create_directories(bench.folder / row.temporary);
      const test::ScopedVariable temporary(test::ArchiverBench::kTemporaryFolder,
                                           bench.folder / row.temporary);
      ASSERT_EQ(bench.Take(row.archive, "accept SevenZip\nentry T/a\nentry T/s/b\n"), 5);
      bench.archiver.SMARTMAKEDIR = true;
      EXPECT_FALSE(bench.archiver.mExtractArchive(bench.folder / row.destination));
      const Reason problem = DescribeProblems(bench.archiver.LastReport().problems);
      EXPECT_NE(English(problem).find(row.reason), std::string::npos) << problem;
      EXPECT_EQ(bench.Calls(), row.calls);
      EXPECT_TRUE(fs::is_empty(bench.folder / row.temporary));
    }
  }
}

// Whatever the library does about it itself.
GTEST_TEST(ClsArchiverExtract, KeepsWhatTheProgramAndTheArchiveStandOn) {
  const struct {
    const char* destination;  // below the test's folder
    bool smart;
    const char* script;
    Texts kept;
    const char* names;  // that the library is asked for; empty: it is not called
    std::size_t replaced = 0;
  } rows[] = {
      {"",
       true,
       "entry T/A (2).7z\nentry T/Own.INI\nentry T/b\n",
       {"T/Own.INI"},
       "\"T/A (2).7Z\"\r\n\"T/B\"",
       1},
      {"", true, "entry T/a.7z\nentry T/x/b\n", {"T/a.7z"}, "\"T/X/B\""},
      {"", false, "entry a.7z\nentry T/a.7z\n", {"a.7z"}, "\"T/A.7Z\""},
      {"", false, "entry second\nentry b\n", {"second"}, "\"B\"", 1},
      {"",
       false,
       "entry own/a\nentry own.ini/x\nentry own/s/b\nentry own/c\nentry b\nentry kept/x\n",
       {"own.ini/x", "kept/x"},
       "\"OWN/A\"\r\n\"OWN/S/B\"\r\n\"OWN/C\"\r\n\"B\"",
       1},
      {"", false, "entry kept/x\nentry own.ini/x\nentry own.ini/\n", {"kept/x", "own.ini/x", "own.ini/"}, ""},
      {"kept/deep/deeper", false, "entry b\n", {"b"}, ""},
      {"linked", false, "entry a.7z\nentry own.ini\n", {"a.7z", "own.ini"}, ""},
      {"", false, "reads ~/volume\nentry volume\nentry b\n", {"volume"}, "\"B\"", 1},
  };
  for (const auto& row : rows) {
    for (const char* variant : {"plain", "full"}) {
      std::string script = std::string("accept SevenZip\nprotected ~/own.ini\n") + row.script;
      SCOPED_TRACE(script + variant);
      const bool needs_session = script.find("reads") != script.npos;
      if (needs_session && *variant == 'p') continue;
      test::ArchiverBench bench;
      for (std::size_t at; (at = script.find("~/")) != script.npos;) script.replace(at, 2, bench.folder / "");
      bench.Install("7-zip32", variant);
      fs::create_directory(bench.folder / "kept");
      if (!test::MakeLink(bench.folder.path(), bench.folder / "linked") && *row.destination == 'l') continue;
      for (const char* file : {"volume", "b"}) test::WriteFile(bench.folder / file, "");
      ASSERT_EQ(bench.Take("a.7z", script), 5);
      fs::create_hard_link(bench.folder / "a.7z", bench.folder / "second");
      const std::string destination =
          *row.destination == '\0' ? bench.folder.path() : bench.folder / row.destination;
      bench.archiver.SMARTMAKEDIR = row.smart;
      const ExtractionReport plan = bench.archiver.PlanExtraction(destination);
      EXPECT_FALSE(bench.archiver.mExtractArchive(destination));
      const ExtractionReport& done = bench.archiver.LastReport();
      EXPECT_EQ(bench.Problems(plan), bench.Problems(done));
      EXPECT_EQ(plan.chosen, done.chosen);
      EXPECT_EQ(plan.replaces.value().All(), row.replaced);
      Texts kept;
      for (const ExtractionProblem& problem : done.problems) kept.push_back(problem.entry);
      EXPECT_EQ(kept, row.kept);
      EXPECT_EQ(done.chosen + kept.size(), done.all);
      const std::string calls = bench.Calls();
      EXPECT_EQ(calls.empty(), *row.names == '\0');
      EXPECT_NE(calls.find(row.names), calls.npos) << calls;
    }
  }
}

// What the user chose is what the library is told.
GTEST_TEST(ClsArchiverExtract, OptionsReachTheCommand) {
  test::ArchiverBench bench;
  bench.archiver.CONFIRMOVERWRITE = true;
  bench.Install("UnZIP32", "full");
  ASSERT_EQ(bench.Take("a.zip", "accept UnZip\nentry a\n"), 1);
  bench.archiver.EXTRACTTYPE = 2;
  EXPECT_TRUE(bench.archiver.mExtractArchive(bench.folder / "d"));
  EXPECT_EQ(bench.Calls(), "-u -s -i -C \"~/a.zip\" \"~/d/\" \"@\"\n\"A\"\n");
}

// Paths and names reach a library in its encoding, and come back from it.
GTEST_TEST(ClsArchiverExtract, AnsiLibraries) {
  test::ArchiverBench bench;
  bench.Install("UnZIP32", "plain");
  const std::string script = "accept UnZip\nentry " + *platform::AnsiFromText("表\\ソ.txt") + "\n";
  // The name by which a library opens it: on POSIX its bytes, on Windows its characters.
  const std::string archive =
      bench.folder / (test::kSeparator == '/' ? *platform::AnsiFromText("表.zip") : "表.zip");
  test::WriteFile(archive, script);
  ASSERT_EQ(bench.Take("表.zip", script), 1);
  EXPECT_TRUE(bench.archiver.mExtractArchive(bench.folder / "ソ"));
  bench.archiver.pFileName = archive;
  EXPECT_EQ(bench.Calls(true), "-x -s -i -C -o \"~/表.zip\" \"~/ソ/\" \"@\"\n\"表/ソ.TXT\"\n");
  EXPECT_EQ(bench.Take("é.zip", script), 0) << "a path that it cannot be told";
  ASSERT_EQ(bench.Take("a.zip", script), 1);
  EXPECT_FALSE(bench.archiver.mExtractArchive(bench.folder / "é"));
  EXPECT_EQ(bench.ResponseFilesLeft(), 0);
}

GTEST_TEST(ClsArchiverExtract, FullAndShortBuffers) {
  for (const bool shown : {true, false}) {
    test::ArchiverBench bench;
    bench.output.SHOWRESULT = shown;
    bench.Install("UnZIP32", "plain");
    ASSERT_EQ(bench.Take("a.zip", "accept UnZip\nentry a\noutput fill\n"), 1);
    EXPECT_TRUE(bench.archiver.mExtractArchive(bench.folder / "d"));
    EXPECT_EQ(bench.user.logs, shown ? Texts{std::string(32767, 'x') + "\r\n...more"} : Texts{});
  }
}

// Whether a library asks while it lists, while it extracts, or both, the user is asked once for each archive and run.
GTEST_TEST(ClsArchiverExtract, Passwords) {
  test::ArchiverBench bench({"kept1", "kept2"});
  bench.Install("7-zip32", "full");
  const struct {
    const char *name, *words, *password;
    Texts said;
    bool succeeds;
    Texts asked;
    Texts planned = {};  // the problems of a plan while nobody answers
  } rows[] = {
      {"a", "password", "p", {"x", "y", "z", "p"}, false, {"a", "again: a", "again: a"}},
      {"b", "locked", "p", {"x", "y", "z"}, false, {"b", "again: b", "again: b"}, {": it is encrypted"}},
      {"c", "locked password", "p", {}, false, {"c"}, {": it is encrypted"}},
      {"d",
       "locked password",
       "パス\xF0\x9F\x94\x91é",
       {"x", "パス\xF0\x9F\x94\x91é"},
       true,
       {"d", "again: d"},
       {": it is encrypted"}},
      {"e", "password", "パス\xF0\x9F\x94\x91é", {}, true, {}},
      {"f", "locked", "kept2", {}, true, {}},
      {"g", "password", "kept1", {}, true, {}},
      {"h", "password", "r", {"wrong"}, false, {"h", "again: h"}},
      {"i", "locked", "new\nresult 5", {"new"}, false, {"i"}, {": it is encrypted"}},
      {"j", "locked", "new", {}, true, {}},
      {"k", "locked", "パス\xF0\x9F\x94\x91é", {}, true, {}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    std::string script = "accept SevenZip\nentry a\n";
    for (const char* word : {"password", "locked"}) {
      if (std::string(row.words).find(word) != std::string::npos)
        script.append(word).append(" ").append(row.password).append("\n");
    }
    ASSERT_EQ(bench.Take(row.name, script), 5);
    bench.user.asked_password.clear();
    bench.user.passwords = {};
    EXPECT_TRUE(bench.Tells(bench.archiver.PlanExtraction(bench.folder / "to"), row.planned));
    bench.user.asked_password.clear();
    for (int turn = 0; turn < 2; ++turn) {  // a window plans whenever something changes
      const ExtractionReport plan = bench.archiver.PlanExtraction(bench.folder / "to", true);
      EXPECT_EQ(plan.asks_for_password, !row.planned.empty());
      EXPECT_TRUE(plan.problems.empty());
    }
    EXPECT_EQ(bench.user.asked_password, Texts()) << "by a plan";
    bench.user.passwords = row.said;
    EXPECT_EQ(bench.archiver.mExtractArchive(bench.folder / "to"), row.succeeds);
    bench.user.passwords = {};
    EXPECT_TRUE(!row.succeeds || bench.archiver.mExtractArchive(bench.folder / "to"));
    for (std::string& asked : bench.user.asked_password) {
      const std::size_t at = asked.find(bench.folder.path());
      if (at != std::string::npos) asked.erase(at, bench.folder.path().size() + 1);
    }
    EXPECT_EQ(bench.user.asked_password, row.asked);
    EXPECT_EQ(bench.archiver.PlanExtraction(bench.folder / "to", true).asks_for_password,
              !row.planned.empty() &&
                  (row.said.empty() || !std::string(row.password).starts_with(row.said.back())));
  }
}

GTEST_TEST(ClsArchiverExtract, QuestionsAndProgress) {
  using Answer = UserInterface::OverwriteAnswer;
  test::ArchiverBench bench;
  bench.archiver.ARCHIVECHARSET = "CP932";
  bench.Install("UnZIP32", "full");
  const auto extract = [&bench](const std::string& script) {
    bench.Take("a.zip", "accept UnZip\nentry T/a\nentry T/s/b\n" + script);
    bench.archiver.SMARTMAKEDIR = true;
    return bench.archiver.mExtractArchive(bench.folder / "d");
  };
  const struct {
    std::vector<Answer> answers;
    bool succeeds;
    std::size_t asked;
  } rows[] = {{{Answer::kYes}, true, 2},
              {{Answer::kNoToAll}, true, 1},
              {{}, false, 2},
              {{Answer::kYesToAll}, true, 1},
              {{Answer::kCancel}, false, 1}};
  for (const auto& row : rows) {
    bench.user.asked_overwrite.clear();
    bench.user.overwrite_answers = row.answers;
    EXPECT_EQ(extract("overwrite\n"), row.succeeds);
    EXPECT_EQ(bench.user.asked_overwrite.size(), row.asked);
    EXPECT_EQ(bench.archiver.LastReport().by_user, row.answers == std::vector{Answer::kCancel});
  }
  EXPECT_EQ(DescribeProblems(bench.archiver.LastReport().problems), "it was stopped");
  EXPECT_TRUE(extract("charset CP932\n"));
  EXPECT_FALSE(extract("pass 4\n")) << "a pass that fails as a whole";
  EXPECT_FALSE(bench.archiver.LastReport().by_user);
  EXPECT_FALSE(extract("proceed it looks like a bomb\n"));
  EXPECT_TRUE(bench.archiver.LastReport().by_user);
  EXPECT_EQ(bench.user.asked_proceed, Texts{"it looks like a bomb"});
  int shown = 0;  // beside what a slow pass reports by itself
  bench.user.on_progress = [&shown](const platform::FileProgress& progress) {
    shown += progress.path == "x" ? 1 : 0;
    return true;
  };
  EXPECT_TRUE(extract("progress x\n"));
  EXPECT_EQ(shown, 2);
  EXPECT_GE(bench.user.ended_progress, 1);

  // A fault of the program's own shows a message, never passes through the library and is never a success.
  bench.user.on_progress = [](const platform::FileProgress&) -> bool { throw std::runtime_error("broken"); };
  EXPECT_FALSE(extract("progress x\n"));
  EXPECT_EQ(
      bench.user.messages,
      Texts{"critical: "
            "エラーが発生しましたが処理を継続します。\r\nエラー発生時の状況を製作者へお知らせください。"});
  const Texts problems = bench.Problems(bench.archiver.LastReport());
  EXPECT_EQ(problems.back(), ": an unexpected fault: broken") << problems.front();
}

}  // namespace
}  // namespace quendle
