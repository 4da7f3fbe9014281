#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "KVTFile.h"
#include "KVTFileUtil.h"
#include "hooks.h"
#include "open_descriptors.h"
#include "sockets_and_devices.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

namespace fs = std::filesystem;

bool IsThere(const std::string& path) {
  struct stat status;
  return lstat(path.c_str(), &status) == 0;
}

void Link(const std::string& target, const std::string& path) {
  ASSERT_EQ(symlink(target.c_str(), path.c_str()), 0) << path;
}

// --- Touch

TEST(Touch, BuildsTheCommandFromThePathAsItIs) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("a b;c'$d\"\xC3\xA4"), "");
  const hooks::RecordedCommands commands;
  EXPECT_TRUE(directory.File("a b;c'$d\"\xC3\xA4").Touch());
  EXPECT_EQ(commands.All(),
            std::vector<std::string>{"touch -c " + directory.Path() +
                                     "/a b;c'$d\"\xC3\xA4"});
}

TEST(Touch, RunsNothingForWhatIsNoFile) {
  const TemporaryDirectory directory;
  Link("missing", directory.Path("dangling"));
  MakeSocket(directory.Path("socket"));
  const hooks::RecordedCommands commands;
  EXPECT_FALSE(KVTFile().Touch());
  EXPECT_FALSE(directory.File("missing").Touch());
  EXPECT_FALSE(directory.File("dangling").Touch());
  EXPECT_FALSE(directory.File().Touch());
  EXPECT_FALSE(directory.File("socket").Touch());
  EXPECT_TRUE(commands.All().empty());
}

TEST(Touch, IsTrueWhateverTheShellDid) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  for (const int status : {-1, 0, 1, 127 << 8}) {
    hooks::Scoped hook(hooks::onSystem,
                       [status](const char*) { return status; });
    EXPECT_TRUE(directory.File("f").Touch());
  }
}

TEST(Touch, SetsTheTimesOfTheFile) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "content");
  const timespec old[2] = {{1000, 0}, {1000, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, directory.Path("f").c_str(), old, 0), 0);
  EXPECT_TRUE(directory.File("f").Touch());
  struct stat status = {};
  ASSERT_EQ(stat(directory.Path("f").c_str(), &status), 0);
  EXPECT_GT(status.st_mtim.tv_sec, 1000);
  EXPECT_GT(status.st_atim.tv_sec, 1000);
  EXPECT_EQ(ReadFile(directory.Path("f")), "content");
}

TEST(Touch, ReachesTwoOtherFilesThroughABlank) {
  const TemporaryDirectory directory;
  const WorkingDirectory inside(directory.Path());
  for (const char* name : {"a b", "a"}) {
    WriteFile(name, "");
    const timespec old[2] = {{1000, 0}, {1000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, name, old, 0), 0);
  }
  EXPECT_TRUE(KVTFile("a b").Touch());
  struct stat withBlank = {};
  struct stat first = {};
  ASSERT_EQ(stat("a b", &withBlank), 0);
  ASSERT_EQ(stat("a", &first), 0);
  EXPECT_EQ(withBlank.st_mtim.tv_sec, 1000);
  EXPECT_GT(first.st_mtim.tv_sec, 1000);
  EXPECT_FALSE(IsThere("b"));
}

TEST(Touch, RunsShellTextInThePath) {
  const TemporaryDirectory directory;
  const WorkingDirectory inside(directory.Path());
  WriteFile("f;mkdir made", "");
  EXPECT_TRUE(KVTFile("f;mkdir made").Touch());
  EXPECT_TRUE(IsThere("made"));
}

// --- GetSize, IsEmpty

TEST(FileSize, CountsBytesOfAFile) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("empty"), "");
  WriteFile(directory.Path("some"), std::string(4097, '\0'));
  EXPECT_EQ(directory.File("empty").GetSize(), 0u);
  EXPECT_TRUE(directory.File("empty").IsEmpty());
  EXPECT_EQ(directory.File("some").GetSize(), 4097u);
  EXPECT_FALSE(directory.File("some").IsEmpty());
}

TEST(FileSize, CountsBeyondFourGiB) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("sparse"), "");
  ASSERT_EQ(truncate(directory.Path("sparse").c_str(), 0x140000001), 0);
  EXPECT_EQ(directory.File("sparse").GetSize(), 0x140000001u);
}

