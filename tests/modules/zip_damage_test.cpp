#include "archive/modules/zip/zip_family.h"
#include "modules/unpack_bytes.h"

namespace quendle::modules {
namespace {

using test::Number;
using test::Pack;
using test::Patch;
using test::StoredZip;
using test::Unpack;

std::string Text(const std::string& bytes) {
  return test::UnpackBytes(kZipFamily, bytes).Text();
}

// The entries of the directory and the record behind them, as in the archives below.
std::size_t Header(const std::string& bytes, int index) {
  std::size_t position = bytes.find("PK\1\2");
  while (index-- > 0) position = bytes.find("PK\1\2", position + 1);
  return position;
}

GTEST_TEST(ZipDamage, IsRefusedAsAWhole) {
  const std::string good = StoredZip({{"a", "12345678"}, {"b", "2"}});
  const std::string shares = "!the archive is damaged or made to deceive: its entries share the same bytes";
  const std::string damaged = "!the central directory is damaged: ";
  const std::string missing = "!the central directory is missing: the file is truncated or no ZIP archive";
  const std::size_t end = good.size() - 22;
  const struct {
    const char* what;
    std::size_t position;
    std::uint64_t value;
    int width;
    std::string text;
  } rows[] = {
      {"the same entry twice", Header(good, 1) + 42, 0, 4, shares},
      {"an entry in another's content", Header(good, 1) + 42, 33, 4, shares},
      {"content that reaches into the next entry", Header(good, 0) + 20, 9, 4, shares},
      {"content that reaches into the directory", Header(good, 1) + 20, 2, 4, shares},
      {"content without end", Header(good, 1) + 20, 0xFFFFFFFE, 4, shares},
      {"an entry in the directory", Header(good, 1) + 42, Header(good, 0), 4, shares},
      {"an entry behind the end", Header(good, 1) + 42, 0x7FFFFFFF, 4,
       damaged + "an entry is nowhere in the file"},
      {"wide numbers that are missing", Header(good, 1) + 42, 0xFFFFFFFF, 4,
       damaged + "an entry is nowhere in the file"},
      {"a volume that does not exist", Header(good, 1) + 34, 3, 2,
       damaged + "an entry is nowhere in the file"},
      {"too many entries", end + 10, 60'000, 2, damaged + "2 entries are there of 60000"},
      {"too few entries", end + 10, 1, 2, damaged + "2 entries are there of 1"},
      {"a name without end", Header(good, 1) + 28, 0xFFFF, 2, damaged + "its last entry is cut off"},
      {"another signature", Header(good, 1), 0, 4, damaged + "1 entries are there of 2"},
      {"no first entry", Header(good, 0), 0, 4, missing},
      {"a directory that is too large", end + 12, 0x10000000, 4, missing},
      {"a directory elsewhere", end + 16, 0x10000000, 4, missing},
      {"a comment that is cut off", end + 20, 1, 2, missing},
  };
  ASSERT_EQ(Text(good), "a=12345678 b=2");
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    std::string bytes = good;
    Patch(&bytes, row.position, row.value, row.width);
    EXPECT_EQ(Text(bytes), row.text);
  }
}

GTEST_TEST(ZipDamage, OfOneEntryLeavesTheOthers) {
  const std::string good = StoredZip({{"a", "12345678"}, {"b", "2"}});
  const struct {
    const char* what;
    std::size_t position;
    std::uint64_t value;
    int width;
    bool in_first;
  } rows[] = {
      {"content", 31, 'x', 1, true},
      {"checksum in the directory", Header(good, 0) + 16, 1, 4, true},
      {"larger in the directory", Header(good, 0) + 24, 9, 4, true},
      {"smaller in the directory", Header(good, 0) + 24, 7, 4, true},
      {"unknown method", 8, 77, 2, true},
      {"second local signature", good.find("PK\3\4", 1) + 2, 0, 2, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    std::string bytes = good;
    Patch(&bytes, row.position, row.value, row.width);
    const std::string text = Text(bytes);
    EXPECT_EQ(text.find("a=12345678") == text.npos, row.in_first) << text;
    EXPECT_EQ(text.find("a!") == text.npos, !row.in_first) << text;
    EXPECT_EQ(text.find("b=2") == text.npos, !row.in_first) << text;
    EXPECT_EQ(text.find("b!") == text.npos, row.in_first) << text;
  }
}

// The library cannot go on behind packed content that makes no sense; the entries behind it are read still.
GTEST_TEST(ZipDamage, IsLeftBehindInEachOfManyEntries) {
  std::vector<test::PackedEntry> entries;
  for (int i = 0; i < 600; ++i) entries.push_back({std::to_string(i), std::string(2000, 'a')});
  std::string bytes = Pack("zip", "compression=deflate", entries);
  for (std::size_t local = bytes.find("PK\3\4"), i = 0; local != bytes.npos;
       local = bytes.find("PK\3\4", local + 1)) {
    const std::size_t content = local + 30 + bytes[local + 26] + bytes[local + 28];
    if (i++ % 2 == 0) Patch(&bytes, content, 0xFFFF, 2);
  }
  const auto read = test::UnpackBytes(kZipFamily, bytes);
  ASSERT_EQ(read.entries.size(), 600U);
  for (std::size_t i = 0; i < 600; ++i) {
    ASSERT_EQ(read.entries[i].problem.empty(), i % 2 == 1) << i << read.entries[i].problem;
    ASSERT_EQ(read.entries[i].content == entries[i].content, i % 2 == 1) << i;
  }
}

GTEST_TEST(ZipDamage, WideRecordsMayLie) {
  const auto wide = [](std::uint64_t count, std::uint64_t size, std::uint64_t offset, std::uint64_t record) {
    std::string bytes = StoredZip({{"a", "1"}});
    const std::size_t end = bytes.size() - 22;
    Patch(&bytes, end + 10, 0xFFFF, 2);
    bytes.insert(end, "PK\6\6" + Number(44, 8) + Number(45, 4) + Number(0, 8) + Number(count, 8) +
                          Number(count, 8) + Number(size, 8) + Number(offset, 8) + "PK\6\7" + Number(0, 4) +
                          Number(record, 8) + Number(1, 4));
    return bytes;
  };
  const std::uint64_t size = 47;
  const std::uint64_t offset = 32;
  EXPECT_EQ(Text(wide(1, size, offset, offset + size)), "a=1");
  EXPECT_EQ(Text(wide(1, size, offset, UINT64_MAX)), "a=1");  // it is right before the locator all the same
  for (const std::uint64_t lie : {std::uint64_t{0}, std::uint64_t{46}, std::uint64_t{48},
                                  std::uint64_t{1} << 62, UINT64_MAX - 40, UINT64_MAX}) {
    EXPECT_EQ(Text(wide(lie, size, offset, offset + size)).front(), '!') << lie;
    EXPECT_EQ(Text(wide(1, lie, offset, offset + size)).front(), '!') << lie;
    EXPECT_EQ(Text(wide(1, size, lie, offset + size)).front(), '!') << lie;
  }
}

}  // namespace
}  // namespace quendle::modules
