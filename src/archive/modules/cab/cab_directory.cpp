#include "archive/modules/cab/cab_directory.h"

#include <algorithm>
#include <string_view>
#include <tuple>

#include "archive/modules/cab/cab_header.h"
#include "archive/modules/common/entry_names.h"
#include "archive/modules/common/entry_times.h"
#include "archive/modules/common/little_endian.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kFolderSize = 8;
constexpr std::size_t kFileSize = 16;
constexpr std::size_t kLongestName = 256;

// The bytes there, `size` of them or as many as the cabinet has.
std::string ReadBytes(const ArchiveInput& input, std::uint64_t position, std::uint64_t size) {
  std::string bytes(static_cast<std::size_t>(std::min(size, input.Size() - std::min(position, input.Size()))),
                    '\0');
  std::size_t got = 0;
  if (!input.ReadAt(position, bytes.data(), bytes.size(), &got).ok()) got = 0;
  bytes.resize(got);
  return bytes;
}

// False for a method that is not for here, and for data that do not follow those of the folder before. Data that two
// folders shared could come to any size.
bool ReadFolders(const ArchiveInput& input, const CabHeader& header, std::vector<CabFolder>* folders) {
  constexpr std::uint64_t kMethodMask = 0xF;
  constexpr std::uint64_t kMszip = 1;
  const std::size_t size = kFolderSize + header.folder_reserve;
  const std::string bytes = ReadBytes(input, header.folders, header.folder_count * size);
  if (bytes.size() < header.folder_count * size) return false;
  for (std::size_t at = 0; at < bytes.size(); at += size) {
    const std::uint64_t begin = LittleEndian(bytes, at, 4);
    const std::uint64_t method = LittleEndian(bytes, at + 6, 2) & kMethodMask;
    if (method > kMszip || begin > header.size) return false;
    if (!folders->empty()) {
      if (begin < folders->back().begin) return false;
      folders->back().end = begin;
    }
    const auto blocks = static_cast<std::size_t>(LittleEndian(bytes, at + 4, 2));
    folders->push_back({begin, header.size, blocks, method == kMszip});
  }
  return true;
}

bool ReadFiles(const ArchiveInput& input, const CabHeader& header, std::vector<CabFile>* files) {
  const std::string all = ReadBytes(input, header.files, header.file_count * (kFileSize + kLongestName));
  std::string_view bytes = all;
  for (std::size_t i = 0; i < header.file_count; ++i) {
    const std::size_t end = bytes.find('\0', kFileSize);
    if (end == bytes.npos || end == kFileSize || end >= kFileSize + kLongestName) return false;
    CabFile& file = files->emplace_back();
    file.size = LittleEndian(bytes, 0, 4);
    file.offset = LittleEndian(bytes, 4, 4);
    file.folder = static_cast<std::size_t>(LittleEndian(bytes, 8, 2));
    file.time = static_cast<std::uint32_t>(LittleEndian(bytes, 10, 2) << 16 | LittleEndian(bytes, 12, 2));
    file.attributes = static_cast<std::uint32_t>(LittleEndian(bytes, 14, 2));
    file.name = bytes.substr(kFileSize, end - kFileSize);
    if (file.folder >= header.folder_count) return false;
    bytes.remove_prefix(end + 1);
  }
  return !files->empty();
}

// Sorts them as their contents lie. False when contents overlap.
bool SortFiles(std::vector<CabFile>* files) {
  const auto place = [](const CabFile& file) { return std::tie(file.folder, file.offset); };
  std::stable_sort(files->begin(), files->end(),
                   [&](const CabFile& a, const CabFile& b) { return place(a) < place(b); });
  return std::adjacent_find(files->begin(), files->end(), [](const CabFile& a, const CabFile& b) {
           return a.folder == b.folder && b.offset < a.offset + a.size;
         }) == files->end();
}

}  // namespace

std::optional<CabDirectory> ReadPlainCabinet(const ArchiveInput& input) {
  const auto header = ReadCabHeader(input, 0);
  if (!header || input.VolumeCount() > 1 || !header->previous.empty() || !header->next.empty() ||
      header->size > input.Size() || header->block_reserve > 0)
    return std::nullopt;
  CabDirectory directory;
  const bool is_plain = ReadFolders(input, *header, &directory.folders) &&
                        ReadFiles(input, *header, &directory.files) && SortFiles(&directory.files);
  return is_plain ? std::optional(std::move(directory)) : std::nullopt;
}

Entry ToEntry(const CabFile& file, const char* method, const std::string& charset) {
  constexpr std::uint32_t kExecutable = 0x40;
  constexpr std::uint32_t kUtf8Name = 0x80;
  Entry entry;
  entry.path = DecodeName(file.name, (file.attributes & kUtf8Name) != 0, charset);
  entry.size = file.size;
  entry.attributes.write_time = TimeFromDos(file.time);
  entry.attributes.executable = (file.attributes & kExecutable) != 0;
  entry.method = method;
  return entry;
}

}  // namespace quendle::modules
