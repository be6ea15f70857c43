#include "platform/text/wide_win32.h"

#include <oleauto.h>

#include "archive/modules/common/sevenzip_places.h"
#include "platform/text/code_page.h"

namespace quendle::modules {
namespace {

// Of the file that this code was loaded from, be it a library or a program.
std::string OwnFolder() {
  HMODULE own = nullptr;
  const auto* const inside = reinterpret_cast<const wchar_t*>(&OwnFolder);
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     inside, &own);
  const std::string path = platform::TextFromSystemPath(platform::WholeText([own](wchar_t* text, DWORD size) {
    const DWORD length = GetModuleFileNameW(own, text, size);
    return length < size ? length : size * 2;  // cut off, and does not say what it needs
  }));
  return path.substr(0, path.rfind('\\') + 1);
}

}  // namespace

// Beside the archiver library that this code is in, whichever program loaded that.
std::vector<std::string> SevenZipPlaces() {
  return {OwnFolder() + "7z.dll"};
}

Reason WhyNoSevenZip() {
  return why::kNeedsFile(SevenZipPlaces().front());
}

// It takes the system's code page.
std::string SevenZipPassword(std::string_view bytes) {
  return platform::TextFromAnsi(bytes);
}

void FindTextFunctions(const platform::Library&, sevenzip::Char* (**allocate)(const sevenzip::Char*),
                       void (**free)(sevenzip::Char*)) {
  *allocate = [](const sevenzip::Char* text) { return static_cast<sevenzip::Char*>(SysAllocString(text)); };
  *free = [](sevenzip::Char* text) { SysFreeString(text); };
}

}  // namespace quendle::modules
