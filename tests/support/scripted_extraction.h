// An extraction of a scripted archive, and a host that it asks.
#pragma once

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "archive/modules/common/extraction.h"
#include "support/archives.h"
#include "support/file_systems.h"
#include "support/picture.h"
#include "support/scripted_family.h"

namespace quendle::test {

// A host that answers by its members and notes what it hears.
struct Host {
  std::vector<std::string> problems;
  std::vector<std::string> passwords;  // given in turn
  std::size_t asked_passwords = 0;
  int overwrite = ARCHIVER_NO;
  int asked_overwrite = 0;
  int proceed = ARCHIVER_NO;
  std::vector<std::string> questions;
  std::atomic<bool> go_on = true;

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
struct ScriptedExtraction {
  TempFolder folder;
  Host host;
  std::vector<modules::Call> calls{1};
  modules::Limits limits;

  ScriptedExtraction() {
    g_first_engine = {};
    g_second_engine.reset();
    WriteFile(folder / "a", "archive");
    fs::create_directories(folder / "out");
    calls[0].request = {folder / "a", folder / "out", "", true, modules::Existing::kReplace};
  }

  void Run() {
    Reason reason;
    const auto archive = modules::ListArchive(
        kScriptedFamily, modules::ArchiveInput(Opened(folder / "a"), 0), "", [] { return std::nullopt; },
        &reason);
    ASSERT_TRUE(archive) << reason;
    const ArchiverSession abi = host.Session();
    modules::Session session(&abi);
    // It asks the host seldom, and not at once.
    if (!host.go_on) std::this_thread::sleep_for(std::chrono::milliseconds(25));
    modules::Extract(*archive, limits, &session, &calls);
  }

  std::string Out() const { return Listing(folder / "out"); }
  bool HasLinks() const { return MakeLink("target", folder / "link"); }
  // With one problem, which begins so or, if it is over no entry, has that in it. Empty: without any.
  bool FailedOnlyWith(const std::string& part) const {
    if (!calls[0].failed) return part.empty() && host.problems.empty();
    if (part.empty() || host.problems.size() != 1) return false;
    const std::size_t at = host.problems[0].find(part);
    return at == 0 || (at != part.npos && host.problems[0].starts_with(": "));
  }
};

}  // namespace quendle::test
