// Preloaded into kvtshare: a mount(2) that shows its options on standard error
// and refuses the login.

#include <sys/mount.h>

#include <cerrno>
#include <cstdio>

extern "C" int mount(const char*, const char*, const char*, unsigned long,
                     const void* data) noexcept {
  std::fprintf(stderr, "%s\n", static_cast<const char*>(data));
  errno = EACCES;
  return -1;
}
