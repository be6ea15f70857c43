// What holds for the archives of every family.
#include "archive/modules/cab/cab_family.h"
#include "archive/modules/lzh/lzh_family.h"
#include "archive/modules/rar/rar_family.h"
#include "archive/modules/sevenzip/sevenzip_family.h"
#include "archive/modules/zip/zip_family.h"
#include "support/lzh_cab_rar.h"

namespace quendle::modules {
namespace {

const std::string kContent = std::string(40, 'a') + "first";
const std::string kInner = test::StoredZip({{"inner", "1"}});

struct Sample {
  std::string name;
  const Family& family;
  std::string bytes;
  std::string decoy;    // what may be in a program in front of it
  std::string cut_off;  // what is said without its last byte
  std::string text = "a=" + kContent + " b=2";
};

std::vector<Sample> Samples() {
  const std::vector<test::PackedEntry> packed = {{"a", kContent}, {"b", "2"}};
  const std::string pk = "PK\3\4PK\1\2";
  const std::string no_end = "!the archive is cut off: its end is missing";
  const std::string no_directory =
      "!the central directory is missing: the file is truncated or no ZIP archive";
  const std::string rar = test::kRar4Signature + std::string(50, 'x');
  const std::string no_block = "!the archive is cut off, or damaged, in a header";
  std::vector<Sample> samples = {
      {"stored.zip", kZipFamily, test::StoredZip({{"in.zip", kInner}, {"b", "2"}}), pk, no_directory,
       "in.zip=" + kInner + " b=2"},
      {"deflate.zip", kZipFamily, test::Pack("zip", "compression=deflate", packed), pk, no_directory},
      {"rar4.rar", kRarFamily, test::StoredRar({{"a", kContent}, {"b", "2"}}), rar, no_block},
      {"rar5.rar", kRarFamily, test::StoredRar5("a", kContent, kContent), rar, no_block, "a=" + kContent},
  };
  for (const bool mszip : {false, true}) {
    samples.push_back({"a.cab", kCabFamily, test::StoredCab({{"a", kContent}, {"b", "2"}}, {.mszip = mszip}),
                       "MSCF" + std::string(100, 'x'), ""});
  }
  for (const std::string method : {"store", "lzma1"}) {
    samples.push_back({method + ".7z", kSevenZipFamily, test::Pack("7zip", "compression=" + method, packed),
                       "7z\xBC\xAF\x27\x1C", no_end});
  }
  for (const int level : {0, 1, 2}) {
    samples.push_back(
        {"level" + std::to_string(level) + ".lzh", kLzhFamily,
         test::StoredLzh(level, {{"a", kContent, "-lh0-", {"\1a"}}, {"b", "2", "-lh0-", {"\1b"}}}),
         "..-lh5-" + std::string(100, 'x'), " b=2"});
  }
  return samples;
}

test::UnpackedArchive Unpack(const Sample& sample, const std::string& bytes) {
  static const test::TempFolder folder;
  fs::remove(folder / sample.name);  // to write over it waits for the disk
  test::WriteFile(folder / sample.name, bytes);
  return test::Unpack(sample.family, folder / sample.name);
}

// Behind anything else only what peers find there; and only when nothing follows, as it may be a part of something larger,
// but for ZIP archives, which say enough of themselves.
GTEST_TEST(Families, AreFoundBehindPrograms) {
  for (const Sample& sample : Samples()) {
    SCOPED_TRACE(sample.name);
    const bool is_zip = &sample.family == &kZipFamily;
    const bool behind_anything = is_zip || &sample.family == &kCabFamily || &sample.family == &kRarFamily;
    const std::string program = std::string("MZ").append(5000, 'x').append(sample.decoy);
    EXPECT_EQ(Unpack(sample, sample.bytes).Text(), sample.text);
    EXPECT_EQ(Unpack(sample, program + sample.bytes).Text(), sample.text);
    EXPECT_EQ(Unpack(sample, "a text" + sample.decoy + sample.bytes).Text(),
              behind_anything ? sample.text : "!no archive");
    EXPECT_EQ(Unpack(sample, "a text: " + sample.bytes + "and more").Text(),
              is_zip ? sample.text : "!no archive");
    EXPECT_EQ(Unpack(sample, program).Text(), "!no archive");
  }
}

// What lies in another archive as it is, is not what is meant.
GTEST_TEST(Families, StoredArchivesAreNotTakenForTheirs) {
  const std::string program = "MZ" + std::string(5000, 'x');
  const std::vector<Sample> samples = Samples();
  for (const Sample& inner : samples) {
    if (&inner.family == &kRarFamily || &inner.family == &kSevenZipFamily) continue;
    const std::pair<const Family*, std::string> outer[] = {
        {&kSevenZipFamily, test::Pack("7zip", "compression=store", {{"in", inner.bytes}})},
        {&kRarFamily, test::StoredRar({{"in", inner.bytes}})}};
    for (const auto& [family, bytes] : outer) {
      SCOPED_TRACE(inner.name + " in " + family->name);
      EXPECT_EQ(Unpack(inner, program + bytes).Text(), "!no archive");
      EXPECT_EQ(test::UnpackBytes(*family, program + bytes).Text(), "in=" + inner.bytes);
    }
  }
}

// Counted in reads: headers that lead to others, and marks of archives, as many as fit.
GTEST_TEST(Families, ASearchIsBoundedAndEndsWhenItIsStopped) {
  std::string chained = "MZ";
  std::string marks = "MZ";
  std::string cabinets = "MZ";
  while (marks.size() < 3'000'000) marks += "-lh5-";
  while (chained.size() < 300'000) chained += test::kRar4Signature + std::string("\0\0\x75\0\0\x0E\0", 7);
  while (cabinets.size() < 300'000) cabinets += std::string("MSCF\0\0\0\0\xFF\0\0\0", 12);
  const test::TempFolder folder;
  const std::string path = folder / "a";
  for (const std::string& bytes : {chained, marks, cabinets}) {
    test::WriteFile(path, bytes);
    for (const Family* family : {&kZipFamily, &kLzhFamily, &kCabFamily, &kRarFamily, &kSevenZipFamily}) {
      for (const unsigned most : {40'000U, 5U}) {
        unsigned reads = 0;
        Reason reason;
        const InterruptibleReads counted([&] { return ++reads < most; });
        EXPECT_FALSE(family->find(test::Opened(path), &reason)) << family->name;
        EXPECT_LE(reads, most) << family->name << bytes.substr(2, 5);
      }
    }
  }
}

// But in the record at the end of a ZIP archive, of which all entries and the whole directory are there.
GTEST_TEST(Families, ACutIsNoticedWhereverItIs) {
  for (const Sample& sample : Samples()) {
    SCOPED_TRACE(sample.name);
    std::string text;
    for (std::size_t size = 0; size < sample.bytes.size(); ++size) {
      text = Unpack(sample, sample.bytes.substr(0, size)).Text();
      if (&sample.family == &kZipFamily && size + 22 >= sample.bytes.size()) {
        ASSERT_EQ(text, sample.text) << size;
        text = sample.cut_off;
      }
      // An LZH archive may end behind any entry, and a RAR archive behind the only one.
      const bool may_end = &sample.family == &kLzhFamily || sample.name == "rar4.rar";
      const bool is_one = may_end && (text == sample.text || text == "a=" + kContent);
      ASSERT_TRUE(is_one || text.find('!') != text.npos) << size << text;
    }
    EXPECT_TRUE(text.ends_with(sample.cut_off)) << text;
  }
}

// Names, times and kinds may change; a cabinet has no sum over what it says of its files.
GTEST_TEST(Families, DamageOfAnyByteNeverChangesContent) {
  for (const Sample& sample : Samples()) {
    SCOPED_TRACE(sample.name);
    const std::size_t stored_at = sample.bytes.find(kContent);
    const auto whole = Unpack(sample, sample.bytes);
    for (std::size_t i = 0; i < sample.bytes.size(); ++i) {
      const bool is_content = i >= stored_at && i < stored_at + kContent.size();
      if (&sample.family == &kCabFamily && !is_content) continue;
      for (const char flip : {'\x01', '\x80', '\xFF'}) {
        std::string bytes = sample.bytes;
        bytes[i] = static_cast<char>(bytes[i] ^ flip);
        const auto read = Unpack(sample, bytes);
        const bool is_told = read.Text().find('!') != std::string::npos;
        ASSERT_TRUE(is_told || !is_content) << i;
        ASSERT_TRUE(is_told || read.entries.size() == whole.entries.size()) << i << " loses an entry";
        for (const auto& [entry, content, problem] : read.entries) {
          if (entry.kind != EntryKind::kFile || !problem.empty()) continue;
          ASSERT_TRUE((" " + sample.text + " ").find("=" + content + " ") != std::string::npos)
              << i << content;
        }
      }
    }
  }
}

GTEST_TEST(Families, VolumesAreJoined) {
  for (const Sample& sample : Samples()) {
    if (&sample.family != &kZipFamily && &sample.family != &kSevenZipFamily) continue;
    SCOPED_TRACE(sample.name);
    const test::TempFolder folder;
    std::vector<std::string> volumes;
    for (std::size_t i = 0; i < 3; ++i) {
      volumes.push_back(folder / (sample.name + ".00" + std::to_string(i + 1)));
      test::WriteFile(volumes[i], sample.bytes.substr(i * 60, i < 2 ? 60 : std::string::npos));
    }
    const auto text = [&](std::size_t i) { return test::Unpack(sample.family, volumes[i]).Text(); };
    EXPECT_EQ(text(0), sample.text);
    for (const std::size_t later : {1, 2}) EXPECT_EQ(text(later), "!the archive begins in " + volumes[0]);
    for (const std::size_t gone : {2, 1}) {
      fs::remove(volumes[gone]);
      const bool is_alone = gone == 1 && &sample.family == &kZipFamily;  // it may be any ZIP archive
      EXPECT_EQ(text(0), is_alone ? sample.cut_off : "!the volume " + volumes[gone] + " is missing");
    }
  }
}

}  // namespace
}  // namespace quendle::modules
