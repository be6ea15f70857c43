#include "archive/modules/lzh/lzh_reader.h"

#include <algorithm>
#include <string>
#include <utility>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/content_pool.h"
#include "archive/modules/lzh/lzh_headers.h"
#include "archive/modules/lzh/lzh_unpacker.h"
#include "archive/modules/lzh/macbinary.h"
#include "archive/modules/lzh/packed_bytes.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kPieceSize = 256U << 10;
constexpr std::size_t kLargestHeader = 64U << 10;  // but for those of level 3, which hardly anything writes

class LzhWorker final : public ContentPool::Worker {
 public:
  LzhWorker(const ArchiveInput& input, const std::vector<LzhHeader>& headers, EntrySink* sink)
      : input_(input), headers_(headers), sink_(*sink) {}

  static bool Takes(const LzhHeader& header) {
    // Classic Mac OS may have put two forks into one; what is stored is not worth a copy.
    return header.size <= ContentPool::kMostSize && header.system != 'm' && header.packed_size != header.size;
  }

  std::optional<ContentBuffer> Unpack(std::size_t entry) override {
    const LzhHeader& header = headers_[entry];
    PackedBytes packed(input_, header.content_position, header.packed_size);
    std::unique_ptr<LzhUnpacker> unpacker;
    Reason ignored;
    if (MakeLzhUnpacker(header, &packed, &unpacker, &ignored) != ReadStatus::kOk) return std::nullopt;
    ContentBuffer content(static_cast<std::size_t>(header.size));
    std::size_t size = 0;
    while (size < content.View().size()) {
      const std::size_t wanted = std::min(kPieceSize, content.View().size() - size);
      const std::size_t got = unpacker->Read(content.Data() + size, wanted);
      if (got == 0 || !sink_.GoesOn()) return std::nullopt;
      size += got;
    }
    char beyond = 0;
    if (unpacker->Read(&beyond, 1) != 0) return std::nullopt;
    Crc16Sum crc;
    crc.Add(content.View());
    if (!packed.Problem().empty() || (header.crc && crc.Value() != *header.crc)) return std::nullopt;
    return content;
  }

 private:
  const ArchiveInput& input_;
  const std::vector<LzhHeader>& headers_;
  EntrySink& sink_;
};

class LzhReader final : public EntryReader {
 public:
  LzhReader(const ArchiveInput& input, ReaderOptions options) : input_(input), options_(std::move(options)) {}

  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus ReadContent(std::string_view* piece) override;
  ReadStatus Unpack(EntrySink* sink) override;
  const Reason& Problem() const override { return reason_; }

 private:
  ReadStatus AtEnd();
  void GoTo(LzhHeader header, Entry* entry);
  ReadStatus Begin();
  ReadStatus Finish();
  ReadStatus Fail(ReadStatus status, Reason reason);
  Part FindPart();
  std::string_view PartOf(std::string_view unpacked) const;

  const ArchiveInput& input_;
  ReaderOptions options_;
  std::uint64_t position_ = 0;  // of the next header
  bool is_cut_ = false;         // the input ends in the content of the last entry
  ReadStatus archive_status_ = ReadStatus::kOk;
  LzhHeader header_;
  Part part_;  // of what is unpacked that is the file
  std::unique_ptr<PackedBytes> packed_;
  std::unique_ptr<LzhUnpacker> unpacker_;
  ReadStatus content_status_ = ReadStatus::kEnd;
  std::string piece_;
  std::uint64_t size_ = 0;  // unpacked so far
  Crc16Sum crc_;            // of that
  Reason reason_;
};

ReadStatus LzhReader::Fail(ReadStatus status, Reason reason) {
  reason_ = std::move(reason);
  return status;
}

ReadStatus LzhReader::NextEntry(Entry* entry) {
  content_status_ = ReadStatus::kEnd;
  if (archive_status_ != ReadStatus::kOk) return archive_status_;
  auto header = ReadLzhHeader(input_, position_);
  if (!header) return archive_status_ = AtEnd();
  const std::uint64_t rest = input_.Size() - header->content_position;
  is_cut_ = header->packed_size > rest;
  position_ = header->content_position + std::min(header->packed_size, rest);
  GoTo(*std::move(header), entry);
  return ReadStatus::kOk;
}

// Makes that entry the one whose content is read.
void LzhReader::GoTo(LzhHeader header, Entry* entry) {
  unpacker_.reset();
  content_status_ = ReadStatus::kEnd;
  header_ = std::move(header);
  *entry = ToEntry(header_, options_.charset);
  if (entry->kind != EntryKind::kFile) return;
  part_ = FindPart();
  entry->size = part_.size;
  content_status_ = ReadStatus::kOk;
}

