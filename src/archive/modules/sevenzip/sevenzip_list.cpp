#include "archive/modules/sevenzip/sevenzip_list.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/little_endian.h"
#include "archive/modules/common/sevenzip_archive.h"
#include "archive/modules/sevenzip/sevenzip_headers.h"

namespace quendle::modules {
namespace {

// Of so many bytes, whatever they say, the entries do not take too much memory.
constexpr std::uint64_t kHarmless = 1U << 20;

// The archive with another end header, and the start header that goes with it; all between them stays.
class WithOtherEnd {
 public:
  WithOtherEnd(const ArchiveInput& input, std::uint64_t end_offset, std::string end)
      : input_(input), end_offset_(end_offset), end_(std::move(end)) {
    std::string place;
    AppendLittleEndian(end_offset_ - kSevenZipStartSize, 8, &place);
    AppendLittleEndian(end_.size(), 8, &place);
    AppendLittleEndian(Crc32(end_), 4, &place);
    start_.append(kSevenZipSignature);
    AppendLittleEndian(0x0400, 2, &start_);
    AppendLittleEndian(Crc32(place), 4, &start_);
    start_ += place;
  }

  static SevenZipBytes Bytes(const ArchiveInput& input, std::uint64_t end_offset, std::string end) {
    const std::uint64_t size = end_offset + end.size();
    return {size, [file = std::make_shared<const WithOtherEnd>(input, end_offset, std::move(end))](
                      std::uint64_t position, void* buffer, std::size_t wanted, std::size_t* got) {
              return file->ReadAt(position, static_cast<char*>(buffer), wanted, got);
            }};
  }

 private:
  platform::Result ReadAt(std::uint64_t position, char* buffer, std::size_t size, std::size_t* got) const {
    *got = 0;
    if (position < start_.size()) {
      *got = start_.copy(buffer, size, static_cast<std::size_t>(position));
    } else if (position < end_offset_) {
      const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(size, end_offset_ - position));
      return input_.ReadAt(position, buffer, most, got);
    } else if (position - end_offset_ < end_.size()) {
      *got = end_.copy(buffer, size, static_cast<std::size_t>(position - end_offset_));
    }
    return platform::Success();
  }

  const ArchiveInput& input_;
  std::uint64_t end_offset_;
  std::string end_;
  std::string start_;
};

// The archive with its packed list as the only file in it, of which the end header is a description.
SevenZipBytes ListAsFile(const ArchiveInput& input, const SevenZipList& list) {
  constexpr std::string_view kBeforeStreams("\x01\x04", 2);
  constexpr std::string_view kOneFile("\x05\x01\0\0", 4);
  std::string end(kBeforeStreams);
  end.append(list.description).append(kOneFile);
  return WithOtherEnd::Bytes(input, list.start.end_offset, std::move(end));
}

// Keeps the list.
class Receiver final : public SevenZipReceiver {
 public:
  explicit Receiver(std::uint64_t most) : most_(most) {}

  bool Begin(std::uint32_t) override { return true; }
  bool Write(std::string_view piece) override {
    if (piece.size() > most_ - list_.size()) return false;
    list_ += piece;
    return true;
  }
  bool End(std::uint32_t, sevenzip::ExtractResult result) override {
    is_whole_ = result == sevenzip::ExtractResult::kWhole;
    return true;
  }
  bool GoesOn() override { return InterruptibleReads::GoOn(); }

  bool IsWhole() const { return is_whole_; }
  std::string TakeList() { return std::move(list_); }

 private:
  std::uint64_t most_;
  std::string list_;
  bool is_whole_ = false;
};

// kOk when all of the list is in `*bytes`.
ReadStatus Unpack(const ArchiveInput& input, const SevenZipList& list,
                  const std::function<std::optional<std::string>()>& password, std::string* bytes,
                  bool* is_encrypted, Reason* reason) {
  SevenZipArchive archive(ListAsFile(input, list), password);
  const ReadStatus opened = archive.Open(sevenzip::kSevenZipFormat, reason);
  if (opened != ReadStatus::kOk) return opened;
  *is_encrypted = archive.Number(0, sevenzip::kIsEncrypted).value_or(0) != 0;
  Receiver receiver(list.unpacked_size);
  const std::optional<Reason> failure = archive.Extract({0}, &receiver);
  *bytes = receiver.TakeList();
  if (receiver.IsWhole()) return ReadStatus::kOk;
  *reason = failure ? *failure : *is_encrypted ? Reason(why::kWrongPassword) : Reason(why::kHeadersDamaged);
  return *is_encrypted ? ReadStatus::kPassword : ReadStatus::kFailed;
}

ReadStatus Fail(const Reason& why, Reason* reason) {
  *reason = why;
  return ReadStatus::kFailed;
}

}  // namespace

ReadStatus CheckSevenZipList(const ArchiveInput& input,
                             const std::function<std::optional<std::string>()>& password,
                             SevenZipBytes* bytes, Reason* reason) {
  const auto list = FindSevenZipList(input);
  if (!list) return Fail(why::kHeadersDamaged, reason);
  const bool is_packed = !list->description.empty();
  const bool is_large = list->unpacked_size > kHarmless;
  if (!is_packed && !is_large) return ReadStatus::kOk;
  std::string entries;
  bool is_encrypted = false;
  if (is_packed) {
    const ReadStatus unpacked = Unpack(input, *list, password, &entries, &is_encrypted, reason);
    if (unpacked != ReadStatus::kOk) return unpacked;
  } else {
    entries.resize(static_cast<std::size_t>(list->unpacked_size));
    std::size_t got = 0;
    const platform::Result read = input.ReadAt(list->start.end_offset, entries.data(), entries.size(), &got);
    if (!read.ok()) return Fail(read.reason, reason);
  }
  const auto count = is_large ? CountEntries(entries) : std::optional<std::uint64_t>(0);
  if (!IsSevenZipList(entries) || !count) {
    // There may be no checksum that a wrong password would fail.
    *reason = is_encrypted ? Reason(why::kWrongPassword) : Reason(why::kHeadersDamaged);
    return is_encrypted ? ReadStatus::kPassword : ReadStatus::kFailed;
  }
  if (*count > kMostEntries) return Fail(why::kTooManyEntries, reason);
  if (is_packed) *bytes = WithOtherEnd::Bytes(input, list->start.end_offset, std::move(entries));
  return ReadStatus::kOk;
}

}  // namespace quendle::modules
