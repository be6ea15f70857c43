#include "core/profile_pattern.h"

#include <algorithm>

#include "platform/text/unicode.h"

namespace quendle {
namespace {

// The front of the name up to and with its last separator, when it does not end in a number; else up to the
// number. All that is looked for is ASCII, so that bytes serve as well as characters.
std::string Head(const std::string& name) {
  std::size_t cut = 1;
  for (const char separator : {'_', '-', ' '}) {
    if (const std::size_t at = name.find(separator); at != std::string::npos) cut = std::max(cut, at + 1);
  }
  std::size_t kept = name.size();
  while (kept > cut && name[kept - 1] >= '0' && name[kept - 1] <= '9') --kept;
  if (kept != name.size()) return name.substr(0, kept);
  return cut == 1 ? name : name.substr(0, cut);
}

}  // namespace

std::string MakePatternFromTarget(const clsFileInfo& target) {
  // Without a dot the whole name counts as the extension there, and as the name here. Names are matched like
  // this, too.
  const bool has_dot = target.pFileNameLong().find('.') != std::string::npos;
  const std::string name =
      platform::WithReplacementCharacters(has_dot ? target.pFileNameNoExt() : target.pFileNameLong());
  const std::string extension =
      has_dot ? platform::WithReplacementCharacters(target.pFileNameExtension()) : "";
  return Head(name) + ".*" + (extension.empty() ? "" : "\\." + extension);
}

}  // namespace quendle
