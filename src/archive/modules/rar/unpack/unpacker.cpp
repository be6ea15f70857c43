#include "archive/modules/rar/unpack/unpacker.h"

#include <algorithm>
#include <limits>

namespace quendle::modules {
namespace {

constexpr std::uint64_t kPieceSize = 64U << 10;
constexpr std::size_t kLongestMatch = 8U << 10;

}  // namespace

void Unpacker::Begin(PackedSource* packed, const PackedEntry& entry) {
  packed_ = packed;
  entry_ = entry;
  problem_ = {};
  status_ = ReadStatus::kOk;
  passed_ = 0;
  bits_.Begin(packed);
  filters_.Begin();
  BeginEntry(entry);
  start_ = window_.Written();
}

ReadStatus Unpacker::Read(std::string_view* piece) {
  while (!GiveMade(piece) && status_ == ReadStatus::kOk) DecodeMore();
  return piece->empty() ? status_ : ReadStatus::kOk;
}

// What is made goes out through the filters. A match may be longer than what the entry has left.
bool Unpacker::GiveMade(std::string_view* piece) {
  *piece = {};
  const std::uint64_t end = std::min(Made(), Size().value_or(Made()));
  while (piece->empty() && passed_ < end) {
    if (status_ > ReadStatus::kEnd) return false;
    std::string_view raw = window_.Piece(start_ + passed_, start_ + end);
    const std::size_t size = raw.size();
    if (!filters_.Pass(&raw, piece)) Settle(Step::kDamaged);
    passed_ += size - raw.size();
  }
  return !piece->empty();
}

void Unpacker::DecodeMore() {
  if (!window_.Reserve(kPieceSize + kLongestMatch)) {
    problem_ = why::kDictionaryTooLarge(entry_.window >> 20);
    status_ = ReadStatus::kFailed;
    return;
  }
  const std::uint64_t size = Size().value_or(std::numeric_limits<std::uint64_t>::max());
  if (Made() < size) return Settle(Decode(std::min(Made() + kPieceSize, size)));
  if (const auto end = EndWithoutMark()) return Settle(*end);
  // One without its mark is accepted when all of it is there; one that goes on is not.
  const Step step = Decode(Made() + 1);
  Settle(bits_.IsPastEnd() ? Step::kEnd : step == Step::kMore ? Step::kDamaged : step);
}

void Unpacker::Settle(Step step) {
  if (step == Step::kMore && !bits_.IsPastEnd()) return;
  status_ = step == Step::kEnd           ? ReadStatus::kEnd
            : step == Step::kUnsupported ? ReadStatus::kUnsupported
                                         : ReadStatus::kFailed;
  const bool lacks_mark = bits_.IsPastEnd() && !Size();
  if (status_ == ReadStatus::kEnd && (lacks_mark || filters_.IsHolding())) status_ = ReadStatus::kFailed;
  if (!packed_->Problem().empty()) {
    status_ = ReadStatus::kFailed;
    problem_ = packed_->Problem();
  } else if (status_ != ReadStatus::kEnd && problem_.empty()) {
    problem_ = why::kPackedDataDamaged;
  }
}

}  // namespace quendle::modules
