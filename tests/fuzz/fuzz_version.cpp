// Programs and libraries whose version is asked for.
#include <cstdint>
#include <cstdlib>

#include "platform/services/find_version.h"
#include "platform/services/version_record.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quendle::platform;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  std::uint64_t asked = 0;
  const auto version =
      FindVersion([&](std::uint64_t position, std::size_t wanted) -> std::optional<std::string> {
        if (position > size || wanted > size - position) return std::nullopt;
        asked += wanted + 1;
        return std::string(bytes.substr(position, wanted));
      });
  if (asked > 64 + 20 * std::uint64_t{size}) std::abort();  // more than tables of what the file holds
  if (version && size < sizeof(VersionRecord)) std::abort();
  return 0;
}
