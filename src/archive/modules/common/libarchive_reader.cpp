#include "archive/modules/common/libarchive_reader.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "archive/modules/common/entry_names.h"
#include "archive/modules/common/libarchive_names.h"
#include "archive/modules/common/libarchive_source.h"
#include "platform/text/utf8_locale.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kLargestPiece = 1U << 20;
// Answers in a row that neither bring anything nor end.
constexpr int kMostIdleTurns = 1000;

int SupportFormat(archive* library, LibarchiveFormat format) {
  switch (format) {
    // The other half of the ZIP reader goes through the local headers, which may say anything.
    case LibarchiveFormat::kZip:
      return archive_read_support_format_zip_seekable(library);
    case LibarchiveFormat::kSevenZip:
      return archive_read_support_format_7zip(library);
  }
  return ARCHIVE_FATAL;
}

EntryKind KindOf(archive_entry* raw) {
  if (archive_entry_hardlink(raw) != nullptr) return EntryKind::kOther;
  switch (archive_entry_filetype(raw)) {
    case 0:  // not every format says
    case AE_IFREG:
      return EntryKind::kFile;
    case AE_IFDIR:
      return EntryKind::kFolder;
    case AE_IFLNK:
      return EntryKind::kLink;
    default:
      return EntryKind::kOther;
  }
}

// The library ends the process when a name cannot be converted and errno still tells of an allocation that
// failed at any time before.
void ForgetErrors() {
  errno = 0;
}

bool ContainsAny(const std::string& text, std::initializer_list<const char*> parts) {
  return std::any_of(parts.begin(), parts.end(),
                     [&text](const char* part) { return text.find(part) != std::string::npos; });
}

class LibarchiveReader final : public EntryReader {
 public:
  LibarchiveReader(const ArchiveInput& input, ReaderOptions options, LibarchiveFormat format,
                   DescribeEntry describe, Ending ending)
      : source_(input, std::move(ending)),
        options_(std::move(options)),
        format_(format),
        describe_(std::move(describe)),
        library_(archive_read_new()) {}
  ~LibarchiveReader() override { archive_read_free(library_); }
  LibarchiveReader(const LibarchiveReader&) = delete;
  LibarchiveReader& operator=(const LibarchiveReader&) = delete;

  bool Open();
  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus ReadContent(std::string_view* piece) override;
  const Reason& Problem() const override { return reason_; }

 private:
  static const char* NextPassword(archive* library, void* self);
  Entry Convert(archive_entry* raw) const;
  ReadStatus NextBlock();
  ReadStatus TakePiece(std::string_view* piece);
  ReadStatus Fail(ReadStatus status, Reason reason);
  ReadStatus FailByLibrary(bool nothing_given);

  LibarchiveSource source_;
  ReaderOptions options_;
  LibarchiveFormat format_;
  DescribeEntry describe_;
  archive* library_;
  std::optional<std::string> password_;  // once the library was given one
  Reason reason_;

  std::size_t index_ = 0;                         // of the next entry
  ReadStatus archive_status_ = ReadStatus::kOk;   // anything else: no more entries
  ReadStatus content_status_ = ReadStatus::kEnd;  // anything but kOk: no more content
  bool encrypted_ = false;
  std::optional<std::uint64_t> size_;  // as declared
  std::uint64_t given_ = 0;
  std::uint64_t zeros_ = 0;  // to be given before `block_`
  std::string_view block_;
};

bool LibarchiveReader::Open() {
  const platform::Utf8Locale utf8;
  if (library_ == nullptr || SupportFormat(library_, format_) < ARCHIVE_WARN) {
    reason_ = why::kLibraryNotSetUp;
    return false;
  }
  archive_read_set_passphrase_callback(library_, this, &NextPassword);
  source_.Attach(library_);
  if (archive_read_open1(library_) >= ARCHIVE_WARN) return true;
  FailByLibrary(true);
  return false;
}

const char* LibarchiveReader::NextPassword(archive*, void* self) {
  auto* reader = static_cast<LibarchiveReader*>(self);
  // It asks again when that one was wrong, and is to be content then.
  if (reader->password_) return nullptr;
  reader->password_ = reader->options_.password();
  return reader->password_ ? reader->password_->c_str() : nullptr;
}

Entry LibarchiveReader::Convert(archive_entry* raw) const {
  const auto decode = [this](const std::string& bytes) {
    return DecodeName(bytes, format_ == LibarchiveFormat::kSevenZip, options_.charset);
  };
  Entry entry;
  entry.kind = KindOf(raw);
  entry.path = decode(PathnameOf(raw));
  if (entry.kind == EntryKind::kFolder && !entry.path.ends_with('/')) entry.path += '/';
  if (entry.kind == EntryKind::kLink) entry.link_target = decode(LinkTargetOf(raw));
  if (entry.kind == EntryKind::kFile) {
    if (archive_entry_size_is_set(raw)) entry.size = static_cast<std::uint64_t>(archive_entry_size(raw));
    // Where the system that made the archive has no such modes the library sets none of these bits.
    entry.attributes.executable = (archive_entry_perm(raw) & 0111) != 0;
  }
  if (archive_entry_mtime_is_set(raw)) {
    entry.attributes.write_time = {archive_entry_mtime(raw),
                                   static_cast<std::int32_t>(archive_entry_mtime_nsec(raw))};
  }
  entry.encrypted = archive_entry_is_encrypted(raw) != 0;
  return entry;
}

