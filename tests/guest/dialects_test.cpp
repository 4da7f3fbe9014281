// Servers that do not speak the newest dialect: the mount steps down until one
// is understood.

#include <filesystem>

#include "guest_test.h"

namespace {

const char kShare[] = "//127.0.0.1/docs";
constexpr int kNotSupported = 95;
constexpr int kHostIsDown = 112;

class Dialects : public GuestTest {
 protected:
  Dialects() {
    WriteFile(Local("source"), "in any dialect");
    WriteFile(OnServer("file"), "on the server");
  }

  void ExpectVersion(const std::string& version) {
    ASSERT_EQ(CifsMounts().size(), 1U);
    EXPECT_NE(CifsMounts()[0].find(",vers=" + version + ","), std::string::npos)
        << CifsMounts()[0];
  }
};

TEST_F(Dialects, TheNewestIsTakenFirst) {
  EXPECT_EQ(SendOnce("//127.0.0.1/docs/file", Local("back")), (Outcome{0, ""}));
  ExpectVersion("3.0");
}

TEST_F(Dialects, StepDownOnceForAServerHeldToSmb2) {
  UseServer({"server max protocol = SMB2_02"});
  const std::string report =
      Report("smb3", kNotSupported, kShare, kFirstFolder);

  // A refusal on a lower step keeps the reports of the higher ones.
  mAuth.SetPassword(FromUtf8("wrong"));
  std::filesystem::create_directory(kFirstFolder);
  EXPECT_EQ(SendOnce("//127.0.0.1/docs/file", Local("back"), "earlier"),
            (Outcome{6, report}));

  mAuth.SetPassword(FromUtf8("secret"));
  EXPECT_EQ(SendOnce("//127.0.0.1/docs/file", Local("back"), "earlier"),
            (Outcome{0, report}));
  EXPECT_EQ(ReadFile(Local("back")), "on the server");
  ExpectVersion("2.0");

  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/new"), (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(OnServer("new")), "in any dialect");
}

TEST_F(Dialects, StepDownTwiceForAServerHeldToSmb1) {
  UseServer({"server max protocol = NT1"});
  EXPECT_EQ(
      SendOnce("//127.0.0.1/docs/file", Local("back"), "earlier"),
      (Outcome{0, Report("smb3", kHostIsDown, kShare, kFirstFolder) + "\n" +
                      Report("smb2", kHostIsDown, kShare, kFirstFolder)}));
  EXPECT_EQ(ReadFile(Local("back")), "on the server");
  ExpectVersion("1.0");

  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/new"), (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(OnServer("new")), "in any dialect");
}

}  // namespace
