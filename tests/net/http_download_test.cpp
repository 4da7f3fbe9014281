// GetFile against nginx, over HTTP and HTTPS, and against servers that break
// off.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KVTFileUtil.h"
#include "curl_hooks.h"
#include "download.h"
#include "scripted_server.h"
#include "servers.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

using HttpDownload = Download;

// --- Answers that count as failures

struct AnswerCase {
  const char* name;
  const char* path;
  bool isPage;       // one of nginx's own
  const char* left;  // what is then on disk, or part of the page
};

void PrintTo(const AnswerCase& c, std::ostream* out) { *out << c.name; }

const AnswerCase kFailures[] = {
    {"PartialContent", "answers/206", false, "part"},
    {"NoContent", "answers/204", false, ""},
    {"MovedPermanently", "answers/301", true, "301 Moved Permanently"},
    {"Found", "answers/302", true, "302 Found"},
    {"TemporaryRedirect", "answers/307", true, "307 Temporary Redirect"},
    {"NotFound", "answers/404", false, "nothing here"},
    {"Missing", "no-such-file", true, "404 Not Found"},
    {"ServerError", "answers/500", false, "out of order"},
};

class FailureTable : public HttpDownload,
                     public testing::WithParamInterface<AnswerCase> {};

TEST_P(FailureTable, LeavesTheBodyOfTheAnswerInPlaceOfTheOldFile) {
  WriteFile(TheServers().Files().Path("hello.txt"), "hello");
  for (const std::string& url :
       {Servers::Http(GetParam().path), Servers::Https(GetParam().path)}) {
    SCOPED_TRACE(url);
    WriteFile(mTargetPath, "an old file, longer than some of the answers");
    EXPECT_EQ(Get(url), 1);
    if (GetParam().isPage) {
      EXPECT_THAT(ReadFile(mTargetPath), StartsWith("<html>"));
      EXPECT_THAT(ReadFile(mTargetPath), HasSubstr(GetParam().left));
    } else {
      EXPECT_EQ(ReadFile(mTargetPath), GetParam().left);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(, FailureTable, testing::ValuesIn(kFailures),
                         [](const auto& test) { return test.param.name; });

// The code decides, whatever the protocol that it came by.
TEST_F(HttpDownload, SucceedsWithTheCodeOfAFinishedFtpTransferToo) {
  EXPECT_EQ(Get(Servers::Http("answers/226")), 0);
  EXPECT_EQ(ReadFile(mTargetPath), "used");
}

// --- Connections that fail

TEST_F(HttpDownload, CutInTheMiddleLeavesWhatArrived) {
  const ScriptedServer server([](ScriptedConnection& connection) {
    connection.ReadHead();
    connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf");
  });
  EXPECT_EQ(Get("http://127.0.0.1:" + std::to_string(server.Port()) + "/x"), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "half");
}

// nginx hands on what it gets and then closes, as the server behind it did.
TEST_F(HttpDownload, CutInTheMiddleOverHttpsLeavesWhatArrived) {
  const ScriptedServer server([](ScriptedConnection& connection) {
    connection.ReadHead();
    connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf");
  });
  EXPECT_EQ(Get(Servers::Https("relay?port=" + std::to_string(server.Port()))),
            1);
  EXPECT_EQ(ReadFile(mTargetPath), "half");
}

TEST_F(HttpDownload, CutInsideAChunkLeavesWhatArrived) {
  const ScriptedServer server([](ScriptedConnection& connection) {
    connection.ReadHead();
    connection.Write(
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
        "3\r\none\r\n9\r\ntwo");
  });
  EXPECT_EQ(Get("http://127.0.0.1:" + std::to_string(server.Port()) + "/x"), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "onetwo");
}

TEST_F(HttpDownload, CutBeforeAnyAnswerLeavesAnEmptyFile) {
  const ScriptedServer server(
      [](ScriptedConnection& connection) { connection.ReadHead(); });
  EXPECT_EQ(Get("http://127.0.0.1:" + std::to_string(server.Port()) + "/x"), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "");
}

TEST_F(HttpDownload, SendsAPlainGetWithLibcurlsDefaults) {
  std::string head;
  {
    const ScriptedServer server([&head](ScriptedConnection& connection) {
      head = connection.ReadHead();
      connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
    });
    EXPECT_EQ(
        Get("http://127.0.0.1:" + std::to_string(server.Port()) + "/a%20b?c=d"),
        0);
    EXPECT_EQ(head, "GET /a%20b?c=d HTTP/1.1\nHost: 127.0.0.1:" +
                        std::to_string(server.Port()) + "\nAccept: */*\n");
  }
}

TEST_F(HttpDownload, FromAnUnreachableServerReplacesTheOldFileByAnEmptyOne) {
  WriteFile(mTargetPath, "old");
  EXPECT_EQ(
      Get("http://127.0.0.1:" + std::to_string(Servers::kDeadPort) + "/x"), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "");
}

TEST_F(HttpDownload, OfAnUnknownProtocolLeavesAnEmptyFile) {
  EXPECT_EQ(Get("nosuchprotocol://127.0.0.1/x"), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "");
}

TEST_F(HttpDownload, OfTheEmptyUrlLeavesAnEmptyFile) {
  EXPECT_EQ(Get(""), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "");
}

// --- Certificates

TEST_F(HttpDownload, RefusesAnUntrustedCertificate) {
  WriteFile(TheServers().Files().Path("hello.txt"), "hello");
  EXPECT_EQ(Get(Servers::UntrustedHttps("hello.txt")), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "");
}

// The certificate is for 127.0.0.1.
TEST_F(HttpDownload, RefusesATrustedCertificateOfAnotherHost) {
  WriteFile(TheServers().Files().Path("hello.txt"), "hello");
  std::string url = Servers::Https("hello.txt");
  url.replace(url.find("127.0.0.1"), 9, "localhost");
  EXPECT_EQ(Get(url), 1);
  EXPECT_EQ(ReadFile(mTargetPath), "");
}

// --- Where the file goes

TEST_F(HttpDownload, IntoADirectoryTakesTheNameFromTheUrl) {
  WriteFile(TheServers().Files().Path("hello.txt"), "hello");
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8(Servers::Http("hello.txt")),
                                 mDirectory.File(), kNoProxy),
            0);
  EXPECT_EQ(ReadFile(mDirectory.Path("hello.txt")), "hello");
}

TEST_F(HttpDownload, IntoADirectoryKeepsTheQueryInTheName) {
  WriteFile(TheServers().Files().Path("hello.txt"), "hello");
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8(Servers::Http("hello.txt?a=b")),
                                 mDirectory.File(), kNoProxy),
            0);
  EXPECT_EQ(ReadFile(mDirectory.Path("hello.txt?a=b")), "hello");
}

