#include "archive/modules/cab/cabinets_reader.h"

#include <utility>

#include "archive/modules/cab/cab_header.h"
#include "archive/modules/cab/mspack_reader.h"

namespace quendle::modules {
namespace {

class CabinetsReader final : public EntryReader {
 public:
  CabinetsReader(const ArchiveInput& input, ReaderOptions options)
      : input_(input), options_(std::move(options)) {}

  bool OpenAt(std::uint64_t position) {
    const auto header = ReadCabHeader(input_, position);
    end_ = position + (header ? header->size : 0);
    cabinet_.reset();
    part_ = std::make_unique<const ArchiveInput>(input_.From(position));
    cabinet_ = OpenMspack(*part_, options_, &reason_);
    return header && cabinet_;
  }

  ReadStatus NextEntry(Entry* entry) override {
    while (cabinet_) {
      const ReadStatus status = cabinet_->NextEntry(entry);
      if (status == ReadStatus::kOk) return status;
      if (status != ReadStatus::kEnd) return Note(status);
      const auto next = NextCabinet(input_, end_);
      if (!next) return status;
      if (!OpenAt(*next)) break;
    }
    return ReadStatus::kFailed;
  }
  ReadStatus ReadContent(std::string_view* piece) override { return Note(cabinet_->ReadContent(piece)); }
  const Reason& Problem() const override { return reason_; }

 private:
  ReadStatus Note(ReadStatus status) {
    if (status != ReadStatus::kOk && status != ReadStatus::kEnd) reason_ = cabinet_->Problem();
    return status;
  }

  const ArchiveInput& input_;
  ReaderOptions options_;
  std::unique_ptr<const ArchiveInput> part_;  // from the current cabinet on
  std::unique_ptr<EntryReader> cabinet_;      // null: it could not be opened
  std::uint64_t end_ = 0;                     // of that cabinet
  Reason reason_;
};

}  // namespace

std::unique_ptr<EntryReader> OpenCabinets(const ArchiveInput& input, const ReaderOptions& options,
                                          Reason* reason) {
  auto reader = std::make_unique<CabinetsReader>(input, options);
  if (reader->OpenAt(0)) return reader;
  *reason = reader->Problem();
  return nullptr;
}

}  // namespace quendle::modules
