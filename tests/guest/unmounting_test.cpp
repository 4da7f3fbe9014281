// What is left behind when mounts are taken down.

#include <filesystem>
#include <fstream>
#include <utility>

#include "guest_test.h"

namespace {

class Unmounting : public GuestTest {
 protected:
  Unmounting() {
    WriteFile(Local("source"), "x");
    EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/file"), (Outcome{0, ""}));
    EXPECT_EQ(CifsMounts().size(), 1U);
  }
};

TEST_F(Unmounting, TakesTheFolderAwayAndLeavesTheShareAlone) {
  EXPECT_EQ(Share().UnMountShare(FromUtf8(kFirstFolder)), 0);
  EXPECT_TRUE(CifsMounts().empty());
  EXPECT_FALSE(std::filesystem::exists(kFirstFolder));
  EXPECT_EQ(ReadFile(OnServer("file")), "x");
  EXPECT_EQ(Share().mMountedShares.size(), 1U);

  EXPECT_EQ(Share().UnMountShare(FromUtf8(kFirstFolder)), 1);
}

TEST_F(Unmounting, TakesLocalFilesBelowTheMountAway) {
  EXPECT_EQ(Share().UnMountShare(FromUtf8(kFirstFolder)), 0);
  std::filesystem::create_directory(kFirstFolder);
  WriteFile("/mnt/orbmountZ/local", "under the mount");
  Share().mMountedShares.clear();
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/other"), (Outcome{0, ""}));
  EXPECT_FALSE(std::filesystem::exists("/mnt/orbmountZ/local"));

  EXPECT_EQ(Share().UnMountShare(FromUtf8(kFirstFolder)), 0);
  EXPECT_FALSE(std::filesystem::exists(kFirstFolder));
}

TEST_F(Unmounting, LeavesAFolderInUseAlone) {
  const std::ifstream open("/mnt/orbmountZ/file");
  ASSERT_TRUE(open);
  EXPECT_EQ(Share().UnMountShare(FromUtf8(kFirstFolder)), 1);
  EXPECT_EQ(CifsMounts().size(), 1U);
  EXPECT_TRUE(std::filesystem::exists("/mnt/orbmountZ/file"));
}

TEST_F(Unmounting, OfAllTakesEveryShareOfTheTableAndKeepsTheTable) {
  EXPECT_EQ(Send(Local("source"), "//[::1]/docs/second"), (Outcome{0, ""}));
  ASSERT_EQ(CifsMounts().size(), 2U);

  EXPECT_EQ(Share().UnmountAll(), 0);
  EXPECT_TRUE(CifsMounts().empty());
  EXPECT_TRUE(std::filesystem::is_empty("/mnt"));
  EXPECT_EQ(Share().mMountedShares.size(), 2U);
  EXPECT_EQ(ReadFile(OnServer("file")), "x");
  EXPECT_EQ(ReadFile(OnServer("second")), "x");
}

TEST_F(Unmounting, OfAllLeavesTheMountsOfOtherProcesses) {
  delete std::exchange(KVTShareFile::mInstance, new KVTShareFile);
  ASSERT_TRUE(CifsMounts().empty())
      << "an instance that goes unmounts its shares";
  ASSERT_EQ(
      RunProgram({KVTSHARE, "send", Local("source"), "//127.0.0.1/docs/one",
                  "--user", "root", "--password-env", "SECRET"},
                 {"SECRET=secret"})
          .status,
      0);
  EXPECT_EQ(Send("//127.0.0.1/docs/one", Local("back")), (Outcome{0, ""}));

  EXPECT_EQ(Share().UnmountAll(), 0);
  EXPECT_EQ(CifsMounts().size(), 1U);
}

TEST_F(Unmounting, IsNotNoticedByTheTable) {
  EXPECT_EQ(Share().UnmountAll(), 0);
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/late"), (Outcome{0, ""}));
  EXPECT_FALSE(std::filesystem::exists(OnServer("late")));
  EXPECT_EQ(ReadFile("/mnt/orbmountZ/late"), "x");
}

}  // namespace
