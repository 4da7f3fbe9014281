// How the file transport meets stdio: the order of its calls, their failures,
// and positions beyond 32 bits.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "hooks.h"
#include "temporary_directory.h"
#include "test_strings.h"
#include "transfer_bytes_test.h"

namespace {

using testing::ElementsAre;

constexpr unsigned long long kGiB = 1ull << 30;

// Writes down the calls of ftell and fseek; the call of number `mFailing`,
// counted from 1, fails.
class StdioLog {
 public:
  explicit StdioLog(std::size_t failing = 0)
      : mFailing(failing),
        mFtell(hooks::onFtell, [this](FILE* stream) { return Ftell(stream); }),
        mFseek(hooks::onFseek, [this](FILE* stream, long offset, int where) {
          return Fseek(stream, offset, where);
        }) {}

  std::vector<std::string> calls;

 private:
  long Ftell(FILE* stream) {
    calls.push_back("tell");
    return calls.size() == mFailing ? -1 : hooks::RealFtell(stream);
  }

  int Fseek(FILE* stream, long offset, int where) {
    calls.push_back("seek " + std::to_string(offset) +
                    (where == SEEK_SET   ? " set"
                     : where == SEEK_CUR ? " cur"
                     : where == SEEK_END ? " end"
                                         : " ?"));
    return calls.size() == mFailing ? -1
                                    : hooks::RealFseek(stream, offset, where);
  }

  std::size_t mFailing;
  hooks::Scoped<std::function<long(FILE*)>> mFtell;
  hooks::Scoped<std::function<int(FILE*, long, int)>> mFseek;
};

class FileTransferBytesStdio : public testing::Test {
 protected:
  void SetUp() override { WriteFile(mDirectory.Path("a"), "abcdef"); }
  KVTFile File() { return mDirectory.File("a"); }

