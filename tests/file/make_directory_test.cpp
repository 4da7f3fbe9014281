// KVTFile::MakeDirectory and CreateFile: which directories they ask mkdir(2)
// for, in which words, and what stands on the disk afterwards.

#include <errno.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "KVTFile.h"
#include "file_mode.h"
#include "hooks.h"
#include "namespaces.h"
#include "open_descriptors.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

// The directories asked for while the object lives; they are made.
class Requests {
 public:
  const Texts& Paths() const { return mPaths; }
  const std::vector<mode_t>& Modes() const { return mModes; }

 private:
  Texts mPaths;
  std::vector<mode_t> mModes;
  hooks::Scoped<decltype(hooks::onMkdir)> mHook{
      hooks::onMkdir, [this](const char* path, mode_t mode) {
        mPaths.push_back(path);
        mModes.push_back(mode);
        return hooks::RealMkdir(path, mode);
      }};
};

// All below the working directory, sorted.
Texts Tree() {
  Texts tree;
  for (const auto& entry : fs::recursive_directory_iterator(".")) {
    tree.push_back(entry.path().string().substr(2));
  }
  std::sort(tree.begin(), tree.end());
  return tree;
}

// A new working directory with the directory "have" and the file "file".
class MakingDirectories : public testing::Test {
 protected:
  MakingDirectories() {
    fs::create_directory("have");
    WriteFile("file", "content");
  }

  const TemporaryDirectory mDirectory;
  const WorkingDirectory mInside{mDirectory.Path()};
};

// --- The walk

struct WalkCase {
  const char* name;
  const char* path;
  Texts asked;
  bool result;
  Texts made;
};

const WalkCase kWalkCases[] = {
    {"Bare", "a", {"a"}, true, {"a"}},
    {"Trailing", "a/", {"a/"}, true, {"a"}},
    {"Two", "a/b", {"a/", "a//b"}, true, {"a", "a/b"}},
    {"Three", "a/b/c", {"a/", "a//b/", "a//b//c"}, true, {"a", "a/b", "a/b/c"}},
    {"ThreeTrailing",
     "a/b/c/",
     {"a/", "a//b/", "a//b//c/"},
     true,
     {"a", "a/b", "a/b/c"}},
    {"DoubledSeparator", "a//b", {"a/", "a////b"}, true, {"a", "a/b"}},
    {"DoubledTrailing", "a//", {"a/"}, true, {"a"}},
    {"BelowAnExisting", "have/a", {"have//a"}, true, {"have/a"}},
    {"Dots", "./a/../b", {".//a/", ".//a//..//b"}, true, {"a", "b"}},
    {"Existing", "have", {}, false, {}},
    {"ExistingTrailing", "have/", {}, false, {}},
    {"ExistingWithABackslash", "have\\", {}, false, {}},
    {"ThroughAFile", "file/a", {"file/"}, false, {}},
    {"OntoAFile", "file", {"file"}, false, {}},
    {"FileLater", "have/../file/a/b", {"have//..//file/"}, false, {}},
    // Two equal components at the end.
    {"EqualAtTheEnd", "p/x/x/", {"p/", "p//x/"}, true, {"p", "p/x"}},
    {"EqualWithoutSeparator",
     "p/x/x",
     {"p/", "p//x/", "p//x//x"},
     true,
     {"p", "p/x", "p/x/x"}},
    {"EqualInTheMiddle",
     "x/x/y",
     {"x/", "x//x/", "x//x//y"},
     true,
     {"x", "x/x", "x/x/y"}},
    {"EqualAlone", "x/x/", {"x/"}, true, {"x"}},
    {"ThreeEqual", "x/x/x/", {"x/", "x//x/"}, true, {"x", "x/x"}},
    // Colons
    {"DriveAlone", "C:", {"C:"}, true, {"C:"}},
    {"DrivePrefixMissing", "C:/a", {"C://a"}, false, {}},
    {"DriveTrailing", "C:/", {"C://"}, true, {"C:"}},
    {"DriveTwoTrailing", "C://", {"C:///"}, true, {"C:"}},
    {"ColonComponent", "a/b:/c", {"a/", "a//b://c"}, false, {"a"}},
    {"ColonBeforeTheLastUnit", "x:y", {}, true, {}},
    {"ColonBeforeTheLastUnitLater", "a/x:y", {"a/"}, true, {"a"}},
    {"ColonBeforeTwoUnits", "x:yz", {"x:yz"}, true, {"x:yz"}},
    {"ColonFirst", ":a", {}, true, {}},
    {"ColonAlone", ":", {":"}, true, {":"}},
};

