#include "archive/modules/common/sevenzip_library.h"

#include <vector>

#include "archive/modules/common/sevenzip_places.h"
#include "platform/entries/input_file.h"
#include "platform/text/unicode.h"

namespace quendle::modules {
namespace {

using sevenzip::Char, sevenzip::Variant;

constexpr char32_t kBackslashInName = 0xF05C;

}  // namespace

const SevenZipLibrary* SevenZipLibrary::Get(Reason* reason) {
  static SevenZipLibrary* const library =
      new SevenZipLibrary;  // never unloaded: objects of it may outlive anything
  static const Reason why_not = library->Load();
  *reason = why_not;
  return why_not.empty() ? library : nullptr;
}

Reason SevenZipLibrary::Load() {
  for (const std::string& path : SevenZipPlaces()) {
    std::unique_ptr<platform::InputFile> file;
    if (!platform::InputFile::Open(path, &file).ok()) continue;
    const platform::Result loaded = platform::Library::Load(path, &library_);
    if (!loaded.ok()) return why::kAbout(path, loaded.reason);
    create_ = library_->Find<sevenzip::CreateObjectFunction>("CreateObject");
    property_ = library_->Find<sevenzip::GetModulePropFunction>("GetModuleProp");
    FindTextFunctions(*library_, &new_text_, &free_text_);
    Variant layout;
    const bool is_young = property_ != nullptr && property_(0, &layout) == sevenzip::kOk &&
                          layout.type == sevenzip::kNumber32Type && layout.value.number == 0;
    const bool is_whole = create_ != nullptr && new_text_ != nullptr && free_text_ != nullptr;
    return is_young && is_whole ? Reason() : why::kOldSevenZip(path);
  }
  return WhyNoSevenZip();
}

std::unique_ptr<sevenzip::InArchive, SevenZipLibrary::Released> SevenZipLibrary::CreateReader(
    std::uint8_t format) const {
  const sevenzip::Guid what = sevenzip::FormatId(format);
  void* object = nullptr;
  if (create_(&what, &sevenzip::InArchive::kId, &object) != sevenzip::kOk) object = nullptr;
  return std::unique_ptr<sevenzip::InArchive, Released>(static_cast<sevenzip::InArchive*>(object));
}

Char* SevenZipLibrary::NewText(std::string_view utf8) const {
  const std::string utf16 = platform::ToUtf16Le(utf8);
  std::vector<Char> text;
  for (std::size_t at = 0; at + 1 < utf16.size(); at += 2) {
    text.push_back(static_cast<Char>(static_cast<unsigned char>(utf16[at]) |
                                     static_cast<unsigned char>(utf16[at + 1]) << 8U));
  }
  text.push_back(0);
  return new_text_(text.data());
}

void SevenZipLibrary::FreeText(Char* text) const {
  free_text_(text);
}

std::string SevenZipLibrary::Version() const {
  Variant version;
  if (property_ == nullptr || property_(1, &version) != sevenzip::kOk ||
      version.type != sevenzip::kNumber32Type)
    return "7-Zip";
  const std::string minor = std::to_string(version.value.number & 0xFFFF);
  return std::string("7-Zip ")
      .append(std::to_string(version.value.number >> 16 & 0xFFFF))
      .append(minor.size() < 2 ? ".0" : ".")
      .append(minor);
}

std::string FromSevenZipText(const Char* text) {
  std::string ascii;
  const Char* end = text;
  while (end != nullptr && *end > 0 && *end < 0x80) ascii += static_cast<char>(*end++);
  if (end == nullptr || *end == 0) return ascii;
  std::string utf16;
  for (; text != nullptr && *text != 0; ++text) {
    auto character = static_cast<char32_t>(*text);
    if (character == kBackslashInName) character = '\\';
    if (character > 0xFFFF) {
      const char32_t half = 0xD7C0 + (character >> 10U);
      utf16 += static_cast<char>(half & 0xFF);
      utf16 += static_cast<char>(half >> 8U & 0xFF);
      character = 0xDC00 + (character & 0x3FF);
    }
    utf16 += static_cast<char>(character & 0xFF);
    utf16 += static_cast<char>(character >> 8U & 0xFF);
  }
  return platform::FromUtf16Le(utf16);
}

std::string AndSevenZipVersion() {
  Reason reason;
  const SevenZipLibrary* const library = SevenZipLibrary::Get(&reason);
  return library == nullptr ? "" : ", " + library->Version();
}

}  // namespace quendle::modules
