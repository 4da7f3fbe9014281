/// What transfers of a given size carry.

#ifndef KVT_TESTS_SIZED_BYTES_H
#define KVT_TESTS_SIZED_BYTES_H

#include <cstddef>
#include <string>

/// `size` bytes, the same at every call, that never repeat in a way a lost or
/// doubled block would hide.
std::string Bytes(std::size_t size);

/// Makes `path` a file of those bytes, which are never all in memory.  Throws
/// std::runtime_error when it cannot be written.
void WriteBytes(const std::string& path, std::size_t size);

#endif  // KVT_TESTS_SIZED_BYTES_H
