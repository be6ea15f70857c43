// What runs with and without windows begin with.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/options.h"
#include "core/clsMover.h"

namespace quendle {

// The paths as they are taken: the separators that a shell puts behind the name of a folder are no part of it. A run with
// windows takes ten; the others are named so that nobody believes them done.
std::vector<std::string> TakenPaths(const Options& options);
// Those others.
std::vector<std::string> SurplusPaths(const Options& options);

inline bool IsWindowed(const Options& options) {
  return !options.batch && !options.dry_run;
}

// False, and said on the error stream, when the folder that is to hold the settings cannot.
bool HasSettingsFolder(const Options& options);

// The lines of the file, in UTF-8, in their order; empty ones are no passwords. None when `file` is empty. False, and said on
// the error stream, when the file that is to hold passwords has none.
bool ReadPasswords(const std::string& file, std::vector<std::string>* passwords);

// The profile that the user wants for every path, as its title is written in the store; nothing when any will do. False,
// and said on the error stream, when there is no such profile. While the settings cannot be read there is no telling,
// and each path will fail with the reason: then it is the title as it was given.
bool FindProfile(const Options& options, clsMover* mover, std::optional<std::string>* title);

}  // namespace quendle
