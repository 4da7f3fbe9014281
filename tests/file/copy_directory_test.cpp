#include <errno.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "KVTFileUtil.h"
#include "hooks.h"
#include "open_descriptors.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

// All below `path`, sorted, directories with a separator behind.
Texts Tree(const std::string& path) {
  Texts tree;
  for (const auto& entry : fs::recursive_directory_iterator(path)) {
    tree.push_back(entry.path().lexically_relative(path).string() +
                   (entry.is_directory() ? "/" : ""));
  }
  std::sort(tree.begin(), tree.end());
  return tree;
}

// A tree "s" and an empty directory "t".
class CopyDirectory : public testing::Test {
 protected:
  CopyDirectory() {
    fs::create_directories(Path("s/sub/deep"));
    fs::create_directory(Path("s/.hiddenSub"));
    fs::create_directory(Path("t"));
    WriteFile(Path("s/a"), "A");
    WriteFile(Path("s/b c"), "BC");
    WriteFile(Path("s/.hidden"), "H");
    WriteFile(Path("s/sub/d"), "D");
    WriteFile(Path("s/sub/.e"), "E");
  }

  std::string Path(const std::string& name) const {
    return mDirectory.Path(name);
  }
  KVTFile File(const std::string& name) const { return mDirectory.File(name); }

  bool Copy(const std::string& source, const std::string& target,
            bool recursive, bool failIfExists = false) const {
    return KVTFileUtil::CopyDirectory(File(source), File(target), recursive,
                                      failIfExists);
  }

 private:
  const TemporaryDirectory mDirectory;
};

TEST_F(CopyDirectory, DoesNothingWhereThePreconditionsDoNotHold) {
  WriteFile(Path("f"), "");
  const Texts before = Tree(Path(""));
  const hooks::RecordedCommands commands;
  for (const bool recursive : {false, true}) {
    SCOPED_TRACE(recursive);
    for (const bool failIfExists : {false, true}) {
      EXPECT_FALSE(KVTFileUtil::CopyDirectory(KVTFile(), File("t"), recursive,
                                              failIfExists));
      EXPECT_FALSE(KVTFileUtil::CopyDirectory(File("s"), KVTFile(), recursive,
                                              failIfExists));
      EXPECT_FALSE(Copy("missing", "t", recursive, failIfExists));
      EXPECT_FALSE(Copy("s", "missing", recursive, failIfExists));
      EXPECT_FALSE(Copy("f", "t", recursive, failIfExists));
      EXPECT_FALSE(Copy("s", "f", recursive, failIfExists));
      EXPECT_FALSE(Copy("s", "s", recursive, failIfExists));
    }
    EXPECT_FALSE(Copy("s", "t", recursive, true));
  }
  EXPECT_TRUE(commands.All().empty());
  EXPECT_EQ(Tree(Path("")), before);
}

TEST_F(CopyDirectory, TakesAnotherTextForAnotherDirectory) {
  const hooks::RecordedCommands commands;
  EXPECT_TRUE(Copy("s", "s/", true));
  EXPECT_EQ(commands.All(), Texts{"cp -R " + Path("s") + "/* " + Path("s/")});
}

// --- With subdirectories

TEST_F(CopyDirectory, BuildsTheShellsCommandWithoutQuotes) {
  fs::create_directory(Path("a b;c"));
  const hooks::RecordedCommands commands;
  EXPECT_TRUE(Copy("a b;c", "t", true));
  EXPECT_TRUE(Copy("s", "a b;c", true));
  EXPECT_EQ(commands.All(),
            (Texts{"cp -R " + Path("a b;c") + "/* " + Path("t"),
                   "cp -R " + Path("s") + "/* " + Path("a b;c")}));
}

TEST_F(CopyDirectory, CopiesAllButTheHiddenAtTheTop) {
  EXPECT_TRUE(Copy("s", "t", true));
  EXPECT_EQ(Tree(Path("t")),
            (Texts{"a", "b c", "sub/", "sub/.e", "sub/d", "sub/deep/"}));
  EXPECT_EQ(ReadFile(Path("t/sub/d")), "D");
}

TEST_F(CopyDirectory, IsTrueWhereTheShellFindsNothingToCopy) {
  fs::create_directory(Path("empty"));
  testing::internal::CaptureStderr();
  EXPECT_TRUE(Copy("empty", "t", true));
  testing::internal::GetCapturedStderr();  // cp complains
  EXPECT_EQ(Tree(Path("t")), Texts());
}

// --- The first level alone

