#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "KVTFile.h"
#include "hooks.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

// --- Value operations

TEST(FileObject, StartsWithAnEmptyPath) {
  EXPECT_EQ(KVTFile().GetPath(), "");
  EXPECT_FALSE(KVTFile().HasPath());
}

TEST(FileObject, HasAPathFromOneUnitOn) {
  EXPECT_FALSE(KVTFile("").HasPath());
  EXPECT_TRUE(KVTFile("a").HasPath());
}

TEST(FileObject, KeepsThePathAsGiven) {
  const KVTFile file(FromUtf8("  /a//b\\.././c/ \xC3\xA4"));
  EXPECT_TRUE(file.HasPath());
  EXPECT_EQ(file.GetPath(), "  /a//b\\.././c/ \xC3\xA4");
}

TEST(FileObject, CopiesAndAssignsThePath) {
  const KVTFile file("/a");
  const KVTFile copy(file);
  KVTFile assigned("/b");
  EXPECT_EQ(&(assigned = file), &assigned);
  EXPECT_EQ(copy.GetPath(), "/a");
  EXPECT_EQ(assigned.GetPath(), "/a");
}

TEST(FileObject, SetPathReturnsFalseAndAssigns) {
  KVTFile file("/a");
  EXPECT_FALSE(file.SetPath("/b"));
  EXPECT_EQ(file.GetPath(), "/b");
  EXPECT_FALSE(file.SetPath(""));
  EXPECT_EQ(file.GetPath(), "");
}

TEST(FileObject, CopiesEndAtAZeroUnitAndAssignmentsDoNot) {
  const KVTString path = FromUnits({'a', 0, 'b'});
  EXPECT_EQ(KVTFile(path).mPath.size(), 1u);
  KVTFile file;
  file.SetPath(path);
  EXPECT_EQ(file.mPath.size(), 3u);
  EXPECT_EQ(file.GetPath().size(), 1u);
  KVTFile assigned;
  assigned = file;
  EXPECT_EQ(assigned.mPath.size(), 3u);
  EXPECT_EQ(KVTFile(file).mPath.size(), 1u);
}

struct EqualityCase {
  const char* name;
  const char* one;
  const char* other;
  bool equal;
};

const EqualityCase kEqualityCases[] = {
    {"BothEmpty", "", "", true},
    {"Same", "/a/b", "/a/b", true},
    {"Case", "/a/b", "/a/B", false},
    {"TrailingSeparator", "/a/b", "/a/b/", false},
    {"DoubledSeparator", "/a/b", "/a//b", false},
    {"OneEmpty", "/a", "", false},
    {"KindOfSeparator", "a/b", "a\\b", false},
};

void PrintTo(const EqualityCase& c, std::ostream* os) { *os << c.name; }

class EqualityTable : public testing::TestWithParam<EqualityCase> {};

TEST_P(EqualityTable, ComparesUnits) {
  KVTFile one(FromUtf8(GetParam().one));
  KVTFile other(FromUtf8(GetParam().other));
  EXPECT_EQ(one == other, GetParam().equal);
  EXPECT_EQ(other == one, GetParam().equal);
  EXPECT_EQ(one != other, !GetParam().equal);
  EXPECT_EQ(other != one, !GetParam().equal);
}

INSTANTIATE_TEST_SUITE_P(, EqualityTable, testing::ValuesIn(kEqualityCases),
                         [](const auto& test) { return test.param.name; });

TEST(FileObject, ComparesUnitsBehindAZeroUnit) {
  KVTFile one;
  KVTFile other;
  one.SetPath(FromUnits({'a', 0, 'b'}));
  other.SetPath(FromUnits({'a', 0, 'c'}));
  EXPECT_FALSE(one == other);
}

template <class File, class = void>
struct CanCompare : std::false_type {};
template <class File>
struct CanCompare<File, std::void_t<decltype(std::declval<File&>().operator==(
                            std::declval<const KVTFile&>()))>>
    : std::true_type {};

TEST(FileObject, IsComparedThroughNonConstMembers) {
  EXPECT_TRUE(CanCompare<KVTFile>::value);
  EXPECT_FALSE(CanCompare<const KVTFile>::value);
}

