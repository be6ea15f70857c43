// The program with archiver libraries beside it.
#include <nlohmann/json.hpp>

#include "base/display.h"
#include "support/archiver_bench.h"
#include "support/archives.h"
#include "support/program.h"

namespace quendle {
namespace {

using Texts = std::vector<std::string>;

// A program with the library for ZIP archives, settings and one archive "a.zip" of a script.
class Installed {
 public:
  explicit Installed(const std::string& script) {
    test::InstallModule(folder / "p/modules", "UnZIP32", "full");
    fs::copy_file(QUENDLE_PROGRAM, program_);
    test::WriteFile(folder / "s/mover.ini", "[General]\r\nShowResult=1\r\n");
    test::WriteFile(
        folder / "s/items.ini",
        "[Z]\r\nPattern=.*\\.zip\r\nID=1\r\nAction=1\r\nSmartMakeDir=1\r\nExclude=.*\\.bak\r\nExtractTo=" +
            folder / "d" + "\r\n");
    test::WriteFile(folder / "a.zip", "accept UnZip\n" + script);
    test::WriteFile(folder / "password", "\xEF\xBB\xBFother\r\n\r\nsecret\r\n");
  }

  int Run(const std::string& arguments) {
    const test::Ended ended = test::RunProgram(folder, arguments, program_);
    out = ended.out;
    err = ended.err;
    return ended.status;
  }

  test::TempFolder folder;
  std::string out;
  std::string err;

