// Finding a share in the table of mounts and in the kernel's list.

#include <gtest/gtest.h>

#include <string>

#include "KVTShareFile.h"
#include "hooks.h"
#include "share_fakes.h"
#include "test_strings.h"

namespace {

constexpr const char* kUntouched = "untouched";

class MountList : public EmptyMnt {
 protected:
  int Find(const KVTString& share) {
    folder = kUntouched;
    error = kUntouched;
    const int result =
        manager.GetMountPointForMountedNetwork(share, folder, error);
    EXPECT_EQ(error, kUntouched);
    return result;
  }

  MountManager manager;
  KVTString folder;
  KVTString error;
};

TEST_F(MountList, FindsAnEntryOfTheTableWithoutReadingTheList) {
  const FakeMountList list("//10.0.0.5/docs /mnt/other cifs rw 0 0\n");
  manager.mMountedShares["//10.0.0.5/docs"] = "/mnt/orbmountQ";
  EXPECT_EQ(Find("//10.0.0.5/docs"), 0);
  EXPECT_EQ(folder, "/mnt/orbmountQ");
  EXPECT_EQ(list.Opened(), 0);
}

TEST_F(MountList, IgnoresCaseInTheTable) {
  manager.mMountedShares["//10.0.0.5/docs"] = "/mnt/orbmountQ";
  EXPECT_EQ(Find("//10.0.0.5/DOCS"), 0);
  EXPECT_EQ(folder, "/mnt/orbmountQ");
}

TEST_F(MountList, HoldsCaseAgainstTheList) {
  const FakeMountList list("//10.0.0.5/docs /mnt/other cifs rw 0 0\n");
  EXPECT_EQ(Find("//10.0.0.5/DOCS"), 1);
  EXPECT_EQ(folder, kUntouched);
  EXPECT_EQ(Find("//10.0.0.5/docs"), 0);
  EXPECT_EQ(folder, "/mnt/other");
}

TEST_F(MountList, TakesTheFirstMatchInKeyOrder) {
  // Units are compared: upper case stands before lower case, U+FFFF last.
  manager.mMountedShares["//h/docs"] = "/mnt/lower";
  manager.mMountedShares["//h/DOCS"] = "/mnt/upper";
  manager.mMountedShares[FromUnits({0xFFFF})] = "/mnt/last";
  manager.mMountedShares["//h/doc"] = "/mnt/short";
  EXPECT_EQ(Find("//h/Docs"), 0);
  EXPECT_EQ(folder, "/mnt/upper");

  std::vector<KVTString> folders;
  for (const auto& entry : manager.mMountedShares) {
    folders.push_back(entry.second);
  }
  EXPECT_EQ(folders,
            FromUtf8({"/mnt/upper", "/mnt/short", "/mnt/lower", "/mnt/last"}));
  manager.mMountedShares.clear();
}

TEST_F(MountList, TakesTheFirstMatchingLine) {
  const FakeMountList list(
      "//10.0.0.5/doc /mnt/a cifs rw 0 0\n"
      "//10.0.0.5/docs /mnt/b cifs rw 0 0\n"
      "//10.0.0.5/docs /mnt/c cifs rw 0 0\n");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 0);
  EXPECT_EQ(folder, "/mnt/b");
}

TEST_F(MountList, SaysNotFoundWhenTheListCannotBeOpened) {
  const hooks::Scoped failing(hooks::onFopen, [](const char*, const char*) {
    return static_cast<FILE*>(nullptr);
  });
  EXPECT_EQ(Find("//10.0.0.5/docs"), 1);
  EXPECT_EQ(folder, kUntouched);
}

TEST_F(MountList, SaysNotFoundForAnEmptyList) {
  const FakeMountList list("");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 1);
  EXPECT_EQ(folder, kUntouched);
  EXPECT_EQ(list.Opened(), 1);
}

TEST_F(MountList, ReadsTheListAnewEachTime) {
  const FakeMountList list("");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 1);
  EXPECT_EQ(Find("//10.0.0.5/docs"), 1);
  EXPECT_EQ(list.Opened(), 2);
}

TEST_F(MountList, DoesNotLookAtTheFilesystemType) {
  const FakeMountList list("//10.0.0.5/docs /mnt/b fuse.other rw 0 0\n");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 0);
  EXPECT_EQ(folder, "/mnt/b");
}

TEST_F(MountList, ReadsTheFolderAsUtf8) {
  const FakeMountList list(
      "//10.0.0.5/\xC3\xA9t\xC3\xA9 /mnt/\xE6\x96\x87 cifs rw 0 0\n");
  EXPECT_EQ(Find("//10.0.0.5/\xC3\xA9t\xC3\xA9"), 0);
  EXPECT_EQ(folder, "/mnt/\xE6\x96\x87");
}

TEST_F(MountList, LeavesEscapesAsTheyAre) {
  const FakeMountList list(
      "//10.0.0.5/my\\040docs /mnt/my\\040folder cifs rw 0 0\n");
  // A share with a blank never matches: the list shows it escaped.
  EXPECT_EQ(Find("//10.0.0.5/my docs"), 1);
  EXPECT_EQ(folder, kUntouched);
  EXPECT_EQ(Find("//10.0.0.5/my\\040docs"), 0);
  EXPECT_EQ(folder, "/mnt/my\\040folder");
}

