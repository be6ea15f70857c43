#include "platform/services/pe_version.h"

namespace quendle::platform {
namespace {

constexpr std::size_t kDosHeader = 64;
constexpr std::size_t kFileHeader = 24;  // with the signature before it
constexpr std::size_t kSectionHeader = 40;
constexpr std::size_t kResourceDirectory = 2;  // its place among the data directories
constexpr std::uint64_t kVersionType = 16;
constexpr std::uint64_t kVersionName = 1;
constexpr std::uint32_t kIsDirectory = 0x80000000;

std::uint32_t Number32(std::string_view bytes, std::size_t position) {
  return static_cast<std::uint32_t>(NumberAt(bytes, position, 4));
}

// The file as it lies in memory when it is loaded, as far as its resources go.
class PeImage {
 public:
  explicit PeImage(const ReadBytes& read) : read_(read) {}

  bool ReadHeaders();

  // Bytes at an address that is relative to the image; those that one section has in the file.
  std::optional<std::string> Read(std::uint64_t address, std::size_t size) const;

  // What the first entry of the resource directory stands for, or the first of that number: a place among the
  // resources, with kIsDirectory when another directory lies there.
  std::optional<std::uint32_t> Entry(std::uint32_t directory, std::optional<std::uint64_t> number) const;

  std::uint32_t Resources() const { return resources_; }

 private:
  const ReadBytes& read_;
  std::string sections_;
  std::uint32_t resources_ = 0;
};

bool PeImage::ReadHeaders() {
  const auto dos = read_(0, kDosHeader);
  if (!dos) return false;
  const std::uint64_t start = Number32(*dos, 60);
  const auto header = read_(start, kFileHeader);
  if (!header || !header->starts_with(std::string_view("PE\0\0", 4))) return false;
  const std::size_t optional_size = NumberAt(*header, 20, 2);
  const auto optional = read_(start + kFileHeader, optional_size);
  if (!optional || optional_size < 2) return false;

  const std::uint64_t magic = NumberAt(*optional, 0, 2);
  if (magic != 0x10B && magic != 0x20B) return false;
  const std::size_t directories = magic == 0x10B ? 96 : 112;
  const std::size_t entry = directories + kResourceDirectory * 8;
  if (optional_size < entry + 8 || Number32(*optional, directories - 4) <= kResourceDirectory) return false;
  resources_ = Number32(*optional, entry);

  auto sections = read_(start + kFileHeader + optional_size, NumberAt(*header, 6, 2) * kSectionHeader);
  if (!sections || resources_ == 0) return false;
  sections_ = std::move(*sections);
  return true;
}

std::optional<std::string> PeImage::Read(std::uint64_t address, std::size_t size) const {
  for (std::size_t at = 0; at < sections_.size(); at += kSectionHeader) {
    const std::uint64_t begin = Number32(sections_, at + 12);
    const std::uint64_t size_in_file = Number32(sections_, at + 16);
    if (address < begin || address - begin + size > size_in_file) continue;
    return read_(Number32(sections_, at + 20) + (address - begin), size);
  }
  return std::nullopt;
}

std::optional<std::uint32_t> PeImage::Entry(std::uint32_t directory,
                                            std::optional<std::uint64_t> number) const {
  if ((directory & kIsDirectory) == 0) return std::nullopt;
  const std::uint64_t address = std::uint64_t{resources_} + (directory & ~kIsDirectory);
  const auto header = Read(address, 16);
  if (!header) return std::nullopt;
  const std::size_t count = NumberAt(*header, 12, 2) + NumberAt(*header, 14, 2);
  const auto entries = Read(address + 16, count * 8);
  if (!entries) return std::nullopt;
  for (std::size_t at = 0; at < entries->size(); at += 8) {
    if (!number || Number32(*entries, at) == *number) return Number32(*entries, at + 4);
  }
  return std::nullopt;
}

// A version resource: three numbers of 16 bits, its key in UTF-16, and the record on a boundary of four
// bytes.
std::optional<VersionNumbers> VersionOfResource(std::string_view bytes) {
  constexpr std::string_view kKey("V\0S\0_\0V\0E\0R\0S\0I\0O\0N\0_\0I\0N\0F\0O\0\0\0", 32);
  if (NumberAt(bytes, 2, 2) < sizeof(VersionRecord) || bytes.substr(6, kKey.size()) != kKey) {
    return std::nullopt;
  }
  return VersionOfRecord(bytes.substr(40));
}

}  // namespace

std::optional<VersionNumbers> FindPeVersion(const ReadBytes& read) {
  PeImage image(read);
  if (!image.ReadHeaders()) return std::nullopt;
  // Three levels and no more: type, name, language, of which the first will do.
  const auto type = image.Entry(kIsDirectory, kVersionType);
  const auto name = type ? image.Entry(*type, kVersionName) : std::nullopt;
  const auto language = name ? image.Entry(*name, std::nullopt) : std::nullopt;
  if (!language || (*language & kIsDirectory) != 0) return std::nullopt;
  const auto data = image.Read(std::uint64_t{image.Resources()} + *language, 16);
  constexpr std::size_t kNeeded = 40 + sizeof(VersionRecord);
  if (!data || Number32(*data, 4) < kNeeded) return std::nullopt;
  const auto resource = image.Read(Number32(*data, 0), kNeeded);
  return resource ? VersionOfResource(*resource) : std::nullopt;
}

}  // namespace quendle::platform
