/// What a fuzzer states about each input.

#ifndef KVT_FUZZ_REQUIRE_H
#define KVT_FUZZ_REQUIRE_H

#include <cstdio>
#include <cstdlib>

/// Ends the process with `claim` on standard error unless `holds`; libFuzzer
/// and the corpus run both report that as a failure.
inline void Require(bool holds, const char* claim) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", claim);
  std::abort();
}

#endif  // KVT_FUZZ_REQUIRE_H
