// Sockets that are entries of a folder.
#pragma once

#include <string>

#include "platform/entries/descriptor_posix.h"

namespace quendle::platform {

// A socket of that type (SOCK_STREAM ...) that never waits and is not handed on to other programs.
Descriptor MakeLocalSocket(int type);

// Names a socket `name` in the open folder, which may lie deeper than the 107 bytes that the address of a
// socket holds; or connects it to the one of that name. 0 or an errno.
int BindSocket(int socket, int folder, const std::string& name);
int ConnectSocket(int socket, int folder, const std::string& name);

}  // namespace quendle::platform
