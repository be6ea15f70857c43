#include "archive/modules/cab/mspack_reader.h"

#include <mspack.h>

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "archive/modules/cab/cab_directory.h"
#include "archive/modules/cab/cab_header.h"
#include "archive/modules/cab/mspack_system.h"
#include "archive/modules/common/entry_names.h"

namespace quendle::modules {
namespace {

constexpr unsigned kPieceSize = 1U << 20;
// Bytes that may be unpacked more than once for files that share theirs with others.
constexpr std::uint64_t kMostUnpackedAgain = 512U << 20;

Reason ReasonFor(int error) {
  switch (error) {
    case MSPACK_ERR_READ:
      return why::kCabinetUnreadable;
    case MSPACK_ERR_NOMEMORY:
      return why::kNotEnoughMemory;
    case MSPACK_ERR_SIGNATURE:
      return why::kNoCabinet;
    case MSPACK_ERR_CHECKSUM:
      return why::kSomeChecksumWrong;
    case MSPACK_ERR_DECRUNCH:
      return why::kPackedDataDamaged;
    default:
      return why::kCabinetDamaged;
  }
}

std::uint32_t DosTime(const mscabd_file& file) {
  const auto field = [](int value, int shift) { return static_cast<std::uint32_t>(value) << shift; };
  return field(file.date_y - 1980, 25) | field(file.date_m, 21) | field(file.date_d, 16) |
         field(file.time_h, 11) | field(file.time_m, 5) | field(file.time_s / 2, 0);
}

class MspackReader final : public EntryReader {
 public:
  MspackReader(const ArchiveInput& input, ReaderOptions options)
      : input_(input), options_(std::move(options)), system_(input) {}
  ~MspackReader() override;
  MspackReader(const MspackReader&) = delete;
  MspackReader& operator=(const MspackReader&) = delete;

  bool Open();
  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus ReadContent(std::string_view* piece) override;
  const Reason& Problem() const override { return reason_; }

 private:
  struct File {
    mscabd_file file;  // without its name
    std::string name;
  };

  bool AppendCabinets();
  void Append(const mscabd_file& file, mscabd_folder* folder);
  void MoveFiles(std::size_t first, const mscabd_folder* from, mscabd_folder* to);
  bool FailToAppend(std::size_t index);
  void SortFiles();
  void FindProblem();
  bool MayUnpack();
  Entry Convert(const File& named) const;
  Reason WhyNot(Reason otherwise) const;
  ReadStatus Fail(ReadStatus status, Reason reason);

