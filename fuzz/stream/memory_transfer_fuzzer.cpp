// Any bytes as operations of the memory transport.

#include <cstddef>
#include <cstdint>
#include <string>

#include "memory_transfer_model.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const std::string difference = CompareMemoryTransfer(data, size);
  Require(difference.empty(), difference.c_str());
  return 0;
}
