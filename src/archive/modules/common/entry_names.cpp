#include "archive/modules/common/entry_names.h"

#include <algorithm>
#include <optional>

#include "platform/text/code_page.h"
#include "platform/text/unicode.h"

namespace quendle::modules {
namespace {

// Five bytes are none of its characters; like every byte that cannot be looked up they become the control
// character of that number, so that each name has a text.
std::string FromWindows1252(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    if (const auto character = platform::TextFromEncoding({&byte, 1}, "CP1252")) {
      text += *character;
    } else {
      platform::AppendCodePoint(static_cast<unsigned char>(byte), &text);
    }
  }
  return text;
}

std::string Decode(std::string_view bytes, bool says_utf8, const std::string& charset) {
  if (!says_utf8 && !charset.empty()) {
    if (auto text = platform::TextFromEncoding(bytes, charset)) return *text;
  }
  if (platform::IsUtf8(bytes)) return std::string(bytes);
  if (auto text = platform::TextFromEncoding(bytes, "CP932")) return *text;
  return FromWindows1252(bytes);
}

}  // namespace

std::string DecodeName(std::string_view bytes, bool says_utf8, const std::string& charset) {
  std::string name = Decode(bytes, says_utf8, charset);
  std::replace(name.begin(), name.end(), '\\', '/');
  return name;
}

std::string WithoutCurrentFolder(std::string path) {
  while (path.starts_with("./")) path.erase(0, std::min(path.find_first_not_of('/', 1), path.size()));
  return path;
}

bool IsKnownCharset(const std::string& charset) {
  return platform::TextFromEncoding("", charset).has_value();
}

}  // namespace quendle::modules
