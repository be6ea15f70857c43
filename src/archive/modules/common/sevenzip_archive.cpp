#include "archive/modules/common/sevenzip_archive.h"

#include <algorithm>
#include <utility>

#include "archive/modules/common/sevenzip_codecs.h"
#include "archive/modules/common/sevenzip_object.h"
#include "platform/process/memory.h"
#include "platform/text/utf8_locale.h"

namespace quendle::modules {
using namespace sevenzip;

class SevenZipArchive::Stream final : public Object<InStream> {
 public:
  explicit Stream(SevenZipBytes bytes) : bytes_(std::move(bytes)) {}

  // Why a read failed, if one did.
  const Reason& Problem() const { return problem_; }

  HResult Read(void* data, std::uint32_t size, std::uint32_t* got) override {
    return Guarded([&] {
      std::size_t read = 0;
      const platform::Result result = bytes_.read(position_, data, size, &read);
      if (got != nullptr) *got = static_cast<std::uint32_t>(read);
      position_ += read;
      if (!result.ok()) problem_ = result.reason;
      return result.ok() ? kOk : kFail;
    });
  }

  HResult Seek(std::int64_t offset, std::uint32_t origin, std::uint64_t* position) override {
    const std::uint64_t base = origin == 0 ? 0 : origin == 1 ? position_ : bytes_.size;
    if (offset < 0 && static_cast<std::uint64_t>(-(offset + 1)) >= base) return kFail;
    position_ = base + static_cast<std::uint64_t>(offset);
    if (position != nullptr) *position = position_;
    return kOk;
  }

 private:
  SevenZipBytes bytes_;
  std::uint64_t position_ = 0;
  Reason problem_;
};

class SevenZipArchive::Password {
 public:
  explicit Password(SevenZipArchive* archive) : archive_(*archive) {}

  HResult Give(Char** text) {
    return Guarded([&] {
      archive_.asked_ = true;
      const auto password = archive_.password_();
      archive_.given_ = password.has_value();
      *text = password ? archive_.library_->NewText(*password) : nullptr;
      return password ? kOk : kAbort;
    });
  }

 private:
  SevenZipArchive& archive_;
};

class SevenZipArchive::Opening final : public Object<OpenCallback, PasswordCallback> {
 public:
  explicit Opening(SevenZipArchive* archive) : password_(archive) {}

  HResult SetTotal(const std::uint64_t*, const std::uint64_t*) override { return kOk; }
  HResult SetCompleted(const std::uint64_t*, const std::uint64_t*) override { return kOk; }
  HResult CryptoGetTextPassword(Char** text) override { return password_.Give(text); }

 private:
  Password password_;
};

class SevenZipArchive::Extracting final : public Object<ExtractCallback, PasswordCallback, OutStream> {
 public:
  Extracting(SevenZipArchive* archive, SevenZipReceiver* receiver)
      : password_(archive), receiver_(*receiver) {}

  HResult SetTotal(std::uint64_t) override { return kOk; }
  HResult SetCompleted(const std::uint64_t*) override {
    return Guarded([&] { return receiver_.GoesOn() ? kOk : kAbort; });
  }
  HResult CryptoGetTextPassword(Char** text) override { return password_.Give(text); }

  HResult GetStream(std::uint32_t index, OutStream** stream, std::int32_t mode) override {
    *stream = nullptr;
    is_wanted_ = mode != kSkipMode;
    if (!is_wanted_) return kOk;
    index_ = index;
    // What it cannot unpack it only tests, to say why.
    if (mode == kExtractMode) *stream = this;
    return Guarded([&] { return receiver_.Begin(index) ? kOk : kAbort; });
  }
  HResult PrepareOperation(std::int32_t) override { return kOk; }
  HResult Write(const void* data, std::uint32_t size, std::uint32_t* written) override {
    return Guarded([&] {
      if (written != nullptr) *written = size;
      return size == 0 || receiver_.Write({static_cast<const char*>(data), size}) ? kOk : kAbort;
    });
  }
  HResult SetOperationResult(std::int32_t result) override {
    if (!std::exchange(is_wanted_, false)) return kOk;
    return Guarded([&] { return receiver_.End(index_, static_cast<ExtractResult>(result)) ? kOk : kAbort; });
  }

