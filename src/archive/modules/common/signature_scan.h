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
// input begins with an executable program (MZ, or ELF), anywhere in its first `reach` bytes. What is to be found
// in programs of other kinds is not looked for, so that a text about archives is none.
struct SignatureRule {
  std::vector<std::string_view> signatures;
  std::size_t lead = 0;
  std::uint64_t reach = 8U << 20;
};
std::optional<std::uint64_t> FindSignature(const ArchiveInput& input, const SignatureRule& rule,
                                           const std::function<bool(std::uint64_t position)>& fits);

// Does it begin with an executable program?
bool BeginsWithProgram(const ArchiveInput& input);

}  // namespace quendle::modules
