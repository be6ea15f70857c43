#include "archive/extraction_guard.h"

#include <utility>

#include "platform/entries/entry_path.h"
#include "platform/entries/path_names.h"

namespace quendle {

using Occupant = platform::ExtractionFolder::Occupant;
using Taken = platform::ExtractionFolder::Taken;

ExtractionGuard::ExtractionGuard(const std::string& destination,
                                 const std::vector<std::string>& archive_files,
                                 const std::vector<std::string>& program_files) {
  std::string base = platform::WithoutTrailingSlashes(destination);
  // What is to be made on the way may be a folder that the program has yet to make for itself.
  while (!platform::ExtractionFolder::Open(base, &folder_).ok()) {
    const std::string name = platform::NameOf(base);
    if (name.empty()) return;
    missing_.insert(0, name + "/");
    base = platform::FolderOf(base);
  }
  platform::ProtectedEntries entries;
  for (const std::string& file : archive_files)
    entries.Add(file, platform::ProtectedEntries::Owner::kArchive);
  for (const std::string& file : program_files)
    entries.Add(file, platform::ProtectedEntries::Owner::kProgram);
  folder_->Protect(std::move(entries));
  // The user may have named a folder as no entry can be called.
  std::string safe;
  const platform::Result result = platform::SafeRestOfPath(missing_, platform::kHostNames, &safe);
  if (!result.ok() || (!missing_.empty() && safe + "/" != missing_)) folder_.reset();
}

Reason ExtractionGuard::Problem(const std::string& path, bool* is_free) {
  *is_free = false;
  if (folder_ == nullptr) return {};
  const std::string below = missing_ + path;
  if (!IsBelowLacking(below)) FindLacking(below);
  *is_free = IsBelowLacking(below);
  if (*is_free) return {};
  Occupant occupant;
  const platform::Result result = folder_->Look(below, &occupant);
  *is_free = result.ok() && occupant.taken == Taken::kFree;
  return result.code == platform::Code::kRefused ? why::kAbout(result.reason, result.path) : Reason();
}

bool ExtractionGuard::IsBelowLacking(std::string_view path) const {
  return !lacking_.empty() && path.starts_with(lacking_);
}

// One that must not be made is none of them: what would be in it is looked at and refused one by one.
void ExtractionGuard::FindLacking(const std::string& path) {
  const std::size_t begin = path.starts_with(there_) ? there_.size() : 0;
  for (std::size_t end = begin; (end = path.find('/', end)) != std::string::npos; ++end) {
    Occupant occupant;
    const bool is_allowed = folder_->Look(path.substr(0, end), &occupant).ok();
    if (is_allowed && occupant.taken == Taken::kFree) lacking_ = path.substr(0, end + 1);
    if (!is_allowed || occupant.taken != Taken::kFolder) return;
    there_ = path.substr(0, end + 1);
  }
}

}  // namespace quendle
