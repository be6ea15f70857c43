#include "platform/services/left_paths.h"

#include <algorithm>
#include <charconv>

namespace quendle::platform {
namespace {

// More than anybody reads.
constexpr std::size_t kMostNames = 20;

// What stands before the next zero, which goes, too.
std::string_view TakeField(std::string_view* message) {
  const std::size_t end = std::min(message->find('\0'), message->size());
  const std::string_view field = message->substr(0, end);
  message->remove_prefix(std::min(end + 1, message->size()));
  return field;
}

}  // namespace

void LeftPaths::Add(const LeftPaths& more) {
  for (const std::string& name : more.names) {
    if (names.size() < kMostNames) names.push_back(name);
  }
  count += more.count;
}

// The number, the names, and an empty one behind the last, each with a zero behind it, which no path has in it.
std::string PackPaths(const std::vector<std::string>& paths, std::size_t room) {
  std::string message = std::to_string(paths.size()) + '\0';
  if (message.size() + 1 > room) return "";
  std::size_t names = 0;
  for (const std::string& path : paths) {
    if (path.empty() || message.size() + path.size() + 2 > room) continue;
    if (++names > kMostNames) break;
    message += path + '\0';
  }
  return message + '\0';
}

LeftPaths UnpackPaths(std::string_view messages) {
  LeftPaths all;
  while (!messages.empty()) {
    LeftPaths paths;
    const std::string_view number = TakeField(&messages);
    std::from_chars(number.data(), number.data() + number.size(), paths.count);
    for (std::string_view name; !(name = TakeField(&messages)).empty();) paths.names.emplace_back(name);
    paths.count = std::max(paths.count, paths.names.size());
    all.Add(paths);
  }
  return all;
}

}  // namespace quendle::platform
