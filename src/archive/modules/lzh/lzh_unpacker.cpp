#include "archive/modules/lzh/lzh_unpacker.h"

#include <lhasa.h>

#include "archive/modules/lzh/lh2_symbols.h"
#include "archive/modules/lzh/lh3_symbols.h"
#include "archive/modules/lzh/lh5_unpacker.h"
#include "archive/modules/lzh/window_unpacker.h"

namespace quendle::modules {
namespace {

bool IsStored(const std::string& method) {
  return method == "-lh0-" || method == "-lz4-" || method == "-pm0-";
}

// What is stored does not go through lhasa's decoder, which is slower than the disk.
class StoredBytes final : public LzhUnpacker {
 public:
  explicit StoredBytes(PackedBytes* packed) : packed_(packed) {}

  std::size_t Read(char* buffer, std::size_t size) override {
    return packed_->Read(reinterpret_cast<std::uint8_t*>(buffer), size);
  }

 private:
  PackedBytes* packed_;
};

// Of a constant type since lhasa 0.5.
using LhasaMethod = decltype(lha_decoder_for_name(nullptr));

class LhasaUnpacker final : public LzhUnpacker {
 public:
  LhasaUnpacker(LhasaMethod type, PackedBytes* packed, std::uint64_t size)
      : decoder_(lha_decoder_new(type, &ReadPacked, packed, static_cast<std::size_t>(size))) {}

  bool ok() const { return decoder_ != nullptr; }

  std::size_t Read(char* buffer, std::size_t size) override {
    return lha_decoder_read(decoder_.get(), reinterpret_cast<std::uint8_t*>(buffer), size);
  }

 private:
  struct Free {
    void operator()(LHADecoder* decoder) const { lha_decoder_free(decoder); }
  };

  static std::size_t ReadPacked(void* buffer, std::size_t size, void* packed) {
    return static_cast<PackedBytes*>(packed)->ReadFew(static_cast<char*>(buffer), size);
  }

  std::unique_ptr<LHADecoder, Free> decoder_;
};

}  // namespace

ReadStatus MakeLzhUnpacker(const LzhHeader& header, PackedBytes* packed,
                           std::unique_ptr<LzhUnpacker>* unpacker, Reason* reason) {
  std::string method = header.method;
  if (IsStored(method)) {
    *unpacker = std::make_unique<StoredBytes>(packed);
  } else if (method == "-lh2-") {
    *unpacker = std::make_unique<WindowUnpacker>(std::make_unique<Lh2Symbols>(packed), header.size);
  } else if (method == "-lh3-") {
    *unpacker = std::make_unique<WindowUnpacker>(std::make_unique<Lh3Symbols>(packed), header.size);
  } else if (const auto form = Lh5FormOf(method)) {
    *unpacker = std::make_unique<Lh5Unpacker>(packed, *form);
  } else if (const LhasaMethod type = lha_decoder_for_name(method.data()); type != nullptr) {
    auto lhasa = std::make_unique<LhasaUnpacker>(type, packed, header.size);
    if (!lhasa->ok()) {
      *reason = packed->Problem().empty() ? why::kOddPackedData : packed->Problem();
      return ReadStatus::kFailed;
    }
    *unpacker = std::move(lhasa);
  } else {
    *reason = why::kUnsupportedMethod(method);
    return ReadStatus::kUnsupported;
  }
  return ReadStatus::kOk;
}

}  // namespace quendle::modules
