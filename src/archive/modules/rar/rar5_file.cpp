#include "archive/modules/rar/rar5_file.h"

#include <algorithm>
#include <string>
#include <utility>

#include "archive/modules/common/entry_times.h"

namespace quendle::modules {
namespace {

enum RecordType : std::uint64_t { kEncryption = 1, kHash = 2, kTimes = 3, kOldVersion = 4, kRedirection = 5 };

constexpr std::uint64_t kUnix = 1;

// Fields of bits: the way of packing, its strength, and how far back it reaches.
void ReadPacking(std::uint64_t bits, RarFile* file) {
  const std::uint64_t algorithm = bits & 0x3F;
  const std::uint64_t method = bits >> 7 & 7;
  file->is_solid = (bits & 0x40) != 0;
  file->method = std::string("m").append(std::to_string(method));
  file->method.append(algorithm == 1 ? " of version 7" : " of version 5");
  const std::uint64_t exponent = bits >> 10 & (algorithm == 0 ? 0xF : 0x1F);
  file->window = std::uint64_t{128 << 10} << exponent;
  if (algorithm == 1) {
    file->window += file->window / 32 * (bits >> 15 & 0x1F);
    file->has_far_distances = (bits >> 20 & 1) == 0;
  }
  if (method == 0) {
    file->packing = RarPacking::kStored;
  } else if (algorithm <= 1 && method <= 5) {
    file->packing = RarPacking::k50;
  }
}

void ReadEncryption(Rar5Numbers* record, RarFile* file) {
  RarEncryption& encryption = file->encryption.emplace();
  const std::uint64_t version = record->Next();
  const std::uint64_t flags = record->Next();
  encryption.log2_rounds = static_cast<unsigned>(record->Fixed(1));
  encryption.salt = record->Bytes(16);
  encryption.iv = record->Bytes(16);
  if ((flags & 1) != 0) encryption.check = record->Bytes(12);
  encryption.keyed_sums = (flags & 2) != 0;
  encryption.kind =
      version == 0 && !record->Failed() ? RarEncryption::Kind::kRar5 : RarEncryption::Kind::kUnknown;
}

// Of the times that there are the first is that of the last change.
void ReadTimes(Rar5Numbers* record, RarFile* file) {
  const std::uint64_t flags = record->Next();
  const bool is_unix = (flags & 1) != 0;
  if ((flags & 2) == 0) return;
  platform::EntryTime time = is_unix ? platform::EntryTime{static_cast<std::int64_t>(record->Fixed(4)), 0}
                                     : TimeFromNtfs(record->Fixed(8));
  if (is_unix && (flags & 0x10) != 0) {
    for (const std::uint64_t other : {4U, 8U}) {
      if ((flags & other) != 0) record->Fixed(4);
    }
    const std::uint64_t nanoseconds = record->Fixed(4) & 0x3FFFFFFF;
    if (nanoseconds < 1'000'000'000) time.nanoseconds = static_cast<std::int32_t>(nanoseconds);
  }
  if (!record->Failed()) file->attributes.write_time = time;
}

void ReadRedirection(Rar5Numbers* record, RarFile* file) {
  enum Kind : std::uint64_t { kUnixLink = 1, kWindowsLink, kJunction, kHardLink, kCopy };
  const std::uint64_t kind = record->Next();
  record->Next();  // whether it leads to a folder
  std::string target = record->Text();
  if (kind == kHardLink || kind == kCopy) {
    file->source = std::move(target);
  } else if (kind >= kUnixLink && kind <= kJunction) {
    file->kind = EntryKind::kLink;
    if (kind != kUnixLink) std::replace(target.begin(), target.end(), '\\', '/');
    file->link_target = std::move(target);
  } else {
    file->kind = EntryKind::kOther;
  }
}

// An old version of a file, which packers can keep, must not take the place of the file.
void ReadOldVersion(Rar5Numbers* record, RarFile* file) {
  record->Next();
  file->name.append(";").append(std::to_string(record->Next()));
}

void ReadRecord(std::string_view bytes, RarFile* file) {
  Rar5Numbers record(bytes);
  switch (record.Next()) {
    case kEncryption:
      return ReadEncryption(&record, file);
    case kHash:
      if (record.Next() == 0) file->blake2sp = record.Bytes(32);
      return;
    case kTimes:
      return ReadTimes(&record, file);
    case kOldVersion:
      return ReadOldVersion(&record, file);
    case kRedirection:
      return ReadRedirection(&record, file);
    default:
      return;
  }
}

}  // namespace

bool ReadRar5File(const Rar5Block& block, RarFile* file) {
  Rar5Numbers numbers(block.own);
  const std::uint64_t flags = numbers.Next();
  const std::uint64_t size = numbers.Next();
  const std::uint64_t mode = numbers.Next();
  if ((flags & 8) == 0) file->size = size;
  if ((flags & 2) != 0)
    file->attributes.write_time = platform::EntryTime{static_cast<std::int64_t>(numbers.Fixed(4)), 0};
  if ((flags & 4) != 0) file->crc = static_cast<std::uint32_t>(numbers.Fixed(4));
  ReadPacking(numbers.Next(), file);
  file->attributes.executable = numbers.Next() == kUnix && (mode & 0111) != 0;
  file->name = numbers.Text();
  file->name.resize(std::min(file->name.size(), file->name.find('\0')));
  file->is_unicode = true;
  file->kind = (flags & 1) != 0 ? EntryKind::kFolder : EntryKind::kFile;
  file->parts = {{block.content_position, block.content_size}};
  file->continued = block.Has(8);
  file->continues = block.Has(16);
  if (numbers.Failed()) return false;
  // One that reaches beyond the others is left alone, as is what is behind it.
  Rar5Numbers records(block.extra);
  while (!records.Rest().empty()) {
    const std::string record = records.Text();
    if (records.Failed()) break;
    ReadRecord(record, file);
  }
  return true;
}

}  // namespace quendle::modules
