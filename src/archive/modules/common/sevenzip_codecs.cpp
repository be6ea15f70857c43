#include "archive/modules/common/sevenzip_codecs.h"

#include <zstd.h>

#include <atomic>
#include <memory>
#include <vector>

#include "archive/modules/common/sevenzip_object.h"

namespace quendle::modules {
namespace {

using namespace sevenzip;

constexpr std::uint64_t kZstdMethod = 0x04F71101;

struct FreeContext {
  void operator()(ZSTD_DCtx* context) const { ZSTD_freeDCtx(context); }
};

// All of it, unless the stream ends before.
HResult ReadFull(SequentialInStream* in, std::vector<char>* buffer, std::size_t* got) {
  *got = 0;
  while (*got < buffer->size()) {
    std::uint32_t read = 0;
    const HResult result =
        in->Read(buffer->data() + *got, static_cast<std::uint32_t>(buffer->size() - *got), &read);
    if (result != kOk) return result;
    if (read == 0) break;
    *got += read;
  }
  return kOk;
}

HResult WriteFull(OutStream* out, const char* bytes, std::size_t size) {
  while (size > 0) {
    std::uint32_t written = 0;
    const HResult result = out->Write(bytes, static_cast<std::uint32_t>(size), &written);
    if (result != kOk) return result;
    if (written == 0) return kFail;
    bytes += written;
    size -= written;
  }
  return kOk;
}

class ZstdDecoder final : public Object<Coder, CoderProperties> {
 public:
  std::uint32_t AddRef() override { return ++references_; }
  std::uint32_t Release() override {
    const std::uint32_t left = --references_;
    if (left == 0) delete this;
    return left;
  }

  // The level it was packed with, which unpacking does not need.
  HResult SetDecoderProperties2(const std::uint8_t*, std::uint32_t) override { return kOk; }

  // Damage is answered by kFalse, as the library's own decoders do.
  HResult Code(SequentialInStream* in, OutStream* out, const std::uint64_t*, const std::uint64_t* out_size,
               Unknown*) override {
    return Guarded([&] { return Decode(in, out, out_size == nullptr ? UINT64_MAX : *out_size); });
  }

 private:
  static HResult Decode(SequentialInStream* in, OutStream* out, std::uint64_t left) {
    const std::unique_ptr<ZSTD_DCtx, FreeContext> context(ZSTD_createDCtx());
    if (!context) return kOutOfMemory;
    std::vector<char> packed(ZSTD_DStreamInSize());
    std::vector<char> unpacked(ZSTD_DStreamOutSize());
    ZSTD_inBuffer input{packed.data(), 0, 0};
    while (left > 0) {
      if (input.pos == input.size) {
        const HResult result = ReadFull(in, &packed, &input.size);
        if (result != kOk) return result;
        input.pos = 0;
      }
      const bool at_end = input.size == 0;
      ZSTD_outBuffer output{unpacked.data(), unpacked.size(), 0};
      if (ZSTD_isError(ZSTD_decompressStream(context.get(), &output, &input)) != 0) return kFalse;
      if (at_end && output.pos == 0) return kFalse;
      const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(output.pos, left));
      const HResult result = WriteFull(out, unpacked.data(), size);
      if (result != kOk) return result;
      left -= size;
    }
    return kOk;
  }

  std::atomic<std::uint32_t> references_{0};
};

class Codecs final : public Object<CodecsInfo> {
 public:
  HResult GetNumberOfMethods(std::uint32_t* count) override {
    *count = 1;
    return kOk;
  }

  HResult GetProperty(std::uint32_t, std::uint32_t property, Variant* value) override {
    // Only these two: the library's own form of it may be shorter.
    value->type = kEmptyType;
    value->value.number = 0;
    switch (property) {
      case kCodecId:
        value->type = kNumber64Type;
        value->value.number = kZstdMethod;
        break;
      case kPackedStreams:
      case kUnpackedStreams:
        value->type = kNumber32Type;
        value->value.number = 1;
        break;
      case kHasDecoder:
      case kHasEncoder:
        value->type = kBoolType;
        value->value.number = property == kHasDecoder ? 0xFFFF : 0;
        break;
      default:
        break;
    }
    return kOk;
  }

  HResult CreateDecoder(std::uint32_t, const Guid* id, void** coder) override {
    return Guarded([&] {
      *coder = nullptr;
      if (*id != Coder::kId) return kNoInterface;
      auto* const decoder = new ZstdDecoder;
      decoder->AddRef();
      *coder = static_cast<Coder*>(decoder);
      return kOk;
    });
  }
  HResult CreateEncoder(std::uint32_t, const Guid*, void** coder) override {
    *coder = nullptr;
    return kNoInterface;
  }
};

}  // namespace

void AddCodecs(InArchive* reader) {
  static Codecs codecs;
  void* object = nullptr;
  if (reader->QueryInterface(CodecsUser::kId, &object) != kOk || object == nullptr) return;
  auto* const user = static_cast<CodecsUser*>(object);
  user->SetCompressCodecsInfo(&codecs);
  user->Release();
}

}  // namespace quendle::modules
