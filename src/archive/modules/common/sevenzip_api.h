// The binary interface of 7-Zip's library (7z.so, 7z.dll), version 23 and later, as far as it is called here. It is one
// of tables of functions, in the style of COM: objects count their references, their interfaces are asked for by number,
// and results are HRESULTs. The order of the functions is the interface.
#pragma once

#include <array>
#include <cstdint>

namespace quendle::modules::sevenzip {

#ifdef _WIN32
using Char = wchar_t;  // of 16 bits; UTF-16
using HResult = long;
#else
using Char = wchar_t;  // of 32 bits; a character, or a half of one as UTF-16 has it
using HResult = std::int32_t;
#endif

inline constexpr HResult kOk = 0;
inline constexpr HResult kFalse = 1;  // of Open: this is no such archive
inline constexpr auto kNoInterface = static_cast<HResult>(0x80004002);
inline constexpr auto kAbort = static_cast<HResult>(0x80004004);
inline constexpr auto kFail = static_cast<HResult>(0x80004005);
inline constexpr auto kOutOfMemory = static_cast<HResult>(0x8007000E);

struct Guid {
  std::uint32_t data1;
  std::uint16_t data2;
  std::uint16_t data3;
  std::array<std::uint8_t, 8> data4;
  bool operator==(const Guid&) const = default;
};

inline constexpr Guid kUnknownId{0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
// An interface, by its group and its number in it.
constexpr Guid InterfaceId(std::uint8_t group, std::uint8_t number) {
  return {0x23170F69, 0x40C1, 0x278A, {0, 0, 0, group, 0, number, 0, 0}};
}
// The reader of a format.
constexpr Guid FormatId(std::uint8_t format) {
  return {0x23170F69, 0x40C1, 0x278A, {0x10, 0, 0, 0x01, 0x10, format, 0, 0}};
}
inline constexpr std::uint8_t kZipFormat = 0x01;
inline constexpr std::uint8_t kSevenZipFormat = 0x07;

// PROPVARIANT; a string in it belongs to whoever got it. Windows has it longer than other systems.
struct Variant {
  std::uint16_t type = 0;
  std::array<std::uint16_t, 3> reserved{};  // of a time: its precision, and nanoseconds below 100
  union {
    std::uint64_t number;
    Char* text;
  } value{};
  std::uint64_t more = 0;
};
inline constexpr std::uint16_t kEmptyType = 0;
inline constexpr std::uint16_t kTextType = 8;
inline constexpr std::uint16_t kBoolType = 11;
inline constexpr std::uint16_t kNumber32Type = 19;
inline constexpr std::uint16_t kNumber64Type = 21;
inline constexpr std::uint16_t kTimeType = 64;  // in units of 100 nanoseconds since 1601

enum Property : std::uint32_t {
  kPath = 3,
  kIsFolder = 6,
  kSize = 7,
  kPackedSize = 8,
  kAttributes = 9,
  kWriteTime = 12,
  kIsEncrypted = 15,
  kCrc = 19,
  kIsAnti = 21,
  kMethod = 22,
  kBlock = 27,
  kErrorFlags = 71,
};

// Bits of kErrorFlags. Data behind the archive (64) is no error here.
inline constexpr std::uint32_t kHeaderErrors = 2 | 4 | 8 | 16;
inline constexpr std::uint32_t kUnexpectedEndError = 32;
inline constexpr std::uint32_t kUnsupportedErrors = 128 | 256;
inline constexpr std::uint32_t kDataErrors = 512 | 1024;

enum class ExtractResult : std::int32_t {
  kWhole = 0,
  kUnsupportedMethod,
  kDataError,
  kWrongCrc,
  kUnavailable,
  kUnexpectedEnd,
  kDataAfterEnd,
  kNotArchive,
  kHeadersError,
  kWrongPassword,
};
inline constexpr std::int32_t kExtractMode = 0;
inline constexpr std::int32_t kSkipMode = 2;

// NOLINTBEGIN(cppcoreguidelines-virtual-class-destructor): a destructor would stand among the functions
struct Unknown {
  virtual HResult QueryInterface(const Guid& id, void** object) = 0;
  virtual std::uint32_t AddRef() = 0;
  virtual std::uint32_t Release() = 0;
};

struct InStream : Unknown {
  static constexpr Guid kId = InterfaceId(3, 3);
  virtual HResult Read(void* data, std::uint32_t size, std::uint32_t* got) = 0;
  virtual HResult Seek(std::int64_t offset, std::uint32_t origin, std::uint64_t* position) = 0;
};

struct OutStream : Unknown {
  static constexpr Guid kId = InterfaceId(3, 2);
  virtual HResult Write(const void* data, std::uint32_t size, std::uint32_t* written) = 0;
};

struct SequentialInStream : Unknown {
  virtual HResult Read(void* data, std::uint32_t size, std::uint32_t* got) = 0;
};

// A decoder that reads all of one stream and writes all of another; a size may be null.
struct Coder : Unknown {
  static constexpr Guid kId = InterfaceId(4, 5);
  virtual HResult Code(SequentialInStream* in, OutStream* out, const std::uint64_t* in_size,
                       const std::uint64_t* out_size, Unknown* progress) = 0;
};

// What the archive says of how a coder was set up.
struct CoderProperties : Unknown {
  static constexpr Guid kId = InterfaceId(4, 0x22);
  virtual HResult SetDecoderProperties2(const std::uint8_t* bytes, std::uint32_t size) = 0;
};

// Methods beside the library's own.
struct CodecsInfo : Unknown {
  static constexpr Guid kId = InterfaceId(4, 0x60);
  virtual HResult GetNumberOfMethods(std::uint32_t* count) = 0;
  virtual HResult GetProperty(std::uint32_t index, std::uint32_t property, Variant* value) = 0;
  virtual HResult CreateDecoder(std::uint32_t index, const Guid* id, void** coder) = 0;
  virtual HResult CreateEncoder(std::uint32_t index, const Guid* id, void** coder) = 0;
};

// What a reader takes them by.
struct CodecsUser : Unknown {
  static constexpr Guid kId = InterfaceId(4, 0x61);
  virtual HResult SetCompressCodecsInfo(CodecsInfo* codecs) = 0;
};

enum CodecProperty : std::uint32_t {
  kCodecId = 0,
  kPackedStreams = 4,
  kUnpackedStreams = 5,
  kHasDecoder = 7,
  kHasEncoder = 8,
  // The rest of them, such as whether it is a filter, may stay empty.
};

struct PasswordCallback : Unknown {
  static constexpr Guid kId = InterfaceId(5, 0x10);
  virtual HResult CryptoGetTextPassword(Char** password) = 0;
};

struct OpenCallback : Unknown {
  static constexpr Guid kId = InterfaceId(6, 0x10);
  virtual HResult SetTotal(const std::uint64_t* files, const std::uint64_t* bytes) = 0;
  virtual HResult SetCompleted(const std::uint64_t* files, const std::uint64_t* bytes) = 0;
};

struct ExtractCallback : Unknown {
  static constexpr Guid kId = InterfaceId(6, 0x20);
  virtual HResult SetTotal(std::uint64_t total) = 0;
  virtual HResult SetCompleted(const std::uint64_t* done) = 0;
  virtual HResult GetStream(std::uint32_t index, OutStream** stream, std::int32_t mode) = 0;
  virtual HResult PrepareOperation(std::int32_t mode) = 0;
  virtual HResult SetOperationResult(std::int32_t result) = 0;
};

struct InArchive : Unknown {
  static constexpr Guid kId = InterfaceId(6, 0x60);
  virtual HResult Open(InStream* stream, const std::uint64_t* most_front, OpenCallback* callback) = 0;
  virtual HResult Close() = 0;
  virtual HResult GetNumberOfItems(std::uint32_t* count) = 0;
  virtual HResult GetProperty(std::uint32_t index, std::uint32_t property, Variant* value) = 0;
  virtual HResult Extract(const std::uint32_t* indices, std::uint32_t count, std::int32_t test,
                          ExtractCallback* callback) = 0;
  virtual HResult GetArchiveProperty(std::uint32_t property, Variant* value) = 0;
};

// How a reader does what it does, by names and values. What was set before counts no more.
struct PropertiesUser : Unknown {
  static constexpr Guid kId = InterfaceId(6, 3);
  virtual HResult SetProperties(const Char* const* names, const Variant* values, std::uint32_t count) = 0;
};
// NOLINTEND(cppcoreguidelines-virtual-class-destructor)

using CreateObjectFunction = HResult (*)(const Guid* what, const Guid* interface_id, void** object);
// Of the library: property 0 is 0 for the layout of this file and 1 for that of older versions; property 1 is the
// version, the major number in the upper 16 bits.
using GetModulePropFunction = HResult (*)(std::uint32_t property, Variant* value);

}  // namespace quendle::modules::sevenzip
