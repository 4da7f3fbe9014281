// Where kvtshare takes passwords from, seen at a proxy that notes who asks.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include "program_run.h"
#include "scripted_server.h"
#include "temporary_directory.h"
#include "terminal_program.h"

namespace {

using testing::HasSubstr;
using testing::Not;

std::string DecodeBase64(const std::string& text) {
  const std::string digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  unsigned bits = 0;
  int count = 0;
  for (const char c : text) {
    const std::size_t digit = digits.find(c);
    if (digit == std::string::npos) break;
    bits = bits << 6 | static_cast<unsigned>(digit);
    count += 6;
    if (count >= 8) {
      count -= 8;
      bytes += static_cast<char>(bits >> count);
    }
  }
  return bytes;
}

class KvtsharePassword : public testing::Test {
 protected:
  // One download through the proxy as user `us`.
  std::vector<std::string> Command(std::vector<std::string> more,
                                   const std::string& user = "us") {
    std::vector<std::string> command = {
        KVTSHARE,
        "download",
        "http://server.invalid/file",
        mDirectory.Path("file"),
        "--proxy",
        "127.0.0.1:" + std::to_string(mProxy.Port()),
        "--proxy-user",
        user};
    command.insert(command.end(), more.begin(), more.end());
    return command;
  }

  // What the proxy was told, as user:password; empty before it was asked.
  std::string mLogin;
  const TemporaryDirectory mDirectory;
  ScriptedServer mProxy{[this](ScriptedConnection& connection) {
    const std::string head = connection.ReadHead();
    const std::string name = "Proxy-Authorization: Basic ";
    const std::size_t place = head.find(name);
    if (place != std::string::npos) {
      mLogin = DecodeBase64(head.substr(place + name.size()));
    }
    connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody");
  }};
};

TEST_F(KvtsharePassword, IsTheFirstLineOfAFile) {
  WriteFile(mDirectory.Path("password"), "first line\r\nsecond\n");
  EXPECT_EQ(
      RunProgram(Command({"--password-file", mDirectory.Path("password")})),
      (ProgramRun{0, "result: 0\n"}));
  EXPECT_EQ(mLogin, "us:first line");
  EXPECT_EQ(ReadFile(mDirectory.Path("file")), "body");
}

TEST_F(KvtsharePassword, FileNeedsNoLineEnd) {
  WriteFile(mDirectory.Path("password"), "secret");
  EXPECT_EQ(
      RunProgram(Command({"--password-file", mDirectory.Path("password")}))
          .status,
      0);
  EXPECT_EQ(mLogin, "us:secret");
}

TEST_F(KvtsharePassword, FileThatIsMissingIsReported) {
  EXPECT_EQ(
      RunProgram(Command({"--password-file", "/no/such/file"})),
      (ProgramRun{2,
                  "kvtshare: cannot read the password file /no/such/file: "
                  "No such file or directory\n"}));
  EXPECT_EQ(mLogin, "");
}

TEST_F(KvtsharePassword, FileThatIsAFolderIsReported) {
  EXPECT_EQ(RunProgram(Command({"--password-file", "/"})).status, 2);
}

TEST_F(KvtsharePassword, IsTheValueOfAVariable) {
  EXPECT_EQ(
      RunProgram(Command({"--password-env", "SECRET"}), {"SECRET=secret"}),
      (ProgramRun{0, "result: 0\n"}));
  EXPECT_EQ(mLogin, "us:secret");
}

TEST_F(KvtsharePassword, VariableThatIsMissingIsReported) {
  EXPECT_EQ(RunProgram(Command({"--password-env", "KVT_NO_SUCH_VARIABLE"})),
            (ProgramRun{2,
                        "kvtshare: the environment has no variable "
                        "KVT_NO_SUCH_VARIABLE\n"}));
}

TEST_F(KvtsharePassword, ReachesTheProxyWhateverItHolds) {
  EXPECT_EQ(RunProgram(Command({"--password-env", "SECRET"}, "d%om\\u:s"),
                       {"SECRET=p:a%41ss @ w\xC3\xB6rd"}),
            (ProgramRun{0, "result: 0\n"}));
  EXPECT_EQ(mLogin, "d%om\\u:s:p:a%41ss @ w\xC3\xB6rd");
}

TEST_F(KvtsharePassword, IsAskedForWithoutEcho) {
  TerminalProgram program(Command({}));
  program.WaitFor("Password for us at the proxy: ");
  EXPECT_FALSE(program.Echoes());
  program.Type("secret\n");
  EXPECT_EQ(program.Wait(), 0) << program.Screen();
  EXPECT_EQ(mLogin, "us:secret");
  EXPECT_EQ(program.Screen(),
            "Password for us at the proxy: \r\nresult: 0\r\n");
}

TEST_F(KvtsharePassword, CanBeCorrectedWhileItIsTyped) {
  TerminalProgram program(Command({}));
  program.WaitFor(": ");
  program.Type(
      "wrong\x15"
      "secrets\x7F\n");
  EXPECT_EQ(program.Wait(), 0) << program.Screen();
  EXPECT_EQ(mLogin, "us:secret");
}

TEST_F(KvtsharePassword, PromptThatIsInterruptedGivesTheEchoBack) {
  TerminalProgram program(Command({}));
  program.WaitFor(": ");
  program.Type("sec\x03");
  EXPECT_EQ(program.Wait(), 128 + SIGINT);
  EXPECT_TRUE(program.Echoes());
  EXPECT_EQ(mLogin, "");
}

// Without a shell around it, the program goes on at once.
TEST_F(KvtsharePassword, IsAskedForAgainAfterAStop) {
  TerminalProgram program(Command({}));
  program.WaitFor(": ");
  program.Type("half\x1A");
  program.WaitFor("Password for us at the proxy: ");
  EXPECT_FALSE(program.Echoes());
  program.Type("secret\n");
  EXPECT_EQ(program.Wait(), 0) << program.Screen();
  EXPECT_EQ(mLogin, "us:secret");
}

TEST_F(KvtsharePassword, PromptThatGetsNoLineIsReported) {
  TerminalProgram program(Command({}));
  program.WaitFor(": ");
  program.Type("\x04");
  EXPECT_EQ(program.Wait(), 2);
  EXPECT_THAT(program.Screen(),
              HasSubstr("kvtshare: the terminal gave no password\r\n"));
  EXPECT_TRUE(program.Echoes());
}

TEST_F(KvtsharePassword, WithoutATerminalNamesTheOtherWays) {
  std::vector<std::string> command = Command({});
  command.insert(command.begin(), {"setsid", "--wait"});
  EXPECT_EQ(RunProgram(command),
            (ProgramRun{2,
                        "kvtshare: no terminal to ask for the password on: use "
                        "--password-file or --password-env\n"}));
}

TEST_F(KvtsharePassword, IsShownNowhereWhenTheTransferFails) {
  TerminalProgram program({KVTSHARE, "send", "--smb1", "/no/such/file",
                           "//127.0.0.1/docs/file", "--user", "us", "--domain",
                           "DOM"});
  program.WaitFor("Password for us: ");
  program.Type("topsecret\n");
  EXPECT_EQ(program.Wait(), 1);
  EXPECT_THAT(program.Screen(), Not(HasSubstr("topsecret")));
}

}  // namespace