TEST(FileSize, CountsEntriesOfADirectory) {
  const TemporaryDirectory directory;
  EXPECT_EQ(directory.File().GetSize(), 0u);
  EXPECT_TRUE(directory.File().IsEmpty());
  WriteFile(directory.Path("one"), std::string(100000, 'x'));
  WriteFile(directory.Path(".two"), std::string(100000, 'x'));
  EXPECT_EQ(directory.File().GetSize(), 2u);
  WriteFile(directory.Path("..."), "");
  EXPECT_EQ(directory.File().GetSize(), 3u);
  EXPECT_FALSE(directory.File().IsEmpty());
}

TEST(FileSize, CountsSubdirectoriesWithoutTheirContents) {
  const TemporaryDirectory directory;
  ASSERT_EQ(mkdir(directory.Path("sub").c_str(), 0700), 0);
  WriteFile(directory.Path("sub/a"), "");
  WriteFile(directory.Path("sub/b"), "");
  EXPECT_EQ(directory.File().GetSize(), 1u);
  EXPECT_FALSE(directory.File().IsEmpty());
}

TEST(FileSize, FollowsLinks) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("file"), std::string(1000, 'x'));
  Link("file", directory.Path("toFile"));
  Link(".", directory.Path("toDirectory"));
  EXPECT_EQ(directory.File("toFile").GetSize(), 1000u);
  EXPECT_EQ(directory.File("toDirectory").GetSize(), 3u);
}

TEST(FileSize, IsZeroForNothing) {
  const TemporaryDirectory directory;
  Link("missing", directory.Path("dangling"));
  EXPECT_EQ(KVTFile().GetSize(), 0u);
  EXPECT_FALSE(KVTFile().IsEmpty());
  EXPECT_EQ(directory.File("missing").GetSize(), 0u);
  EXPECT_TRUE(directory.File("missing").IsEmpty());
  EXPECT_EQ(directory.File("dangling").GetSize(), 0u);
  EXPECT_TRUE(directory.File("dangling").IsEmpty());
}

TEST(FileSize, IsZeroForADirectoryThatCannotBeOpened) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  hooks::Scoped hook(hooks::onOpendir, [](const char*) -> DIR* {
    errno = EACCES;
    return nullptr;
  });
  EXPECT_EQ(directory.File().GetSize(), 0u);
  EXPECT_TRUE(directory.File().IsEmpty());
}

TEST(FileSize, IsZeroForASocketWhichCountsAsADirectory) {
  const TemporaryDirectory directory;
  MakeSocket(directory.Path("socket"));
  EXPECT_EQ(directory.File("socket").GetSize(), 0u);
}

TEST(FileSize, IsZeroForADirectoryWithATrailingBackslash) {
  // It counts as a directory, but no directory of that name can be opened.
  const TemporaryDirectory directory;
  fs::create_directory(directory.Path("d"));
  WriteFile(directory.Path("d/f"), "x");
  EXPECT_EQ(directory.File("d").GetSize(), 1u);
  EXPECT_EQ(directory.File("d\\").GetSize(), 0u);
}

TEST(FileSize, ClosesTheDirectory) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  const std::size_t before = OpenDescriptors();
  EXPECT_EQ(directory.File().GetSize(), 1u);
  EXPECT_EQ(OpenDescriptors(), before);
}

// --- Kinds of files

TEST(FileKind, IsALinkOnlyWhereTheTargetExists) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  Link("f", directory.Path("toFile"));
  Link(".", directory.Path("toDirectory"));
  Link("toFile", directory.Path("toLink"));
  Link("missing", directory.Path("dangling"));
  EXPECT_TRUE(directory.File("toFile").IsFileSymbolicLink());
  EXPECT_TRUE(directory.File("toDirectory").IsFileSymbolicLink());
  EXPECT_TRUE(directory.File("toLink").IsFileSymbolicLink());
  EXPECT_FALSE(directory.File("dangling").IsFileSymbolicLink());
  EXPECT_FALSE(directory.File("f").IsFileSymbolicLink());
  EXPECT_FALSE(directory.File().IsFileSymbolicLink());
  EXPECT_FALSE(directory.File("missing").IsFileSymbolicLink());
  EXPECT_FALSE(KVTFile().IsFileSymbolicLink());
}

TEST(FileKind, IsNoLinkWhereOneTypeBitIsShared) {
  // The types of sockets (0xC000) and files (0x8000) share bits with links.
  const TemporaryDirectory directory;
  MakeSocket(directory.Path("socket"));
  MakeDevice(directory.Path("character"), S_IFCHR);
  EXPECT_FALSE(directory.File("socket").IsFileSymbolicLink());
  EXPECT_FALSE(directory.File("character").IsFileSymbolicLink());
}

