#include "archive/modules/zip/zip_reader.h"

#include <algorithm>
#include <utility>

#include "archive/modules/common/libarchive_reader.h"
#include "archive/modules/zip/zip_headers.h"
#include "archive/modules/zip/zip_unpacker.h"

namespace quendle::modules {
namespace {

// The library gives up an archive when one entry is damaged, and is opened anew behind that. How many entries
// it sees at a time bounds what that costs.
constexpr std::size_t kBatch = 256;

// Mode bits by which the library tells the kinds apart. It is to see links, of which it reads the target.
ZipHeaderForm FormOf(const ZipEntry& zip, const Entry& entry) {
  ZipHeaderForm form;  // without a name, which the library takes from the local header
  form.flags = zip.flags;
  form.attributes = (entry.kind == EntryKind::kLink ? 0120777U : 0100644U) << 16U;
  form.position = zip.position;
  return form;
}

// What the library takes for damaged, or for a wrong password, without knowing it; nothing for all else.
std::optional<Reason> WhyNotRead(const ZipEntry& zip) {
  constexpr std::uint16_t kStore = 0;
  constexpr std::uint16_t kDeflate = 8;
  if (!zip.IsEncrypted()) return std::nullopt;
  if (zip.IsStronglyEncrypted()) return why::kUnknownEncryption("strong encryption");
  if (zip.method == kStore || zip.method == kDeflate) return std::nullopt;
  return why::kUnsupportedMethod(ZipMethodName(zip.method));
}

class ZipReader final : public EntryReader {
 public:
  ZipReader(const ArchiveInput& input, ReaderOptions options, ZipDirectory directory)
      : input_(input), options_(std::move(options)), directory_(std::move(directory)) {}

  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus ReadContent(std::string_view* piece) override;
  ReadStatus Unpack(EntrySink* sink) override;
  const Reason& Problem() const override { return reason_; }

 private:
  const ZipEntry& Current() const { return directory_.entries[next_ - 1]; }
  bool OpenBatch(std::size_t first);
  ReadStatus GoToCurrent();
  ReadStatus CheckLocalCrc();
  ReadStatus Fail(ReadStatus status, Reason reason);

  const ArchiveInput& input_;
  ReaderOptions options_;
  ZipDirectory directory_;
  std::size_t next_ = 0;

