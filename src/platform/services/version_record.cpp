#include "platform/services/version_record.h"

namespace quendle::platform {

std::uint64_t NumberAt(std::string_view bytes, std::size_t position, std::size_t width, ByteOrder order) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t at = order == ByteOrder::kBig ? i : width - 1 - i;
    value = value << 8 | static_cast<unsigned char>(bytes[position + at]);
  }
  return value;
}

std::optional<VersionNumbers> VersionOfRecord(std::string_view bytes, ByteOrder order) {
  if (bytes.size() < sizeof(VersionRecord) || NumberAt(bytes, 0, 4, order) != kVersionSignature) {
    return std::nullopt;
  }
  const std::uint64_t high = NumberAt(bytes, 8, 4, order);
  const std::uint64_t low = NumberAt(bytes, 12, 4, order);
  return VersionNumbers{static_cast<std::uint16_t>(high >> 16), static_cast<std::uint16_t>(high & 0xFFFF),
                        static_cast<std::uint16_t>(low >> 16), static_cast<std::uint16_t>(low & 0xFFFF)};
}

}  // namespace quendle::platform
