// Here the library keeps in UTF-16 what it has converted; its functions for bytes would lose what the code page has not.
#include "archive/modules/common/libarchive_names.h"
#include "platform/text/wide_win32.h"

namespace quendle::modules {
namespace {

std::string TextOf(const wchar_t* name) {
  return name == nullptr ? "" : platform::TextFromWide(name);
}

}  // namespace

std::string PathnameOf(archive_entry* entry) {
  return TextOf(archive_entry_pathname_w(entry));
}

// Often it is what the archive has as content, which is not converted: each byte would become a character.
std::string LinkTargetOf(archive_entry* entry) {
  const char* bytes = archive_entry_symlink(entry);
  return bytes != nullptr ? bytes : TextOf(archive_entry_symlink_w(entry));
}

}  // namespace quendle::modules
