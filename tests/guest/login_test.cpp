// Who is let in, and what a refusal leaves behind.

#include <filesystem>

#include "guest_test.h"

namespace {

class Login : public GuestTest {
 protected:
  Login() {
    WriteFile(Local("source"), "x");
    WriteFile(OnServer("file"), "on the server");
  }
};

TEST_F(Login, WithoutADomainAsksForTheServersOwn) {
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/new"), (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(OnServer("new")), "x");
  ASSERT_EQ(CifsMounts().size(), 1U);
  EXPECT_NE(CifsMounts()[0].find(",username=root,domain=.,"), std::string::npos)
      << CifsMounts()[0];
}

TEST_F(Login, SendsTheDomain) {
  mAuth.SetDomain(FromUtf8("WORKGROUP"));
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/new"), (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(OnServer("new")), "x");
  ASSERT_EQ(CifsMounts().size(), 1U);
  EXPECT_NE(CifsMounts()[0].find(",username=root,domain=WORKGROUP,"),
            std::string::npos)
      << CifsMounts()[0];
}

TEST_F(Login, KeepsThePasswordOutOfTheListOfMounts) {
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/new"), (Outcome{0, ""}));
  ASSERT_EQ(CifsMounts().size(), 1U);
  EXPECT_EQ(CifsMounts()[0].find("secret"), std::string::npos);
}

TEST_F(Login, WithoutCredentialsIsRefusedByTheKernelInEveryDialect) {
  KVTString path;
  KVTString error;
  EXPECT_EQ(Share().MountNetworkShare(FromUtf8("//127.0.0.1/docs/file"),
                                      nullptr, path, error),
            1);
  const std::string share = "//127.0.0.1/docs";
  EXPECT_EQ(error.GetUTF8String(),
            Report("smb3", 22, share, kFirstFolder) + "\n" +
                Report("smb2", 22, share, kFirstFolder) + "\n" +
                Report("smb1", 22, share, kFirstFolder));
}

TEST_F(Login, WithAWrongPasswordIsRefusedOnTheWayToTheShare) {
  mAuth.SetPassword(FromUtf8("wrong"));
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/new", "earlier"),
            (Outcome{6, ""}));
  EXPECT_FALSE(std::filesystem::exists(OnServer("new")));
  EXPECT_TRUE(CifsMounts().empty());
}

TEST_F(Login, WithAWrongPasswordIsRefusedOnTheWayFromTheShare) {
  WriteFile(Local("back"), "stays");
  mAuth.SetPassword(FromUtf8("wrong"));
  EXPECT_EQ(Send("//127.0.0.1/docs/file", Local("back"), "earlier"),
            (Outcome{6, ""}));
  EXPECT_EQ(ReadFile(Local("back")), "stays");
}

TEST_F(Login, ARefusalLeavesTheTextOfOneAttemptAlone) {
  mAuth.SetPassword(FromUtf8("wrong"));
  EXPECT_EQ(SendOnce(Local("source"), "//127.0.0.1/docs/new", "earlier"),
            (Outcome{6, "earlier"}));
}

TEST_F(Login, ARefusalOnTheWayFromTheShareLeavesTheTextOfOneAttemptAlone) {
  mAuth.SetPassword(FromUtf8("wrong"));
  EXPECT_EQ(SendOnce("//127.0.0.1/docs/file", Local("back"), "earlier"),
            (Outcome{6, "earlier"}));
}

TEST_F(Login, WithoutAPasswordIsRefused) {
  mAuth.ResetPassword();
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/new"), (Outcome{6, ""}));
}

TEST_F(Login, ARefusedDeleteLeavesTheFile) {
  mAuth.SetPassword(FromUtf8("wrong"));
  EXPECT_EQ(Delete("//127.0.0.1/docs/file", "earlier"),
            (Outcome{6, "earlier"}));
  EXPECT_TRUE(std::filesystem::exists(OnServer("file")));
}

// Callers rely on the table keeping what was handed out: after a refusal on a
// new folder, the right password comes too late for this process.
TEST_F(Login, AfterARefusalOnANewFolderTheFileLandsInTheLocalFolder) {
  mAuth.SetPassword(FromUtf8("wrong"));
  ASSERT_EQ(Send(Local("source"), "//127.0.0.1/docs/new"), (Outcome{6, ""}));

  mAuth.SetPassword(FromUtf8("secret"));
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/new"), (Outcome{0, ""}));
  EXPECT_TRUE(CifsMounts().empty());
  EXPECT_FALSE(std::filesystem::exists(OnServer("new")));
  EXPECT_EQ(ReadFile("/mnt/orbmountZ/new"), "x");
}

TEST_F(Login, AfterARefusalOnAFolderThatStoodTheFileLandsOnTheShare) {
  std::filesystem::create_directory(kFirstFolder);
  mAuth.SetPassword(FromUtf8("wrong"));
  ASSERT_EQ(Send(Local("source"), "//127.0.0.1/docs/new"), (Outcome{6, ""}));
  EXPECT_TRUE(Share().mMountedShares.empty());

  mAuth.SetPassword(FromUtf8("secret"));
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/new"), (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(OnServer("new")), "x");
  EXPECT_EQ(CifsMounts().size(), 1U);
}

}  // namespace
