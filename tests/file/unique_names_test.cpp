#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "KVTFileUtil.h"
#include "file_mode.h"
#include "hooks.h"
#include "namespaces.h"
#include "open_descriptors.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

std::vector<std::string> NamesIn(const std::string& path) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(path)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string Utf8(const KVTFile& file) { return file.GetPath().GetUTF8String(); }

TEST(SystemTempDirectory, IsTmp) {
  EXPECT_EQ(KVTFileUtil::GetSystemTempDirectory().GetPath(), "/tmp");
}

// --- CreateUniqueDirectory

struct RandomCase {
  const char* name;
  std::array<int, 6> numbers;  // in the order in which rand gives them
  const char* text;
};

const RandomCase kRandomCases[] = {
    {"LastNumberFirst", {1, 2, 3, 4, 5, 6}, "6-4005-4004-8003-24001"},
    {"Zeros", {0, 0, 0, 0, 0, 0}, "0-4000-4000-8000-04000"},
    // 0x7FFFFFFF modulo 16383 is 7.
    {"Largest",
     {0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF},
     "7fffffff-4fff-4fff-8007-7fffffff4fff"},
    {"AboveTwelveBits",
     {0x1ABC, 0x2ABC, 16382, 0x4ABC, 0x5DEF, 0x6ABC},
     "6abc-4def-4abc-bffe-2abc4abc"},
    {"ModuloWraps",
     {0x1000, 0, 16383, 0xF000, 0x7000, 0},
     "0-4000-4000-8000-04000"},
};

void PrintTo(const RandomCase& c, std::ostream* os) { *os << c.name; }

class RandomTable : public testing::TestWithParam<RandomCase> {};

TEST_P(RandomTable, MakesTheName) {
  const TemporaryDirectory directory;
  std::string calls;
  std::vector<unsigned> seeds;
  std::size_t next = 0;
  hooks::Scoped time(hooks::onTime, [](time_t*) { return time_t{1234567890}; });
  hooks::Scoped srand(hooks::onSrand, [&](unsigned seed) {
    calls += "s";
    seeds.push_back(seed);
  });
  hooks::Scoped rand(hooks::onRand, [&] {
    calls += "r";
    return GetParam().numbers.at(next++);
  });
  const KVTFile made =
      KVTFileUtil::CreateUniqueDirectory(directory.Text(), "pre-");
  EXPECT_EQ(made.GetPath(),
            directory.Text(std::string("pre-") + GetParam().text));
  EXPECT_TRUE(fs::is_directory(Utf8(made)));
  EXPECT_EQ(calls, "srrrrrr");
  EXPECT_THAT(seeds, ElementsAre(1234567890u));
}

INSTANTIATE_TEST_SUITE_P(, RandomTable, testing::ValuesIn(kRandomCases),
                         [](const auto& test) { return test.param.name; });

TEST(UniqueDirectory, ComesOnceASecond) {
  const TemporaryDirectory directory;
  time_t now = 1000;
  hooks::Scoped time(hooks::onTime, [&now](time_t*) { return now; });
  const KVTFile first =
      KVTFileUtil::CreateUniqueDirectory(directory.Text(), "p");
  EXPECT_TRUE(first.HasPath());
  EXPECT_FALSE(
      KVTFileUtil::CreateUniqueDirectory(directory.Text(), "p").HasPath());
  // Another prefix or another second makes another name.
  EXPECT_TRUE(
      KVTFileUtil::CreateUniqueDirectory(directory.Text(), "q").HasPath());
  ++now;
  EXPECT_TRUE(
      KVTFileUtil::CreateUniqueDirectory(directory.Text(), "p").HasPath());
  EXPECT_EQ(NamesIn(directory.Path()).size(), 3u);
  EXPECT_TRUE(first.Exists());
}

TEST(UniqueDirectory, ReseedsTheProcessesRandomNumbers) {
  const TemporaryDirectory directory;
  hooks::Scoped time(hooks::onTime, [](time_t*) { return time_t{77}; });
  EXPECT_TRUE(
      KVTFileUtil::CreateUniqueDirectory(directory.Text(), "").HasPath());
  const int next = rand();
  srand(77);
  for (int i = 0; i < 6; ++i) rand();
  EXPECT_EQ(rand(), next);
}

TEST(UniqueDirectory, HasANameOfFiveGroups) {
  const TemporaryDirectory directory;
  const KVTFile made = KVTFileUtil::CreateUniqueDirectory(
      directory.Text(), FromUtf8("\xC3\xA4."));
  EXPECT_THAT(made.GetName().GetUTF8String(),
              MatchesRegex("\xC3\xA4\\.[0-9a-f]{1,8}-4[0-9a-f]{3}-4[0-9a-f]{3}-"
                           "[89ab][0-9a-f]{3}-[0-9a-f]{1,8}4[0-9a-f]{3}"));
  EXPECT_EQ(made.GetParentPath(false), directory.Text());
}

