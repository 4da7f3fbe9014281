#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <new>
#include <string>
#include <type_traits>

#include "KVTStream.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

using testing::_;
using testing::InSequence;
using testing::Return;
using testing::StrictMock;

static_assert(KVTSeekFromBeginning == 1 && KVTSeekFromCurrent == 2 &&
                  KVTSeekFromEnd == 4,
              "");
static_assert(KVTStreamGood == 0 && KVTStreamAtEnd == 1 &&
                  KVTStreamNoStorage == 2 && KVTStreamFailed == 3,
              "");

// The classes leave Open to be supplied.
static_assert(std::is_abstract<KVTReadStream>::value, "");
static_assert(std::is_abstract<KVTWriteStream>::value, "");
static_assert(std::is_abstract<KVTReadWriteStream>::value, "");

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

// A Read that delivers `byte`.
auto Deliver(unsigned char byte) {
  return [byte](void* buffer, unsigned long long) {
    *static_cast<unsigned char*>(buffer) = byte;
    return 1ull;
  };
}

TEST(ReadStream, OwnsItsTransport) {
  auto* const transport = new StrictMock<MockTransport>;
  ReadStream* const stream = new ReadStream(transport);
  EXPECT_CALL(*transport, Destroyed());
  delete stream;
}

TEST(ReadStream, DeletesItsTransportThroughTheInterface) {
  auto* const transport = new StrictMock<MockTransport>;
  IKVTStream* const stream = new ReadStream(transport);
  EXPECT_CALL(*transport, Destroyed());
  delete stream;
}

TEST(ReadStream, MayHaveNoTransport) {
  ReadStream stream(nullptr);
  EXPECT_TRUE(stream.IsReading());
}

TEST(ReadStreamDeathTest, TransfersNothingWithoutATransport) {
  ReadStream stream(nullptr);
  unsigned char byte = 0;
  bool value = false;
#ifdef __SANITIZE_ADDRESS__
  const testing::Matcher<const std::string&> report =
      testing::ContainsRegex("null pointer|SEGV");
  EXPECT_DEATH(stream.TransferByte(byte), report);
  EXPECT_DEATH(stream.TransferBool(value), report);
  EXPECT_DEATH(stream.Tell(), report);
#else
  const testing::KilledBySignal crash(SIGSEGV);
  EXPECT_EXIT(stream.TransferByte(byte), crash, "");
  EXPECT_EXIT(stream.TransferBool(value), crash, "");
  EXPECT_EXIT(stream.Tell(), crash, "");
#endif
}

int closes = 0;

class CountsCloses : public ReadStream {
 public:
  using ReadStream::ReadStream;
  void Close() override { ++closes; }
};

TEST(ReadStream, CallsItsOwnCloseWhenDestroyed) {
  closes = 0;
  { CountsCloses stream(nullptr); }
  EXPECT_EQ(closes, 0);
}

TEST(ReadStream, CloseDoesNothing) {
  auto* const transport = new StrictMock<MockTransport>;
  ReadStream stream(transport);
  stream.Close();
  EXPECT_CALL(*transport, Tell()).WillOnce(Return(5));
  EXPECT_EQ(stream.Tell(), 5u);
  EXPECT_CALL(*transport, Destroyed());
}

TEST(ReadStream, TransfersOneByteIntoTheVariable) {
  auto* const transport = new StrictMock<MockTransport>;
  ReadStream stream(transport);
  unsigned char value = 7;
  EXPECT_CALL(*transport, Read(&value, 1)).WillOnce(Deliver(0xFE));
  EXPECT_EQ(stream.TransferByte(value), 0xFE);
  EXPECT_EQ(value, 0xFE);
  EXPECT_CALL(*transport, Destroyed());
}

TEST(ReadStream, AFailedByteLooksLikeTheOldValue) {
  auto* const transport = new StrictMock<MockTransport>;
  ReadStream stream(transport);
  unsigned char value = 200;
  EXPECT_CALL(*transport, Read(&value, 1)).WillOnce(Return(0));
  EXPECT_EQ(stream.TransferByte(value), 200);
  EXPECT_EQ(value, 200);
  EXPECT_CALL(*transport, Destroyed());
}

TEST(ReadStream, TransfersBytesWithTheResultOfTheTransport) {
  auto* const transport = new StrictMock<MockTransport>;
  ReadStream stream(transport);
  unsigned char values[4] = {};
  InSequence sequence;
  EXPECT_CALL(*transport, Read(values, 4)).WillOnce(Return(3));
  EXPECT_CALL(*transport, Read(values, 0)).WillOnce(Return(0));
  EXPECT_CALL(*transport, Read(values, 0xFFFFFFFFFFFFFFFF))
      .WillOnce(Return(0xFFFFFFFFFFFFFFFE));
  EXPECT_EQ(stream.TransferByte(values, 4), 3);
  EXPECT_EQ(stream.TransferByte(values, 0), 0);
  EXPECT_EQ(stream.TransferByte(values, -1), -2);
  EXPECT_CALL(*transport, Destroyed());
}

