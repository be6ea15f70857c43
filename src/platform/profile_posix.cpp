#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/code_page.h"
#include "platform/durable_file.h"
#include "platform/profile.h"
#include "platform/profile_document.h"
#include "platform/profile_edit.h"

namespace quendle::platform {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

// The clock that stamps files advances in steps of up to 10 ms. A file changed less than this long before it
// was read may be changed once more under the same stamp.
constexpr std::int64_t kClockStep = 20'000'000;

constexpr std::size_t kMostParses = 4;

std::int64_t Nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * kNanosecondsPerSecond + time.tv_nsec;
}

// What a file looks like from outside; a file whose content changed looks different, old changes provided.
struct Looks {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  std::int64_t write_time = 0;
  std::int64_t change_time = 0;  // cannot be set by anyone, and moves with every write and rename

  bool operator==(const Looks&) const = default;
};

bool LookAt(const std::string& file, Looks* looks) {
  struct stat entry;
  if (stat(file.c_str(), &entry) != 0) return false;
  *looks = {entry.st_dev, entry.st_ino, entry.st_size, Nanoseconds(entry.st_mtim),
            Nanoseconds(entry.st_ctim)};
  return true;
}

using Parse = std::shared_ptr<const ProfileDocument>;

// The parses of the files read last. A settings window reads some twenty keys in a row, a list of profiles
// one key of each of thousands of sections.
class ParseCache {
 public:
  Parse Get(const std::string& file) {
    Looks before;
    if (!LookAt(file, &before)) return nullptr;
    const std::scoped_lock guard(mutex_);
    const auto kept = std::find_if(entries_.begin(), entries_.end(),
                                   [&](const Entry& entry) { return entry.file == file; });
    if (kept != entries_.end() && kept->looks == before) {
      std::rotate(entries_.begin(), kept, kept + 1);  // the one used last comes first
      return entries_.front().parse;
    }
    if (kept != entries_.end()) entries_.erase(kept);
    return Read(file, before);
  }

 private:
  struct Entry {
    std::string file;
    Looks looks;
    Parse parse;
  };

  Parse Read(const std::string& file, const Looks& before) {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    std::string bytes;
    if (!ReadWholeFile(file, &bytes).ok()) return nullptr;
    Parse parse = std::make_shared<const ProfileDocument>(bytes);
    Looks after;
    const bool is_settled = before.change_time < Nanoseconds(now) - kClockStep;
    if (is_settled && LookAt(file, &after) && before == after) {
      if (entries_.size() == kMostParses) entries_.pop_back();
      entries_.insert(entries_.begin(), {file, before, parse});
    }
    return parse;
  }

  std::mutex mutex_;
  std::vector<Entry> entries_;
};

Result ChangeProfile(const std::string& file, const std::function<Result(std::string*)>& edit) {
  std::unique_ptr<FolderLock> lock;
  if (Result taken = FolderLock::Take(file, &lock); !taken.ok()) return taken;
  std::string old_bytes;
  Result read = ReadWholeFile(file, &old_bytes);
  if (!read.ok() && read.code != Code::kNotFound) return read;
  std::string bytes = old_bytes;
  if (Result edited = edit(&bytes); !edited.ok()) {
    edited.path = file;
    return edited;
  }
  return bytes == old_bytes ? Success() : ReplaceFile(file, bytes);
}

}  // namespace

std::string ReadProfileString(const std::string& file, const std::string& section, const std::string& key,
                              const std::string& fallback, std::size_t buffer_bytes) {
  static ParseCache cache;
  const Parse parse = cache.Get(file);
  std::string_view value = parse == nullptr ? fallback : parse->FindValue(section, key).value_or(fallback);
  value = value.substr(0, value.find('\0'));
  return std::string(CutToAnsiBytes(value, std::max<std::size_t>(buffer_bytes, 1) - 1));
}

Result WriteProfileString(const std::string& file, const std::string& section, const std::string& key,
                          const std::string& value) {
  return ChangeProfile(file, [&](std::string* bytes) { return SetKey(section, key, value, bytes); });
}

Result DeleteProfileSection(const std::string& file, const std::string& section) {
  Result result = ChangeProfile(file, [&](std::string* bytes) { return RemoveSections(section, bytes); });
  return result.code == Code::kNotFound ? Success() : result;
}

Result WriteProfileSection(const std::string& file, const std::string& section, const std::string& body) {
  return ChangeProfile(file, [&](std::string* bytes) { return SetBody(section, body, bytes); });
}

}  // namespace quendle::platform