  TemporaryDirectory mDirectory;
};

TEST_F(FileTransferBytesStdio, ReadMeasuresWhatRemains) {
  KVTFileTransferBytes bytes(File(), "r");
  bytes.Seek(2, KVTSeekFromBeginning);
  StdioLog log;
  EXPECT_EQ(Read(bytes, 3), "cde");
  EXPECT_THAT(log.calls,
              ElementsAre("tell", "seek 0 end", "tell", "seek 2 set"));
}

TEST_F(FileTransferBytesStdio, ReadGivesNothingWhenAStepFails) {
  for (std::size_t failing = 1; failing <= 4; ++failing) {
    KVTFileTransferBytes bytes(File(), "r");
    {
      StdioLog log(failing);
      EXPECT_EQ(Read(bytes, 3), "");
      EXPECT_EQ(log.calls.size(), failing);
      EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
    }
    bytes.Seek(0, KVTSeekFromBeginning);
    StdioLog log(5);
    EXPECT_EQ(Read(bytes, 3), "abc");
  }
}

TEST_F(FileTransferBytesStdio, ReadOfWhatIsNotThereAsksStdioForNothing) {
  KVTFileTransferBytes bytes(File(), "r");
  std::filesystem::remove(mDirectory.Path("a"));
  StdioLog log;
  EXPECT_EQ(Read(bytes, 3), "");
  WriteFile(mDirectory.Path("a"), "");
  EXPECT_EQ(Read(bytes, 3), "");
  std::filesystem::remove(mDirectory.Path("a"));
  std::filesystem::create_directory(mDirectory.Path("a"));
  EXPECT_EQ(Read(bytes, 3), "");
  EXPECT_THAT(log.calls, testing::IsEmpty());
}

// The path leads to bytes, the stream to an older file that has none.
TEST_F(FileTransferBytesStdio, ReadOfAnEmptyStreamLeavesThePosition) {
  WriteFile(mDirectory.Path("a"), "");
  KVTFileTransferBytes bytes(File(), "r");
  std::filesystem::remove(mDirectory.Path("a"));
  WriteFile(mDirectory.Path("a"), "abcdef");
  EXPECT_EQ(bytes.Seek(2, KVTSeekFromBeginning), 2u);
  EXPECT_EQ(Read(bytes, 3), "");
  EXPECT_EQ(bytes.Tell(), 2u);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
}

// Is there a file, is it a directory, is it empty: the answer number `turned`
// is turned round.  The last one may take more than one look;
// the entries of a directory, which make its size, are never looked at.
TEST_F(FileTransferBytesStdio, ReadAsksTheDiskInOrderUpToTheFirstObstacle) {
  KVTFileTransferBytes bytes(File(), "r");
  std::size_t turned = 0;
  std::size_t asked = 0;
  hooks::Scoped hook(hooks::onStat, [&](const char* path, struct stat* status) {
    EXPECT_EQ(path, mDirectory.Path("a"));
    const int result = hooks::RealStat(path, status);
    ++asked;
    if (turned == 1 && asked == 1) return -1;
    if (turned == 2 && asked == 2) status->st_mode = S_IFDIR;
    if (turned == 3 && asked >= 3) status->st_size = 0;
    return result;
  });
  hooks::Scoped entries(hooks::onOpendir, [](const char* path) {
    ADD_FAILURE() << path;
    return hooks::RealOpendir(path);
  });
  StdioLog log;
  for (turned = 1; turned <= 3; ++turned) {
    asked = 0;
    EXPECT_EQ(Read(bytes, 3), "");
    if (turned < 3) {
      EXPECT_EQ(asked, turned);
    }
  }
  EXPECT_THAT(log.calls, testing::IsEmpty());
  EXPECT_EQ(Read(bytes, 3), "abc");
}

TEST_F(FileTransferBytesStdio, WriteAsksTheDiskForADirectoryAlone) {
  KVTFileTransferBytes bytes(File(), "r+");
  int asked = 0;
  hooks::Scoped hook(hooks::onStat, [&](const char* path, struct stat* status) {
    ++asked;
    return hooks::RealStat(path, status);
  });
  EXPECT_EQ(Write(bytes, "X"), 1u);
  EXPECT_EQ(asked, 1);
}

TEST_F(FileTransferBytesStdio, WriteSeeksInPlace) {
  KVTFileTransferBytes bytes(File(), "r+");
  bytes.Seek(2, KVTSeekFromBeginning);
  StdioLog log;
  EXPECT_EQ(Write(bytes, "X"), 1u);
  EXPECT_THAT(log.calls, ElementsAre("tell", "seek 2 set"));
}

TEST_F(FileTransferBytesStdio, WriteGivesNothingWhenAStepFails) {
  for (std::size_t failing = 1; failing <= 2; ++failing) {
    KVTFileTransferBytes bytes(File(), "r+");
    StdioLog log(failing);
    EXPECT_EQ(Write(bytes, "X"), 0u);
    EXPECT_EQ(log.calls.size(), failing);
  }
  EXPECT_EQ(ReadFile(mDirectory.Path("a")), "abcdef");
}

// A full device takes nothing, which an unbuffered stream shows at once.
TEST_F(FileTransferBytesStdio, WriteReportsWhatFwriteTook) {
  const auto writeTo = [this](const char* device) {
    hooks::Scoped hook(hooks::onFopen, [device](const char*, const char*) {
      FILE* const stream = hooks::RealFopen(device, "r+");
      setvbuf(stream, nullptr, _IONBF, 0);
      return stream;
    });
    KVTFileTransferBytes bytes(File(), "r+");
    return Write(bytes, "abc");
  };
  EXPECT_EQ(writeTo("/dev/null"), 3u);
  EXPECT_EQ(writeTo("/dev/full"), 0u);
}

TEST_F(FileTransferBytesStdio, SeekTakesOneCallFromEachOrigin) {
  KVTFileTransferBytes bytes(File(), "r");
  StdioLog log;
  bytes.Seek(3, KVTSeekFromBeginning);
  bytes.Seek(-1ull, KVTSeekFromCurrent);
  bytes.Seek(0, KVTSeekFromEnd);
  EXPECT_THAT(log.calls, ElementsAre("seek 3 set", "tell", "seek -1 cur",
                                     "tell", "seek 0 end", "tell"));
}

TEST_F(FileTransferBytesStdio, SeekAndTellGiveZeroWhereTheyFail) {
  KVTFileTransferBytes bytes(File(), "r");
  bytes.Seek(3, KVTSeekFromBeginning);
  {
    StdioLog log(1);
    EXPECT_EQ(bytes.Seek(1, KVTSeekFromBeginning), 0u);
    EXPECT_EQ(log.calls.size(), 1u);
  }
  EXPECT_EQ(bytes.Tell(), 3u);
  StdioLog log(1);
  EXPECT_EQ(bytes.Tell(), 0u);
}

TEST_F(FileTransferBytesStdio, SetEndOfStreamNeedsAPosition) {
  KVTFileTransferBytes bytes(File(), "r+");
  bytes.Seek(2, KVTSeekFromBeginning);
  {
    StdioLog log(1);
    bytes.SetEndOfStream();
    EXPECT_THAT(log.calls, ElementsAre("tell"));
  }
  EXPECT_EQ(ReadFile(mDirectory.Path("a")), "abcdef");
  bytes.SetEndOfStream();
  EXPECT_EQ(ReadFile(mDirectory.Path("a")), "ab");
}

// A pipe has no positions.
TEST_F(FileTransferBytesStdio, NeitherReadsNorWritesWhatCannotSeek) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_EQ(write(ends[1], "abc", 3), 3);
  hooks::Scoped hook(hooks::onFopen, [&](const char*, const char*) {
    return fdopen(ends[0], "r");
  });
  KVTFileTransferBytes bytes(File(), "r");
  EXPECT_EQ(Read(bytes, 3), "");
  EXPECT_EQ(Write(bytes, "x"), 0u);
  EXPECT_EQ(bytes.Seek(0, KVTSeekFromBeginning), 0u);
  EXPECT_EQ(bytes.Tell(), 0u);
  bytes.SetEndOfStream();
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
  close(ends[1]);
}

