// The choice of a mount folder, and unmounting.

#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "KVTShareFile.h"
#include "allowed_leaks.h"
#include "hooks.h"
#include "share_fakes.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

constexpr const char* kUntouched = "untouched";
constexpr const char* kDocs = "//10.0.0.5/docs";
constexpr const char* kOther = "//10.0.0.6/other";

class MountFolder : public EmptyMnt {
 protected:
  int Choose(const KVTString& share) {
    folder = kUntouched;
    error = kUntouched;
    const int result = manager->GetMountPoint(share, folder, error);
    EXPECT_EQ(error, kUntouched);
    return result;
  }

  void TearDown() override {
    const AllowedLeaks handles;
    manager.reset();
    EmptyMnt::TearDown();
  }

  // A folder that is emptied stays open as a directory.
  int Unmount(const KVTString& mountPoint) {
    const AllowedLeaks handle;
    return manager->UnMountShare(mountPoint);
  }

  int UnmountEverything() {
    const AllowedLeaks handles;
    return manager->UnmountAll();
  }

  static void MakeIdle(char letter) {
    ASSERT_EQ(mkdir(Folder(letter).c_str(), 0755), 0);
  }

  static void MakeTaken(char letter) {
    MakeIdle(letter);
    MountForReal("something", Folder(letter));
  }

  std::unique_ptr<MountManager> manager = std::make_unique<MountManager>();
  KVTString folder;
  KVTString error;
};

TEST_F(MountFolder, IsMadeAndEnteredAtTheFirstCall) {
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
  EXPECT_TRUE(FolderExists('Z'));
  ASSERT_EQ(manager->mMountedShares.size(), 1u);
  EXPECT_EQ(manager->mMountedShares[kDocs], "/mnt/orbmountZ");
}

TEST_F(MountFolder, IsTheSameWith4AtTheSecondCallThoughNothingIsMounted) {
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(Choose(kDocs), 4);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
  EXPECT_EQ(Choose("//10.0.0.5/DOCS"), 4);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
  EXPECT_EQ(manager->mMountedShares.size(), 1u);
  EXPECT_FALSE(FolderExists('Y'));
}

TEST_F(MountFolder, IsTheSameWith4AtTheSecondCallAfterAMount) {
  EXPECT_EQ(Choose(kDocs), 0);
  MountForReal(kDocs, Folder('Z'));
  EXPECT_EQ(Choose(kDocs), 4);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
}

TEST_F(MountFolder, ComesFromTheKernelsListWith4AndNoEntry) {
  ASSERT_EQ(mkdir("/mnt/elsewhere", 0755), 0);
  MountForReal(kDocs, "/mnt/elsewhere");
  EXPECT_EQ(Choose(kDocs), 4);
  EXPECT_EQ(folder, "/mnt/elsewhere");
  EXPECT_TRUE(manager->mMountedShares.empty());
  EXPECT_FALSE(FolderExists('Z'));
}

TEST_F(MountFolder, IsChosenWhenTheListCannotBeOpened) {
  const hooks::Scoped failing(hooks::onFopen, [](const char*, const char*) {
    return static_cast<FILE*>(nullptr);
  });
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
}

TEST_F(MountFolder, ThatStandsIdleIsReusedWithoutAnEntry) {
  MakeIdle('Z');
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
  EXPECT_TRUE(manager->mMountedShares.empty());
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
}

TEST_F(MountFolder, OfAnotherSharesEntryIsHandedOutAgain) {
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(Choose(kOther), 0);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
  EXPECT_EQ(manager->mMountedShares.count(kOther), 0u);
  EXPECT_EQ(manager->mMountedShares[kDocs], "/mnt/orbmountZ");
}

TEST_F(MountFolder, WithSomethingMountedIsSkipped) {
  MakeTaken('Z');
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(folder, "/mnt/orbmountY");
  EXPECT_TRUE(FolderExists('Y'));
  EXPECT_EQ(manager->mMountedShares[kDocs], "/mnt/orbmountY");
}

TEST_F(MountFolder, BehindATakenOneIsReusedWhenIdle) {
  MakeTaken('Z');
  MakeIdle('Y');
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(folder, "/mnt/orbmountY");
  EXPECT_TRUE(manager->mMountedShares.empty());
}

TEST_F(MountFolder, ThatIsAPlainFileCannotBeMade) {
  WriteFile(Folder('Z'), "in the way");
  EXPECT_EQ(Choose(kDocs), 1);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
  EXPECT_TRUE(manager->mMountedShares.empty());
  EXPECT_EQ(ReadFile(Folder('Z')), "in the way");
  EXPECT_FALSE(FolderExists('Y'));
}

TEST_F(MountFolder, ThatIsADanglingLinkCannotBeMade) {
  ASSERT_EQ(symlink("/mnt/nowhere", Folder('Z').c_str()), 0);
  EXPECT_EQ(Choose(kDocs), 1);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
}

TEST_F(MountFolder, ThatIsALinkToMntItselfIsSkipped) {
  ASSERT_EQ(symlink("/mnt", Folder('Z').c_str()), 0);
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(folder, "/mnt/orbmountY");
}

