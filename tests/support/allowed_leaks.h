/// Leaks that the library's callers rely on, kept out of LeakSanitizer's
/// report.

#ifndef KVT_TESTS_ALLOWED_LEAKS_H
#define KVT_TESTS_ALLOWED_LEAKS_H

// <sanitizer/lsan_interface.h>; null in a build without LeakSanitizer.
extern "C" {
__attribute__((weak)) void __lsan_disable();
__attribute__((weak)) void __lsan_enable();
}

/// What this thread allocates while the object lives may leak.  Put it around
/// the one call that leaks on purpose and say why.
class AllowedLeaks {
 public:
  AllowedLeaks() {
    if (__lsan_disable != nullptr) __lsan_disable();
  }
  ~AllowedLeaks() {
    if (__lsan_enable != nullptr) __lsan_enable();
  }
  AllowedLeaks(const AllowedLeaks&) = delete;
  AllowedLeaks& operator=(const AllowedLeaks&) = delete;
};

#endif  // KVT_TESTS_ALLOWED_LEAKS_H
