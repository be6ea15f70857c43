#include "archive/modules/common/signature_scan.h"

#include <memory>

#include "support/temp_folder.h"

namespace quendle::modules {
namespace {

GTEST_TEST(SignatureScan, FindsArchivesAtTheBeginningAndBehindPrograms) {
  constexpr std::size_t kBlock = 256 << 10;  // what is read at a time
  const std::string filler(3 * kBlock, 'P');
  const auto program = [&](std::size_t size) { return "MZ" + filler.substr(0, size - 2); };
  struct Row {
    const char* what;
    std::string bytes;
    std::size_t lead;
    std::uint64_t reach;
    std::uint64_t from;  // the first position that fits
    std::optional<std::uint64_t> found;
  };
  const Row rows[] = {
      {"beginning", "PK\3\4", 0, 100, 0, 0},
      {"beginning, with a lead", "..PK\3\4", 2, 100, 0, 0},
      {"beginning, shorter than the lead", ".", 2, 100, 0, {}},
      {"beginning, no reach", "PK\3\4", 0, 0, 0, 0},
      {"empty", "", 0, 100, 0, {}},
      {"ELF", "\177ELF PK\3\4", 0, 100, 0, 5},
      {"the other signature", "MZ -lh5- PK\3\4", 0, 100, 0, 3},
      {"a lead in a program", "MZ -lh5-", 2, 100, 0, 1},
      {"a lead that begins before the program", "MZ-lh5-", 3, 100, 0, {}},
      {"the first that fits", "MZPK\3\4-lh5-PK\3\4", 0, 100, 7, 11},
      {"none fits", "MZPK\3\4", 0, 100, 99, {}},
      {"the last within reach", "MZ....PK\3\4", 0, 7, 0, 6},
      {"behind reach", "MZ....PK\3\4", 0, 6, 0, {}},
      {"reach counts without the lead", "MZ....PK\3\4", 4, 3, 0, 2},
      {"at the end of a block", program(kBlock - 4) + "PK\3\4", 0, kBlock * 9, 0, kBlock - 4},
      {"across blocks", program(kBlock - 1) + "PK\3\4", 0, kBlock * 9, 0, kBlock - 1},
      {"at the start of a block", program(kBlock) + "PK\3\4", 0, kBlock * 9, 0, kBlock},
      {"across blocks with a lead", program(2 * kBlock + 1) + "PK\3\4", 3, kBlock * 9, 0, 2 * kBlock - 2},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const test::TempFolder folder;
    test::WriteFile(folder / "in", "??" + row.bytes);
    std::unique_ptr<platform::InputFile> file;
    ASSERT_TRUE(platform::InputFile::Open(folder / "in", &file).ok());
    const ArchiveInput input(std::move(file), 2);
    std::vector<std::uint64_t> tried;
    const auto found = FindSignature(input, {{"PK\3\4", "-lh5-"}, row.lead, row.reach}, [&](auto position) {
      EXPECT_TRUE(tried.empty() || tried.back() < position);
      tried.push_back(position);
      return position >= row.from;
    });
    EXPECT_EQ(found, row.found);
  }
}

}  // namespace
}  // namespace quendle::modules
