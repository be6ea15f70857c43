#include "archive/modules/cab/cab_family.h"

#include <algorithm>

#include "archive/modules/common/entry_times.h"
#include "support/lzh_cab_rar.h"

namespace quendle::modules {
namespace {

using test::CabSet, test::StoredCab;

// Stored, and packed as most cabinets are.
const CabSet kPackings[] = {{}, {.mszip = true}};

std::string Text(const std::string& bytes) {
  return test::UnpackBytes(kCabFamily, bytes).Text();
}

GTEST_TEST(Cab, ReadsNamesTimesAndModes) {
  constexpr unsigned kUtf8 = 0x80;
  constexpr unsigned kExecutable = 0x40;
  const auto read = test::UnpackBytes(kCabFamily, StoredCab({{"\x83\x5C\\\x95\x5C.txt", "1"},
                                                             {"é\\\xE8\x83\xBD", "2", kUtf8},
                                                             {"\xCA\xDD", "3", kExecutable},
                                                             {"empty"}}));
  EXPECT_EQ(read.Text(), "ソ/表.txt=1 é/能=2 ﾊﾝ=3 empty=");
  for (const auto& [entry, content, problem] : read.entries) {
    EXPECT_EQ(entry.attributes.executable, content == "3");
    ASSERT_TRUE(entry.attributes.write_time.has_value());
    EXPECT_EQ(entry.attributes.write_time->seconds, TimeFromDos(test::kDosTime)->seconds);
  }
}

// Larger than the pieces in which it is given, and with files in front and behind.
GTEST_TEST(Cab, ReadsLargeFiles) {
  std::string large;
  while (large.size() < 2'500'000) large += std::to_string(large.size());
  for (const CabSet& packed : kPackings) {
    const std::string bytes = StoredCab({{"a", "1"}, {"large", large}, {"b", "2"}}, packed);
    EXPECT_EQ(Text(bytes), "a=1 large=" + large + " b=2");
  }
}

// What lies behind a damaged block is never taken for something else.
GTEST_TEST(Cab, DoesNotSlipOverDamagedBlocks) {
  constexpr std::size_t kBlock = 32'768;
  for (const CabSet& packed : kPackings) {
    std::string bytes = StoredCab(
        {{"a", std::string(kBlock, 'a')}, {"b", std::string(kBlock, 'b')}, {"c", std::string(kBlock, 'c')}},
        packed);
    bytes[bytes.size() - 2 * kBlock + 100] ^= 1;
    const auto read = test::UnpackBytes(kCabFamily, bytes);
    ASSERT_EQ(read.entries.size(), 3U);
    EXPECT_EQ(read.entries[0].problem, "");
    for (std::size_t i : {1, 2}) EXPECT_NE(read.entries[i].problem, "") << i;
  }
}

GTEST_TEST(Cab, FilesMayShareTheirContent) {
  for (const CabSet& packed : kPackings) {
    std::string bytes = StoredCab({{"a", "one"}, {"b", "two"}}, packed);
    test::Patch(&bytes, bytes.find("b\0") - 12, 0, 4);
    EXPECT_EQ(Text(bytes), "a=one b=one");
  }
}

// Each folder is unpacked once, however the cabinet lists its files.
GTEST_TEST(Cab, ReadsFilesAsTheyLie) {
  constexpr unsigned kFiles = 200;
  const std::string filler(50'000, 'x');
  std::vector<test::CabEntry> entries;
  for (unsigned i = 0; i < kFiles; ++i)
    entries.push_back({std::to_string(1000 + i), std::to_string(1000 + i) + filler});
  for (const CabSet& packed : kPackings) {
    std::string bytes = StoredCab(entries, packed);
    for (unsigned i = 0; i < kFiles; ++i) {
      const std::size_t name = bytes.find(std::to_string(1000 + i) + '\0');
      test::Patch(&bytes, name - 12, (kFiles - 1 - i) * (filler.size() + 4), 4);
    }
    unsigned reads = 0;
    const InterruptibleReads counted([&] { return ++reads < 5'000; });
    const auto read = test::UnpackBytes(kCabFamily, bytes);
    ASSERT_EQ(read.entries.size(), kFiles) << English(read.problem);
    EXPECT_EQ(read.entries.front().entry.path, "1199");
    for (const auto& [entry, content, problem] : read.entries) {
      EXPECT_EQ(content, std::to_string(2199 - std::stoi(entry.path)) + filler) << English(problem);
    }
  }
}

GTEST_TEST(Cab, RefusesToUnpackTheSameOverAndOver) {
  constexpr std::size_t kDeep = 32U << 20;
  constexpr std::size_t kFiles = 20;  // more than 512 MiB in front of them all together
  std::vector<test::CabEntry> entries(kFiles, {"a", "1"});
  entries[0].content = std::string(kDeep, '1');
  std::string bytes = StoredCab(entries);
  for (std::size_t at = 44, i = 0; i < kFiles; ++i, at += 18) {
    test::Patch(&bytes, at, 1, 4);
    test::Patch(&bytes, at + 4, kDeep - 1, 4);
  }
  const auto read = test::UnpackBytes(kCabFamily, bytes);
  ASSERT_EQ(read.entries.size(), kFiles);
  EXPECT_EQ(read.entries[0].content, "1");
  EXPECT_EQ(English(read.entries.back().problem), "too much would have to be unpacked over and over for it");
}

GTEST_TEST(Cab, ReadsCabinetsBehindEachOther) {
  const std::string one = StoredCab({{"a", "1"}});
  const std::string two = StoredCab({{"b", StoredCab({{"inner", "2"}})}});
  EXPECT_EQ(Text(one + "between MSCF" + two).substr(0, 9), "a=1 b=MSC");
  EXPECT_EQ(Text("front\n" + one + one), "a=1 a=1");
  const std::string cut = Text(one + two.substr(0, two.size() - 1));
  EXPECT_TRUE(cut.ends_with("!the cabinet is cut off")) << cut;
}

GTEST_TEST(Cab, ReadsSets) {
  const test::TempFolder folder;
  const std::string whole = "onetwothree";
  // The block of data begins in the first cabinet and ends in the second one.
  test::WriteFile(folder / "1.cab", StoredCab({{"one", "one"}, {"two", "two", 0x20, 0xFFFE}},
                                              {0, "", "2.cab", whole.substr(0, 5), 0}));
  EXPECT_EQ(
      test::Unpack(kCabFamily, folder / "1.cab").Text(),
      "one!it may go on in the next cabinet, 2.cab, which is missing "
      "two!it may go on in the next cabinet, 2.cab, which is missing!the next cabinet, 2.cab, is missing");
  std::string second = StoredCab({{"two", "two", 0x20, 0xFFFD}, {"three", "three"}},
                                 {1, "1.cab", "", whole.substr(5), whole.size()});
  test::Patch(&second, second.find("two\0") - 12, 3, 4);
  test::Patch(&second, second.find("three\0") - 12, 6, 4);
  test::WriteFile(folder / "2.CAB", second);
  EXPECT_EQ(test::Unpack(kCabFamily, folder / "1.cab").Text(), "one=one two=two three=three");
  EXPECT_EQ(test::Unpack(kCabFamily, folder / "2.CAB").Text(),
            "!the archive begins in " + (folder / "1.cab"));
  fs::remove(folder / "1.cab");
  const auto alone = test::Unpack(kCabFamily, folder / "2.CAB").Text();
  EXPECT_TRUE(alone.ends_with("!the cabinet in front of it, 1.cab, is missing")) << alone;
  EXPECT_NE(alone.find("two!it may begin in an earlier cabinet of the set: start with 1.cab"), alone.npos)
      << alone;
}

}  // namespace
}  // namespace quendle::modules
