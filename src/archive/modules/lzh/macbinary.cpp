#include "archive/modules/lzh/macbinary.h"

#include <cstdlib>

namespace quendle::modules {
namespace {

std::uint32_t BigEndian32(std::string_view bytes, std::size_t position) {
  std::uint32_t value = 0;
  for (const char c : bytes.substr(position, 4)) value = value << 8 | static_cast<unsigned char>(c);
  return value;
}

std::uint64_t FilledUp(std::uint64_t size) {
  return (size + kMacBinaryHeader - 1) / kMacBinaryHeader * kMacBinaryHeader;
}

}  // namespace

std::optional<Part> FindOnlyFork(std::string_view bytes, const LzhHeader& header) {
  constexpr std::int64_t kUnixEpoch = 2'082'844'800;  // seconds since 1904
  constexpr std::int64_t kDay = 86'400;               // more than any two local clocks differ
  if (bytes.size() < kMacBinaryHeader || bytes[0] != 0 || bytes[74] != 0 || bytes[82] != 0)
    return std::nullopt;
  const auto name_size = static_cast<unsigned char>(bytes[1]);
  const std::string_view name = std::string_view(header.path).substr(header.path.rfind('/') + 1);
  if (name_size > 63 || bytes.substr(2, name_size) != name) return std::nullopt;
  const std::int64_t changed = BigEndian32(bytes, 95) - kUnixEpoch;
  if (!header.time || std::abs(changed - header.time->seconds) > kDay) return std::nullopt;
  const std::uint64_t data = BigEndian32(bytes, 83);
  const std::uint64_t resource = BigEndian32(bytes, 87);
  if (data != 0 && resource != 0) return std::nullopt;
  const Part fork{kMacBinaryHeader, data + resource};
  if (header.size != fork.begin + FilledUp(fork.size)) return std::nullopt;
  return fork;
}

}  // namespace quendle::modules
