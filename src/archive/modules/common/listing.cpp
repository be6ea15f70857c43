#include "archive/modules/common/listing.h"

#include <algorithm>
#include <utility>

#include "archive/modules/common/entry_names.h"
#include "platform/entries/entry_path.h"

namespace quendle::modules {
namespace {

struct Attempt {
  std::vector<Entry> entries;
  Reason problem;
  bool lacks_password = false;
};

Attempt ListWith(const Engine& engine, const ArchiveInput& input, const ReaderOptions& options) {
  Attempt attempt;
  const auto reader = engine.open(input, options, &attempt.problem);
  if (!reader) return attempt;
  attempt.problem = {};
  for (std::size_t count = 0;; ++count) {
    Entry entry;
    const ReadStatus status = reader->NextEntry(&entry);
    if (status == ReadStatus::kEnd) return attempt;
    if (status != ReadStatus::kOk) {
      attempt.problem = reader->Problem();
      attempt.lacks_password = status == ReadStatus::kPassword;
    } else if (count >= kMostEntries) {
      attempt.problem = why::kTooManyEntries;
    } else if (!InterruptibleReads::GoOn()) {
      attempt.problem = why::kCancelled;
    }
    if (!attempt.problem.empty()) return attempt;
    entry.path = WithoutCurrentFolder(std::move(entry.path));
    // The folder that was packed, or the root: there is nothing to make.
    if (entry.kind == EntryKind::kFolder && platform::WithoutRoot(entry.path).empty()) continue;
    attempt.entries.push_back(std::move(entry));
  }
}

// With each password in turn, when the list takes one.
Attempt ListWithPasswords(const Engine& engine, const ArchiveInput& input, const std::string& charset,
                          Passwords* passwords) {
  passwords->Restart();
  for (;;) {
    Attempt attempt = ListWith(engine, input, {charset, [passwords] { return passwords->Current(); }});
    if (!attempt.lacks_password || !passwords->Advance()) return attempt;
  }
}

}  // namespace

std::unique_ptr<OpenedArchive> ListArchive(const Family& family, const ArchiveInput& input,
                                           const std::string& charset,
                                           std::function<std::optional<std::string>()> ask, Reason* reason) {
  std::vector<Engine> engines = family.engines(input);
  if (family.check != nullptr) {
    const platform::Result check = family.check(input, &engines);
    if (!check.ok()) {
      *reason = check.reason;
      return nullptr;
    }
  }
  bool needed = false;
  Passwords passwords(
      [&needed, ask = std::move(ask)] {
        needed = true;
        return ask();
      },
      family.passwords);
  Attempt best;
  std::size_t chosen = 0;
  for (std::size_t i = 0; i < engines.size(); ++i) {
    Attempt attempt = ListWithPasswords(engines[i], input, charset, &passwords);
    const bool is_whole = attempt.problem.empty();
    // Another engine would only take more memory for too many.
    const bool is_last = is_whole || attempt.lacks_password || attempt.problem == why::kTooManyEntries;
    if (i == 0 || is_whole || attempt.entries.size() > best.entries.size()) {
      best = std::move(attempt);
      chosen = i;
    }
    if (is_last) break;
  }
  if (best.entries.empty() && !best.problem.empty()) {
    *reason = best.problem;
    return nullptr;
  }
  const auto first = engines.begin();
  std::rotate(first, first + static_cast<std::ptrdiff_t>(chosen),
              first + static_cast<std::ptrdiff_t>(chosen) + 1);
  return std::make_unique<OpenedArchive>(OpenedArchive{input, std::move(engines), std::move(best.entries),
                                                       std::move(best.problem), family.passwords,
                                                       needed ? passwords.Current() : std::nullopt});
}

}  // namespace quendle::modules
