#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "sized_bytes.h"
#include "smb1_server.h"

namespace {

constexpr const char* kNoUrlLine = "Curl return code  3 , curl response code 0";

// Every byte arrives, whatever the size

constexpr std::size_t kSizes[] = {
    0,
    1,
    // libcurl moves 32 kB with one request.
    32767,
    32768,
    32769,
    65535,
    65536,
    65537,
    64 << 20,
};

class Smb1Size
    : public Smb1Server,
      public testing::WithParamInterface<std::tuple<std::size_t, const char*>> {
 protected:
  static std::size_t Size() { return std::get<0>(GetParam()); }
  static std::string Host() { return std::get<1>(GetParam()); }
};

TEST_P(Smb1Size, UploadPutsTheSameBytesOnTheShare) {
  const std::string bytes = Bytes(Size());
  WriteFile(Local("a"), bytes);
  EXPECT_EQ(Upload(Local("a"), "//" + Host() + "/docs/uploaded"), 0);
  EXPECT_EQ(mError, kDoneLine);
  EXPECT_TRUE(ReadFile(Server().Docs("uploaded")) == bytes);
}

TEST_P(Smb1Size, DownloadPutsTheSameBytesOnDisk) {
  const std::string bytes = Bytes(Size());
  WriteFile(Server().Docs("download"), bytes);
  EXPECT_EQ(Download("//" + Host() + "/docs/download", Local("a")), 0);
  EXPECT_EQ(mError, kDoneLine);
  EXPECT_TRUE(ReadFile(Local("a")) == bytes);
}

INSTANTIATE_TEST_SUITE_P(
    , Smb1Size,
    testing::Combine(testing::ValuesIn(kSizes),
                     testing::Values("127.0.0.1", "[::1]")),
    [](const auto& test) {
      const bool isIpv4 = std::string(std::get<1>(test.param)) == "127.0.0.1";
      return std::to_string(std::get<0>(test.param)) +
             (isIpv4 ? "BytesIpv4" : "BytesIpv6");
    });

class Smb1Transfer : public Smb1Server {};

TEST_F(Smb1Transfer, UploadReplacesALongerFile) {
  WriteFile(Server().Docs("replaced"), Bytes(100000));
  WriteFile(Local("a"), "short");
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/docs/replaced"), 0);
  EXPECT_EQ(ReadFile(Server().Docs("replaced")), "short");
}

TEST_F(Smb1Transfer, DownloadReplacesALongerFile) {
  WriteFile(Server().Docs("short"), "short");
  WriteFile(Local("a"), Bytes(100000));
  EXPECT_EQ(Download("//127.0.0.1/docs/short", Local("a")), 0);
  EXPECT_EQ(ReadFile(Local("a")), "short");
}

TEST_F(Smb1Transfer, ReachesFilesInFoldersOfTheShare) {
  std::filesystem::create_directories(Server().Docs("one/two"));
  WriteFile(Local("a"), "deep");
  EXPECT_EQ(Upload(Local("a"), "\\\\127.0.0.1\\docs\\one\\two\\b"), 0);
  EXPECT_EQ(ReadFile(Server().Docs("one/two/b")), "deep");
  EXPECT_EQ(Download("\\\\127.0.0.1\\docs\\one\\two\\b", Local("c/d")), 0);
  EXPECT_EQ(ReadFile(Local("c/d")), "deep");
}

// libcurl takes no URL with a blank.
TEST_F(Smb1Transfer, ReachesNoFileWithABlankInItsName) {
  WriteFile(Server().Docs("a name"), "blank");
  EXPECT_EQ(Download("//127.0.0.1/docs/a name", Local("a")), 1);
  EXPECT_EQ(mError, kNoUrlLine);
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/docs/b name"), 1);
  EXPECT_EQ(mError, kNoUrlLine);
  EXPECT_FALSE(std::filesystem::exists(Server().Docs("b name")));
}

TEST_F(Smb1Transfer, TakesANumberSignForTheEndOfTheName) {
  WriteFile(Local("a"), "cut");
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/docs/cutname#b"), 0);
  EXPECT_EQ(ReadFile(Server().Docs("cutname")), "cut");
  EXPECT_FALSE(std::filesystem::exists(Server().Docs("cutname#b")));
}

TEST_F(Smb1Transfer, BringsBackWhatItSentUnderANameBeyondAscii) {
  WriteFile(Local("a"), "beyond ASCII");
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/docs/caf\xC3\xA9"), 0);
  EXPECT_EQ(Download("//127.0.0.1/docs/caf\xC3\xA9", Local("caf\xC3\xA9")), 0);
  EXPECT_EQ(ReadFile(Local("caf\xC3\xA9")), "beyond ASCII");
}

TEST_F(Smb1Transfer, DeletionLeavesTheFile) {
  WriteFile(Server().Docs("kept"), "kept");
  KVTShareFile share;
  EXPECT_EQ(share.DeleteFileOnWindowSMB1("//127.0.0.1/docs/kept", &mAuth), 0);
  EXPECT_EQ(ReadFile(Server().Docs("kept")), "kept");
}

TEST_F(Smb1Transfer, GoesOnInSeveralThreadsAtOnce) {
  constexpr int kThreads = 4;
  std::vector<int> results(kThreads * 2, -1);
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    const std::string name = "thread" + std::to_string(i);
    WriteFile(Local(name), Bytes(1000000 + i));
    threads.emplace_back([this, i, name, &results] {
      KVTShareFile share;
      KVTAuthentication auth(mAuth);
      KVTString error;
      const KVTString remote = FromUtf8("//127.0.0.1/docs/" + name);
      results[i] = share.SendFileOnWindowSMB1(mDirectory.Text(name), nullptr,
                                              true, remote, &auth, error);
      results[kThreads + i] = share.SendFileOnWindowSMB1(
          remote, &auth, true, mDirectory.Text(name + "back"), nullptr, error);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(results, std::vector<int>(kThreads * 2, 0));
  for (int i = 0; i < kThreads; ++i) {
    const std::string name = "thread" + std::to_string(i);
    EXPECT_TRUE(ReadFile(Server().Docs(name)) == Bytes(1000000 + i)) << i;
    EXPECT_TRUE(ReadFile(Local(name + "back")) == Bytes(1000000 + i)) << i;
  }
}

// Every spelling of the location

struct SpellingCase {
  const char* name;
  const char* path;
  const char* line;  // of an upload
  int result;
};

void PrintTo(const SpellingCase& c, std::ostream* out) { *out << c.name; }

const SpellingCase kUploadSpellings[] = {
    {"Slashes", "//127.0.0.1/docs/spelled", kDoneLine, 0},
    {"Backslashes", "\\\\127.0.0.1\\docs\\spelled", kDoneLine, 0},
    {"MixedSeparators", "\\\\127.0.0.1/docs\\spelled", kDoneLine, 0},
    {"SchemeAndSlashes", "smb://127.0.0.1/docs/spelled", kDoneLine, 0},
    {"SchemeAndBackslashes", "smb:\\\\127.0.0.1\\docs\\spelled", kDoneLine, 0},
    {"SchemeAndOneSlash", "smb:/127.0.0.1/docs/spelled", kDoneLine, 0},
    {"Name", "//localhost/docs/spelled", kDoneLine, 0},
    {"Ipv6InBrackets", "//[::1]/docs/spelled", kDoneLine, 0},
    {"Ipv6InBracketsBackslashes", "\\\\[::1]\\docs\\spelled", kDoneLine, 0},
    {"ThreeSlashes", "///127.0.0.1/docs/spelled", kDoneLine, 0},
    // libcurl takes these for no URL.
    {"SchemeOnly", "smb:127.0.0.1/docs/spelled", kNoUrlLine, 1},
    {"Ipv6WithoutBrackets", "//::1/docs/spelled", kNoUrlLine, 1},
    {"NoFile", "//127.0.0.1/docs", kNoUrlLine, 1},
    {"NoShare", "//127.0.0.1", kNoUrlLine, 1},
    // "cifs" counts as the host.
    {"OtherScheme", "cifs://127.0.0.1/docs/spelled",
     "Curl return code  6 , curl response code 0", 1},
};

class Smb1UploadSpelling : public Smb1Server,
                           public testing::WithParamInterface<SpellingCase> {};

TEST_P(Smb1UploadSpelling, ReachesTheShareOrFailsInLibcurl) {
  std::filesystem::remove(Server().Docs("spelled"));
  WriteFile(Local("a"), "spelled");
  EXPECT_EQ(Upload(Local("a"), GetParam().path), GetParam().result);
  EXPECT_EQ(mError, GetParam().line);
  EXPECT_EQ(std::filesystem::exists(Server().Docs("spelled")),
            GetParam().result == 0);
}

INSTANTIATE_TEST_SUITE_P(, Smb1UploadSpelling,
                         testing::ValuesIn(kUploadSpellings),
                         [](const auto& test) { return test.param.name; });

const SpellingCase kDownloadSpellings[] = {
    {"Slashes", "//127.0.0.1/docs/spelling", kDoneLine, 0},
    {"Backslashes", "\\\\127.0.0.1\\docs\\spelling", kDoneLine, 0},
    {"SchemeAndSlashes", "smb://127.0.0.1/docs/spelling", kDoneLine, 0},
    {"SchemeOnly", "smb:127.0.0.1/docs/spelling", kDoneLine, 0},
    {"Name", "//localhost/docs/spelling", kDoneLine, 0},
    {"Ipv6InBrackets", "//[::1]/docs/spelling", kDoneLine, 0},
    {"Ipv6WithoutBrackets", "//::1/docs/spelling", kDoneLine, 0},
    {"DoubledSlashInside", "//127.0.0.1/docs//spelling", kDoneLine, 0},
    // smb:////
    {"ThreeSlashes", "///127.0.0.1/docs/spelling", kNoUrlLine, 1},
    {"OtherScheme", "cifs://127.0.0.1/docs/spelling", kNoUrlLine, 1},
    // smb://127.0.0.1/docs/ is the folder of the share, which cannot be read.
    {"NoFile", "//127.0.0.1/docs",
     "Curl return code  56 , curl response code 0", 1},
    // smb://127.0.0.1// has a share without a name.
    {"NoShare", "//127.0.0.1", "Curl return code  78 , curl response code 0",
     1},
};

class Smb1DownloadSpelling : public Smb1Server,
                             public testing::WithParamInterface<SpellingCase> {
};

TEST_P(Smb1DownloadSpelling, ReachesTheShareOrFailsInLibcurl) {
  WriteFile(Server().Docs("spelling"), "spelling");
  EXPECT_EQ(Download(GetParam().path, Local("a")), GetParam().result);
  EXPECT_EQ(mError, GetParam().line);
  EXPECT_EQ(ReadFile(Local("a")), GetParam().result == 0 ? "spelling" : "");
}

INSTANTIATE_TEST_SUITE_P(, Smb1DownloadSpelling,
                         testing::ValuesIn(kDownloadSpellings),
                         [](const auto& test) { return test.param.name; });

}  // namespace
