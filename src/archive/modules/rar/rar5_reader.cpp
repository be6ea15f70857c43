#include "archive/modules/rar/rar5_reader.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/entry_names.h"
#include "archive/modules/common/libarchive_reader.h"
#include "archive/modules/rar/rar_headers.h"

namespace quendle::modules {
namespace {

// A content up to this size is kept for the next file that has the same.
constexpr std::size_t kMostKept = 4U << 20;

// One way through the archive. Adds what the library does not tell: that the archive is not whole, or a content is
// wrong.
class Rar5Pass final : public EntryReader {
 public:
  Rar5Pass(std::unique_ptr<EntryReader> library, const RarArchive& archive)
      : library_(std::move(library)), archive_(archive) {}

  ReadStatus NextEntry(Entry* entry) override {
    const ReadStatus status = library_->NextEntry(entry);
    size_ = 0;
    crc_ = {};
    if (status == ReadStatus::kOk) {
      if (passed_ == archive_.files.size()) return Fail(why::kMoreThanHeaders);
      entry->crc = archive_.files[passed_++].crc;
      return status;
    }
    reason_ = library_->Problem();
    if (status != ReadStatus::kEnd) return status;
    if (!archive_.problem.empty()) return Fail(archive_.problem);
    return passed_ == archive_.files.size() ? status : Fail(why::kSomePassedOver);
  }
  ReadStatus ReadContent(std::string_view* piece) override {
    const ReadStatus status = library_->ReadContent(piece);
    if (status == ReadStatus::kOk) {
      size_ += piece->size();
      crc_.Add(*piece);
    } else if (status == ReadStatus::kEnd) {
      const RarFile& file = archive_.files[passed_ - 1];
      if (file.has_size && size_ != file.size) return Fail(why::kFewerBytes(size_, file.size));
      if (file.has_crc && crc_.Value() != file.crc) return Fail(why::kWrongChecksum);
      // The library checks the other kind, but not of what is stored.
      if (!file.has_crc && file.method == '0' && size_ > 0) return Fail(why::kUnverifiable);
    } else {
      reason_ = library_->Problem();
    }
    return status;
  }
  const Reason& Problem() const override { return reason_; }

  // Entries so far, the current one counted.
  std::size_t Passed() const { return passed_; }

 private:
  ReadStatus Fail(Reason reason) {
    reason_ = std::move(reason);
    return ReadStatus::kFailed;
  }

  std::unique_ptr<EntryReader> library_;
  const RarArchive& archive_;
  std::size_t passed_ = 0;
  std::uint64_t size_ = 0;  // of the content so far
  Crc32Sum crc_;
  Reason reason_;
};

class Rar5Reader final : public EntryReader {
 public:
  Rar5Reader(const ArchiveInput& input, ReaderOptions options, RarArchive archive)
      : input_(input), options_(std::move(options)), archive_(std::move(archive)) {}

  bool Open() { return (first_ = OpenPass()) != nullptr; }
  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus ReadContent(std::string_view* piece) override;
  const Reason& Problem() const override { return reason_; }

 private:
  struct Copy {
    Entry entry;
    std::size_t source;  // index of a file; none: their number
    std::string source_name;
  };

  std::unique_ptr<Rar5Pass> OpenPass();
  bool IsCopy(const Entry& entry);
  ReadStatus NextCopy(Entry* entry);
  ReadStatus GoToSource();
  ReadStatus ReadCopy(std::string_view* piece);
  ReadStatus Fail(ReadStatus status, Reason reason);

