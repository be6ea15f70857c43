#include "archive/modules/rar/rar_reader.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "archive/modules/common/content_pool.h"
#include "archive/modules/common/entry_names.h"
#include "archive/modules/rar/rar_content.h"
#include "archive/modules/rar/rar_copies.h"
#include "archive/modules/rar/rar_headers.h"
#include "archive/modules/rar/rar_volumes.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kLongestTarget = 4096;

// Which files have to be unpacked for the sake of wanted ones that go on with them.
std::vector<bool> NeededLater(const std::vector<RarFile>& files, const std::vector<bool>& wanted) {
  std::vector<bool> needed(files.size(), false);
  bool is_pending = false;
  for (std::size_t i = files.size(); i-- > 0;) {
    if (!files[i].IsPacked()) continue;
    needed[i] = is_pending;
    if (is_pending || wanted[i]) is_pending = files[i].is_solid;
  }
  return needed;
}

// Windows of this size may be in each worker.
constexpr std::uint64_t kMostPooled = 16U << 20;

// Is it unpacked by itself, without a password, and small enough for memory?
bool IsForPool(const RarFile& file) {
  const bool is_alone = !file.is_solid && !file.continued && !file.continues && !file.source;
  return is_alone && file.kind == EntryKind::kFile && !file.encryption && file.size &&
         *file.size <= kMostPooled && file.packing != RarPacking::kUnknown &&
         file.packing != RarPacking::kStored;
}

class RarWorker final : public ContentPool::Worker {
 public:
  RarWorker(const ArchiveInput& input, const std::vector<RarFile>& files, EntrySink* sink)
      : files_(files),
        sink_(*sink),
        keys_([] { return std::nullopt; }, [] { return true; }),
        content_(input, &keys_) {}

  std::optional<ContentBuffer> Unpack(std::size_t entry) override {
    const RarFile& file = files_[entry];
    ContentBuffer whole(static_cast<std::size_t>(*file.size));
    std::size_t size = 0;
    content_.Begin(file);
    std::string_view piece;
    while (content_.Read(&piece) == ReadStatus::kOk) {
      if (piece.size() > whole.View().size() - size || !sink_.GoesOn()) return std::nullopt;
      size += piece.copy(whole.Data() + size, piece.size());
    }
    if (content_.Status() != ReadStatus::kEnd || size < whole.View().size()) return std::nullopt;
    return whole;
  }

 private:
  const std::vector<RarFile>& files_;
  EntrySink& sink_;
  RarKeys keys_;
  RarContent content_;
};

class RarReader final : public ArchiveReader {
 public:
  RarReader(const ArchiveInput& input, const ReaderOptions& options);

  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus Unpack(EntrySink* sink) override;
  const Reason& Problem() const override { return archive_.problem; }

 private:
  bool GoesOn() const { return InterruptibleReads::GoOn() && (sink_ == nullptr || sink_->GoesOn()); }
  Entry EntryOf(std::size_t index) const;
  std::optional<std::string> ReadTarget(const RarFile& file);
  void ChooseWayToKey(EntrySink* sink);
  bool UnpackEntry(std::size_t index, bool is_wanted, bool is_needed_later, EntrySink* sink);
  bool GiveLink(const RarFile& file, Entry entry, EntrySink* sink);

  const ArchiveInput& input_;
  const std::string charset_;
  EntrySink* sink_ = nullptr;
  RarKeys keys_;
  RarArchive archive_;
  RarContent content_;
  RarCopies copies_;
  std::size_t next_ = 0;  // of the list
};

RarReader::RarReader(const ArchiveInput& input, const ReaderOptions& options)
    : input_(input),
      charset_(options.charset),
      keys_(options.password, [this] { return GoesOn(); }),
      archive_(ReadRarArchive(input, &keys_)),
      content_(input, &keys_),
      copies_(input, &keys_, archive_.files) {
  if (!archive_.problem.empty() || !archive_.has_next) return;
  archive_.problem = MissingVolume(input);
  archive_.status = ReadStatus::kFailed;
}

Entry RarReader::EntryOf(std::size_t index) const {
  Entry entry = ToEntry(archive_.files[index], charset_);
  if (const RarFile* source = copies_.SourceOf(index)) {
    entry.size = source->size;
    entry.crc = source->crc.value_or(0);
    entry.encrypted = source->encryption.has_value();
  }
  return entry;
}

