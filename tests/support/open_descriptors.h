/// How many file descriptors the process holds.

#ifndef KVT_TESTS_OPEN_DESCRIPTORS_H
#define KVT_TESTS_OPEN_DESCRIPTORS_H

#include <cstddef>
#include <filesystem>
#include <iterator>

/// Counts /proc/self/fd, the descriptor of the count itself included.
inline std::size_t OpenDescriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

#endif  // KVT_TESTS_OPEN_DESCRIPTORS_H
