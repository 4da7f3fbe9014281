#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "KVTFileUtil.h"
#include "KVTShareFile.h"
#include "hooks.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

constexpr const char* kUntouched = "untouched";

struct Pieces {
  const char* testName;
  const char* path;
  const char* parent;
  int parentResult;
  const char* name;
  int nameResult;
};

const Pieces kPieces[] = {
    {"Empty", "", kUntouched, 1, "", 1},
    {"BareName", "file.txt", "", 1, "file.txt", 0},
    {"Backslashes", "\\\\host\\share\\dir\\f.txt", "host\\share\\dir", 0,
     "f.txt", 0},
    {"BackslashAtTheEnd", "\\\\host\\share\\dir\\", "host\\share", 0, "", 1},
    {"Slashes", "//host/share/f.txt", "host/share", 0, "f.txt", 0},
    {"Smb", "smb://host/share/f.txt", "smb://host/share", 0, "f.txt", 0},
    {"ChildOfTheRoot", "/a", "", 1, "a", 0},
    {"ThreeBackslashes", "\\\\\\", "", 1, "", 1},
    {"BackslashesThenSlashes", "\\\\host/share/f.txt", "", 1, "f.txt", 0},
    {"SlashThenBackslash", "a/b\\c", "a/b", 0, "b\\c", 0},
    {"BackslashThenSlash", "a\\b/c", "a", 0, "c", 0},
    {"IPv4AtTheEnd", "\\\\host\\10.0.0.1", "host", 0, "", 1},
    {"IPv6AtTheEnd", "//host/fe80::1", "host", 0, "", 1},
    {"IPv6WithDotsAtTheEnd", "//host/::1.2.3.4", "host", 0, "", 1},
    {"BareAddress", "10.1.2.3", "", 1, "", 1},
    {"BareIPv6Address", "::1", "", 1, "", 1},
    {"SlashAtTheEnd", "//host/share/", "host", 0, "", 1},
    {"ManySlashesAtTheEnd", "//host/share///", "host", 0, "", 1},
    {"DoubledSeparator", "a//b", "a/", 0, "b", 0},
    {"OnlySlashes", "//", "", 1, "", 1},
    {"SlashInFrontOfBackslashes", "/a\\", "", 1, "a\\", 0},
    {"NonAscii", "//h/\xC3\xA9/\xE6\x96\x87", "h/\xC3\xA9", 0, "\xE6\x96\x87",
     0},
};

void PrintTo(const Pieces& pieces, std::ostream* out) {
  *out << pieces.testName;
}

class PathPieces : public testing::TestWithParam<Pieces> {};

