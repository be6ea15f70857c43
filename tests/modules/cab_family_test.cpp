#include "archive/modules/cab/cab_family.h"

#include <algorithm>

#include "archive/modules/cab/cab_directory.h"
#include "archive/modules/cab/plain_cab.h"
#include "archive/modules/common/entry_times.h"
#include "archive/modules/common/little_endian.h"
#include "support/lzh_cab_rar.h"

namespace quendle::modules {
namespace {

using test::CabSet, test::Number, test::StoredCab;

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

constexpr std::size_t kBlock = 32'768;

// A last block by deflate's own code: three repetitions of 258 bytes from 32 KiB back.
std::string Repetition() {
  std::string bits = "110";
  for (int i = 0; i < 3; ++i)
    bits +=
        "11000101"
        "11101"
        "1111111111111";
  bits += "0000000";
  std::string bytes((bits.size() + 7) / 8, '\0');
  for (std::size_t i = 0; i < bits.size(); ++i)
    bytes[i / 8] = static_cast<char>(static_cast<unsigned char>(bytes[i / 8]) | (bits[i] - '0') << i % 8);
  return "CK" + bytes;
}

// Of three blocks, as it should be or with one of another kind, in front of the others and among some that are whole, which
// are unpacked on several cores.
GTEST_TEST(Cab, UnpacksBlocksOrSaysWhyNot) {
  std::string text;
  while (text.size() < 2 * kBlock) text += std::to_string(text.size());
  const auto whole = [&](std::size_t i) {
    return test::MszipData(text.substr(i * kBlock, i == 2 ? 1 : kBlock));
  };
  const std::string one = test::CabBlock(whole(0), kBlock);
  const std::string two = test::CabBlock(whole(1), kBlock);
  const std::string three = test::CabBlock(Repetition(), 774);
  std::string flipped = two;
  flipped[100] ^= 1;
  std::string unchecked = two;
  test::Patch(&unchecked, 0, 0, 4);
  const std::string small = test::CabBlock(test::MszipData(std::string(9, 'x')), 9);
  const std::string contents[] = {text.substr(0, kBlock), text.substr(kBlock, kBlock),
                                  text.substr(kBlock, 774)};
  std::string stored;
  for (const std::string& content : contents) stored += test::CabBlock(content, content.size());
  std::string flipped_stored = stored;
  flipped_stored[kBlock + 100] ^= 1;
  const struct {
    const char* what;
    std::string blocks;
    std::size_t good;  // of the three files
    const char* reason = "";
    std::size_t count = 3;
    bool is_stored = false;
  } rows[] = {
      {"whole", one + two + three, 3},
      {"without a sum", one + unchecked + three, 3},
      {"nothing to repeat", three + two, 0, "its packed data is damaged"},
      {"a flipped bit", one + flipped + three, 1, "a checksum does not agree"},
      {"no mark", one + test::CabBlock("XX" + whole(1).substr(2), kBlock), 1, "its packed data is damaged"},
      {"a mark alone", one + test::CabBlock("C", 1) + three, 1, "its packed data is damaged"},
      {"less than it says", one + test::CabBlock(whole(1), kBlock - 1) + three, 1,
       "its packed data is damaged"},
      {"more than it says", one + two + test::CabBlock(Repetition(), 773), 2, "its packed data is damaged"},
      {"more than a block", one + test::CabBlock(test::MszipData(text.substr(0, kBlock + 1)), kBlock + 1), 1,
       "the cabinet is damaged"},
      {"small in the middle", one + small + two + three, 1, "the cabinet is damaged", 4},
      {"nothing", one + test::CabBlock("", 0), 1, "the cabinet is damaged"},
      {"a block is missing", one + two, 2, "the cabinet is damaged"},
      {"a block is not counted", one + two + three, 2, "the cabinet is damaged", 2},
      {"a header is cut off", one + two.substr(0, 7), 1, "the cabinet is damaged"},
      {"stored", stored, 3, "", 3, true},
      {"stored, a flipped bit", flipped_stored, 1, "a checksum does not agree", 3, true},
  };
  for (const auto& row : rows) {
    for (const unsigned behind : {0U, 3U}) {
      SCOPED_TRACE(std::string(row.what) + " and " + std::to_string(behind));
      std::vector<std::string> files;
      std::vector<test::CabData> folders(1 + behind, {row.is_stored ? stored : one + two + three, 3});
      folders.front() = {row.blocks, row.count};
      for (unsigned i = 0; i < 3 * folders.size(); ++i)
        files.push_back(
            test::CabFile({std::to_string(i), "", 0, i / 3}, i % 3 * kBlock, contents[i % 3].size()));
      const auto read =
          test::UnpackBytes(kCabFamily, test::Cabinet(files, folders, {.mszip = !row.is_stored}));
      ASSERT_EQ(read.entries.size(), files.size());
      for (std::size_t i = 0; i < files.size(); ++i) {
        const bool is_good = i >= 3 || i < row.good;
        const std::string problem = i == row.good ? row.reason : "the packed data in front of it is damaged";
        EXPECT_EQ(English(read.entries[i].problem), is_good ? "" : problem) << i;
        EXPECT_TRUE(!is_good || read.entries[i].content == contents[i % 3]) << i;
      }
    }
  }
}

GTEST_TEST(Cab, BlocksRepeatFromTheOneBefore) {
  std::string text;
  std::string blocks;
  for (unsigned count = 1; count <= 16; ++count) {
    while (text.size() < count * kBlock) text += std::to_string(text.size() * text.size());
    text.resize(count * kBlock);
    blocks += test::CabBlock(test::MszipData(text.substr(text.size() - kBlock)), kBlock);
    const std::string file = test::CabFile({"a"}, 0, text.size() + 774);
    const test::CabData folder{blocks + test::CabBlock(Repetition(), 774), count + 1};
    const auto read = test::UnpackBytes(kCabFamily, test::Cabinet({file}, {folder}, {.mszip = true}));
    EXPECT_TRUE(read.Text() == "a=" + text + text.substr(text.size() - kBlock, 774)) << count;
  }
}

// What others have to read, or to refuse.
GTEST_TEST(Cab, KnowsPlainCabinets) {
  const test::CabData data{test::CabBlock("12", 2), 1};
  const std::string plain =
      test::Cabinet({test::CabFile({"a"}, 0, 1), test::CabFile({"b"}, 1, 1)}, {data, data}, {});
  const auto patched = [&](std::size_t at, std::uint64_t value, int width) {
    std::string bytes = plain;
    test::Patch(&bytes, at, value, width);
    return bytes;
  };
  const auto reserved = [&](std::size_t in_blocks) {
    std::string bytes = plain.substr(0, 36) + Number(0, 3) + Number(in_blocks, 1) + plain.substr(36);
    test::Patch(&bytes, 30, 4, 2);
    for (const std::size_t at : {std::size_t{8}, std::size_t{16}, std::size_t{40}, std::size_t{48}})
      test::Patch(&bytes, at, LittleEndian(bytes, at, 4) + 4, 4);
    return bytes;
  };
  const std::uint64_t blocks = plain.size() - 2 * data.blocks.size();
  const struct {
    const char* what;
    std::string bytes;
    const char* text = "";  // that is read of a plain one
  } rows[] = {
      {"plain", plain, "a=1 b=2"},
      {"and something behind it", plain + "x", "a=1 b=2"},
      {"the second one first", patched(52 + 4, 2, 4), "b=2 a!the cabinet is damaged"},
      {"contents that overlap", patched(52, 2, 4)},
      {"no such folder", patched(52 + 8, 2, 2)},
      {"LZX", patched(36 + 6, 3, 2)},
      {"no name", patched(52 + 16, 0, 1)},
      {"no file", patched(28, 0, 2)},
      {"data outside", patched(44, plain.size() + 1, 4)},
      {"data backwards", patched(36, blocks + 11, 4)},
      {"the first of a set", StoredCab({{"a", "1"}}, {0, "", "b"})},
      {"the last of a set", StoredCab({{"a", "1"}}, {0, "b"})},
      {"reserved bytes", reserved(0), "a=1 b=2"},
      {"reserved bytes in blocks", reserved(1)},
      {"cut off", plain.substr(0, plain.size() - 1)},
  };
  const test::TempFolder folder;
  for (const auto& row : rows) {
    test::WriteFile(folder / "a", row.bytes);
    const ArchiveInput input(test::Opened(folder / "a"), 0);
    auto directory = ReadPlainCabinet(input);
    test::UnpackedArchive read;
    test::Collector sink(&read);
    if (directory)
      OpenPlainCab(input, std::make_shared<const CabDirectory>(*std::move(directory)), {})->Unpack(&sink);
    EXPECT_EQ(read.Text(), row.text) << row.what;
  }
}

class ThirdOnly final : public test::Collector {
 public:
  using Collector::Collector;
  bool Wants(const Entry&) override { return ++asked_ % 4 == 3; }