TEST_F(MountFolder, ThatIsALinkBesideMntCountsAsIdle) {
  ASSERT_EQ(mkdir("/mnt/elsewhere", 0755), 0);
  ASSERT_EQ(symlink("/mnt/elsewhere", Folder('Z').c_str()), 0);
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
  EXPECT_TRUE(manager->mMountedShares.empty());
}

TEST_F(MountFolder, ThatIsALinkToAnotherFilesystemIsSkipped) {
  ASSERT_EQ(symlink("/proc", Folder('Z').c_str()), 0);
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(folder, "/mnt/orbmountY");
}

TEST_F(MountFolder, ThatCannotBeMadeIsNamedWith1) {
  const hooks::Scoped failing(hooks::onMkdir, [](const char*, mode_t) {
    errno = EROFS;
    return -1;
  });
  EXPECT_EQ(Choose(kDocs), 1);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
  EXPECT_TRUE(manager->mMountedShares.empty());
}

TEST_F(MountFolder, IsMadeWithTheUsualMode) {
  std::vector<std::string> made;
  const hooks::Scoped making(hooks::onMkdir, [&](const char* path, mode_t m) {
    EXPECT_EQ(m, 0775u);
    made.push_back(path);
    return hooks::RealMkdir(path, m);
  });
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(made.size(), 1u);
}

TEST_F(MountFolder, IsMadeWithMntWhereThatIsMissing) {
  const TemporaryDirectory root;
  EXPECT_EXIT(
      {
        if (chroot(root.Path().c_str()) != 0) _exit(9);
        _exit(Choose(kDocs));
      },
      testing::ExitedWithCode(0), "");
  EXPECT_TRUE(root.File("mnt/orbmountZ").Exists());
}

TEST_F(MountFolder, IsNotNamedWhenItCannotBeLookedAt) {
  MakeIdle('Z');
  int looked = 0;
  const hooks::Scoped failing(hooks::onStat,
                              [&](const char* path, struct stat* status) {
                                // The first look tells that it is a directory.
                                if (path == Folder('Z') && ++looked == 2) {
                                  errno = EIO;
                                  return -1;
                                }
                                return hooks::RealStat(path, status);
                              });
  EXPECT_EQ(Choose(kDocs), 1);
  EXPECT_EQ(folder, kUntouched);
  EXPECT_EQ(looked, 2);
}

TEST_F(MountFolder, IsNotNamedWhenMntCannotBeLookedAt) {
  MakeIdle('Z');
  const hooks::Scoped failing(hooks::onStat,
                              [](const char* path, struct stat* status) {
                                if (strcmp(path, "/mnt") == 0) {
                                  errno = EIO;
                                  return -1;
                                }
                                return hooks::RealStat(path, status);
                              });
  EXPECT_EQ(Choose(kDocs), 1);
  EXPECT_EQ(folder, kUntouched);
}

TEST_F(MountFolder, GoesFromZDownToA) {
  for (char letter = 'Z'; letter >= 'A'; --letter) {
    const KVTString share = FromUtf8(std::string("//h/") + letter);
    ASSERT_EQ(Choose(share), 0);
    EXPECT_EQ(folder, FromUtf8(Folder(letter)));
    MountForReal(share.GetUTF8String(), Folder(letter));
  }
  EXPECT_EQ(manager->mMountedShares.size(), 26u);
  EXPECT_EQ(Choose("//h/one more"), 1);
  EXPECT_EQ(folder, "");
  EXPECT_EQ(manager->mMountedShares.size(), 26u);
}

TEST_F(MountFolder, IsTheOnlyOneLeft) {
  for (char letter = 'Z'; letter > 'A'; --letter) MakeTaken(letter);
  EXPECT_EQ(Choose(kDocs), 0);
  EXPECT_EQ(folder, "/mnt/orbmountA");
}

TEST_F(MountFolder, IsSearchedFromZEachTime) {
  MakeTaken('Z');
  EXPECT_EQ(Choose(kDocs), 0);
  MountForReal(kDocs, Folder('Y'));
  ASSERT_EQ(umount2(Folder('Z').c_str(), 0), 0);
  EXPECT_EQ(Choose(kOther), 0);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
}

using UnMountShare = MountFolder;

TEST_F(UnMountShare, AsksForAForcedUnmountOnce) {
  MakeIdle('Z');
  const FakeUnmount unmount;
  EXPECT_EQ(Unmount("/mnt/orbmountZ"), 0);
  ASSERT_EQ(unmount.Calls().size(), 1u);
  EXPECT_EQ(unmount.Calls()[0].target, "/mnt/orbmountZ");
  EXPECT_EQ(unmount.Calls()[0].flags, MNT_FORCE);
  EXPECT_EQ(unmount.Calls()[0].flags, 1);
}

TEST_F(UnMountShare, TakesMountAndFolderDown) {
  MakeTaken('Z');
  EXPECT_EQ(Unmount("/mnt/orbmountZ"), 0);
  EXPECT_FALSE(FolderExists('Z'));
}

