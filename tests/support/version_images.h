// Small Windows and ELF files that carry a version.
#pragma once

#include <string>

#include "platform/services/version_record.h"

namespace quendle::test {

// Appends numbers of a width to bytes.
class ImageBytes {
 public:
  explicit ImageBytes(bool big_endian = false) : big_endian_(big_endian) {}

  ImageBytes& Add(std::size_t width, std::initializer_list<std::uint64_t> numbers) {
    for (const std::uint64_t number : numbers) {
      for (std::size_t i = 0; i < width; ++i) {
        bytes_.push_back(static_cast<char>(number >> 8 * (big_endian_ ? width - 1 - i : i) & 0xFF));
      }
    }
    return *this;
  }
  ImageBytes& Add(std::string_view bytes) {
    bytes_ += bytes;
    return *this;
  }
  ImageBytes& Record(const platform::VersionNumbers& version) {
    for (const std::uint32_t number : platform::MakeVersionRecord(version)) Add(4, {number});
    return *this;
  }
  ImageBytes& PadTo(std::size_t size) {
    bytes_.resize(size);
    return *this;
  }
  std::size_t Size() const { return bytes_.size(); }
  const std::string& Bytes() const { return bytes_; }

 private:
  bool big_endian_;
  std::string bytes_;
};

// The places of a Windows file of PeFile that tests damage.
inline constexpr std::size_t kPeStart = 64;
inline constexpr std::size_t kPeResources = 0x400;     // in the file; its address is 0x2000
inline constexpr std::size_t kPeTypes = kPeResources;  // the three directories, 16 bytes and an entry or two
inline constexpr std::size_t kPeNames = kPeResources + 32;
inline constexpr std::size_t kPeLanguages = kPeNames + 24;
inline constexpr std::size_t kPeData = kPeLanguages + 24;
inline constexpr std::size_t kPeVersion = kPeData + 16;

// A library of two sections whose resources are an icon and the version; it ends with the record.
inline std::string PeFile(int bits, const platform::VersionNumbers& version) {
  const std::size_t directories = bits == 64 ? 112 : 96;
  const std::size_t optional_size = directories + 16 * 8;
  ImageBytes image;
  image.Add("MZ").PadTo(60).Add(4, {kPeStart});
  image.Add({"PE\0\0", 4}).Add(2, {bits == 64 ? 0x8664U : 0x14CU, 2}).Add(4, {0, 0, 0});
  image.Add(2, {optional_size, 0x2000, bits == 64 ? 0x20BU : 0x10BU});
  image.PadTo(kPeStart + 24 + directories - 4).Add(4, {16, 0, 0, 0, 0, 0x2000, 0x100});
  image.PadTo(kPeStart + 24 + optional_size);
  image.Add({".text\0\0\0", 8}).Add(4, {0x200, 0x1000, 0x200, 0x200}).PadTo(image.Size() + 16);
  image.Add({".rsrc\0\0\0", 8}).Add(4, {0x100, 0x2000, 0x100, kPeResources}).PadTo(image.Size() + 16);
  const auto directory = [&](std::uint64_t count) { image.Add(4, {0, 0, 0}).Add(2, {0, count}); };
  image.PadTo(kPeTypes);
  directory(2);
  image.Add(4, {3, 0x80000000, 16, 0x80000000 + (kPeNames - kPeResources)});
  directory(1);
  image.Add(4, {1, 0x80000000 + (kPeLanguages - kPeResources)});
  directory(1);
  image.Add(4, {0x411, kPeData - kPeResources});
  image.Add(4, {0x2000 + (kPeVersion - kPeResources), 92, 0, 0}).Add(2, {92, 52, 0});
  for (const char c : std::string_view("VS_VERSION_INFO")) image.Add(2, {static_cast<unsigned char>(c)});
  return image.PadTo(kPeVersion + 40).Record(version).Bytes();
}

// A file of three sections: none, the names, the version.
inline std::string ElfFile(int bits, bool big_endian, const platform::VersionNumbers& version) {
  const std::size_t width = bits == 64 ? 8 : 4;
  const std::size_t header = bits == 64 ? 64 : 52;
  const std::string names = std::string(1, '\0') + std::string(platform::kVersionSection) + '\0';
  const std::size_t record = header + names.size();
  const std::size_t table = record + sizeof(platform::VersionRecord);
  ImageBytes image(big_endian);
  image
      .Add(
          "\x7F"
          "ELF")
      .Add(1, {bits == 64 ? 2U : 1U, big_endian ? 2U : 1U, 1})
      .PadTo(16);
  image.Add(2, {3, 0}).Add(4, {1}).Add(width, {0, 0, table}).Add(4, {0});
  image.Add(2, {header, 0, 0, bits == 64 ? 64U : 40U, 3, 1});
  image.Add(names).Record(version);
  const auto section = [&](std::uint64_t name, std::uint64_t type, std::size_t position, std::size_t size) {
    image.Add(4, {name, type}).Add(width, {0, 0, position, size}).Add(4, {0, 0}).Add(width, {0, 0});
  };
  section(0, 0, 0, 0);
  section(0, 3, header, names.size());
  section(1, 1, record, sizeof(platform::VersionRecord));
  return image.Bytes();
}

}  // namespace quendle::test
