// What GetFile and IsURLValid ask of libcurl, with libcurl's calls scripted.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

#include "KVTFileUtil.h"
#include "curl_hooks.h"
#include "hooks.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr proxy kNoProxy = {0, nullptr, nullptr};
const KVTString kUrl = FromUtf8("http://host/b\xC3\xBC.txt?x=1");

// Has each file that is opened for writing shown as "the file" and noted with
// its path and mode, as one of the calls.
class NotedFopen {
 public:
  explicit NotedFopen(CurlRecorder& curl)
      : mHook(hooks::onFopen, [&curl](const char* path, const char* mode) {
          curl.Note(std::string("fopen ") + path + " " + mode);
          FILE* const file = hooks::RealFopen(path, mode);
          curl.NamePointer(file, "the file");
          return file;
        }) {}

 private:
  hooks::Scoped<decltype(hooks::onFopen)> mHook;
};

// --- write_data

TEST(WriteData, WritesTheItemsAndReturnsTheirNumber) {
  const TemporaryDirectory directory;
  FILE* const file = fopen(directory.Path("x").c_str(), "wb");
  char bytes[] = "abcdef";
  EXPECT_EQ(write_data(bytes, 2, 3, file), 3u);
  EXPECT_EQ(write_data(bytes, 1, 1, file), 1u);
  EXPECT_EQ(write_data(bytes, 0, 5, file), 0u);
  EXPECT_EQ(write_data(bytes, 5, 0, file), 0u);
  fclose(file);
  EXPECT_EQ(ReadFile(directory.Path("x")), "abcdefa");
}

TEST(WriteData, ReturnsWhatFwriteTookOfAStreamThatFails) {
  FILE* const file = fopen("/dev/full", "wb");
  setvbuf(file, nullptr, _IONBF, 0);
  char bytes[] = "abcdef";
  EXPECT_EQ(write_data(bytes, 1, 6, file), 0u);
  fclose(file);
}

// --- GetFile: the calls

class GetFileCalls : public testing::Test {
 protected:
  const TemporaryDirectory mDirectory;
  const KVTFile mTarget = mDirectory.File("target");
  const std::string mTargetPath = mDirectory.Path("target");
  CurlRecorder mCurl;
};

TEST_F(GetFileCalls, SetsThreeOptionsWithoutAProxy) {
  const NotedFopen noted(mCurl);
  mCurl.responseCode = 200;
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, kNoProxy), 0);
  EXPECT_THAT(mCurl.Calls(),
              ElementsAre("init", "fopen " + mTargetPath + " wb",
                          "CURLOPT_URL http://host/b\xC3\xBC.txt?x=1",
                          "CURLOPT_WRITEFUNCTION write_data",
                          "CURLOPT_WRITEDATA the file", "perform",
                          "CURLINFO_RESPONSE_CODE", "cleanup"));
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(GetFileCalls, SetsTheProxyFirst) {
  const NotedFopen noted(mCurl);
  mCurl.responseCode = 200;
  const proxy settings = {1, "http://10.0.0.1:8888", "user:secret"};
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, settings), 0);
  EXPECT_THAT(mCurl.Calls(),
              ElementsAre("init", "fopen " + mTargetPath + " wb",
                          "CURLOPT_PROXY http://10.0.0.1:8888",
                          "CURLOPT_PROXYUSERPWD user:secret",
                          "CURLOPT_URL http://host/b\xC3\xBC.txt?x=1",
                          "CURLOPT_WRITEFUNCTION write_data",
                          "CURLOPT_WRITEDATA the file", "perform",
                          "CURLINFO_RESPONSE_CODE", "cleanup"));
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(GetFileCalls, TakeAnyNumberButZeroForEnabled) {
  mCurl.responseCode = 200;
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, {-1, "p", nullptr}), 0);
  EXPECT_THAT(mCurl.Options(),
              testing::Contains("CURLOPT_PROXY p").Times(1));
  EXPECT_THAT(mCurl.Options(),
              testing::Contains("CURLOPT_PROXYUSERPWD null").Times(1));
}

// Reading behind either pointer would end the process.
TEST_F(GetFileCalls, LeaveThePointersAloneWhenTheProxyIsOff) {
  const char* const wild = reinterpret_cast<const char*>(1);
  mCurl.responseCode = 200;
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, {0, wild, wild}), 0);
  EXPECT_THAT(mCurl.Options(), testing::SizeIs(3));
}

