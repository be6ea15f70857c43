// The command line of the program.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quendle {

struct Options {
  bool batch = false;
  bool dry_run = false;
  bool json = false;
  bool confirm = false;
  bool help = false;
  bool version = false;
  std::string settings;                // folder of the settings files; empty: the usual one
  std::optional<std::string> profile;  // the profile for every path
  std::string password_file;           // its lines are the passwords for archives; empty: none
  std::vector<std::string> paths;
};

// Reads the arguments, the program's own name first. An argument after "--" is a path. Wrong usage gives
// nothing, and
// `*problem` says what is wrong in one line.
std::optional<Options> ParseOptions(const std::vector<std::string>& arguments, std::string* problem);

std::string UsageText();

}  // namespace quendle