TEST(FileObject, HasAVirtualDestructorAndNoOtherData) {
  EXPECT_TRUE(std::has_virtual_destructor<KVTFile>::value);
  EXPECT_EQ(sizeof(KVTFile), sizeof(void*) + sizeof(KVTString));
}

// --- Exists

TEST(FileExists, IsFalseForNothing) {
  int looks = 0;
  hooks::Scoped hook(hooks::onStat, [&looks](const char*, struct stat*) {
    ++looks;
    return 0;
  });
  EXPECT_FALSE(KVTFile().Exists());
  EXPECT_EQ(looks, 0);
}

TEST(FileExists, FindsFilesAndDirectories) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  EXPECT_TRUE(directory.File().Exists());
  EXPECT_TRUE(directory.File("f").Exists());
  EXPECT_FALSE(directory.File("f/").Exists());
  EXPECT_FALSE(directory.File("g").Exists());
}

TEST(FileExists, TakesThePathAsUtf8) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80"), "");
  EXPECT_TRUE(
      directory.File("\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80").Exists());
}

TEST(FileExists, FollowsLinks) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  ASSERT_EQ(symlink("f", directory.Path("toFile").c_str()), 0);
  ASSERT_EQ(symlink("missing", directory.Path("dangling").c_str()), 0);
  EXPECT_TRUE(directory.File("toFile").Exists());
  EXPECT_FALSE(directory.File("dangling").Exists());
}

// --- Members with fixed results

// A file with content, and what of it must not change.
class FixedResults : public testing::Test {
 protected:
  FixedResults() { WriteFile(Path(), "content"); }

  std::string Path() const { return mDirectory.Path("f"); }
  KVTFile File() const { return mDirectory.File("f"); }

  struct stat Status() const {
    struct stat status = {};
    EXPECT_EQ(stat(Path().c_str(), &status), 0);
    return status;
  }

 private:
  TemporaryDirectory mDirectory;
};

TEST_F(FixedResults, AliasesAreNotResolved) {
  KVTFile file("/a/../b");
  file.ResolvePathAliases();
  EXPECT_FALSE(file.ResolveAlias());
  EXPECT_EQ(file.GetPath(), "/a/../b");
}

TEST_F(FixedResults, NothingIsOpenOrCanBe) {
  EXPECT_FALSE(File().IsOpen());
  EXPECT_FALSE(
      File().CanOpen(KVTFile::KVTFileAccessRead, KVTFile::KVTFileShareRead));
  EXPECT_FALSE(
      File().CanOpen(KVTFile::KVTFileAccessWrite, KVTFile::KVTFileShareNone));
}

TEST_F(FixedResults, TimesAreNotReadAndNotSet) {
  const struct stat before = Status();
  KVTFile file = File();
  int looks = 0;
  {
    hooks::Scoped hook(hooks::onStat, [&looks](const char*, struct stat*) {
      ++looks;
      return -1;
    });
    for (const auto which :
         {KVTFile::KVTFileTimeCreated, KVTFile::KVTFileTimeModified,
          KVTFile::KVTFileTimeAccessed}) {
      EXPECT_FALSE(file.GetTime(which).IsValid());
      EXPECT_FALSE(file.SetTime(which, KVTTime(1)));
    }
  }
  EXPECT_EQ(looks, 0);
  const struct stat after = Status();
  EXPECT_EQ(after.st_mtim.tv_sec, before.st_mtim.tv_sec);
  EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
}

TEST_F(FixedResults, GetBoolIsFalseForEveryFlagAfterALookAtTheFile) {
  int looks = 0;
  hooks::Scoped hook(hooks::onStat,
                     [&looks](const char* path, struct stat* status) {
                       ++looks;
                       return hooks::RealStat(path, status);
                     });
  for (int flag = 0; flag < 16; ++flag) {
    EXPECT_FALSE(File().GetBool(static_cast<KVTFile::KVTFileBoolEnum>(flag)));
  }
  EXPECT_EQ(looks, 16);
  EXPECT_FALSE(KVTFile("/no/such").GetBool(KVTFile::KVTFileBoolSettable));
  EXPECT_EQ(looks, 17);
  EXPECT_FALSE(KVTFile().GetBool(KVTFile::KVTFileBoolSettable));
  EXPECT_EQ(looks, 17);
}

