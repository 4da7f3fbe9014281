#include <gtest/gtest.h>
#include <stdio.h>

#include <filesystem>
#include <string>

#include "captured_descriptor.h"
#include "sized_bytes.h"
#include "smb1_server.h"

namespace {

constexpr const char* kProbeFile = "tempHandleWindowSMB1KVTShareFile";

// Each probe runs in an empty working directory.
class Smb1Probe : public Smb1Server {
 protected:
  Smb1Probe() : mWork(MakeDirectory(Local("work"))) {}

  std::string WorkFile(const std::string& name) const {
    return Local("work/" + name);
  }

  void ExpectOnlyTheProbeFile() const {
    int files = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(Local("work"))) {
      EXPECT_EQ(entry.path().filename(), kProbeFile);
      ++files;
    }
    EXPECT_EQ(files, 1);
  }

 private:
  static const std::string& MakeDirectory(const std::string& path) {
    std::filesystem::create_directory(path);
    return path;
  }

  const WorkingDirectory mWork;
};

// The stream stays open: what stdio holds comes to the disk only with a flush.
TEST_F(Smb1Probe, OfADownloadKeepsWhatItReceivedInItsOpenFile) {
  WriteFile(Server().Docs("probed"), "ten bytes!");
  EXPECT_EQ(Probe("//127.0.0.1/docs/probed", Local("none/a")), 0);
  EXPECT_EQ(mError, kDoneLine);
  ExpectOnlyTheProbeFile();
  EXPECT_EQ(ReadFile(WorkFile(kProbeFile)), "");
  fflush(nullptr);
  EXPECT_EQ(ReadFile(WorkFile(kProbeFile)), "ten bytes!");
  EXPECT_FALSE(std::filesystem::exists(Local("none")));
}

TEST_F(Smb1Probe, OfADownloadReplacesTheFileOfTheLast) {
  WriteFile(WorkFile(kProbeFile), Bytes(100000));
  WriteFile(Server().Docs("probed"), "second");
  EXPECT_EQ(Probe("//127.0.0.1/docs/probed", Local("a")), 0);
  fflush(nullptr);
  EXPECT_EQ(ReadFile(WorkFile(kProbeFile)), "second");
  ExpectOnlyTheProbeFile();
}

TEST_F(Smb1Probe, OfADownloadLeavesAnEmptyFileWhenTheLoginIsDenied) {
  WriteFile(Server().Docs("probed"), "probed");
  KVTAuthentication wrong("root", "wrong");
  EXPECT_EQ(Send("//127.0.0.1/docs/probed", Local("a"), &wrong, false), 6);
  EXPECT_EQ(mError, "Curl return code  67 , curl response code 0");
  EXPECT_EQ(ReadFile(WorkFile(kProbeFile)), "");
  ExpectOnlyTheProbeFile();
}

TEST_F(Smb1Probe, OfADownloadLeavesAnEmptyFileWhenThereIsNoneToRead) {
  EXPECT_EQ(Probe("//127.0.0.1/docs/missing", Local("a")), 1);
  EXPECT_EQ(mError, "Curl return code  78 , curl response code 0");
  EXPECT_EQ(ReadFile(WorkFile(kProbeFile)), "");
  ExpectOnlyTheProbeFile();
}

TEST_F(Smb1Probe, OfADownloadFailsWhereAFolderHasItsFilesName) {
  std::filesystem::create_directory(WorkFile(kProbeFile));
  EXPECT_EQ(Probe("//127.0.0.1/docs/probed", Local("a")), 1);
  EXPECT_EQ(mError, "Unable to open file tempHandleWindowSMB1KVTShareFile");
}

TEST_F(Smb1Probe, OfAnUploadReadsTheRemoteFileToStandardOutput) {
  WriteFile(Server().Docs("target"), "what is there\n");
  WriteFile(Local("a"), "what is not sent");
  CapturedDescriptor output(1);
  EXPECT_EQ(Probe(Local("a"), "//127.0.0.1/docs/target"), 0);
  EXPECT_EQ(mError, kDoneLine);
  EXPECT_EQ(output.Text(), "what is there\n");
  EXPECT_EQ(ReadFile(Server().Docs("target")), "what is there\n");
  EXPECT_TRUE(std::filesystem::is_empty(Local("work")));
}

// It cannot tell that an upload would make the file.
TEST_F(Smb1Probe, OfAnUploadFailsWhileTheTargetIsNotThere) {
  WriteFile(Local("a"), "what is not sent");
  CapturedDescriptor output(1);
  EXPECT_EQ(Probe(Local("a"), "//127.0.0.1/docs/missing"), 1);
  EXPECT_EQ(mError, "Curl return code  78 , curl response code 0");
  EXPECT_EQ(output.Text(), "");
  EXPECT_FALSE(std::filesystem::exists(Server().Docs("missing")));
  EXPECT_TRUE(std::filesystem::is_empty(Local("work")));
}

TEST_F(Smb1Probe, OfAnUploadTellsOfADeniedLogin) {
  KVTAuthentication wrong("root", "wrong");
  WriteFile(Local("a"), "what is not sent");
  EXPECT_EQ(Send(Local("a"), "//127.0.0.1/docs/target", &wrong, false), 6);
  EXPECT_TRUE(std::filesystem::is_empty(Local("work")));
}

TEST_F(Smb1Probe, OfAnUploadNeedsNoLocalFile) {
  WriteFile(Server().Docs("target"), "there");
  CapturedDescriptor output(1);
  EXPECT_EQ(Probe(Local("missing"), "//127.0.0.1/docs/target"), 0);
  EXPECT_EQ(output.Text(), "there");
}

}  // namespace