TEST_F(CopyDirectory, CopiesFilesOfTheFirstLevelAndMakesEmptyDirectories) {
  EXPECT_TRUE(Copy("s", "t", false));
  EXPECT_EQ(Tree(Path("t")),
            (Texts{".hidden", ".hiddenSub/", "a", "b c", "sub/"}));
  EXPECT_EQ(ReadFile(Path("t/a")), "A");
  EXPECT_EQ(ReadFile(Path("t/b c")), "BC");
  EXPECT_EQ(ReadFile(Path("t/.hidden")), "H");
}

TEST_F(CopyDirectory, QuotesThePathsOfDirectories) {
  fs::create_directory(Path("one"));
  fs::create_directory(Path("one/a b"));
  const hooks::RecordedCommands commands;
  EXPECT_TRUE(Copy("one", "t", false));
  EXPECT_EQ(commands.All(), Texts{"mkdir -p \"" + Path("t/a b") + "\""});
}

TEST_F(CopyDirectory, TakesNamesAndPathsOfAnyText) {
  fs::create_directories(Path("s\xC3\xA4/sub\xE2\x82\xAC"));
  fs::create_directory(Path("t\xC3\xB6"));
  WriteFile(Path("s\xC3\xA4/f\xC3\xBC"), "F");
  EXPECT_TRUE(Copy("s\xC3\xA4", "t\xC3\xB6", false));
  EXPECT_EQ(Tree(Path("t\xC3\xB6")), (Texts{"f\xC3\xBC", "sub\xE2\x82\xAC/"}));
  EXPECT_EQ(ReadFile(Path("t\xC3\xB6/f\xC3\xBC")), "F");
}

// The shell gets a name as it is; the path of a file to be copied is decoded.
TEST_F(CopyDirectory, LeavesOutFilesWhoseNamesDoNotDecode) {
  fs::create_directories(Path("names/d\xFF"));
  WriteFile(Path("names/f\xFF"), "F");
  EXPECT_TRUE(Copy("names", "t", false));
  EXPECT_EQ(Tree(Path("t")), Texts{"d\xFF/"});
}

TEST_F(CopyDirectory, WritesOverExistingFilesAsCopyFileDoes) {
  WriteFile(Path("t/a"), "old");
  EXPECT_TRUE(Copy("s", "t", false));
  EXPECT_EQ(ReadFile(Path("t/a")), "Ald");
}

TEST_F(CopyDirectory, GoesOnWhereOneEntryCannotBeCopied) {
  fs::create_directory(Path("t/a"));
  WriteFile(Path("t/sub"), "in the way");
  testing::internal::CaptureStderr();
  EXPECT_TRUE(Copy("s", "t", false));
  testing::internal::GetCapturedStderr();  // mkdir complains
  EXPECT_EQ(Tree(Path("t")),
            (Texts{".hidden", ".hiddenSub/", "a/", "b c", "sub"}));
  EXPECT_EQ(ReadFile(Path("t/sub")), "in the way");
}

TEST_F(CopyDirectory, FollowsLinksToFilesAndLeavesOutThoseToDirectories) {
  fs::create_directory(Path("links"));
  fs::create_symlink("../s/a", Path("links/toFile"));
  fs::create_symlink("../s", Path("links/toDirectory"));
  fs::create_symlink("missing", Path("links/dangling"));
  EXPECT_TRUE(Copy("links", "t", false));
  EXPECT_EQ(Tree(Path("t")), Texts{"toFile"});
  EXPECT_FALSE(fs::is_symlink(Path("t/toFile")));
}

TEST_F(CopyDirectory, LeavesOutADirectoryOfUnknownType) {
  hooks::Scoped hook(hooks::onReaddir, [](DIR* directory) {
    dirent* const entry = hooks::RealReaddir(directory);
    if (entry != nullptr) entry->d_type = DT_UNKNOWN;
    return entry;
  });
  EXPECT_TRUE(Copy("s", "t", false));
  EXPECT_EQ(Tree(Path("t")), (Texts{".hidden", "a", "b c"}));
}

TEST_F(CopyDirectory, IsTrueWhereTheSourceCannotBeOpened) {
  hooks::Scoped hook(hooks::onOpendir, [](const char*) -> DIR* {
    errno = EACCES;
    return nullptr;
  });
  EXPECT_TRUE(Copy("s", "t", false));
  EXPECT_TRUE(fs::is_empty(Path("t")));
}

TEST_F(CopyDirectory, ClosesTheDirectory) {
  const std::size_t before = OpenDescriptors();
  EXPECT_TRUE(Copy("s", "t", false));
  EXPECT_EQ(OpenDescriptors(), before);
}

}  // namespace