// Of a link whose target is its content.
std::optional<std::string> RarReader::ReadTarget(const RarFile& file) {
  std::string target;
  content_.Begin(file);
  std::string_view piece;
  ReadStatus status = ReadStatus::kOk;
  while (target.size() <= kLongestTarget && (status = content_.Read(&piece)) == ReadStatus::kOk)
    target += piece;
  return status == ReadStatus::kEnd ? std::optional(DecodeName(target, file.is_unicode, charset_))
                                    : std::nullopt;
}

ReadStatus RarReader::NextEntry(Entry* entry) {
  if (next_ == archive_.files.size()) return archive_.status;
  const std::size_t index = copies_.Order()[next_++];
  const RarFile& file = archive_.files[index];
  *entry = EntryOf(index);
  // Lists are made without passwords, and without unpacking other files.
  const bool is_readable = !file.encryption && !(file.IsPacked() && file.is_solid);
  if (file.kind == EntryKind::kLink && entry->link_target.empty() && is_readable)
    entry->link_target = ReadTarget(file).value_or("");
  return ReadStatus::kOk;
}

// Of two ways to the key of a long password only what comes out of one tells which it is. So the first file is unpacked
// for that alone.
void RarReader::ChooseWayToKey(EntrySink* sink) {
  for (const RarFile& file : archive_.files) {
    if (!file.encryption || file.is_solid || file.continued || file.continues) continue;
    if (keys_.IsProven(*file.encryption) || !keys_.HasOtherWay(*file.encryption)) return;
    RarContent content(input_, &keys_);
    content.PassOver(file, sink);
    if (!content.Problem().empty()) keys_.TakeOtherWay();
    return;
  }
}

// Files that need no others are unpacked on all cores.
ReadStatus RarReader::Unpack(EntrySink* sink) {
  sink_ = sink;
  const std::vector<RarFile>& files = archive_.files;
  std::vector<bool> wanted(files.size(), false);
  for (const std::size_t index : copies_.Order()) wanted[index] = sink->Wants(EntryOf(index));
  const std::vector<bool> needed_later = NeededLater(files, wanted);
  std::vector<ContentPool::Job> jobs;
  for (const std::size_t index : copies_.Order()) {
    if (wanted[index] && !needed_later[index] && IsForPool(files[index]))
      jobs.push_back({index, static_cast<std::size_t>(*files[index].size)});
  }
  ChooseWayToKey(sink);
  ContentPool pool(std::move(jobs), [&] { return std::make_unique<RarWorker>(input_, files, sink); });
  for (const std::size_t index : copies_.Order()) {
    if (!sink->GoesOn()) return ReadStatus::kEnd;
    std::optional<ContentBuffer> content = pool.Take(index);
    const bool goes_on = content ? GiveWhole(EntryOf(index), *std::move(content), sink)
                                 : UnpackEntry(index, wanted[index], needed_later[index], sink);
    if (!goes_on) return ReadStatus::kEnd;
  }
  return archive_.status;
}

bool RarReader::UnpackEntry(std::size_t index, bool is_wanted, bool is_needed_later, EntrySink* sink) {
  const RarFile& file = archive_.files[index];
  Entry entry = EntryOf(index);
  if (!is_wanted) {
    if (!sink->Begin(std::move(entry), false)) return false;
    if (is_needed_later) content_.PassOver(file, sink);
    return true;
  }
  if (file.source) return copies_.Give(index, std::move(entry), sink);
  if (file.kind == EntryKind::kLink) return GiveLink(file, std::move(entry), sink);
  return content_.Give(file, std::move(entry), is_needed_later, sink);
}

// One whose target cannot be had is given as a file that cannot be read, so that the reason is heard.
bool RarReader::GiveLink(const RarFile& file, Entry entry, EntrySink* sink) {
  if (entry.link_target.empty()) {
    const auto target = ReadTarget(file);
    entry.link_target = target.value_or("");
    if (!target) entry.kind = EntryKind::kFile;
  }
  const bool is_link = entry.kind == EntryKind::kLink;
  if (!sink->Begin(std::move(entry), true)) return false;
  if (is_link) return sink->End(ReadStatus::kEnd, {});
  return sink->End(content_.Status(), content_.Problem());
}

}  // namespace

std::unique_ptr<ArchiveReader> OpenRar(const ArchiveInput& input, const ReaderOptions& options,
                                       Reason* /*reason*/) {
  return std::make_unique<RarReader>(input, options);
}

}  // namespace quendle::modules
