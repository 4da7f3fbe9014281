// What state the memory transport tells, at its edges.

#include <gtest/gtest.h>

#include <cstring>

#include "KVTTransferBytes.h"
#include "hooks.h"

namespace {

constexpr unsigned long long kMiB = 1ull << 20;
constexpr unsigned long long kGiB = 1ull << 30;

// Each of these seeks makes a block of 1 MiB and counts 1 MiB more.
TEST(MemoryTransferBytesState, TakesThePositionAs32Bits) {
  KVTMemoryTransferBytes bytes(nullptr, kMiB);
  bytes.Seek(kMiB, KVTSeekFromBeginning);
  // With its upper bit set it is no negative number.
  while (bytes.Tell() < 4 * kGiB - kMiB) {
    bytes.Seek(kMiB, KVTSeekFromCurrent);
    ASSERT_EQ(bytes.GetStreamState(), KVTStreamAtEnd) << bytes.Tell();
  }
  // The position comes out as 0, the size as 4 GiB.
  EXPECT_EQ(bytes.Seek(kMiB, KVTSeekFromCurrent), 4 * kGiB);
  EXPECT_EQ(bytes.GetBufferSize(), 4 * kGiB);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
  bytes.Seek(0, KVTSeekFromBeginning);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
}

class ToldElsewhere : public KVTMemoryTransferBytes {
 public:
  ToldElsewhere() : KVTMemoryTransferBytes(nullptr, 8) {}
  ~ToldElsewhere() override { Seek(0, KVTSeekFromBeginning); }
  unsigned long long Tell() override { return 3; }
};

TEST(MemoryTransferBytesState, GoesByThePositionAndNotByWhatIsTold) {
  ToldElsewhere bytes;
  unsigned char* const block = bytes.GetBuffer();
  bytes.Seek(5, KVTSeekFromBeginning);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
  // As does a seek from the current position: from 5, not from 3.
  bytes.Seek(3, KVTSeekFromCurrent);
  EXPECT_EQ(bytes.GetBuffer(), block + 8);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamAtEnd);
}

// No operation takes the block away; the pointer is overwritten in its place.
TEST(MemoryTransferBytesState, HasNoStorageWithoutAPositionAndReleasesNothing) {
  hooks::WatchedArrays arrays(64);
  {
    KVTMemoryTransferBytes bytes(nullptr, 8);
    unsigned char* const none = nullptr;
    std::memcpy(reinterpret_cast<char*>(&bytes) + sizeof(void*), &none,
                sizeof none);
    ASSERT_EQ(bytes.GetBuffer(), nullptr);
    EXPECT_EQ(bytes.GetStreamState(), KVTStreamNoStorage);
  }
  EXPECT_TRUE(arrays.Released().empty());
}

}  // namespace