TEST(UniqueDirectory, HasMode0775UnderTheUmask) {
  const TemporaryDirectory directory;
  const Umask none(0);
  const KVTFile open =
      KVTFileUtil::CreateUniqueDirectory(directory.Text(), "a");
  const Umask mask(027);
  const KVTFile closed =
      KVTFileUtil::CreateUniqueDirectory(directory.Text(), "b");
  EXPECT_EQ(ModeOf(Utf8(open)), 0775u);
  EXPECT_EQ(ModeOf(Utf8(closed)), 0750u);
}

TEST(UniqueDirectory, IsNotMadeWhereTheParentIsNone) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("f"), "");
  int seeds = 0;
  hooks::Scoped srand(hooks::onSrand, [&seeds](unsigned) { ++seeds; });
  for (const KVTString& parent :
       {KVTString(), directory.Text("missing"), directory.Text("f")}) {
    EXPECT_FALSE(KVTFileUtil::CreateUniqueDirectory(parent, "p").HasPath());
  }
  EXPECT_EQ(seeds, 0);
}

TEST(UniqueDirectory, TakesThePrefixAsItIs) {
  const TemporaryDirectory directory;
  EXPECT_FALSE(
      KVTFileUtil::CreateUniqueDirectory(directory.Text(), "sub/").HasPath());
  fs::create_directory(directory.Path("sub"));
  EXPECT_TRUE(
      KVTFileUtil::CreateUniqueDirectory(directory.Text(), "sub/").HasPath());
  EXPECT_EQ(NamesIn(directory.Path("sub")).size(), 1u);
}

TEST(UniqueDirectory, KeepsATrailingSeparatorOfTheParent) {
  const TemporaryDirectory directory;
  const KVTFile made =
      KVTFileUtil::CreateUniqueDirectory(directory.Text(""), "p");
  EXPECT_EQ(Utf8(made).rfind(directory.Path() + "//p", 0), 0u);
  EXPECT_TRUE(made.Exists());
}

// --- In the temporary directory

// A /tmp of the test's own, empty but for the folder "target".
class InTmp : public testing::Test {
 protected:
  InTmp() {
    EnterPrivateMounts();
    CoverWithEmptyDirectory("/tmp");
    fs::create_directory("/tmp/target");
  }
  ~InTmp() override { Uncover("/tmp"); }

  // What is in /tmp besides the folder.
  static std::vector<std::string> Names() {
    std::vector<std::string> names = NamesIn("/tmp");
    names.erase(std::remove(names.begin(), names.end(), "target"), names.end());
    return names;
  }
};

using UniqueTemporaryDirectory = InTmp;
using UniqueFile = InTmp;

TEST_F(UniqueTemporaryDirectory, IsMadeInTmpWithoutAPrefix) {
  hooks::Scoped time(hooks::onTime, [](time_t*) { return time_t{5}; });
  const KVTFile made = KVTFileUtil::CreateUniqueTemporaryDirectory();
  EXPECT_EQ(Utf8(made).rfind("/tmp/", 0), 0u);
  EXPECT_THAT(made.GetName().GetUTF8String(),
              MatchesRegex("[0-9a-f]{1,8}-4[0-9a-f]{3}-.*"));
  EXPECT_TRUE(fs::is_directory(Utf8(made)));
  EXPECT_FALSE(KVTFileUtil::CreateUniqueTemporaryDirectory().HasPath());
}

TEST_F(UniqueFile, StaysInTmpWhereThatIsTheDirectory) {
  for (const KVTFile& made :
       {KVTFileUtil::CreateUniqueFile("/tmp", "pre", "ext"),
        KVTFileUtil::CreateUniqueTemporaryFile("pre", "ext")}) {
    EXPECT_THAT(Utf8(made), MatchesRegex("/tmp/pre[A-Za-z0-9]{6}\\.ext"));
    EXPECT_EQ(ReadFile(Utf8(made)), "");
    EXPECT_EQ(ModeOf(Utf8(made)), 0600u);
    EXPECT_EQ(made.GetParentPath(false), "/tmp");
  }
  EXPECT_EQ(Names().size(), 2u);
  EXPECT_THAT(NamesIn("/tmp/target"), IsEmpty());
}

