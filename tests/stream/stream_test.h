/// What the tests of the typed streams share.

#ifndef KVT_TESTS_STREAM_TEST_H
#define KVT_TESTS_STREAM_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KVTStream.h"
#include "test_strings.h"

/// A stream class with the operation that it leaves open.
template <class Stream>
class Opened : public Stream {
 public:
  using Stream::Stream;
  bool Open() override { return true; }
};

using ReadStream = Opened<KVTReadStream>;

class MockTransport : public IKVTTransferBytes {
 public:
  ~MockTransport() override { Destroyed(); }
  MOCK_METHOD(void, Destroyed, ());
  MOCK_METHOD(unsigned long long, Read, (void*, unsigned long long),
              (override));
  MOCK_METHOD(unsigned long long, Write, (void*, unsigned long long),
              (override));
  MOCK_METHOD(unsigned long long, Seek, (unsigned long long, KVTSeekFromWhere),
              (override));
  MOCK_METHOD(unsigned long long, Tell, (), (override));
  MOCK_METHOD(void, Flush, (), (override));
  MOCK_METHOD(KVTStreamState, GetStreamState, (), (override));
  MOCK_METHOD(void, SetEndOfStream, (), (override));
};

/// A Read that delivers `byte`.
inline auto Deliver(unsigned char byte) {
  return [byte](void* buffer, unsigned long long) {
    *static_cast<unsigned char*>(buffer) = byte;
    return 1ull;
  };
}

/// The wider types move nothing: the strict mock allows no call.
template <class Stream>
void ExpectNothingTransferred(IKVTTransferBytes* transport) {
  Opened<Stream> stream(transport);
  bool bools[2] = {true, false};
  EXPECT_EQ(stream.TransferBool(bools, 2), 0);
  EXPECT_TRUE(bools[0] && !bools[1]);
  short shorts[2] = {11, 12};
  EXPECT_EQ(stream.TransferInt16(shorts[0]), 0);
  EXPECT_EQ(stream.TransferInt16(shorts, 2), 0);
  EXPECT_TRUE(shorts[0] == 11 && shorts[1] == 12);
  int ints[2] = {21, 22};
  EXPECT_EQ(stream.TransferInt32(ints[0]), 0);
  EXPECT_EQ(stream.TransferInt32(ints, 2), 0);
  EXPECT_TRUE(ints[0] == 21 && ints[1] == 22);
  long long longs[2] = {31, 32};
  EXPECT_EQ(stream.TransferInt64(longs[0]), 0);
  EXPECT_EQ(stream.TransferInt64(longs, 2), 0);
  EXPECT_TRUE(longs[0] == 31 && longs[1] == 32);
  KVTString text = "text";
  for (int flags = 0; flags < 4; ++flags) {
    EXPECT_EQ(stream.TransferString(text, (flags & 1) != 0, (flags & 2) != 0),
              KVTString());
  }
  EXPECT_EQ(text, "text");
  char comment[] = "comment";
  stream.Comment(comment);
  stream.Comment(nullptr);
  EXPECT_STREQ(comment, "comment");
  stream.Close();
}

#endif  // KVT_TESTS_STREAM_TEST_H