TEST_F(GetFileCalls, GoOnWhateverSetoptSays) {
  mCurl.setoptResult = CURLE_OUT_OF_MEMORY;
  mCurl.responseCode = 200;
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, {1, "p", "u:p"}), 0);
  EXPECT_THAT(mCurl.Options(), testing::SizeIs(5));
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(GetFileCalls, HaveTheBodyWrittenToTheFile) {
  mCurl.responseCode = 200;
  mCurl.onPerform = [this] {
    EXPECT_EQ(mCurl.Deliver("first "), 6u);
    EXPECT_EQ(mCurl.Deliver("second"), 6u);
  };
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, kNoProxy), 0);
  EXPECT_EQ(ReadFile(mTargetPath), "first second");
}

TEST_F(GetFileCalls, FailWithoutAHandle) {
  mCurl.initFails = true;
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, kNoProxy), 1);
  EXPECT_THAT(mCurl.Calls(), ElementsAre("init"));
  EXPECT_FALSE(mTarget.Exists());
}

TEST_F(GetFileCalls, HaveRemovedTheOldFileBeforeTheHandleFails) {
  WriteFile(mTargetPath, "old");
  mCurl.initFails = true;
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, kNoProxy), 1);
  EXPECT_FALSE(mTarget.Exists());
}

TEST_F(GetFileCalls, ReleaseTheHandleWhenTheFileCannotBeOpened) {
  const hooks::Scoped noFile(hooks::onFopen,
                             [](const char*, const char*) -> FILE* {
                               return nullptr;
                             });
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, {1, "p", "u:p"}), 1);
  EXPECT_THAT(mCurl.Calls(), ElementsAre("init", "cleanup"));
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(GetFileCalls, AreNoneWithoutTheParentOfTheTarget) {
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mDirectory.File("missing/target"),
                                 kNoProxy),
            1);
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
  EXPECT_FALSE(mDirectory.File("missing").Exists());
}

TEST_F(GetFileCalls, AreNoneWhenTheOldFileCannotBeDeleted) {
  WriteFile(mTargetPath, "old");
  const hooks::Scoped busy(hooks::onRemove, [](const char*) { return -1; });
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, kNoProxy), 1);
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
  EXPECT_EQ(ReadFile(mTargetPath), "old");
}

TEST_F(GetFileCalls, ReleaseHandleAndFileWhenAnExceptionPasses) {
  mCurl.onPerform = [] { throw std::string("passing"); };
  EXPECT_THROW(KVTFileUtil::GetFile(kUrl, mTarget, kNoProxy), std::string);
  EXPECT_EQ(mCurl.MadeHandles(), 1);
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

// --- GetFile: the destination

struct DestinationCase {
  const char* name;
  const char* url;
  const char* file;  // in the directory
};

void PrintTo(const DestinationCase& c, std::ostream* out) { *out << c.name; }

const DestinationCase kDestinations[] = {
    {"LastComponent", "http://host/dir/file.txt", "file.txt"},
    {"QueryIncluded", "http://host/dir/file.txt?a=1#b", "file.txt?a=1#b"},
    {"QueryWithSlash", "http://host/file?path=a/b", "b"},
    {"HostAlone", "http://host", "host"},
    {"NoSlash", "host", "host"},
    {"NonAscii", "http://\xC3\xBC/\xC3\xA9\xE2\x82\xAC", "\xC3\xA9\xE2\x82\xAC"},
    {"Escapes", "http://host/a%20b", "a%20b"},
};

class DestinationTable : public testing::TestWithParam<DestinationCase> {};

TEST_P(DestinationTable, IsNamedByTheUrlBehindItsLastSlash) {
  const TemporaryDirectory directory;
  CurlRecorder curl;
  curl.responseCode = 200;
  curl.onPerform = [&curl] { curl.Deliver("body"); };
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8(GetParam().url), directory.File(),
                                 kNoProxy),
            0);
  EXPECT_EQ(ReadFile(directory.Path(GetParam().file)), "body");
  EXPECT_THAT(curl.Options(),
              testing::Contains("CURLOPT_URL " + std::string(GetParam().url)));
}

INSTANTIATE_TEST_SUITE_P(, DestinationTable, testing::ValuesIn(kDestinations),
                         [](const auto& test) { return test.param.name; });

TEST_F(GetFileCalls, FailOnADirectoryWhereTheFileShouldGoAndRemoveItIfEmpty) {
  std::filesystem::create_directory(mDirectory.Path("name"));
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8("http://host/name"),
                                 mDirectory.File(), kNoProxy),
            1);
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
  EXPECT_FALSE(mDirectory.File("name").Exists());
}

TEST_F(GetFileCalls, FailOnAFullDirectoryWhereTheFileShouldGoAndLeaveIt) {
  std::filesystem::create_directory(mDirectory.Path("name"));
  WriteFile(mDirectory.Path("name/kept"), "kept");
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8("http://host/name"),
                                 mDirectory.File(), kNoProxy),
            1);
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
  EXPECT_EQ(ReadFile(mDirectory.Path("name/kept")), "kept");
}