ReadStatus LibarchiveReader::NextEntry(Entry* entry) {
  const platform::Utf8Locale utf8;
  content_status_ = ReadStatus::kEnd;
  while (archive_status_ == ReadStatus::kOk) {
    archive_entry* raw = nullptr;
    ForgetErrors();
    const int code = archive_read_next_header(library_, &raw);
    if (code == ARCHIVE_EOF) {
      archive_status_ = ReadStatus::kEnd;
    } else if (code != ARCHIVE_OK && code != ARCHIVE_WARN) {
      archive_status_ = FailByLibrary(index_ == 0);
    } else {
      ForgetErrors();
      *entry = Convert(raw);
      const std::size_t index = index_++;
      if (describe_ && !describe_(index, entry)) continue;
      encrypted_ = entry->encrypted;
      size_ = entry->size;
      given_ = zeros_ = 0;
      block_ = {};
      content_status_ = entry->kind == EntryKind::kFile ? ReadStatus::kOk : ReadStatus::kEnd;
      return ReadStatus::kOk;
    }
  }
  return archive_status_;
}

ReadStatus LibarchiveReader::ReadContent(std::string_view* piece) {
  if (content_status_ == ReadStatus::kOk && zeros_ == 0 && block_.empty()) content_status_ = NextBlock();
  return content_status_ == ReadStatus::kOk ? TakePiece(piece) : content_status_;
}

// Sets `zeros_` and `block_`, or answers why there are none.
ReadStatus LibarchiveReader::NextBlock() {
  const platform::Utf8Locale utf8;
  for (int turn = 0; turn < kMostIdleTurns; ++turn) {
    const void* data = nullptr;
    std::size_t size = 0;
    la_int64_t offset = 0;
    const int code = archive_read_data_block(library_, &data, &size, &offset);
    if (code == ARCHIVE_EOF) {
      if (!size_ || given_ == *size_) return ReadStatus::kEnd;
      return Fail(ReadStatus::kFailed, why::kFewerBytes(given_, *size_));
    }
    if (code != ARCHIVE_OK) {
      const ReadStatus status = FailByLibrary(given_ == 0);
      if (code == ARCHIVE_FATAL) archive_status_ = status;
      return status;
    }
    if (size == 0) continue;
    const auto position = static_cast<std::uint64_t>(offset);
    // Holes are zeros; one of which the end is not known could be any number of them.
    if (position < given_ || (position > given_ && !size_)) {
      return Fail(ReadStatus::kFailed, why::kPiecesOutOfOrder);
    }
    if (size_ && (position > *size_ || size > *size_ - position)) {
      return Fail(ReadStatus::kFailed, why::kMoreBytes(*size_));
    }
    zeros_ = position - given_;
    block_ = {static_cast<const char*>(data), size};
    return ReadStatus::kOk;
  }
  archive_status_ = Fail(ReadStatus::kFailed, why::kDataInCircles);
  return archive_status_;
}

ReadStatus LibarchiveReader::TakePiece(std::string_view* piece) {
  if (zeros_ > 0) {
    static const std::string hole(64U << 10, '\0');
    *piece = std::string_view(hole).substr(
        0, static_cast<std::size_t>(std::min<std::uint64_t>(zeros_, hole.size())));
    zeros_ -= piece->size();
  } else {
    *piece = block_.substr(0, kLargestPiece);
    block_.remove_prefix(piece->size());
  }
  given_ += piece->size();
  return ReadStatus::kOk;
}

ReadStatus LibarchiveReader::Fail(ReadStatus status, Reason reason) {
  reason_ = std::move(reason);
  return status;
}

// The library tells kinds of failure by its words only. One that comes before anything was given may mean
// that another library knows better.
ReadStatus LibarchiveReader::FailByLibrary(bool nothing_given) {
  const char* words = library_ == nullptr ? nullptr : archive_error_string(library_);
  std::string text = words == nullptr ? "" : words;
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  while (text.ends_with('.') || text.ends_with(' ')) text.pop_back();
  if (ContainsAny(text, {"assphrase"})) {
    const bool was_wrong = ContainsAny(text, {"ncorrect"});
    return Fail(ReadStatus::kPassword, was_wrong ? why::kWrongPassword : why::kNoPassword);
  }
  if (ContainsAny(text, {"runcated"})) return Fail(ReadStatus::kFailed, why::kCutOff);
  if (ContainsAny(text, {"memory", "allocate"})) return Fail(ReadStatus::kFailed, why::kNotEnoughMemory);
  if (ContainsAny(text, {"crypt", "Crypto"}))
    return Fail(ReadStatus::kUnsupported, why::kUnknownEncryption(text));
  if (ContainsAny(text, {"nsupported", "not supported", "No support", "unavailable", "Unknown codec",
                         "Unexpected codec", "unknown unpacked size", "Invalid options"}))
    return Fail(ReadStatus::kUnsupported, why::kUnsupportedInWords(text));
  const Reason damage = text.empty() ? Reason(why::kUnreadable) : why::kDamagedInWords(text);
  if (encrypted_ && content_status_ == ReadStatus::kOk)
    return Fail(ReadStatus::kPassword, why::kWrongPasswordOrDamaged(damage));
  return Fail(nothing_given ? ReadStatus::kUnsupported : ReadStatus::kFailed, damage);
}

}  // namespace

std::string LibarchiveVersion() {
  return archive_version_string();
}

std::unique_ptr<EntryReader> OpenLibarchive(const ArchiveInput& input, const ReaderOptions& options,
                                            LibarchiveFormat format, DescribeEntry describe, Reason* reason,
                                            Ending ending) {
  auto reader =
      std::make_unique<LibarchiveReader>(input, options, format, std::move(describe), std::move(ending));
  if (reader->Open()) return reader;
  *reason = reader->Problem();
  return nullptr;
}

}  // namespace quendle::modules
