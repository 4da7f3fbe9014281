// KVTFileUtil::CopyFile, MoveFile and CopyFileCreateDir.

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include "KVTFileUtil.h"
#include "file_mode.h"
#include "hooks.h"
#include "namespaces.h"
#include "open_descriptors.h"
#include "sockets_and_devices.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

namespace fs = std::filesystem;

struct Opened {
  std::string path;
  int flags;
  mode_t mode;

  bool operator==(const Opened& other) const {
    return path == other.path && flags == other.flags && mode == other.mode;
  }
};

void PrintTo(const Opened& opened, std::ostream* os) {
  *os << opened.path << " flags " << opened.flags << " mode " << opened.mode;
}

// Calls of open(2) while the object lives.
class Opens {
 public:
  const std::vector<Opened>& All() const { return mAll; }

 private:
  std::vector<Opened> mAll;
  hooks::Scoped<decltype(hooks::onOpen)> mHook{
      hooks::onOpen, [this](const char* path, int flags, mode_t mode) {
        mAll.push_back({path, flags, mode});
        return hooks::RealOpen(path, flags, mode);
      }};
};

// "source" with content, and the path of "target", which is not there.
class Copying : public testing::Test {
 protected:
  Copying() : mSource(File("source")), mTarget(File("target")) {
    WriteFile(Path("source"), "0123456789");
  }

  std::string Path(const std::string& name) const {
    return mDirectory.Path(name);
  }
  KVTFile File(const std::string& name) const { return mDirectory.File(name); }

  const TemporaryDirectory mDirectory;
  const KVTFile mSource;
  const KVTFile mTarget;
};

using CopyFile = Copying;

TEST_F(CopyFile, CopiesTheBytes) {
  for (const std::size_t size : {0, 1, 4095, 4096, 4097, 1 << 20 | 1}) {
    std::string content(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
      content[i] = static_cast<char>(i * 7 + i / 251);
    }
    fs::remove(Path("target"));
    WriteFile(Path("source"), content);
    EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, mTarget, true));
    EXPECT_EQ(ReadFile(Path("target")), content) << size;
    EXPECT_EQ(ReadFile(Path("source")), content) << size;
  }
}

TEST_F(CopyFile, MakesAnEmptyTargetOfAnEmptySource) {
  WriteFile(Path("source"), "");
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, mTarget, false));
  EXPECT_EQ(ReadFile(Path("target")), "");
}

TEST_F(CopyFile, KeepsTheTailOfALongerTarget) {
  WriteFile(Path("target"), "abcdefghijklmno");
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, mTarget, false));
  EXPECT_EQ(ReadFile(Path("target")), "0123456789klmno");
}

TEST_F(CopyFile, KeepsTheWholeTargetUnderAnEmptySource) {
  WriteFile(Path("source"), "");
  WriteFile(Path("target"), "abc");
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, mTarget, false));
  EXPECT_EQ(ReadFile(Path("target")), "abc");
}

TEST_F(CopyFile, LeavesAnExistingTargetAloneWhenToldToFail) {
  WriteFile(Path("target"), "abc");
  const Opens opens;
  EXPECT_FALSE(KVTFileUtil::CopyFile(mSource, mTarget, true));
  EXPECT_TRUE(opens.All().empty());
  EXPECT_EQ(ReadFile(Path("target")), "abc");
}

TEST_F(CopyFile, OpensTheTargetWithoutTruncationOrExclusion) {
  const Opens opens;
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, mTarget, true));
  EXPECT_EQ(opens.All(),
            (std::vector<Opened>{{Path("source"), O_RDONLY, 0},
                                 {Path("target"), O_WRONLY | O_CREAT, 0644}}));
}

TEST_F(CopyFile, OpensNothingWhereAPathIsEmptyOrADirectory) {
  MakeSocket(Path("socket"));
  fs::create_symlink(".", Path("toDirectory"));
  const Opens opens;
  for (const char* name : {"", "socket", "toDirectory"}) {
    EXPECT_FALSE(KVTFileUtil::CopyFile(File(name), mTarget, false)) << name;
    EXPECT_FALSE(KVTFileUtil::CopyFile(mSource, File(name), false)) << name;
  }
  EXPECT_FALSE(KVTFileUtil::CopyFile(KVTFile(), mTarget, false));
  EXPECT_FALSE(KVTFileUtil::CopyFile(mSource, KVTFile(), false));
  EXPECT_TRUE(opens.All().empty());
  EXPECT_FALSE(mTarget.Exists());
}

