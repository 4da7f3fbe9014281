#include "sockets_and_devices.h"

#include <errno.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <stdexcept>

namespace {

// Set aside for local use, so that nothing answers there.
constexpr unsigned kLocalMajor = 250;

[[noreturn]] void Throw(const std::string& what) {
  throw std::runtime_error(what + ": " + strerror(errno));
}

}  // namespace

void MakeSocket(const std::string& path) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    throw std::runtime_error("too long for a socket: " + path);
  }
  path.copy(address.sun_path, path.size());
  const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  if (fd < 0) Throw("socket");
  const int result =
      bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  close(fd);
  if (result != 0) Throw("bind " + path);
}

void MakeDevice(const std::string& path, mode_t type) {
  if (mknod(path.c_str(), type | 0600, makedev(kLocalMajor, 0)) != 0) {
    Throw("mknod " + path);
  }
}