void PrintTo(const WalkCase& c, std::ostream* os) { *os << c.name; }

class WalkTable : public MakingDirectories,
                  public testing::WithParamInterface<WalkCase> {};

TEST_P(WalkTable, AsksForEachMissingDirectory) {
  const Requests requests;
  EXPECT_EQ(KVTFile(FromUtf8(GetParam().path)).MakeDirectory(true, nullptr),
            GetParam().result);
  EXPECT_EQ(requests.Paths(), GetParam().asked);
  Texts expected = GetParam().made;
  expected.insert(expected.end(), {"file", "have"});
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(Tree(), expected);
}

INSTANTIATE_TEST_SUITE_P(, WalkTable, testing::ValuesIn(kWalkCases),
                         [](const auto& test) { return test.param.name; });

TEST_F(MakingDirectories, LeavesADrivePrefixAloneAndGoesOnBelowIt) {
  fs::create_directory("C:");
  Texts looks;
  const Requests requests;
  hooks::Scoped hook(hooks::onStat,
                     [&looks](const char* path, struct stat* status) {
                       looks.push_back(path);
                       return hooks::RealStat(path, status);
                     });
  EXPECT_TRUE(KVTFile("C:/a").MakeDirectory(true, nullptr));
  EXPECT_EQ(requests.Paths(), Texts{"C://a"});
  EXPECT_EQ(looks, (Texts{"C:/a", "C://a"}));
}

TEST(AbsoluteWalk, StartsAtTheRoot) {
  std::set<std::string> made;
  Texts asked;
  hooks::Scoped stat(hooks::onStat, [&](const char* path, struct stat* status) {
    status->st_mode = S_IFDIR;
    return std::string(path) == "/" || made.count(path) != 0 ? 0 : -1;
  });
  hooks::Scoped mkdir(hooks::onMkdir, [&](const char* path, mode_t) {
    asked.push_back(path);
    made.insert(path);
    return 0;
  });
  EXPECT_TRUE(KVTFile("/a/b").MakeDirectory(true, nullptr));
  EXPECT_EQ(asked, (Texts{"//a/", "//a//b"}));
}

TEST(AbsoluteWalk, AsksForTheRootWhereItIsNoDirectory) {
  Texts asked;
  hooks::Scoped stat(hooks::onStat,
                     [](const char*, struct stat*) { return -1; });
  hooks::Scoped mkdir(hooks::onMkdir, [&](const char* path, mode_t) {
    asked.push_back(path);
    return 0;
  });
  EXPECT_TRUE(KVTFile("/a/b").MakeDirectory(true, nullptr));
  EXPECT_EQ(asked, (Texts{"/", "//a/", "//a//b"}));
}

TEST(AbsoluteWalk, PassesOverAColonAndFailsBehindIt) {
  Texts asked;
  hooks::Scoped mkdir(hooks::onMkdir, [&](const char* path, mode_t) {
    asked.push_back(path);
    errno = ENOENT;
    return -1;
  });
  EXPECT_FALSE(KVTFile("/no-such:/b").MakeDirectory(true, nullptr));
  EXPECT_EQ(asked, Texts{"//no-such://b"});
}

