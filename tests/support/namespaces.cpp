#include "namespaces.h"

#include <errno.h>
#include <net/if.h>
#include <sched.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>

#include <sys/mount.h>

namespace {

void Check(bool done, const std::string& what) {
  if (!done) throw std::runtime_error(what + ": " + strerror(errno));
}

// Straight to the kernel: a test program may stand in for mount(2) itself.
void Mount(const char* source, const std::string& target, const char* type,
           unsigned long flags, const char* data) {
  Check(syscall(SYS_mount, source, target.c_str(), type, flags, data) == 0,
        "mount on " + target);
}

void MapToRoot(uid_t user, gid_t group) {
  std::ofstream("/proc/self/setgroups") << "deny";
  std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
  std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
}

void Unshare(int flags) {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (user != 0) flags |= CLONE_NEWUSER;
  Check(unshare(flags) == 0, "unshare");
  if (user != 0) MapToRoot(user, group);
  Mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
}

void BringLoopbackUp() {
  const int fd = socket(AF_INET, SOCK_DGRAM, 0);
  Check(fd >= 0, "socket");
  ifreq request = {};
  strcpy(request.ifr_name, "lo");
  request.ifr_flags = IFF_UP | IFF_RUNNING;
  const bool up = ioctl(fd, SIOCSIFFLAGS, &request) == 0;
  close(fd);
  Check(up, "bring up lo");
}

}  // namespace

void EnterPrivateMounts() { Unshare(CLONE_NEWNS); }

void EnterPrivateMountsAndNetwork() {
  Unshare(CLONE_NEWNS | CLONE_NEWNET);
  BringLoopbackUp();
}

void CoverWithEmptyDirectory(const std::string& path, unsigned long bytes) {
  const std::string data = bytes == 0 ? "" : "size=" + std::to_string(bytes);
  Mount("tmpfs", path, "tmpfs", 0, data.c_str());
}

void CoverWithReadOnlyDirectory(const std::string& path) {
  Mount("tmpfs", path, "tmpfs", MS_RDONLY, nullptr);
}

void CoverWith(const std::string& source, const std::string& target) {
  Mount(source.c_str(), target, nullptr, MS_BIND, nullptr);
}

void Uncover(const std::string& path) {
  Check(syscall(SYS_umount2, path.c_str(), MNT_DETACH) == 0, "umount " + path);
}