TEST_F(MountList, DropsTheLastCharacterOfALineWithoutALineEnd) {
  const FakeMountList list("//10.0.0.5/docs /mnt/orbmountZ");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 0);
  EXPECT_EQ(folder, "/mnt/orbmount");
}

TEST_F(MountList, KeepsTheLastCharacterOfALineWithALineEnd) {
  const FakeMountList list("//10.0.0.5/docs /mnt/orbmountZ\n");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 0);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
}

TEST_F(MountList, GoesOnBehindEmptyLinesAndLinesOfBlanks) {
  const FakeMountList list(
      "\n   \n\t\n  //10.0.0.5/docs\t/mnt/b cifs rw 0 0\n");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 0);
  EXPECT_EQ(folder, "/mnt/b");
}

TEST_F(MountList, ReadsPastAZeroByteAtTheStartOfALine) {
  const FakeMountList list(std::string("\0junk\n", 6) +
                           "//10.0.0.5/docs /mnt/b cifs rw 0 0\n");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 0);
  EXPECT_EQ(folder, "/mnt/b");
}

TEST_F(MountList, HoldsTheShareUpToAZeroUnitAgainstTheList) {
  const FakeMountList list("//h/s /mnt/b cifs rw 0 0\n");
  EXPECT_EQ(manager.GetMountPointForMountedNetwork(
                FromUnits({'/', '/', 'h', '/', 's', 0, 'x'}), folder, error),
            0);
  EXPECT_EQ(folder, "/mnt/b");
}

TEST_F(MountList, FindsAShareInFrontOfLongOptions) {
  const FakeMountList list("//10.0.0.5/docs /mnt/b cifs rw," +
                           std::string(5000, 'x') + " 0 0\n");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 0);
  EXPECT_EQ(folder, "/mnt/b");
}

TEST_F(MountList, ReadsALineOf1023BytesWhole) {
  // 1022 characters and the line end fill the buffer; the next line is a line.
  const FakeMountList list(std::string(1022, 'x') + "\n" +
                           "//10.0.0.5/docs /mnt/b cifs rw 0 0\n");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 0);
  EXPECT_EQ(folder, "/mnt/b");
}

TEST_F(MountList, TakesALongerLineAsSeveral) {
  // What stands behind the first 1023 bytes of a line counts as a line.
  const FakeMountList list(std::string(1023, 'x') +
                           "//10.0.0.5/docs /mnt/b cifs rw 0 0\n");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 0);
  EXPECT_EQ(folder, "/mnt/b");
}

TEST_F(MountList, DoesNotSeeADeviceInTheMiddleOfALine) {
  const FakeMountList list("none //10.0.0.5/docs /mnt/b cifs rw 0 0\n");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 1);
}

TEST_F(MountList, CutsADeviceAt255Bytes) {
  const std::string longest = "//h/" + std::string(251, 's');
  {
    const FakeMountList list(longest + " /mnt/b cifs rw 0 0\n");
    EXPECT_EQ(Find(FromUtf8(longest)), 0);
    EXPECT_EQ(folder, "/mnt/b");
  }
  {
    // The rest of a longer device is read as the folder.
    const FakeMountList list(longest + "tail /mnt/b cifs rw 0 0\n");
    EXPECT_EQ(Find(FromUtf8(longest + "tail")), 1);
    EXPECT_EQ(Find(FromUtf8(longest)), 0);
    EXPECT_EQ(folder, "tail");
  }
}

TEST_F(MountList, CutsAFolderAt255Bytes) {
  const std::string longest = "/mnt/" + std::string(250, 'f');
  const FakeMountList list("//h/s " + longest + "tail cifs rw 0 0\n");
  EXPECT_EQ(Find("//h/s"), 0);
  EXPECT_EQ(folder, FromUtf8(longest));
}

TEST_F(MountList, FindsAMountThatTheKernelLists) {
  EXPECT_EQ(Find("//10.0.0.5/docs"), 1);
  ASSERT_EQ(mkdir("/mnt/elsewhere", 0755), 0);
  MountForReal("//10.0.0.5/docs", "/mnt/elsewhere");
  EXPECT_EQ(Find("//10.0.0.5/docs"), 0);
  EXPECT_EQ(folder, "/mnt/elsewhere");
}

TEST_F(MountList, MissesAShareWithABlankThatTheKernelLists) {
  ASSERT_EQ(mkdir("/mnt/elsewhere", 0755), 0);
  MountForReal("//10.0.0.5/my docs", "/mnt/elsewhere");
  EXPECT_EQ(Find("//10.0.0.5/my docs"), 1);
  EXPECT_EQ(Find("//10.0.0.5/my\\040docs"), 0);
  EXPECT_EQ(folder, "/mnt/elsewhere");
}

TEST_F(MountList, MayPutTheFolderIntoTheTextOfTheShare) {
  manager.mMountedShares["//10.0.0.5/docs"] = "/mnt/orbmountQ";
  KVTString text("//10.0.0.5/docs");
  EXPECT_EQ(manager.GetMountPointForMountedNetwork(text, text, error), 0);
  EXPECT_EQ(text, "/mnt/orbmountQ");
}

}  // namespace
