#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

#include "KVTFileUtil.h"
#include "glob_model.h"
#include "hooks.h"
#include "namespaces.h"
#include "open_descriptors.h"
#include "sockets_and_devices.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using Names = std::vector<KVTString>;

struct Pattern {
  const char* startsWith;
  const char* contains;
  const char* extension;
};

// The bare names that match; fails the test when the call does.
Names List(const KVTString& directory, const Pattern& pattern) {
  Names names;
  EXPECT_EQ(
      KVTFileUtil::GetFileNamesInDirectory(
          directory, FromUtf8(pattern.startsWith), FromUtf8(pattern.contains),
          FromUtf8(pattern.extension), names, false),
      0);
  return names;
}

class Listing : public testing::Test {
 protected:
  void Make(std::initializer_list<const char*> names) const {
    for (const char* name : names) WriteFile(mDirectory.Path(name), "");
  }

  Names List(const Pattern& pattern) const {
    return ::List(mDirectory.Text(), pattern);
  }

  const TemporaryDirectory mDirectory;
};

// --- Failure

TEST_F(Listing, ReturnsOneWithTheNamesUntouchedWhereNothingCanBeRead) {
  Make({"f"});
  Names names = FromUtf8({"before"});
  for (const KVTString& directory :
       {KVTString(), mDirectory.Text("missing"), mDirectory.Text("f")}) {
    EXPECT_EQ(KVTFileUtil::GetFileNamesInDirectory(directory, "", "", "", names,
                                                   false),
              1);
  }
  hooks::Scoped hook(hooks::onOpendir, [](const char*) -> DIR* {
    errno = EACCES;
    return nullptr;
  });
  EXPECT_EQ(KVTFileUtil::GetFileNamesInDirectory(mDirectory.Text(), "", "", "",
                                                 names, false),
            1);
  EXPECT_EQ(names, FromUtf8({"before"}));
}

TEST_F(Listing, ReturnsZeroForAnEmptyDirectory) {
  EXPECT_THAT(List({"", "", ""}), IsEmpty());
}

// --- What is listed

TEST_F(Listing, AppendsToTheNamesInTheOrderOfTheDirectory) {
  Make({"c", "a", "b", "z", "m"});
  Names expected = FromUtf8({"before"});
  DIR* const reader = opendir(mDirectory.Path().c_str());
  while (const dirent* entry = readdir(reader)) {
    if (entry->d_name[0] != '.') expected.push_back(FromUtf8(entry->d_name));
  }
  closedir(reader);

  Names names = FromUtf8({"before"});
  EXPECT_EQ(KVTFileUtil::GetFileNamesInDirectory(mDirectory.Text(), "", "", "",
                                                 names, false),
            0);
  EXPECT_EQ(names, expected);
  EXPECT_EQ(names.size(), 6u);
}

TEST_F(Listing, PassesOverSubdirectoriesAndDoesNotEnterThem) {
  fs::create_directory(mDirectory.Path("a.txt"));
  WriteFile(mDirectory.Path("a.txt/b.txt"), "");
  Make({"c.txt"});
  EXPECT_THAT(List({"", "", "txt"}), ElementsAre(FromUtf8("c.txt")));
}

TEST_F(Listing, ListsLinksSocketsAndPipes) {
  fs::create_symlink(".", mDirectory.Path("toDirectory"));
  fs::create_symlink("missing", mDirectory.Path("dangling"));
  MakeSocket(mDirectory.Path("socket"));
  ASSERT_EQ(mkfifo(mDirectory.Path("pipe").c_str(), 0600), 0);
  EXPECT_THAT(
      List({"", "", ""}),
      UnorderedElementsAre(FromUtf8("toDirectory"), FromUtf8("dangling"),
                           FromUtf8("socket"), FromUtf8("pipe")));
}

