#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "transfer_bytes_test.h"

namespace {

std::string Text(const KVTMemoryTransferBytes& bytes) {
  return reinterpret_cast<const char*>(bytes.GetBuffer());
}

// A transport that stands at the start of its block when it goes.
class Rewound : public KVTMemoryTransferBytes {
 public:
  explicit Rewound(unsigned long long size)
      : KVTMemoryTransferBytes(nullptr, size) {}
  ~Rewound() override { Seek(0, KVTSeekFromBeginning); }
};

TEST(MemoryTransferBytes, StartsGoodAtPositionZeroWithItsSize) {
  KVTMemoryTransferBytes bytes(nullptr, 8);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
  EXPECT_EQ(bytes.Tell(), 0u);
  EXPECT_EQ(bytes.GetBufferSize(), 8u);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes.GetBuffer()), 8),
            std::string(8, '\0'));
}

TEST(MemoryTransferBytes, OfSizeZeroIsAtTheEndFromTheStart) {
  KVTMemoryTransferBytes bytes(nullptr, 0);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamAtEnd);
  EXPECT_EQ(bytes.GetBufferSize(), 0u);
  EXPECT_NE(bytes.GetBuffer(), nullptr);
}

TEST(MemoryTransferBytes, DoesNotTakeOverTheDataOfItsConstructor) {
  unsigned char data[] = "abc";
  KVTMemoryTransferBytes bytes(data, 8);
  EXPECT_NE(bytes.GetBuffer(), data);
  char target[16] = "";
  EXPECT_EQ(bytes.Read(target, 8), 0u);
  EXPECT_STREQ(target, "");
  EXPECT_EQ(Write(bytes, "xy"), 2u);
  EXPECT_STREQ(reinterpret_cast<char*>(data), "abc");
}

TEST(MemoryTransferBytes, DoesNotLookAtThePointerOfItsConstructor) {
  KVTMemoryTransferBytes bytes(reinterpret_cast<unsigned char*>(1), 8);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
}

TEST(MemoryTransferBytesWrite, AppendsAndStaysWhereItStands) {
  KVTMemoryTransferBytes bytes(nullptr, 16);
  EXPECT_EQ(Write(bytes, "abc"), 3u);
  EXPECT_EQ(Write(bytes, "def"), 6u);
  EXPECT_EQ(bytes.Tell(), 0u);
  EXPECT_EQ(Text(bytes), "abcdef");
  EXPECT_EQ(bytes.GetBufferSize(), 16u);
}

TEST(MemoryTransferBytesWrite, OfNothingReturnsTheLengthOfTheText) {
  KVTMemoryTransferBytes bytes(nullptr, 8);
  EXPECT_EQ(Write(bytes, ""), 0u);
  Write(bytes, "abc");
  EXPECT_EQ(Write(bytes, ""), 3u);
  EXPECT_EQ(bytes.GetBufferSize(), 8u);
}

TEST(MemoryTransferBytesWrite, MeasuresTheTextFromThePosition) {
  Rewound bytes(16);
  Write(bytes, "abcdef");
  bytes.Seek(4, KVTSeekFromBeginning);
  EXPECT_EQ(Write(bytes, "gh"), 4u);
  EXPECT_EQ(Text(bytes), "efgh");
  EXPECT_EQ(bytes.Tell(), 4u);
  // Behind the text a new one begins.
  bytes.Seek(10, KVTSeekFromBeginning);
  EXPECT_EQ(Write(bytes, "xy"), 2u);
  bytes.Seek(0, KVTSeekFromBeginning);
  EXPECT_EQ(Text(bytes), "abcdefgh");
}

TEST(MemoryTransferBytesWrite, EndsTheTextAtTheFirstZeroByte) {
  KVTMemoryTransferBytes bytes(nullptr, 16);
  EXPECT_EQ(Write(bytes, std::string("ab\0cd", 5)), 2u);
  EXPECT_EQ(Text(bytes), "ab");
  char target[16] = "";
  EXPECT_EQ(bytes.Read(target, 8), 2u);
  EXPECT_STREQ(target, "ab");
  // The next write takes the place of the zero byte and joins what was cut off.
  EXPECT_EQ(Write(bytes, "-"), 5u);
  EXPECT_EQ(Text(bytes), "ab-cd");
}

struct GrowthCase {
  const char* name;  // part of the test's name: letters and digits only
  unsigned long long size;
  std::size_t taken;
  std::size_t written;
  unsigned long long newSize;
};

