#include "archive/modules/rar/rar_family.h"

#include <nettle/version.h>

#include <string>

#include "archive/modules/common/library_versions.h"
#include "archive/modules/rar/rar_reader.h"
#include "archive/modules/rar/rar_volumes.h"

namespace quendle::modules {
namespace {

std::vector<Engine> RarEngines(const ArchiveInput& /*input*/) {
  return {{"RAR", &OpenRar}};
}

std::string RarLibraries() {
  return std::string("nettle ")
      .append(std::to_string(nettle_version_major()))
      .append(".")
      .append(std::to_string(nettle_version_minor()))
      .append(", ")
      .append(kLibb2Version);
}

}  // namespace

const Family kRarFamily = {"RAR",         kRarDialect,         &FindRar, &RarEngines, nullptr,
                           &RarLibraries, PasswordForm::kBytes};

}  // namespace quendle::modules
