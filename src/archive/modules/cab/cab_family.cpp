#include "archive/modules/cab/cab_family.h"

#include <libdeflate.h>

#include <memory>
#include <utility>

#include "archive/modules/cab/cab_directory.h"
#include "archive/modules/cab/cab_header.h"
#include "archive/modules/cab/cabinets_reader.h"
#include "archive/modules/cab/mspack_reader.h"
#include "archive/modules/cab/plain_cab.h"
#include "archive/modules/common/folder_names.h"
#include "archive/modules/common/holding_archive.h"
#include "archive/modules/common/library_versions.h"
#include "archive/modules/common/signature_scan.h"

namespace quendle::modules {
namespace {

using File = std::shared_ptr<const platform::InputFile>;

constexpr std::size_t kMostCabinets = 1000;

// The file of that name, in any case, beside another one; null when there is none.
File OpenBeside(const std::string& path, const std::string& name) {
  if (name.empty() || name.find_first_of("/\\") != name.npos) return nullptr;
  const std::string folder = path.substr(0, FolderSize(path));
  const FolderNames names(folder, name);
  const std::string* found = names.Find(name);
  std::unique_ptr<platform::InputFile> file;
  if (found == nullptr || !platform::InputFile::Open(folder + *found, &file).ok()) return nullptr;
  return file;
}

// With as many of the cabinets that follow as are there. The reader says what is missing: what is in the ones
// that are there can be had all the same.
ArchiveInput WithFollowers(File file, std::uint64_t position) {
  std::vector<File> files = {std::move(file)};
  auto header = ReadCabHeader(ArchiveInput(files.front(), position), 0);
  while (header && !header->next.empty() && files.size() < kMostCabinets) {
    File next = OpenBeside(files.back()->Path(), header->next);
    if (!next) break;
    const auto next_header = ReadCabHeader(ArchiveInput(next, 0), 0);
    if (!next_header || next_header->set != header->set || next_header->index != header->index + 1) break;
    files.push_back(std::move(next));
    header = next_header;
  }
  return ArchiveInput(std::move(files)).From(position);
}

// The path of the first of the cabinets that stand in front of it in its set, as far as they are there; empty when the
// one before is not.
std::string FirstOfSet(const File& file, CabHeader header) {
  File first = file;
  for (std::size_t i = 0; i < kMostCabinets && !header.previous.empty(); ++i) {
    File previous = OpenBeside(first->Path(), header.previous);
    if (!previous) break;
    const auto read = ReadCabHeader(ArchiveInput(previous, 0), 0);
    if (!read || read->set != header.set || read->index + 1 != header.index) break;
    first = std::move(previous);
    header = *read;
  }
  return first == file ? "" : first->Path();
}

// Does a cabinet, or the last of several behind each other, end where the input does?
bool EndsWithCabinet(const ArchiveInput& input, std::uint64_t position) {
  for (std::optional<std::uint64_t> next = position; next; next = NextCabinet(input, position)) {
    position = *next + ReadCabHeader(input, *next).value_or(CabHeader{}).size;
    if (position == *next) return false;
  }
  return position == input.Size();
}

std::optional<ArchiveInput> FindCab(std::shared_ptr<const platform::InputFile> file, Reason* reason) {
  const ArchiveInput whole(file, 0);
  const bool is_at_begin = ReadCabHeader(whole, 0).has_value();
  const auto position = is_at_begin ? std::optional<std::uint64_t>(0) : NextCabinet(whole, 0);
  if (!position || LiesInOtherArchive(whole, *position)) return std::nullopt;
  // What is neither at the beginning nor behind a program may be a part of something else: a disk, a document.
  if (!is_at_begin && !BeginsWithProgram(whole) && !EndsWithCabinet(whole, *position)) return std::nullopt;
  const auto header = ReadCabHeader(whole, *position);
  if (const std::string first = header ? FirstOfSet(file, *header) : ""; !first.empty()) {
    *reason = why::kBeginsIn(first);
    return std::nullopt;
  }
  return WithFollowers(std::move(file), *position);
}

std::vector<Engine> CabEngines(const ArchiveInput& input) {
  if (const auto header = ReadCabHeader(input, 0);
      header && input.VolumeCount() == 1 && header->next.empty() && NextCabinet(input, header->size)) {
    return {{"libmspack", &OpenCabinets}};
  }
  std::vector<Engine> engines = {{"libmspack", &OpenMspack}};
  if (auto plain = ReadPlainCabinet(input)) {
    auto directory = std::make_shared<const CabDirectory>(*std::move(plain));
    engines.insert(engines.begin(),
                   {"cab", [directory](const ArchiveInput& cabinet, const ReaderOptions& options, Reason*) {
                      return OpenPlainCab(cabinet, directory, options);
                    }});
  }
  return engines;
}

std::string CabLibraries() {
  return std::string("libdeflate " LIBDEFLATE_VERSION_STRING ", ").append(kMspackVersion);
}

}  // namespace

const Family kCabFamily = {"CAB", kCabDialect, &FindCab, &CabEngines, nullptr, &CabLibraries};

}  // namespace quendle::modules
