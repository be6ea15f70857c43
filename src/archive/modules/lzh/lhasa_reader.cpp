#include "archive/modules/lzh/lhasa_reader.h"

#include <lhasa.h>

#include <algorithm>
#include <utility>

#include "archive/modules/common/checksum.h"
#include "archive/modules/lzh/lzh_headers.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kPieceSize = 256U << 10;
constexpr std::size_t kInputSize = 64U << 10;

bool IsStored(const std::string& method) {
  return method == "-lh0-" || method == "-lz4-" || method == "-pm0-";
}

// The packed bytes of one entry as the decoder takes them: some at a time.
class PackedBytes {
 public:
  PackedBytes(const ArchiveInput& input, const LzhHeader& header)
      : input_(input), position_(header.content_position), left_(header.packed_size) {}

  static std::size_t Read(void* buffer, std::size_t size, void* self) {
    return static_cast<PackedBytes*>(self)->Take(static_cast<char*>(buffer), size);
  }

  // Directly, without the buffer.
  std::size_t ReadPiece(std::string* piece) {
    piece->resize(kPieceSize);
    std::size_t got = 0;
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(kPieceSize, left_));
    if (!input_.ReadAt(position_, piece->data(), size, &got).ok()) got = 0;
    position_ += got;
    left_ -= got;
    return got;
  }

 private:
  std::size_t Take(char* buffer, std::size_t size) {
    if (used_ == buffer_.size()) Refill();
    const std::size_t taken = buffer_.copy(buffer, size, used_);
    used_ += taken;
    return taken;
  }
  void Refill() {
    buffer_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kInputSize, left_)));
    used_ = 0;
    std::size_t got = 0;
    if (!input_.ReadAt(position_, buffer_.data(), buffer_.size(), &got).ok()) got = 0;
    buffer_.resize(got);
    position_ += got;
    left_ -= got;
  }

  const ArchiveInput& input_;
  std::uint64_t position_;
  std::uint64_t left_;
  std::string buffer_;
  std::size_t used_ = 0;
};

struct FreeDecoder {
  void operator()(LHADecoder* decoder) const { lha_decoder_free(decoder); }
};

class LhasaReader final : public EntryReader {
 public:
  LhasaReader(const ArchiveInput& input, ReaderOptions options)
      : input_(input), options_(std::move(options)) {}

  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus ReadContent(std::string_view* piece) override;
  const Reason& Problem() const override { return reason_; }

 private:
  ReadStatus AtEnd();
  ReadStatus Begin();
  ReadStatus Finish();
  ReadStatus Fail(ReadStatus status, Reason reason);

  const ArchiveInput& input_;
  ReaderOptions options_;
  std::uint64_t position_ = 0;  // of the next header
  ReadStatus archive_status_ = ReadStatus::kOk;
  LzhHeader header_;
  std::unique_ptr<PackedBytes> packed_;
  std::unique_ptr<LHADecoder, FreeDecoder> decoder_;  // null for what is stored
  ReadStatus content_status_ = ReadStatus::kEnd;
  std::string piece_;
  std::uint64_t size_ = 0;  // of the content so far
  Crc16Sum crc_;
  Reason reason_;
};

ReadStatus LhasaReader::Fail(ReadStatus status, Reason reason) {
  reason_ = std::move(reason);
  return status;
}

ReadStatus LhasaReader::NextEntry(Entry* entry) {
  decoder_.reset();
  packed_.reset();
  content_status_ = ReadStatus::kEnd;
  if (archive_status_ != ReadStatus::kOk) return archive_status_;
  auto header = ReadLzhHeader(input_, position_, true);
  if (!header) return archive_status_ = AtEnd();
  header_ = std::move(*header);
  const std::uint64_t rest = input_.Size() - header_.content_position;
  position_ = header_.content_position + std::min(header_.packed_size, rest);
  *entry = ToEntry(header_, options_.charset);
  if (entry->kind == EntryKind::kFile) content_status_ = ReadStatus::kOk;
  return ReadStatus::kOk;
}

// The last header is followed by one of size 0. Without it nobody knows whether there were more entries.
ReadStatus LhasaReader::AtEnd() {
  char end = 0;
  std::size_t got = 0;
  const platform::Result result = input_.ReadAt(position_, &end, 1, &got);
  if (!result.ok()) return Fail(ReadStatus::kFailed, result.reason);
  if (got == 0) return Fail(ReadStatus::kFailed, why::kEndMarkMissing);
  return end == 0 ? ReadStatus::kEnd : Fail(ReadStatus::kFailed, why::kCutOffInHeader);
}

ReadStatus LhasaReader::ReadContent(std::string_view* piece) {
  if (content_status_ == ReadStatus::kOk && !packed_) content_status_ = Begin();
  if (content_status_ != ReadStatus::kOk) return content_status_;
  const std::size_t got =
      decoder_
          ? lha_decoder_read(decoder_.get(), reinterpret_cast<std::uint8_t*>(piece_.data()), piece_.size())
          : packed_->ReadPiece(&piece_);
  if (got == 0) return content_status_ = Finish();
  *piece = std::string_view(piece_).substr(0, got);
  size_ += got;
  crc_.Add(*piece);
  return ReadStatus::kOk;
}

ReadStatus LhasaReader::Begin() {
  size_ = 0;
  crc_ = {};
  packed_ = std::make_unique<PackedBytes>(input_, header_);
  piece_.resize(kPieceSize);
  if (IsStored(header_.method)) return ReadStatus::kOk;
  // Constant since lhasa 0.5.
  auto* const type = lha_decoder_for_name(header_.method.data());
  if (type == nullptr) {
    return Fail(ReadStatus::kUnsupported, why::kUnsupportedMethod(header_.method));
  }
  decoder_.reset(
      lha_decoder_new(type, &PackedBytes::Read, packed_.get(), static_cast<std::size_t>(header_.size)));
  return decoder_ ? ReadStatus::kOk : Fail(ReadStatus::kFailed, why::kOddPackedData);
}

ReadStatus LhasaReader::Finish() {
  if (size_ != header_.size) {
    return Fail(ReadStatus::kFailed, why::kFewerBytes(size_, header_.size));
  }
  return crc_.Value() == header_.crc ? ReadStatus::kEnd : Fail(ReadStatus::kFailed, why::kWrongChecksum);
}

}  // namespace

std::unique_ptr<EntryReader> OpenLhasa(const ArchiveInput& input, const ReaderOptions& options, Reason*) {
  return std::make_unique<LhasaReader>(input, options);
}

}  // namespace quendle::modules