TEST_F(HttpDownload, IntoADirectoryReplacesAnOldFile) {
  WriteFile(TheServers().Files().Path("hello.txt"), "hello");
  WriteFile(mDirectory.Path("hello.txt"), "a longer old file");
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8(Servers::Http("hello.txt")),
                                 mDirectory.File(), kNoProxy),
            0);
  EXPECT_EQ(ReadFile(mDirectory.Path("hello.txt")), "hello");
}

TEST_F(HttpDownload, IntoADirectoryFailsForAUrlThatEndsInASlash) {
  WriteFile(TheServers().Files().Path("index"), "the index");
  WriteFile(mDirectory.Path("kept"), "kept");
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8(Servers::Http("")), mDirectory.File(),
                                 kNoProxy),
            1);
  EXPECT_EQ(ReadFile(mDirectory.Path("kept")), "kept");
}

TEST_F(HttpDownload, IntoAFileTakesAUrlThatEndsInASlash) {
  WriteFile(TheServers().Files().Path("index"), "the index");
  EXPECT_EQ(Get(Servers::Http("")), 0);
  EXPECT_EQ(ReadFile(mTargetPath), "the index");
}

TEST_F(HttpDownload, IntoAMissingFolderFailsBeforeTheServerIsAsked) {
  bool asked = false;
  {
    const ScriptedServer server(
        [&asked](ScriptedConnection&) { asked = true; });
    EXPECT_EQ(KVTFileUtil::GetFile(
                  FromUtf8("http://127.0.0.1:" + std::to_string(server.Port()) +
                           "/x"),
                  mDirectory.File("missing/x"), kNoProxy),
              1);
  }
  EXPECT_FALSE(asked);
  EXPECT_FALSE(mDirectory.File("missing").Exists());
}

TEST_F(HttpDownload, ReplacesALongerOldFile) {
  WriteFile(TheServers().Files().Path("hello.txt"), "hello");
  WriteFile(mTargetPath, "a longer old file");
  EXPECT_EQ(Get(Servers::Http("hello.txt")), 0);
  EXPECT_EQ(ReadFile(mTargetPath), "hello");
}

TEST_F(HttpDownload, TakesAUrlAndATargetBeyondAscii) {
  WriteFile(TheServers().Files().Path("b\xC3\xBCro"), "hello");
  const KVTFile target = mDirectory.File("\xE2\x82\xAC");
  EXPECT_EQ(KVTFileUtil::GetFile(FromUtf8(Servers::Http("b\xC3\xBCro")), target,
                                 kNoProxy),
            0);
  EXPECT_EQ(ReadFile(mDirectory.Path("\xE2\x82\xAC")), "hello");
}

// --- Handles

TEST_F(HttpDownload, ReleasesItsHandleHoweverItEnds) {
  WriteFile(TheServers().Files().Path("hello.txt"), "hello");
  CurlRecorder curl(CurlRecorder::Mode::kForwarding);
  EXPECT_EQ(Get(Servers::Http("hello.txt")), 0);
  EXPECT_EQ(Get(Servers::Http("answers/404")), 1);
  EXPECT_EQ(Get(Servers::UntrustedHttps("hello.txt")), 1);
  EXPECT_EQ(curl.MadeHandles(), 3);
  EXPECT_EQ(curl.LiveHandles(), 0);
}

}  // namespace
