// Where the memory transport damages memory, crashes or throws by its rules.

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <new>
#include <string>

#include "hooks.h"
#include "transfer_bytes_test.h"

namespace {

constexpr unsigned long long kGiB = 1ull << 30;
constexpr std::size_t kSlack = 64;

std::string Bytes(const unsigned char* from, std::size_t count) {
  return std::string(reinterpret_cast<const char*>(from), count);
}

// The size that `operation` asks operator new for when it gets nothing; 0 when
// it asks for nothing or no std::bad_alloc leaves it.
template <class Operation>
std::size_t SizeRefused(Operation operation) {
  hooks::FailingAllocator nothing(0);
  try {
    operation();
  } catch (const std::bad_alloc&) {
    return nothing.LastRefused();
  }
  return 0;
}

TEST(MemoryTransferBytesWrite, LeavesNoZeroByteBehindAnExactFit) {
  hooks::WatchedArrays arrays(kSlack);
  KVTMemoryTransferBytes bytes(nullptr, 8);
  EXPECT_EQ(Write(bytes, "abc"), 3u);
  EXPECT_EQ(Write(bytes, "defgh"), 8u);
  EXPECT_EQ(bytes.GetBufferSize(), 8u);
  ASSERT_EQ(arrays.Blocks().size(), 1u);
  EXPECT_EQ(Bytes(arrays.Blocks()[0].start, 8), "abcdefgh");
}

TEST(MemoryTransferBytesWrite, OverrunsTheBlockAwayFromItsStart) {
  hooks::WatchedArrays arrays(kSlack);
  KVTMemoryTransferBytes bytes(nullptr, 8);
  bytes.Seek(5, KVTSeekFromBeginning);
  // Eight bytes are free as it counts, three in truth.
  EXPECT_EQ(Write(bytes, "abcdefgh"), 8u);
  ASSERT_EQ(arrays.Blocks().size(), 1u);
  EXPECT_EQ(Bytes(arrays.Blocks()[0].start + 5, 9),
            std::string("abcdefgh\0", 9));
}

TEST(MemoryTransferBytesWrite, OverrunsANewBlockThatDoesNotCountTheText) {
  hooks::WatchedArrays arrays(kSlack);
  KVTMemoryTransferBytes bytes(nullptr, 8);
  Write(bytes, "abcdef");
  EXPECT_EQ(Write(bytes, std::string(20, 'x')), 26u);
  EXPECT_EQ(bytes.GetBufferSize(), 24u);
  ASSERT_EQ(arrays.Blocks().size(), 2u);
  EXPECT_EQ(arrays.Blocks()[1].size, 24u);
  EXPECT_EQ(Bytes(arrays.Blocks()[1].start, 27),
            "abcdef" + std::string(20, 'x') + '\0');
}

TEST(MemoryTransferBytesWrite, ReleasesTheOldBlockThroughThePosition) {
  hooks::WatchedArrays arrays(kSlack);
  KVTMemoryTransferBytes bytes(nullptr, 8);
  Write(bytes, "abcdef");
  bytes.Seek(2, KVTSeekFromBeginning);
  EXPECT_EQ(Write(bytes, "ghijk"), 9u);
  EXPECT_EQ(bytes.Tell(), 0u);
  EXPECT_EQ(bytes.GetBufferSize(), 16u);
  ASSERT_EQ(arrays.Blocks().size(), 2u);
  EXPECT_EQ(bytes.GetBuffer(), arrays.Blocks()[1].start);
  EXPECT_EQ(Bytes(arrays.Blocks()[1].start, 16),
            std::string("cdefghijk\0\0\0\0\0\0\0", 16));
  ASSERT_EQ(arrays.Released().size(), 1u);
  EXPECT_EQ(arrays.Released()[0], arrays.Blocks()[0].start + 2);
}

TEST(MemoryTransferBytesRead, RunsPastTheBlockThatItMeasuredBeforeMoving) {
  hooks::WatchedArrays arrays(kSlack);
  KVTMemoryTransferBytes bytes(nullptr, 8);
  Write(bytes, "abcdef");
  unsigned char* const slack = arrays.Blocks()[0].start + 8;
  std::fill(slack, slack + 8, 'x');
  unsigned char target[16] = "";
  EXPECT_EQ(bytes.Read(target, 4), 4u);
  EXPECT_EQ(bytes.Read(target, 6), 2u);
  EXPECT_EQ(Bytes(target, 11), std::string("abcdef\0\0xx\0", 11));
}

TEST(MemoryTransferBytesSeek, FromTheCurrentPositionRecordsMoreThanIsThere) {
  hooks::WatchedArrays arrays(kSlack);
  KVTMemoryTransferBytes bytes(nullptr, 8);
  bytes.Seek(3, KVTSeekFromBeginning);
  EXPECT_EQ(bytes.Seek(6, KVTSeekFromCurrent), 9u);
  EXPECT_EQ(bytes.GetBufferSize(), 9u);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamAtEnd);
  ASSERT_EQ(arrays.Blocks().size(), 2u);
  EXPECT_EQ(arrays.Blocks()[1].size, 6u);
  EXPECT_EQ(bytes.GetBuffer(), arrays.Blocks()[1].start + 9);
  // It goes by the start of the old block, wherever the position stood.
  ASSERT_EQ(arrays.Released().size(), 1u);
  EXPECT_EQ(arrays.Released()[0], arrays.Blocks()[0].start);
}