TEST(AbsoluteWalk, MakesADirectoryInTheRootWhichTheOtherWayRefuses) {
  Texts asked;
  hooks::Scoped mkdir(hooks::onMkdir, [&](const char* path, mode_t) {
    asked.push_back(path);
    return 0;
  });
  EXPECT_FALSE(KVTFile("/no-such-name").MakeDirectory(false, nullptr));
  EXPECT_EQ(asked, Texts());
  EXPECT_TRUE(KVTFile("/no-such-name").MakeDirectory(true, nullptr));
  EXPECT_EQ(asked, Texts{"//no-such-name"});
}

// --- Every short path

// The pieces of a path, each but the last with its separator.
Texts Pieces(const std::string& path) {
  Texts pieces(1);
  for (const char c : path) {
    pieces.back() += c;
    if (c == '/') pieces.emplace_back();
  }
  return pieces;
}

bool IsDirectoryOnDisk(const std::string& path) {
  struct stat status;
  return !path.empty() && hooks::RealStat(path.c_str(), &status) == 0 &&
         S_ISDIR(status.st_mode);
}

// What the walk asks for and answers, from the list of pieces instead of texts
// that shrink and grow; makes the directories as it goes.
bool WalkModel(const std::string& path, Texts& asked) {
  const Texts pieces = Pieces(path);
  if (IsDirectoryOnDisk(path)) return false;
  std::string built;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    std::string rest;
    for (std::size_t j = i; j < pieces.size(); ++j) rest += pieces[j];
    if (i > 0 && pieces[i - 1] == rest) return true;
    built += (i == 0 ? "" : "/") + pieces[i];
    const bool passedOver = built.size() > 1 && *(built.end() - 2) == ':';
    if (passedOver || IsDirectoryOnDisk(built)) continue;
    asked.push_back(built);
    if (hooks::RealMkdir(built.c_str(), 0775) != 0) return false;
  }
  return true;
}

void ClearWorkingDirectory() {
  for (const auto& entry : fs::directory_iterator(".")) fs::remove_all(entry);
}

void CompareEveryPathWithTheModel() {
  for (const std::string& path : AllTexts("ax/:", 6)) {
    // Only below the working directory.
    if (path.empty() || path[0] == '/') continue;
    ClearWorkingDirectory();
    Texts expected;
    const bool expectedResult = WalkModel(path, expected);
    const Texts expectedTree = Tree();
    ClearWorkingDirectory();
    const Requests requests;
    EXPECT_EQ(KVTFile(FromUtf8(path)).MakeDirectory(true, nullptr),
              expectedResult)
        << path;
    EXPECT_EQ(requests.Paths(), expected) << path;
    EXPECT_EQ(Tree(), expectedTree) << path;
    if (testing::Test::HasFailure()) return;
  }
}

TEST(MakeDirectory, AgreesWithTheModelOnEveryShortPath) {
  // In memory, for the sake of speed.
  EnterPrivateMounts();
  const TemporaryDirectory directory;
  CoverWithEmptyDirectory(directory.Path());
  {
    const WorkingDirectory inside(directory.Path());
    CompareEveryPathWithTheModel();
  }
  Uncover(directory.Path());
}

// --- One directory

TEST_F(MakingDirectories, MakesOneWhereTheParentExists) {
  const Requests requests;
  const KVTString path = mDirectory.Text("a");
  EXPECT_TRUE(KVTFile(path).MakeDirectory(false, nullptr));
  EXPECT_TRUE(KVTFile("have/b").MakeDirectory(false, nullptr));
  EXPECT_TRUE(KVTFile("have/c/").MakeDirectory(false, nullptr));
  EXPECT_EQ(requests.Paths(),
            (Texts{mDirectory.Path("a"), "have/b", "have/c/"}));
}

TEST_F(MakingDirectories, AsksForNothingWhereTheParentIsMissing) {
  const Requests requests;
  EXPECT_FALSE(KVTFile("missing/a").MakeDirectory(false, nullptr));
  // A bare name is taken for its own parent.
  EXPECT_FALSE(KVTFile("a").MakeDirectory(false, nullptr));
  EXPECT_FALSE(KVTFile("a/").MakeDirectory(false, nullptr));
  EXPECT_FALSE(KVTFile("a//").MakeDirectory(false, nullptr));
  EXPECT_EQ(requests.Paths(), Texts());
}

