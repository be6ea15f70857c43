#include "archive/modules/sevenzip/sevenzip_reader.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "archive/modules/common/entry_times.h"
#include "archive/modules/common/sevenzip_archive.h"
#include "archive/modules/sevenzip/sevenzip_blocks.h"
#include "archive/modules/sevenzip/sevenzip_list.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kLongestTarget = 4096;

// The kind that the attributes tell: those of Windows in the lower half, of Unix in the upper one when bit 15 says so.
void SetKind(std::uint32_t attributes, Entry* entry) {
  constexpr std::uint32_t kReparsePoint = 0x400;
  constexpr std::uint32_t kHasMode = 0x8000;
  const std::uint32_t mode = (attributes & kHasMode) != 0 ? attributes >> 16U : 0;
  switch (mode & 0170000U) {
    case 0:
      // What such a point leads to is told in a form of Windows' own.
      if ((attributes & kReparsePoint) != 0) entry->kind = EntryKind::kOther;
      break;
    case 0040000:
      entry->kind = EntryKind::kFolder;
      break;
    case 0120000:
      entry->kind = EntryKind::kLink;
      break;
    case 0020000:  // devices and sockets
    case 0060000:
    case 0140000:
      entry->kind = EntryKind::kOther;
      break;
    default:  // also a pipe: what a packer has read from one is the content of a file
      break;
  }
  entry->attributes.executable = entry->kind == EntryKind::kFile && (mode & 0111U) != 0;
}

// What was packed from a stream has no name, and goes by that of the archive.
//   "/a/notes.txt.7z" => "notes.txt"    "a.7z.001" => "a"
std::string NameOfArchive(const std::string& path) {
  std::string name = path.substr(path.find_last_of("/\\") + 1);
  if (name.ends_with(".001")) name.resize(name.size() - 4);
  return name.substr(0, std::max<std::size_t>(name.rfind('.'), 1));
}

class SevenZipReader final : public ArchiveReader, private SevenZipReceiver {
 public:
  SevenZipReader(const ArchiveInput& input, SevenZipBytes bytes, const ReaderOptions& options)
      : input_(input),
        archive_(std::move(bytes), options.password),
        name_of_archive_(NameOfArchive(input.Path())),
        password_(options.password) {}

  // `checked` is what CheckSevenZipList has said.
  void Open(ReadStatus checked, Reason reason);
  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus Unpack(EntrySink* sink) override;
  const Reason& Problem() const override { return reason_; }

 private:
  Entry At(std::uint32_t index) const;
  bool Choose(SevenZipBlocks* blocks);
  bool UnpackChosen(SevenZipBlocks* blocks);
  bool Stream();
  bool GiveUnpacked(std::uint32_t index, ContentBuffer content);
  bool BeginBefore(std::uint32_t index);
  bool BeginEntry(Entry entry);
  bool EndLink(sevenzip::ExtractResult result);

  bool Begin(std::uint32_t index) override;
  bool Write(std::string_view piece) override;
  bool End(std::uint32_t index, sevenzip::ExtractResult result) override;
  bool GoesOn() override { return sink_->GoesOn(); }

  const ArchiveInput& input_;
  SevenZipArchive archive_;
  std::string name_of_archive_;
  std::function<std::optional<std::string>()> password_;
  ReadStatus end_ = ReadStatus::kEnd;  // how the entries end
  Reason reason_;
  std::uint32_t next_ = 0;  // the entry that is listed, or begun, next

  EntrySink* sink_ = nullptr;
  std::vector<bool> wanted_;             // beside the entries
  std::vector<std::uint32_t> unpacked_;  // of those: that the library is to unpack
  std::vector<std::uint32_t> streamed_;  // of these: that come next, and are streamed
  bool is_locked_ = false;               // there is no password
  bool password_fits_ = false;           // something encrypted was right
  Entry entry_;                          // at hand
  std::string target_;                   // of it, when it is a link
  EntrySink::Wish wish_ = EntrySink::Wish::kMore;
};

void SevenZipReader::Open(ReadStatus checked, Reason reason) {
  end_ = checked;
  reason_ = std::move(reason);
  if (end_ == ReadStatus::kOk) end_ = archive_.Open(sevenzip::kSevenZipFormat, &reason_);
  if (end_ == ReadStatus::kOk) end_ = ReadStatus::kEnd;
}

Entry SevenZipReader::At(std::uint32_t index) const {
  Entry entry;
  entry.path = archive_.Text(index, sevenzip::kPath);
  if (entry.path.empty()) entry.path = name_of_archive_;
  std::replace(entry.path.begin(), entry.path.end(), '\\', '/');
  const std::uint64_t size = archive_.Number(index, sevenzip::kSize).value_or(0);
  SetKind(static_cast<std::uint32_t>(archive_.Number(index, sevenzip::kAttributes).value_or(0)), &entry);
  // Each question takes its time, and neither of the two has content.
  if (size == 0 && archive_.Number(index, sevenzip::kIsAnti).value_or(0) != 0) entry.kind = EntryKind::kOther;
  if (size == 0 && archive_.Number(index, sevenzip::kIsFolder).value_or(0) != 0)
    entry.kind = EntryKind::kFolder;
  if (entry.kind == EntryKind::kFolder && !entry.path.ends_with('/')) entry.path += '/';
  if (entry.kind == EntryKind::kFile) entry.size = size;
  entry.encrypted = archive_.Number(index, sevenzip::kIsEncrypted).value_or(0) != 0;
  if (const auto time = archive_.Number(index, sevenzip::kWriteTime))
    entry.attributes.write_time = TimeFromNtfs(*time);
  return entry;
}