const GrowthCase kGrowthCases[] = {
    // It fits
    {"Nothing", 8, 0, 0, 8},
    {"AllButTheZeroByte", 8, 0, 7, 8},
    {"BehindText", 8, 4, 3, 8},
    // Less than the block: twice the block
    {"OneTooMuchBehindText", 8, 4, 5, 16},
    {"OneByteLessThanTheBlock", 8, 2, 7, 16},
    {"OneByteMoreThanIsFree", 8, 7, 2, 16},
    // At least the block: whole blocks, one more than fill up
    {"AsMuchAsTheBlock", 8, 1, 8, 16},
    {"OneByteMoreThanTheBlock", 8, 0, 9, 16},
    {"TwoBlocks", 8, 0, 16, 24},
    {"TwoBlocksAndAHalf", 8, 0, 20, 24},
    {"OneByteBlocks", 1, 0, 5, 6},
};

void PrintTo(const GrowthCase& c, std::ostream* out) { *out << c.name; }

class MemoryTransferBytesGrowth : public testing::TestWithParam<GrowthCase> {};

TEST_P(MemoryTransferBytesGrowth, HasTheExpectedBlock) {
  const GrowthCase& c = GetParam();
  KVTMemoryTransferBytes bytes(nullptr, c.size);
  const std::string before(c.taken, 'a');
  const std::string more(c.written, 'b');
  ASSERT_EQ(Write(bytes, before), c.taken);
  EXPECT_EQ(Write(bytes, more), c.taken + c.written);
  EXPECT_EQ(bytes.GetBufferSize(), c.newSize);
  EXPECT_EQ(Text(bytes), before + more);
  EXPECT_EQ(bytes.Tell(), 0u);
}

INSTANTIATE_TEST_SUITE_P(, MemoryTransferBytesGrowth,
                         testing::ValuesIn(kGrowthCases),
                         [](const auto& test) { return test.param.name; });

TEST(MemoryTransferBytesRead, GivesNothingFromAnEmptyObject) {
  KVTMemoryTransferBytes bytes(nullptr, 16);
  char target[16] = "stale";
  EXPECT_EQ(bytes.Read(target, 8), 0u);
  EXPECT_STREQ(target, "stale");
  // The first read that finds content is still to come: it clears the target.
  Write(bytes, "abc");
  EXPECT_EQ(bytes.Read(target, 8), 3u);
  EXPECT_STREQ(target, "abc");
  EXPECT_EQ(bytes.Tell(), 0u);
}

TEST(MemoryTransferBytesRead, ClearsTheTargetOnceOnly) {
  Rewound bytes(16);
  Write(bytes, "abcdef");
  char target[32] = "stale";
  EXPECT_EQ(bytes.Read(target, 2), 2u);
  EXPECT_STREQ(target, "ab");
  // From now on what the target holds counts as read.
  std::strcpy(target, "wxyz");
  EXPECT_EQ(bytes.Read(target, 8), 2u);
  EXPECT_STREQ(target, "wxyzef");
  EXPECT_EQ(bytes.Tell(), 4u);
}

TEST(MemoryTransferBytesRead, ClearsOnlyTheTextOfTheTarget) {
  KVTMemoryTransferBytes bytes(nullptr, 16);
  Write(bytes, "a");
  char target[8] = {'x', 'y', '\0', 'z', '\0'};
  EXPECT_EQ(bytes.Read(target, 1), 1u);
  EXPECT_EQ(std::string(target, 4), std::string("a\0\0z", 4));
}

TEST(MemoryTransferBytesRead, DoesNotMoveByWhatItDelivers) {
  KVTMemoryTransferBytes bytes(nullptr, 16);
  Write(bytes, "abc");
  for (int i = 0; i < 3; ++i) {
    char target[16] = "";
    EXPECT_EQ(bytes.Read(target, 2), 2u);
    EXPECT_STREQ(target, "ab");
    EXPECT_EQ(bytes.Tell(), 0u);
  }
}

TEST(MemoryTransferBytesRead, GoesOnBehindWhatTheTargetHolds) {
  Rewound bytes(16);
  Write(bytes, "abcdefg");
  char target[32] = "";
  EXPECT_EQ(bytes.Read(target, 3), 3u);
  EXPECT_EQ(bytes.Read(target, 2), 2u);
  EXPECT_STREQ(target, "abcde");
  EXPECT_EQ(bytes.Tell(), 3u);
  // The move is by the whole text of the target, 5 bytes from 3 on.
  EXPECT_EQ(bytes.Read(target, 8), 0u);
  EXPECT_STREQ(target, "abcde");
  EXPECT_EQ(bytes.Tell(), 8u);
}