struct BoolCase {
  const char* name;  // part of the test's name: letters and digits only
  unsigned char byte;
  bool before;
  bool after;
};

const BoolCase kBoolCases[] = {
    {"ZeroMakesTrueFalse", 0, true, false},
    {"ZeroKeepsFalse", 0, false, false},
    {"OneMakesFalseTrue", 1, false, true},
    {"OneKeepsTrue", 1, true, true},
    {"TwoLeavesTrue", 2, true, true},
    {"TwoLeavesFalse", 2, false, false},
    {"AllOnesLeaveTrue", 0xFF, true, true},
    {"AllOnesLeaveFalse", 0xFF, false, false},
};

void PrintTo(const BoolCase& c, std::ostream* out) { *out << c.name; }

class ReadStreamBool : public testing::TestWithParam<BoolCase> {};

TEST_P(ReadStreamBool, TakesOneByte) {
  auto* const transport = new StrictMock<MockTransport>;
  ReadStream stream(transport);
  bool value = GetParam().before;
  // The result of Read is not looked at.
  EXPECT_CALL(*transport, Read(_, 1))
      .WillOnce([](void* buffer, unsigned long long) {
        *static_cast<unsigned char*>(buffer) = GetParam().byte;
        return 0ull;
      });
  EXPECT_EQ(stream.TransferBool(value), GetParam().after ? 1 : 0);
  EXPECT_EQ(value, GetParam().after);
  EXPECT_CALL(*transport, Destroyed());
}

INSTANTIATE_TEST_SUITE_P(, ReadStreamBool, testing::ValuesIn(kBoolCases),
                         [](const auto& test) { return test.param.name; });

TEST(ReadStream, ATruthValueThatIsNotThereIsFalse) {
  auto* const transport = new StrictMock<MockTransport>;
  ReadStream stream(transport);
  bool value = true;
  EXPECT_CALL(*transport, Read(_, 1)).WillOnce(Return(0));
  EXPECT_EQ(stream.TransferBool(value), 0);
  EXPECT_FALSE(value);
  EXPECT_CALL(*transport, Destroyed());
}

// The wider types move nothing: the strict mock allows no call.
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

TEST(ReadStream, TransfersNothingWider) {
  auto* const transport = new StrictMock<MockTransport>;
  EXPECT_CALL(*transport, Destroyed());
  ExpectNothingTransferred<KVTReadStream>(transport);
}

TEST(ReadStream, SeeksWithTheSignExtended) {
  auto* const transport = new StrictMock<MockTransport>;
  ReadStream stream(transport);
  InSequence sequence;
  EXPECT_CALL(*transport, Seek(5, KVTSeekFromBeginning)).WillOnce(Return(9));
  EXPECT_CALL(*transport, Seek(0xFFFFFFFFFFFFFFFF, KVTSeekFromCurrent))
      .WillOnce(Return(0x123456789A));
  EXPECT_CALL(*transport, Seek(0xFFFFFFFF80000000, KVTSeekFromEnd))
      .WillOnce(Return(0));
  EXPECT_CALL(*transport, Seek(0x7FFFFFFF, static_cast<KVTSeekFromWhere>(3)))
      .WillOnce(Return(1));
  EXPECT_EQ(stream.Seek(5, KVTSeekFromBeginning), 9u);
  EXPECT_EQ(stream.Seek(-1, KVTSeekFromCurrent), 0x123456789Au);
  EXPECT_EQ(stream.Seek(-0x7FFFFFFF - 1, KVTSeekFromEnd), 0u);
  EXPECT_EQ(stream.Seek(0x7FFFFFFF, static_cast<KVTSeekFromWhere>(3)), 1u);
  EXPECT_CALL(*transport, Destroyed());
}

TEST(ReadStream, PassesTheRestToItsTransport) {
  auto* const transport = new StrictMock<MockTransport>;
  ReadStream stream(transport);
  InSequence sequence;
  EXPECT_CALL(*transport, Tell()).WillOnce(Return(0xFFFFFFFFFFFFFFFE));
  EXPECT_CALL(*transport, SetEndOfStream());
  EXPECT_CALL(*transport, Flush());
  EXPECT_CALL(*transport, GetStreamState()).WillOnce(Return(KVTStreamFailed));
  EXPECT_EQ(stream.Tell(), 0xFFFFFFFFFFFFFFFEu);
  stream.SetEndOfStream();
  stream.Flush();
  EXPECT_EQ(stream.GetStreamState(), KVTStreamFailed);
  EXPECT_CALL(*transport, Destroyed());
}