TEST_F(CopyFile, OpensNothingWhereTheSourceIsMissing) {
  fs::create_symlink("missing", Path("dangling"));
  const Opens opens;
  EXPECT_FALSE(KVTFileUtil::CopyFile(File("missing"), mTarget, false));
  EXPECT_FALSE(KVTFileUtil::CopyFile(File("dangling"), mTarget, false));
  EXPECT_TRUE(opens.All().empty());
}

TEST_F(CopyFile, GivesANewTargetMode0644UnderTheUmask) {
  fs::permissions(Path("source"), fs::perms(0777));
  {
    const Umask mask(0);
    EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, File("open"), true));
  }
  {
    const Umask mask(077);
    EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, File("closed"), true));
  }
  EXPECT_EQ(ModeOf(Path("open")), 0644u);
  EXPECT_EQ(ModeOf(Path("closed")), 0600u);
}

TEST_F(CopyFile, KeepsTheModeOfAnExistingTarget) {
  WriteFile(Path("target"), "");
  fs::permissions(Path("target"), fs::perms(0751));
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, mTarget, false));
  EXPECT_EQ(ModeOf(Path("target")), 0751u);
}

TEST_F(CopyFile, FollowsLinksOnBothSides) {
  WriteFile(Path("old"), "");
  fs::create_symlink("source", Path("from"));
  fs::create_symlink("old", Path("to"));
  EXPECT_TRUE(KVTFileUtil::CopyFile(File("from"), File("to"), false));
  EXPECT_EQ(ReadFile(Path("old")), "0123456789");
  EXPECT_TRUE(fs::is_symlink(Path("to")));
}

TEST_F(CopyFile, MakesTheTargetOfADanglingLink) {
  fs::create_symlink("new", Path("dangling"));
  // The link's target does not exist, so that nothing is in the way.
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, File("dangling"), true));
  EXPECT_EQ(ReadFile(Path("new")), "0123456789");
}

TEST_F(CopyFile, OntoItselfChangesNothing) {
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, mSource, false));
  EXPECT_EQ(ReadFile(Path("source")), "0123456789");
}

TEST_F(CopyFile, CallsSendfileOnceWithTheSizeOfTheSource) {
  // Nothing is moved: 3 GiB of a file without blocks.
  ASSERT_EQ(truncate(Path("source").c_str(), 0xC0000000), 0);
  std::vector<std::size_t> counts;
  hooks::Scoped hook(
      hooks::onSendfile,
      [&](int to, int from, off_t* offset, std::size_t count) -> ssize_t {
        EXPECT_GE(to, 0);
        EXPECT_GE(from, 0);
        EXPECT_EQ(offset, nullptr);
        counts.push_back(count);
        return 0x7FFFF000;  // what the kernel ends one call at
      });
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, mTarget, true));
  EXPECT_EQ(counts, std::vector<std::size_t>{0xC0000000});
}

TEST_F(CopyFile, CountsAShortTransferAsDone) {
  int calls = 0;
  hooks::Scoped hook(hooks::onSendfile,
                     [&calls](int to, int from, off_t* offset, std::size_t) {
                       ++calls;
                       return hooks::RealSendfile(to, from, offset, 4);
                     });
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, mTarget, true));
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(ReadFile(Path("target")), "0123");
}

TEST_F(CopyFile, IsTrueWhenNothingWasTransferred) {
  hooks::Scoped hook(hooks::onSendfile,
                     [](int, int, off_t*, std::size_t) { return 0; });
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, mTarget, true));
  EXPECT_EQ(ReadFile(Path("target")), "");
}

TEST_F(CopyFile, LeavesTheTargetOfAFailedTransfer) {
  hooks::Scoped hook(
      hooks::onSendfile,
      [](int to, int from, off_t* offset, std::size_t) -> ssize_t {
        hooks::RealSendfile(to, from, offset, 3);
        errno = EIO;
        return -1;
      });
  EXPECT_FALSE(KVTFileUtil::CopyFile(mSource, mTarget, true));
  EXPECT_EQ(ReadFile(Path("target")), "012");
  EXPECT_EQ(ReadFile(Path("source")), "0123456789");
}