  const ArchiveInput& input_;
  ReaderOptions options_;
  RarArchive archive_;
  std::unique_ptr<Rar5Pass> first_;                     // null: over
  std::unique_ptr<Rar5Pass> again_;                     // for contents of copies
  std::unordered_map<std::string, std::size_t> files_;  // with content, by raw name
  std::vector<Copy> copies_;                            // in the order of their sources
  std::size_t next_copy_ = 0;
  ReadStatus copy_status_ = ReadStatus::kEnd;  // of the current copy's content
  bool at_source_ = false;
  std::string kept_;  // the content of the last source, as far as it was read; not more than kMostKept
  std::optional<std::size_t> kept_of_;  // that source, when it is all of it
  Reason reason_;
};

std::unique_ptr<Rar5Pass> Rar5Reader::OpenPass() {
  // The library looks for the next volume in 512 bytes at a time, and does not see one that is smaller.
  Ending ending;
  if (input_.VolumeCount() > 1) ending = {input_.Size(), std::string(1024, '\0')};
  auto library = OpenLibarchive(input_, options_, LibarchiveFormat::kRar5, {}, &reason_, std::move(ending));
  return library ? std::make_unique<Rar5Pass>(std::move(library), archive_) : nullptr;
}

ReadStatus Rar5Reader::Fail(ReadStatus status, Reason reason) {
  reason_ = std::move(reason);
  return status;
}

ReadStatus Rar5Reader::NextEntry(Entry* entry) {
  while (first_) {
    const ReadStatus status = first_->NextEntry(entry);
    if (status == ReadStatus::kOk && !IsCopy(*entry)) return status;
    if (status == ReadStatus::kOk) continue;
    if (status != ReadStatus::kEnd) return Fail(status, first_->Problem());
    first_.reset();
    std::stable_sort(copies_.begin(), copies_.end(),
                     [](const Copy& a, const Copy& b) { return a.source < b.source; });
  }
  return NextCopy(entry);
}

// Notes it, if it is one, for later. Only files in front of it are known by then, so that none is its own source.
bool Rar5Reader::IsCopy(const Entry& entry) {
  const std::size_t index = first_->Passed() - 1;
  const RarFile& file = archive_.files[index];
  if (!file.source) {
    if (entry.kind == EntryKind::kFile) files_[file.name] = index;
    return false;
  }
  const auto known = files_.find(*file.source);
  Copy& copy = copies_.emplace_back(Copy{entry, archive_.files.size(), *file.source});
  copy.entry.kind = EntryKind::kFile;
  copy.entry.size.reset();
  if (known == files_.end()) return true;
  copy.source = known->second;
  const RarFile& source = archive_.files[copy.source];
  if (source.has_size) copy.entry.size = source.size;
  copy.entry.crc = source.crc;
  files_[file.name] = copy.source;
  return true;
}

ReadStatus Rar5Reader::NextCopy(Entry* entry) {
  if (next_copy_ == copies_.size()) return ReadStatus::kEnd;
  *entry = copies_[next_copy_++].entry;
  copy_status_ = ReadStatus::kOk;
  at_source_ = false;
  return ReadStatus::kOk;
}

ReadStatus Rar5Reader::ReadContent(std::string_view* piece) {
  if (first_) {
    const ReadStatus status = first_->ReadContent(piece);
    return status == ReadStatus::kOk || status == ReadStatus::kEnd ? status : Fail(status, first_->Problem());
  }
  if (copy_status_ == ReadStatus::kOk) copy_status_ = ReadCopy(piece);
  return copy_status_;
}

ReadStatus Rar5Reader::ReadCopy(std::string_view* piece) {
  const std::size_t source = copies_[next_copy_ - 1].source;
  if (kept_of_ == source) {
    *piece = at_source_ ? std::string_view() : kept_;
    at_source_ = true;
    return piece->empty() ? ReadStatus::kEnd : ReadStatus::kOk;
  }
  if (!at_source_) {
    if (const ReadStatus status = GoToSource(); status != ReadStatus::kOk) return status;
    kept_.clear();
    kept_of_.reset();
    at_source_ = true;
  }
  const ReadStatus status = again_->ReadContent(piece);
  if (status == ReadStatus::kOk && kept_.size() <= kMostKept) kept_ += *piece;
  if (status == ReadStatus::kEnd && kept_.size() <= kMostKept) kept_of_ = source;
  return status == ReadStatus::kOk || status == ReadStatus::kEnd ? status : Fail(status, again_->Problem());
}

// Copies with different sources are read in one more way through the archive; each further one of a large source needs
// another.
ReadStatus Rar5Reader::GoToSource() {
  const Copy& copy = copies_[next_copy_ - 1];
  if (copy.source == archive_.files.size()) {
    const std::string name = DecodeName(copy.source_name, true, options_.charset);
    return Fail(ReadStatus::kFailed, why::kSourceMissing(name));
  }
  if (!again_ || again_->Passed() > copy.source) {
    again_ = OpenPass();
    if (!again_) return ReadStatus::kFailed;
  }
  while (again_->Passed() <= copy.source) {
    Entry ignored;
    const ReadStatus status = again_->NextEntry(&ignored);
    if (status == ReadStatus::kEnd) return Fail(ReadStatus::kFailed, why::kPassedOver);
    if (status != ReadStatus::kOk) return Fail(status, again_->Problem());
  }
  return ReadStatus::kOk;
}

}  // namespace

std::unique_ptr<EntryReader> OpenRar5(const ArchiveInput& input, const ReaderOptions& options,
                                      Reason* reason) {
  RarArchive archive = ReadRarArchive(input);
  *reason = archive.names_encrypted ? why::kNamesEncrypted
            : archive.files.empty() ? archive.problem
                                    : Reason();
  if (!reason->empty()) return nullptr;
  auto reader = std::make_unique<Rar5Reader>(input, options, std::move(archive));
  if (reader->Open()) return reader;
  *reason = reader->Problem();
  return nullptr;
}

}  // namespace quendle::modules
