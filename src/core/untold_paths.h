// Paths that a run with windows did not get to, and which the user cannot have seen there.
#pragma once

#include <string>
#include <vector>

#include "platform/services/left_paths.h"

namespace quendle {

struct UntoldPaths {
  std::vector<std::string> missing;  // there was nothing of that name
  std::vector<std::string> surplus;  // more than a run takes
  platform::LeftPaths left;          // those of copies that were started meanwhile

  bool IsEmpty() const { return missing.empty() && surplus.empty() && left.count == 0; }
};

// In the language of the windows, with "\r\n" between the lines, of which there are not too many for a screen.
std::string MessageOf(const UntoldPaths& untold);

// In one line.
//   => "次のファイルは処理していません：a.txt、b.txt、ほか 3 件"
std::string LineOf(const platform::LeftPaths& left);

// A line, with "\r\n" before it, for each of the first few names, and how many more there are of all `count`.
std::string NameLines(const std::vector<std::string>& names, std::size_t count);

}  // namespace quendle
