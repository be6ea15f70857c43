// What several threads write must be what one would have written.
#include <sched.h>
#include <sys/resource.h>

#include <atomic>
#include <csignal>
#include <random>
#include <thread>

#include "support/scripted_extraction.h"

namespace quendle::modules {
namespace {

using test::ScriptedEntry;

// While it lives the calling thread has one core only.
class OneCore {
 public:
  OneCore() {
    sched_getaffinity(0, sizeof all_, &all_);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    EXPECT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
  }
  ~OneCore() { sched_setaffinity(0, sizeof all_, &all_); }
  OneCore(const OneCore&) = delete;
  OneCore& operator=(const OneCore&) = delete;

 private:
  cpu_set_t all_;
};

// While it lives no file can be larger.
class SizeLimit {
 public:
  explicit SizeLimit(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &old_);
    const rlimit limit{bytes, old_.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  }
  ~SizeLimit() {
    setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, signal_);
  }
  SizeLimit(const SizeLimit&) = delete;
  SizeLimit& operator=(const SizeLimit&) = delete;

 private:
  rlimit old_{};
  void (*signal_)(int);
};

// Names that meet each other: equal ones, other cases, files where folders are needed, numbered ones, refused ones.
std::vector<ScriptedEntry> RandomEntries(unsigned seed) {
  const char* const names[] = {"a",   "A",       "b",     "a (2)",   "d",     "d/a",   "D/b", "d/e/c",
                               "d/e", "f/g/h/i", "f/g/x", "f/g/y/z", "../up", "there", "q",   "r"};
  std::minstd_rand random(seed + 1);
  std::vector<ScriptedEntry> entries;
  for (unsigned i = 0; i < 300; ++i) {
    ScriptedEntry entry{names[random() % std::size(names)], ""};
    if (random() % 2 == 0) entry.path += std::to_string(random() % 40);
    const auto kind = random() % 20;
    entry.content = std::string(random() % 3000, static_cast<char>('a' + i % 26));
    if (kind == 0) entry.content.resize(60'000);  // whole at hand
    if (kind == 5) entry.content.resize(70'000);  // read piece by piece
    if (kind == 1) entry.ends = ReadStatus::kFailed;
    if (kind == 2 || kind == 3) entry.kind = EntryKind::kFolder;
    if (kind == 4) entry.kind = EntryKind::kLink;
    if (kind == 4) entry.link_target = "a";
    entries.push_back(entry);
  }
  return entries;
}

// What is there, and what was said, line by line.
std::string Extracted(unsigned seed) {
  test::ScriptedExtraction extraction;
  test::WriteFile(extraction.folder / "out/there", "old");
  extraction.calls[0].request.existing = seed % 2 == 0 ? Existing::kReplace : Existing::kAsk;
  test::g_first_engine.entries = RandomEntries(seed);
  const SizeLimit limit(seed % 3 == 0 ? 50'000 : 100'000);
  extraction.Run();
  std::string all;
  for (const auto& [path, what] : test::Picture(extraction.folder / "out")) all += path + ": " + what + "\n";
  for (const std::string& line : extraction.calls[0].log) all += line + "\n";
  EXPECT_GT(extraction.host.problems.size(), 10U);
  for (const std::string& problem : extraction.host.problems) all += problem + "\n";
  for (std::size_t at = 0; (at = all.find(extraction.folder.path(), at)) != all.npos;)
    all.erase(at, extraction.folder.path().size());
  return all;
}

GTEST_TEST(ParallelExtraction, IsAsOnOneCore) {
  for (unsigned seed = 0; seed < 8; ++seed) {
    SCOPED_TRACE(seed);
    std::string one;
    {
      const OneCore core;
      one = Extracted(seed);
    }
    EXPECT_EQ(Extracted(seed), one);
  }
}

std::vector<ScriptedEntry> ManyFiles() {
  std::vector<ScriptedEntry> entries;
  for (unsigned i = 0; i < 3000; ++i)
    entries.push_back({"d" + std::to_string(i / 50) + "/" + std::to_string(i),
                       std::string(std::size_t{i} % 200 * 100, static_cast<char>('a' + i % 26))});
  return entries;
}

// Whatever has its name is whole and in the log, and nothing else is there.
GTEST_TEST(ParallelExtraction, CancelsAtAnyMoment) {
  const std::vector<ScriptedEntry> entries = ManyFiles();
  for (int delay = 0; delay < 40; delay += 4) {
    test::ScriptedExtraction extraction;
    test::g_first_engine.entries = entries;
    std::thread canceller([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(delay));
      extraction.host.go_on = false;
    });
    extraction.Run();
    canceller.join();
    const auto& log = extraction.calls[0].log;
    const bool cancelled = extraction.calls[0].failed;
    ASSERT_EQ(log.size() == entries.size(), !cancelled);
    const std::size_t done = log.size() - (cancelled ? 1 : 0);
    for (std::size_t i = 0; i < done; ++i) {
      ASSERT_EQ(log[i], "extracted  " + entries[i].path);
      ASSERT_EQ(test::ReadFile(extraction.folder / ("out/" + entries[i].path)), entries[i].content);
    }
    const auto picture = test::Picture(extraction.folder / "out");
    EXPECT_EQ(std::count_if(picture.begin(), picture.end(),
                            [](const auto& entry) { return entry.second != "folder"; }),
              static_cast<std::ptrdiff_t>(done));
  }
}

GTEST_TEST(ParallelExtraction, NothingIsWrittenThroughALinkThatComesMeanwhile) {
  test::ScriptedExtraction extraction;
  test::g_first_engine.entries = ManyFiles();
  fs::create_directories(extraction.folder / "outside");
  std::atomic<bool> is_over = false;
  std::thread other([&] {
    for (unsigned i = 0; !is_over; i = (i + 1) % 60) {
      const std::string folder = extraction.folder / ("out/d" + std::to_string(i));
      std::error_code failed;
      fs::rename(folder, extraction.folder / ("moved" + std::to_string(i)), failed);
      if (!failed) fs::create_symlink(extraction.folder / "outside", folder, failed);
      std::this_thread::yield();
    }
  });
  extraction.Run();
  is_over = true;
  other.join();
  EXPECT_EQ(test::Listing(extraction.folder / "outside"), "");
  EXPECT_EQ(extraction.calls[0].log.size(), 3000U);
}

}  // namespace
}  // namespace quendle::modules
