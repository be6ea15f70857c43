#include "platform/ini/profile.h"

#include <algorithm>
#include <chrono>
#include <memory>

#include "platform/entries/durable_file.h"
#include "platform/entries/entry_status.h"
#include "platform/entries/watched_read.h"
#include "platform/ini/profile_document.h"
#include "platform/ini/profile_edit.h"
#include "platform/text/code_page.h"

namespace quendle::platform {
namespace {

constexpr std::size_t kMostParses = 4;

// The parses of the files read last. A settings window reads some twenty keys in a row, a run asks for the same
// three files at each of its paths. The time of change, which is among what is compared, cannot be set by
// anyone and moves with every write and rename.
class ParseCache {
 public:
  Result Get(const std::string& file, ProfileParse* parse) {
    *parse = nullptr;
    EntryStatus before;
    Result found = ReadTargetStatus(file, &before);
    if (!found.ok() && found.code != Code::kNotFound) return found;
    const auto kept = std::find_if(entries_.begin(), entries_.end(),
                                   [&](const Entry& entry) { return entry.file == file; });
    if (kept == entries_.end()) {
      if (entries_.size() == kMostParses) entries_.pop_back();
      entries_.insert(entries_.begin(), {file, {}, false, "", nullptr});
    } else {
      std::rotate(entries_.begin(), kept, kept + 1);  // the one used last comes first
    }
    Entry& entry = entries_.front();
    if (!found.ok() || !entry.is_settled || !IsUnchanged(entry.status, before)) {
      Result read = Read(&entry);
      if (read.code == Code::kNotFound) return Success();
      if (!read.ok()) return read;
    }
    *parse = entry.parse;
    return Success();
  }

 private:
  struct Entry {
    std::string file;
    EntryStatus status;
    bool is_settled;  // the same status means the same content
    std::string bytes;
    ProfileParse parse;
  };

  static Result Read(Entry* entry) {
    const auto now = std::chrono::system_clock::now();
    std::string bytes;
    entry->is_settled = false;
    if (Result read = ReadSettledFile(entry->file, &bytes, &entry->status); !read.ok()) return read;
    entry->is_settled = IsLeftAlone(entry->status.change_time, now);
    // Of a file that was only touched, whoever works with the parse need not begin anew.
    if (entry->parse != nullptr && bytes == entry->bytes) return Success();
    entry->parse = std::make_shared<const ProfileDocument>(bytes);
    entry->bytes = std::move(bytes);
    return Success();
  }

  std::vector<Entry> entries_;
};

// A failure of an edit knows no file.
Result At(const std::string& file, Result edited) {
  edited.path = file;
  return edited;
}

// The caller holds the lock.
Result ChangeLocked(const std::string& file, const std::function<Result(std::string*)>& edit) {
  std::string old_bytes;
  Result read = ReadWholeFile(file, &old_bytes);
  if (!read.ok() && read.code != Code::kNotFound) return read;
  std::string bytes = old_bytes;
  if (const Result edited = edit(&bytes); !edited.ok()) return At(file, edited);
  return bytes == old_bytes ? Success() : ReplaceFile(file, bytes);
}

Result ChangeProfile(const std::string& file, const std::function<Result(std::string*)>& edit) {
  std::unique_ptr<FolderLock> lock;
  if (Result taken = FolderLock::Take(file, &lock); !taken.ok()) return taken;
  return ChangeLocked(file, edit);
}

Result SetKeys(const std::string& section, const KeysAndValues& keys, std::string* bytes) {
  for (const auto& [key, value] : keys) {
    if (Result set = SetKey(section, key, value, bytes); !set.ok()) return set;
  }
  return Success();
}

}  // namespace

Result ReadProfile(const std::string& file, ProfileParse* parse) {
  static ParseCache cache;
  return cache.Get(file, parse);
}

std::string ReadProfileString(const std::string& file, const std::string& section, const std::string& key,
                              const std::string& fallback, std::size_t buffer_bytes) {
  ProfileParse parse;
  (void)ReadProfile(file, &parse);  // as if nothing was in it
  const std::string_view instead = std::string_view(fallback).substr(0, fallback.find_last_not_of(" \t") + 1);
  std::string_view value = parse == nullptr ? instead : parse->FindValue(section, key).value_or(instead);
  value = value.substr(0, value.find('\0'));
  return std::string(CutToAnsiBytes(value, std::max<std::size_t>(buffer_bytes, 1) - 1));
}

Result WriteProfileString(const std::string& file, const std::string& section, const std::string& key,
                          const std::string& value) {
  return ChangeProfile(file, [&](std::string* bytes) { return SetKey(section, key, value, bytes); });
}

Result WriteProfileStrings(const std::string& file, const std::string& section,
                           const std::function<KeysAndValues()>& choose) {
  std::unique_ptr<FolderLock> lock;
  if (Result taken = FolderLock::Take(file, &lock); !taken.ok()) return taken;
  const KeysAndValues keys = choose();
  return ChangeLocked(file, [&](std::string* bytes) { return SetKeys(section, keys, bytes); });
}

Result CreateProfile(const std::string& file, const std::string& section, const KeysAndValues& keys) {
  std::unique_ptr<FolderLock> lock;
  if (Result taken = FolderLock::Take(file, &lock); !taken.ok()) return taken;
  EntryStatus present;
  if (Result found = ReadStatus(file, &present); found.code != Code::kNotFound) {
    return found.ok() && present.is_folder()
               ? Failure(Code::kIsFolder, file, why::kIsFolder("Is a directory"))
               : found;
  }
  std::string bytes;
  if (const Result set = SetKeys(section, keys, &bytes); !set.ok()) return At(file, set);
  return ReplaceFile(file, bytes);
}

Result DeleteProfileSections(const std::string& file, const std::vector<std::string>& sections) {
  Result result = ChangeProfile(file, [&](std::string* bytes) { return RemoveSections(sections, bytes); });
  return result.code == Code::kNotFound ? Success() : result;
}

Result DeleteProfileSection(const std::string& file, const std::string& section) {
  return DeleteProfileSections(file, {section});
}

Result WriteProfileSection(const std::string& file, const std::string& section, const std::string& body) {
  return ChangeProfile(file, [&](std::string* bytes) { return SetBody(section, body, bytes); });
}

Result RenameProfileSection(const std::string& file, const std::string& old_name,
                            const std::string& new_name) {
  return ChangeProfile(file,
                       [&](std::string* bytes) { return RenameFirstSection(old_name, new_name, bytes); });
}

Result ArrangeProfile(const std::string& file, const SectionOrder& order) {
  return ChangeProfile(file, [&](std::string* bytes) { return ArrangeSections(order, bytes); });
}

}  // namespace quendle::platform