TEST_F(UnMountShare, DeletesFilesThatTheMountHid) {
  MakeIdle('Z');
  WriteFile(Folder('Z') + "/hidden", "x");
  MountForReal("something", Folder('Z'));
  EXPECT_EQ(Unmount("/mnt/orbmountZ"), 0);
  EXPECT_FALSE(FolderExists('Z'));
}

TEST_F(UnMountShare, ReturnsZeroWhenTheFolderStays) {
  MakeIdle('Z');
  ASSERT_EQ(mkdir((Folder('Z') + "/inner").c_str(), 0755), 0);
  WriteFile(Folder('Z') + "/inner/file", "x");
  MountForReal("something", Folder('Z'));
  EXPECT_EQ(Unmount("/mnt/orbmountZ"), 0);
  EXPECT_TRUE(FolderExists('Z'));
}

TEST_F(UnMountShare, Returns1AndLeavesAFolderWithNothingMounted) {
  MakeIdle('Z');
  EXPECT_EQ(Unmount("/mnt/orbmountZ"), 1);
  EXPECT_TRUE(FolderExists('Z'));
  EXPECT_EQ(Unmount("/mnt/nowhere"), 1);
}

TEST_F(UnMountShare, LeavesTheEntry) {
  EXPECT_EQ(Choose(kDocs), 0);
  MountForReal(kDocs, Folder('Z'));
  EXPECT_EQ(Unmount("/mnt/orbmountZ"), 0);
  EXPECT_EQ(manager->mMountedShares[kDocs], "/mnt/orbmountZ");
  EXPECT_EQ(Choose(kDocs), 4);
}

using UnmountAll = MountFolder;

std::vector<std::string> Targets(const FakeUnmount& unmount) {
  std::vector<std::string> targets;
  for (const auto& call : unmount.Calls()) targets.push_back(call.target);
  return targets;
}

TEST_F(UnmountAll, ReturnsZeroForAnEmptyTable) {
  const FakeUnmount unmount;
  EXPECT_EQ(UnmountEverything(), 0);
  EXPECT_TRUE(unmount.Calls().empty());
}

TEST_F(UnmountAll, GoesThroughTheTableInKeyOrder) {
  manager->mMountedShares["//h/b"] = "/mnt/1";
  manager->mMountedShares["//h/a"] = "/mnt/2";
  manager->mMountedShares["//h/B"] = "/mnt/3";
  manager->mMountedShares["//h/"] = "/mnt/4";
  const FakeUnmount unmount;
  EXPECT_EQ(UnmountEverything(), 0);
  EXPECT_THAT(Targets(unmount),
              testing::ElementsAre("/mnt/4", "/mnt/3", "/mnt/2", "/mnt/1"));
}

TEST_F(UnmountAll, ReturnsZeroWhenNothingCanBeUnmounted) {
  manager->mMountedShares["//h/a"] = "/mnt/1";
  manager->mMountedShares["//h/b"] = "/mnt/2";
  const FakeUnmount unmount(-1);
  EXPECT_EQ(UnmountEverything(), 0);
  EXPECT_THAT(Targets(unmount), testing::ElementsAre("/mnt/1", "/mnt/2"));
}

TEST_F(UnmountAll, LeavesTheEntriesWhichAnswerWithTheOldFolder) {
  EXPECT_EQ(Choose(kDocs), 0);
  MountForReal(kDocs, Folder('Z'));
  EXPECT_EQ(UnmountEverything(), 0);
  EXPECT_FALSE(FolderExists('Z'));
  EXPECT_EQ(manager->mMountedShares.size(), 1u);
  EXPECT_EQ(Choose(kDocs), 4);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
  EXPECT_FALSE(FolderExists('Z'));
}

TEST_F(UnmountAll, DropsAnExceptionAndGoesOn) {
  MakeIdle('Z');
  MakeIdle('Y');
  manager->mMountedShares["//h/a"] = "/mnt/orbmountZ";
  manager->mMountedShares["//h/b"] = "/mnt/orbmountY";
  int opened = 0;
  const hooks::Scoped throwing(hooks::onOpendir, [&](const char* path) {
    if (++opened == 1) throw 1;
    return hooks::RealOpendir(path);
  });
  const FakeUnmount unmount;
  EXPECT_EQ(UnmountEverything(), 0);
  EXPECT_THAT(Targets(unmount),
              testing::ElementsAre("/mnt/orbmountZ", "/mnt/orbmountY"));
  EXPECT_TRUE(FolderExists('Z'));
  EXPECT_FALSE(FolderExists('Y'));
}

TEST_F(UnmountAll, IsWhatTheDestructorDoes) {
  manager->mMountedShares["//h/a"] = "/mnt/1";
  manager->mMountedShares["//h/b"] = "/mnt/2";
  const FakeUnmount unmount;
  manager.reset();
  EXPECT_THAT(Targets(unmount), testing::ElementsAre("/mnt/1", "/mnt/2"));
}

}  // namespace
