#include "file_capabilities.h"

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <stdexcept>

namespace {

__user_cap_header_struct Header() { return {_LINUX_CAPABILITY_VERSION_3, 0}; }

// Sets the first 32 effective capabilities and returns those before.
unsigned Exchange(unsigned keep, unsigned add) {
  __user_cap_header_struct header = Header();
  __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3] = {};
  if (syscall(SYS_capget, &header, sets) != 0) {
    throw std::runtime_error("capget failed");
  }
  const unsigned previous = sets[0].effective;
  sets[0].effective = (previous & keep) | add;
  header = Header();
  if (syscall(SYS_capset, &header, sets) != 0) {
    throw std::runtime_error("capset failed");
  }
  return previous;
}

}  // namespace

WithoutFileCapabilities::WithoutFileCapabilities()
    : mPrevious(Exchange(
          ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH)), 0)) {}

WithoutFileCapabilities::~WithoutFileCapabilities() { Exchange(0, mPrevious); }
