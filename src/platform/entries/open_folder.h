// A folder that is open, and what is done with the entries in it whatever becomes of its name meanwhile.
// Names are those of single entries; links are never followed. Failures have the path of the entry below that
// of the folder.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/entries/entry_status.h"
#include "platform/entries/path_names.h"
#include "platform/entries/system_handle.h"
#include "reasons/result.h"

namespace quendle::platform {

// Who sees a new file or folder besides the one who made it. What is hidden has a hidden name on POSIX, and
// an attribute on Windows, where all rights come from the folder.
struct NewEntry {
  bool is_private = false;
  bool is_hidden = false;
};

class OpenFolder {
 public:
  enum class Use {
    kPass,  // needs no right to read the folder
    kList,
  };

  OpenFolder() = default;

  // The folder at `path`, which failures call `shown`. OpenItself is kNotFolder for a link at its end.
  static Result Open(const std::string& path, std::string shown, Use use, OpenFolder* folder);
  static Result OpenItself(const std::string& path, std::string shown, Use use, OpenFolder* folder);

  // A folder in this one; kNotFolder for a file or a link.
  Result Enter(const std::string& name, Use use, OpenFolder* folder) const;

  std::intptr_t get() const { return handle_.get(); }
  std::string Shown(const std::string& name) const { return PathBelow(shown_, name); }

  Result Status(EntryStatus* status) const;
  Result StatusOf(const std::string& name, EntryStatus* status) const;

  // All names but "." and "..", in the order of the file system.
  Result List(std::vector<std::string>* names) const;

  // Fails when it can be known that the entry, in that state, cannot be removed.
  Result CheckRemovable(const std::string& name, const EntryStatus& entry) const;

  Result OpenFile(const std::string& name, SystemHandle* file) const;
  Result MakeFile(const std::string& name, NewEntry how, SystemHandle* file) const;
  Result MakeFolder(const std::string& name, NewEntry how) const;
  // A link to `target`, a relative path with "/" between its parts.
  Result MakeLink(const std::string& name, const std::string& target) const;

  // What a link that must still be in the state of `recorded` consists of, and a link made of it.
  Result ReadLink(const std::string& name, const EntryStatus& recorded, std::string* content) const;
  Result MakeLinkLike(const std::string& name, const std::string& content, const EntryStatus& recorded) const;

  // Another name, in this folder, of the file at `path`, which is no link.
  Result MakeHardLink(const std::string& path, const std::string& name) const;

  // kIsFolder when the name is a folder's.
  Result Remove(const std::string& name) const;
  // The same for a file that may be large: its name is gone at once, and its room a little later where the system takes long
  // to free it.
  Result RemoveQuickly(const std::string& name) const;
  // kExists when the folder is not empty.
  Result RemoveFolder(const std::string& name) const;
  // Takes what rights it needs for a folder of this user to be emptied, if it can.
  void MakeAccessible(const std::string& name) const;

  // 0 or the system's error, as platform/entries/renaming.h has it.
  int Rename(const std::string& name, const OpenFolder& to, const std::string& new_name, bool replace) const;

  // Nothing is said when that cannot be done.
  void SetWriteTime(const std::string& name, const EntryTime& time) const;

  // Takes the attribute off that NewEntry has set; nothing is done where the name hides a file.
  Result Unhide(const std::string& name) const;

  // For this user; none where there is no telling.
  Result FreeBytes(std::optional<std::uint64_t>* bytes) const;

 private:
  SystemHandle handle_;
  std::string shown_;
};

// The same for an entry by its path.
inline Result CheckRemovable(const std::string& path, const EntryStatus& entry) {
  OpenFolder folder;
  Result result = OpenFolder::Open(FolderOf(path), FolderOf(path), OpenFolder::Use::kPass, &folder);
  return result.ok() ? folder.CheckRemovable(NameOf(path), entry) : result;
}

}  // namespace quendle::platform
