#include "archive/modules/rar/rar_reader.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/entry_names.h"
#include "archive/modules/common/libarchive_reader.h"
#include "archive/modules/common/unarr_reader.h"
#include "archive/modules/rar/rar_headers.h"

namespace quendle::modules {
namespace {

constexpr std::uint64_t kLongestTarget = 4096;

class RarReader final : public EntryReader {
 public:
  RarReader(const ArchiveInput& input, ReaderOptions options, RarArchive archive)
      : input_(input), options_(std::move(options)), archive_(std::move(archive)) {}

  bool OpenByUnarr(Reason* reason);
  bool OpenByLibarchive(Reason* reason);
  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus ReadContent(std::string_view* piece) override;
  const Reason& Problem() const override { return reason_; }

 private:
  const RarFile& Current() const { return archive_.files[next_ - 1]; }
  std::string LinkTarget() const;
  ReadStatus GoToCurrent();
  void ReadToEnd();
  ReadStatus CheckContent();
  ReadStatus Fail(ReadStatus status, Reason reason);

  const ArchiveInput& input_;
  ReaderOptions options_;
  RarArchive archive_;
  std::size_t next_ = 0;

  std::unique_ptr<EntryReader> library_;
  std::optional<std::uint64_t> library_position_;  // of the header of the entry that it is at
  bool library_reads_ = false;                     // it has unpacked something
  ReadStatus content_status_ = ReadStatus::kEnd;
  std::uint64_t size_ = 0;  // of the content so far
  Crc32Sum crc_;
  Reason reason_;
};

bool RarReader::OpenByUnarr(Reason* reason) {
  const auto describe = [this](std::uint64_t offset, Entry*) {
    library_position_ = offset;
    return true;
  };
  library_ = OpenUnarr(input_, describe, reason);
  return library_ != nullptr;
}

bool RarReader::OpenByLibarchive(Reason* reason) {
  const auto describe = [this](std::size_t index, Entry* entry) {
    if (index >= archive_.files.size()) return false;
    library_position_ = archive_.files[index].position;
    entry->size.reset();  // what it makes of the size of one in several volumes is of no use
    entry->kind = EntryKind::kFile;
    return true;
  };
  library_ = OpenLibarchive(input_, options_, LibarchiveFormat::kRar, describe, reason);
  return library_ != nullptr;
}

ReadStatus RarReader::Fail(ReadStatus status, Reason reason) {
  reason_ = std::move(reason);
  return status;
}

ReadStatus RarReader::NextEntry(Entry* entry) {
  content_status_ = ReadStatus::kEnd;
  if (next_ == archive_.files.size()) {
    return archive_.problem.empty() ? ReadStatus::kEnd : Fail(ReadStatus::kFailed, archive_.problem);
  }
  ++next_;
  *entry = ToEntry(Current(), options_.charset);
  size_ = 0;
  crc_ = {};
  if (entry->kind == EntryKind::kLink) entry->link_target = LinkTarget();
  if (entry->kind == EntryKind::kFile) content_status_ = ReadStatus::kOk;
  return ReadStatus::kOk;
}

// The target is the content, and stored. Any other leaves the link without one, which is refused.
std::string RarReader::LinkTarget() const {
  const RarFile& file = Current();
  if (file.encrypted || file.method != '0' || file.size > kLongestTarget || file.size != file.packed_size)
    return "";
  std::string target(static_cast<std::size_t>(file.size), '\0');
  std::size_t got = 0;
  if (!input_.ReadAt(file.content_position, target.data(), target.size(), &got).ok() || got < target.size())
    return "";
  Crc32Sum crc;
  crc.Add(target);
  return crc.Value() == file.crc ? DecodeName(target, file.is_unicode, options_.charset) : "";
}

ReadStatus RarReader::ReadContent(std::string_view* piece) {
  if (content_status_ == ReadStatus::kOk && library_position_ != Current().position)
    content_status_ = GoToCurrent();
  if (content_status_ != ReadStatus::kOk) return content_status_;
  content_status_ = library_->ReadContent(piece);
  library_reads_ = true;
  if (content_status_ == ReadStatus::kEnd) {
    content_status_ = CheckContent();
  } else if (content_status_ != ReadStatus::kOk) {
    reason_ = library_->Problem();
  } else {
    size_ += piece->size();
    crc_.Add(*piece);
  }
  return content_status_;
}

// The library begins a solid archive anew for each entry that it unpacks with others skipped before it: going from
// one entry to the next it is better made to unpack those in between.
ReadStatus RarReader::GoToCurrent() {
  if (Current().encrypted) return Fail(ReadStatus::kPassword, why::kEncryptedRar);
  if (library_reads_ && Current().solid) ReadToEnd();
  for (;;) {
    Entry ignored;
    const ReadStatus status = library_->NextEntry(&ignored);
    if (status == ReadStatus::kEnd || (status == ReadStatus::kOk && library_position_ > Current().position)) {
      return Fail(ReadStatus::kFailed, why::kPassedOver);
    }
    if (status != ReadStatus::kOk) return Fail(status, library_->Problem());
    if (library_position_ == Current().position) return status;
    if (library_reads_ && Current().solid) ReadToEnd();
  }
}

void RarReader::ReadToEnd() {
  std::string_view piece;
  while (library_->ReadContent(&piece) == ReadStatus::kOk) {
  }
}

ReadStatus RarReader::CheckContent() {
  const RarFile& file = Current();
  if (size_ != file.size) {
    return Fail(ReadStatus::kFailed, why::kFewerBytes(size_, file.size));
  }
  return crc_.Value() == file.crc ? ReadStatus::kEnd : Fail(ReadStatus::kFailed, why::kWrongChecksum);
}

std::unique_ptr<EntryReader> OpenRar4(const ArchiveInput& input, const ReaderOptions& options,
                                      bool (RarReader::*open)(Reason*), Reason* reason) {
  RarArchive archive = ReadRarArchive(input);
  *reason = archive.names_encrypted ? why::kNamesEncrypted
            : archive.files.empty() ? archive.problem
                                    : Reason();
  if (!reason->empty()) return nullptr;
  auto reader = std::make_unique<RarReader>(input, options, std::move(archive));
  if (((*reader).*open)(reason)) return reader;
  return nullptr;
}

}  // namespace

std::unique_ptr<EntryReader> OpenRarByUnarr(const ArchiveInput& input, const ReaderOptions& options,
                                            Reason* reason) {
  return OpenRar4(input, options, &RarReader::OpenByUnarr, reason);
}

std::unique_ptr<EntryReader> OpenRarByLibarchive(const ArchiveInput& input, const ReaderOptions& options,
                                                 Reason* reason) {
  return OpenRar4(input, options, &RarReader::OpenByLibarchive, reason);
}

}  // namespace quendle::modules