ReadStatus SevenZipReader::NextEntry(Entry* entry) {
  if (next_ == archive_.Count()) return end_;
  *entry = At(next_);
  entry->packed_size = archive_.Number(next_, sevenzip::kPackedSize).value_or(0);
  entry->crc = static_cast<std::uint32_t>(archive_.Number(next_, sevenzip::kCrc).value_or(0));
  ++next_;
  return ReadStatus::kOk;
}

ReadStatus SevenZipReader::Unpack(EntrySink* sink) {
  sink_ = sink;
  SevenZipBlocks blocks(input_, archive_);
  if (Choose(&blocks) && UnpackChosen(&blocks)) BeginBefore(archive_.Count());
  return end_;
}

bool SevenZipReader::UnpackChosen(SevenZipBlocks* blocks) {
  blocks->Start([this] { return sink_->GoesOn(); });
  for (const std::uint32_t index : unpacked_) {
    if (blocks->BeginsAt(index) && !Stream()) return false;
    std::optional<ContentBuffer> content = blocks->Take(index);
    if (!content) {
      streamed_.push_back(index);
    } else if (!GiveUnpacked(index, *std::move(content))) {
      return false;
    }
  }
  return Stream();
}

// False when it ended before the last.
bool SevenZipReader::Stream() {
  if (streamed_.empty()) return true;
  const std::optional<Reason> failure = archive_.Extract(std::exchange(streamed_, {}), this);
  if (!failure) return true;
  reason_ = *failure;
  end_ = ReadStatus::kFailed;
  return false;
}

bool SevenZipReader::GiveUnpacked(std::uint32_t index, ContentBuffer content) {
  if (!BeginBefore(index)) return false;
  next_ = index + 1;
  entry_ = At(index);
  if (entry_.kind != EntryKind::kLink) return GiveWhole(std::move(entry_), std::move(content), sink_);
  target_ = content.View().substr(0, kLongestTarget);
  return EndLink(sevenzip::ExtractResult::kWhole);
}

// Finds out what the library is to unpack. Links are always read, as their targets belong to them.
bool SevenZipReader::Choose(SevenZipBlocks* blocks) {
  for (std::uint32_t index = 0; index < archive_.Count() && sink_->GoesOn(); ++index) {
    const Entry entry = At(index);
    wanted_.push_back(sink_->Wants(entry));
    const bool is_read = entry.kind == EntryKind::kLink ||
                         (entry.kind == EntryKind::kFile && wanted_.back() && entry.size != 0U);
    if (is_read && entry.encrypted && !is_locked_) is_locked_ = !password_().has_value();
    const bool is_unpacked = is_read && !(entry.encrypted && is_locked_);
    if (is_unpacked) unpacked_.push_back(index);
    blocks->Add(index, is_unpacked);
  }
  return sink_->GoesOn();
}

// The entries that the library was not given, or passes over, are given in their places among the others.
bool SevenZipReader::BeginBefore(std::uint32_t index) {
  while (next_ < index) {
    const std::uint32_t passed = next_++;
    const bool is_wanted = wanted_[passed];
    const Entry entry = At(passed);
    if (!sink_->Begin(entry, is_wanted)) return false;
    const bool is_empty = entry.kind != EntryKind::kFile || entry.size == 0U;
    if (is_wanted && !(is_empty                        ? sink_->End(ReadStatus::kEnd, {})
                       : entry.encrypted && is_locked_ ? sink_->End(ReadStatus::kPassword, why::kNoPassword)
                                                       : sink_->End(ReadStatus::kFailed, why::kPassedOver)))
      return false;
  }
  return true;
}

bool SevenZipReader::Begin(std::uint32_t index) {
  if (!BeginBefore(index)) return false;
  next_ = index + 1;
  entry_ = At(index);
  target_.clear();
  wish_ = EntrySink::Wish::kMore;
  return entry_.kind == EntryKind::kLink || sink_->Begin(entry_, true);
}

bool SevenZipReader::Write(std::string_view piece) {
  if (entry_.kind == EntryKind::kLink) {
    target_ += piece.substr(0, kLongestTarget - std::min(target_.size(), kLongestTarget));
  } else if (wish_ == EntrySink::Wish::kMore) {
    wish_ = sink_->Content(piece);
  }
  return wish_ != EntrySink::Wish::kStop;
}

bool SevenZipReader::End(std::uint32_t index, sevenzip::ExtractResult result) {
  if (entry_.kind == EntryKind::kLink) return EndLink(result);
  if (wish_ != EntrySink::Wish::kMore) return true;
  Reason reason;
  const bool is_whole = result == sevenzip::ExtractResult::kWhole;
  const std::string method = is_whole ? "" : archive_.Text(index, sevenzip::kMethod);
  const ReadStatus status = StatusOf(result, method, entry_.encrypted && !password_fits_, &reason);
  if (status == ReadStatus::kEnd && entry_.encrypted) password_fits_ = true;
  return sink_->End(status, reason);
}

// Without its target a link is refused.
bool SevenZipReader::EndLink(sevenzip::ExtractResult result) {
  if (result == sevenzip::ExtractResult::kWhole) entry_.link_target = std::exchange(target_, {});
  return sink_->Begin(std::move(entry_), false);
}

}  // namespace

std::unique_ptr<ArchiveReader> OpenSevenZip(const ArchiveInput& input, const ReaderOptions& options,
                                            Reason* reason) {
  if (SevenZipLibrary::Get(reason) == nullptr) return nullptr;
  SevenZipBytes bytes = BytesOf(input);
  Reason problem;
  const ReadStatus checked = CheckSevenZipList(input, options.password, &bytes, &problem);
  auto reader = std::make_unique<SevenZipReader>(input, std::move(bytes), options);
  reader->Open(checked, std::move(problem));
  return reader;
}

}  // namespace quendle::modules