TEST_F(Listing, TakesAnEntryOfUnknownTypeForAFile) {
  fs::create_directory(mDirectory.Path("d"));
  Make({"f"});
  EXPECT_THAT(List({"", "", ""}), ElementsAre(FromUtf8("f")));
  hooks::Scoped hook(hooks::onReaddir, [](DIR* directory) {
    dirent* const entry = hooks::RealReaddir(directory);
    if (entry != nullptr) entry->d_type = DT_UNKNOWN;
    return entry;
  });
  EXPECT_THAT(List({"", "", ""}),
              UnorderedElementsAre(FromUtf8("d"), FromUtf8("f")));
}

TEST_F(Listing, ListsHiddenFilesButNotTheDirectoryAndItsParent) {
  Make({".hidden", "...", "..a"});
  EXPECT_THAT(List({"", "", ""}),
              UnorderedElementsAre(FromUtf8(".hidden"), FromUtf8("..."),
                                   FromUtf8("..a")));
}

TEST_F(Listing, JoinsTheDirectoryAsGivenForFullPaths) {
  Make({"f"});
  Names names;
  EXPECT_EQ(KVTFileUtil::GetFileNamesInDirectory(mDirectory.Text(), "", "", "",
                                                 names, true),
            0);
  EXPECT_EQ(KVTFileUtil::GetFileNamesInDirectory(mDirectory.Text(""), "", "",
                                                 "", names, true),
            0);
  EXPECT_THAT(names, ElementsAre(mDirectory.Text("f"), mDirectory.Text("/f")));
}

TEST_F(Listing, DecodesNamesAsUtf8) {
  const char* const name = "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80";
  Make({name});
  EXPECT_THAT(List({"", "", ""}), ElementsAre(FromUtf8(name)));
  EXPECT_THAT(List({"\xC3\xA4", "", ""}), ElementsAre(FromUtf8(name)));
}

TEST_F(Listing, ReadsArgumentsThatStandInTheResult) {
  for (int i = 0; i < 40; ++i) Make({("a" + std::to_string(i)).c_str()});
  Names names = {mDirectory.Text(), "a"};
  EXPECT_EQ(KVTFileUtil::GetFileNamesInDirectory(names[0], names[1], names[1],
                                                 "", names, true),
            0);
  EXPECT_EQ(names.size(), 2u);
  names.resize(2);
  EXPECT_EQ(KVTFileUtil::GetFileNamesInDirectory(names[0], names[1], "", "",
                                                 names, true),
            0);
  EXPECT_EQ(names.size(), 42u);
}

TEST_F(Listing, ClosesTheDirectory) {
  const std::size_t before = OpenDescriptors();
  List({"", "", ""});
  EXPECT_EQ(OpenDescriptors(), before);
}

// --- Patterns

TEST_F(Listing, WithAnExtensionNothingFollowsWhatIsContained) {
  Make({"a.txt", "alog.txt", "alogb.txt", "log.txt", "A.TXT", "b.text",
        "a.txt.bak", "txt", ".txt"});
  EXPECT_THAT(List({"", "", "txt"}),
              UnorderedElementsAre(FromUtf8("a.txt"), FromUtf8("alog.txt"),
                                   FromUtf8("alogb.txt"), FromUtf8("log.txt"),
                                   FromUtf8("A.TXT"), FromUtf8(".txt")));
  EXPECT_THAT(List({"a", "", "txt"}),
              UnorderedElementsAre(FromUtf8("a.txt"), FromUtf8("alog.txt"),
                                   FromUtf8("alogb.txt"), FromUtf8("A.TXT")));
  EXPECT_THAT(List({"", "log", "txt"}),
              UnorderedElementsAre(FromUtf8("alog.txt"), FromUtf8("log.txt")));
}