TEST_F(MakingDirectories, FailsOntoAFileAndOntoADirectory) {
  EXPECT_FALSE(mDirectory.File("file").MakeDirectory(false, nullptr));
  EXPECT_FALSE(mDirectory.File("have").MakeDirectory(false, nullptr));
  EXPECT_FALSE(mDirectory.File("have").MakeDirectory(true, nullptr));
  EXPECT_FALSE(mDirectory.File("file/a").MakeDirectory(false, nullptr));
}

TEST_F(MakingDirectories, StopsAtTheFirstFailureAndKeepsWhatIsMade) {
  Texts asked;
  hooks::Scoped hook(hooks::onMkdir, [&asked](const char* path, mode_t mode) {
    asked.push_back(path);
    if (asked.size() < 3) return hooks::RealMkdir(path, mode);
    errno = ENOSPC;
    return -1;
  });
  EXPECT_FALSE(KVTFile("a/b/c/d").MakeDirectory(true, nullptr));
  EXPECT_EQ(asked, (Texts{"a/", "a//b/", "a//b//c/"}));
  EXPECT_EQ(Tree(), (Texts{"a", "a/b", "file", "have"}));
}

TEST_F(MakingDirectories, TakesMode0775UnderTheUmask) {
  {
    const Umask mask(0);
    const Requests requests;
    EXPECT_TRUE(KVTFile("a/b").MakeDirectory(true, nullptr));
    EXPECT_TRUE(KVTFile("a/c").MakeDirectory(false, nullptr));
    EXPECT_EQ(requests.Modes(), (std::vector<mode_t>{0775, 0775, 0775}));
  }
  const Umask mask(027);
  EXPECT_TRUE(KVTFile("a/d").MakeDirectory(false, nullptr));
  EXPECT_EQ(ModeOf("a"), 0775u);
  EXPECT_EQ(ModeOf("a/b"), 0775u);
  EXPECT_EQ(ModeOf("a/c"), 0775u);
  EXPECT_EQ(ModeOf("a/d"), 0750u);
}

TEST_F(MakingDirectories, LeavesTheErrorCodeAlone) {
  KVTErrorCodeEnum code = KVTErrorCodeAlreadyMounted;
  EXPECT_TRUE(KVTFile("a").MakeDirectory(true, &code));
  EXPECT_FALSE(KVTFile("a").MakeDirectory(true, &code));
  EXPECT_TRUE(KVTFile("a/f").CreateFile(false, &code));
  EXPECT_FALSE(KVTFile("a/f").CreateFile(false, &code));
  EXPECT_EQ(code, KVTErrorCodeAlreadyMounted);
  EXPECT_TRUE(KVTFile("b").MakeDirectory(true));
  EXPECT_TRUE(KVTFile("b/f").CreateFile(false));
}

// --- CreateFile

struct FileCase {
  const char* name;
  const char* path;
  bool createParents;
  Texts asked;
  bool result;
  Texts made;
};

const FileCase kFileCases[] = {
    {"InAnExisting", "have/f", false, {}, true, {"have/f"}},
    {"InAnExistingWithParents", "have/f", true, {}, true, {"have/f"}},
    {"BareNameWithoutParents", "f", false, {}, false, {}},
    {"BareNameBecomesADirectory", "f", true, {"f"}, false, {"f"}},
    {"ParentMissing", "a/b/f", false, {}, false, {}},
    {"ParentMissingIsMade",
     "a/b/f",
     true,
     {"a/", "a//b"},
     true,
     {"a", "a/b", "a/b/f"}},
    // Its parent is a/f, whose path has a separator less.
    {"TrailingSeparator", "a/f/", true, {"a/", "a//f"}, false, {"a", "a/f"}},
    // have/ is there, so the parent have/f is not made.
    {"TrailingSeparatorInAnExisting", "have/f/", true, {}, false, {}},
    {"ThroughAFile", "file/f", false, {}, false, {}},
    {"ThroughAFileWithParents", "file/f", true, {}, false, {}},
    {"BelowAFileWithParents", "file/a/f", true, {"file/"}, false, {}},
    {"OntoADirectory", "have", true, {}, false, {}},
    {"OntoADirectoryWithoutParents", "have", false, {}, false, {}},
    {"NoName", "a//", true, {"a/"}, false, {"a"}},
    {"NoNameWithoutParents", "a//", false, {}, false, {}},
};

