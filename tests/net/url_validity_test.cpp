// IsURLValid against nginx, vsftpd and servers that say what those do not.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "KVTFileUtil.h"
#include "captured_descriptor.h"
#include "curl_hooks.h"
#include "namespaces.h"
#include "scripted_ftp.h"
#include "scripted_server.h"
#include "servers.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

bool IsValid(const std::string& url) {
  return KVTFileUtil::IsURLValid(FromUtf8(url));
}

// Each test has an empty /tmp and an empty working directory of its own.
class URLValidity : public testing::Test {
 protected:
  void SetUp() override {
    WriteFile(TheServers().Files().Path("hello.txt"), "hello");
    std::filesystem::create_directories(TheServers().Files().Path("folder"));
  }

  const TemporaryDirectory mDirectory;
  const WorkingDirectory mWorking{mDirectory.Path()};
  const ScopedCover mTmp{"/tmp"};
};

// --- HTTP

struct HttpCase {
  const char* path;
  bool valid;
};

TEST_F(URLValidity, OfHttpAnswers) {
  const HttpCase cases[] = {
      {"hello.txt", true},    {"answers/204", false}, {"answers/206", false},
      {"answers/226", true},  {"answers/301", true},  {"answers/302", false},
      {"answers/307", false}, {"answers/404", false}, {"answers/500", false},
      {"missing", false},
  };
  for (const HttpCase& c : cases) {
    EXPECT_EQ(IsValid(Servers::Http(c.path)), c.valid) << c.path;
    EXPECT_EQ(IsValid(Servers::Https(c.path)), c.valid) << c.path;
  }
}

TEST_F(URLValidity, IsAskedWithAHeadRequest) {
  EXPECT_TRUE(IsValid(Servers::Http("head")));
}

TEST_F(URLValidity, IsDeniedForAnUntrustedCertificate) {
  EXPECT_FALSE(IsValid(Servers::UntrustedHttps("hello.txt")));
}

TEST_F(URLValidity, IsDeniedWhenNoServerAnswers) {
  EXPECT_FALSE(
      IsValid("http://127.0.0.1:" + std::to_string(Servers::kDeadPort) + "/"));
}

TEST_F(URLValidity, IsDeniedForTextThatIsNoUrl) {
  EXPECT_FALSE(IsValid(""));
  EXPECT_FALSE(IsValid("nosuchprotocol://127.0.0.1/"));
}

TEST_F(URLValidity, IsDeniedWhenTheAnswerIsCutOff) {
  const ScriptedServer server([](ScriptedConnection& connection) {
    connection.ReadHead();
    connection.Write("HTTP/1.1 200");
  });
  EXPECT_FALSE(
      IsValid("http://127.0.0.1:" + std::to_string(server.Port()) + "/"));
}

// --- FTP: libcurl asks for the folder, the size and the place to start from,
// and the last reply to that is the response code.

TEST_F(URLValidity, OfAFileOnAnFtpServerComesFromReply350) {
  EXPECT_TRUE(IsValid(Servers::Ftp("hello.txt")));
}

TEST_F(URLValidity, OfTheFirstFolderOfAnFtpServerComesFromReply257) {
  EXPECT_TRUE(IsValid(Servers::Ftp("")));
}

TEST_F(URLValidity, IsDeniedToAFolderOfAnFtpServerForItsReply250) {
  EXPECT_FALSE(IsValid(Servers::Ftp("folder/")));
}

TEST_F(URLValidity, IsDeniedToAMissingFolderOfAnFtpServer) {
  EXPECT_FALSE(IsValid(Servers::Ftp("missing/")));
}

TEST_F(URLValidity, IsDeniedToAnUnreachableFtpServer) {
  EXPECT_FALSE(
      IsValid("ftp://127.0.0.1:" + std::to_string(Servers::kDeadPort) + "/"));
}

TEST_F(URLValidity, FollowsTheLastReplyOfAnFtpServer) {
  const std::pair<const char*, bool> replies[] = {
      {"226 done", true},    {"350 go on", true}, {"200 fine", true},
      {"257 made", true},    {"225 open", false}, {"227 passive", false},
      {"250 done", false},   {"351 hm", false},   {"502 no", false},
      {"550 missing", false}};
  for (const auto& [reply, valid] : replies) {
    const ScriptedFtp server(ScriptedFtp::Replies{{"REST", reply}});
    EXPECT_EQ(IsValid(server.Url("x")), valid) << reply;
  }
}

