#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "smb1_recording.h"
#include "temporary_directory.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// What is refused before anything is asked of libcurl

class Smb1Entry : public Smb1Recording {
 protected:
  Smb1Entry() { mError = "earlier"; }
};

TEST_F(Smb1Entry, RefusesASourceOfUpToTwoUnitsWhateverTheDestination) {
  for (const char* source : {"", "a", "ab", "//", "\\\\", "\xC3\xA9\xC3\xA9"}) {
    EXPECT_EQ(Send(source, nullptr, "//10.0.0.5/docs/a", nullptr), 1);
    EXPECT_EQ(Send(source, nullptr, "/tmp/a", nullptr), 1);
    EXPECT_EQ(Send(source, nullptr, "", nullptr, false), 1);
  }
  EXPECT_EQ(mError, "earlier");
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
}

TEST_F(Smb1Entry, TakesASourceOfThreeUnits) {
  EXPECT_EQ(Send("abc", nullptr, "//10.0.0.5/docs/a", nullptr), 0);
  EXPECT_THAT(mCurl.Calls(), Contains("fopen abc rb"));
  EXPECT_EQ(Send("//a", nullptr, "/tmp/a", nullptr), 0);
  EXPECT_THAT(mCurl.Calls(), Contains("fopen /tmp/a wb"));
}

TEST_F(Smb1Entry, RefusesTwoSharesWithoutAText) {
  EXPECT_EQ(Send("//10.0.0.5/docs/a", nullptr, "//10.0.0.6/docs/a", nullptr),
            1);
  EXPECT_EQ(Send("smb://h/s/a", nullptr, "cifs://h/s/a", nullptr, false), 1);
  EXPECT_EQ(mError, "earlier");
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
}

TEST_F(Smb1Entry, FailsWithoutATextWhenLibcurlGivesNoHandle) {
  mCurl.initFails = true;
  EXPECT_EQ(Upload(), 1);
  EXPECT_EQ(Download(), 1);
  EXPECT_EQ(ProbeUpload(), 1);
  EXPECT_EQ(ProbeDownload(), 1);
  EXPECT_EQ(Send("/data/a", nullptr, "/tmp/a", nullptr), 1);
  EXPECT_EQ(mError, "earlier");
  EXPECT_THAT(mCurl.Calls(),
              ElementsAre("init", "init", "init", "init", "init"));
}

TEST_F(Smb1Entry, RefusesTwoLocalPathsAndLeavesTheHandleBehind) {
  EXPECT_EQ(Send("/data/a", nullptr, "/tmp/a", nullptr), 1);
  EXPECT_EQ(mError, "earlier");
  EXPECT_THAT(mCurl.Calls(), ElementsAre("init"));
  EXPECT_EQ(mCurl.LiveHandles(), 1);
}

// Neither side looks like a share, whatever the other parts say.
TEST_F(Smb1Entry, TakesForLocalWhatHasNoPrefixOrARefusedCharacter) {
  for (const char* destination :
       {"", "ab", "host/share/x", "SMB://host/share/x", "//host/share/a%b",
        "//host/share/*.txt", "/mnt/x"}) {
    EXPECT_EQ(Send("/data/a", nullptr, destination, nullptr), 1) << destination;
    EXPECT_EQ(Send("/data/a", nullptr, destination, nullptr, false), 1);
  }
  EXPECT_EQ(mError, "earlier");
  EXPECT_EQ(mCurl.MadeHandles(), 14);
  EXPECT_EQ(mCurl.LiveHandles(), 14);
}

TEST_F(Smb1Entry, UploadsASourceWhoseRefusedCharacterMakesItLocal) {
  EXPECT_EQ(Send("//host/share/a%b", nullptr, "//10.0.0.5/docs/a", nullptr), 0);
  EXPECT_THAT(mCurl.Calls(), Contains("fopen //host/share/a%b rb"));
}

// The local side

class Smb1LocalSide : public Smb1Recording {};

