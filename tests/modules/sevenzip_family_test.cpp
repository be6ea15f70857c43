#include "archive/modules/sevenzip/sevenzip_family.h"

#include <algorithm>

#include "archive/modules/common/listing.h"
#include "support/archives.h"

namespace quendle::modules {
namespace {

using test::Number, test::Pack, test::Unpack;

std::string Text(const std::string& bytes) {
  return test::UnpackBytes(kSevenZipFamily, bytes).Text();
}

const std::vector<test::PackedEntry> kEntries = {{"表/a", std::string(300, 'a')}, {"ｶﾅ\\b", "2"}, {"empty"}};
const std::string kText = "表/a=" + std::string(300, 'a') + " ｶﾅ/b=2 empty=";

GTEST_TEST(SevenZip, ReadsMethods) {
  for (const char* method : {"store", "deflate", "bzip2", "lzma1", "lzma2", "ppmd"}) {
    EXPECT_EQ(Text(Pack("7zip", std::string("compression=") + method, kEntries)), kText) << method;
  }
}

GTEST_TEST(SevenZip, TellsKindsTimesAndModes) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a.7z", Pack("7zip", "",
                                        {{"tool", "1", AE_IFREG | 0755, 1'600'000'000, 123'456'700},
                                         {"plain", "2"},
                                         {"folder", "", AE_IFDIR | 0755},
                                         {"link", "表/tool", AE_IFLNK | 0777}}));
  const auto read = Unpack(kSevenZipFamily, folder / "a.7z");
  ASSERT_EQ(read.entries.size(), 4U) << read.problem;
  for (const auto& [entry, content, problem] : read.entries) {
    EXPECT_EQ(problem, "");
    EXPECT_EQ(entry.link_target, entry.path == "link" ? "表/tool" : "");
    EXPECT_EQ(entry.kind == EntryKind::kFolder, entry.path == "folder/");
    EXPECT_EQ(entry.attributes.executable, entry.path == "tool") << entry.path;
    EXPECT_EQ(entry.attributes.write_time->nanoseconds, entry.path == "tool" ? 123'456'700 : 0);
    EXPECT_EQ(entry.attributes.write_time->seconds, 1'600'000'000);
  }
}

std::string Archive(const std::string& packed, const std::string& end) {
  const std::string start = Number(packed.size(), 8) + Number(end.size(), 8) + Number(Crc32(end), 4);
  return "7z\xBC\xAF\x27\x1C" + Number(0x400, 2) + Number(Crc32(start), 4) + start + packed + end;
}

std::string Wide(std::uint64_t value) {
  return "\xFF" + Number(value, 8);
}

// An archive of a packed stream that unpacks to `size` bytes by one coder, whose number and properties are `coder`. It is
// the list of entries when `is_list`, and otherwise the content of one file.
std::string OneCoder(const std::string& packed, const std::string& coder, std::uint64_t size,
                     std::uint64_t crc, bool is_list, const std::string& name = "f") {
  const std::string names = Number(0, 1) + platform::ToUtf16Le(name) + Number(0, 2);
  const std::string streams = "\x06" + Number(0, 1) + "\x01\x09" + Wide(packed.size()) + Number(0, 1) +
                              "\x07\x0B\x01" + Number(0, 1) + "\x01" + coder + "\x0C" + Wide(size) +
                              "\x0A\x01" + Number(crc, 4) + Number(0, 1) +
                              (is_list ? "" : "\x08" + Number(0, 1));
  return Archive(packed, is_list ? "\x17" + streams + Number(0, 1)
                                 : "\x01\x04" + streams + Number(0, 1) + "\x05\x01\x11" +
                                       Number(names.size(), 1) + names + Number(0, 2));
}

// An archive of stored blocks of files that are not empty, and behind the first of them "z", which is.
std::string Blocks(const std::vector<std::vector<test::PackedEntry>>& blocks) {
  std::string packed, packed_sizes, coders, counts, part_sizes, crcs, names;
  std::size_t files = 0;
  for (const auto& block : blocks) {
    const std::size_t begin = packed.size();
    for (std::size_t i = 0; i < block.size(); ++i) {
      packed += block[i].content;
      if (i + 1 < block.size()) part_sizes += Wide(block[i].content.size());
      crcs += Number(Crc32(block[i].content), 4);
      names += platform::ToUtf16Le(block[i].name + (names.empty() ? "_z_" : "_"));
    }
    packed_sizes += Wide(packed.size() - begin);
    coders += "\x01\x01" + Number(0, 1);
    counts += Wide(block.size());
    files += block.size();
  }
  std::replace(names.begin(), names.end(), '_', '\0');
  names.insert(0, 1, '\0');
  const std::string empty = "\x40" + Number(0, static_cast<int>(files / 8));
  return Archive(packed, "\x01\x04\x06" + Number(0, 1) + Wide(blocks.size()) + "\x09" + packed_sizes +
                             Number(0, 1) + "\x07\x0B" + Wide(blocks.size()) + Number(0, 1) + coders +
                             "\x0C" + packed_sizes + Number(0, 1) + "\x08\x0D" + counts + "\x09" +
                             part_sizes + "\x0A\x01" + crcs + Number(0, 2) + "\x05" + Wide(files + 1) +
                             "\x0E" + Wide(empty.size()) + empty + "\x0F\x01\x80\x11" + Wide(names.size()) +
                             names + Number(0, 2));
}

GTEST_TEST(SevenZip, ReadsZstandard) {
  // A frame of one block that is stored.
  const std::string frame =
      Number(0xFD2FB528, 4) + Number(5 << 8 | 0x20, 2) + Number(5 << 3 | 1, 3) + "hello";
  const std::string coder = "\x24\x04\xF7\x11\x01\x05" + Number(0x30501, 5);
  EXPECT_EQ(Text(OneCoder(frame, coder, 5, Crc32("hello"), false)), "f=hello");
  EXPECT_EQ(Text(OneCoder(frame, coder, 5, Crc32("hello"), false, "")), "a=hello") << "by the archive's name";
  const std::string cut = frame.substr(0, frame.size() - 1);
  EXPECT_EQ(Text(OneCoder(cut, coder, 5, Crc32("hello"), false)), "f!its packed data is damaged");
  EXPECT_EQ(Text(OneCoder(frame, coder, 5, Crc32("hallo"), false)), "f!its checksum does not agree");
  EXPECT_EQ(Text(OneCoder(frame, "\x04\x04\xF7\x11\x77", 5, 0, false)),
            "f!it is packed as 04F71177, which is not supported");
}

// Wants some entries, and tells how the others came: "a* b+ c! d-" when a came whole, b in pieces, c failed, and
// nobody wanted d. The content of each is its name, again and again.
class Telling final : public EntrySink {
 public:
  explicit Telling(std::string unwanted) : unwanted_(std::move(unwanted)) {}

