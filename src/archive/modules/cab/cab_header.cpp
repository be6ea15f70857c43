#include "archive/modules/cab/cab_header.h"

#include <algorithm>
#include <string_view>

#include "archive/modules/common/little_endian.h"
#include "archive/modules/common/signature_scan.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kHeaderSize = 36;
// With reserved bytes and four names.
constexpr std::size_t kMostSize = kHeaderSize + 4 + 65'535 + std::size_t{4} * 256;

// The text up to the next NUL.
std::string TakeString(std::string_view* bytes) {
  const std::size_t end = std::min(bytes->find('\0'), bytes->size());
  std::string text(bytes->substr(0, end));
  bytes->remove_prefix(std::min(end + 1, bytes->size()));
  return text;
}

}  // namespace

std::optional<CabHeader> ReadCabHeader(const ArchiveInput& input, std::uint64_t position) {
  std::string bytes(kHeaderSize, '\0');
  std::size_t got = 0;
  if (!input.ReadAt(position, bytes.data(), bytes.size(), &got).ok()) return std::nullopt;
  const auto number = [&bytes](std::size_t at, std::size_t width) { return LittleEndian(bytes, at, width); };
  const std::uint64_t first_file = number(16, 4);
  CabHeader header;
  header.size = number(8, 4);
  header.files = first_file;
  header.folder_count = static_cast<std::size_t>(number(26, 2));
  header.file_count = static_cast<std::size_t>(number(28, 2));
  if (got < kHeaderSize || !bytes.starts_with("MSCF") || number(25, 1) != 1 || number(26, 2) == 0 ||
      first_file < kHeaderSize || first_file >= header.size) {
    return std::nullopt;
  }
  const std::uint64_t flags = number(30, 2);
  header.set = number(32, 2);
  header.index = number(34, 2);
  header.reserved_are_zero = number(4, 4) == 0 && number(12, 4) == 0 && number(20, 4) == 0 && flags < 8;
  bytes.resize(kMostSize);
  if (!input.ReadAt(position, bytes.data(), bytes.size(), &got).ok()) return std::nullopt;
  bytes.resize(got);
  std::string_view rest = std::string_view(bytes).substr(std::min(kHeaderSize, got));
  if ((flags & 4) != 0) {
    header.folder_reserve = static_cast<std::size_t>(number(38, 1));
    header.block_reserve = static_cast<std::size_t>(number(39, 1));
    rest.remove_prefix(std::min(rest.size(), 4 + static_cast<std::size_t>(number(36, 2))));
  }
  if ((flags & 1) != 0) {
    header.previous = TakeString(&rest);
    TakeString(&rest);  // the label of its disk
  }
  if ((flags & 2) != 0) {
    header.next = TakeString(&rest);
    TakeString(&rest);
  }
  header.folders = got - rest.size();
  header.first_block = LittleEndian(rest, 0, 4);
  return header;
}

std::optional<std::uint64_t> NextCabinet(const ArchiveInput& input, std::uint64_t begin) {
  const ArchiveInput rest = input.From(begin);
  const auto found =
      FindSignature(rest, {.signatures = {"MSCF"}, .behind_anything = true}, [&](std::uint64_t candidate) {
        const auto header = ReadCabHeader(rest, candidate);
        return header && header->reserved_are_zero &&
               (begin > 0 || header->size <= rest.Size() - candidate) && header->first_block > kHeaderSize &&
               header->first_block <= header->size;
      });
  return found ? std::optional(begin + *found) : std::nullopt;
}

}  // namespace quendle::modules
