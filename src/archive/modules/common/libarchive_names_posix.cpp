#include "archive/modules/common/libarchive_names.h"

namespace quendle::modules {
namespace {

std::string TextOf(const char* name) {
  return name == nullptr ? "" : name;
}

}  // namespace

std::string PathnameOf(archive_entry* entry) {
  return TextOf(archive_entry_pathname(entry));
}

std::string LinkTargetOf(archive_entry* entry) {
  return TextOf(archive_entry_symlink(entry));
}

}  // namespace quendle::modules
