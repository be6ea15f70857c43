// An archiver over scripted libraries (tests/archive/scripted_module.cpp) and a user of a test.
#pragma once

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "archive/clsArchiver.h"
#include "platform/services/library.h"
#include "platform/text/code_page.h"
#include "support/picture.h"
#include "support/scoped_variable.h"
#include "support/scripted_user.h"

namespace quendle::test {

// Installs a variant ("plain", "full", "broken") of the scripted library under a library's name.
inline void InstallModule(const std::string& folder, const std::string& name, const std::string& variant) {
  const std::string suffix(platform::kLibrarySuffix);
  fs::create_directories(FsPath(folder));
  fs::copy_file(std::string(QUENDLE_SCRIPTED_MODULES "/scripted_") + variant + suffix,
                FsPath(folder + kSeparator + name + suffix));
}

class ArchiverBench {
 public:
  static constexpr const char* kTemporaryFolder = kSeparator == '/' ? "TMPDIR" : "TMP";

  explicit ArchiverBench(std::vector<std::string> passwords = {},
                         std::chrono::milliseconds patience = std::chrono::hours(1))
      : temporary(kTemporaryFolder, MakeFolder("tmp")),
        runtime("XDG_RUNTIME_DIR", ""),
        output(user),
        archiver({user,
                  [this]() -> clsOutput& { return output; },
                  folder / "modules",
                  {folder / "own.ini", folder / "kept"},
                  std::move(passwords),
                  patience}) {}

  void Install(const std::string& name, const std::string& variant) {
    InstallModule(folder / "modules", name, variant);
  }
  std::string Module(const std::string& name) const {
    return folder / "modules" + kSeparator + name + std::string(platform::kLibrarySuffix);
  }

  // Makes the archive folder/`name` of that script the one to work on; the answer is its type.
  std::int16_t Take(const std::string& name, const std::string& script) {
    WriteFile(folder / name, script);
    archiver.pFileName = folder / name;
    return archiver.GetArcType();
  }

  // What the library of the archive was asked to do, with the test's folder as "~" and response files as "@". A "plain"
  // library was asked in the encoding of such libraries.
  std::string Calls(bool is_plain = false) const {
    std::string calls = ReadFile(archiver.pFileName + ".calls");
    if (is_plain) calls = platform::TextFromAnsi(calls);
    for (std::size_t at; (at = calls.find("@" + (folder / "tmp") + kSeparator)) != std::string::npos;) {
      calls = calls.substr(0, at + 1) + calls.substr(calls.find('"', at));
    }
    for (std::size_t at; (at = calls.find(folder.path())) != std::string::npos;) {
      calls.replace(at, folder.path().size(), "~");
    }
    return Slashed(calls);
  }

  std::ptrdiff_t ResponseFilesLeft() const {
    return std::distance(fs::directory_iterator(folder / "tmp"), {});
  }

  std::vector<std::string> Problems(const ExtractionReport& report) const {
    std::vector<std::string> problems;
    for (const ExtractionProblem& problem : report.problems)
      problems.push_back(problem.entry + ": " + English(problem.reason));
    return problems;
  }
  // Whether its problems are as many, and each begins so.
  testing::AssertionResult Tells(const ExtractionReport& report,
                                 const std::vector<std::string>& beginnings) const {
    const std::vector<std::string> problems = Problems(report);
    const auto begins = [](const std::string& text, const std::string& start) {
      return text.starts_with(start);
    };
    return testing::AssertionResult(
               std::equal(problems.begin(), problems.end(), beginnings.begin(), beginnings.end(), begins))
           << testing::PrintToString(problems);
  }

  TempFolder folder;
  ScopedVariable temporary;
  ScopedVariable runtime;
  ScriptedUser user;
  clsOutput output;
  clsArchiver archiver;

 private:
  std::string MakeFolder(const std::string& name) const {
    fs::create_directory(folder / name);
    return folder / name;
  }
};

}  // namespace quendle::test
