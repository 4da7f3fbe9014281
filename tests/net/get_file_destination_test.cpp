// Where GetFile puts the file, with libcurl's calls scripted.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "KVTFileUtil.h"
#include "curl_hooks.h"
#include "sockets_and_devices.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr proxy kNoProxy = {0, nullptr, nullptr};

class GetFileDestination : public testing::Test {
 protected:
  int Get(const std::string& target,
          const std::string& url = "http://host/name") {
    return KVTFileUtil::GetFile(FromUtf8(url), KVTFile(FromUtf8(target)),
                                kNoProxy);
  }

  void WillDeliver(const std::string& body) {
    mCurl.responseCode = 200;
    mCurl.onPerform = [this, body] { mCurl.Deliver(body); };
  }

  const TemporaryDirectory mDirectory;
  CurlRecorder mCurl;
};

// --- Directories as targets

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
    {"NonAscii", "http://\xC3\xBC/\xC3\xA9\xE2\x82\xAC",
     "\xC3\xA9\xE2\x82\xAC"},
    {"Escapes", "http://host/a%20b", "a%20b"},
};

class DestinationTable : public GetFileDestination,
                         public testing::WithParamInterface<DestinationCase> {};

TEST_P(DestinationTable, IsNamedByTheUrlBehindItsLastSlash) {
  WillDeliver("body");
  EXPECT_EQ(Get(mDirectory.Path(), GetParam().url), 0);
  EXPECT_EQ(ReadFile(mDirectory.Path(GetParam().file)), "body");
  EXPECT_THAT(mCurl.Options(),
              Contains("CURLOPT_URL " + std::string(GetParam().url)));
}

INSTANTIATE_TEST_SUITE_P(, DestinationTable, testing::ValuesIn(kDestinations),
                         [](const auto& test) { return test.param.name; });

// --- Directories where the file should go

TEST_F(GetFileDestination, IsRemovedWhenItIsAnEmptyDirectoryButTheCallFails) {
  std::filesystem::create_directory(mDirectory.Path("name"));
  EXPECT_EQ(Get(mDirectory.Path()), 1);
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
  EXPECT_FALSE(mDirectory.File("name").Exists());
}

TEST_F(GetFileDestination, StaysWhenItIsADirectoryWithSomethingInIt) {
  std::filesystem::create_directory(mDirectory.Path("name"));
  WriteFile(mDirectory.Path("name/kept"), "kept");
  EXPECT_EQ(Get(mDirectory.Path()), 1);
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
  EXPECT_EQ(ReadFile(mDirectory.Path("name/kept")), "kept");
}

// The destination is then the directory itself with a separator behind it.
TEST_F(GetFileDestination, IsTheDirectoryForAUrlThatEndsInASlash) {
  std::filesystem::create_directory(mDirectory.Path("empty"));
  EXPECT_EQ(Get(mDirectory.Path("empty"), "http://host/"), 1);
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
  EXPECT_FALSE(mDirectory.File("empty").Exists());
}

// Nothing deletes a directory that remove(3) refuses, so the call ends there.
TEST_F(GetFileDestination, IsADirectoryThatStaysForAUrlThatEndsInASlash) {
  WriteFile(mDirectory.Path("kept"), "kept");
  EXPECT_EQ(Get(mDirectory.Path(), "http://host/"), 1);
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
  EXPECT_EQ(ReadFile(mDirectory.Path("kept")), "kept");
}

// --- Targets at the edges

TEST_F(GetFileDestination, MayEndInASlash) {
  WillDeliver("body");
  EXPECT_EQ(Get(mDirectory.Path() + "/"), 0);
  EXPECT_EQ(ReadFile(mDirectory.Path("name")), "body");
}

// KVTFile::ParentExists looks at what is in front of the name, which is there;
// fopen(3) makes no file under such a path.
TEST_F(GetFileDestination, MayNotEndInASlashWhereNothingIs) {
  EXPECT_EQ(Get(mDirectory.Path("missing/")), 1);
  EXPECT_THAT(mCurl.Calls(), ElementsAre("init", "cleanup"));
  EXPECT_FALSE(mDirectory.File("missing").Exists());
}

// The test for a directory drops the backslash; the path of the file keeps it,
// and names a folder that is not there.
TEST_F(GetFileDestination, MayNotEndInABackslashThoughItCountsAsADirectory) {
  EXPECT_EQ(Get(mDirectory.Path() + "\\"), 1);
  EXPECT_THAT(mCurl.Calls(), ElementsAre("init", "cleanup"));
}

// A socket is a directory for KVTFileUtil::IsDirectory, and stays.
TEST_F(GetFileDestination, MayNotBeASocketThoughItCountsAsADirectory) {
  MakeSocket(mDirectory.Path("socket"));
  EXPECT_EQ(Get(mDirectory.Path("socket")), 1);
  EXPECT_THAT(mCurl.Calls(), ElementsAre("init", "cleanup"));
  EXPECT_TRUE(mDirectory.File("socket").Exists());
}

// KVTFile::ParentExists looks at a bare name itself.
TEST_F(GetFileDestination, MayNotBeABareNameThatDoesNotExist) {
  const WorkingDirectory working(mDirectory.Path());
  EXPECT_EQ(Get("bare"), 1);
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
}

TEST_F(GetFileDestination, MayBeABareNameThatExists) {
  const WorkingDirectory working(mDirectory.Path());
  WriteFile("bare", "old");
  WillDeliver("body");
  EXPECT_EQ(Get("bare"), 0);
  EXPECT_EQ(ReadFile("bare"), "body");
}

TEST_F(GetFileDestination, MayNotBeAChildOfTheRoot) {
  EXPECT_EQ(Get("/kvtbase-no-such-file"), 1);
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
}

TEST_F(GetFileDestination, MayNotBeEmpty) {
  EXPECT_EQ(Get(""), 1);
  EXPECT_THAT(mCurl.Calls(), IsEmpty());
}

TEST_F(GetFileDestination, TakesThePlaceOfALinkAndNotOfWhatItPointsTo) {
  WriteFile(mDirectory.Path("kept"), "kept");
  std::filesystem::create_symlink("kept", mDirectory.Path("link"));
  WillDeliver("body");
  EXPECT_EQ(Get(mDirectory.Path("link")), 0);
  EXPECT_EQ(ReadFile(mDirectory.Path("link")), "body");
  EXPECT_EQ(ReadFile(mDirectory.Path("kept")), "kept");
}

// A dangling link does not exist, so it is not deleted but followed.
TEST_F(GetFileDestination, GoesThroughADanglingLink) {
  std::filesystem::create_symlink("made", mDirectory.Path("link"));
  WillDeliver("body");
  EXPECT_EQ(Get(mDirectory.Path("link")), 0);
  EXPECT_EQ(ReadFile(mDirectory.Path("made")), "body");
}

}  // namespace