TEST(MemoryTransferBytesRead, MeasuresTheTextBeforeItMoves) {
  Rewound bytes(16);
  Write(bytes, std::string("abcdefgh\0XYZ", 12));
  char target[32] = "";
  EXPECT_EQ(bytes.Read(target, 6), 6u);
  // Of the 8 bytes measured at position 0, 6 are asked for from 6 on: "gh", the
  // zero byte and "XYZ".
  EXPECT_EQ(bytes.Read(target, 6), 2u);
  EXPECT_EQ(std::string(target, 13), std::string("abcdefgh\0XYZ\0", 13));
}

TEST(MemoryTransferBytesRead, PutsAZeroByteBehindWhatItDelivers) {
  KVTMemoryTransferBytes bytes(nullptr, 16);
  Write(bytes, "abc");
  char target[8];
  std::memset(target, '#', sizeof target);
  target[0] = '\0';
  EXPECT_EQ(bytes.Read(target, 2), 2u);
  EXPECT_EQ(std::string(target, 4), std::string("ab\0#", 4));
}

TEST(MemoryTransferBytesRead, OfSizeZeroWritesTheZeroByteAlone) {
  KVTMemoryTransferBytes bytes(nullptr, 16);
  Write(bytes, "abc");
  char target[4] = "xyz";
  EXPECT_EQ(bytes.Read(target, 0), 0u);
  EXPECT_EQ(std::string(target, 4), std::string(4, '\0'));
}

TEST(MemoryTransferBytesSeek, FromTheBeginningMovesWithinTheBlock) {
  Rewound bytes(8);
  unsigned char* const block = bytes.GetBuffer();
  EXPECT_EQ(bytes.Seek(5, KVTSeekFromBeginning), 5u);
  EXPECT_EQ(bytes.GetBuffer(), block + 5);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
  EXPECT_EQ(bytes.Seek(8, KVTSeekFromBeginning), 8u);
  EXPECT_EQ(bytes.GetBuffer(), block + 8);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamAtEnd);
  EXPECT_EQ(bytes.Seek(0, KVTSeekFromBeginning), 0u);
  EXPECT_EQ(bytes.GetBuffer(), block);
  EXPECT_EQ(bytes.GetBufferSize(), 8u);
}

TEST(MemoryTransferBytesSeek, FromTheBeginningGrowsTheBlockToTheOffset) {
  Rewound bytes(8);
  Write(bytes, std::string("abc\0de", 6));
  EXPECT_EQ(bytes.Seek(9, KVTSeekFromBeginning), 9u);
  EXPECT_EQ(bytes.GetBufferSize(), 9u);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamAtEnd);
  bytes.Seek(0, KVTSeekFromBeginning);
  // What stood behind the first zero byte is gone.
  EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes.GetBuffer()), 9),
            std::string("abc\0\0\0\0\0\0", 9));
}

TEST(MemoryTransferBytesSeek, FromTheCurrentPositionMovesWithinTheBlock) {
  Rewound bytes(8);
  EXPECT_EQ(bytes.Seek(3, KVTSeekFromCurrent), 3u);
  EXPECT_EQ(bytes.Seek(0, KVTSeekFromCurrent), 3u);
  EXPECT_EQ(bytes.Seek(5, KVTSeekFromCurrent), 8u);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamAtEnd);
  EXPECT_EQ(bytes.GetBufferSize(), 8u);
}

TEST(MemoryTransferBytesSeek, FromTheCurrentPositionZeroGrowsToTheOffset) {
  Rewound bytes(8);
  Write(bytes, "abc");
  EXPECT_EQ(bytes.Seek(12, KVTSeekFromCurrent), 12u);
  EXPECT_EQ(bytes.GetBufferSize(), 12u);
  bytes.Seek(0, KVTSeekFromBeginning);
  EXPECT_EQ(Text(bytes), "abc");
}

TEST(MemoryTransferBytesSeek, FromTheEndAlwaysMakesANewBlock) {
  Rewound bytes(8);
  Write(bytes, std::string("abc\0de", 6));
  EXPECT_EQ(bytes.Seek(0, KVTSeekFromEnd), 8u);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamAtEnd);
  EXPECT_EQ(bytes.GetBufferSize(), 8u);
  bytes.Seek(0, KVTSeekFromBeginning);
  // The tail is lost: this is another block.
  EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes.GetBuffer()), 8),
            std::string("abc\0\0\0\0\0", 8));
  EXPECT_EQ(bytes.Seek(4, KVTSeekFromEnd), 12u);
  EXPECT_EQ(bytes.GetBufferSize(), 12u);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamAtEnd);
}

