#include "platform/services/local_socket_posix.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstring>
#include <optional>

namespace quendle::platform {
namespace {

// By way of the open folder the address is short however deep the folder lies, and means that very folder
// even when somebody has put another in its place.
std::optional<sockaddr_un> Address(int folder, const std::string& name) {
  const std::string path = "/proc/self/fd/" + std::to_string(folder) + "/" + name;
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return std::nullopt;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  return address;
}

template <typename Call>
int AtAddress(Call call, int socket, int folder, const std::string& name) {
  const auto address = Address(folder, name);
  if (!address) return ENAMETOOLONG;
  const auto* generic = reinterpret_cast<const sockaddr*>(&*address);
  return call(socket, generic, static_cast<socklen_t>(sizeof *address)) == 0 ? 0 : errno;
}

}  // namespace

Descriptor MakeLocalSocket(int type) {
  return Descriptor(socket(AF_UNIX, type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

int BindSocket(int socket, int folder, const std::string& name) {
  return AtAddress(bind, socket, folder, name);
}

int ConnectSocket(int socket, int folder, const std::string& name) {
  return AtAddress(connect, socket, folder, name);
}

}  // namespace quendle::platform
