#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include "hooks.h"
#include "open_descriptors.h"
#include "temporary_directory.h"
#include "test_strings.h"
#include "transfer_bytes_test.h"

namespace {

// An object that is never destroyed, for files that do not open.
KVTFileTransferBytes& Undying(const KVTFile& file, const char* mode) {
  static auto& all = *new std::vector<KVTFileTransferBytes*>;
  all.push_back(new KVTFileTransferBytes(file, mode));
  return *all.back();
}

class FileTransferBytes : public testing::Test {
 protected:
  KVTFile WithContent(const std::string& name, const std::string& content) {
    WriteFile(mDirectory.Path(name), content);
    return mDirectory.File(name);
  }
  std::string Content(const std::string& name) {
    return ReadFile(mDirectory.Path(name));
  }

  TemporaryDirectory mDirectory;
};

using FileTransferBytesDeathTest = FileTransferBytes;

TEST_F(FileTransferBytes, OpensThePathInTheModeAsGiven) {
  const KVTFile file = WithContent("f\xC3\xBCnf", "abc");
  std::string path;
  std::string mode;
  hooks::Scoped hook(hooks::onFopen, [&](const char* p, const char* m) {
    path = p;
    mode = m;
    return hooks::RealFopen(p, "r");
  });
  KVTFileTransferBytes bytes(file, " r+xyz,ccs=\xC3\xBC ");
  EXPECT_EQ(path, mDirectory.Path("f\xC3\xBCnf"));
  EXPECT_EQ(mode, " r+xyz,ccs=\xC3\xBC ");
}

TEST_F(FileTransferBytes, KeepsACopyOfTheFile) {
  KVTFile file = WithContent("a", "abc");
  KVTFileTransferBytes bytes(file, "r");
  file = KVTFile();
  EXPECT_EQ(bytes.GetFile().GetPath(), mDirectory.Text("a"));
  KVTFile copy = bytes.GetFile();
  copy = KVTFile();
  EXPECT_EQ(bytes.GetFile().GetPath(), mDirectory.Text("a"));
}

TEST_F(FileTransferBytes, StartsGoodAtPositionZero) {
  KVTFileTransferBytes bytes(WithContent("a", "abc"), "r");
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
  EXPECT_EQ(bytes.Tell(), 0u);
}

TEST_F(FileTransferBytes, ShowsAFileThatDoesNotOpenByItsState) {
  const struct {
    KVTFile file;
    const char* mode;
  } cases[] = {
      {mDirectory.File("missing"), "r"}, {KVTFile(), "w"},
      {WithContent("a", "abc"), ""},     {WithContent("b", "abc"), "x"},
      {mDirectory.File(), "w"},
  };
  for (const auto& c : cases) {
    KVTFileTransferBytes& bytes = Undying(c.file, c.mode);
    EXPECT_EQ(bytes.GetStreamState(), KVTStreamNoStorage);
    EXPECT_EQ(Read(bytes, 10), "");
    EXPECT_EQ(Write(bytes, "xyz"), 0u);
    EXPECT_EQ(bytes.Seek(1, KVTSeekFromBeginning), 0u);
    EXPECT_EQ(bytes.Seek(1, Where(0)), 0u);
    EXPECT_EQ(bytes.Tell(), 0u);
    bytes.Flush();
    bytes.SetEndOfStream();
    EXPECT_EQ(bytes.GetStreamState(), KVTStreamNoStorage);
  }
  EXPECT_EQ(Content("a"), "abc");
}

TEST_F(FileTransferBytes, ClosesTheStreamWithTheObject) {
  {
    KVTFileTransferBytes bytes(mDirectory.File("a"), "w");
    Write(bytes, "abc");
    EXPECT_EQ(Content("a"), "");
  }
  EXPECT_EQ(Content("a"), "abc");
}

TEST_F(FileTransferBytes, LeavesNoDescriptorBehind) {
  const std::size_t before = OpenDescriptors();
  {
    KVTFileTransferBytes bytes(WithContent("a", "abc"), "r");
    EXPECT_EQ(OpenDescriptors(), before + 1);
  }
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(FileTransferBytesDeathTest, CrashesWhenDestroyedWithoutAStream) {
#ifdef __SANITIZE_ADDRESS__
  EXPECT_DEATH(KVTFileTransferBytes(mDirectory.File("missing"), "r"), "SEGV");
#else
  EXPECT_EXIT(KVTFileTransferBytes(mDirectory.File("missing"), "r"),
              testing::KilledBySignal(SIGSEGV), "");
#endif
  EXPECT_EXIT(
      {
        { KVTFileTransferBytes bytes(mDirectory.File("made"), "w"); }
        _exit(7);
      },
      testing::ExitedWithCode(7), "");
}

TEST_F(FileTransferBytes, ReadsAtMostWhatRemains) {
  KVTFileTransferBytes bytes(WithContent("a", "abcdef"), "r");
  EXPECT_EQ(Read(bytes, 4), "abcd");
  EXPECT_EQ(bytes.Tell(), 4u);
  EXPECT_EQ(Read(bytes, 4), "ef");
  EXPECT_EQ(bytes.Tell(), 6u);
}

TEST_F(FileTransferBytes, ReadsBytesAsTheyAre) {
  const std::string content("\0\r\n\xFF\0x", 6);
  KVTFileTransferBytes bytes(WithContent("a", content), "r");
  EXPECT_EQ(Read(bytes, 6), content);
}

TEST_F(FileTransferBytes, StaysGoodWhenAllHasBeenRead) {
  KVTFileTransferBytes bytes(WithContent("a", "abc"), "r");
  EXPECT_EQ(Read(bytes, 3), "abc");
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
  EXPECT_EQ(Read(bytes, 3), "");
  EXPECT_EQ(Read(bytes, 1000), "");
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
}

TEST_F(FileTransferBytes, ReadsNothingBehindTheEnd) {
  KVTFileTransferBytes bytes(WithContent("a", "abc"), "r");
  EXPECT_EQ(bytes.Seek(10, KVTSeekFromBeginning), 10u);
  EXPECT_EQ(Read(bytes, 5), "");
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
  EXPECT_EQ(bytes.Tell(), 10u);
}

TEST_F(FileTransferBytes, ReadOfSizeZeroGivesNothing) {
  KVTFileTransferBytes bytes(WithContent("a", "abc"), "r");
  EXPECT_EQ(Read(bytes, 0), "");
  EXPECT_EQ(bytes.Tell(), 0u);
}

TEST_F(FileTransferBytes, ReadsNothingFromAFileOfSizeZeroInAnyMode) {
  for (const char* mode : {"r", "r+", "w", "w+", "a", "a+"}) {
    KVTFileTransferBytes bytes(WithContent("a", ""), mode);
    EXPECT_EQ(Read(bytes, 5), "") << mode;
    EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood) << mode;
  }
}

// Size 0 is what the disk says: no seek of Read brings the bytes there.
TEST_F(FileTransferBytes, ReadsNothingWhileAllBytesWaitInTheStream) {
  KVTFileTransferBytes bytes(mDirectory.File("a"), "w+");
  EXPECT_EQ(Write(bytes, "abc"), 3u);
  EXPECT_EQ(Read(bytes, 5), "");
  EXPECT_EQ(Content("a"), "");
  bytes.Flush();
  EXPECT_EQ(Content("a"), "abc");
  EXPECT_EQ(bytes.Seek(1, KVTSeekFromBeginning), 1u);
  EXPECT_EQ(Read(bytes, 5), "bc");
}

TEST_F(FileTransferBytes, ReadsNothingFromADirectory) {
  WithContent("a", "abc");
  KVTFileTransferBytes bytes(mDirectory.File(), "r");
  ASSERT_EQ(bytes.GetStreamState(), KVTStreamGood);
  EXPECT_EQ(Read(bytes, 5), "");
  EXPECT_EQ(Write(bytes, "abc"), 0u);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
}

// A file that becomes a directory, with the stream on the old file.
TEST_F(FileTransferBytes, NeitherReadsNorWritesWherePathHasBecomeADirectory) {
  KVTFileTransferBytes bytes(WithContent("a", "abc"), "r+");
  std::filesystem::create_hard_link(mDirectory.Path("a"), mDirectory.Path("b"));
  std::filesystem::remove(mDirectory.Path("a"));
  std::filesystem::create_directory(mDirectory.Path("a"));
  WriteFile(mDirectory.Path("a/x"), "");  // size 1, as directories are counted
  EXPECT_EQ(Read(bytes, 5), "");
  EXPECT_EQ(Write(bytes, "xyz"), 0u);
  bytes.Flush();
  EXPECT_EQ(Content("b"), "abc");
  EXPECT_EQ(bytes.Tell(), 0u);
}

TEST_F(FileTransferBytes, WritesButDoesNotReadAFileDeletedAfterOpening) {
  KVTFileTransferBytes bytes(WithContent("a", "abc"), "r+");
  std::filesystem::create_hard_link(mDirectory.Path("a"), mDirectory.Path("b"));
  std::filesystem::remove(mDirectory.Path("a"));
  EXPECT_EQ(Read(bytes, 2), "");
  EXPECT_EQ(bytes.Tell(), 0u);
  EXPECT_EQ(Write(bytes, "XYZ!"), 4u);
  bytes.Flush();
  EXPECT_EQ(Content("b"), "XYZ!");
  // The path counts, not the stream: with a file there again, it reads.
  std::filesystem::copy(mDirectory.Path("b"), mDirectory.Path("a"));
  bytes.Seek(0, KVTSeekFromBeginning);
  EXPECT_EQ(Read(bytes, 2), "XY");
}

TEST_F(FileTransferBytes, NeitherReadsNorWritesWithoutAPath) {
  WithContent("a", "abc");
  hooks::Scoped hook(hooks::onFopen, [&](const char*, const char*) {
    return hooks::RealFopen(mDirectory.Path("a").c_str(), "r+");
  });
  KVTFileTransferBytes bytes(KVTFile(), "r+");
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
  EXPECT_EQ(Read(bytes, 5), "");
  EXPECT_EQ(Write(bytes, "x"), 0u);
  EXPECT_EQ(bytes.Seek(2, KVTSeekFromBeginning), 2u);
}

TEST_F(FileTransferBytes, WritesAtThePosition) {
  {
    KVTFileTransferBytes bytes(WithContent("a", "abcdef"), "r+");
    bytes.Seek(2, KVTSeekFromBeginning);
    EXPECT_EQ(Write(bytes, std::string("X\0Y", 3)), 3u);
    EXPECT_EQ(bytes.Tell(), 5u);
    EXPECT_EQ(Write(bytes, ""), 0u);
  }
  EXPECT_EQ(Content("a"), std::string("abX\0Yf", 6));
}

TEST_F(FileTransferBytes, WritesAfterAReadOnOneStream) {
  {
    KVTFileTransferBytes bytes(WithContent("a", "abcdef"), "r+");
    EXPECT_EQ(Read(bytes, 2), "ab");
    EXPECT_EQ(Write(bytes, "XY"), 2u);
    EXPECT_EQ(Read(bytes, 1), "e");
    EXPECT_EQ(Write(bytes, "Z!"), 2u);
  }
  EXPECT_EQ(Content("a"), "abXYeZ!");
}

TEST_F(FileTransferBytes, AppendsInAppendMode) {
  {
    KVTFileTransferBytes bytes(WithContent("a", "abc"), "a+");
    bytes.Seek(0, KVTSeekFromBeginning);
    EXPECT_EQ(Read(bytes, 2), "ab");
    EXPECT_EQ(Write(bytes, "X"), 1u);
    EXPECT_EQ(bytes.Tell(), 4u);
  }
  EXPECT_EQ(Content("a"), "abcX");
}

TEST_F(FileTransferBytes, WritesNothingToAStreamForReading) {
  KVTFileTransferBytes bytes(WithContent("a", "abc"), "r");
  EXPECT_EQ(Write(bytes, "xyz"), 0u);
  // The stream's error indicator is not asked for.
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
  bytes.SetEndOfStream();
  EXPECT_EQ(Read(bytes, 5), "abc");
  EXPECT_EQ(Content("a"), "abc");
}

TEST_F(FileTransferBytes, SeeksFromBeginningCurrentAndEnd) {
  KVTFileTransferBytes bytes(WithContent("a", "abcdef"), "r");
  EXPECT_EQ(bytes.Seek(4, KVTSeekFromBeginning), 4u);
  EXPECT_EQ(bytes.Seek(1, KVTSeekFromCurrent), 5u);
  EXPECT_EQ(bytes.Seek(0, KVTSeekFromEnd), 6u);
  EXPECT_EQ(bytes.Seek(2, KVTSeekFromEnd), 8u);
}

TEST_F(FileTransferBytes, TakesANegativeOffsetInComplementForm) {
  KVTFileTransferBytes bytes(WithContent("a", "abcdef"), "r");
  EXPECT_EQ(bytes.Seek(-2ull, KVTSeekFromEnd), 4u);
  EXPECT_EQ(bytes.Seek(-3ull, KVTSeekFromCurrent), 1u);
  EXPECT_EQ(Read(bytes, 2), "bc");
}

TEST_F(FileTransferBytes, SeekThatFailsGivesZeroAndStays) {
  KVTFileTransferBytes bytes(WithContent("a", "abcdef"), "r");
  bytes.Seek(3, KVTSeekFromBeginning);
  EXPECT_EQ(bytes.Seek(-1ull, KVTSeekFromBeginning), 0u);
  EXPECT_EQ(bytes.Tell(), 3u);
  EXPECT_EQ(bytes.Seek(-4ull, KVTSeekFromCurrent), 0u);
  EXPECT_EQ(bytes.Tell(), 3u);
  EXPECT_EQ(bytes.Seek(-7ull, KVTSeekFromEnd), 0u);
  EXPECT_EQ(bytes.Tell(), 3u);
}

TEST_F(FileTransferBytes, SeekFromElsewhereMovesNothing) {
  KVTFileTransferBytes bytes(WithContent("a", "abcdef"), "r");
  bytes.Seek(3, KVTSeekFromBeginning);
  int seeks = 0;
  hooks::Scoped hook(hooks::onFseek, [&](FILE*, long, int) { return ++seeks; });
  for (int where : {0, 3, 5, 6, 7}) {
    EXPECT_EQ(bytes.Seek(1, Where(where)), 3u) << where;
  }
  EXPECT_EQ(seeks, 0);
}

class ToldElsewhere : public KVTFileTransferBytes {
 public:
  using KVTFileTransferBytes::KVTFileTransferBytes;
  unsigned long long Tell() override { return 77; }
};

TEST_F(FileTransferBytes, SeekReturnsWhatADerivedClassTells) {
  ToldElsewhere bytes(WithContent("a", "abc"), "r");
  EXPECT_EQ(bytes.Seek(1, KVTSeekFromBeginning), 77u);
  EXPECT_EQ(bytes.Seek(1, Where(3)), 77u);
  EXPECT_EQ(bytes.Seek(-1ull, KVTSeekFromBeginning), 0u);
}

TEST_F(FileTransferBytes, FlushBringsTheBytesToTheDisk) {
  KVTFileTransferBytes bytes(mDirectory.File("a"), "w");
  Write(bytes, "abc");
  EXPECT_EQ(Content("a"), "");
  bytes.Flush();
  EXPECT_EQ(Content("a"), "abc");
  EXPECT_EQ(bytes.Tell(), 3u);
}

TEST_F(FileTransferBytes, FlushWithoutAStreamLeavesOtherStreamsAlone) {
  KVTFileTransferBytes other(mDirectory.File("a"), "w");
  Write(other, "abc");
  Undying(mDirectory.File("missing"), "r").Flush();
  EXPECT_EQ(Content("a"), "");
}

TEST_F(FileTransferBytes, LetsTheAllocatorsExceptionThrough) {
  const KVTFile file = WithContent("a", "abc");
  KVTFileTransferBytes bytes(file, "r+");
  bytes.Seek(1, KVTSeekFromBeginning);
  {
    hooks::FailingAllocator nothing(0);
    char buffer[4] = "";
    EXPECT_THROW(bytes.Read(buffer, 2), std::bad_alloc);
    EXPECT_THROW(bytes.Write(buffer, 2), std::bad_alloc);
    EXPECT_THROW(bytes.GetFile(), std::bad_alloc);
    EXPECT_THROW(KVTFileTransferBytes(file, "r"), std::bad_alloc);
  }
  EXPECT_EQ(bytes.Tell(), 1u);
  EXPECT_EQ(Read(bytes, 4), "bc");
}

TEST_F(FileTransferBytes, OpensNothingUnlessItsConstructorSucceeds) {
  const KVTFile file = WithContent("a", "abc");
  const std::size_t before = OpenDescriptors();
  bool made = false;
  std::size_t granted = 0;
  for (; !made && granted < 100; ++granted) {
    try {
      hooks::FailingAllocator allocator(granted);
      KVTFileTransferBytes bytes(file, "r");
      made = true;
    } catch (const std::bad_alloc&) {
    }
    EXPECT_EQ(OpenDescriptors(), before) << granted;
  }
  EXPECT_TRUE(made);
  EXPECT_GT(granted, 1u);
}

TEST_F(FileTransferBytes, SetEndOfStreamCutsTheFileAtThePosition) {
  KVTFileTransferBytes bytes(WithContent("a", "abcdef"), "r+");
  bytes.Seek(4, KVTSeekFromBeginning);
  bytes.SetEndOfStream();
  EXPECT_EQ(Content("a"), "abcd");
  EXPECT_EQ(bytes.Tell(), 4u);
  // Behind what a read has delivered, not behind what stdio has taken in.
  bytes.Seek(0, KVTSeekFromBeginning);
  EXPECT_EQ(Read(bytes, 2), "ab");
  bytes.SetEndOfStream();
  EXPECT_EQ(Content("a"), "ab");
}

TEST_F(FileTransferBytes, SetEndOfStreamFillsUpToThePosition) {
  KVTFileTransferBytes bytes(WithContent("a", "abc"), "r+");
  bytes.Seek(5, KVTSeekFromBeginning);
  bytes.SetEndOfStream();
  EXPECT_EQ(Content("a"), std::string("abc\0\0", 5));
}

// ftruncate is called with the bytes still in the stream.
TEST_F(FileTransferBytes, SetEndOfStreamDoesNotFlush) {
  KVTFileTransferBytes bytes(WithContent("a", "abcdef"), "r+");
  Write(bytes, "XY");
  bytes.SetEndOfStream();
  EXPECT_EQ(Content("a"), "ab");
  bytes.Flush();
  EXPECT_EQ(Content("a"), "XY");
}

}  // namespace
