// What distinguishes one archiver module from another: all of it is data here.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archive/modules/common/dialect.h"
#include "archive/modules/common/entry_reader.h"
#include "archive/modules/common/passwords.h"

namespace quendle::modules {

struct Family {
  const char* name;  // "ZIP"
  const Dialect& dialect;

  // Finds the archive in a file: at its beginning, or behind a self-extracting program. Nothing: there is
  // none. Opens the other volumes of a set, too; `*reason` says which one is missing, or that this is not the
  // first.
  std::optional<ArchiveInput> (*find)(std::shared_ptr<const platform::InputFile> file, Reason* reason);

  // The engines to try for this archive, best first. What one does not know is tried with the next.
  std::vector<Engine> (*engines)(const ArchiveInput& input);

  // Is it refused as a whole before anything is written? Null: the family has no such rule. What is read for that, the
  // first of these engines need not read again.
  platform::Result (*check)(const ArchiveInput& input, std::vector<Engine>* engines);

  // The libraries under it and their versions: "libarchive 3.6.2, libmspack 0.11".
  std::string (*libraries)();

  PasswordForm passwords = PasswordForm::kText;
};

}  // namespace quendle::modules
