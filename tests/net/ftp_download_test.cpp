// GetFile against vsftpd, and against a server that says what that does not.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "KVTFileUtil.h"
#include "download.h"
#include "scripted_ftp.h"
#include "servers.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

class FtpDownload : public Download {
 protected:
  void SetUp() override {
    WriteFile(TheServers().Files().Path("hello.txt"), "hello");
  }
};

TEST_F(FtpDownload, ReplacesALongerOldFile) {
  WriteFile(mTargetPath, "a longer old file");
  EXPECT_EQ(Get(Servers::Ftp("hello.txt")), 0);
  EXPECT_EQ(ReadFile(mTargetPath), "hello");
}

TEST_F(FtpDownload, ReachesAFileBelowAFolder) {
  std::filesystem::create_directories(TheServers().Files().Path("a/b"));
  WriteFile(TheServers().Files().Path("a/b/deep"), "deep");
  EXPECT_EQ(Get(Servers::Ftp("a/b/deep")), 0);
  EXPECT_EQ(ReadFile(mTargetPath), "deep");
}

TEST_F(FtpDownload, IntoADirectoryTakesTheNameFromTheUrl) {
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8(Servers::Ftp("hello.txt")),
                                 mDirectory.File(), kNoProxy),
            0);
  EXPECT_EQ(ReadFile(mDirectory.Path("hello.txt")), "hello");
}

TEST_F(FtpDownload, OfAMissingFileLeavesAnEmptyFile) {
  WriteFile(mTargetPath, "old");
  EXPECT_EQ(Get(Servers::Ftp("no-such-file")), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "");
}

TEST_F(FtpDownload, WithARefusedLoginLeavesAnEmptyFile) {
  std::string url = Servers::Ftp("hello.txt");
  url.insert(url.find("127.0.0.1"), "somebody:wrong@");
  EXPECT_EQ(Get(url), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "");
}

TEST_F(FtpDownload, FromAnUnreachableServerLeavesAnEmptyFile) {
  WriteFile(mTargetPath, "old");
  EXPECT_EQ(Get("ftp://127.0.0.1:" + std::to_string(Servers::kDeadPort) +
                "/hello.txt"),
            1);
  EXPECT_EQ(ReadFile(mTargetPath), "");
}

// A folder's listing is a transfer like any other.
TEST_F(FtpDownload, OfAFolderGivesItsListing) {
  std::filesystem::create_directories(TheServers().Files().Path("listed"));
  WriteFile(TheServers().Files().Path("listed/entry"), "x");
  EXPECT_EQ(Get(Servers::Ftp("listed/")), 0);
  EXPECT_NE(ReadFile(mTargetPath).find("entry"), std::string::npos);
}

// The reply that ends the transfer decides.
TEST_F(FtpDownload, SucceedsWhenTheTransferEndsWith226) {
  const ScriptedFtp server(ScriptedFtp::Replies{{"RETR", "226 done"}}, "body");
  EXPECT_EQ(Get(server.Url("x")), 0);
  EXPECT_EQ(ReadFile(mTargetPath), "body");
}

TEST_F(FtpDownload, FailsWhenTheTransferEndsWith250) {
  const ScriptedFtp server(ScriptedFtp::Replies{{"RETR", "250 done"}}, "body");
  EXPECT_EQ(Get(server.Url("x")), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "body");
}

TEST_F(FtpDownload, FailsWhenTheTransferIsAborted) {
  const ScriptedFtp server(ScriptedFtp::Replies{{"RETR", "426 aborted"}}, "bo");
  EXPECT_EQ(Get(server.Url("x")), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "bo");
}

// SIZE announces more than comes.
TEST_F(FtpDownload, FailsWhenThe226FollowsTooFewBytes) {
  const ScriptedFtp server(
      ScriptedFtp::Replies{{"SIZE", "213 5"}, {"RETR", "226 done"}}, "bo");
  EXPECT_EQ(Get(server.Url("x")), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "bo");
}

}  // namespace
