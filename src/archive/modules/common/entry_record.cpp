#include "archive/modules/common/entry_record.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/process/local_time.h"

namespace quendle::modules {
namespace {

// What fits into `size` bytes with a NUL behind it.
std::string_view CutName(std::string_view name, bool utf8, std::size_t size) {
  if (name.size() < size) return name;
  std::size_t length = size - 1;
  while (utf8 && length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) --length;
  return name.substr(0, length);
}

void FillTime(const Entry& entry, ArchiverEntry* record) {
  if (!entry.attributes.write_time) return;
  std::tm local{};
  if (!platform::ToLocalTime(entry.attributes.write_time->seconds, &local)) return;
  if (local.tm_year < 80 || local.tm_year > 207) return;  // that the record cannot hold
  record->date =
      static_cast<std::uint16_t>((local.tm_year - 80) << 9 | (local.tm_mon + 1) << 5 | local.tm_mday);
  record->time = static_cast<std::uint16_t>(local.tm_hour << 11 | local.tm_min << 5 | local.tm_sec / 2);
}

}  // namespace

void FillRecord(const Entry& entry, const std::string& name, bool utf8, ArchiverEntry* record) {
  *record = ArchiverEntry();
  const std::uint64_t size = entry.size.value_or(0);
  record->original_size = static_cast<std::uint32_t>(size);
  record->compressed_size = static_cast<std::uint32_t>(entry.packed_size);
  record->crc = entry.crc;
  if (size > 0)
    record->ratio = static_cast<std::uint16_t>(
        std::min(1000.0, 1000.0 * static_cast<double>(entry.packed_size) / static_cast<double>(size)));
  FillTime(entry, record);
  const std::string_view fitting = CutName(name, utf8, sizeof record->file_name);
  std::memcpy(record->file_name, fitting.data(), fitting.size());
  std::memcpy(record->mode, entry.method.data(), std::min(entry.method.size(), sizeof record->mode));
}

}  // namespace quendle::modules