TEST_F(URLValidity, FollowsTheReplyToTheFolderWhenNoFileIsNamed) {
  const ScriptedFtp server(ScriptedFtp::Replies{});
  EXPECT_TRUE(IsValid(server.Url("")));          // 257, to PWD
  EXPECT_FALSE(IsValid(server.Url("folder/")));  // 250, to CWD
}

// --- What it leaves

TEST_F(URLValidity, LeavesAnEmptiedFileInTmp) {
  WriteFile("/tmp/curlFile", "left by an earlier call");
  EXPECT_TRUE(IsValid(Servers::Http("hello.txt")));
  EXPECT_EQ(ReadFile("/tmp/curlFile"), "");
}

TEST_F(URLValidity, LeavesTheFileInTmpWhenNoServerAnswers) {
  EXPECT_FALSE(
      IsValid("http://127.0.0.1:" + std::to_string(Servers::kDeadPort) + "/"));
  EXPECT_EQ(ReadFile("/tmp/curlFile"), "");
}

// For a file on an FTP server libcurl writes headers of its own making, as
// body.
TEST_F(URLValidity, LeavesWhatLibcurlWritesInTheFileInTmp) {
  CapturedDescriptor output(STDOUT_FILENO);
  EXPECT_TRUE(IsValid(Servers::Ftp("hello.txt")));
  EXPECT_EQ(ReadFile("/tmp/curlFile"),
            "Content-Length: 5\r\nAccept-ranges: bytes\r\n");
  EXPECT_EQ(output.Text(), "");
}

TEST_F(URLValidity, RemovesCurlFileFromTheWorkingDirectory) {
  WriteFile("curlFile", "somebody's");
  EXPECT_TRUE(IsValid(Servers::Http("hello.txt")));
  EXPECT_FALSE(mDirectory.File("curlFile").Exists());
  EXPECT_EQ(ReadFile("/tmp/curlFile"), "");
}

// With /tmp as the working directory the two names are one.
TEST_F(URLValidity, LeavesNothingWhenTheWorkingDirectoryIsTmp) {
  const WorkingDirectory tmp("/tmp");
  EXPECT_TRUE(IsValid(Servers::Http("hello.txt")));
  EXPECT_FALSE(KVTFile(FromUtf8("/tmp/curlFile")).Exists());
}

TEST_F(URLValidity, MayBeAskedOnSeveralThreadsAtOnce) {
  constexpr int kThreads = 4;
  int rightAnswers[kThreads] = {};
  std::vector<std::thread> threads;
  for (int& right : rightAnswers) {
    threads.emplace_back([&right] {
      for (int i = 0; i < 10; ++i) {
        if (IsValid(Servers::Http("hello.txt"))) ++right;
        if (!IsValid(Servers::Http("missing"))) ++right;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(rightAnswers, testing::Each(20));
  EXPECT_EQ(ReadFile("/tmp/curlFile"), "");
}

TEST_F(URLValidity, ReleasesItsHandleHoweverItEnds) {
  CurlRecorder curl(CurlRecorder::Mode::kForwarding);
  EXPECT_TRUE(IsValid(Servers::Http("hello.txt")));
  EXPECT_FALSE(IsValid(Servers::Http("missing")));
  EXPECT_FALSE(IsValid(""));
  EXPECT_EQ(curl.MadeHandles(), 3);
  EXPECT_EQ(curl.LiveHandles(), 0);
}

// --- Where /tmp cannot be written

class URLValidityWithoutTmp : public URLValidity {
 protected:
  const ScopedCover mReadOnly{"/tmp", ScopedCover::kReadOnly};
};

TEST_F(URLValidityWithoutTmp, IsAskedAllTheSame) {
  EXPECT_TRUE(IsValid(Servers::Http("hello.txt")));
  EXPECT_TRUE(IsValid(Servers::Http("head")));
  EXPECT_FALSE(IsValid(Servers::Http("answers/302")));
  EXPECT_FALSE(KVTFile(FromUtf8("/tmp/curlFile")).Exists());
}

TEST_F(URLValidityWithoutTmp, KeepsCurlFileInTheWorkingDirectory) {
  WriteFile("curlFile", "kept");
  EXPECT_TRUE(IsValid(Servers::Http("hello.txt")));
  EXPECT_EQ(ReadFile("curlFile"), "kept");
}

TEST_F(URLValidityWithoutTmp, SendsWhatLibcurlWritesToStandardOutput) {
  std::string printed;
  {
    CapturedDescriptor output(STDOUT_FILENO);
    EXPECT_TRUE(IsValid(Servers::Ftp("hello.txt")));
    printed = output.Text();
  }
  EXPECT_EQ(printed, "Content-Length: 5\r\nAccept-ranges: bytes\r\n");
}

}  // namespace