// The headers are gone through first, so that contents can be unpacked on all cores.
ReadStatus LzhReader::Unpack(EntrySink* sink) {
  std::vector<LzhHeader> headers;
  std::vector<bool> wanted;
  std::vector<ContentPool::Job> jobs;
  Entry entry;
  while (NextEntry(&entry) == ReadStatus::kOk) {
    wanted.push_back(sink->Wants(entry));
    if (wanted.back() && entry.kind == EntryKind::kFile && LzhWorker::Takes(header_))
      jobs.push_back({headers.size(), static_cast<std::size_t>(header_.size)});
    headers.push_back(std::move(header_));
  }
  const Reason end = reason_;
  ContentPool pool(std::move(jobs), [&] { return std::make_unique<LzhWorker>(input_, headers, sink); });
  for (std::size_t i = 0; i < headers.size(); ++i) {
    GoTo(headers[i], &entry);
    std::optional<ContentBuffer> content = pool.Take(i);
    const bool goes_on = content ? GiveWhole(std::move(entry), *std::move(content), sink)
                                 : GiveCurrent(std::move(entry), wanted[i], sink);
    if (!goes_on) return ReadStatus::kEnd;
  }
  return Fail(archive_status_, end);
}

// The last header is followed by one of size 0, or by nothing. No format says how many entries there are, so that an
// archive which is cut off behind one of them looks whole. A zero may also be damage to the size of a header, or a
// place inside one to which the damaged header before it led.
ReadStatus LzhReader::AtEnd() {
  std::string rest(kLargestHeader, '\0');
  std::size_t got = 0;
  const platform::Result result = input_.ReadAt(position_, rest.data(), rest.size(), &got);
  if (!result.ok()) return Fail(ReadStatus::kFailed, result.reason);
  if (is_cut_) return Fail(ReadStatus::kFailed, why::kEndMissing);
  rest.resize(got);
  const bool is_end = rest.empty() || (rest.front() == 0 && !HasLzhMethod(rest));
  return is_end ? ReadStatus::kEnd : Fail(ReadStatus::kFailed, why::kCutOffInHeader);
}

// All of it, or the fork in it. Whether there is one, the first unpacked bytes say; that these cannot be unpacked is
// told when the content is read.
Part LzhReader::FindPart() {
  const Part all{0, header_.size};
  if (header_.system != 'm' || header_.size < kMacBinaryHeader || Begin() != ReadStatus::kOk) return all;
  std::size_t got = 0;
  while (got < kMacBinaryHeader) {
    const std::size_t more = unpacker_->Read(piece_.data() + got, kMacBinaryHeader - got);
    if (more == 0) break;
    got += more;
  }
  unpacker_.reset();
  return FindOnlyFork(std::string_view(piece_).substr(0, got), header_).value_or(all);
}

ReadStatus LzhReader::ReadContent(std::string_view* piece) {
  if (content_status_ == ReadStatus::kOk && !unpacker_) content_status_ = Begin();
  while (content_status_ == ReadStatus::kOk) {
    const std::size_t got = unpacker_->Read(piece_.data(), piece_.size());
    if (got == 0) return content_status_ = Finish();
    const auto unpacked = std::string_view(piece_).substr(0, got);
    crc_.Add(unpacked);
    *piece = PartOf(unpacked);
    size_ += got;
    if (!piece->empty()) break;
  }
  return content_status_;
}

// What of the bytes that follow `size_` ones is the file.
std::string_view LzhReader::PartOf(std::string_view unpacked) const {
  const std::uint64_t end = part_.begin + part_.size;
  const std::uint64_t from = std::clamp<std::uint64_t>(part_.begin, size_, size_ + unpacked.size());
  const std::uint64_t to = std::clamp<std::uint64_t>(end, from, size_ + unpacked.size());
  return unpacked.substr(static_cast<std::size_t>(from - size_), static_cast<std::size_t>(to - from));
}

ReadStatus LzhReader::Begin() {
  size_ = 0;
  crc_ = {};
  piece_.resize(kPieceSize);
  packed_ = std::make_unique<PackedBytes>(input_, header_.content_position, header_.packed_size);
  return MakeLzhUnpacker(header_, packed_.get(), &unpacker_, &reason_);
}

ReadStatus LzhReader::Finish() {
  if (!packed_->Problem().empty()) return Fail(ReadStatus::kFailed, packed_->Problem());
  if (size_ != header_.size) {
    return Fail(ReadStatus::kFailed, why::kFewerBytes(size_, header_.size));
  }
  const bool is_right = !header_.crc || crc_.Value() == *header_.crc;
  return is_right ? ReadStatus::kEnd : Fail(ReadStatus::kFailed, why::kWrongChecksum);
}

}  // namespace

std::unique_ptr<EntryReader> OpenLzh(const ArchiveInput& input, const ReaderOptions& options, Reason*) {
  return std::make_unique<LzhReader>(input, options);
}

}  // namespace quendle::modules
