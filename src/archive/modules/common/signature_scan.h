// Finding the archive behind a self-extracting program.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "archive/modules/common/archive_input.h"

namespace quendle::modules {

// A candidate is a position at which one of the `signatures` stands `lead` bytes further on ("-lh5-" stands 2
// bytes into its header). Answers the first one at which `fits` agrees: right at the beginning, or, when the
// input begins with an executable program, anywhere in its first `reach` bytes. Behind other bytes an archive is
// looked for only where the family asks for it, and not in what begins with the mark of another archive, which
// may hold archives of its own.
//
// `fits` is to look at the candidate's own header and no further: it is asked in an order and as often as
// whoever made the file likes, up to 10,000 times. A file with more candidates holds no archive.
struct SignatureRule {
  std::vector<std::string_view> signatures;
  std::size_t lead = 0;
  std::uint64_t reach = 8U << 20;
  bool behind_anything = false;
};
std::optional<std::uint64_t> FindSignature(const ArchiveInput& input, const SignatureRule& rule,
                                           const std::function<bool(std::uint64_t position)>& fits);

// Does it begin with an executable program: of Windows or DOS (MZ), ELF, or Mach-O for one or several machines?
bool BeginsWithProgram(const ArchiveInput& input);

}  // namespace quendle::modules
