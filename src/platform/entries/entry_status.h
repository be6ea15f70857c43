// What the file system knows of an entry: enough to tell entries apart and to see whether one has changed.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/entries/entry_time.h"
#include "reasons/result.h"

namespace quendle::platform {

struct EntryId {
  std::uint64_t volume = 0;
  std::uint64_t high = 0;
  std::uint64_t low = 0;

  auto operator<=>(const EntryId&) const = default;
};

struct EntryIdHash {
  std::size_t operator()(const EntryId& id) const {
    return static_cast<std::size_t>(id.low ^ id.high * 0x9E3779B97F4A7C15 ^ id.volume << 32);
  }
};

struct EntryStatus {
  // A junction is a link, too. What has content that is not in the file system (devices, pipes) is kOther.
  enum class Kind { kFile, kFolder, kLink, kOther };

  Kind kind = Kind::kOther;
  EntryId id;
  std::uint64_t size = 0;  // bytes
  std::uint64_t links = 1;
  EntryTime write_time;
  EntryTime access_time;
  EntryTime change_time;   // of content, name or anything that is known of it
  EntryTime birth_time;    // Windows
  std::uint32_t mode = 0;  // st_mode; on Windows the attributes
  std::uint32_t owner = 0;
  std::uint32_t group = 0;
  bool has_holes = false;

  bool is_file() const { return kind == Kind::kFile; }
  bool is_folder() const { return kind == Kind::kFolder; }
  bool is_link() const { return kind == Kind::kLink; }
};

inline bool IsSameEntry(const EntryStatus& a, const EntryStatus& b) {
  return a.id == b.id;
}

// Is it the same entry with the same content and metadata as when `before` was read?
inline bool IsUnchanged(const EntryStatus& before, const EntryStatus& now) {
  return IsSameEntry(before, now) && before.mode == now.mode && before.size == now.size &&
         before.write_time == now.write_time && before.change_time == now.change_time;
}

// Is it the same entry with the same content, whatever has become of its name and of what else is known of it?
inline bool IsSameContent(const EntryStatus& before, const EntryStatus& now) {
  return IsSameEntry(before, now) && before.size == now.size && before.write_time == now.write_time;
}

inline Result SourceChanged(const std::string& path) {
  return Failure(Code::kFailed, path, why::kSourceChanged);
}

// Of the entry itself, and of what a link leads to.
Result ReadStatus(const std::string& path, EntryStatus* status);
Result ReadTargetStatus(const std::string& path, EntryStatus* status);

// Where the link at the absolute `path` leads: an absolute path, in which there may be links and "..". Empty for anything
// else, and for a link that cannot be read.
std::string LinkTarget(const std::string& path);

// The owner of what this process makes; 0 where owners decide nothing.
std::uint32_t CurrentUser();

// The path without links, "." and ".."; empty when it does not exist.
std::string RealPath(const std::string& path);

}  // namespace quendle::platform
