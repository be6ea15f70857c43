// 7-Zip's library, loaded when an archive needs it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "archive/modules/common/sevenzip_api.h"
#include "platform/services/library.h"
#include "reasons/reason.h"

namespace quendle::modules {

class SevenZipLibrary {
 public:
  // The one of this process, which stays loaded; loading takes between one and two milliseconds. POSIX: where
  // distributions install it. Windows: beside this module. Null, with the reason, which says what to install.
  static const SevenZipLibrary* Get(Reason* reason);

  struct Released {
    void operator()(sevenzip::Unknown* object) const { object->Release(); }
  };
  // A reader for archives of that format (sevenzip::kZipFormat ...); null when the library has none.
  std::unique_ptr<sevenzip::InArchive, Released> CreateReader(std::uint8_t format) const;

  // A string as the library frees it: one unit of UTF-16 in each Char, whichever width that has.
  sevenzip::Char* NewText(std::string_view utf8) const;
  void FreeText(sevenzip::Char* text) const;

  // "7-Zip 26.02"
  std::string Version() const;

 private:
  SevenZipLibrary() = default;
  Reason Load();

  std::unique_ptr<platform::Library> library_;
  sevenzip::CreateObjectFunction create_ = nullptr;
  sevenzip::GetModulePropFunction property_ = nullptr;
  sevenzip::Char* (*new_text_)(const sevenzip::Char*) = nullptr;
  void (*free_text_)(sevenzip::Char*) = nullptr;
};

// UTF-8 of text of the library's: "\uF05C", by which it means a backslash in a name, becomes "\".
std::string FromSevenZipText(const sevenzip::Char* text);

// ", 7-Zip 26.02", to be put behind the versions of others; empty where the library is not installed.
std::string AndSevenZipVersion();

}  // namespace quendle::modules
