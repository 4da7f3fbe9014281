#include <errno.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "KVTFileUtil.h"
#include "allowed_leaks.h"
#include "hooks.h"
#include "open_descriptors.h"
#include "sockets_and_devices.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

namespace fs = std::filesystem;

// DeleteDirectory keeps the directory it has read open: the memory of opendir
// is lost on purpose.
bool DeleteDirectory(const KVTFile& directory, bool deleteContents) {
  const AllowedLeaks handle;
  return KVTFileUtil::DeleteDirectory(directory, deleteContents);
}

// A directory below `parent` whose path has `length` bytes in all.
std::string MakeDirectoryOfLength(const std::string& parent,
                                  std::size_t length) {
  std::string path = parent;
  while (path.size() < length) {
    // Never one unit short, which a separator and a name would not fill.
    std::size_t name = std::min<std::size_t>(length - path.size() - 1, 100);
    if (length - path.size() - 1 - name == 1) --name;
    path += "/" + std::string(name, 'd');
    fs::create_directory(path);
  }
  return path;
}

TEST(DeleteDirectory, ReturnsFalseWhenAnEmptyDirectoryIsGone) {
  const TemporaryDirectory directory;
  for (const bool deleteContents : {false, true}) {
    fs::create_directory(directory.Path("d"));
    EXPECT_FALSE(DeleteDirectory(directory.File("d"), deleteContents));
    EXPECT_FALSE(fs::exists(directory.Path("d")));
  }
}

TEST(DeleteDirectory, ReturnsTrueForADirectoryWithContentsThatStays) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  EXPECT_TRUE(DeleteDirectory(directory.File(), false));
  EXPECT_TRUE(fs::exists(directory.Path("f")));
}

TEST(DeleteDirectory, RemovesFilesLinksAndEmptyDirectoriesWithIt) {
  const TemporaryDirectory directory;
  fs::create_directories(directory.Path("d/empty"));
  WriteFile(directory.Path("d/f"), "x");
  WriteFile(directory.Path("d/.hidden"), "");
  WriteFile(directory.Path("d/a b;c%s"), "");
  WriteFile(directory.Path("outside"), "");
  fs::create_symlink("../outside", directory.Path("d/link"));
  fs::create_symlink("missing", directory.Path("d/dangling"));
  MakeSocket(directory.Path("d/socket"));
  EXPECT_FALSE(DeleteDirectory(directory.File("d"), true));
  EXPECT_FALSE(fs::exists(directory.Path("d")));
  EXPECT_TRUE(fs::exists(directory.Path("outside")));
}

TEST(DeleteDirectory, ReachesOneLevelOnly) {
  const TemporaryDirectory directory;
  fs::create_directories(directory.Path("d/sub"));
  WriteFile(directory.Path("d/sub/kept"), "");
  WriteFile(directory.Path("d/f"), "");
  EXPECT_TRUE(DeleteDirectory(directory.File("d"), true));
  EXPECT_TRUE(fs::exists(directory.Path("d/sub/kept")));
  EXPECT_FALSE(fs::exists(directory.Path("d/f")));
}

TEST(DeleteDirectory, RemovesEachEntryInOrderAndThenTheDirectory) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("b"), "");
  WriteFile(directory.Path("a"), "");
  std::vector<std::string> expected;
  {
    DIR* const reader = opendir(directory.Path().c_str());
    while (const dirent* entry = readdir(reader)) {
      expected.push_back(directory.Path(entry->d_name));
    }
    closedir(reader);
  }
  ASSERT_EQ(expected.size(), 4u);  // with . and ..
  expected.push_back(directory.Path());

  std::vector<std::string> removed;
  hooks::Scoped hook(hooks::onRemove, [&removed](const char* path) {
    removed.push_back(path);
    return -1;
  });
  EXPECT_TRUE(DeleteDirectory(directory.File(), true));
  EXPECT_EQ(removed, expected);
}

TEST(DeleteDirectory, GoesByTheRemovalOfTheDirectoryAlone) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  hooks::Scoped hook(hooks::onRemove, [&directory](const char* path) {
    return path == directory.Path() ? 0 : -1;
  });
  EXPECT_FALSE(DeleteDirectory(directory.File(), true));
}

