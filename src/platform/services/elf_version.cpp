#include "platform/services/elf_version.h"

namespace quendle::platform {
namespace {

constexpr std::uint64_t kContent = 1;  // a section of bytes that are in the file

// Where the two classes of files have what is needed here, and how wide their addresses are.
struct Layout {
  std::size_t address;
  std::size_t header;
  std::size_t table;       // in the header: position of the section headers
  std::size_t entry_size;  // in the header, and behind it the count and the number of the names' section
  std::size_t entry;       // bytes of a section header
  std::size_t position;    // in a section header; the size of the section is behind it
};
constexpr Layout k32Bit = {4, 52, 32, 46, 40, 16};
constexpr Layout k64Bit = {8, 64, 40, 58, 64, 24};

struct Section {
  std::uint64_t name;
  std::uint64_t type;
  std::uint64_t position;
  std::uint64_t size;
};

}  // namespace

std::optional<VersionNumbers> FindElfVersion(const ReadBytes& read) {
  const auto kind = read(0, 6);
  if (!kind) return std::nullopt;
  const Layout& layout = (*kind)[4] == 1 ? k32Bit : k64Bit;
  const ByteOrder order = (*kind)[5] == 2 ? ByteOrder::kBig : ByteOrder::kLittle;
  const auto header = read(0, layout.header);
  if (!header || NumberAt(*header, layout.entry_size, 2, order) != layout.entry) return std::nullopt;
  const std::size_t count = NumberAt(*header, layout.entry_size + 2, 2, order);
  const std::size_t names_index = NumberAt(*header, layout.entry_size + 4, 2, order);
  const auto table = read(NumberAt(*header, layout.table, layout.address, order), count * layout.entry);
  if (!table || names_index >= count) return std::nullopt;

  const auto section = [&](std::size_t index) {
    const std::string_view entry = std::string_view(*table).substr(index * layout.entry, layout.entry);
    return Section{NumberAt(entry, 0, 4, order), NumberAt(entry, 4, 4, order),
                   NumberAt(entry, layout.position, layout.address, order),
                   NumberAt(entry, layout.position + layout.address, layout.address, order)};
  };
  const std::string wanted = std::string(kVersionSection) + '\0';
  const Section names = section(names_index);
  if (!read(names.position, 0)) return std::nullopt;  // so that the sums below stay numbers of 64 bits
  for (std::size_t i = 0; i < count; ++i) {
    const Section one = section(i);
    if (one.type != kContent || one.size < sizeof(VersionRecord)) continue;
    if (one.name >= names.size || read(names.position + one.name, wanted.size()) != wanted) continue;
    const auto record = read(one.position, sizeof(VersionRecord));
    return record ? VersionOfRecord(*record, order) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace quendle::platform
