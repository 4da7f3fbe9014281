#include <csignal>
#include <string>
#include <type_traits>

#include "stream_test.h"

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

}  // namespace
