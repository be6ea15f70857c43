#include "archive/extraction_guard.h"

#include <utility>

#include "platform/entries/entry_path.h"
#include "platform/entries/path_names.h"

namespace quendle {

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

Reason ExtractionGuard::Problem(const std::string& path) {
  platform::ExtractionFolder::Occupant occupant;
  const platform::Result result = folder_ ? folder_->Look(missing_ + path, &occupant) : platform::Success();
  return result.code == platform::Code::kRefused ? why::kAbout(result.reason, result.path) : Reason();
}

}  // namespace quendle
