// What GetFile asks of libcurl, with libcurl's calls scripted, and the callback
// that it hands over.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <type_traits>

#include "KVTFileUtil.h"
#include "curl_hooks.h"
#include "hooks.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr proxy kNoProxy = {0, nullptr, nullptr};
const KVTString kUrl = FromUtf8("http://host/b\xC3\xBC.txt?x=1");

// Has each file that is opened for writing shown as "the file" and noted with
// its path and mode, as one of the calls, and so its closing.
class NotedFile {
 public:
  explicit NotedFile(CurlRecorder& curl)
      : mFopen(hooks::onFopen,
               [this, &curl](const char* path, const char* mode) {
                 curl.Note(std::string("fopen ") + path + " " + mode);
                 mFile = hooks::RealFopen(path, mode);
                 curl.NamePointer(mFile, "the file");
                 return mFile;
               }),
        mFclose(hooks::onFclose, [this, &curl](FILE* file) {
          if (file == mFile) curl.Note("fclose the file");
          return hooks::RealFclose(file);
        }) {}

 private:
  FILE* mFile = nullptr;
  hooks::Scoped<decltype(hooks::onFopen)> mFopen;
  hooks::Scoped<decltype(hooks::onFclose)> mFclose;
};

// --- proxy and write_data

// Callers fill the record field by field, from C as well.
static_assert(std::is_trivial<proxy>::value, "nothing to construct");
static_assert(offsetof(proxy, enabled) == 0 && sizeof(proxy::enabled) == 4 &&
                  offsetof(proxy, address) == 8 &&
                  offsetof(proxy, credentials) == 16 && sizeof(proxy) == 24,
              "the fields stand in this order");

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

// --- The calls

class GetFileCalls : public testing::Test {
 protected:
  const TemporaryDirectory mDirectory;
  const KVTFile mTarget = mDirectory.File("target");
  const std::string mTargetPath = mDirectory.Path("target");
  CurlRecorder mCurl;
};

TEST_F(GetFileCalls, SetsThreeOptionsWithoutAProxy) {
  const NotedFile noted(mCurl);
  mCurl.responseCode = 200;
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, kNoProxy), 0);
  EXPECT_THAT(
      mCurl.Calls(),
      ElementsAre("init", "fopen " + mTargetPath + " wb",
                  "CURLOPT_URL http://host/b\xC3\xBC.txt?x=1",
                  "CURLOPT_WRITEFUNCTION write_data",
                  "CURLOPT_WRITEDATA the file", "perform",
                  "CURLINFO_RESPONSE_CODE", "cleanup", "fclose the file"));
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(GetFileCalls, SetsTheProxyFirst) {
  const NotedFile noted(mCurl);
  mCurl.responseCode = 200;
  const proxy settings = {1, "http://10.0.0.1:8888", "user:secret"};
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, settings), 0);
  EXPECT_THAT(
      mCurl.Calls(),
      ElementsAre("init", "fopen " + mTargetPath + " wb",
                  "CURLOPT_PROXY http://10.0.0.1:8888",
                  "CURLOPT_PROXYUSERPWD user:secret",
                  "CURLOPT_URL http://host/b\xC3\xBC.txt?x=1",
                  "CURLOPT_WRITEFUNCTION write_data",
                  "CURLOPT_WRITEDATA the file", "perform",
                  "CURLINFO_RESPONSE_CODE", "cleanup", "fclose the file"));
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(GetFileCalls, TakeAnyNumberButZeroForEnabled) {
  mCurl.responseCode = 200;
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, {-1, "p", nullptr}), 0);
  EXPECT_THAT(mCurl.Options(), testing::Contains("CURLOPT_PROXY p").Times(1));
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
  const hooks::Scoped noFile(
      hooks::onFopen,
      [](const char*, const char*) -> FILE* { return nullptr; });
  EXPECT_EQ(KVTFileUtil::GetFile(kUrl, mTarget, {1, "p", "u:p"}), 1);
  EXPECT_THAT(mCurl.Calls(), ElementsAre("init", "cleanup"));
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(GetFileCalls, AreNoneWithoutTheParentOfTheTarget) {
  EXPECT_EQ(
      KVTFileUtil::GetFile(kUrl, mDirectory.File("missing/target"), kNoProxy),
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
  const NotedFile noted(mCurl);
  mCurl.onPerform = [] { throw std::string("passing"); };
  EXPECT_THROW(KVTFileUtil::GetFile(kUrl, mTarget, kNoProxy), std::string);
  EXPECT_THAT(mCurl.Calls(), testing::Contains("fclose the file"));
  EXPECT_EQ(mCurl.MadeHandles(), 1);
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

// --- The decision

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

}  // namespace
