#include "archive/modules/zip/zip_family.h"
#include "archive/modules/common/signature_scan.h"
#include "archive/modules/zip/zip_end.h"

#include <map>
#include <memory>
#include <utility>

#include "archive/modules/common/libarchive_reader.h"
#include "archive/modules/common/unarr_reader.h"
#include "archive/modules/common/volumes.h"
#include "archive/modules/zip/zip_directory.h"
#include "archive/modules/zip/zip_reader.h"

namespace quendle::modules {
namespace {

// The beginning of an archive, also of one in several volumes and of an empty one.
bool BeginsLikeZip(const ArchiveInput& input) {
  std::string begin(8, '\0');
  std::size_t got = 0;
  if (!input.ReadAt(0, begin.data(), begin.size(), &got).ok()) return false;
  begin.resize(got);
  for (const char* mark : {"PK\7\x8", "PK00"}) {
    if (begin.starts_with(mark)) begin.erase(0, 4);
  }
  return begin.starts_with("PK\3\4") || begin.starts_with("PK\5\6");
}

Reason MissingVolume(const VolumeSet& set, const ZipEnd& end) {
  if (!set.missing_path.empty()) return why::kVolumeMissing(set.missing_path);
  return why::kOnlySomeVolumes(set.files.size(), end.volumes);
}

// The archive in all volumes that there are of the set.
std::optional<ArchiveInput> FindInSet(std::shared_ptr<const platform::InputFile> file, Reason* reason) {
  const ArchiveInput own(file, 0);
  VolumeSet set = FindVolumes(std::move(file));
  const ArchiveInput input(set.files);
  ZipEnd end;
  const platform::Result found = FindZipEnd(input, &end);
  const bool is_zip = BeginsLikeZip(input) || BeginsWithProgram(input);
  if (!set.is_first) {
    if (found.ok() && is_zip) *reason = why::kBeginsIn(set.first_path);
  } else if (end.volumes > set.files.size()) {
    *reason = MissingVolume(set, end);
  } else if (found.ok() && is_zip) {
    if (end.front == 0 || set.files.size() == 1) return input.From(end.front);
    *reason = why::kVolumesBehindProgram;
  } else if (BeginsLikeZip(own)) {
    *reason = set.files.size() > 1 && !set.missing_path.empty() ? MissingVolume(set, end) : found.reason;
  }
  return std::nullopt;
}

std::optional<ArchiveInput> FindZip(std::shared_ptr<const platform::InputFile> file, Reason* reason) {
  const ArchiveInput own(file, 0);
  ZipEnd end;
  // A file that is whole by itself has no other volumes, whatever the files beside it are called.
  if (FindZipEnd(own, &end).ok() && (BeginsLikeZip(own) || BeginsWithProgram(own)))
    return own.From(end.front);
  return FindInSet(std::move(file), reason);
}

// The reader by unarr names entries by where their headers are in the directory.
std::unique_ptr<EntryReader> OpenByUnarr(const ArchiveInput& input, const ReaderOptions& options,
                                         Reason* reason) {
  ZipDirectory directory;
  const platform::Result result = ReadZipDirectory(input, &directory);
  if (!result.ok()) {
    *reason = result.reason;
    return nullptr;
  }
  std::map<std::uint64_t, ZipEntry> entries;
  for (ZipEntry& entry : directory.entries) entries.emplace(entry.directory_position, std::move(entry));
  const auto describe = [entries = std::move(entries), charset = options.charset](std::uint64_t offset,
                                                                                  Entry* entry) {
    const auto found = entries.find(offset);
    if (found == entries.end()) return false;
    *entry = ToEntry(found->second, charset);
    return true;
  };
  return OpenUnarr(input, UnarrFormat::kZip, describe, reason);
}

std::vector<Engine> ZipEngines(const ArchiveInput&) {
  std::vector<Engine> engines = {{"libarchive", &OpenZip}};
  if (HasUnarr()) engines.push_back({"unarr", &OpenByUnarr});
  return engines;
}

platform::Result CheckZip(const ArchiveInput& input) {
  ZipDirectory directory;
  const platform::Result result = ReadZipDirectory(input, &directory);
  return result.ok() ? CheckZipLayout(input, directory) : result;
}

std::string ZipLibraries() {
  return LibarchiveVersion() + AndUnarrVersion();
}

}  // namespace

const Family kZipFamily = {"ZIP",         kZipDialect,         &FindZip, &ZipEngines, &CheckZip,
                           &ZipLibraries, PasswordForm::kBytes};

}  // namespace quendle::modules