 private:
  Password password_;
  SevenZipReceiver& receiver_;
  std::uint32_t index_ = 0;
  bool is_wanted_ = false;
};

SevenZipBytes BytesOf(const ArchiveInput& input) {
  return {input.Size(), [&input](std::uint64_t position, void* buffer, std::size_t size, std::size_t* got) {
            return input.ReadAt(position, buffer, size, got);
          }};
}

SevenZipArchive::SevenZipArchive(SevenZipBytes bytes, std::function<std::optional<std::string>()> password)
    : stream_(std::make_unique<Stream>(std::move(bytes))), password_(std::move(password)) {}

SevenZipArchive::~SevenZipArchive() {
  if (archive_) archive_->Close();
}

ReadStatus SevenZipArchive::Open(std::uint8_t format, Reason* reason, Threads threads) {
  library_ = SevenZipLibrary::Get(reason);
  if (library_ == nullptr) return ReadStatus::kUnsupported;
  archive_ = library_->CreateReader(format);
  if (!archive_) {
    *reason = why::kLibraryNotSetUp;
    return ReadStatus::kUnsupported;
  }
  AddCodecs(archive_.get());
  Set(threads);
  Opening callback(this);
  const std::uint64_t in_front = 0;
  const HResult opened = archive_->Open(stream_.get(), &in_front, &callback);
  if (opened == kOk && archive_->GetNumberOfItems(&count_) == kOk) return CheckOpened(reason);
  archive_.reset();
  // It does not tell a wrong password for the headers from what is no archive.
  if (asked_ && stream_->Problem().empty()) {
    *reason = given_ ? why::kWrongPassword : why::kNoPassword;
    return ReadStatus::kPassword;
  }
  *reason = !stream_->Problem().empty() ? stream_->Problem()
            : opened == kOutOfMemory    ? why::kNotEnoughMemory
                                        : why::kHeadersDamaged;
  return ReadStatus::kFailed;
}

// One value only: where the next of several would stand depends on the system. A reader that does not know it does as it
// always did.
void SevenZipArchive::Set(Threads threads) {
  void* object = nullptr;
  if (archive_->QueryInterface(PropertiesUser::kId, &object) != kOk || object == nullptr) return;
  const std::unique_ptr<PropertiesUser, SevenZipLibrary::Released> user(static_cast<PropertiesUser*>(object));
  Variant value;
  if (threads == Threads::kOne) {
    const Char* const name = L"mt";
    value.type = kNumber32Type;
    value.value.number = 1;
    user->SetProperties(&name, &value, 1);
  } else {
    const Char* const name = L"memuse";
    value.type = kTextType;
    value.value.text = library_->NewText(std::to_string(platform::AvailableMemory() / 4 >> 20).append("m"));
    user->SetProperties(&name, &value, 1);
    library_->FreeText(value.value.text);
  }
}

ReadStatus SevenZipArchive::CheckOpened(Reason* reason) const {
  Variant flags;
  archive_->GetArchiveProperty(kErrorFlags, &flags);
  const auto errors = static_cast<std::uint32_t>(flags.type == kNumber32Type ? flags.value.number : 0);
  if ((errors & kUnsupportedErrors) != 0) {
    *reason = why::kUnknownFeature;
    return ReadStatus::kUnsupported;
  }
  if ((errors & (kHeaderErrors | kDataErrors | kUnexpectedEndError)) != 0) {
    *reason = (errors & kUnexpectedEndError) != 0 ? why::kCutOff : why::kHeadersDamaged;
    return ReadStatus::kFailed;
  }
  return ReadStatus::kOk;
}

Variant SevenZipArchive::Get(std::uint32_t index, Property property) const {
  Variant value;
  if (archive_->GetProperty(index, property, &value) != kOk) value.type = kEmptyType;
  return value;
}

std::string SevenZipArchive::Text(std::uint32_t index, Property property) const {
  const Variant value = Get(index, property);
  if (value.type != kTextType) return "";
  std::string text = FromSevenZipText(value.value.text);
  library_->FreeText(value.value.text);
  return text;
}

std::optional<std::uint64_t> SevenZipArchive::Number(std::uint32_t index, Property property) const {
  const Variant value = Get(index, property);
  switch (value.type) {
    case kBoolType:
      return static_cast<std::uint16_t>(value.value.number) != 0 ? 1 : 0;
    case kNumber32Type:
      return static_cast<std::uint32_t>(value.value.number);
    case kNumber64Type:
    case kTimeType:
      return value.value.number;
    case kTextType:
      library_->FreeText(value.value.text);
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

std::optional<Reason> SevenZipArchive::Extract(const std::vector<std::uint32_t>& indices,
                                               SevenZipReceiver* receiver) {
  const platform::Utf8Locale utf8;  // by which it makes bytes of passwords
  Extracting callback(this, receiver);
  const HResult result =
      archive_->Extract(indices.data(), static_cast<std::uint32_t>(indices.size()), 0, &callback);
  if (result == kOk) return std::nullopt;
  if (!stream_->Problem().empty()) return stream_->Problem();
  if (asked_ && !given_) return why::kNoPassword;
  return result == kOutOfMemory ? why::kNotEnoughMemory : why::kUnreadable;
}

ReadStatus StatusOf(ExtractResult result, const std::string& method, bool may_be_locked, Reason* reason) {
  switch (result) {
    case ExtractResult::kWhole:
      return ReadStatus::kEnd;
    case ExtractResult::kUnsupportedMethod:
      *reason = why::kUnsupportedMethod(method);
      return ReadStatus::kUnsupported;
    case ExtractResult::kWrongPassword:
      *reason = why::kWrongPassword;
      return ReadStatus::kPassword;
    case ExtractResult::kWrongCrc:
      *reason = why::kWrongChecksum;
      break;
    case ExtractResult::kUnavailable:
    case ExtractResult::kUnexpectedEnd:
      *reason = why::kCutOff;
      break;
    default:
      *reason = why::kPackedDataDamaged;
      break;
  }
  if (!may_be_locked) return ReadStatus::kFailed;
  *reason = why::kWrongPasswordOrDamaged(*reason);
  return ReadStatus::kPassword;
}

}  // namespace quendle::modules
