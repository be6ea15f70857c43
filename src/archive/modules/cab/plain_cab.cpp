#include "archive/modules/cab/plain_cab.h"

#include <utility>
#include <vector>

#include "archive/modules/cab/mspack_reader.h"
#include "archive/modules/common/libarchive_reader.h"

namespace quendle::modules {
namespace {

class PlainCabReader final : public EntryReader {
 public:
  PlainCabReader(std::vector<Entry> entries, std::unique_ptr<EntryReader> library)
      : entries_(std::move(entries)), library_(std::move(library)) {}

  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus ReadContent(std::string_view* piece) override;
  const Reason& Problem() const override { return reason_; }

 private:
  ReadStatus GoToCurrent();
  ReadStatus GiveUp(ReadStatus status, Reason reason);

  std::vector<Entry> entries_;
  std::unique_ptr<EntryReader> library_;  // null: given up
  std::size_t next_ = 0;
  std::size_t library_next_ = 0;
  Reason reason_;
};

ReadStatus PlainCabReader::NextEntry(Entry* entry) {
  if (next_ == entries_.size()) return ReadStatus::kEnd;
  *entry = entries_[next_++];
  return ReadStatus::kOk;
}

ReadStatus PlainCabReader::ReadContent(std::string_view* piece) {
  if (library_next_ != next_) {
    const ReadStatus status = GoToCurrent();
    if (status != ReadStatus::kOk) return status;
  }
  const ReadStatus status = library_->ReadContent(piece);
  if (status == ReadStatus::kOk || status == ReadStatus::kEnd) return status;
  return GiveUp(status, library_->Problem());
}

// Passes over the entries on the way.
ReadStatus PlainCabReader::GoToCurrent() {
  while (library_ && library_next_ != next_) {
    Entry entry;
    const ReadStatus status = library_->NextEntry(&entry);
    if (status != ReadStatus::kOk || entry.size != entries_[library_next_].size) {
      return GiveUp(ReadStatus::kUnsupported, why::kListedDifferently);
    }
    ++library_next_;
  }
  return library_ ? ReadStatus::kOk : ReadStatus::kUnsupported;
}

// What is in front of an entry decides how it is unpacked, so that nothing behind damage is to be believed.
ReadStatus PlainCabReader::GiveUp(ReadStatus status, Reason reason) {
  reason_ = std::move(reason);
  library_.reset();
  library_next_ = entries_.size() + 1;
  return status;
}

}  // namespace

std::unique_ptr<EntryReader> OpenPlainCab(const ArchiveInput& input, const ReaderOptions& options,
                                          Reason* reason) {
  const auto list = OpenMspack(input, options, reason);
  if (!list) return nullptr;
  std::vector<Entry> entries;
  for (Entry entry; list->NextEntry(&entry) == ReadStatus::kOk;) entries.push_back(entry);
  auto library = OpenLibarchive(input, options, LibarchiveFormat::kCab, nullptr, reason);
  if (!library) return nullptr;
  return std::make_unique<PlainCabReader>(std::move(entries), std::move(library));
}

}  // namespace quendle::modules
