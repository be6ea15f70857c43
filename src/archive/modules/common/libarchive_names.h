// The names that libarchive tells, as it has them: it keeps them in the form that the system takes for its own.
#pragma once

#include <archive_entry.h>

#include <string>

namespace quendle::modules {

// UTF-8 where the archive's names are Unicode, else the archive's bytes. Empty when there is none. On POSIX to be called
// while a platform::Utf8Locale lives.
std::string PathnameOf(archive_entry* entry);
std::string LinkTargetOf(archive_entry* entry);

}  // namespace quendle::modules
