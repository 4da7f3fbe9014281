// The streams that only say what they are, and the singleton.

#include <type_traits>

#include "stream_test.h"

namespace {

using testing::Return;
using testing::StrictMock;

template <class Stream>
class StreamWithoutEffect : public testing::Test {};

using StreamsWithoutEffect = testing::Types<KVTWriteStream, KVTReadWriteStream>;
TYPED_TEST_SUITE(StreamWithoutEffect, StreamsWithoutEffect);

TYPED_TEST(StreamWithoutEffect, TransfersNothing) {
  StrictMock<MockTransport> transport;
  ExpectNothingTransferred<TypeParam>(&transport);
  Opened<TypeParam> stream(&transport);
  unsigned char bytes[2] = {1, 2};
  EXPECT_EQ(stream.TransferByte(bytes[0]), 0);
  EXPECT_EQ(stream.TransferByte(bytes, 2), 0);
  EXPECT_TRUE(bytes[0] == 1 && bytes[1] == 2);
  bool value = true;
  EXPECT_EQ(stream.TransferBool(value), 0);
  EXPECT_TRUE(value);
  EXPECT_CALL(transport, Destroyed());
}

TYPED_TEST(StreamWithoutEffect, NeverTouchesItsTransport) {
  StrictMock<MockTransport> transport;
  {
    Opened<TypeParam> stream(&transport);
    EXPECT_EQ(stream.GetStreamState(), KVTStreamAtEnd);
    EXPECT_EQ(stream.Seek(5, KVTSeekFromBeginning), 0u);
    EXPECT_EQ(stream.Seek(-5, KVTSeekFromEnd), 0u);
    EXPECT_EQ(stream.Tell(), 0u);
    stream.SetEndOfStream();
    stream.Flush();
    stream.Close();
    EXPECT_EQ(stream.GetStreamState(), KVTStreamAtEnd);
  }
  // It is alive still.
  EXPECT_CALL(transport, Tell()).WillOnce(Return(3));
  EXPECT_EQ(transport.Tell(), 3u);
  EXPECT_CALL(transport, Destroyed());
}

TYPED_TEST(StreamWithoutEffect, DoesNotKeepTheWishToSwap) {
  Opened<TypeParam> stream(nullptr);
  EXPECT_FALSE(stream.GetSwapping());
  stream.SetSwapping(true);
  EXPECT_FALSE(stream.GetSwapping());
}

TEST(WriteStream, IsWriting) {
  Opened<KVTWriteStream> stream(nullptr);
  EXPECT_FALSE(stream.IsReading());
  EXPECT_TRUE(stream.IsWriting());
}

TEST(ReadWriteStream, IsNeitherReadingNorWriting) {
  Opened<KVTReadWriteStream> stream(nullptr);
  EXPECT_FALSE(stream.IsReading());
  EXPECT_FALSE(stream.IsWriting());
}

TEST(WriteStream, LeavesItsTransportUsable) {
  KVTMemoryTransferBytes bytes(nullptr, 16);
  { Opened<KVTWriteStream> stream(&bytes); }
  char text[] = "abc";
  EXPECT_EQ(bytes.Write(text, 3), 3u);
}

KVTStreamUtil* const instanceAtLoad = KVTStreamUtil::mUtil;

TEST(StreamUtil, MakesOneInstanceAndKeepsIt) {
  EXPECT_EQ(instanceAtLoad, nullptr);
  KVTStreamUtil* const first = KVTStreamUtil::GetInstance();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(KVTStreamUtil::GetInstance(), first);
  EXPECT_EQ(KVTStreamUtil::mUtil, first);
  EXPECT_TRUE(std::is_empty<KVTStreamUtil>::value);
}

TEST(StreamUtil, MakesAnotherInstanceWhenItsPointerIsNull) {
  KVTStreamUtil* const first = KVTStreamUtil::GetInstance();
  KVTStreamUtil::mUtil = nullptr;
  KVTStreamUtil* const second = KVTStreamUtil::GetInstance();
  EXPECT_NE(second, first);
  EXPECT_EQ(KVTStreamUtil::mUtil, second);
  KVTStreamUtil::mUtil = first;
  delete second;
}

}  // namespace