TEST(ReadStream, IsReadingAndKeepsTheWishToSwap) {
  ReadStream stream(nullptr);
  EXPECT_TRUE(stream.IsReading());
  EXPECT_FALSE(stream.IsWriting());
  EXPECT_FALSE(stream.GetSwapping());
  stream.SetSwapping(true);
  EXPECT_TRUE(stream.GetSwapping());
  stream.SetSwapping(false);
  EXPECT_FALSE(stream.GetSwapping());
}

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

// Over the transports of the library.

class StreamOverFile : public testing::Test {
 protected:
  IKVTTransferBytes* Transport(const std::string& content) {
    WriteFile(mDirectory.Path("a"), content);
    return new KVTFileTransferBytes(mDirectory.File("a"), "r+");
  }

  TemporaryDirectory mDirectory;
};

TEST_F(StreamOverFile, ReadsBytesAndTruthValues) {
  ReadStream stream(Transport(std::string("A\xFF\1\0\2xyz", 8)));
  unsigned char byte = 0;
  EXPECT_EQ(stream.TransferByte(byte), 'A');
  EXPECT_EQ(stream.TransferByte(byte), 0xFF);
  bool value = false;
  EXPECT_EQ(stream.TransferBool(value), 1);
  EXPECT_TRUE(value);
  EXPECT_EQ(stream.TransferBool(value), 0);
  EXPECT_FALSE(value);
  value = true;
  EXPECT_EQ(stream.TransferBool(value), 1);
  EXPECT_TRUE(value);
  EXPECT_EQ(stream.Tell(), 5u);
  unsigned char rest[8] = {};
  EXPECT_EQ(stream.TransferByte(rest, 8), 3);
  EXPECT_STREQ(reinterpret_cast<char*>(rest), "xyz");
  // Exhausted.
  EXPECT_EQ(stream.TransferByte(byte), 0xFF);
  EXPECT_EQ(stream.GetStreamState(), KVTStreamGood);
}

TEST_F(StreamOverFile, WiderTypesConsumeNothing) {
  ReadStream stream(Transport("abcdefgh"));
  int value = 5;
  EXPECT_EQ(stream.TransferInt32(value), 0);
  EXPECT_EQ(value, 5);
  EXPECT_EQ(stream.Tell(), 0u);
}

TEST_F(StreamOverFile, SeeksBackByOneByte) {
  ReadStream stream(Transport("abc"));
  unsigned char bytes[2];
  EXPECT_EQ(stream.TransferByte(bytes, 2), 2);
  EXPECT_EQ(stream.Seek(-1, KVTSeekFromCurrent), 1u);
  EXPECT_EQ(stream.TransferByte(bytes[0]), 'b');
  EXPECT_EQ(stream.Seek(-1, KVTSeekFromEnd), 2u);
  EXPECT_EQ(stream.TransferByte(bytes[0]), 'c');
}

TEST_F(StreamOverFile, EndsTheFileAtThePosition) {
  {
    ReadStream stream(Transport("abcdef"));
    stream.Seek(2, KVTSeekFromBeginning);
    stream.SetEndOfStream();
  }
  EXPECT_EQ(ReadFile(mDirectory.Path("a")), "ab");
}

TEST(StreamOverMemory, SeeksBackOnlyIntoTheAllocatorsException) {
  ReadStream stream(new KVTMemoryTransferBytes(nullptr, 8));
  EXPECT_THROW(stream.Seek(-1, KVTSeekFromCurrent), std::bad_alloc);
  EXPECT_EQ(stream.Tell(), 0u);
}

TEST(StreamOverMemory, GivesTheSameByteAgain) {
  auto* const bytes = new KVTMemoryTransferBytes(nullptr, 8);
  char text[] = "\1b";
  bytes->Write(text, 2);
  ReadStream stream(bytes);
  // Memory reads need room for a zero byte.
  unsigned char value[2] = {0, 0};
  for (int i = 0; i < 2; ++i) {
    value[0] = 0;
    EXPECT_EQ(stream.TransferByte(value[0]), 1);
    bool truth = false;
    EXPECT_EQ(stream.TransferBool(truth), 1);
    EXPECT_TRUE(truth);
  }
}

TEST(StreamOverMemory, ReadsNoTruthValueFromAnEmptyText) {
  ReadStream stream(new KVTMemoryTransferBytes(nullptr, 8));
  bool value = true;
  EXPECT_EQ(stream.TransferBool(value), 0);
  EXPECT_FALSE(value);
}

}  // namespace
