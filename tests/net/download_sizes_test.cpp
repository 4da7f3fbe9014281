// GetFile of files from nothing to 64 MB, over each protocol, and onto a full
// disk.

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include "KVTFileUtil.h"
#include "download.h"
#include "namespaces.h"
#include "servers.h"
#include "sized_bytes.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

constexpr std::size_t kMegabyte = 1 << 20;

class DownloadOfSize : public Download,
                       public testing::WithParamInterface<std::size_t> {
 protected:
  void SetUp() override {
    WriteFile(TheServers().Files().Path("sized"), mBytes);
  }
  const std::string mBytes = Bytes(GetParam());
};

TEST_P(DownloadOfSize, ArrivesByteForByteOverHttp) {
  EXPECT_EQ(Get(Servers::Http("sized")), 0);
  EXPECT_TRUE(ReadFile(mTargetPath) == mBytes);
}

TEST_P(DownloadOfSize, ArrivesByteForByteOverHttps) {
  EXPECT_EQ(Get(Servers::Https("sized")), 0);
  EXPECT_TRUE(ReadFile(mTargetPath) == mBytes);
}

TEST_P(DownloadOfSize, ArrivesByteForByteOverFtp) {
  EXPECT_EQ(Get(Servers::Ftp("sized")), 0);
  EXPECT_TRUE(ReadFile(mTargetPath) == mBytes);
}

INSTANTIATE_TEST_SUITE_P(, DownloadOfSize,
                         testing::Values(0, 1, 16384, kMegabyte + 1,
                                         64 * kMegabyte),
                         testing::PrintToStringParamName());

// --- A full disk

// One page, taken by another file: what comes stays in the buffer of the stream
// until fclose(3), which fails.
class FullDisk : public Download {
 protected:
  void SetUp() override {
    WriteFile(TheServers().Files().Path("hello.txt"), "hello");
    std::filesystem::create_directory(mDirectory.Path("full"));
    mCover.emplace(mDirectory.Path("full"), 4096);
    WriteFile(mDirectory.Path("full/other"), std::string(4096, 'x'));
  }
  std::optional<ScopedCover> mCover;
};

TEST_F(FullDisk, FailsAnHttpDownloadWhenTheFileIsClosed) {
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8(Servers::Http("hello.txt")),
                                 mDirectory.File("full/x"), kNoProxy),
            1);
  EXPECT_EQ(ReadFile(mDirectory.Path("full/x")), "");
}

TEST_F(FullDisk, DoesNotFailAnFtpDownloadWhenTheFileIsClosed) {
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8(Servers::Ftp("hello.txt")),
                                 mDirectory.File("full/x"), kNoProxy),
            0);
  EXPECT_EQ(ReadFile(mDirectory.Path("full/x")), "");
}

TEST_F(FullDisk, FailsBothOnTheWayWhenTheyAreLarge) {
  WriteFile(TheServers().Files().Path("large"), Bytes(kMegabyte));
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8(Servers::Http("large")),
                                 mDirectory.File("full/x"), kNoProxy),
            1);
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8(Servers::Ftp("large")),
                                 mDirectory.File("full/x"), kNoProxy),
            1);
}

}  // namespace