void PrintTo(const FileCase& c, std::ostream* os) { *os << c.name; }

class FileTable : public MakingDirectories,
                  public testing::WithParamInterface<FileCase> {};

TEST_P(FileTable, MakesTheFileAndItsParents) {
  const Requests requests;
  EXPECT_EQ(KVTFile(FromUtf8(GetParam().path))
                .CreateFile(GetParam().createParents, nullptr),
            GetParam().result);
  EXPECT_EQ(requests.Paths(), GetParam().asked);
  Texts expected = GetParam().made;
  expected.insert(expected.end(), {"file", "have"});
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(Tree(), expected);
  EXPECT_EQ(ReadFile("file"), "content");
}

INSTANTIATE_TEST_SUITE_P(, FileTable, testing::ValuesIn(kFileCases),
                         [](const auto& test) { return test.param.name; });

TEST_F(MakingDirectories, BareNameWithParentsLeavesADirectoryBehind) {
  EXPECT_FALSE(KVTFile("f").CreateFile(true, nullptr));
  EXPECT_TRUE(fs::is_directory("f"));
  // Where a file of that name stands already, it is emptied.
  EXPECT_TRUE(KVTFile("file").CreateFile(true, nullptr));
  EXPECT_EQ(ReadFile("file"), "");
}

TEST_F(MakingDirectories, CreateFileEmptiesAnExistingFileWithParentsOnly) {
  EXPECT_FALSE(mDirectory.File("file").CreateFile(false, nullptr));
  EXPECT_EQ(ReadFile("file"), "content");
  EXPECT_TRUE(mDirectory.File("file").CreateFile(true, nullptr));
  EXPECT_EQ(ReadFile("file"), "");
}

TEST_F(MakingDirectories, CreateFileIsFalseWhereTheFileCannotBeOpened) {
  Texts modes;
  hooks::Scoped hook(hooks::onFopen,
                     [&modes](const char*, const char* mode) -> FILE* {
                       modes.push_back(mode);
                       return nullptr;
                     });
  EXPECT_FALSE(mDirectory.File("f").CreateFile(false, nullptr));
  EXPECT_FALSE(mDirectory.File("f").CreateFile(true, nullptr));
  EXPECT_EQ(modes, (Texts{"w", "w"}));
}

TEST_F(MakingDirectories, CreateFileClosesTheFile) {
  const std::size_t before = OpenDescriptors();
  EXPECT_TRUE(mDirectory.File("f").CreateFile(false, nullptr));
  EXPECT_TRUE(mDirectory.File("a/f").CreateFile(true, nullptr));
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(MakingDirectories, CreateFileMakesAFileBehindADanglingLink) {
  fs::create_symlink("target", "link");
  EXPECT_TRUE(mDirectory.File("link").CreateFile(false, nullptr));
  EXPECT_TRUE(fs::is_regular_file("target"));
}

TEST(CreateFile, InTheRootTakesParents) {
  Texts opened;
  hooks::Scoped hook(hooks::onFopen, [&](const char* path, const char*) {
    opened.push_back(path);
    return hooks::RealFopen("/dev/null", "w");
  });
  const Requests requests;
  EXPECT_FALSE(KVTFile("/no-such-name").CreateFile(false, nullptr));
  EXPECT_EQ(opened, Texts());
  EXPECT_TRUE(KVTFile("/no-such-name").CreateFile(true, nullptr));
  EXPECT_EQ(opened, Texts{"/no-such-name"});
  EXPECT_EQ(requests.Paths(), Texts());
}

}  // namespace
