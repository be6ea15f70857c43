#include "platform/extraction/protected_entries.h"

#include <utility>

#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

constexpr int kMostLinks = 64;

Result Refused(ProtectedEntries::Owner owner, std::string path) {
  const bool is_program = owner == ProtectedEntries::Owner::kProgram;
  return Failure(Code::kRefused, std::move(path), is_program ? why::kNeededByProgram : why::kReplacesArchive);
}

std::string ComparableName(const std::string& name) {
  return UpperCase(WithReplacementCharacters(name));
}

}  // namespace

void ProtectedEntries::Add(const std::string& path, Owner owner) {
  owner_ = owner;
  links_left_ = kMostLinks;
  walked_.clear();
  AddWay(WithoutTrailingSlashes(path), true);
}

// A link on the way is protected as an entry, since another in its place would lead to other files.
void ProtectedEntries::AddWay(const std::string& path, bool is_end) {
  const std::string name = NameOf(path);
  if (name.empty() || name == "." || (!is_end && !walked_.insert(path).second)) return;
  const std::string folder = FolderOf(path);
  AddWay(folder, false);
  EntryStatus status;
  const bool is_there = ReadStatus(path, &status).ok();
  EntryStatus parent;
  if ((is_end || !is_there) && ReadTargetStatus(folder, &parent).ok())
    names_.emplace(ComparableName(name), Name{parent.id, is_there ? name : "", owner_});
  if (!is_there) return;
  if (is_end && status.is_folder()) return AddAllIn(path, status);
  if (is_end || status.is_link()) entries_.emplace(status.id, owner_);
  if (!status.is_link() || links_left_-- <= 0) return;
  if (const std::string target = LinkTarget(path); !target.empty()) AddWay(target, is_end);
}

void ProtectedEntries::AddAllIn(const std::string& folder, const EntryStatus& status) {
  folders_.emplace(status.id, owner_);
  OpenFolder opened;
  std::vector<std::string> names;
  // One that cannot be listed protects by itself all the same.
  if (OpenFolder::Open(folder, folder, OpenFolder::Use::kList, &opened).ok()) (void)opened.List(&names);
  for (const std::string& name : names) {
    EntryStatus entry;
    if (opened.StatusOf(name, &entry).ok() && !entry.is_folder()) AddWay(PathBelow(folder, name), true);
  }
}

Result ProtectedEntries::CheckName(const OpenFolder& folder, const std::string& name) const {
  if (names_.empty()) return Success();
  const auto [first, last] = names_.equal_range(ComparableName(name));
  if (first == last) return Success();
  EntryStatus status;
  Result result = folder.Status(&status);
  for (auto found = first; result.ok() && found != last; ++found) {
    const Name& kept = found->second;
    if (kept.folder == status.id && (kept.spelling.empty() || kept.spelling == name))
      return Refused(kept.owner, folder.Shown(name));
  }
  return result;
}

Result ProtectedEntries::CheckEntry(const OpenFolder& folder, const std::string& name,
                                    const EntryStatus& there) const {
  const auto found = entries_.find(there.id);
  return found == entries_.end() ? Success() : Refused(found->second, folder.Shown(name));
}

Result ProtectedEntries::CheckFolder(const OpenFolder& folder) const {
  if (folders_.empty()) return Success();
  EntryStatus status;
  Result result = folder.Status(&status);
  if (!result.ok()) return result;
  const auto found = folders_.find(status.id);
  return found == folders_.end() ? Success()
                                 : Refused(found->second, WithoutTrailingSlashes(folder.Shown("")));
}

Result ProtectedEntries::CheckFolderAndAbove(const OpenFolder& folder) const {
  Result result = CheckFolder(folder);
  if (!result.ok() || folders_.empty()) return result;
  for (std::string path = RealPath(folder.Shown("")); !NameOf(path).empty(); path = FolderOf(path)) {
    EntryStatus status;
    if (!ReadStatus(path, &status).ok()) continue;
    if (const auto found = folders_.find(status.id); found != folders_.end())
      return Refused(found->second, path);
  }
  return result;
}

}  // namespace quendle::platform