  const std::string& Text() const { return text_; }
  bool Wants(const Entry& entry) override { return unwanted_.find(entry.path) == std::string::npos; }
  bool GoesOn() override { return true; }
  bool Begin(Entry entry, bool is_wanted) override {
    entry_ = std::move(entry);
    left_ = *entry_.size;
    how_ = "+";
    if (!is_wanted) text_ += entry_.path + "-";
    return true;
  }
  Wish Content(std::string_view piece) override {
    left_ -= piece.size();
    is_right_ = is_right_ && piece.find_first_not_of(entry_.path) == std::string_view::npos;
    return Wish::kMore;
  }
  Wish Whole(ContentBuffer content) override {
    how_ = "*";
    return Content(content.View());
  }
  bool End(ReadStatus status, const Reason& problem) override {
    const bool is_whole = status == ReadStatus::kEnd && left_ == 0 && is_right_;
    text_ += entry_.path + (is_whole ? how_ : problem == why::kWrongChecksum ? "!" : "?");
    is_right_ = true;
    return true;
  }

 private:
  const std::string unwanted_;
  std::string text_;
  Entry entry_;
  std::uint64_t left_ = 0;
  bool is_right_ = true;
  std::string how_;
};

GTEST_TEST(SevenZip, SmallBlocksAreUnpackedAhead) {
  constexpr std::size_t kPart = 300U << 10;
  const struct {
    const char* name;
    std::vector<std::size_t> parts;  // entries in each block
    std::size_t size;                // of the first of them, about
    std::string unwanted;
    std::string damaged;
    std::string told;
  } rows[] = {
      {"all", {3, 1, 7, 2}, kPart, "", "", "a*z+b*c*d*e*f*g*h*i*j*k*l*m*"},
      {"some", {3, 1, 7, 2}, kPart, "acdfhkmz", "", "a-z-b*c-d-e*f-g*h-i*j*k-l*m-"},
      {"nothing of one", {2, 3, 4}, kPart, "cde", "", "a*z+b*c-d-e-f*g*h*i*"},
      {"damaged", {3, 1, 4, 2}, kPart, "", "adf", "a!z+b+c+d!e*f!g+h+i*j*"},
      {"damaged where nobody looks", {3, 3}, kPart, "b", "b", "a*z+b-c*d*e*f*"},
      {"too large in front of what is wanted", {3, 1}, 20 * kPart, "ab", "", "a-z+b-c+d*"},
      {"small up to what is wanted", {3, 1}, 20 * kPart, "ac", "", "a-z+b*c-d*"},
      {"one block", {5}, kPart, "b", "d", "a+z+b-c+d!e+"},
      {"one of which something is wanted", {2, 5}, kPart, "ab", "", "a-z+b-c+d+e+f+g+"},
      {"not worth a thread", {3, 1, 7, 2}, 100, "", "b", "a+z+b!c+d+e+f+g+h+i+j+k+l+m+"},
  };
  for (const auto& row : rows) {
    std::vector<std::vector<test::PackedEntry>> blocks;
    std::string name = "a";
    for (const std::size_t parts : row.parts) {
      blocks.emplace_back();
      for (std::size_t i = 0; i < parts; ++i, ++name[0])
        blocks.back().push_back({name, std::string(row.size + i, name[0])});
    }
    std::string bytes = Blocks(blocks);
    for (const char damaged : row.damaged) bytes[bytes.find(std::string(50, damaged)) + 49] ^= 1;
    const test::TempFolder folder;
    test::WriteFile(folder / "a.7z", bytes);
    const ArchiveInput input(test::Opened(folder / "a.7z"), 0);
    Reason reason;
    const auto reader =
        kSevenZipFamily.engines(input).front().open(input, {"", [] { return std::nullopt; }}, &reason);
    ASSERT_TRUE(reader) << reason;
    Telling told(row.unwanted);
    EXPECT_EQ(reader->Unpack(&told), ReadStatus::kEnd) << row.name;
    EXPECT_EQ(told.Text(), row.told) << row.name;
  }
}

// A few bytes may claim a list of any size.
GTEST_TEST(SevenZip, ListsThatWouldFillTheMemoryAreRefused) {
  const std::string lzma = "\x23\x03\x01\x01\x05\x5D" + Number(1 << 20, 4);
  const std::string packed(16, '\0');
  EXPECT_EQ(Text(OneCoder(packed, lzma, 33U << 20, 0, true)),
            "!its list of entries would take 33 MB of memory, which is more than any real archive has");
  EXPECT_EQ(Text(OneCoder(packed, lzma, 31U << 20, 0, true)), "!its list of entries is damaged");

  // A list may be long, and the number in it may be any.
  const auto packed_list = [](const std::string& list) {
    return OneCoder(list, "\x01" + Number(0, 1), list.size(), Crc32(list), true);
  };
  const auto list_of = [](std::uint64_t count) {
    return "\x01\x05\xF0" + Number(count, 4) + "\x0E\x01\x80\x0F\x01\x80\x11\x05" + Number(0, 1) +
           Number('f', 4) + "\x19\xFF" + Number(2U << 20, 8) + std::string(2U << 20, '\0') + Number(0, 2);
  };
  EXPECT_EQ(Text(packed_list(list_of(1))), "f=");
  EXPECT_EQ(Text(packed_list(list_of(4'000'001))), "!there are too many entries");
}

// As 7-Zip 26.02 wrote them: a file with its name encrypted by "ひみつ", and two with their contents by "右right".
const std::string kLockedNames = test::FromHex(
    "377abcaf271c000471d4844d80000000000000002e000000000000009ff0a38af1b998e6c73d847abbb5e0f568243491a754"
    "9bb86e7ced06d256c5ef052e9f1c8540b59a8fac29c8888df6911728d3bf54e33f8f56f2410685377c6b602addd7b241b4d3"
    "7f48affdd155cd675167469a1a87b21a2bfdcbbafbfae49759f1f0a3b8cfd94f2a8f41e20953b61c849477a630f84fb28dde"
    "18c7cf1cf806d073651a17062001096000070b0100012406f1070112530fb4555c4d03c5473e00686ddfe8ffeed70c560a01"
    "d904c0620000");
const std::string kLockedContents = test::FromHex(
    "377abcaf271c000400666b968600000000000000200000000000000057cf1875e59b9b3f673e08d88a084e9b85a75a2d863b"
    "297e74ad7c6779b13eaf152ba85b0000813307ae0fd00eb03c9f39109c9fa6d533dab22eb0dd8b5328d2e5774ee5df541efb"
    "64424dfe97fb7d8d1f578d07c9aebebadedf5f39e7668a89d98c646c753cf8bb0f10fff70a3997ca60a1ac1fcec0be6ba1b0"
    "f73cd81a3fee85087b3f18d8e7f5cc0017062001096600070b01000123030101055d001000000c760a01fc38abdf0000");

GTEST_TEST(SevenZip, Passwords) {
  const std::string none = "it is encrypted and no password was given";
  const std::string wrong = "the password is wrong or the data is damaged: its packed data is damaged";
  std::string damaged = kLockedContents;
  damaged[40] ^= 1;
  const struct {
    const std::string& bytes;
    std::vector<std::string> passwords;
    std::string text;
  } rows[] = {
      {kLockedNames, {}, "!" + none},
      {kLockedNames, {"himitsu"}, "!no password given opens it"},
      {kLockedNames, {"himitsu", "ひみつ"}, "a.txt=hello, hello, hello"},
      {kLockedContents, {}, "a.txt!" + none + " b.txt!" + none},
      {kLockedContents, {"right"}, "a.txt!" + wrong + " b.txt!" + wrong},
      {kLockedContents, {"right", "右right"}, "a.txt=hello, hello, hello b.txt=second"},
      {damaged, {"右right"}, "a.txt!" + wrong + " b.txt!" + wrong},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(test::UnpackBytes(kSevenZipFamily, row.bytes, row.passwords).Text(), row.text)
        << row.passwords.size();
  }
}

// One that was needed for the list is tried first for the contents.
GTEST_TEST(SevenZip, ThePasswordOfTheListIsKept) {
  const test::TempFolder folder;
  test::WriteFile(folder / "a.7z", kLockedNames);
  int asked = 0;
  Reason reason;
  const auto archive = ListArchive(
      kSevenZipFamily, ArchiveInput(test::Opened(folder / "a.7z"), 0), "",
      [&asked] { return std::optional<std::string>(asked++ == 0 ? "x" : "ひみつ"); }, &reason);
  ASSERT_TRUE(archive) << reason;
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(archive->password, "ひみつ");
}

}  // namespace
}  // namespace quendle::modules
