/// Memory that the library leaves behind on purpose.

#ifndef KVT_TESTS_EXPECTED_LEAK_H
#define KVT_TESTS_EXPECTED_LEAK_H

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

/// What this thread allocates while the object lives does not count as a leak.
/// Give it the smallest scope, and the reason in a comment.
class ExpectedLeak {
 public:
#if defined(__SANITIZE_ADDRESS__)
  ExpectedLeak() { __lsan_disable(); }
  ~ExpectedLeak() { __lsan_enable(); }
#else
  ExpectedLeak() {}
  ~ExpectedLeak() {}
#endif
  ExpectedLeak(const ExpectedLeak&) = delete;
  ExpectedLeak& operator=(const ExpectedLeak&) = delete;
};

#endif  // KVT_TESTS_EXPECTED_LEAK_H