TEST(MemoryTransferBytesSeek, OverrunsANewBlockThatIsShorterThanTheText) {
  hooks::WatchedArrays arrays(kSlack);
  KVTMemoryTransferBytes bytes(nullptr, 8);
  Write(bytes, "abcdefg");
  bytes.Seek(7, KVTSeekFromBeginning);
  EXPECT_EQ(bytes.Seek(2, KVTSeekFromCurrent), 9u);
  ASSERT_EQ(arrays.Blocks().size(), 2u);
  EXPECT_EQ(arrays.Blocks()[1].size, 2u);
  EXPECT_EQ(Bytes(arrays.Blocks()[1].start, 8), std::string("abcdefg\0", 8));
}

TEST(MemoryTransferBytesFlush, OverrunsTheBlockAwayFromItsStart) {
  hooks::WatchedArrays arrays(kSlack);
  KVTMemoryTransferBytes bytes(nullptr, 8);
  unsigned char* const slack = arrays.Blocks()[0].start + 8;
  std::fill(slack, slack + 8, 'x');
  bytes.Seek(3, KVTSeekFromBeginning);
  bytes.Flush();
  EXPECT_EQ(Bytes(slack, 8), std::string("\0\0\0xxxxx", 8));
}

TEST(MemoryTransferBytes, IsReleasedThroughThePosition) {
  hooks::WatchedArrays arrays(kSlack);
  {
    KVTMemoryTransferBytes bytes(nullptr, 8);
    bytes.Seek(3, KVTSeekFromBeginning);
  }
  ASSERT_EQ(arrays.Released().size(), 1u);
  EXPECT_EQ(arrays.Released()[0], arrays.Blocks()[0].start + 3);
}

TEST(MemoryTransferBytesDeathTest, DamagesTheHeapUnlessRewound) {
  EXPECT_EXIT(
      {
        {
          KVTMemoryTransferBytes bytes(nullptr, 64);
          bytes.Seek(60, KVTSeekFromBeginning);
          bytes.Seek(0, KVTSeekFromBeginning);
        }
        _exit(7);
      },
      testing::ExitedWithCode(7), "");
  EXPECT_DEATH(
      {
        KVTMemoryTransferBytes bytes(nullptr, 64);
        bytes.Seek(3, KVTSeekFromBeginning);
      },
      "free");  // "free(): invalid pointer", or a sanitizer's report
}

TEST(MemoryTransferBytesDeathTest, DamagesTheHeapWhenItGrowsUnlessRewound) {
  EXPECT_DEATH(
      {
        KVTMemoryTransferBytes bytes(nullptr, 64);
        bytes.Seek(3, KVTSeekFromBeginning);
        Write(bytes, std::string(70, 'x'));
      },
      "free");
}

TEST(MemoryTransferBytesDeathTest, DividesByTheSizeOfTheBlock) {
  const auto growFrom = [](unsigned long long size) {
    hooks::WatchedArrays arrays(kSlack);
    KVTMemoryTransferBytes bytes(nullptr, size);
    Write(bytes, "a");
    _exit(7);
  };
  EXPECT_EXIT(growFrom(1), testing::ExitedWithCode(7), "");
#ifdef __SANITIZE_ADDRESS__
  EXPECT_DEATH(growFrom(0), "division by zero");
#else
  EXPECT_EXIT(growFrom(0), testing::KilledBySignal(SIGFPE), "");
#endif
}

TEST(MemoryTransferBytesWrite, OfNothingIntoABlockOfSizeZeroFits) {
  hooks::WatchedArrays arrays(kSlack);
  KVTMemoryTransferBytes bytes(nullptr, 0);
  EXPECT_EQ(Write(bytes, ""), 0u);
  EXPECT_EQ(bytes.GetBufferSize(), 0u);
}

