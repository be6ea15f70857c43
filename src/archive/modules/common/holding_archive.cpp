#include "archive/modules/common/holding_archive.h"

#include <string_view>

#include "archive/modules/cab/cab_header.h"
#include "archive/modules/common/signature_scan.h"
#include "archive/modules/rar/rar_headers.h"
#include "archive/modules/sevenzip/sevenzip_headers.h"

namespace quendle::modules {

bool LiesInOtherArchive(const ArchiveInput& input, std::uint64_t position) {
  if (position == 0 || !BeginsWithProgram(input)) return false;
  SignatureRule rule{{kSevenZipSignature, "MSCF", "Rar!\x1A\x07"}};
  rule.reach = position;
  const auto other = FindSignature(input, rule, [&](std::uint64_t candidate) {
    if (const auto start = ReadSevenZipStart(input, candidate))
      return candidate + start->end_offset + start->end_size > position;
    if (const auto cabinet = ReadCabHeader(input, candidate)) return candidate + cabinet->size > position;
    return BeginsRar(input, candidate);  // which does not say how long it is
  });
  return other.has_value();
}

}  // namespace quendle::modules