TEST_F(Listing,
       WithoutAnExtensionTheContainedTextStandsAnywhereBehindTheStart) {
  Make({"log", "alog", "alogb", "logA", "aLOGb.txt", "lo"});
  EXPECT_THAT(
      List({"", "log", ""}),
      UnorderedElementsAre(FromUtf8("log"), FromUtf8("alog"), FromUtf8("alogb"),
                           FromUtf8("logA"), FromUtf8("aLOGb.txt")));
  EXPECT_THAT(List({"a", "log", ""}),
              UnorderedElementsAre(FromUtf8("alog"), FromUtf8("alogb"),
                                   FromUtf8("aLOGb.txt")));
  // The start is not shared with what is contained.
  EXPECT_THAT(List({"log", "log", ""}), IsEmpty());
}

TEST_F(Listing, IgnoresCaseOnBothSides) {
  Make({"Abc.TXT"});
  EXPECT_THAT(List({"aB", "C", "txt"}), ElementsAre(FromUtf8("Abc.TXT")));
}

TEST_F(Listing, TakesGlobCharactersInTheArgumentsAsSuch) {
  Make({"a1.txt", "b1.txt", "c1.txt", "[ab]x"});
  EXPECT_THAT(List({"[ab]", "", "t?t"}),
              UnorderedElementsAre(FromUtf8("a1.txt"), FromUtf8("b1.txt")));
  EXPECT_THAT(List({"\\[ab", "", ""}), ElementsAre(FromUtf8("[ab]x")));
}

TEST_F(Listing, TakesParenthesesForCharactersLikeAnyOther) {
  Make({"a1", "@(a)2"});
  EXPECT_THAT(List({"@(a)", "", ""}), ElementsAre(FromUtf8("@(a)2")));
}

TEST_F(Listing, AgreesWithTheModelOnEveryCombinationOfPatterns) {
  std::vector<std::string> all;
  for (const char* start : {"", "a", "B", "ab", ".", "*", "[a]", "-"}) {
    for (const char* middle : {"", "log", "A", "x.y"}) {
      for (const char* end : {"", ".", ".txt", ".TXT", ".t"}) {
        const std::string name = std::string(start) + middle + end;
        if (name.empty() || name == "." || name == "..") continue;
        if (fs::exists(mDirectory.Path(name))) continue;
        WriteFile(mDirectory.Path(name), "");
        all.push_back(name);
      }
    }
  }
  ASSERT_GT(all.size(), 100u);

  int matches = 0;
  for (const char* start : {"", "a", "A", "ab", ".", "*", "?", "[ab]", "\\*"}) {
    for (const char* contains : {"", "log", "L", ".", "*", "?", "[xy]"}) {
      for (const char* extension : {"", "txt", "TXT", "t*", "?", "."}) {
        const Pattern pattern = {start, contains, extension};
        const std::string glob =
            std::string(start) + "*" + contains +
            (*extension == '\0' ? "*" : std::string(".") + extension);
        Names expected;
        for (const std::string& name : all) {
          if (GlobMatches(glob, name)) expected.push_back(FromUtf8(name));
        }
        matches += static_cast<int>(expected.size());
        EXPECT_THAT(List(pattern), testing::UnorderedElementsAreArray(expected))
            << glob;
      }
    }
  }
  EXPECT_GT(matches, 1000);
}

// In memory, for the sake of speed.
class LongListing : public Listing {
 protected:
  LongListing() {
    EnterPrivateMounts();
    CoverWithEmptyDirectory(mDirectory.Path());
  }
  ~LongListing() override { Uncover(mDirectory.Path()); }
};

TEST_F(LongListing, ReadsTenThousandEntries) {
  for (int i = 0; i < 10000; ++i) {
    WriteFile(mDirectory.Path("file" + std::to_string(i) +
                              (i % 2 == 0 ? ".log" : ".txt")),
              "");
  }
  Names names = List({"", "", ""});
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names.size(), 10000u);
  EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
  EXPECT_EQ(List({"", "", "txt"}).size(), 5000u);
  EXPECT_EQ(List({"file999", "", ""}).size(), 11u);
  EXPECT_EQ(mDirectory.File().GetSize(), 10000u);
}

}  // namespace
