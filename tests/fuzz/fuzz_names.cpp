// Names of entries: decoded, made safe, listed and asked for again.
#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "archive/modules/common/entry_names.h"
#include "archive/modules/common/response_file.h"
#include "platform/entries/entry_path.h"
#include "platform/text/unicode.h"

namespace {

using namespace quendle;

void Check(bool holds) {
  if (!holds) std::abort();
}

void CheckSafe(const std::string& whole, platform::NameRules rules) {
  std::string path;
  const std::string name(platform::WithoutRoot(whole));
  Check(whole.ends_with(name) && platform::WithoutRoot(name) == name);
  const Reason refused = platform::SafeEntryPath(name, rules, &path).reason;
  Check(refused != Reason(why::kNameAbsolute) && refused != Reason(why::kNameHasDrive));
  if (!refused.empty()) return;
  Check(!path.empty() && path.front() != '/' && path.back() != '/' && path.find('\0') == std::string::npos);
  Check(("/" + path + "/").find("/../") == std::string::npos && path.find("//") == std::string::npos);
  std::string again;  // what is safe stays as it is
  Check(platform::SafeEntryPath(path, rules, &again).ok() && again == path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  for (const char* charset : {"", "EUC-JP", "no such charset"}) {
    const std::string name = modules::DecodeName(bytes, size % 2 == 0, charset);
    Check(platform::IsUtf8(name) && name.find('\\') == std::string::npos);
    CheckSafe(name, platform::NameRules::kPosix);
    CheckSafe(name, platform::NameRules::kWindows);
    const std::string listed = modules::ComparableName(modules::ListedName(name));
    const auto found = modules::ParseResponseFile("\"" + listed + "\"\r\n");
    Check(listed.empty() ? found.empty() : found == std::vector<std::string>{listed});
  }
  return 0;
}
