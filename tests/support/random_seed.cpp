#include "random_seed.h"

#include <cstdlib>
#include <random>

unsigned RandomSeed() {
  if (const char* const seed = std::getenv("KVT_TEST_SEED")) {
    return static_cast<unsigned>(std::strtoul(seed, nullptr, 10));
  }
  return std::random_device()();
}

std::string SeedTrace(unsigned seed) {
  return "again with KVT_TEST_SEED=" + std::to_string(seed);
}