  std::unique_ptr<EntryReader> library_;
  std::size_t library_next_ = 0;  // the entry that it goes to next
  std::size_t library_end_ = 0;   // behind the last one that it sees
  std::string link_target_;       // of the entry that it went to last
  ReadStatus content_status_ = ReadStatus::kEnd;
  Reason reason_;
};

ReadStatus ZipReader::Fail(ReadStatus status, Reason reason) {
  reason_ = std::move(reason);
  return status;
}

ReadStatus ZipReader::NextEntry(Entry* entry) {
  content_status_ = ReadStatus::kEnd;
  if (next_ == directory_.entries.size()) {
    return directory_.problem.empty() ? ReadStatus::kEnd : Fail(ReadStatus::kFailed, directory_.problem);
  }
  ++next_;
  *entry = ToEntry(Current(), options_.charset);
  if (entry->kind == EntryKind::kFile) content_status_ = ReadStatus::kOk;
  // An encrypted target would be read as it is. Without one the link is refused.
  if (entry->kind == EntryKind::kLink && !entry->encrypted && GoToCurrent() == ReadStatus::kOk) {
    entry->link_target = link_target_;
  }
  return ReadStatus::kOk;
}

ReadStatus ZipReader::ReadContent(std::string_view* piece) {
  if (content_status_ == ReadStatus::kOk && library_next_ != next_) content_status_ = GoToCurrent();
  if (content_status_ != ReadStatus::kOk) return content_status_;
  content_status_ = library_->ReadContent(piece);
  if (content_status_ == ReadStatus::kEnd) {
    content_status_ = CheckLocalCrc();
  } else if (content_status_ != ReadStatus::kOk) {
    reason_ = library_->Problem();
  }
  return content_status_;
}

// What fits into memory is unpacked there on all cores. Whatever that does not do, also for damage, is left to the
// library, which has the reasons.
ReadStatus ZipReader::Unpack(EntrySink* sink) {
  const std::vector<ZipEntry>& entries = directory_.entries;
  std::vector<bool> wanted;
  std::vector<ContentPool::Job> jobs;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const Entry entry = ToEntry(entries[i], options_.charset);
    wanted.push_back(sink->Wants(entry));
    if (wanted.back() && entry.kind == EntryKind::kFile && ZipUnpacker::Takes(entries[i]))
      jobs.push_back({i, static_cast<std::size_t>(entries[i].size)});
  }
  ContentPool pool(std::move(jobs), [&] { return std::make_unique<ZipUnpacker>(input_, entries); });
  Entry entry;
  ReadStatus status = ReadStatus::kOk;
  while ((status = NextEntry(&entry)) == ReadStatus::kOk) {
    const std::size_t index = next_ - 1;
    std::optional<ContentBuffer> content = pool.Take(index);
    const bool goes_on = content ? GiveWhole(std::move(entry), *std::move(content), sink)
                                 : GiveCurrent(std::move(entry), wanted[index], sink);
    if (!goes_on) return ReadStatus::kEnd;
  }
  return status;
}

bool ZipReader::OpenBatch(std::size_t first) {
  const std::vector<ZipEntry>& entries = directory_.entries;
  Ending ending{directory_.position, ""};
  std::size_t end = first;
  // The library passes over entries at equal positions.
  while (end < entries.size() && end - first < kBatch &&
         (end == first || entries[end].position > entries[end - 1].position)) {
    const ZipHeaderForm form = FormOf(entries[end], ToEntry(entries[end], options_.charset));
    AppendDirectoryHeader(entries[end], form, &ending.bytes);
    ++end;
  }
  AppendZipEnd(ending.position, end - first, 0, &ending.bytes);
  const auto describe = [this, first](std::size_t index, Entry* entry) {
    if (first + index >= library_end_) return false;
    Entry described = ToEntry(directory_.entries[first + index], options_.charset);
    described.link_target = std::move(entry->link_target);
    *entry = std::move(described);
    return true;
  };
  library_ = OpenLibarchive(input_, options_, LibarchiveFormat::kZip, describe, &reason_, std::move(ending));
  library_next_ = first;
  library_end_ = end;
  return library_ != nullptr;
}

// Passes over the entries on the way. A library that stumbles over one, or did before, begins anew behind it.
ReadStatus ZipReader::GoToCurrent() {
  if (const auto reason = WhyNotRead(Current())) return Fail(ReadStatus::kUnsupported, *reason);
  const std::size_t wanted = next_ - 1;
  if (wanted < library_next_ || wanted >= library_end_) library_.reset();
  for (;;) {
    const bool is_fresh = library_ == nullptr;
    if (is_fresh && !OpenBatch(wanted)) return ReadStatus::kFailed;
    Entry entry;
    const ReadStatus status = library_->NextEntry(&entry);
    const std::size_t reached = library_next_++;
    if (status == ReadStatus::kOk && reached == wanted) {
      link_target_ = std::move(entry.link_target);
      return status;
    }
    if (status == ReadStatus::kOk) continue;
    const Reason reason = status == ReadStatus::kEnd ? why::kHeaderMissing : library_->Problem();
    library_.reset();
    if (is_fresh) return Fail(status == ReadStatus::kEnd ? ReadStatus::kFailed : status, reason);
  }
}

// The library believes the checksum in the local header, if there is one, and not the directory's.
ReadStatus ZipReader::CheckLocalCrc() {
  std::uint64_t content = 0;
  const platform::Result result = CheckLocalHeader(input_, Current(), &content);
  return result.ok() ? ReadStatus::kEnd : Fail(ReadStatus::kFailed, result.reason);
}

}  // namespace

std::unique_ptr<EntryReader> OpenZip(const ArchiveInput& input, const ReaderOptions& options,
                                     Reason* reason) {
  ZipDirectory directory;
  const platform::Result result = ReadZipDirectory(input, &directory);
  if (result.ok()) return OpenZipBy(std::move(directory), input, options);
  *reason = result.reason;
  return nullptr;
}

std::unique_ptr<EntryReader> OpenZipBy(ZipDirectory directory, const ArchiveInput& input,
                                       const ReaderOptions& options) {
  return std::make_unique<ZipReader>(input, options, std::move(directory));
}

}  // namespace quendle::modules
