// What differs between the systems about 7-Zip's library.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "archive/modules/common/sevenzip_api.h"
#include "platform/services/library.h"
#include "reasons/reason.h"

namespace quendle::modules {

// The files that it may be, the best first. No other place is looked at.
std::vector<std::string> SevenZipPlaces();

// That it is at none of them, and what would help.
Reason WhyNoSevenZip();

// The text that the library, where it takes bytes for a password, makes these bytes of.
std::string SevenZipPassword(std::string_view bytes);

// The functions for strings that the library frees, or null: POSIX: its own. Windows: the system's.
void FindTextFunctions(const platform::Library& library, sevenzip::Char* (**allocate)(const sevenzip::Char*),
                       void (**free)(sevenzip::Char*));

}  // namespace quendle::modules