TEST_P(PathPieces, AreCutAtTheLastSeparator) {
  KVTShareFileInternal paths;
  KVTString parent(kUntouched);
  EXPECT_EQ(paths.GetParentPath(GetParam().path, parent),
            GetParam().parentResult);
  EXPECT_EQ(parent, GetParam().parent);
  KVTString name(kUntouched);
  EXPECT_EQ(paths.GetFileName(GetParam().path, name), GetParam().nameResult);
  EXPECT_EQ(name, GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(, PathPieces, testing::ValuesIn(kPieces),
                         [](const auto& test) { return test.param.testName; });

TEST(PathPiece, MayReplaceThePathItWasCutFrom) {
  KVTShareFileInternal paths;
  KVTString text("//host/share/f.txt");
  EXPECT_EQ(paths.GetFileName(text, text), 0);
  EXPECT_EQ(text, "f.txt");
  text = "//host/share/f.txt";
  EXPECT_EQ(paths.GetParentPath(text, text), 0);
  EXPECT_EQ(text, "host/share");
}

TEST(PathPiece, OfAParentEndsAtAZeroUnitAndOfANameDoesNot) {
  // The parent is cut from a copy, and a copy ends there.
  KVTShareFileInternal paths;
  KVTString piece;
  EXPECT_EQ(paths.GetParentPath(FromUnits({'a', '/', 'b', 0, '\\'}), piece), 0);
  EXPECT_EQ(piece, "a");
  EXPECT_EQ(paths.GetFileName(FromUnits({'a', '/', 'b', 0, 'c'}), piece), 0);
  EXPECT_EQ(piece, FromUnits({'b', 0, 'c'}));
}

std::string Strip(std::string text, char c) {
  while (!text.empty() && text.front() == c) text.erase(0, 1);
  while (!text.empty() && text.back() == c) text.pop_back();
  return text;
}

TEST(PathPiece, AgreesWithItsModelOnAllShortTexts) {
  KVTShareFileInternal paths;
  for (const std::string& path : AllTexts("a.1/\\:", 6)) {
    std::string parent = kUntouched;
    if (!path.empty()) {
      const bool windows = path.find('\\') != std::string::npos;
      const std::string inner = Strip(path, windows ? '\\' : '/');
      const std::size_t last = inner.rfind(windows ? '\\' : '/');
      parent = last == std::string::npos ? "" : inner.substr(0, last);
    }
    KVTString gotParent(kUntouched);
    const int parentResult = paths.GetParentPath(FromUtf8(path), gotParent);
    ASSERT_EQ(gotParent.GetUTF8String(), parent) << path;
    ASSERT_EQ(parentResult, parent.empty() || path.empty() ? 1 : 0) << path;

    std::string name = path;
    const char decides = path.find('/') != std::string::npos ? '/' : '\\';
    name.erase(0, name.rfind(decides) + 1);
    // All are too short for an IPv4 address.
    if (KVTFileUtil::IsValidIPV6Address(FromUtf8(name))) name.clear();
    KVTString gotName(kUntouched);
    const int nameResult = paths.GetFileName(FromUtf8(path), gotName);
    ASSERT_EQ(gotName.GetUTF8String(), name) << path;
    ASSERT_EQ(nameResult, name.empty() ? 1 : 0) << path;
  }
}

TEST(ParentDirectory, IsLeftAloneWhenItExists) {
  const TemporaryDirectory directory;
  int made = 0;
  const hooks::Scoped counting(hooks::onMkdir, [&](const char* path, mode_t m) {
    ++made;
    return hooks::RealMkdir(path, m);
  });
  KVTShareFileInternal paths;
  EXPECT_FALSE(
      paths.CreateParentDirectoryIfDoesntExist(directory.Text("file.txt")));
  EXPECT_EQ(made, 0);
  EXPECT_FALSE(directory.File("file.txt").Exists());
}

TEST(ParentDirectory, IsMadeWithItsOwnParentsAndReportsFalse) {
  const TemporaryDirectory directory;
  KVTShareFileInternal paths;
  EXPECT_FALSE(
      paths.CreateParentDirectoryIfDoesntExist(directory.Text("a/b/file.txt")));
  struct stat status;
  ASSERT_EQ(stat(directory.Path("a/b").c_str(), &status), 0);
  EXPECT_TRUE(S_ISDIR(status.st_mode));
  EXPECT_FALSE(directory.File("a/b/file.txt").Exists());
}

TEST(ParentDirectory, ReportsTrueWhenItCannotBeMade) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("file"), "in the way");
  KVTShareFileInternal paths;
  EXPECT_TRUE(paths.CreateParentDirectoryIfDoesntExist(
      directory.Text("file/file.txt")));
  EXPECT_EQ(ReadFile(directory.Path("file")), "in the way");
}

TEST(ParentDirectory, OfABareNameIsThatNameItself) {
  // The parent of a name without a separator is the name: it becomes a folder.
  const TemporaryDirectory directory;
  const WorkingDirectory inside(directory.Path());
  KVTShareFileInternal paths;
  EXPECT_FALSE(paths.CreateParentDirectoryIfDoesntExist("bare"));
  struct stat status;
  ASSERT_EQ(stat(directory.Path("bare").c_str(), &status), 0);
  EXPECT_TRUE(S_ISDIR(status.st_mode));
}

TEST(ParentDirectory, OfNothingCannotBeMade) {
  KVTShareFileInternal paths;
  EXPECT_TRUE(paths.CreateParentDirectoryIfDoesntExist(""));
  EXPECT_TRUE(paths.CreateParentDirectoryIfDoesntExist("/file.txt"));
}

}  // namespace
