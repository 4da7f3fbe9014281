/// What the tests of both byte transports share.

#ifndef KVT_TESTS_TRANSFER_BYTES_TEST_H
#define KVT_TESTS_TRANSFER_BYTES_TEST_H

#include <gtest/gtest.h>

#include <string>

#include "KVTTransferBytes.h"

inline KVTSeekFromWhere Where(int value) {
  return static_cast<KVTSeekFromWhere>(value);
}

inline unsigned long long Write(IKVTTransferBytes& bytes, std::string text) {
  return bytes.Write(text.data(), text.size());
}

/// What one Read of at most `size` bytes delivers; nothing may be touched
/// behind it.
inline std::string Read(KVTFileTransferBytes& bytes, unsigned long long size) {
  std::string buffer(size + 1, '#');
  const unsigned long long count = bytes.Read(buffer.data(), size);
  EXPECT_EQ(buffer.substr(count), std::string(buffer.size() - count, '#'));
  return buffer.substr(0, count);
}

#endif  // KVT_TESTS_TRANSFER_BYTES_TEST_H
