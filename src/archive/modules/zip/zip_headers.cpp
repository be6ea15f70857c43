#include "archive/modules/zip/zip_headers.h"

#include "archive/modules/common/little_endian.h"

namespace quendle::modules {
namespace {

constexpr std::uint64_t kVersion = 45;  // the first with sizes of 64 bits
constexpr std::uint64_t kUnix = 3U << 8U;
constexpr std::size_t kWideSize = 4;  // of the head of an extra field

// From the flags to the sizes, which are in the extra field: both kinds of header have them in this order.
void AppendShared(const ZipEntry& zip, std::uint16_t flags, std::string* bytes) {
  AppendLittleEndian(kVersion, 2, bytes);
  AppendLittleEndian(flags, 2, bytes);
  AppendLittleEndian(zip.packed_method, 2, bytes);
  AppendLittleEndian(zip.dos_time, 4, bytes);
  AppendLittleEndian(zip.crc, 4, bytes);
  AppendLittleEndian(0xFFFFFFFF, 4, bytes);
  AppendLittleEndian(0xFFFFFFFF, 4, bytes);
}

void AppendSizes(const ZipEntry& zip, std::uint64_t field_size, std::string* bytes) {
  AppendLittleEndian(0x0001, 2, bytes);
  AppendLittleEndian(field_size, 2, bytes);
  AppendLittleEndian(zip.size, 8, bytes);
  AppendLittleEndian(zip.packed_size, 8, bytes);
}

}  // namespace

void AppendDirectoryHeader(const ZipEntry& zip, const ZipHeaderForm& form, std::string* bytes) {
  bytes->append("PK\1\2");
  AppendLittleEndian(kUnix | kVersion, 2, bytes);
  AppendShared(zip, form.flags, bytes);
  AppendLittleEndian(form.name.size(), 2, bytes);
  AppendLittleEndian(kWideSize + 24 + form.extra.size(), 2, bytes);
  AppendLittleEndian(0, 6, bytes);  // comment, volume, internal attributes
  AppendLittleEndian(form.attributes, 4, bytes);
  AppendLittleEndian(0xFFFFFFFF, 4, bytes);
  bytes->append(form.name);
  AppendSizes(zip, 24, bytes);
  AppendLittleEndian(form.position, 8, bytes);
  bytes->append(form.extra);
}

void AppendLocalHeader(const ZipEntry& zip, const ZipHeaderForm& form, std::string* bytes) {
  bytes->append("PK\3\4");
  AppendShared(zip, form.flags, bytes);
  AppendLittleEndian(form.name.size(), 2, bytes);
  AppendLittleEndian(kWideSize + 16 + form.extra.size(), 2, bytes);
  bytes->append(form.name);
  AppendSizes(zip, 16, bytes);
  bytes->append(form.extra);
}

void AppendZipEnd(std::uint64_t position, std::size_t count, std::size_t begin, std::string* bytes) {
  const std::uint64_t size = bytes->size() - begin;
  bytes->append("PK\6\6");
  AppendLittleEndian(44, 8, bytes);
  AppendLittleEndian(kVersion, 2, bytes);
  AppendLittleEndian(kVersion, 2, bytes);
  AppendLittleEndian(0, 8, bytes);  // volumes
  AppendLittleEndian(count, 8, bytes);
  AppendLittleEndian(count, 8, bytes);
  AppendLittleEndian(size, 8, bytes);
  AppendLittleEndian(position, 8, bytes);
  bytes->append("PK\6\7");
  AppendLittleEndian(0, 4, bytes);
  AppendLittleEndian(position + size, 8, bytes);
  AppendLittleEndian(1, 4, bytes);
  bytes->append("PK\5\6");
  AppendLittleEndian(0, 4, bytes);                   // volumes
  AppendLittleEndian(0xFFFFFFFFFFFFFFFF, 8, bytes);  // counts and size
  AppendLittleEndian(0xFFFFFFFF, 4, bytes);
  AppendLittleEndian(0, 2, bytes);
}

}  // namespace quendle::modules
