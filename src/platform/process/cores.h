// The cores that this process may use.
#pragma once

namespace quendle::platform {

// At least 1. Fewer than the machine has where the process was bound to some of them.
unsigned UsableCores();

}  // namespace quendle::platform
