#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <optional>
#include <string>

#include "KVTCommandUtil.h"
#include "captured_descriptor.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

// Sets PATH, or takes it away, while the object lives.
class SearchPath {
 public:
  explicit SearchPath(const char* value) {
    if (const char* const previous = getenv("PATH")) mPrevious = previous;
    if (value != nullptr) {
      setenv("PATH", value, 1);
    } else {
      unsetenv("PATH");
    }
  }
  ~SearchPath() {
    if (mPrevious) {
      setenv("PATH", mPrevious->c_str(), 1);
    } else {
      unsetenv("PATH");
    }
  }

 private:
  std::optional<std::string> mPrevious;
};

struct Outcome {
  bool result;
  std::string output;
};

Outcome Check(const std::optional<std::string>& path,
              const char* command = "x") {
  const SearchPath searchPath(path ? path->c_str() : nullptr);
  CapturedDescriptor output(1);
  KVTString name(command);
  const bool result = KVTCommandUtil::CheckCommandExistence(name);
  EXPECT_EQ(name, command);
  return {result, output.Text()};
}

class CommandLookup : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"a", "b", "c"}) {
      std::filesystem::create_directory(mDirectory.Path(name));
    }
    WriteFile(mDirectory.Path("a/x"), "");
    WriteFile(mDirectory.Path("b/y"), "");
  }

  std::string Line(const std::string& name) {
    return " " + mDirectory.Path(name) + "\n";
  }

  TemporaryDirectory mDirectory;
};

TEST_F(CommandLookup, SaysTrueAndPrintsNothingWithoutPath) {
  const Outcome outcome = Check(std::nullopt);
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.output, "");
}

TEST_F(CommandLookup, SaysTrueAndPrintsNothingForAnEmptyPath) {
  const Outcome outcome = Check("");
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.output, "");
}

TEST_F(CommandLookup, TakesAPathThatDecodesToNothingForEmpty) {
  const Outcome outcome = Check("\xC3");
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.output, "");
}

TEST_F(CommandLookup, ListsTheFilesOfEarlierDirectoriesAgain) {
  const Outcome outcome =
      Check(mDirectory.Path("a") + ":" + mDirectory.Path("b"));
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.output,
            Line("a") + Line("a/x") + Line("b") + Line("a/x") + Line("b/y"));
}

TEST_F(CommandLookup, ListsOneDirectory) {
  const Outcome outcome = Check(mDirectory.Path("b"));
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.output, Line("b") + Line("b/y"));
}

TEST_F(CommandLookup, ListsADirectoryTwiceWhenItStandsThereTwice) {
  const std::string a = mDirectory.Path("a");
  EXPECT_EQ(Check(a + ":" + a).output,
            Line("a") + Line("a/x") + Line("a") + Line("a/x") + Line("a/x"));
}

TEST_F(CommandLookup, ShowsAMissingDirectoryWithoutALineEnd) {
  const Outcome outcome =
      Check(mDirectory.Path("a") + ":" + mDirectory.Path("missing"));
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.output, Line("a") + Line("a/x") + Line("missing") + ":(");
}

TEST_F(CommandLookup, RunsTheNextLineIntoTheMarkOfAMissingDirectory) {
  const Outcome outcome =
      Check(mDirectory.Path("missing") + ":" + mDirectory.Path("a"));
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.output, Line("missing") + ":(" + Line("a") + Line("a/x"));
}

TEST_F(CommandLookup, ShowsAFileInPathLikeAMissingDirectory) {
  EXPECT_EQ(Check(mDirectory.Path("a/x")).output, Line("a/x") + ":(");
}

TEST_F(CommandLookup, DoesNotListSubdirectories) {
  std::filesystem::create_directory(mDirectory.Path("c/sub"));
  WriteFile(mDirectory.Path("c/sub/z"), "");
  EXPECT_EQ(Check(mDirectory.Path("c")).output, Line("c"));
}

TEST_F(CommandLookup, ListsFilesThatCannotBeRun) {
  WriteFile(mDirectory.Path("c/.hidden"), "");
  EXPECT_EQ(Check(mDirectory.Path("c")).output, Line("c") + Line("c/.hidden"));
}

TEST_F(CommandLookup, ListsNamesBeyondAsciiAsUtf8) {
  std::filesystem::create_directory(mDirectory.Path("gr\xC3\xBCn"));
  WriteFile(mDirectory.Path("gr\xC3\xBCn/\xF0\x9F\x98\x80"), "");
  EXPECT_EQ(Check(mDirectory.Path("gr\xC3\xBCn")).output,
            Line("gr\xC3\xBCn") + Line("gr\xC3\xBCn/\xF0\x9F\x98\x80"));
}

TEST_F(CommandLookup, CutsPathAtColonsAlone) {
  const std::string name = "a;b, c\\d\te";
  std::filesystem::create_directory(mDirectory.Path(name));
  WriteFile(mDirectory.Path(name + "/z"), "");
  EXPECT_EQ(Check(mDirectory.Path(name)).output,
            Line(name) + Line(name + "/z"));
}

TEST_F(CommandLookup, SkipsEmptyPartsOfPath) {
  EXPECT_EQ(
      Check(mDirectory.Path("a") + "::" + mDirectory.Path("b") + ":").output,
      Check(mDirectory.Path("a") + ":" + mDirectory.Path("b")).output);
}

// The tokeniser drops a text whose delimiters all stand in front.
TEST_F(CommandLookup, PrintsNothingForOneDirectoryBehindAColon) {
  const Outcome outcome = Check(":" + mDirectory.Path("a"));
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(Check(":" + mDirectory.Path("a") + ":").output,
            Line("a") + Line("a/x"));
}

TEST_F(CommandLookup, PrintsNothingForColonsAlone) {
  for (const char* path : {":", ":::"}) {
    const Outcome outcome = Check(path);
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.output, "");
  }
}

TEST_F(CommandLookup, IgnoresTheCommand) {
  const std::string path = mDirectory.Path("a");
  const Outcome there = Check(path, "x");
  for (const char* command : {"no-such-command", "", "../a/x"}) {
    const Outcome other = Check(path, command);
    EXPECT_EQ(other.result, there.result);
    EXPECT_EQ(other.output, there.output);
  }
}

// Each line is flushed, the mark is not.
TEST_F(CommandLookup, FlushesItsLines) {
  const std::string path =
      mDirectory.Path("a") + ":" + mDirectory.Path("missing");
  const SearchPath searchPath(path.c_str());
  CapturedDescriptor output(1);
  KVTString command;
  KVTCommandUtil::CheckCommandExistence(command);
  EXPECT_EQ(output.Written(), Line("a") + Line("a/x") + Line("missing"));
  EXPECT_EQ(output.Text(), Line("a") + Line("a/x") + Line("missing") + ":(");
}

TEST_F(CommandLookup, FlushesTheLastFile) {
  const std::string path = mDirectory.Path("a");
  const SearchPath searchPath(path.c_str());
  CapturedDescriptor output(1);
  KVTString command;
  KVTCommandUtil::CheckCommandExistence(command);
  EXPECT_EQ(output.Written(), Line("a") + Line("a/x"));
}

}  // namespace
