#include "archive/modules/zip/zip_headers.h"

namespace quendle::modules {
namespace {

constexpr std::uint64_t kVersion = 45;  // the first with sizes of 64 bits
constexpr std::uint64_t kUnix = 3U << 8U;
constexpr std::size_t kWideSize = 4;  // of the head of an extra field

void Append(std::string* bytes, std::uint64_t value, int width) {
  for (int i = 0; i < width; ++i) bytes->push_back(static_cast<char>(value >> (8 * i) & 0xFF));
}

// From the flags to the sizes, which are in the extra field: both kinds of header have them in this order.
void AppendShared(const ZipEntry& zip, std::uint16_t flags, std::string* bytes) {
  Append(bytes, kVersion, 2);
  Append(bytes, flags, 2);
  Append(bytes, zip.packed_method, 2);
  Append(bytes, zip.dos_time, 4);
  Append(bytes, zip.crc, 4);
  Append(bytes, 0xFFFFFFFF, 4);
  Append(bytes, 0xFFFFFFFF, 4);
}

void AppendSizes(const ZipEntry& zip, std::uint64_t field_size, std::string* bytes) {
  Append(bytes, 0x0001, 2);
  Append(bytes, field_size, 2);
  Append(bytes, zip.size, 8);
  Append(bytes, zip.packed_size, 8);
}

}  // namespace

void AppendDirectoryHeader(const ZipEntry& zip, const ZipHeaderForm& form, std::string* bytes) {
  bytes->append("PK\1\2");
  Append(bytes, kUnix | kVersion, 2);
  AppendShared(zip, form.flags, bytes);
  Append(bytes, form.name.size(), 2);
  Append(bytes, kWideSize + 24 + form.extra.size(), 2);
  Append(bytes, 0, 6);  // comment, volume, internal attributes
  Append(bytes, form.attributes, 4);
  Append(bytes, 0xFFFFFFFF, 4);
  bytes->append(form.name);
  AppendSizes(zip, 24, bytes);
  Append(bytes, form.position, 8);
  bytes->append(form.extra);
}

void AppendLocalHeader(const ZipEntry& zip, const ZipHeaderForm& form, std::string* bytes) {
  bytes->append("PK\3\4");
  AppendShared(zip, form.flags, bytes);
  Append(bytes, form.name.size(), 2);
  Append(bytes, kWideSize + 16 + form.extra.size(), 2);
  bytes->append(form.name);
  AppendSizes(zip, 16, bytes);
  bytes->append(form.extra);
}

void AppendZipEnd(std::uint64_t position, std::size_t count, std::size_t begin, std::string* bytes) {
  const std::uint64_t size = bytes->size() - begin;
  bytes->append("PK\6\6");
  Append(bytes, 44, 8);
  Append(bytes, kVersion, 2);
  Append(bytes, kVersion, 2);
  Append(bytes, 0, 8);  // volumes
  Append(bytes, count, 8);
  Append(bytes, count, 8);
  Append(bytes, size, 8);
  Append(bytes, position, 8);
  bytes->append("PK\6\7");
  Append(bytes, 0, 4);
  Append(bytes, position + size, 8);
  Append(bytes, 1, 4);
  bytes->append("PK\5\6");
  Append(bytes, 0, 4);                   // volumes
  Append(bytes, 0xFFFFFFFFFFFFFFFF, 8);  // counts and size
  Append(bytes, 0xFFFFFFFF, 4);
  Append(bytes, 0, 2);
}

}  // namespace quendle::modules
