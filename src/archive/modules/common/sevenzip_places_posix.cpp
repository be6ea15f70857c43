#include "archive/modules/common/sevenzip_places.h"

namespace quendle::modules {

// Of the packages 7zip and p7zip-full of Debian and Ubuntu, 7zip of Fedora, and 7zip of Arch.
std::vector<std::string> SevenZipPlaces() {
  return {"/usr/lib/7zip/7z.so", "/usr/lib/p7zip/7z.so", "/usr/libexec/7zip/7z.so", "/usr/lib64/7zip/7z.so",
          "/usr/libexec/p7zip/7z.so"};
}

Reason WhyNoSevenZip() {
  return why::kNoSevenZip;
}

// It takes UTF-8 only: bytes of another encoding never fit.
std::string SevenZipPassword(std::string_view bytes) {
  return std::string(bytes);
}

void FindTextFunctions(const platform::Library& library, sevenzip::Char* (**allocate)(const sevenzip::Char*),
                       void (**free)(sevenzip::Char*)) {
  *allocate = library.Find<sevenzip::Char* (*)(const sevenzip::Char*)>("SysAllocString");
  *free = library.Find<void (*)(sevenzip::Char*)>("SysFreeString");
}

}  // namespace quendle::modules
