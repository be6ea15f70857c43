#include "archive/modules/common/read_ahead.h"

#include <chrono>
#include <stdexcept>
#include <thread>

#include "support/archives.h"
#include "support/scripted_family.h"

namespace quendle::modules {
namespace {

struct Fixture {
  test::TempFolder folder;
  std::unique_ptr<ArchiveInput> input;
  std::string password;  // given on the test's own thread
  bool may_wait = true;
  std::string unwanted;

  Fixture() {
    test::g_first_engine = {};
    test::WriteFile(folder / "a", "archive");
    input = std::make_unique<ArchiveInput>(test::Opened(folder / "a"), 0);
  }

  std::unique_ptr<ReadAhead> Open(const Engine& engine = {"first", &test::OpenFirst}) {
    const auto ask = [this, user = std::this_thread::get_id()]() -> std::optional<std::string> {
      EXPECT_EQ(std::this_thread::get_id(), user);
      return password;
    };
    Reason reason;
    return ReadAhead::Open(
        engine, *input, {"", ask},
        {[this](const Entry& entry) { return entry.path != unwanted; }, [this] { return may_wait; }},
        &reason);
  }

  // Everything in turn: "path=content" with "!" behind what failed.
  std::vector<std::string> ReadAll() {
    std::vector<std::string> read;
    const auto reader = Open();
    Entry entry;
    ReadStatus status;
    while ((status = reader->NextEntry(&entry)) == ReadStatus::kOk) {
      std::string text = entry.path + "=";
      std::string_view piece;
      while ((status = reader->ReadContent(&piece)) == ReadStatus::kOk) text += piece;
      if (status != ReadStatus::kEnd) text.append("!").append(English(reader->Problem()));
      read.push_back(text);
    }
    EXPECT_EQ(reader->NextEntry(&entry), status);
    std::string_view piece;
    EXPECT_EQ(reader->ReadContent(&piece), status);
    if (status != ReadStatus::kEnd) read.push_back("!" + English(reader->Problem()));
    return read;
  }
};

GTEST_TEST(ReadAhead, GivesWhatTheReaderGives) {
  Fixture fixture;
  const std::string large(600'000, 'x');
  test::g_first_engine = {{{"a", "1"},
                           {"empty", ""},
                           {"large", large},
                           {"bad", "2", ReadStatus::kFailed},
                           {"not", "3"},
                           {"z", "4"}},
                          ReadStatus::kFailed,
                          "right"};
  fixture.password = "right";
  fixture.unwanted = "not";
  EXPECT_EQ(fixture.ReadAll(), (std::vector<std::string>{"a=1", "empty=", "large=" + large, "bad=2!scripted",
                                                         "not=", "z=4", "!scripted"}));
}

// More than is read ahead at a time; whoever skips a content or leaves early must not wait for ever.
GTEST_TEST(ReadAhead, ContentsThatAreAtHandAreGivenWhole) {
  Fixture fixture;
  test::g_first_engine.entries = {
      {"a", "1"}, {"b", ""}, {"c", "half", ReadStatus::kFailed}, {"d", std::string(100'000, 'd')}};
  const auto reader = fixture.Open();
  const auto whole = [&] {
    Entry entry;
    EXPECT_EQ(reader->NextEntry(&entry), ReadStatus::kOk);
    ContentBuffer content;
    return reader->TakeWhole(&content) ? entry.path + std::string(content.View()) : "no";
  };
  EXPECT_EQ(whole(), "a1");
  ContentBuffer content;
  EXPECT_FALSE(reader->TakeWhole(&content));
  EXPECT_EQ(whole(), "b");
  std::string_view piece;
  EXPECT_EQ(reader->ReadContent(&piece), ReadStatus::kEnd);
  EXPECT_EQ(whole(), "no");
  EXPECT_EQ(reader->ReadContent(&piece), ReadStatus::kOk);
  EXPECT_EQ(whole(), "no");
}

GTEST_TEST(ReadAhead, SkippingAndLeaving) {
  Fixture fixture;
  const std::string large(400'000, 'x');
  for (int i = 0; i < 40; ++i) test::g_first_engine.entries.push_back({std::to_string(i), large});
  auto reader = fixture.Open();
  Entry entry;
  std::string_view piece;
  for (int i = 0; i < 40; ++i) {
    ASSERT_EQ(reader->NextEntry(&entry), ReadStatus::kOk);
    ASSERT_EQ(entry.path, std::to_string(i));
    if (i % 3 == 0) {
      ASSERT_EQ(reader->ReadContent(&piece), ReadStatus::kOk);
    }
  }
  EXPECT_EQ(reader->NextEntry(&entry), ReadStatus::kEnd);
  reader = fixture.Open();
  ASSERT_EQ(reader->NextEntry(&entry), ReadStatus::kOk);
  reader.reset();
  test::g_first_engine.password = "right";
  reader = fixture.Open();
  ASSERT_EQ(reader->NextEntry(&entry), ReadStatus::kOk);
  reader.reset();  // perhaps while a password is waited for
}

// Reads the archive, again and again.
class EndlessReader : public EntryReader {
 public:
  EndlessReader(const ArchiveInput& input, bool* was_ended) : input_(input), was_ended_(*was_ended) {}
  ReadStatus NextEntry(Entry*) override {
    char byte = 0;
    std::size_t got = 0;
    for (int i = 0; i < 5'000 && !was_ended_; ++i) {
      was_ended_ = !input_.ReadAt(0, &byte, 1, &got).ok();
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return ReadStatus::kEnd;
  }
  ReadStatus ReadContent(std::string_view*) override { return ReadStatus::kEnd; }
  const Reason& Problem() const override { return reason_; }

 private:
  const ArchiveInput& input_;
  bool& was_ended_;
  Reason reason_;
};

GTEST_TEST(ReadAhead, ReadsEndWhenItIsLeft) {
  bool was_ended = false;
  const Engine endless = {"endless", [&was_ended](const ArchiveInput& input, const ReaderOptions&, Reason*) {
                            return std::make_unique<EndlessReader>(input, &was_ended);
                          }};
  Fixture().Open(endless).reset();
  EXPECT_TRUE(was_ended);
}

class SlowReader : public EntryReader {
 public:
  ReadStatus NextEntry(Entry*) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    throw std::runtime_error("broken");
  }
  ReadStatus ReadContent(std::string_view*) override { return ReadStatus::kEnd; }
  const Reason& Problem() const override { return reason_; }

 private:
  Reason reason_;
};

GTEST_TEST(ReadAhead, WaitingCanBeEndedAndFaultsAreFailures) {
  const Engine slow = {
      "slow", [](const ArchiveInput&, const ReaderOptions&, Reason*) -> std::unique_ptr<EntryReader> {
        return std::make_unique<SlowReader>();
      }};
  Fixture fixture;
  Entry entry;
  for (const bool may_wait : {true, false}) {
    fixture.may_wait = may_wait;
    const auto reader = fixture.Open(slow);
    EXPECT_EQ(reader->NextEntry(&entry), ReadStatus::kFailed);
    EXPECT_EQ(reader->Problem(), may_wait ? "broken" : "it was stopped");
  }
}

}  // namespace
}  // namespace quendle::modules
