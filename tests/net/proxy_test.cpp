// GetFile through tinyproxy.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KVTFileUtil.h"
#include "servers.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

using testing::HasSubstr;

class ProxyDownload : public testing::Test {
 protected:
  int Get(const std::string& url, proxy settings) {
    return KVTFileUtil::GetFile(FromUtf8(url), mDirectory.File("target"),
                                settings);
  }
  std::string Arrived() { return ReadFile(mDirectory.Path("target")); }

  const TemporaryDirectory mDirectory;
};

// nginx echoes the header "Via", in which the proxy names itself.
TEST_F(ProxyDownload, GoesThroughAProxyWithoutPassword) {
  EXPECT_EQ(Get(Servers::Http("via"), {1, Servers::Proxy(), nullptr}), 0);
  EXPECT_THAT(Arrived(), HasSubstr("gatekeeper"));
}

TEST_F(ProxyDownload, TakesAnAddressWithoutProtocol) {
  EXPECT_EQ(Get(Servers::Http("via"),
                {1, Servers::Proxy() + std::string("http://").size(), nullptr}),
            0);
  EXPECT_THAT(Arrived(), HasSubstr("gatekeeper"));
}

TEST_F(ProxyDownload, DoesNotMindCredentialsThatNobodyAsksFor) {
  EXPECT_EQ(Get(Servers::Http("via"), {1, Servers::Proxy(), "a:b"}), 0);
  EXPECT_THAT(Arrived(), HasSubstr("gatekeeper"));
}

TEST_F(ProxyDownload, GoesThroughAProxyWithItsPassword) {
  EXPECT_EQ(Get(Servers::Http("via"),
                {1, Servers::ProxyWithPassword(), "keeper:open-sesame"}),
            0);
  EXPECT_THAT(Arrived(), HasSubstr("gatekeeper"));
}

TEST_F(ProxyDownload, FailsWithAWrongPasswordAndLeavesTheProxysPage) {
  EXPECT_EQ(Get(Servers::Http("via"),
                {1, Servers::ProxyWithPassword(), "keeper:wrong"}),
            1);
  EXPECT_THAT(Arrived(), HasSubstr("<html"));
}

TEST_F(ProxyDownload, FailsWithoutThePasswordAndLeavesTheProxysPage) {
  EXPECT_EQ(
      Get(Servers::Http("via"), {1, Servers::ProxyWithPassword(), nullptr}), 1);
  EXPECT_THAT(Arrived(), HasSubstr("<html"));
}

TEST_F(ProxyDownload, GoesStraightWhenTheProxyIsOff) {
  EXPECT_EQ(Get(Servers::Http("via"), {0, Servers::Proxy(), nullptr}), 0);
  EXPECT_EQ(Arrived(), "");
}

TEST_F(ProxyDownload, TunnelsHttps) {
  WriteFile(TheServers().Files().Path("hello.txt"), "hello");
  EXPECT_EQ(Get(Servers::Https("hello.txt"),
                {1, Servers::ProxyWithPassword(), "keeper:open-sesame"}),
            0);
  EXPECT_EQ(Arrived(), "hello");
}

TEST_F(ProxyDownload, LeavesAnEmptyFileWhenTheTunnelIsRefused) {
  WriteFile(TheServers().Files().Path("hello.txt"), "hello");
  EXPECT_EQ(Get(Servers::Https("hello.txt"),
                {1, Servers::ProxyWithPassword(), "keeper:wrong"}),
            1);
  EXPECT_EQ(Arrived(), "");
}

TEST_F(ProxyDownload, LeavesAnEmptyFileWhenTheProxyIsNotThere) {
  const std::string dead =
      "http://127.0.0.1:" + std::to_string(Servers::kDeadPort);
  EXPECT_EQ(Get(Servers::Http("via"), {1, dead.c_str(), nullptr}), 1);
  EXPECT_EQ(Arrived(), "");
}

TEST_F(ProxyDownload, FailsForAnErrorAnswerThatTheProxyHandsOn) {
  EXPECT_EQ(Get(Servers::Http("answers/404"), {1, Servers::Proxy(), nullptr}),
            1);
  EXPECT_EQ(Arrived(), "nothing here");
}

}  // namespace
