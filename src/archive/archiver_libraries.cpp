#include "archive/archiver_libraries.h"

#include "base/modString.h"
#include "platform/services/known_folders.h"

namespace quendle {
namespace {

std::string FileOf(const std::string& library) {
  return library + std::string(platform::kLibrarySuffix);
}

}  // namespace

bool ArchiverLibraries::IsInstalled(const std::string& library) const {
  return !folder_.empty() && FileExists(FileName(library));
}

const ArchiverLibrary* ArchiverLibraries::Use(const ArchiverRow& row) {
  std::unique_ptr<ArchiverLibrary>& library = loaded_[row.type];
  if (library != nullptr) return library.get();
  platform::Result result = ArchiverLibrary::Load(FileName(row.library), row.prefix, &library);
  failures_.erase(row.type);
  if (!result.ok()) failures_.emplace(row.type, std::move(result));
  return library.get();
}

Reason ArchiverLibraries::Problem(const ArchiverRow& row) const {
  const auto failure = failures_.find(row.type);
  return failure == failures_.end() ? Reason() : failure->second.reason;
}

std::vector<std::string> ArchiverLibraries::Problems() const {
  std::vector<std::string> problems;
  for (const auto& [type, failure] : failures_) {
    const std::string reason = Sentence(failure.reason, Language::kEnglish);
    problems.push_back(failure.path + ": " + reason + "; " + ArchiverRowOf(type).name +
                       " archives are not extracted");
  }
  return problems;
}

std::vector<std::string> ArchiverLibraries::PlacesOfUsers() {
  std::vector<std::string> places;
  for (const std::string& folder : platform::LibraryFolders()) {
    for (const ArchiverRow& row : ArchiverRows())
      places.push_back(AddBackslash(folder) + FileOf(row.library));
  }
  return places;
}

std::string ArchiverLibraries::FileName(const std::string& library) const {
  const std::string name = FileOf(library);
  std::string own = AddBackslash(folder_) + name;
  if (FileExists(own)) return own;
  for (const std::string& folder : platform::LibraryFolders()) {
    if (std::string elsewhere = AddBackslash(folder) + name; FileExists(elsewhere)) return elsewhere;
  }
  return own;
}

}  // namespace quendle
