#include "archive/modules/common/sevenzip_places.h"

#include "platform/text/code_page.h"
#include "platform/text/unicode.h"

namespace quendle::modules {

// Of the packages 7zip and p7zip-full of Debian and Ubuntu, 7zip of Fedora, and 7zip of Arch.
std::vector<std::string> SevenZipPlaces() {
  return {"/usr/lib/7zip/7z.so", "/usr/lib/p7zip/7z.so", "/usr/libexec/7zip/7z.so", "/usr/lib64/7zip/7z.so",
          "/usr/libexec/p7zip/7z.so"};
}

// It takes UTF-8, and a byte outside of that for the same private-use character as TextFromAnsi does.
std::string SevenZipPassword(std::string_view bytes) {
  std::string text;
  for (char32_t character; !bytes.empty();) {
    const bool is_character = platform::TakeCodePoint(&bytes, &character);
    platform::AppendCodePoint(is_character ? character : platform::kFirstUndecodableByte + (character - 0x80),
                              &text);
  }
  return text;
}

void FindTextFunctions(const platform::Library& library, sevenzip::Char* (**allocate)(const sevenzip::Char*),
                       void (**free)(sevenzip::Char*)) {
  *allocate = library.Find<sevenzip::Char* (*)(const sevenzip::Char*)>("SysAllocString");
  *free = library.Find<void (*)(sevenzip::Char*)>("SysFreeString");
}

}  // namespace quendle::modules