  const ArchiveInput& input_;
  ReaderOptions options_;
  MspackSystem system_;
  mscab_decompressor* library_ = nullptr;
  mscabd_cabinet* cabinet_ = nullptr;  // the first one, which has the folders of all
  std::vector<File> files_;            // as their data lies
  std::size_t next_ = 0;
  mscabd_file current_ = {};                 // what is left of it
  const mscabd_folder* unpacked_ = nullptr;  // the folder that the library is in
  std::uint64_t unpacked_to_ = 0;            // and how far
  std::uint64_t unpacked_again_ = 0;
  std::set<const mscabd_folder*> damaged_;
  ReadStatus content_status_ = ReadStatus::kEnd;
  std::string missing_;  // the cabinet behind the last one
  Reason problem_;       // why there may be more files
  Reason reason_;
};

MspackReader::~MspackReader() {
  if (library_ == nullptr) return;
  while (cabinet_ != nullptr && cabinet_->prevcab != nullptr) cabinet_ = cabinet_->prevcab;
  if (cabinet_ != nullptr) library_->close(library_, cabinet_);
  mspack_destroy_cab_decompressor(library_);
}

bool MspackReader::Open() {
  int answer = MSPACK_ERR_OK;
  MSPACK_SYS_SELFTEST(answer);
  if (answer == MSPACK_ERR_OK) library_ = mspack_create_cab_decompressor(system_.Get());
  if (library_ == nullptr) {
    reason_ = why::kLibraryNotSetUp;
    return false;
  }
  cabinet_ = library_->open(library_, system_.NameOf(0));
  if (cabinet_ == nullptr) {
    reason_ = ReasonFor(library_->last_error(library_));
    return false;
  }
  if (AppendCabinets()) FindProblem();
  SortFiles();
  return true;
}

// The library unpacks a folder from its beginning for each file that lies in front of the one before.
void MspackReader::SortFiles() {
  std::map<const mscabd_folder*, std::size_t> ranks;
  for (const mscabd_folder* folder = cabinet_->folders; folder != nullptr; folder = folder->next)
    ranks.emplace(folder, ranks.size());
  const auto place = [&ranks](const File& named) {
    return std::pair(ranks[named.file.folder], named.file.offset);
  };
  const auto before = [&place](const File& a, const File& b) { return place(a) < place(b); };
  std::stable_sort(files_.begin(), files_.end(), before);
}

// Files whose data overlaps make the library go back.
bool MspackReader::MayUnpack() {
  if (current_.folder == unpacked_ && current_.offset < unpacked_to_) unpacked_again_ += current_.offset;
  return unpacked_again_ <= kMostUnpackedAgain;
}

void MspackReader::Append(const mscabd_file& file, mscabd_folder* folder) {
  files_.push_back({file, file.filename});
  files_.back().file.folder = folder;
  files_.back().file.filename = nullptr;
}

// When a folder goes on in the next cabinet the library forgets the files that begin there. So they are noted before
// the cabinets are joined; the folder of theirs is the one that it goes on from then.
bool MspackReader::AppendCabinets() {
  mscabd_cabinet* last = cabinet_;
  for (const mscabd_file* file = cabinet_->files; file != nullptr; file = file->next)
    Append(*file, file->folder);
  for (std::size_t i = 1; i < input_.VolumeCount(); ++i) {
    mscabd_cabinet* const next = library_->open(library_, system_.NameOf(i));
    if (next == nullptr) return FailToAppend(i);
    mscabd_folder* left = cabinet_->folders;
    while (left->next != nullptr) left = left->next;
    const std::size_t known = files_.size();
    for (const mscabd_file* file = next->files; file != nullptr; file = file->next)
      Append(*file, file->folder);
    mscabd_folder* const right = next->folders;
    if (library_->append(library_, last, next) != MSPACK_ERR_OK) {
      files_.resize(known);
      library_->close(library_, next);
      return FailToAppend(i);
    }
    if (left->next != right) MoveFiles(known, right, left);
    last = next;
  }
  return true;
}

// Those that begin in the cabinet before are known already.
void MspackReader::MoveFiles(std::size_t first, const mscabd_folder* from, mscabd_folder* to) {
  std::set<std::pair<unsigned, std::string>> known;
  for (std::size_t i = 0; i < first; ++i) {
    if (files_[i].file.folder == to) known.emplace(files_[i].file.offset, files_[i].name);
  }
  const auto begin = files_.begin() + static_cast<std::ptrdiff_t>(first);
  const auto end = std::remove_if(begin, files_.end(), [&](const File& file) {
    return file.file.folder == from && known.count({file.file.offset, file.name}) != 0;
  });
  files_.erase(end, files_.end());
  for (auto file = files_.begin() + static_cast<std::ptrdiff_t>(first); file != files_.end(); ++file) {
    if (file->file.folder == from) file->file.folder = to;
  }
}

bool MspackReader::FailToAppend(std::size_t index) {
  problem_ = why::kCabinetOfSet(index + 1, ReasonFor(library_->last_error(library_)));
  return false;
}

void MspackReader::FindProblem() {
  if (cabinet_->prevname != nullptr) {
    problem_ = why::kPreviousCabinetMissing(DecodeName(cabinet_->prevname, false, options_.charset));
  }
  for (std::size_t i = 0; i < input_.VolumeCount(); ++i) {
    const std::uint64_t begin = input_.VolumeStart(i);
    const std::uint64_t end = i + 1 < input_.VolumeCount() ? input_.VolumeStart(i + 1) : input_.Size();
    const auto header = ReadCabHeader(input_, begin);
    if (header && header->size > end - begin) problem_ = why::kCabinetCutOff;
    if (header && i + 1 == input_.VolumeCount() && !header->next.empty()) {
      missing_ = DecodeName(header->next, false, options_.charset);
      problem_ = why::kNextCabinetMissing(missing_);
    }
  }
}

Entry MspackReader::Convert(const File& named) const {
  constexpr const char* kMethods[] = {"none", "MSZIP", "Quantum", "LZX", ""};
  const mscabd_file& file = named.file;
  const int method = std::min(MSCABD_COMP_METHOD(file.folder->comp_type), MSCAB_COMP_LZX + 1);
  return ToEntry(
      {named.name, 0, file.offset, file.length, DosTime(file), static_cast<std::uint32_t>(file.attribs)},
      kMethods[method], options_.charset);
}

ReadStatus MspackReader::Fail(ReadStatus status, Reason reason) {
  reason_ = std::move(reason);
  return status;
}

ReadStatus MspackReader::NextEntry(Entry* entry) {
  content_status_ = ReadStatus::kEnd;
  if (next_ == files_.size())
    return problem_.empty() ? ReadStatus::kEnd : Fail(ReadStatus::kFailed, problem_);
  current_ = files_[next_].file;
  *entry = Convert(files_[next_++]);
  content_status_ = ReadStatus::kOk;
  if (MSCABD_COMP_METHOD(current_.folder->comp_type) > MSCAB_COMP_LZX) {
    content_status_ = Fail(ReadStatus::kUnsupported, why::kUnknownMethod);
  }
  return ReadStatus::kOk;
}

// The library writes a file at one go. So that no file has to fit into the memory it is told of pieces of it, as
// if they were files of their own behind each other; it goes on where it stopped.
ReadStatus MspackReader::ReadContent(std::string_view* piece) {
  if (content_status_ != ReadStatus::kOk) return content_status_;
  if (current_.length == 0) return content_status_ = ReadStatus::kEnd;
  // Behind damage the library goes on with the next block as if nothing were missing.
  if (damaged_.count(current_.folder) != 0) {
    return content_status_ = Fail(ReadStatus::kFailed, WhyNot(why::kDataBeforeDamaged));
  }
  if (!MayUnpack()) return content_status_ = Fail(ReadStatus::kFailed, why::kReadAgainTooOften);
  mscabd_file part = current_;
  part.length = std::min(current_.length, kPieceSize);
  std::string& output = system_.Output();
  output.clear();
  const int error = library_->extract(library_, &part, "");
  if (error != MSPACK_ERR_OK || output.size() != part.length) {
    damaged_.insert(current_.folder);
    return content_status_ = Fail(ReadStatus::kFailed, WhyNot(ReasonFor(error)));
  }
  unpacked_ = current_.folder;
  unpacked_to_ = current_.offset += part.length;
  current_.length -= part.length;
  *piece = output;
  return ReadStatus::kOk;
}

Reason MspackReader::WhyNot(Reason otherwise) const {
  const bool is_in_first = current_.folder == cabinet_->folders;
  if (is_in_first && cabinet_->prevname != nullptr) {
    return why::kMayBeginEarlier(DecodeName(cabinet_->prevname, false, options_.charset));
  }
  if (current_.folder->next == nullptr && !missing_.empty()) {
    return why::kMayGoOn(missing_);
  }
  return otherwise;
}

}  // namespace

std::unique_ptr<EntryReader> OpenMspack(const ArchiveInput& input, const ReaderOptions& options,
                                        Reason* reason) {
  auto reader = std::make_unique<MspackReader>(input, options);
  if (reader->Open()) return reader;
  *reason = reader->Problem();
  return nullptr;
}

}  // namespace quendle::modules
