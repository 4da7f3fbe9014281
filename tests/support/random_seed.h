/// The seed of a test's random input.

#ifndef KVT_TESTS_RANDOM_SEED_H
#define KVT_TESTS_RANDOM_SEED_H

#include <string>

/// The number in the environment variable KVT_TEST_SEED, otherwise a fresh one.
unsigned RandomSeed();

/// What a failure shows, with SCOPED_TRACE(SeedTrace(seed)): how to get the
/// same input again.
std::string SeedTrace(unsigned seed);

#endif  // KVT_TESTS_RANDOM_SEED_H