TEST(DeleteDirectory, RemovesADirectoryThatCannotBeOpened) {
  const TemporaryDirectory directory;
  fs::create_directory(directory.Path("d"));
  hooks::Scoped hook(hooks::onOpendir, [](const char*) -> DIR* {
    errno = EACCES;
    return nullptr;
  });
  EXPECT_FALSE(DeleteDirectory(directory.File("d"), true));
  EXPECT_FALSE(fs::exists(directory.Path("d")));
}

TEST(DeleteDirectory, ReturnsTrueForWhatIsNoDirectory) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  for (const bool deleteContents : {false, true}) {
    EXPECT_TRUE(DeleteDirectory(KVTFile(), deleteContents));
    EXPECT_TRUE(DeleteDirectory(directory.File("f"), deleteContents));
    EXPECT_TRUE(DeleteDirectory(directory.File("missing"), deleteContents));
  }
  EXPECT_TRUE(fs::exists(directory.Path("f")));
}

TEST(DeleteDirectory, TakesASocketForADirectory) {
  const TemporaryDirectory directory;
  MakeSocket(directory.Path("socket"));
  EXPECT_FALSE(DeleteDirectory(directory.File("socket"), true));
  EXPECT_FALSE(fs::exists(directory.Path("socket")));
}

TEST(DeleteDirectory, ActsOn512UnitsAndTouchesNothingOn513) {
  const TemporaryDirectory directory;
  const std::string path = MakeDirectoryOfLength(directory.Path(), 512);
  ASSERT_EQ(path.size(), 512u);
  WriteFile(path + "/f", "");

  const KVTFile withSeparator(FromUtf8(path + "/"));
  EXPECT_TRUE(DeleteDirectory(withSeparator, true));
  EXPECT_TRUE(fs::exists(path + "/f"));

  EXPECT_FALSE(DeleteDirectory(KVTFile(FromUtf8(path)), true));
  EXPECT_FALSE(fs::exists(path));
}

TEST(DeleteDirectory, RefusesARealDirectoryOf513Units) {
  const TemporaryDirectory directory;
  const std::string path = MakeDirectoryOfLength(directory.Path(), 513);
  ASSERT_EQ(path.size(), 513u);
  for (const bool deleteContents : {false, true}) {
    EXPECT_TRUE(DeleteDirectory(KVTFile(FromUtf8(path)), deleteContents));
  }
  EXPECT_TRUE(fs::exists(path));
}

TEST(DeleteDirectory, CutsTheNamesOfEntriesAfter1023Bytes) {
  // 512 units of three bytes each do not fit with an entry behind them.
  const TemporaryDirectory directory;
  std::string path = directory.Path();
  std::size_t units = path.size();
  while (units < 512) {
    const std::size_t count = std::min<std::size_t>(511 - units, 80);
    path += "/";
    for (std::size_t i = 0; i < count; ++i) path += "\xE2\x82\xAC";
    units += 1 + count;
    fs::create_directory(path);
  }
  ASSERT_EQ(FromUtf8(path).size(), 512u);
  ASSERT_GT(path.size(), 1024u);
  WriteFile(path + "/f", "");

  std::vector<std::string> removed;
  {
    hooks::Scoped hook(hooks::onRemove, [&removed](const char* name) {
      removed.push_back(name);
      return hooks::RealRemove(name);
    });
    EXPECT_TRUE(DeleteDirectory(KVTFile(FromUtf8(path)), true));
  }
  ASSERT_EQ(removed.size(), 4u);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(removed[i], path.substr(0, 1023));
  EXPECT_EQ(removed[3], path);
  EXPECT_TRUE(fs::exists(path + "/f"));
}

TEST(DeleteDirectory, LeavesOneDescriptorOpenForEachDeletionOfContents) {
  const TemporaryDirectory directory;
  const std::size_t before = OpenDescriptors();
  for (std::size_t calls = 1; calls <= 5; ++calls) {
    fs::create_directory(directory.Path("d"));
    EXPECT_FALSE(DeleteDirectory(directory.File("d"), true));
    EXPECT_EQ(OpenDescriptors(), before + calls);
  }
}

TEST(DeleteDirectory, LeavesNoDescriptorOpenWhereContentsStay) {
  const TemporaryDirectory directory;
  const std::size_t before = OpenDescriptors();
  fs::create_directory(directory.Path("d"));
  EXPECT_FALSE(DeleteDirectory(directory.File("d"), false));
  EXPECT_TRUE(DeleteDirectory(directory.File("missing"), true));
  EXPECT_EQ(OpenDescriptors(), before);
}

}  // namespace
