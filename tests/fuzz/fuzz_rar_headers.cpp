// RAR archives whose headers get the checksums that they should have, so that what is behind these is reached, too.
#include <string>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/little_endian.h"
#include "archive/modules/rar/rar5_block.h"
#include "archive/modules/rar/rar_family.h"
#include "fuzz_family.h"

namespace {

using namespace quendle::modules;

void Put(std::uint32_t value, std::size_t width, std::string* bytes, std::size_t at) {
  for (std::size_t i = 0; i < width; ++i) (*bytes)[at + i] = static_cast<char>(value >> (8 * i));
}

// Where the next block begins; 0: this one is cut off.
std::size_t Mend4(std::string* bytes, std::size_t at) {
  if (bytes->size() - at < 11) return 0;
  const auto size = static_cast<std::size_t>(LittleEndian(*bytes, at + 5, 2));
  if (size < 7 || size > bytes->size() - at) return 0;
  Put(Crc32(std::string_view(*bytes).substr(at + 2, size - 2)) & 0xFFFF, 2, bytes, at);
  const bool has_content = ((*bytes)[at + 4] & 0x80) != 0 || (*bytes)[at + 2] == 0x74;
  return at + size + static_cast<std::size_t>(has_content ? LittleEndian(*bytes, at + 7, 4) : 0);
}

std::size_t Mend5(std::string* bytes, std::size_t at) {
  if (bytes->size() - at < 7) return 0;
  const std::string_view behind_sum = std::string_view(*bytes).substr(at + 4);
  Rar5Numbers numbers(behind_sum);
  const std::uint64_t size = numbers.Next();
  const std::size_t whole = behind_sum.size() - numbers.Rest().size() + static_cast<std::size_t>(size);
  if (numbers.Failed() || size > numbers.Rest().size()) return 0;
  numbers.Next();
  const std::uint64_t flags = numbers.Next();
  if ((flags & 1) != 0) numbers.Next();
  const std::uint64_t content = (flags & 2) != 0 ? numbers.Next() : 0;
  Put(Crc32(behind_sum.substr(0, whole)), 4, bytes, at);
  return content < bytes->size() ? at + 4 + whole + static_cast<std::size_t>(content) : 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const bool is_5 = data[0] % 2 != 0;
  std::string bytes = is_5 ? std::string("Rar!\x1A\x07\1\0", 8) : std::string("Rar!\x1A\x07\0", 7);
  std::size_t at = bytes.size();
  bytes.append(reinterpret_cast<const char*>(data) + 1, size - 1);
  while (at != 0 && at < bytes.size()) at = is_5 ? Mend5(&bytes, at) : Mend4(&bytes, at);
  ReadEverything(kRarFamily, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return 0;
}
