// The reading stream over the transports of the library.

#include <new>
#include <string>

#include "stream_test.h"
#include "temporary_directory.h"

namespace {

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
