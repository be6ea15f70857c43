// LZH, CAB and RAR archives of stored entries for a test, made in memory.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/little_endian.h"
#include "support/archives.h"

namespace quendle::test {

inline std::uint64_t Crc16(const std::string& bytes) {
  modules::Crc16Sum crc;
  crc.Add(bytes);
  return crc.Value();
}

constexpr std::uint32_t kDosTime = 0x5A8F6000;  // 2025-04-15 12:00:00 by the local clock

struct LzhEntry {
  std::string name;  // raw
  std::string content = {};
  std::string method = "-lh0-";
  std::vector<std::string> extensions = {};  // a type and data each; none at level 0
  std::uint32_t time = kDosTime;
  std::string area = {};    // behind the header of level 0
  char system = 'U';        // from level 1 on
  std::string packed = {};  // the content, unless it is stored
};

inline std::string LzhHeaderAndContent(int level, const LzhEntry& entry) {
  std::string chain;  // of extensions, each in front of the size of the next
  for (std::size_t i = 0; i < entry.extensions.size(); ++i) {
    const bool is_last = i + 1 == entry.extensions.size();
    chain += entry.extensions[i] + Number(is_last ? 0 : entry.extensions[i + 1].size() + 2, 2);
  }
  const std::string first = Number(entry.extensions.empty() ? 0 : entry.extensions[0].size() + 2, 2);
  const std::string& packed = entry.packed.empty() ? entry.content : entry.packed;
  const std::size_t packed_size = packed.size() + (level == 1 ? chain.size() : 0);
  std::string header = entry.method + Number(packed_size, 4) + Number(entry.content.size(), 4) +
                       Number(entry.time, 4) + " " + Number(static_cast<unsigned>(level), 1);
  const std::string crc = Number(Crc16(entry.content), 2);
  if (level == 2) {
    header += crc + entry.system + first + chain;
    return Number(header.size() + 2, 2) + header + packed;
  }
  header +=
      Number(entry.name.size(), 1) + entry.name + crc + (level == 1 ? entry.system + first : entry.area);
  unsigned sum = 0;
  for (const char c : header) sum += static_cast<unsigned char>(c);
  return Number(header.size(), 1) + Number(sum & 0xFF, 1) + header + (level == 1 ? chain : "") + packed;
}

inline std::string StoredLzh(int level, const std::vector<LzhEntry>& entries) {
  std::string bytes;
  for (const LzhEntry& entry : entries) bytes += LzhHeaderAndContent(level, entry);
  return bytes + '\0';
}

struct CabEntry {
  std::string name;
  std::string content = {};
  unsigned attributes = 0x20;
  unsigned folder = 0;  // 0xFFFD: begins in the cabinet before, 0xFFFE: goes on in the next one
};

// `index` of a set of cabinets that are called `previous` and `next`. Data of `data_size` bytes that stands for
// nothing in this cabinet goes on in the next one.
struct CabSet {
  unsigned index = 0;
  std::string previous = {};
  std::string next = {};
  std::string data = {};  // in place of the entries' contents
  std::size_t data_size = 0;
  bool mszip = false;  // of blocks that deflate stores
};

inline std::uint32_t CabChecksum(const std::string& bytes, std::uint32_t sum) {
  std::size_t at = 0;
  for (; at + 4 <= bytes.size(); at += 4)
    sum ^= static_cast<std::uint32_t>(modules::LittleEndian(bytes, at, 4));
  std::uint32_t rest = 0;
  for (; at < bytes.size(); ++at) rest = rest << 8 | static_cast<unsigned char>(bytes[at]);
  return sum ^ rest;
}

inline std::string CabBlock(const std::string& data, std::size_t unpacked) {
  const std::string sizes = Number(data.size(), 2) + Number(unpacked, 2);
  return Number(CabChecksum(sizes, CabChecksum(data, 0)), 4) + sizes + data;
}

inline std::string MszipData(const std::string& data) {
  return "CK\1" + Number(data.size(), 2) + Number(~data.size() & 0xFFFF, 2) + data;
}

inline std::string CabFile(const CabEntry& entry, std::size_t offset, std::size_t size) {
  return Number(size, 4) + Number(offset, 4) + Number(entry.folder, 2) + Number(kDosTime >> 16, 2) +
         Number(kDosTime & 0xFFFF, 2) + Number(entry.attributes, 2) + entry.name + '\0';
}

struct CabData {
  std::string blocks;
  std::size_t count = 0;  // of them
};

// Of `files` as CabFile makes them.
inline std::string Cabinet(const std::vector<std::string>& files, const std::vector<CabData>& folders,
                           const CabSet& set) {
  std::string descriptions;
  for (const std::string& name : {set.previous, set.next}) {
    if (!name.empty()) descriptions += name + '\0' + "disk" + '\0';
  }
  const unsigned flags = (set.previous.empty() ? 0U : 1U) | (set.next.empty() ? 0U : 2U);
  const std::size_t files_at = 36 + descriptions.size() + 8 * folders.size();
  std::string listed;
  for (const std::string& file : files) listed += file;
  std::string blocks;
  for (const CabData& folder : folders) {
    descriptions += Number(files_at + listed.size() + blocks.size(), 4) + Number(folder.count, 2) +
                    Number(set.mszip ? 1 : 0, 2);
    blocks += folder.blocks;
  }
  return "MSCF" + Number(0, 4) + Number(files_at + listed.size() + blocks.size(), 4) + Number(0, 4) +
         Number(files_at, 4) + Number(0, 4) + Number(0x0103, 2) + Number(folders.size(), 2) +
         Number(files.size(), 2) + Number(flags, 2) + Number(7, 2) + Number(set.index, 2) + descriptions +
         listed + blocks;
}

inline std::string StoredCab(const std::vector<CabEntry>& entries, const CabSet& set = {}) {
  constexpr std::size_t kBlock = 32'768;
  std::vector<std::string> files;
  std::string contents;
  for (const CabEntry& entry : entries) {
    files.push_back(CabFile(entry, entry.folder == 0xFFFD ? 0 : contents.size(), entry.content.size()));
    contents += entry.content;
  }
  CabData data;
  if (!set.data.empty()) data = {CabBlock(set.data, set.data_size), 1};
  for (std::size_t at = 0; at < contents.size() && set.data.empty(); at += kBlock, ++data.count) {
    const std::string block = contents.substr(at, kBlock);
    data.blocks += CabBlock(set.mszip ? MszipData(block) : block, block.size());
  }
  return Cabinet(files, {data}, set);
}

const std::string kRar4Signature("Rar!\x1A\x07\0", 7);
const std::string kRar5Signature("Rar!\x1A\x07\1\0", 8);

inline std::string RarBlock(unsigned type, unsigned flags, const std::string& fields) {
  const std::string bytes = Number(type, 1) + Number(flags, 2) + Number(fields.size() + 7, 2) + fields;
  return Number(modules::Crc32(bytes) & 0xFFFF, 2) + bytes;
}

struct RarEntry {
  std::string name;
  std::string content = {};
  unsigned flags = 0;
  unsigned host = 2;  // 3: Unix
  std::uint32_t mode = 0x20;
  std::string whole = {};  // of which `content` is a part; empty: it is none
  std::string behind_name = {};
};

inline std::string RarFileBlock(const RarEntry& entry) {
  const std::string& whole = entry.whole.empty() ? entry.content : entry.whole;
  return RarBlock(0x74, entry.flags | 0x8000,
                  Number(entry.content.size(), 4) + Number(whole.size(), 4) + Number(entry.host, 1) +
                      Number(modules::Crc32((entry.flags & 2) != 0 ? entry.content : whole), 4) +
                      Number(kDosTime, 4) + Number(29, 1) + "0" + Number(entry.name.size(), 2) +
                      Number(entry.mode, 4) + entry.name + entry.behind_name) +
         entry.content;
}

// RAR 4. `flags` of the archive: 1 a volume, 0x80 names are encrypted.
inline std::string StoredRar(const std::vector<RarEntry>& entries, unsigned flags = 0,
                             bool has_next = false) {
  std::string bytes = kRar4Signature + RarBlock(0x73, flags, Number(0, 6));
  for (const RarEntry& entry : entries) bytes += RarFileBlock(entry);
  return bytes + RarBlock(0x7B, 0x4000U | (has_next ? 1 : 0), "");
}

// Of fields and sizes below 128, which are one byte each.
inline std::string Rar5Block(const std::string& fields, const std::string& content = "") {
  const std::string bytes = Number(fields.size(), 1) + fields;
  return Number(modules::Crc32(bytes), 4) + bytes + content;
}

// A volume with a part of a file, or with the whole: number 0 and no next one.
inline std::string StoredRar5(const std::string& name, const std::string& content, const std::string& whole,
                              unsigned number = 0, bool has_next = false) {
  const bool is_volume = number > 0 || has_next;
  const unsigned volume = number > 0 ? 3 : is_volume ? 1 : 0;
  const std::string main = Number(volume, 1) + (number > 0 ? Number(number, 1) : "");
  const unsigned flags = 2U | (number > 0 ? 8U : 0U) | (has_next ? 16U : 0U);
  const std::string file = Number(2, 1) + Number(flags, 1) + Number(content.size(), 1) + Number(4, 1) +
                           Number(whole.size(), 1) + Number(0x20, 1) +
                           Number(modules::Crc32(has_next ? content : whole), 4) + Number(0, 1) +
                           Number(0, 1) + Number(name.size(), 1) + name;
  return kRar5Signature + Rar5Block(Number(1, 1) + Number(0, 1) + main) + Rar5Block(file, content) +
         Rar5Block(Number(5, 1) + Number(0, 1) + Number(has_next ? 1 : 0, 1));
}

}  // namespace quendle::test