TEST(MemoryTransferBytesSeek, FromTheEndTakesANegativeOffset) {
  Rewound bytes(8);
  Write(bytes, "abc");
  EXPECT_EQ(bytes.Seek(-2ull, KVTSeekFromEnd), 6u);
  EXPECT_EQ(bytes.GetBufferSize(), 6u);
  bytes.Seek(0, KVTSeekFromBeginning);
  EXPECT_EQ(Text(bytes), "abc");
}

TEST(MemoryTransferBytesSeek, FromElsewhereMovesNothing) {
  Rewound bytes(8);
  bytes.Seek(3, KVTSeekFromBeginning);
  for (int where : {0, 3, 5, 6, 7}) {
    EXPECT_EQ(bytes.Seek(100, Where(where)), 3u) << where;
    EXPECT_EQ(bytes.GetBufferSize(), 8u) << where;
  }
}

TEST(MemoryTransferBytesFlush, ErasesTheContentAndDoesNotMove) {
  KVTMemoryTransferBytes bytes(nullptr, 8);
  Write(bytes, std::string("ab\0cd", 5));
  bytes.Flush();
  EXPECT_EQ(bytes.Tell(), 0u);
  EXPECT_EQ(bytes.GetBufferSize(), 8u);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes.GetBuffer()), 8),
            std::string(8, '\0'));
}

TEST(MemoryTransferBytesSetEndOfStream, CutsTheBlockAtThePosition) {
  Rewound bytes(16);
  Write(bytes, "abcdef");
  bytes.Seek(4, KVTSeekFromBeginning);
  bytes.SetEndOfStream();
  EXPECT_EQ(bytes.GetBufferSize(), 4u);
  EXPECT_EQ(bytes.Tell(), 4u);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamAtEnd);
  bytes.Seek(0, KVTSeekFromBeginning);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes.GetBuffer()), 4), "abcd");
}

TEST(MemoryTransferBytesSetEndOfStream, KeepsTheTextAloneOfALongerBlock) {
  Rewound bytes(16);
  Write(bytes, std::string("abc\0de", 6));
  bytes.Seek(8, KVTSeekFromBeginning);
  bytes.SetEndOfStream();
  EXPECT_EQ(bytes.GetBufferSize(), 8u);
  bytes.Seek(0, KVTSeekFromBeginning);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes.GetBuffer()), 8),
            std::string("abc\0\0\0\0\0", 8));
}

TEST(MemoryTransferBytesSetEndOfStream, AtTheStartLeavesABlockOfSizeZero) {
  KVTMemoryTransferBytes bytes(nullptr, 16);
  Write(bytes, "abc");
  bytes.SetEndOfStream();
  EXPECT_EQ(bytes.GetBufferSize(), 0u);
  EXPECT_EQ(bytes.Tell(), 0u);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamAtEnd);
}

// A class derived from it that answers Tell otherwise.
class ToldElsewhere : public KVTMemoryTransferBytes {
 public:
  ToldElsewhere(unsigned long long size, unsigned long long told)
      : KVTMemoryTransferBytes(nullptr, size), mTold(told) {}
  ~ToldElsewhere() override { Seek(0, KVTSeekFromBeginning); }
  unsigned long long Tell() override { return mTold; }

 private:
  unsigned long long mTold;
};

TEST(MemoryTransferBytesSeek, ReturnsWhatADerivedClassTells) {
  ToldElsewhere bytes(8, 3);
  EXPECT_EQ(bytes.Seek(5, KVTSeekFromBeginning), 3u);
  EXPECT_EQ(bytes.Seek(1, KVTSeekFromCurrent), 3u);
  EXPECT_EQ(bytes.Seek(1, KVTSeekFromEnd), 3u);
  EXPECT_EQ(bytes.Seek(1, Where(0)), 3u);
}

TEST(MemoryTransferBytesSetEndOfStream, CutsWhereADerivedClassTells) {
  ToldElsewhere bytes(8, 3);
  Write(bytes, "abcde");
  bytes.SetEndOfStream();
  EXPECT_EQ(bytes.GetBufferSize(), 3u);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamAtEnd);
}

}  // namespace