// A file whose end is said to be further away than it is: the one way to the
// end-of-file indicator.
TEST_F(FileTransferBytesStdio, IsAtTheEndWhenTheStreamEndsTooEarly) {
  KVTFileTransferBytes bytes(File(), "r");
  {
    int tells = 0;
    hooks::Scoped hook(hooks::onFtell, [&](FILE* stream) {
      return hooks::RealFtell(stream) + (++tells == 2 ? 100 : 0);
    });
    EXPECT_EQ(Read(bytes, 50), "abcdef");
  }
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamAtEnd);
  // A seek takes the indicator away.
  bytes.Seek(0, KVTSeekFromBeginning);
  EXPECT_EQ(bytes.GetStreamState(), KVTStreamGood);
}

struct PositionCase {
  const char* name;  // part of the test's name: letters and digits only
  unsigned long long position;
  unsigned long long told;
};

const PositionCase kPositionCases[] = {
    {"LastBelow2GiB", 2 * kGiB - 1, 0x7FFFFFFF},
    {"At2GiB", 2 * kGiB, 0xFFFFFFFF80000000},
    {"At3GiB", 3 * kGiB, 0xFFFFFFFFC0000000},
    {"TwoBelow4GiB", 4 * kGiB - 2, 0xFFFFFFFFFFFFFFFE},
    {"OneBelow4GiBLooksLikeAFailure", 4 * kGiB - 1, 0},
    {"At4GiB", 4 * kGiB, 0},
    {"Above4GiB", 4 * kGiB + 5, 5},
    {"Above6GiB", 6 * kGiB + 5, 0xFFFFFFFF80000005},
};

void PrintTo(const PositionCase& c, std::ostream* out) { *out << c.name; }

class FarPosition : public testing::TestWithParam<PositionCase> {};

TEST_P(FarPosition, IsToldIn32BitsAndReadAndWrittenWhereItIs) {
  const TemporaryDirectory directory;
  const unsigned long long position = GetParam().position;
  WriteFile(directory.Path("a"), "");
  std::filesystem::resize_file(directory.Path("a"), 7 * kGiB);  // sparse

  KVTFileTransferBytes bytes(directory.File("a"), "r+");
  EXPECT_EQ(bytes.Seek(position, KVTSeekFromBeginning), GetParam().told);
  EXPECT_EQ(bytes.Tell(), GetParam().told);
  EXPECT_EQ(Write(bytes, "here"), 4u);
  bytes.Flush();
  bytes.Seek(position - 1, KVTSeekFromBeginning);
  EXPECT_EQ(Read(bytes, 6), std::string("\0here\0", 6));

  // The file itself, by another way.
  FILE* const file = hooks::RealFopen(directory.Path("a").c_str(), "r");
  ASSERT_NE(file, nullptr);
  ASSERT_EQ(fseeko(file, static_cast<off_t>(position), SEEK_SET), 0);
  char found[5] = "";
  EXPECT_EQ(fread(found, 1, 4, file), 4u);
  EXPECT_STREQ(found, "here");
  fclose(file);

  bytes.Seek(position, KVTSeekFromBeginning);
  bytes.SetEndOfStream();
  EXPECT_EQ(std::filesystem::file_size(directory.Path("a")), position);
}

INSTANTIATE_TEST_SUITE_P(, FarPosition, testing::ValuesIn(kPositionCases),
                         [](const auto& test) { return test.param.name; });

}  // namespace
