#include "archive/modules/common/unarr_reader.h"

#include <unarr.h>

#include <algorithm>
#include <utility>

#include "archive/modules/common/entry_names.h"
#include "archive/modules/common/entry_times.h"
#include "platform/process/quiet_errors.h"

namespace quendle::modules {

namespace {

constexpr std::uint64_t kMemoryLimit = 64U << 20;
constexpr std::size_t kPieceSize = 256U << 10;

struct CloseStream {
  void operator()(ar_stream* stream) const { ar_close(stream); }
};
struct CloseArchive {
  void operator()(ar_archive* archive) const { ar_close_archive(archive); }
};
using Stream = std::unique_ptr<ar_stream, CloseStream>;
using Archive = std::unique_ptr<ar_archive, CloseArchive>;

class UnarrReader : public EntryReader {
 public:
  UnarrReader(std::string memory, DescribeUnarrEntry describe)
      : memory_(std::move(memory)), describe_(std::move(describe)) {}

  bool Open(const ArchiveInput& input) {
    const platform::QuietErrors quiet;
    stream_.reset(input.IsWholeFile() ? ar_open_file(input.Path().c_str())
                                      : ar_open_memory(memory_.data(), memory_.size()));
    if (stream_ == nullptr) return false;
    archive_.reset(ar_open_rar_archive(stream_.get()));
    return archive_ != nullptr;
  }

  ReadStatus NextEntry(Entry* entry) override {
    content_ = ReadStatus::kEnd;
    if (over_ != ReadStatus::kOk) return over_;
    if (!ParseEntry()) {
      return over_ = ar_at_eof(archive_.get()) ? ReadStatus::kEnd : Fail(why::kNextHeaderDamaged);
    }
    const std::int64_t offset = ar_entry_get_offset(archive_.get());
    if (offset <= last_offset_) return over_ = Fail(why::kHeadersOutOfOrder);
    last_offset_ = offset;
    Describe(static_cast<std::uint64_t>(offset), entry);
    return ReadStatus::kOk;
  }

  ReadStatus ReadContent(std::string_view* piece) override {
    if (content_ != ReadStatus::kOk) return content_;
    if (left_ == 0 && finished_) return content_ = ReadStatus::kEnd;
    // An entry without content is asked for nothing, which has its checksum verified all the same.
    const std::size_t size = std::min(left_, kPieceSize);
    buffer_.resize(kPieceSize);
    if (!Uncompress(size)) {
      // It may be either, so that what another library says of the content counts more.
      reason_ = why::kDamagedOrUnknownMethod;
      return content_ = ReadStatus::kUnsupported;
    }
    left_ -= size;
    finished_ = left_ == 0;
    if (size == 0) return content_ = ReadStatus::kEnd;
    *piece = std::string_view(buffer_.data(), size);
    return ReadStatus::kOk;
  }

  const Reason& Problem() const override { return reason_; }

 private:
  // The library prints what it notices to the error stream.
  bool ParseEntry() {
    const platform::QuietErrors quiet;
    return ar_parse_entry(archive_.get());
  }
  bool Uncompress(std::size_t size) {
    const platform::QuietErrors quiet;
    return ar_entry_uncompress(archive_.get(), buffer_.data(), size);
  }
  ReadStatus Fail(Reason reason) {
    reason_ = std::move(reason);
    return ReadStatus::kFailed;
  }

  void Describe(std::uint64_t offset, Entry* entry) {
    *entry = {};
    left_ = ar_entry_get_size(archive_.get());
    finished_ = false;
    content_ = ReadStatus::kOk;
    entry->size = left_;
    if (const std::int64_t time = ar_entry_get_filetime(archive_.get()); time > 0) {
      entry->attributes.write_time = TimeFromNtfs(static_cast<std::uint64_t>(time));
    }
    if (!describe_) {
      const char* name = ar_entry_get_name(archive_.get());
      entry->path = DecodeName(name == nullptr ? "" : name, true, "");
      if (entry->path.ends_with('/')) entry->kind = EntryKind::kFolder;
    } else if (!describe_(offset, entry)) {
      content_ = ReadStatus::kUnsupported;
      reason_ = why::kUnreadableKind;
    }
    if (entry->encrypted) {
      content_ = ReadStatus::kUnsupported;
      reason_ = why::kEncrypted;
    }
  }

  std::string memory_;
  DescribeUnarrEntry describe_;
  Stream stream_;
  Archive archive_;  // closed before its stream
  ReadStatus over_ = ReadStatus::kOk;
  std::int64_t last_offset_ = -1;
  ReadStatus content_ = ReadStatus::kEnd;  // of the current entry
  std::size_t left_ = 0;                   // bytes of it
  bool finished_ = false;                  // unarr has seen its end, and has checked it
  std::string buffer_;
  Reason reason_;
};

}  // namespace

bool HasUnarr() {
  return true;
}

std::string AndUnarrVersion() {
  return ", libunarr " QUENDLE_UNARR_VERSION;
}

std::unique_ptr<EntryReader> OpenUnarr(const ArchiveInput& input, DescribeUnarrEntry describe,
                                       Reason* reason) {
  std::string memory;
  if (input.VolumeCount() > 1) {
    *reason = why::kUnarrOneFile;
    return nullptr;
  }
  if (!input.IsWholeFile()) {
    if (input.Size() > kMemoryLimit) {
      *reason = why::kUnarrTooLarge;
      return nullptr;
    }
    memory.resize(static_cast<std::size_t>(input.Size()));
    std::size_t got = 0;
    if (const platform::Result read = input.ReadAt(0, memory.data(), memory.size(), &got); !read.ok()) {
      *reason = read.reason;
      return nullptr;
    }
    memory.resize(got);
  }
  auto reader = std::make_unique<UnarrReader>(std::move(memory), std::move(describe));
  if (reader->Open(input)) return reader;
  *reason = why::kUnarrCannot;
  return nullptr;
}

}  // namespace quendle::modules
