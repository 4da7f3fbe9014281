#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "KVTFileUtil.h"
#include "sockets_and_devices.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;

TEST(PathCharacters, SeparateWithASlash) {
  EXPECT_EQ(KVTFileUtil::GetSeparator(), "/");
  // A backslash is not taken for one anywhere.
  EXPECT_EQ(KVTFile("a\\b").GetName(), "a\\b");
}

TEST(PathCharacters, ReserveNoNames) {
  EXPECT_THAT(KVTFileUtil::GetReservedNames(), IsEmpty());
}

TEST(PathCharacters, ListTheIllegalOnesInOrder) {
  EXPECT_THAT(
      KVTFileUtil::GetIllegalCharacters(),
      ElementsAreArray(FromUtf8({"\\", "/", "?", "*", "<", "\"", ">", "|"})));
}

TEST(PathCharacters, ListPunctuationInOrderWithBothParenthesesInOne) {
  EXPECT_THAT(
      KVTFileUtil::GetPunctuationCharacters(),
      ElementsAreArray(FromUtf8({"'", ":", "?", ",", "!", "()", "\"", ";"})));
}

TEST(PathCharacters, LeaveOutWhatCallersCountOn) {
  for (const KVTString& entry : KVTFileUtil::GetIllegalCharacters()) {
    EXPECT_FALSE(entry.ContainsAny(":%", 0)) << entry;
  }
  for (const KVTString& entry : KVTFileUtil::GetPunctuationCharacters()) {
    EXPECT_FALSE(entry.ContainsAny("/.-", 0)) << entry;
  }
}

TEST(PathCharacters, AreTheCallersOwn) {
  std::vector<KVTString> taken = KVTFileUtil::GetIllegalCharacters();
  taken.clear();
  EXPECT_EQ(KVTFileUtil::GetIllegalCharacters().size(), 8u);
  EXPECT_EQ(KVTFileUtil::GetPunctuationCharacters().size(), 8u);
}

// --- IsDirectory

TEST(IsDirectory, IsTrueForADirectoryOnly) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  EXPECT_TRUE(KVTFileUtil::IsDirectory(directory.Text()));
  EXPECT_TRUE(KVTFileUtil::IsDirectory("/"));
  EXPECT_TRUE(KVTFileUtil::IsDirectory("."));
  EXPECT_FALSE(KVTFileUtil::IsDirectory(directory.Text("f")));
  EXPECT_FALSE(KVTFileUtil::IsDirectory(directory.Text("missing")));
  EXPECT_FALSE(KVTFileUtil::IsDirectory(""));
}

TEST(IsDirectory, LeavesATrailingSlashToTheKernel) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  EXPECT_TRUE(KVTFileUtil::IsDirectory(directory.Text("")));
  EXPECT_TRUE(KVTFileUtil::IsDirectory(directory.Text("//")));
  EXPECT_FALSE(KVTFileUtil::IsDirectory(directory.Text("f/")));
}

TEST(IsDirectory, DropsOneTrailingBackslash) {
  const TemporaryDirectory directory;
  ASSERT_EQ(mkdir(directory.Path("d").c_str(), 0700), 0);
  EXPECT_TRUE(KVTFileUtil::IsDirectory(directory.Text("d\\")));
  EXPECT_FALSE(KVTFileUtil::IsDirectory(directory.Text("d\\\\")));
  ASSERT_EQ(mkdir(directory.Path("d\\").c_str(), 0700), 0);
  EXPECT_TRUE(KVTFileUtil::IsDirectory(directory.Text("d\\\\")));
  // The name that ends in a backslash is not what its own path tests.
  ASSERT_EQ(rmdir(directory.Path("d").c_str()), 0);
  EXPECT_FALSE(KVTFileUtil::IsDirectory(directory.Text("d\\")));
}

TEST(IsDirectory, IsFalseForABackslashAlone) {
  const TemporaryDirectory directory;
  ASSERT_EQ(mkdir(directory.Path("\\").c_str(), 0700), 0);
  const WorkingDirectory inside(directory.Path());
  EXPECT_FALSE(KVTFileUtil::IsDirectory("\\"));
  EXPECT_TRUE(KVTFileUtil::IsDirectory("\\\\"));
}

// A copy of the path is looked at, and copies end at their first zero unit.
TEST(IsDirectory, DropsTheBackslashInFrontOfAZeroUnit) {
  const TemporaryDirectory directory;
  ASSERT_EQ(mkdir(directory.Path("d").c_str(), 0700), 0);
  KVTString path = directory.Text("d\\");
  path.push_back(0);
  path.push_back('x');
  EXPECT_TRUE(KVTFileUtil::IsDirectory(path));
}

TEST(IsDirectory, FollowsLinks) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  ASSERT_EQ(symlink(".", directory.Path("toDirectory").c_str()), 0);
  ASSERT_EQ(symlink("f", directory.Path("toFile").c_str()), 0);
  ASSERT_EQ(symlink("missing", directory.Path("dangling").c_str()), 0);
  ASSERT_EQ(symlink("loop", directory.Path("loop").c_str()), 0);
  EXPECT_TRUE(KVTFileUtil::IsDirectory(directory.Text("toDirectory")));
  EXPECT_FALSE(KVTFileUtil::IsDirectory(directory.Text("toFile")));
  EXPECT_FALSE(KVTFileUtil::IsDirectory(directory.Text("dangling")));
  EXPECT_FALSE(KVTFileUtil::IsDirectory(directory.Text("loop")));
}

TEST(IsDirectory, IsTrueForSocketsAndBlockDevices) {
  const TemporaryDirectory directory;
  MakeSocket(directory.Path("socket"));
  MakeDevice(directory.Path("block"), S_IFBLK);
  EXPECT_TRUE(KVTFileUtil::IsDirectory(directory.Text("socket")));
  EXPECT_TRUE(KVTFileUtil::IsDirectory(directory.Text("block")));
}

TEST(IsDirectory, IsFalseForCharacterDevicesAndPipes) {
  const TemporaryDirectory directory;
  MakeDevice(directory.Path("character"), S_IFCHR);
  ASSERT_EQ(mkfifo(directory.Path("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(KVTFileUtil::IsDirectory(directory.Text("character")));
  EXPECT_FALSE(KVTFileUtil::IsDirectory(directory.Text("pipe")));
}

}  // namespace
