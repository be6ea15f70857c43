#include "archive/modules/cab/mspack_reader.h"

#include <mspack.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "archive/modules/cab/cab_header.h"
#include "archive/modules/cab/mspack_system.h"
#include "archive/modules/common/entry_names.h"
#include "archive/modules/common/entry_times.h"

namespace quendle::modules {
namespace {

constexpr unsigned kPieceSize = 1U << 20;

const char* ReasonFor(int error) {
  switch (error) {
    case MSPACK_ERR_READ:
      return "the cabinet is cut off or cannot be read";
    case MSPACK_ERR_NOMEMORY:
      return "there is not enough memory";
    case MSPACK_ERR_SIGNATURE:
      return "it does not begin like a cabinet";
    case MSPACK_ERR_CHECKSUM:
      return "a checksum does not agree";
    case MSPACK_ERR_DECRUNCH:
      return "its packed data is damaged";
    default:
      return "the cabinet is damaged";
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
  const std::string& Reason() const override { return reason_; }

 private:
  bool AppendCabinets();
  void FindProblem();
  Entry Convert(const mscabd_file& file) const;
  std::string WhyNot(int error) const;
  ReadStatus Fail(ReadStatus status, std::string reason);

  const ArchiveInput& input_;
  ReaderOptions options_;
  MspackSystem system_;
  mscab_decompressor* library_ = nullptr;
  mscabd_cabinet* cabinet_ = nullptr;  // the first one, which has the files of all
  mscabd_file* next_ = nullptr;
  mscabd_file current_ = {};  // what is left of it
  std::set<const mscabd_folder*> damaged_;
  ReadStatus content_status_ = ReadStatus::kEnd;
  std::string missing_;  // the cabinet behind the last one
  std::string problem_;  // why there may be more files
  std::string reason_;
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
    reason_ = "the library cannot be set up";
    return false;
  }
  cabinet_ = library_->open(library_, system_.NameOf(0));
  if (cabinet_ == nullptr) {
    reason_ = ReasonFor(library_->last_error(library_));
    return false;
  }
  if (AppendCabinets()) FindProblem();
  next_ = cabinet_->files;
  return true;
}

bool MspackReader::AppendCabinets() {
  mscabd_cabinet* last = cabinet_;
  for (std::size_t i = 1; i < input_.VolumeCount(); ++i) {
    mscabd_cabinet* const next = library_->open(library_, system_.NameOf(i));
    if (next == nullptr || library_->append(library_, last, next) != MSPACK_ERR_OK) {
      problem_ = "cabinet " + std::to_string(i + 1) + " of the set: ";
      problem_ += ReasonFor(library_->last_error(library_));
      if (next != nullptr) library_->close(library_, next);
      return false;
    }
    last = next;
  }
  return true;
}

void MspackReader::FindProblem() {
  for (std::size_t i = 0; i < input_.VolumeCount(); ++i) {
    const std::uint64_t begin = input_.VolumeStart(i);
    const std::uint64_t end = i + 1 < input_.VolumeCount() ? input_.VolumeStart(i + 1) : input_.Size();
    const auto header = ReadCabHeader(input_, begin);
    if (header && header->size > end - begin) problem_ = "the cabinet is cut off";
    if (header && i + 1 == input_.VolumeCount() && !header->next.empty()) {
      missing_ = DecodeName(header->next, false, options_.charset);
      problem_ = "the next cabinet, " + missing_ + ", is missing";
    }
  }
}

Entry MspackReader::Convert(const mscabd_file& file) const {
  Entry entry;
  entry.path = DecodeName(file.filename, (file.attribs & MSCAB_ATTRIB_UTF_NAME) != 0, options_.charset);
  entry.size = file.length;
  entry.attributes.write_time = TimeFromDos(DosTime(file));
  entry.attributes.executable = (file.attribs & MSCAB_ATTRIB_EXEC) != 0;
  constexpr const char* kMethods[] = {"none", "MSZIP", "Quantum", "LZX"};
  const int method = MSCABD_COMP_METHOD(file.folder->comp_type);
  if (method <= MSCAB_COMP_LZX) entry.method = kMethods[method];
  return entry;
}

ReadStatus MspackReader::Fail(ReadStatus status, std::string reason) {
  reason_ = std::move(reason);
  return status;
}

ReadStatus MspackReader::NextEntry(Entry* entry) {
  content_status_ = ReadStatus::kEnd;
  if (next_ == nullptr) return problem_.empty() ? ReadStatus::kEnd : Fail(ReadStatus::kFailed, problem_);
  current_ = *next_;
  next_ = next_->next;
  *entry = Convert(current_);
  content_status_ = ReadStatus::kOk;
  if (MSCABD_COMP_METHOD(current_.folder->comp_type) > MSCAB_COMP_LZX) {
    content_status_ = Fail(ReadStatus::kUnsupported, "it is packed in a way that is not known");
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
    return content_status_ = Fail(ReadStatus::kFailed, "the packed data in front of it is damaged");
  }
  mscabd_file part = current_;
  part.length = std::min(current_.length, kPieceSize);
  std::string& output = system_.Output();
  output.clear();
  const int error = library_->extract(library_, &part, "");
  if (error != MSPACK_ERR_OK || output.size() != part.length) {
    damaged_.insert(current_.folder);
    return content_status_ = Fail(ReadStatus::kFailed, WhyNot(error));
  }
  current_.offset += part.length;
  current_.length -= part.length;
  *piece = output;
  return ReadStatus::kOk;
}

std::string MspackReader::WhyNot(int error) const {
  const bool is_in_first = current_.folder == cabinet_->folders;
  if (is_in_first && cabinet_->prevname != nullptr) {
    return "it may begin in an earlier cabinet of the set: start with " +
           DecodeName(cabinet_->prevname, false, options_.charset);
  }
  if (current_.folder->next == nullptr && !missing_.empty()) {
    return "it may go on in the next cabinet, " + missing_ + ", which is missing";
  }
  return ReasonFor(error);
}

}  // namespace

std::unique_ptr<EntryReader> OpenMspack(const ArchiveInput& input, const ReaderOptions& options,
                                        std::string* reason) {
  auto reader = std::make_unique<MspackReader>(input, options);
  if (reader->Open()) return reader;
  *reason = reader->Reason();
  return nullptr;
}

}  // namespace quendle::modules
