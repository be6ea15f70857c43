#include "archive/modules/zip/zip_reader.h"

#include <algorithm>
#include <utility>

#include "archive/modules/common/libarchive_reader.h"
#include "archive/modules/common/little_endian.h"
#include "archive/modules/zip/zip_directory.h"

namespace quendle::modules {
namespace {

// The library gives up an archive when one entry is damaged, and is opened anew behind that. How many entries
// it sees at a time bounds what that costs.
constexpr std::size_t kBatch = 256;

void Append(std::string* bytes, std::uint64_t value, int width) {
  for (int i = 0; i < width; ++i) bytes->push_back(static_cast<char>(value >> (8 * i) & 0xFF));
}

// Mode bits by which the library tells the kinds apart. It is to see links, of which it reads the target.
std::uint32_t ExternalAttributes(const Entry& entry) {
  return (entry.kind == EntryKind::kLink ? 0120777U : 0100644U) << 16U;
}

void AppendHeader(std::string* bytes, const ZipEntry& zip, const Entry& entry) {
  bytes->append("PK\1\2");
  Append(bytes, 3 << 8 | 45, 2);
  Append(bytes, 45, 2);
  Append(bytes, zip.flags, 2);
  Append(bytes, zip.packed_method, 2);
  Append(bytes, zip.dos_time, 4);
  Append(bytes, zip.crc, 4);
  Append(bytes, 0xFFFFFFFF, 4);  // the sizes and the position are in the extra field
  Append(bytes, 0xFFFFFFFF, 4);
  Append(bytes, 0, 2);   // the name, of which the library reads the local one
  Append(bytes, 28, 2);  // the extra field
  Append(bytes, 0, 6);   // comment, volume, internal attributes
  Append(bytes, ExternalAttributes(entry), 4);
  Append(bytes, 0xFFFFFFFF, 4);
  Append(bytes, 0x0001, 2);
  Append(bytes, 24, 2);
  Append(bytes, zip.size, 8);
  Append(bytes, zip.packed_size, 8);
  Append(bytes, zip.position, 8);
}

void AppendEnd(std::string* bytes, std::uint64_t position, std::size_t count) {
  const std::uint64_t size = bytes->size();
  bytes->append("PK\6\6");
  Append(bytes, 44, 8);
  Append(bytes, 45, 2);
  Append(bytes, 45, 2);
  Append(bytes, 0, 8);  // volumes
  Append(bytes, count, 8);
  Append(bytes, count, 8);
  Append(bytes, size, 8);
  Append(bytes, position, 8);
  bytes->append("PK\6\7");
  Append(bytes, 0, 4);
  Append(bytes, position + size, 8);
  Append(bytes, 1, 4);
  bytes->append("PK\5\6");
  Append(bytes, 0, 4);                   // volumes
  Append(bytes, 0xFFFFFFFFFFFFFFFF, 8);  // counts and size
  Append(bytes, 0xFFFFFFFF, 4);
  Append(bytes, 0, 2);
}

class ZipReader final : public EntryReader {
 public:
  ZipReader(const ArchiveInput& input, ReaderOptions options, ZipDirectory directory)
      : input_(input), options_(std::move(options)), directory_(std::move(directory)) {}

  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus ReadContent(std::string_view* piece) override;
  const Reason& Problem() const override { return reason_; }

 private:
  const ZipEntry& Current() const { return directory_.entries[next_ - 1]; }
  bool OpenBatch(std::size_t first);
  ReadStatus GoToCurrent();
  ReadStatus CheckLocalCrc();
  ReadStatus Fail(ReadStatus status, Reason reason);
  std::function<std::optional<std::string>()> Passwords();

  const ArchiveInput& input_;
  ReaderOptions options_;
  ZipDirectory directory_;
  std::size_t next_ = 0;

  std::unique_ptr<EntryReader> library_;
  std::size_t library_next_ = 0;  // the entry that it goes to next
  std::size_t library_end_ = 0;   // behind the last one that it sees
  std::string link_target_;       // of the entry that it went to last
  ReadStatus content_status_ = ReadStatus::kEnd;
  std::vector<std::string> passwords_;  // that were asked for so far
  Reason reason_;
};

ReadStatus ZipReader::Fail(ReadStatus status, Reason reason) {
  reason_ = std::move(reason);
  return status;
}

// Each library object is told again what the user said to the ones before it.
std::function<std::optional<std::string>()> ZipReader::Passwords() {
  return [this, known = std::size_t{0}]() mutable -> std::optional<std::string> {
    if (known == passwords_.size()) {
      auto password = options_.ask_password();
      if (!password) return std::nullopt;
      passwords_.push_back(std::move(*password));
    }
    return passwords_[known++];
  };
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

bool ZipReader::OpenBatch(std::size_t first) {
  const std::vector<ZipEntry>& entries = directory_.entries;
  Ending ending{directory_.position, ""};
  std::size_t end = first;
  // The library passes over entries at equal positions.
  while (end < entries.size() && end - first < kBatch &&
         (end == first || entries[end].position > entries[end - 1].position)) {
    AppendHeader(&ending.bytes, entries[end], ToEntry(entries[end], options_.charset));
    ++end;
  }
  AppendEnd(&ending.bytes, ending.position, end - first);
  const auto describe = [this, first](std::size_t index, Entry* entry) {
    if (first + index >= library_end_) return false;
    Entry described = ToEntry(directory_.entries[first + index], options_.charset);
    described.link_target = std::move(entry->link_target);
    *entry = std::move(described);
    return true;
  };
  library_ = OpenLibarchive(input_, {options_.charset, Passwords()}, LibarchiveFormat::kZip, describe,
                            &reason_, std::move(ending));
  library_next_ = first;
  library_end_ = end;
  return library_ != nullptr;
}

// Passes over the entries on the way. A library that stumbles over one, or did before, begins anew behind it.
ReadStatus ZipReader::GoToCurrent() {
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
  std::string header(18, '\0');
  std::size_t got = 0;
  const platform::Result result = input_.ReadAt(Current().position, header.data(), header.size(), &got);
  if (!result.ok()) return Fail(ReadStatus::kFailed, result.reason);
  const std::uint64_t crc = LittleEndian(header, 14, 4);
  if (crc == 0 || crc == Current().crc) return ReadStatus::kEnd;
  return Fail(ReadStatus::kFailed, why::kChecksumsDiffer);
}

}  // namespace

std::unique_ptr<EntryReader> OpenZip(const ArchiveInput& input, const ReaderOptions& options,
                                     Reason* reason) {
  ZipDirectory directory;
  const platform::Result result = ReadZipDirectory(input, &directory);
  if (result.ok()) return std::make_unique<ZipReader>(input, options, std::move(directory));
  *reason = result.reason;
  return nullptr;
}

}  // namespace quendle::modules
