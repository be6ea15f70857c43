#include "archive/modules/zip/zip_sevenzip.h"

#include <algorithm>
#include <utility>

#include "archive/modules/common/sevenzip_archive.h"
#include "archive/modules/common/sevenzip_places.h"
#include "archive/modules/zip/zip_directory.h"
#include "archive/modules/zip/zip_headers.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kLongestTarget = 4096;

// One entry as an archive: a local header, its content where that is in the input, a directory and an end.
class OneEntry {
 public:
  OneEntry(const ArchiveInput& input, std::uint64_t content, const ZipEntry& zip)
      : input_(input), content_(content), packed_size_(zip.packed_size) {
    ZipHeaderForm form;
    form.name = "a";
    form.attributes = 0100644U << 16U;
    form.flags = Flags(zip);
    form.extra = Extra(zip);
    AppendLocalHeader(zip, form, &head_);
    AppendDirectoryHeader(zip, form, &tail_);
    AppendZipEnd(head_.size() + packed_size_, 1, 0, &tail_);
  }

  // Valid as long as this.
  SevenZipBytes Bytes() const {
    return {head_.size() + packed_size_ + tail_.size(),
            [this](std::uint64_t position, void* buffer, std::size_t size, std::size_t* got) {
              return ReadAt(position, static_cast<char*>(buffer), size, got);
            }};
  }

 private:
  // Without the ones that say how the name is encoded and what is masked. That sizes stand behind the content says
  // which of the numbers a password is checked by.
  static std::uint16_t Flags(const ZipEntry& zip) {
    constexpr unsigned kDescriptor = 1U << 3;
    constexpr unsigned kKept = 1U << 0 | 1U << 1 | 1U << 2 | 1U << 6;
    return static_cast<std::uint16_t>(zip.flags & (zip.IsEncrypted() ? kKept | kDescriptor : kKept));
  }

  static std::string Extra(const ZipEntry& zip) {
    std::string extra = zip.strong_encryption;
    if (zip.packed_method == kZipAes) {
      const auto low = [](unsigned value) { return static_cast<char>(value & 0xFFU); };
      const auto high = [](unsigned value) { return static_cast<char>(value >> 8U); };
      extra.append("\x01\x99\x07").append(1, '\0');
      extra.append({low(zip.aes_version), high(zip.aes_version), 'A', 'E', low(zip.aes_strength),
                    low(zip.method), high(zip.method)});
    }
    return extra;
  }

  platform::Result ReadAt(std::uint64_t position, char* buffer, std::size_t size, std::size_t* got) const {
    *got = 0;
    if (position < head_.size()) {
      *got = head_.copy(buffer, size, static_cast<std::size_t>(position));
      return platform::Success();
    }
    position -= head_.size();
    if (position < packed_size_) {
      return input_.ReadAt(content_ + position, buffer,
                           static_cast<std::size_t>(std::min<std::uint64_t>(size, packed_size_ - position)),
                           got);
    }
    position -= packed_size_;
    if (position < tail_.size()) *got = tail_.copy(buffer, size, static_cast<std::size_t>(position));
    return platform::Success();
  }

  const ArchiveInput& input_;
  std::uint64_t content_;
  std::uint64_t packed_size_;
  std::string head_;
  std::string tail_;
};

class ZipSevenZipReader final : public ArchiveReader, private SevenZipReceiver {
 public:
  ZipSevenZipReader(const ArchiveInput& input, ReaderOptions options, ZipDirectory directory)
      : input_(input), options_(std::move(options)), directory_(std::move(directory)) {}

  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus Unpack(EntrySink* sink) override;
  const Reason& Problem() const override { return reason_; }

 private:
  ReadStatus AtEnd();
  bool Give(const ZipEntry& zip);
  ReadStatus Read(const ZipEntry& zip);
  std::optional<std::string> Password() const;

  bool Begin(std::uint32_t) override { return true; }
  bool Write(std::string_view piece) override;
  bool End(std::uint32_t index, sevenzip::ExtractResult result) override;
  bool GoesOn() override { return sink_->GoesOn(); }

  const ArchiveInput& input_;
  ReaderOptions options_;
  ZipDirectory directory_;
  std::size_t next_ = 0;  // the entry that is listed next
  Reason reason_;

