// What a copy of the program that does nothing tells the one that runs: the paths it was started with.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quendle::platform {

// To be shown, and for nothing else: whoever put them into the message may have put anything there.
struct LeftPaths {
  std::vector<std::string> names;  // as they were given; the first few
  std::size_t count = 0;           // of all of them

  void Add(const LeftPaths& more);
};

// As many of the paths as fit into `room` bytes, and how many they are. Empty when not even that fits.
std::string PackPaths(const std::vector<std::string>& paths, std::size_t room);

// Of any number of such messages in a row. What is no message is passed over.
LeftPaths UnpackPaths(std::string_view messages);

}  // namespace quendle::platform
