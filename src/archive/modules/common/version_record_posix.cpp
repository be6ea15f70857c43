// The version of a module, for those who read it from the file. Compiled into each module by itself: a linker
// leaves out of a library of objects what nothing refers to.
#include "platform/services/version_record.h"

namespace quendle::platform {
namespace {

// Neither the linker nor strip may take it away.
[[gnu::used, gnu::retain, gnu::section(QUENDLE_VERSION_SECTION)]] constexpr VersionRecord kRecord =
    MakeVersionRecord({QUENDLE_MODULE_VERSION});

}  // namespace
}  // namespace quendle::platform
