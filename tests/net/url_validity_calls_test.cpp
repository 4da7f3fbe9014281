// What IsURLValid asks of libcurl, with libcurl's calls scripted.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "KVTFileUtil.h"
#include "curl_hooks.h"
#include "hooks.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

using testing::ElementsAre;

const KVTString kUrl = FromUtf8("http://host/b\xC3\xBC.txt?x=1");

class IsURLValidCalls : public testing::Test {
 protected:
  const TemporaryDirectory mDirectory;
  const WorkingDirectory mWorking{mDirectory.Path()};
  CurlRecorder mCurl;
  // Instead of the file in /tmp, which other programs may use just now.
  const hooks::Scoped<decltype(hooks::onFopen)> mFopen{
      hooks::onFopen, [this](const char* path, const char* mode) {
        mCurl.Note(std::string("fopen ") + path + " " + mode);
        mFile = mOpens ? hooks::RealFopen(mDirectory.Path("body").c_str(), mode)
                       : nullptr;
        mCurl.NamePointer(mFile, "the file");
        return mFile;
      }};
  const hooks::Scoped<decltype(hooks::onFclose)> mFclose{
      hooks::onFclose, [this](FILE* file) {
        if (file == mFile) mCurl.Note("fclose the file");
        return hooks::RealFclose(file);
      }};
  const hooks::Scoped<decltype(hooks::onRemove)> mRemove{
      hooks::onRemove, [this](const char* path) {
        mCurl.Note(std::string("remove ") + path);
        return hooks::RealRemove(path);
      }};
  bool mOpens = true;
  FILE* mFile = nullptr;
};

TEST_F(IsURLValidCalls, SetThreeOptionsAndNoProxy) {
  mCurl.responseCode = 200;
  EXPECT_TRUE(KVTFileUtil::IsURLValid(kUrl));
  EXPECT_THAT(
      mCurl.Calls(),
      ElementsAre("init", "fopen /tmp/curlFile w", "CURLOPT_WRITEDATA the file",
                  "CURLOPT_URL http://host/b\xC3\xBC.txt?x=1",
                  "CURLOPT_NOBODY 1", "perform", "CURLINFO_RESPONSE_CODE",
                  "cleanup", "fclose the file", "remove curlFile"));
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(IsURLValidCalls, LeaveOutTheFileThatCannotBeOpened) {
  WriteFile("curlFile", "kept");
  mOpens = false;
  mCurl.responseCode = 200;
  EXPECT_TRUE(KVTFileUtil::IsURLValid(kUrl));
  EXPECT_THAT(mCurl.Calls(),
              ElementsAre("init", "fopen /tmp/curlFile w",
                          "CURLOPT_URL http://host/b\xC3\xBC.txt?x=1",
                          "CURLOPT_NOBODY 1", "perform",
                          "CURLINFO_RESPONSE_CODE", "cleanup"));
  EXPECT_EQ(mCurl.LiveHandles(), 0);
  EXPECT_EQ(ReadFile("curlFile"), "kept");
}

TEST_F(IsURLValidCalls, RemoveCurlFileFromTheWorkingDirectory) {
  WriteFile("curlFile", "somebody's");
  mCurl.responseCode = 404;
  EXPECT_FALSE(KVTFileUtil::IsURLValid(kUrl));
  EXPECT_FALSE(mDirectory.File("curlFile").Exists());
  EXPECT_TRUE(mDirectory.File("body").Exists());
}

TEST_F(IsURLValidCalls, RemoveAnEmptyDirectoryOfThatNameToo) {
  std::filesystem::create_directory("curlFile");
  mCurl.responseCode = 200;
  EXPECT_TRUE(KVTFileUtil::IsURLValid(kUrl));
  EXPECT_FALSE(mDirectory.File("curlFile").Exists());
}

TEST_F(IsURLValidCalls, FailWithoutAHandle) {
  WriteFile("curlFile", "kept");
  mCurl.initFails = true;
  EXPECT_FALSE(KVTFileUtil::IsURLValid(kUrl));
  EXPECT_THAT(mCurl.Calls(), ElementsAre("init"));
  EXPECT_EQ(ReadFile("curlFile"), "kept");
}

TEST_F(IsURLValidCalls, GoOnWhateverSetoptSays) {
  mCurl.setoptResult = CURLE_OUT_OF_MEMORY;
  mCurl.responseCode = 200;
  EXPECT_TRUE(KVTFileUtil::IsURLValid(kUrl));
  EXPECT_THAT(mCurl.Options(), testing::SizeIs(3));
}

TEST_F(IsURLValidCalls, SucceedWithFiveResponseCodesOnly) {
  for (long code = 0; code < 1000; ++code) {
    mCurl.responseCode = code;
    EXPECT_EQ(KVTFileUtil::IsURLValid(kUrl), code == 200 || code == 226 ||
                                                 code == 257 || code == 301 ||
                                                 code == 350)
        << code;
  }
  EXPECT_EQ(mCurl.MadeHandles(), 1000);
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(IsURLValidCalls, FailWhenTheTransferFailsWhateverTheCode) {
  mCurl.performResult = CURLE_PARTIAL_FILE;
  for (const long code : {0, 200, 226, 257, 301, 350}) {
    mCurl.responseCode = code;
    EXPECT_FALSE(KVTFileUtil::IsURLValid(kUrl)) << code;
  }
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(IsURLValidCalls, StartFromTheCodeZero) {
  mCurl.responseCode.reset();
  EXPECT_FALSE(KVTFileUtil::IsURLValid(kUrl));
}

TEST_F(IsURLValidCalls, ReleaseHandleAndFileWhenAnExceptionPasses) {
  WriteFile("curlFile", "kept");
  mCurl.onPerform = [] { throw std::string("passing"); };
  EXPECT_THROW(KVTFileUtil::IsURLValid(kUrl), std::string);
  EXPECT_THAT(mCurl.Calls(), testing::Contains("fclose the file"));
  EXPECT_EQ(mCurl.LiveHandles(), 0);
  EXPECT_EQ(ReadFile("curlFile"), "kept");
}

}  // namespace