// The destination is then the directory itself with a separator behind it:
// Delete takes the directory away if it is empty, and the call ends.
TEST_F(GetFileCalls, FailOnAUrlThatEndsInASlashAndRemoveAnEmptyDirectory) {
  std::filesystem::create_directory(mDirectory.Path("empty"));
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8("http://host/"),
                                 mDirectory.File("empty"), kNoProxy),
            1);
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
  EXPECT_FALSE(mDirectory.File("empty").Exists());
}

// --- GetFile: the decision

struct Outcome {
  const char* name;
  CURLcode performResult;
  long responseCode;
  bool closes;
  int result;
};

void PrintTo(const Outcome& c, std::ostream* out) { *out << c.name; }

const Outcome kOutcomes[] = {
    {"Http", CURLE_OK, 200, true, 0},
    {"HttpThatDoesNotClose", CURLE_OK, 200, false, 1},
    {"HttpCutOff", CURLE_PARTIAL_FILE, 200, true, 1},
    {"HttpCutOffThatDoesNotClose", CURLE_PARTIAL_FILE, 200, false, 1},
    {"Ftp", CURLE_OK, 226, true, 0},
    {"FtpThatDoesNotCloseCountsAllTheSame", CURLE_OK, 226, false, 0},
    {"FtpCutOff", CURLE_PARTIAL_FILE, 226, true, 1},
    {"NoServer", CURLE_COULDNT_CONNECT, 0, true, 1},
    {"NoCode", CURLE_OK, 0, true, 1},
};

class OutcomeTable : public testing::TestWithParam<Outcome> {};

TEST_P(OutcomeTable, IsDecided) {
  const TemporaryDirectory directory;
  CurlRecorder curl;
  curl.performResult = GetParam().performResult;
  curl.responseCode = GetParam().responseCode;
  curl.onPerform = [&curl] { curl.Deliver("body"); };
  const hooks::Scoped closing(
      hooks::onFopen, [](const char* path, const char* mode) {
        return hooks::RealFopen(GetParam().closes ? path : "/dev/full", mode);
      });
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, directory.File("x"), kNoProxy),
            GetParam().result);
  EXPECT_EQ(curl.MadeHandles(), 1);
  EXPECT_EQ(curl.LiveHandles(), 0);
  // Failed or not, what arrived stays.
  if (GetParam().closes) {
    EXPECT_EQ(ReadFile(directory.Path("x")), "body");
  }
}

INSTANTIATE_TEST_SUITE_P(, OutcomeTable, testing::ValuesIn(kOutcomes),
                         [](const auto& test) { return test.param.name; });

TEST_F(GetFileCalls, SucceedWithTwoResponseCodesOnly) {
  for (long code = 0; code < 1000; ++code) {
    mCurl.responseCode = code;
    EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, kNoProxy),
              code == 200 || code == 226 ? 0 : 1)
        << code;
  }
  EXPECT_EQ(mCurl.MadeHandles(), 1000);
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(GetFileCalls, StartFromTheCodeZero) {
  mCurl.responseCode.reset();
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, kNoProxy), 1);
}

// --- IsURLValid

class IsURLValidCalls : public testing::Test {
 protected:
  const TemporaryDirectory mDirectory;
  const WorkingDirectory mWorking{mDirectory.Path()};
  CurlRecorder mCurl;
  // Instead of the file in /tmp, which other programs may use just now.
  const hooks::Scoped<decltype(hooks::onFopen)> mFopen{
      hooks::onFopen, [this](const char* path, const char* mode) {
        mCurl.Note(std::string("fopen ") + path + " " + mode);
        FILE* const file =
            mOpens ? hooks::RealFopen(mDirectory.Path("body").c_str(), mode)
                   : nullptr;
        mCurl.NamePointer(file, "the file");
        return file;
      }};
  bool mOpens = true;
};

TEST_F(IsURLValidCalls, SetThreeOptionsAndNoProxy) {
  mCurl.responseCode = 200;
  EXPECT_TRUE(KVTFileUtil::IsURLValid(kUrl));
  EXPECT_THAT(mCurl.Calls(),
              ElementsAre("init", "fopen /tmp/curlFile w",
                          "CURLOPT_WRITEDATA the file",
                          "CURLOPT_URL http://host/b\xC3\xBC.txt?x=1",
                          "CURLOPT_NOBODY 1", "perform",
                          "CURLINFO_RESPONSE_CODE", "cleanup"));
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
    EXPECT_EQ(KVTFileUtil::IsURLValid(kUrl),
              code == 200 || code == 226 || code == 257 || code == 301 ||
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
  EXPECT_EQ(mCurl.LiveHandles(), 0);
  EXPECT_EQ(ReadFile("curlFile"), "kept");
}

}  // namespace