  EntrySink* sink_ = nullptr;
  const ZipEntry* current_ = nullptr;
  std::string* target_ = nullptr;  // of the current one, when it is a link
  EntrySink::Wish wish_ = EntrySink::Wish::kMore;
  ReadStatus ended_ = ReadStatus::kOk;  // how the current content ended
};

ReadStatus ZipSevenZipReader::AtEnd() {
  if (directory_.problem.empty()) return ReadStatus::kEnd;
  reason_ = directory_.problem;
  return ReadStatus::kFailed;
}

ReadStatus ZipSevenZipReader::NextEntry(Entry* entry) {
  if (next_ == directory_.entries.size()) return AtEnd();
  *entry = ToEntry(directory_.entries[next_++], options_.charset);
  return ReadStatus::kOk;
}

ReadStatus ZipSevenZipReader::Unpack(EntrySink* sink) {
  sink_ = sink;
  for (const ZipEntry& zip : directory_.entries) {
    if (!Give(zip)) return ReadStatus::kEnd;
  }
  return AtEnd();
}

bool ZipSevenZipReader::Give(const ZipEntry& zip) {
  Entry entry = ToEntry(zip, options_.charset);
  const bool is_wanted = sink_->Wants(entry);
  wish_ = EntrySink::Wish::kMore;
  if (entry.kind != EntryKind::kFile || !is_wanted) {
    target_ = &entry.link_target;
    // Without a target the link is refused.
    if (entry.kind == EntryKind::kLink && is_wanted && Read(zip) != ReadStatus::kEnd)
      entry.link_target.clear();
    return sink_->Begin(std::move(entry), is_wanted) && (!is_wanted || sink_->End(ReadStatus::kEnd, {}));
  }
  target_ = nullptr;
  if (!sink_->Begin(std::move(entry), true)) return false;
  const ReadStatus status = Read(zip);
  if (wish_ != EntrySink::Wish::kMore) return wish_ == EntrySink::Wish::kSkip;
  return sink_->End(status, status == ReadStatus::kEnd ? Reason() : reason_);
}

// kEnd when all of it was given.
ReadStatus ZipSevenZipReader::Read(const ZipEntry& zip) {
  std::uint64_t content = 0;
  const platform::Result header = CheckLocalHeader(input_, zip, &content);
  if (!header.ok()) {
    reason_ = header.reason;
    return ReadStatus::kFailed;
  }
  if (zip.IsEncrypted() && !Password()) {
    reason_ = why::kNoPassword;
    return ReadStatus::kPassword;
  }
  const OneEntry one(input_, content, zip);
  SevenZipArchive archive(one.Bytes(), [this] { return Password(); });
  ReadStatus status = archive.Open(sevenzip::kZipFormat, &reason_);
  if (status != ReadStatus::kOk) return status;
  current_ = &zip;
  ended_ = ReadStatus::kOk;
  const std::optional<Reason> failure = archive.Extract({0}, this);
  if (ended_ != ReadStatus::kOk) return ended_;
  reason_ = failure.value_or(why::kPassedOver);
  return ReadStatus::kFailed;
}

std::optional<std::string> ZipSevenZipReader::Password() const {
  const auto bytes = options_.password();
  return bytes ? std::optional(SevenZipPassword(*bytes)) : std::nullopt;
}

bool ZipSevenZipReader::Write(std::string_view piece) {
  if (target_ != nullptr) {
    target_->append(piece.substr(0, kLongestTarget - std::min(target_->size(), kLongestTarget)));
    return true;
  }
  wish_ = sink_->Content(piece);
  return wish_ == EntrySink::Wish::kMore;
}

bool ZipSevenZipReader::End(std::uint32_t, sevenzip::ExtractResult result) {
  ended_ = StatusOf(result, ZipMethodName(current_->method), current_->IsEncrypted(), &reason_);
  return true;
}

}  // namespace

std::unique_ptr<ArchiveReader> OpenZipBySevenZip(const ArchiveInput& input, const ReaderOptions& options,
                                                 Reason* reason) {
  if (SevenZipLibrary::Get(reason) == nullptr) return nullptr;
  ZipDirectory directory;
  const platform::Result result = ReadZipDirectory(input, &directory);
  if (result.ok()) return std::make_unique<ZipSevenZipReader>(input, options, std::move(directory));
  *reason = result.reason;
  return nullptr;
}

}  // namespace quendle::modules