 private:
  std::string program_ = folder / "p/quendle.exe";  // POSIX takes any name
};

GTEST_TEST(ProgramExtraction, PlansAndExtracts) {
  Installed program("entry T/a\nentry T/S/b\nentry T/c.bak\noutput x\\nsaid\x1b[1m\npassword secret\n");
  EXPECT_EQ(program.Run("--dry-run a.zip"), 0);
  EXPECT_NE(program.out.find(test::Native("/d (2 of 3 entries, no doubled folder)\n")), std::string::npos)
      << program.out;
  EXPECT_FALSE(fs::exists(program.folder / "d"));
  EXPECT_EQ(program.Run("--dry-run --json a.zip"), 0);
  const std::string folder = program.folder / "d";
  EXPECT_EQ(
      nlohmann::json::parse(program.out)["steps"],
      nlohmann::json({{{"step", "extract"},
                       {"to", folder},
                       {"result", "planned"},
                       {"entries", {{"chosen", 2}, {"all", 3}}},
                       {"folders", {folder, program.folder / "d/S"}},
                       {"doubled_folder_avoided", true},
                       {"replaces", {{"count", 0}, {"perhaps", 0}, {"asked", 0}, {"files", Texts()}}}}}));

  EXPECT_EQ(program.Run("--batch a.zip"), 1) << "no password";
  EXPECT_NE(program.err.find("the archiver library reported error 7"), std::string::npos) << program.err;
  EXPECT_EQ(program.Run("--batch --password-file password a.zip"), 0) << program.err;
  EXPECT_NE(program.err.find("Phase 1:\nquendle: " + ForDisplay("said\x1b[1m") + "\n"), std::string::npos)
      << program.err;
  EXPECT_EQ(program.out.substr(0, 5), "done ");
  EXPECT_TRUE(fs::is_directory(program.folder / "d/S"));

  EXPECT_EQ(program.Run("--batch --password-file none a.zip"), 2);
  EXPECT_NE(program.err.find("--password-file none: "), std::string::npos) << program.err;
  const std::pair<const char*, const char*> files[] = {{"\r\n\n", "there is no password in it"},
                                                       {"secret\n\x95\x5C\n", "it is not UTF-8 text"},
                                                       {"\xFF\xFEs\n", "it is not UTF-8 text"}};
  for (const auto& [content, reason] : files) {
    test::WriteFile(program.folder / "password", content);
    EXPECT_EQ(program.Run("--batch --password-file password a.zip"), 2);
    EXPECT_NE(program.err.find(std::string("--password-file password: ") + reason), std::string::npos)
        << program.err;
  }
}

GTEST_TEST(ProgramExtraction, TellsProblems) {
  Installed program("entry T/a\nlisting it is cut\nlisting and more\n");
  for (const char* mode : {"--dry-run", "--batch"}) {
    EXPECT_EQ(program.Run(std::string(mode) + " a.zip"), 1);
    EXPECT_EQ(program.out.substr(0, 7), "failed ");
    EXPECT_EQ(program.out.find("what it replaces is not known") != std::string::npos, mode[2] == 'd')
        << program.out;
    EXPECT_NE(program.err.find(test::Native("/d: it is cut (and 1 more)")), std::string::npos) << program.err;
  }
  const std::string broken = std::string("Cab32").append(platform::kLibrarySuffix);
  test::WriteFile(program.folder / "p/modules" + test::kSeparator + broken, "");
  test::WriteFile(program.folder / "a.zip", "accept nobody\n");
  EXPECT_EQ(program.Run("--dry-run a.zip"), 1);
  EXPECT_NE(program.err.find(broken + ": "), std::string::npos) << program.err;
}

// An archive in the folder of a portable installation, which is also where it goes by default.
GTEST_TEST(ProgramExtraction, NeverDestroysWhatItStandsOn) {
  const test::TempFolder folder;
  const std::string library = "UnZIP32" + std::string(platform::kLibrarySuffix);
  fs::create_directories(folder / "p/modules");
  fs::copy_file(QUENDLE_ZIP_MODULE, folder / ("p/modules/" + library));
  fs::copy_file(QUENDLE_PROGRAM, folder / "p/quendle.exe");
  test::WriteFile(folder / "p/mover.ini", "[General]\r\nFILER=none\r\n");
  test::WriteFile(folder / "p/items.ini",
                  "[Z]\r\nPattern=.*\\.zip\r\nID=1\r\nAction=1\r\nSmartMakeDir=1\r\n");
  std::vector<test::StoredEntry> entries;
  for (const std::string name :
       {"a.zip", "mover.ini", "items.ini", "test.ini", "quendle.exe", "modules/new", "readme"})
    entries.push_back({"T/" + name, "evil"});
  entries.push_back({"T/modules/" + library, "evil"});
  test::WriteFile(folder / "p/a.zip", test::StoredZip(entries));
  const auto expected = test::Picture(folder / "p");
  for (const char* mode : {"--dry-run", "--batch"}) {
    const test::Ended ended =
        test::RunProgram(folder, std::string("--settings p ") + mode + " p/a.zip", folder / "p/quendle.exe");
    EXPECT_EQ(ended.status, 1) << ended.err;
    EXPECT_NE(ended.err.find("T/a.zip: it would replace the archive that it comes from"), std::string::npos)
        << ended.err;
    EXPECT_NE(ended.err.find("(and 6 more)"), std::string::npos) << ended.err;
  }
  auto found = test::Picture(folder / "p");
  EXPECT_EQ(found["readme"], "file evil");
  EXPECT_NE(found["test.ini"], "file evil");  // the program makes one
  for (const char* name : {"readme", "test.ini"}) found.erase(name);
  EXPECT_EQ(found, expected);
}

GTEST_TEST(ProgramExtraction, NamesWhatIsReplaced) {
  Installed program("");
  const std::string library = "UnZIP32" + std::string(platform::kLibrarySuffix);
  fs::remove(program.folder / ("p/modules/" + library));
  fs::copy_file(QUENDLE_ZIP_MODULE, program.folder / ("p/modules/" + library));
  std::vector<test::StoredEntry> entries;
  Texts files;
  for (int i = 0; i < 12; ++i) {
    const std::string name = "s/" + std::to_string(i + 10) + ".txt";
    entries.push_back({"T/" + name, "new"});
    test::WriteFile(program.folder / ("d/" + name), "old");
    if (i < 10) files.push_back(program.folder / ("d/" + name));
  }
  entries.push_back({"T/fresh", "new"});
  test::WriteFile(program.folder / "a.zip", test::StoredZip(entries));
  const std::string text = test::Native(
      "(13 of 13 entries, no doubled folder, replacing 12: s/10.txt, s/11.txt, s/12.txt and 9 more)");
  const nlohmann::json object = {{"count", 12}, {"perhaps", 0}, {"asked", 0}, {"files", files}};
  for (const char* mode : {"--dry-run", "--batch"}) {
    EXPECT_EQ(program.Run(std::string(mode) + " a.zip"), 0) << program.err;
    EXPECT_NE(program.out.find(text), std::string::npos) << program.out;
    fs::remove(program.folder / "d/fresh");
    EXPECT_EQ(program.Run(std::string(mode) + " --json a.zip"), 0);
    EXPECT_EQ(nlohmann::json::parse(program.out)["steps"][0]["replaces"], object);
  }
}

// What lies beside the program is the user's own library on Windows, and nobody's on POSIX.
GTEST_TEST(ProgramExtraction, LibrariesBesideTheProgram) {
  Installed program("entry T/a\n");
  const std::string name = "UnZIP32" + std::string(platform::kLibrarySuffix);
  fs::rename(program.folder / ("p/modules/" + name), program.folder / ("p/" + name));
  EXPECT_EQ(program.Run("--dry-run a.zip"), test::kSeparator == '/' ? 1 : 0) << program.err;
}

}  // namespace
}  // namespace quendle
