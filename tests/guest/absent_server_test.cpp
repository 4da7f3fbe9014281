// A server that is not there.  What a send gives depends on the folder: one
// that the call makes itself enters the table, and from the second attempt on
// the share counts as mounted; one that stood there before does not.

#include <filesystem>

#include "guest_test.h"
#include "hooks.h"

namespace {

const char kShare[] = "//127.0.0.9/docs";
constexpr int kRefused = 111;

std::string ReportsOfAllDialects() {
  return Report("smb3", kRefused, kShare, kFirstFolder) + "\n" +
         Report("smb2", kRefused, kShare, kFirstFolder) + "\n" +
         Report("smb1", kRefused, kShare, kFirstFolder);
}

class AbsentServer : public GuestTest {
 protected:
  AbsentServer() { WriteFile(Local("source"), "x"); }
  ~AbsentServer() override { EXPECT_TRUE(CifsMounts().empty()); }

  // Pauses between attempts are counted and not waited for.
  int mPauses = 0;
  hooks::Scoped<decltype(hooks::onSleep)> mNoSleep{hooks::onSleep,
                                                   [this](unsigned seconds) {
                                                     EXPECT_EQ(seconds, 1U);
                                                     ++mPauses;
                                                     return 0U;
                                                   }};
};

TEST_F(AbsentServer, SendOnANewFolderEndsInThatFolderAsDone) {
  EXPECT_EQ(Send(Local("source"), "//127.0.0.9/docs/deep/file"),
            (Outcome{0, ""}));
  EXPECT_EQ(mPauses, 1);
  EXPECT_EQ(ReadFile("/mnt/orbmountZ/deep/file"), "x");
  ASSERT_EQ(Share().mMountedShares.size(), 1U);
  EXPECT_EQ(Share().mMountedShares.begin()->first, kShare);
  EXPECT_EQ(Share().mMountedShares.begin()->second, kFirstFolder);
}

TEST_F(AbsentServer, SendOnAFolderThatStoodFailsWithoutText) {
  std::filesystem::create_directory(kFirstFolder);
  EXPECT_EQ(Send(Local("source"), "//127.0.0.9/docs/deep/file"),
            (Outcome{1, ""}));
  EXPECT_EQ(mPauses, 5);
  EXPECT_TRUE(std::filesystem::is_empty(kFirstFolder));
  EXPECT_TRUE(Share().mMountedShares.empty());
}

TEST_F(AbsentServer, FetchOnANewFolderFailsInTheCopyAndTakesTheOldFileAway) {
  WriteFile(Local("back"), "old");
  EXPECT_EQ(
      Send("//127.0.0.9/docs/deep/file", Local("back")),
      (Outcome{1, "Unable to copy file from /mnt/orbmountZ/deep/file to " +
                      Local("back")}));
  EXPECT_EQ(mPauses, 5);
  EXPECT_FALSE(std::filesystem::exists(Local("back")));
  EXPECT_EQ(Share().mMountedShares.size(), 1U);
}

TEST_F(AbsentServer, FetchOnAFolderThatStoodFailsWithTheLastReports) {
  WriteFile(Local("back"), "old");
  std::filesystem::create_directory(kFirstFolder);
  EXPECT_EQ(Send("//127.0.0.9/docs/deep/file", Local("back")),
            (Outcome{1, ReportsOfAllDialects()}));
  EXPECT_EQ(mPauses, 5);
  EXPECT_EQ(ReadFile(Local("back")), "old");
  EXPECT_TRUE(Share().mMountedShares.empty());
}

TEST_F(AbsentServer, OneAttemptTellsThatTheMountFailed) {
  EXPECT_EQ(SendOnce(Local("source"), "//127.0.0.9/docs/file", "earlier"),
            (Outcome{5, "earlier"}))
      << "the reports of this direction do not reach the caller";
  std::filesystem::remove(kFirstFolder);
  std::filesystem::create_directory(kFirstFolder);
  Share().mMountedShares.clear();
  EXPECT_EQ(SendOnce("//127.0.0.9/docs/file", Local("back"), "earlier"),
            (Outcome{5, ReportsOfAllDialects()}));
}

TEST_F(AbsentServer, DeleteGivesOneWhereOneAttemptGivesFive) {
  std::filesystem::create_directory(kFirstFolder);
  EXPECT_EQ(Delete("//127.0.0.9/docs/file"),
            (Outcome{1, ReportsOfAllDialects()}));
  KVTString error;
  EXPECT_EQ(Share().DeleteFileUsingMount(FromUtf8("//127.0.0.9/docs/file"),
                                         &mAuth, error),
            5);
  EXPECT_EQ(error.GetUTF8String(), ReportsOfAllDialects());
}

}  // namespace
