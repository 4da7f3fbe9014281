#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "KVTFileUtil.h"
#include "sockets_and_devices.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

namespace fs = std::filesystem;

// A working directory with a file "f" and a directory "d".
class RenameFile : public testing::Test {
 protected:
  RenameFile() {
    WriteFile("f", "content");
    fs::create_directory("d");
  }

  KVTFile File(const std::string& name) const { return mDirectory.File(name); }

  const TemporaryDirectory mDirectory;
  const WorkingDirectory mInside{mDirectory.Path()};
};

TEST_F(RenameFile, GivesTheFileItsNewNameInsideItsDirectory) {
  KVTFile file = File("f");
  EXPECT_TRUE(KVTFileUtil::RenameFile(file, FromUtf8("g \xC3\xA4.txt")));
  EXPECT_FALSE(fs::exists("f"));
  EXPECT_EQ(ReadFile("g \xC3\xA4.txt"), "content");
}

TEST_F(RenameFile, LeavesTheObjectWithTheOldPath) {
  KVTFile file = File("f");
  EXPECT_TRUE(KVTFileUtil::RenameFile(file, "g"));
  EXPECT_EQ(file.GetPath(), mDirectory.Text("f"));
  EXPECT_FALSE(file.Exists());
}

TEST_F(RenameFile, ReplacesAnExistingFile) {
  WriteFile("g", "a longer old content");
  KVTFile file = File("f");
  EXPECT_TRUE(KVTFileUtil::RenameFile(file, "g"));
  EXPECT_EQ(ReadFile("g"), "content");
}

TEST_F(RenameFile, OntoItselfIsTrue) {
  KVTFile file = File("f");
  EXPECT_TRUE(KVTFileUtil::RenameFile(file, "f"));
  EXPECT_EQ(ReadFile("f"), "content");
}

TEST_F(RenameFile, RefusesAnEmptyText) {
  KVTFile nothing;
  KVTFile file = File("f");
  EXPECT_FALSE(KVTFileUtil::RenameFile(nothing, "g"));
  EXPECT_FALSE(KVTFileUtil::RenameFile(file, ""));
  EXPECT_TRUE(fs::exists("f"));
}

TEST_F(RenameFile, RefusesDirectoriesAndWhatCountsAsOne) {
  fs::create_symlink("d", "toDirectory");
  MakeSocket(mDirectory.Path("socket"));
  for (const char* name : {"d", "toDirectory", "socket"}) {
    KVTFile file = File(name);
    EXPECT_FALSE(KVTFileUtil::RenameFile(file, "g")) << name;
    EXPECT_TRUE(fs::exists(name));
  }
  EXPECT_FALSE(fs::exists("g"));
}

TEST_F(RenameFile, RefusesWhatDoesNotExist) {
  fs::create_symlink("missing", "dangling");
  KVTFile missing = File("missing");
  KVTFile dangling = File("dangling");
  EXPECT_FALSE(KVTFileUtil::RenameFile(missing, "g"));
  EXPECT_FALSE(KVTFileUtil::RenameFile(dangling, "g"));
  EXPECT_TRUE(fs::is_symlink("dangling"));
}

struct NewNameCase {
  const char* name;
  const char* newName;
};

const NewNameCase kRefusedNames[] = {
    {"Star", "g*"},
    {"QuestionMark", "g?"},
    {"Backslash", "g\\h"},
    {"LessThan", "<g"},
    {"Quote", "g\""},
    {"GreaterThan", "g>"},
    {"Bar", "g|h"},
    {"SeparatorAlone", "/"},
    {"NoNameLast", "d//"},
    {"IllegalLast", "d/*"},
    // Valid, but rename(2) does not take it.
    {"SeparatorBehindTheName", "g/"},
    {"MissingFolder", "missing/g"},
    {"Directory", "d"},
};

void PrintTo(const NewNameCase& c, std::ostream* os) { *os << c.name; }

class RefusedNameTable : public RenameFile,
                         public testing::WithParamInterface<NewNameCase> {};

TEST_P(RefusedNameTable, LeavesTheFile) {
  KVTFile file = File("f");
  EXPECT_FALSE(KVTFileUtil::RenameFile(file, FromUtf8(GetParam().newName)));
  EXPECT_EQ(ReadFile("f"), "content");
}

INSTANTIATE_TEST_SUITE_P(, RefusedNameTable, testing::ValuesIn(kRefusedNames),
                         [](const auto& test) { return test.param.name; });

TEST_F(RenameFile, TakesANameWithAColonOrAPercentSign) {
  KVTFile file = File("f");
  EXPECT_TRUE(KVTFileUtil::RenameFile(file, "a:50%"));
  EXPECT_TRUE(fs::exists("a:50%"));
}

TEST_F(RenameFile, LooksAtTheLastComponentOfTheNewNameOnly) {
  KVTFile file = File("f");
  EXPECT_TRUE(KVTFileUtil::RenameFile(file, "d/g"));
  EXPECT_EQ(ReadFile("d/g"), "content");

  fs::create_directory("*");
  KVTFile moved = File("d/g");
  EXPECT_TRUE(KVTFileUtil::RenameFile(moved, "../*/h"));
  EXPECT_EQ(ReadFile("*/h"), "content");
}

TEST_F(RenameFile, TakesABareNameForItsOwnDirectory) {
  KVTFile bare("f");
  EXPECT_FALSE(KVTFileUtil::RenameFile(bare, "g"));
  EXPECT_TRUE(fs::exists("f"));
  KVTFile relative("./f");
  EXPECT_TRUE(KVTFileUtil::RenameFile(relative, "g"));
  EXPECT_TRUE(fs::exists("g"));
}

TEST_F(RenameFile, MovesALinkAndNotItsTarget) {
  fs::create_symlink("f", "link");
  KVTFile file = File("link");
  EXPECT_TRUE(KVTFileUtil::RenameFile(file, "g"));
  EXPECT_TRUE(fs::is_symlink("g"));
  EXPECT_TRUE(fs::is_regular_file("f"));
}

}  // namespace
