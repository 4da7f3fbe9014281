#include "sized_bytes.h"

#include <cstdint>
#include <random>

std::string Bytes(std::size_t size) {
  std::mt19937_64 random(size);
  std::string bytes(size + 8, '\0');
  for (std::size_t i = 0; i < size; i += 8) {
    const std::uint64_t word = random();
    bytes.replace(i, 8, reinterpret_cast<const char*>(&word), 8);
  }
  bytes.resize(size);
  return bytes;
}