TEST_F(Smb1LocalSide, UploadNamesTheFileThatDoesNotOpen) {
  mOpenFails = true;
  EXPECT_EQ(Upload(), 1);
  EXPECT_EQ(mError, "Unable to open file /data/a");
  EXPECT_THAT(
      mCurl.Calls(),
      ElementsAre("init", "CURLOPT_URL smb://10.0.0.5/docs/a",
                  "CURLOPT_INFILESIZE_LARGE 0", "fopen /data/a rb", "cleanup"));
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(Smb1LocalSide, DownloadNamesTheFileThatDoesNotOpen) {
  mOpenFails = true;
  EXPECT_EQ(Download(), 1);
  EXPECT_EQ(mError, "Unable to open file /tmp/a");
  EXPECT_THAT(mCurl.Calls(),
              ElementsAre("init", "CURLOPT_URL smb://10.0.0.5/docs/a",
                          "fopen /tmp/a wb", "cleanup"));
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(Smb1LocalSide, ProbeOfADownloadNamesItsFileThatDoesNotOpen) {
  mOpenFails = true;
  EXPECT_EQ(ProbeDownload(), 1);
  EXPECT_EQ(mError, "Unable to open file tempHandleWindowSMB1KVTShareFile");
  EXPECT_THAT(
      mCurl.Calls(),
      ElementsAre("init", "CURLOPT_URL smb://10.0.0.5/docs/a",
                  "fopen tempHandleWindowSMB1KVTShareFile wb", "cleanup"));
}

TEST_F(Smb1LocalSide, ProbeOfAnUploadOpensNoFile) {
  mOpenFails = true;
  EXPECT_EQ(ProbeUpload(), 0);
  EXPECT_THAT(mCurl.Calls(), Not(Contains(StartsWith("fopen"))));
}

TEST_F(Smb1LocalSide, DownloadMakesTheFoldersAboveTheFile) {
  const TemporaryDirectory directory;
  EXPECT_EQ(
      Send("//10.0.0.5/docs/a", nullptr, directory.Path("b/c/a"), nullptr), 0);
  EXPECT_TRUE(std::filesystem::is_directory(directory.Path("b/c")));
}

TEST_F(Smb1LocalSide, ProbeOfADownloadMakesNoFolders) {
  const TemporaryDirectory directory;
  EXPECT_EQ(Send("//10.0.0.5/docs/a", nullptr, directory.Path("b/c/a"), nullptr,
                 false),
            0);
  EXPECT_FALSE(std::filesystem::exists(directory.Path("b")));
}

TEST_F(Smb1LocalSide, DownloadLeavesTheHandleBehindWhenNoFolderCanBeMade) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("file"), "in the way");
  KVTAuthentication auth("me", "pw");
  EXPECT_EQ(
      Send("//10.0.0.5/docs/a", &auth, directory.Path("file/sub/a"), nullptr),
      1);
  EXPECT_EQ(mError, "Unable to create parent directory for " +
                        directory.Text("file/sub/a"));
  // The credentials come before the folder.
  EXPECT_THAT(mCurl.Calls(),
              ElementsAre("init", "CURLOPT_URL smb://10.0.0.5/docs/a",
                          "CURLOPT_USERNAME me", "CURLOPT_PASSWORD pw"));
  EXPECT_EQ(mCurl.LiveHandles(), 1);
}

TEST_F(Smb1LocalSide, BytesGoThroughTheStream) {
  mContent = "from the local file";
  std::string sent;
  mCurl.onPerform = [&] { sent = mCurl.Fetch(100); };
  EXPECT_EQ(Upload(), 0);
  EXPECT_EQ(sent, "from the local file");

  mContent.clear();
  mCurl.onPerform = [&] { EXPECT_EQ(mCurl.Deliver("from the share"), 14u); };
  EXPECT_EQ(Download(), 0);
  EXPECT_EQ(mContent, "from the share");
}

TEST(Smb1Callbacks, ReadAsFreadDoes) {
  FILE* const stream = tmpfile();
  ASSERT_NE(stream, nullptr);
  fputs("0123456789", stream);
  rewind(stream);
  char buffer[16] = {};
  // Two whole items of four bytes; the rest of the third is read too.
  EXPECT_EQ(
      KVTShareFileInternal::HandleWindowSMB1Read_CallBack(buffer, 4, 3, stream),
      2u);
  EXPECT_STREQ(buffer, "0123456789");
  EXPECT_EQ(KVTShareFileInternal::HandleWindowSMB1Read_CallBack(buffer, 1, 16,
                                                                stream),
            0u);
  rewind(stream);
  EXPECT_EQ(KVTShareFileInternal::HandleWindowSMB1Read_CallBack(buffer, 0, 16,
                                                                stream),
            0u);
  EXPECT_EQ(ftell(stream), 0);
  fclose(stream);
}

TEST(Smb1Callbacks, WriteAsFwriteDoes) {
  FILE* const stream = tmpfile();
  ASSERT_NE(stream, nullptr);
  char bytes[] = "0123456789";
  EXPECT_EQ(
      KVTShareFileInternal::HandleWindowSMB1Write_CallBack(bytes, 4, 2, stream),
      2u);
  EXPECT_EQ(
      KVTShareFileInternal::HandleWindowSMB1Write_CallBack(bytes, 0, 2, stream),
      0u);
  EXPECT_EQ(ftell(stream), 8);
  fclose(stream);

  FILE* const readOnly = fopen("/dev/null", "rb");
  ASSERT_NE(readOnly, nullptr);
  EXPECT_EQ(KVTShareFileInternal::HandleWindowSMB1Write_CallBack(bytes, 1, 10,
                                                                 readOnly),
            0u);
  fclose(readOnly);
}

// The deletion that isn't one

class Smb1Delete : public Smb1Recording {};

TEST_F(Smb1Delete, AlwaysTellsOfSuccessAndDoesNothing) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("a"), "stays");
  KVTShareFile share;
  KVTAuthentication auth("me", "pw");
  EXPECT_EQ(share.DeleteFileOnWindowSMB1("", nullptr), 0);
  EXPECT_EQ(share.DeleteFileOnWindowSMB1("//10.0.0.5/docs/a", nullptr), 0);
  EXPECT_EQ(share.DeleteFileOnWindowSMB1("//10.0.0.5/docs/a", &auth), 0);
  EXPECT_EQ(share.DeleteFileOnWindowSMB1(directory.Text("a"), &auth), 0);
  EXPECT_EQ(ReadFile(directory.Path("a")), "stays");
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
}

}  // namespace