TEST_F(FixedResults, SetBoolIsTrueForOneFlagOfAnExistingFile) {
  const struct stat before = Status();
  KVTFile file = File();
  for (int flag = 0; flag < 16; ++flag) {
    for (const bool value : {false, true}) {
      EXPECT_EQ(
          file.SetBool(static_cast<KVTFile::KVTFileBoolEnum>(flag), value),
          flag == 8);
    }
  }
  EXPECT_EQ(Status().st_mode, before.st_mode);
  EXPECT_FALSE(KVTFile("/no/such").SetBool(KVTFile::KVTFileBoolSettable, true));
  EXPECT_FALSE(KVTFile().SetBool(KVTFile::KVTFileBoolSettable, true));
}

TEST_F(FixedResults, TheSettableFlagIsEight) {
  EXPECT_EQ(static_cast<int>(KVTFile::KVTFileBoolSettable), 8);
}

// --- The empty path

TEST(EmptyFile, AnswersFalseToAllButSetExtension) {
  KVTFile file;
  EXPECT_FALSE(file.HasPath());
  EXPECT_FALSE(file.Exists());
  EXPECT_FALSE(file.ResolveAlias());
  EXPECT_FALSE(file.SetName("a"));
  EXPECT_FALSE(file.AppendName("a"));
  EXPECT_FALSE(file.RemoveName());
  EXPECT_FALSE(file.IsValidName());
  EXPECT_FALSE(file.Touch());
  EXPECT_FALSE(file.IsEmpty());
  EXPECT_FALSE(file.IsFileSymbolicLink());
  EXPECT_FALSE(file.IsFileDeviceFile());
  EXPECT_FALSE(file.Delete());
  EXPECT_FALSE(file.HasValidPath());
  EXPECT_FALSE(file.ParentExists());
  for (const bool createParents : {false, true}) {
    EXPECT_FALSE(file.MakeDirectory(createParents, nullptr));
    EXPECT_FALSE(file.CreateFile(createParents, nullptr));
  }
  EXPECT_EQ(file.GetSize(), 0u);
  EXPECT_FALSE(file.HasPath());

  EXPECT_TRUE(file.SetExtension("log"));
  EXPECT_EQ(file.GetPath(), ".log");
}

TEST(EmptyFile, AnswersWithoutALookAtTheDisk) {
  std::vector<std::string> calls;
  const auto note = [&calls](const char* call) {
    return [&calls, call](auto...) {
      calls.push_back(call);
      return -1;
    };
  };
  const auto noteNull = [&calls](const char* call) {
    return [&calls, call](auto...) {
      calls.push_back(call);
      return nullptr;
    };
  };
  const hooks::Scoped stat(hooks::onStat, note("stat"));
  const hooks::Scoped mkdir(hooks::onMkdir, note("mkdir"));
  const hooks::Scoped remove(hooks::onRemove, note("remove"));
  const hooks::Scoped system(hooks::onSystem, note("system"));
  const hooks::Scoped fopen(hooks::onFopen, noteNull("fopen"));
  const hooks::Scoped opendir(hooks::onOpendir, noteNull("opendir"));
  KVTFile file;
  file.Exists();
  file.GetBool(KVTFile::KVTFileBoolSettable);
  file.SetBool(KVTFile::KVTFileBoolSettable, true);
  file.Touch();
  file.GetSize();
  file.IsEmpty();
  file.IsFileSymbolicLink();
  file.IsFileDeviceFile();
  file.Delete();
  file.HasValidPath();
  file.ParentExists();
  for (const bool createParents : {false, true}) {
    file.MakeDirectory(createParents, nullptr);
    file.CreateFile(createParents, nullptr);
  }
  EXPECT_EQ(calls, std::vector<std::string>());
}

}  // namespace