TEST_F(CopyFile, FailsWhereTheTargetCannotBeOpened) {
  EXPECT_FALSE(KVTFileUtil::CopyFile(mSource, File("missing/target"), false));
  EXPECT_FALSE(KVTFileUtil::CopyFile(mSource, File("source/target"), false));
  // Even though there would be nothing to transfer.
  WriteFile(Path("source"), "");
  EXPECT_FALSE(KVTFileUtil::CopyFile(mSource, File("missing/target"), false));
}

TEST_F(CopyFile, LeavesANewTargetWhereTheSourceCannotBeOpened) {
  hooks::Scoped hook(hooks::onOpen,
                     [this](const char* path, int flags, mode_t mode) {
                       if (path == Path("source")) {
                         errno = EACCES;
                         return -1;
                       }
                       return hooks::RealOpen(path, flags, mode);
                     });
  EXPECT_FALSE(KVTFileUtil::CopyFile(mSource, mTarget, true));
  EXPECT_EQ(ReadFile(Path("target")), "");
}

TEST_F(CopyFile, ClosesBothFiles) {
  const std::size_t before = OpenDescriptors();
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, mTarget, true));
  EXPECT_FALSE(KVTFileUtil::CopyFile(mSource, File("no/target"), true));
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(CopyFile, LeavesNothingOpenWhereMemoryRunsOut) {
  const std::size_t before = OpenDescriptors();
  bool copied = false;
  for (std::size_t granted = 0; !copied; ++granted) {
    ASSERT_LT(granted, 1000u);
    try {
      const hooks::FailingAllocator allocator(granted);
      copied = KVTFileUtil::CopyFile(mSource, mTarget, false);
    } catch (const std::bad_alloc&) {
    }
    EXPECT_EQ(OpenDescriptors(), before) << granted;
  }
  EXPECT_EQ(ReadFile(Path("target")), "0123456789");
}

// A target folder on a file system of its own with room for 16 pages.
class CopyFileToASmallDisk : public Copying {
 protected:
  CopyFileToASmallDisk() {
    EnterPrivateMounts();
    fs::create_directory(Path("disk"));
    CoverWithEmptyDirectory(Path("disk"), 16 * 4096);
  }
  ~CopyFileToASmallDisk() override { Uncover(Path("disk")); }
};

TEST_F(CopyFileToASmallDisk, CutsWhatHasNoRoomAndIsTrue) {
  const std::string content(1 << 20, 'x');
  WriteFile(Path("source"), content);
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, File("disk/target"), true));
  EXPECT_EQ(ReadFile(Path("disk/target")), std::string(16 * 4096, 'x'));
}

TEST_F(CopyFileToASmallDisk, FailsWhereThereIsNoRoomAndLeavesAnEmptyTarget) {
  WriteFile(Path("disk/filler"), std::string(16 * 4096, 'x'));
  EXPECT_FALSE(KVTFileUtil::CopyFile(mSource, File("disk/target"), true));
  EXPECT_EQ(ReadFile(Path("disk/target")), "");
  // An empty source needs none.
  WriteFile(Path("source"), "");
  EXPECT_TRUE(KVTFileUtil::CopyFile(mSource, File("disk/empty"), true));
}

// --- MoveFile

using MoveFile = Copying;

TEST_F(MoveFile, RemovesTheSource) {
  EXPECT_TRUE(KVTFileUtil::MoveFile(mSource, mTarget, true));
  EXPECT_EQ(ReadFile(Path("target")), "0123456789");
  EXPECT_FALSE(mSource.Exists());
}

TEST_F(MoveFile, CopiesOverALongerTargetAsCopyFileDoes) {
  WriteFile(Path("target"), "abcdefghijklmno");
  EXPECT_TRUE(KVTFileUtil::MoveFile(mSource, mTarget, false));
  EXPECT_EQ(ReadFile(Path("target")), "0123456789klmno");
  EXPECT_FALSE(mSource.Exists());
}

TEST_F(MoveFile, KeepsTheSourceWhereTheCopyFails) {
  WriteFile(Path("target"), "abc");
  EXPECT_FALSE(KVTFileUtil::MoveFile(mSource, mTarget, true));
  EXPECT_FALSE(KVTFileUtil::MoveFile(mSource, File("no/target"), false));
  EXPECT_FALSE(KVTFileUtil::MoveFile(mSource, KVTFile(), false));
  EXPECT_EQ(ReadFile(Path("source")), "0123456789");
  EXPECT_EQ(ReadFile(Path("target")), "abc");
}