TEST(FileKind, IsADeviceByTheTextOfThePath) {
  const TemporaryDirectory directory;
  MakeDevice(directory.Path("character"), S_IFCHR);
  EXPECT_TRUE(KVTFile("/dev/null").IsFileDeviceFile());
  EXPECT_TRUE(KVTFile("/dev/no/such").IsFileDeviceFile());
  EXPECT_TRUE(KVTFile("/dev/").IsFileDeviceFile());
  EXPECT_FALSE(KVTFile("/dev").IsFileDeviceFile());
  EXPECT_FALSE(KVTFile("/device/x").IsFileDeviceFile());
  EXPECT_FALSE(KVTFile("//dev/null").IsFileDeviceFile());
  EXPECT_FALSE(KVTFile("dev/null").IsFileDeviceFile());
  EXPECT_FALSE(directory.File("character").IsFileDeviceFile());
  EXPECT_FALSE(KVTFile().IsFileDeviceFile());
}

// --- Delete

TEST(FileDelete, RemovesAFile) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "x");
  EXPECT_TRUE(directory.File("f").Delete());
  EXPECT_FALSE(IsThere(directory.Path("f")));
  EXPECT_FALSE(directory.File("f").Delete());
}

TEST(FileDelete, RemovesALinkAndNotItsTarget) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "x");
  Link("f", directory.Path("toFile"));
  Link("missing", directory.Path("dangling"));
  EXPECT_TRUE(directory.File("toFile").Delete());
  EXPECT_TRUE(directory.File("dangling").Delete());
  EXPECT_FALSE(IsThere(directory.Path("toFile")));
  EXPECT_FALSE(IsThere(directory.Path("dangling")));
  EXPECT_TRUE(IsThere(directory.Path("f")));
}

TEST(FileDelete, ReturnsFalseForAnEmptyDirectoryThatIsGone) {
  const TemporaryDirectory directory;
  ASSERT_EQ(mkdir(directory.Path("d").c_str(), 0700), 0);
  EXPECT_FALSE(directory.File("d").Delete());
  EXPECT_FALSE(IsThere(directory.Path("d")));
}

TEST(FileDelete, RemovesNothingOfADirectoryWithContents) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "x");
  EXPECT_FALSE(directory.File().Delete());
  EXPECT_TRUE(IsThere(directory.Path("f")));
}

TEST(FileDelete, RemovesALinkToADirectoryAndReturnsFalse) {
  const TemporaryDirectory directory;
  ASSERT_EQ(mkdir(directory.Path("d").c_str(), 0700), 0);
  Link("d", directory.Path("toDirectory"));
  EXPECT_FALSE(directory.File("toDirectory").Delete());
  EXPECT_FALSE(IsThere(directory.Path("toDirectory")));
  EXPECT_TRUE(IsThere(directory.Path("d")));
}

TEST(FileDelete, KeepsADirectoryNamedWithATrailingBackslash) {
  const TemporaryDirectory directory;
  fs::create_directory(directory.Path("d"));
  EXPECT_FALSE(directory.File("d\\").Delete());
  EXPECT_TRUE(IsThere(directory.Path("d")));
}

TEST(FileDelete, RemovesASocketAndReturnsFalse) {
  const TemporaryDirectory directory;
  MakeSocket(directory.Path("socket"));
  EXPECT_FALSE(directory.File("socket").Delete());
  EXPECT_FALSE(IsThere(directory.Path("socket")));
}

TEST(FileDelete, KeepsAnEmptyDirectoryBehindMoreThan512Units) {
  const TemporaryDirectory directory;
  fs::create_directory(directory.Path("d"));
  // The kernel reads the separators as one.
  const std::string atLimit =
      directory.Path() + std::string(511 - directory.Path().size(), '/') + "d";
  EXPECT_FALSE(KVTFile(FromUtf8(atLimit + "/")).Delete());
  EXPECT_TRUE(IsThere(directory.Path("d")));
  EXPECT_FALSE(KVTFile(FromUtf8(atLimit)).Delete());
  EXPECT_FALSE(IsThere(directory.Path("d")));
}

// --- HasValidPath

struct ValidCase {
  const char* name;
  const char* path;
  bool valid;
};

