#include "archive/modules/common/content_pool.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <new>

namespace quendle::modules {
namespace {

// Unpacks entries to their numbers, now and then late, and some of them not.
class Numbers final : public ContentPool::Worker {
 public:
  struct Record {
    std::atomic<std::size_t> unpacked = 0;
    std::atomic<std::size_t> bytes_waiting = 0;
    std::atomic<std::size_t> most_waiting = 0;
    std::atomic<std::size_t> torn = 0;  // from the job in front
  };
  Numbers(Record* record, std::size_t size) : record_(*record), size_(size) {}

  void Begin(std::span<const ContentPool::Job> jobs) override {
    if (jobs.front().is_with_last) ++record_.torn;
    begun_ = jobs.size();
    if (jobs.front().entry == 2500) throw std::bad_alloc();
  }

  std::optional<ContentBuffer> Unpack(std::size_t entry) override {
    EXPECT_GT(begun_--, 0U) << entry;
    if (entry % 7 == 3) std::this_thread::sleep_for(std::chrono::microseconds(300));
    ++record_.unpacked;
    const std::size_t waiting = record_.bytes_waiting += size_;
    std::size_t most = record_.most_waiting;
    while (most < waiting && !record_.most_waiting.compare_exchange_weak(most, waiting)) {
    }
    if (entry % 11 == 5) return std::nullopt;
    if (entry % 11 == 6) throw std::bad_alloc();
    const std::string text = std::to_string(entry);
    ContentBuffer content(text.size());
    text.copy(content.Data(), text.size());
    return content;
  }

 private:
  Record& record_;
  const std::size_t size_;
  std::size_t begun_ = 0;
};

GTEST_TEST(ContentPool, GivesContentsInTheirOrder) {
  Numbers::Record record;
  std::vector<ContentPool::Job> jobs;
  // More of them belong together than are begun at once otherwise.
  for (std::size_t i = 0; i < 3000; i += 2) jobs.push_back({i, 10, i % 500 > 100});
  ContentPool pool(jobs, [&] { return std::make_unique<Numbers>(&record, 10); });
  for (std::size_t i = 0; i < 3000; ++i) {
    const auto content = pool.Take(i);
    const bool is_given = i % 2 == 0 && i % 11 != 5 && i % 11 != 6;
    ASSERT_EQ(content.has_value(), is_given) << i;
    if (content) {
      ASSERT_EQ(content->View(), std::to_string(i));
    }
  }
  EXPECT_EQ(record.unpacked, jobs.size());
  EXPECT_EQ(record.torn, 0U);
}

GTEST_TEST(ContentPool, GivesNothingWithoutWorkers) {
  ContentPool pool({{0, 10}, {1, 10}}, [] { return nullptr; });
  EXPECT_FALSE(pool.Take(0));
}

GTEST_TEST(ContentPool, IsNotFarAheadOfWhoTakes) {
  constexpr std::size_t kSize = 10U << 20;
  Numbers::Record record;
  std::vector<ContentPool::Job> jobs;
  for (std::size_t i = 0; i < 60; ++i) jobs.push_back({i, i == 40 ? 2 * ContentPool::kMostSize : kSize});
  ContentPool pool(jobs, [&] { return std::make_unique<Numbers>(&record, kSize); });
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    if (i % 10 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    pool.Take(i);
    record.bytes_waiting -= kSize;
  }
  EXPECT_LE(record.most_waiting, ContentPool::kMostSize + kSize) << "what was just taken counts for a moment";
  EXPECT_EQ(record.unpacked, jobs.size())
      << "one that is larger than the limit comes when nothing else waits";
}

GTEST_TEST(ContentPool, EndsWhenNobodyTakesAnyMore) {
  for (const std::size_t taken : {0U, 1U, 77U}) {
    Numbers::Record record;
    std::vector<ContentPool::Job> jobs;
    for (std::size_t i = 0; i < 100'000; ++i) jobs.push_back({i, 4U << 10});
    {
      ContentPool pool(jobs, [&] { return std::make_unique<Numbers>(&record, 0); });
      for (std::size_t i = 0; i < taken; ++i) pool.Take(i);
    }
    EXPECT_LT(record.unpacked, 30'000U) << taken;
  }
}

}  // namespace
}  // namespace quendle::modules
