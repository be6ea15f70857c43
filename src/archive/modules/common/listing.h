// What is in an archive.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "archive/modules/common/family.h"

namespace quendle::modules {

struct OpenedArchive {
  ArchiveInput input;
  std::vector<Engine> engines;  // best first: the one that listed it is the first
  std::vector<Entry> entries;   // in archive order
  Reason problem;               // why there may be more than the entries; empty: these are all
  PasswordForm password_form;
  std::optional<std::string> password;  // that opened the list; the entries may have others
};

// Lists what `input` holds with the first of the family's engines that can do it to the end, or else with the
// one that comes farthest. A list that is encrypted is tried with one password after the other; `ask` is called
// for those, as Passwords does. Null, with the reason, when the archive is refused or nothing of it can be listed.
std::unique_ptr<OpenedArchive> ListArchive(const Family& family, const ArchiveInput& input,
                                           const std::string& charset,
                                           std::function<std::optional<std::string>()> ask, Reason* reason);

}  // namespace quendle::modules