 private:
  unsigned asked_ = 0;
};

// What lies behind the last wanted content of a folder may be anything.
GTEST_TEST(Cab, UnpacksAFolderUpToWhatIsWanted) {
  std::vector<std::string> files;
  std::vector<test::CabData> folders;
  for (unsigned folder = 0; folder < 3; ++folder) {
    folders.push_back({"", 4});
    for (unsigned i = 0; i < 4; ++i) {
      files.push_back(test::CabFile({"a", "", 0, folder}, i * kBlock, i == 2 ? 1 : kBlock));
      const std::string content(kBlock, static_cast<char>('0' + i));
      folders.back().blocks += i < 3 ? test::CabBlock(test::MszipData(content), kBlock) : "damaged!";
    }
  }
  const test::TempFolder folder;
  test::WriteFile(folder / "a", test::Cabinet(files, folders, {.mszip = true}));
  const ArchiveInput input(test::Opened(folder / "a"), 0);
  test::UnpackedArchive unpacked;
  ThirdOnly wanted(&unpacked);
  EXPECT_EQ(kCabFamily.engines(input).front().open(input, {}, nullptr)->Unpack(&wanted), ReadStatus::kEnd);
  ASSERT_EQ(unpacked.entries.size(), files.size());
  for (std::size_t i = 0; i < files.size(); ++i) {
    EXPECT_TRUE(unpacked.entries[i].problem.empty()) << i;
    EXPECT_TRUE(unpacked.entries[i].content == std::string(i % 4 == 2 ? 1 : 0, '2')) << i;
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
