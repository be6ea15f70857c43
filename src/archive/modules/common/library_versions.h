// Libraries that do not tell their version while they run: the one that the module was built with.
#pragma once

namespace quendle::modules {

inline constexpr const char* kLhasaVersion = "lhasa " QUENDLE_LHASA_VERSION;
inline constexpr const char* kLibb2Version = "libb2 " QUENDLE_LIBB2_VERSION;
inline constexpr const char* kMspackVersion = "libmspack " QUENDLE_MSPACK_VERSION;

}  // namespace quendle::modules