TEST(MemoryTransferBytes, AsksFor32BitsOfTheSize) {
  EXPECT_EQ(SizeRefused([] { KVTMemoryTransferBytes(nullptr, 5); }), 5u);
  EXPECT_EQ(SizeRefused([] { KVTMemoryTransferBytes(nullptr, 3 * kGiB); }),
            3 * kGiB);
  EXPECT_EQ(SizeRefused([] { KVTMemoryTransferBytes(nullptr, 4 * kGiB - 1); }),
            4 * kGiB - 1);
  EXPECT_EQ(SizeRefused([] { KVTMemoryTransferBytes(nullptr, 4 * kGiB + 8); }),
            8u);
}

// Eight bytes are there; more than 4 GiB are filled with zeros.
TEST(MemoryTransferBytesDeathTest, ZeroesTheWholeSizeOfASmallerRequest) {
#ifdef __SANITIZE_ADDRESS__
  EXPECT_DEATH(KVTMemoryTransferBytes(nullptr, 4 * kGiB + 8),
               "heap-buffer-overflow");
#else
  EXPECT_EXIT(KVTMemoryTransferBytes(nullptr, 4 * kGiB + 8),
              testing::KilledBySignal(SIGSEGV), "");
#endif
}

TEST(MemoryTransferBytesWrite, AsksFor32BitsOfTheSize) {
  KVTMemoryTransferBytes bytes(nullptr, 8);
  const auto write = [&bytes](unsigned long long size) {
    // Nothing is read from here: the request comes first.
    return SizeRefused([&] { bytes.Write(nullptr, size); });
  };
  EXPECT_EQ(write(9), 16u);
  EXPECT_EQ(write(4 * kGiB - 9), 4 * kGiB - 8);
  EXPECT_EQ(write(4 * kGiB), 8u);
}

TEST(MemoryTransferBytesSeek, AsksFor32BitsFromTheEndAlone) {
  KVTMemoryTransferBytes bytes(nullptr, 8);
  const auto seek = [&bytes](unsigned long long offset,
                             KVTSeekFromWhere where) {
    return SizeRefused([&] { bytes.Seek(offset, where); });
  };
  EXPECT_EQ(seek(0, KVTSeekFromEnd), 8u);
  EXPECT_EQ(seek(-3ull, KVTSeekFromEnd), 5u);
  EXPECT_EQ(seek(4 * kGiB, KVTSeekFromEnd), 8u);
  EXPECT_EQ(seek(4 * kGiB, KVTSeekFromBeginning), 4 * kGiB);
  EXPECT_EQ(seek(4 * kGiB, KVTSeekFromCurrent), 4 * kGiB);
}

class ToldFarAway : public KVTMemoryTransferBytes {
 public:
  ToldFarAway() : KVTMemoryTransferBytes(nullptr, 8) {}
  unsigned long long Tell() override { return 4 * kGiB + 24; }
};

TEST(MemoryTransferBytesSetEndOfStream, AsksFor32BitsOfThePosition) {
  ToldFarAway bytes;
  EXPECT_EQ(SizeRefused([&] { bytes.SetEndOfStream(); }), 24u);
}

TEST(MemoryTransferBytesSeek, ANegativeOffsetEndsInTheAllocatorsException) {
  KVTMemoryTransferBytes bytes(nullptr, 8);
  EXPECT_THROW(bytes.Seek(-1ull, KVTSeekFromBeginning), std::bad_alloc);
  EXPECT_THROW(bytes.Seek(-1ull, KVTSeekFromCurrent), std::bad_alloc);
  EXPECT_THROW(bytes.Seek(-8ull, KVTSeekFromCurrent), std::bad_alloc);
}

TEST(MemoryTransferBytes, IsAsBeforeWhenTheAllocatorThrows) {
  KVTMemoryTransferBytes bytes(nullptr, 8);
  Write(bytes, "abc");
  unsigned char* const block = bytes.GetBuffer();
  std::string more(9, 'x');
  EXPECT_NE(SizeRefused([&] { bytes.Write(more.data(), more.size()); }), 0u);
  EXPECT_NE(SizeRefused([&] { bytes.Seek(9, KVTSeekFromBeginning); }), 0u);
  EXPECT_NE(SizeRefused([&] { bytes.Seek(9, KVTSeekFromCurrent); }), 0u);
  EXPECT_NE(SizeRefused([&] { bytes.Seek(9, KVTSeekFromEnd); }), 0u);
  EXPECT_EQ(bytes.Tell(), 0u);
  bytes.Seek(2, KVTSeekFromBeginning);
  EXPECT_NE(SizeRefused([&] { bytes.SetEndOfStream(); }), 0u);
  EXPECT_EQ(bytes.Tell(), 2u);
  bytes.Seek(0, KVTSeekFromBeginning);
  EXPECT_EQ(bytes.GetBuffer(), block);
  EXPECT_EQ(bytes.GetBufferSize(), 8u);
  EXPECT_EQ(Bytes(bytes.GetBuffer(), 8), std::string("abc\0\0\0\0\0", 8));
}

}  // namespace