const ValidCase kValidCases[] = {
    {"Empty", "", false},
    {"Root", "/", true},
    {"DoubledRoot", "//", true},
    {"DoubledSeparator", "a//b", true},
    {"TrailingSeparator", "/a/", true},
    {"Relative", "a/b", true},
    {"EqualComponents", "x/x", true},
    {"EqualComponentsTrailing", "p/x/x/", true},
    {"Dots", "./../a", true},
    {"Colon", "C:/a:b", true},
    {"PercentSign", "/50%/a", true},
    {"Blank", "/a b/c", true},
    {"Backslash", "a\\b", false},
    {"DriveWithBackslashes", "C:\\dir", false},
    {"QuestionMark", "a?", false},
    {"QuestionMarkInTheFirst", "a?/b", false},
    {"QuestionMarkInEqualComponents", "a?/a?", false},
    {"StarInTheMiddle", "/a/*/b", false},
    {"LessThan", "/a/<", false},
    {"Quote", "/\"a", false},
    {"GreaterThan", ">", false},
    {"Bar", "/a/b|/", false},
};

void PrintTo(const ValidCase& c, std::ostream* os) { *os << c.name; }

class ValidPathTable : public testing::TestWithParam<ValidCase> {};

TEST_P(ValidPathTable, IsDecidedWithoutALookAtTheDisk) {
  int looks = 0;
  hooks::Scoped hook(hooks::onStat, [&looks](const char*, struct stat*) {
    ++looks;
    return -1;
  });
  EXPECT_EQ(KVTFile(FromUtf8(GetParam().path)).HasValidPath(),
            GetParam().valid);
  EXPECT_EQ(looks, 0);
}

INSTANTIATE_TEST_SUITE_P(, ValidPathTable, testing::ValuesIn(kValidCases),
                         [](const auto& test) { return test.param.name; });

// --- ParentExists

struct ParentCase {
  const char* name;
  const char* path;
  // What stat is asked about; null when it is not asked.
  const char* asked;
};

const ParentCase kParentCases[] = {
    {"Empty", "", nullptr},
    {"Root", "/", nullptr},
    {"NoNameBehindTwoSeparators", "a//", nullptr},
    {"BareNameTestsItself", "f", "f"},
    {"LongerBareNameTestsItself", "file.txt", "file.txt"},
    {"ChildOfTheRootTestsNothing", "/a", ""},
    {"BareNameTrailingTestsNothing", "a/", ""},
    {"Relative", "a/b", "a"},
    {"Absolute", "/a/b", "/a"},
    {"TrailingKeepsTheSeparator", "/a/b/", "/a/"},
    {"ChildOfTheRootTrailing", "/a/", "/"},
    {"DoubledSeparator", "/a//b", "/a/"},
};

void PrintTo(const ParentCase& c, std::ostream* os) { *os << c.name; }

class ParentTable : public testing::TestWithParam<ParentCase> {};

TEST_P(ParentTable, AsksAboutTheTextInFrontOfTheName) {
  const std::vector<std::string> expected =
      GetParam().asked == nullptr ? std::vector<std::string>()
                                  : std::vector<std::string>{GetParam().asked};
  for (const bool answer : {false, true}) {
    std::vector<std::string> asked;
    hooks::Scoped hook(hooks::onStat,
                       [&asked, answer](const char* path, struct stat*) {
                         asked.push_back(path);
                         return answer ? 0 : -1;
                       });
    EXPECT_EQ(KVTFile(FromUtf8(GetParam().path)).ParentExists(),
              answer && GetParam().asked != nullptr);
    EXPECT_EQ(asked, expected);
  }
}

INSTANTIATE_TEST_SUITE_P(, ParentTable, testing::ValuesIn(kParentCases),
                         [](const auto& test) { return test.param.name; });

TEST(ParentExists, GoesByTheDisk) {
  const TemporaryDirectory directory;
  const WorkingDirectory inside(directory.Path());
  WriteFile("f", "");
  EXPECT_TRUE(KVTFile("f").ParentExists());
  EXPECT_FALSE(KVTFile("g").ParentExists());
  EXPECT_TRUE(directory.File("g").ParentExists());
  EXPECT_TRUE(directory.File("g/").ParentExists());
  EXPECT_FALSE(directory.File("missing/g").ParentExists());
  // A file in front of the name is enough.
  EXPECT_TRUE(directory.File("f/g").ParentExists());
  EXPECT_FALSE(KVTFile("/tmp").ParentExists());
}

}  // namespace