TEST_F(MoveFile, IsFalseWithBothFilesWhereTheSourceCannotBeRemoved) {
  hooks::Scoped hook(hooks::onRemove, [](const char*) {
    errno = EACCES;
    return -1;
  });
  EXPECT_FALSE(KVTFileUtil::MoveFile(mSource, mTarget, true));
  EXPECT_EQ(ReadFile(Path("source")), "0123456789");
  EXPECT_EQ(ReadFile(Path("target")), "0123456789");
}

TEST_F(MoveFile, OntoItselfRemovesTheFile) {
  EXPECT_TRUE(KVTFileUtil::MoveFile(mSource, mSource, false));
  EXPECT_FALSE(mSource.Exists());
}

TEST_F(MoveFile, WorksAcrossFileSystems) {
  EnterPrivateMounts();
  fs::create_directory(Path("disk"));
  CoverWithEmptyDirectory(Path("disk"));
  EXPECT_TRUE(KVTFileUtil::MoveFile(mSource, File("disk/target"), true));
  EXPECT_EQ(ReadFile(Path("disk/target")), "0123456789");
  EXPECT_FALSE(mSource.Exists());
  Uncover(Path("disk"));
}

// --- CopyFileCreateDir

using CopyFileCreateDir = Copying;

TEST_F(CopyFileCreateDir, MakesTheDirectoryAndItsParents) {
  EXPECT_TRUE(
      KVTFileUtil::CopyFileCreateDir(mSource, File("a/b/target"), true));
  EXPECT_EQ(ReadFile(Path("a/b/target")), "0123456789");
}

TEST_F(CopyFileCreateDir, CopiesIntoAnExistingDirectory) {
  WriteFile(Path("target"), "abc");
  EXPECT_FALSE(KVTFileUtil::CopyFileCreateDir(mSource, mTarget, true));
  EXPECT_EQ(ReadFile(Path("target")), "abc");
  EXPECT_TRUE(KVTFileUtil::CopyFileCreateDir(mSource, mTarget, false));
  EXPECT_EQ(ReadFile(Path("target")), "0123456789");
}

TEST_F(CopyFileCreateDir, MakesNothingWhereTheSourceIsMissing) {
  EXPECT_FALSE(
      KVTFileUtil::CopyFileCreateDir(File("no"), File("a/target"), false));
  EXPECT_FALSE(KVTFileUtil::CopyFileCreateDir(KVTFile(), File("a/t"), false));
  EXPECT_FALSE(File("a").Exists());
}

TEST_F(CopyFileCreateDir, LeavesTheDirectoryWhereTheSourceIsOne) {
  EXPECT_FALSE(
      KVTFileUtil::CopyFileCreateDir(File(""), File("a/target"), false));
  EXPECT_TRUE(fs::is_directory(Path("a")));
  EXPECT_FALSE(File("a/target").Exists());
}

TEST_F(CopyFileCreateDir, FailsWhereTheDirectoryCannotBeMade) {
  EXPECT_FALSE(
      KVTFileUtil::CopyFileCreateDir(mSource, File("source/a/target"), false));
  EXPECT_FALSE(KVTFileUtil::CopyFileCreateDir(mSource, KVTFile(), false));
}

// The directory of /no-such is the empty text.
TEST_F(CopyFileCreateDir, AsksForNothingInTheRoot) {
  std::vector<std::string> asked;
  const auto note = [&asked](const char* path, auto...) {
    asked.push_back(path);
    return -1;
  };
  const hooks::Scoped mkdir(hooks::onMkdir, note);
  const hooks::Scoped open(hooks::onOpen, note);
  EXPECT_FALSE(
      KVTFileUtil::CopyFileCreateDir(mSource, KVTFile("/no-such"), false));
  EXPECT_EQ(asked, std::vector<std::string>());
}

TEST_F(CopyFileCreateDir, TakesABareNameForItsOwnDirectory) {
  const WorkingDirectory inside(mDirectory.Path());
  EXPECT_FALSE(
      KVTFileUtil::CopyFileCreateDir(mSource, KVTFile("target"), false));
  EXPECT_TRUE(fs::is_directory(Path("target")));
  WriteFile("old", "abc");
  EXPECT_FALSE(KVTFileUtil::CopyFileCreateDir(mSource, KVTFile("old"), false));
  EXPECT_EQ(ReadFile("old"), "abc");
}

}  // namespace