TEST_F(UniqueFile, IsMovedToAnotherDirectory) {
  const Umask mask(022);
  const KVTFile made =
      KVTFileUtil::CreateUniqueFile("/tmp/target", FromUtf8("\xC3\xA4 "), "e");
  EXPECT_THAT(Utf8(made),
              MatchesRegex("/tmp/target/\xC3\xA4 [A-Za-z0-9]{6}\\.e"));
  EXPECT_EQ(ReadFile(Utf8(made)), "");
  // A copy has the mode of new files.
  EXPECT_EQ(ModeOf(Utf8(made)), 0644u);
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(UniqueFile, EndsInADotWithoutAnExtension) {
  const KVTFile made = KVTFileUtil::CreateUniqueFile("/tmp/target", "", "");
  EXPECT_THAT(Utf8(made), MatchesRegex("/tmp/target/[A-Za-z0-9]{6}\\."));
  EXPECT_TRUE(made.Exists());
}

TEST_F(UniqueFile, IsNewAtEveryCall) {
  const KVTFile one = KVTFileUtil::CreateUniqueFile("/tmp", "p", "e");
  const KVTFile two = KVTFileUtil::CreateUniqueFile("/tmp", "p", "e");
  EXPECT_NE(one.GetPath(), two.GetPath());
  EXPECT_EQ(Names().size(), 2u);
}

TEST_F(UniqueFile, NamesNothingWhereTmpHasATrailingSeparator) {
  const KVTFile made = KVTFileUtil::CreateUniqueFile("/tmp/", "p", "e");
  EXPECT_THAT(Utf8(made), MatchesRegex("/tmp//p[A-Za-z0-9]{6}\\.e"));
  EXPECT_FALSE(made.Exists());
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(UniqueFile, IsNotMadeWhereTheDirectoryIsNone) {
  WriteFile("/tmp/target/f", "");
  int calls = 0;
  hooks::Scoped hook(hooks::onMkstemp, [&calls](char* pattern) {
    ++calls;
    return hooks::RealMkstemp(pattern);
  });
  for (const char* directory : {"", "/tmp/missing", "/tmp/target/f"}) {
    EXPECT_FALSE(KVTFileUtil::CreateUniqueFile(directory, "p", "e").HasPath());
  }
  EXPECT_EQ(calls, 0);
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(UniqueFile, IsEmptyWhereNoFileCanBeMade) {
  std::vector<std::string> patterns;
  hooks::Scoped hook(hooks::onMkstemp, [&patterns](char* pattern) {
    patterns.push_back(pattern);
    errno = EEXIST;
    return -1;
  });
  EXPECT_FALSE(
      KVTFileUtil::CreateUniqueFile("/tmp/target", "p", "e").HasPath());
  EXPECT_FALSE(KVTFileUtil::CreateUniqueTemporaryFile("p", "e").HasPath());
  EXPECT_THAT(patterns, ElementsAre("/tmp/XXXXXX", "/tmp/XXXXXX"));
}

TEST_F(UniqueFile, LeavesTheFileInTmpWhereTheNameIsRefused) {
  // An illegal prefix, one with a folder that is missing, a separator last.
  const char* const refused[][2] = {{"p*", "e"}, {"no/p", "e"}, {"p", "e/"}};
  std::size_t left = 0;
  for (const auto& name : refused) {
    EXPECT_FALSE(KVTFileUtil::CreateUniqueFile("/tmp/target", name[0], name[1])
                     .HasPath());
    EXPECT_EQ(Names().size(), ++left);
  }
  for (const std::string& name : Names()) {
    EXPECT_THAT(name, MatchesRegex("[A-Za-z0-9]{6}"));
  }
  EXPECT_THAT(NamesIn("/tmp/target"), IsEmpty());
}

TEST_F(UniqueFile, TakesAFolderInThePrefix) {
  const KVTFile made = KVTFileUtil::CreateUniqueFile("/tmp", "target/p", "e");
  EXPECT_THAT(Utf8(made), MatchesRegex("/tmp/target/p[A-Za-z0-9]{6}\\.e"));
  EXPECT_TRUE(made.Exists());
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(UniqueFile, NamesItsPlaceEvenWhereTheMoveFails) {
  hooks::Scoped hook(hooks::onSendfile,
                     [](int, int, off_t*, std::size_t) -> ssize_t {
                       errno = EIO;
                       return -1;
                     });
  const KVTFile made = KVTFileUtil::CreateUniqueFile("/tmp/target", "p", "e");
  EXPECT_THAT(Utf8(made), MatchesRegex("/tmp/target/p[A-Za-z0-9]{6}\\.e"));
  // The file stays behind under its new name.
  EXPECT_THAT(Names(), ElementsAre(made.GetName().GetUTF8String()));
}

TEST_F(UniqueFile, IsClosed) {
  const std::size_t before = OpenDescriptors();
  EXPECT_TRUE(KVTFileUtil::CreateUniqueFile("/tmp/target", "", "").HasPath());
  EXPECT_TRUE(KVTFileUtil::CreateUniqueFile("/tmp", "", "").HasPath());
  EXPECT_EQ(OpenDescriptors(), before);
}

}  // namespace
