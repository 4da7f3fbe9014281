// Which lines reach the user log, and where it is.

#include <algorithm>
#include <string>
#include <vector>

#include "captured_descriptor.h"
#include "logger_test.h"

namespace {

const char* const kPaddedLevels[] = {" NONE", "FATAL", "ERROR", " WARN",
                                     " INFO", "TRACE", "DEBUG"};

struct FilterCase {
  const char* name;  // part of the test's name: letters and digits only
  int shown;
  std::vector<int> inFile;
  std::vector<int> onStandardError;
};

const FilterCase kFilterCases[] = {
    {"MinusOne", -1, {}, {}},
    {"Zero", 0, {}, {}},
    {"One", 1, {0, 1}, {}},
    {"Two", 2, {0, 1, 2}, {}},
    {"Three", 3, {0, 1, 2, 3}, {}},
    {"Four", 4, {0, 1, 2, 3, 4}, {}},
    {"Five", 5, {}, {5}},
    {"Six", 6, {0, 1, 2, 3, 4, 6}, {}},
    {"Seven", 7, {0, 1, 2, 3, 4, 6}, {}},
};

void PrintTo(const FilterCase& c, std::ostream* out) { *out << c.name; }

class LogFilter : public LoggerTest,
                  public testing::WithParamInterface<FilterCase> {
 protected:
  static std::string Lines(const std::vector<int>& levels) {
    std::string lines;
    for (const int level : levels) {
      lines +=
          Header(kPaddedLevels[level]) + "line " + std::to_string(level) + "\n";
    }
    return lines;
  }

  static bool Contains(const std::vector<int>& levels, int level) {
    return std::find(levels.begin(), levels.end(), level) != levels.end();
  }
};

// Each level by itself, on a fresh logger.
TEST_P(LogFilter, TakesEachLevelWhereItBelongs) {
  const FilterCase& c = GetParam();
  for (int level = 0; level <= 6; ++level) {
    SCOPED_TRACE(level);
    std::remove(InternalPath().c_str());
    std::remove(UserPath().c_str());
    KVTLogger::mUserLogFile = nullptr;
    CapturedDescriptor standardError(2);
    ASSERT_TRUE(KVTLogger::Initialize(Options(c.shown)));
    FILE* const userLog = KVTLogger::mUserLogFile;
    KVTLogger::Log("Run", "main.cpp", 7, level, "line %d", level);
    EXPECT_TRUE(KVTLogger::Terminate());

    EXPECT_EQ(Internal(), Lines({level}));
    EXPECT_EQ(standardError.Text(),
              Contains(c.onStandardError, level) ? Lines({level}) : "");
    if (c.shown == 0) {
      EXPECT_EQ(userLog, nullptr);
      EXPECT_FALSE(KVTFile(FromUtf8(UserPath())).Exists());
      continue;
    }
    EXPECT_EQ(User(), Contains(c.inFile, level) ? Lines({level}) : "");
    if (KVTLogger::mUserLogFile == stderr) fclose(userLog);
  }
}

// All levels one after the other.
TEST_P(LogFilter, TakesTheLevelsOfOneRun) {
  const FilterCase& c = GetParam();
  CapturedDescriptor standardError(2);
  ASSERT_TRUE(KVTLogger::Initialize(Options(c.shown)));
  FILE* const userLog = KVTLogger::mUserLogFile;
  for (int level = 0; level <= 6; ++level) {
    KVTLogger::Log("Run", "main.cpp", 7, level, "line %d", level);
  }
  KVTLogger::Terminate();
  EXPECT_EQ(Internal(), Lines({0, 1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(standardError.Text(), Lines(c.onStandardError));
  if (c.shown == 0) return;
  EXPECT_EQ(User(), Lines(c.inFile));
  if (KVTLogger::mUserLogFile == stderr) fclose(userLog);
}

INSTANTIATE_TEST_SUITE_P(, LogFilter, testing::ValuesIn(kFilterCases),
                         [](const auto& test) { return test.param.name; });

class LogDestination : public LoggerTest {};

TEST_F(LogDestination, IsStandardErrorForGoodAfterATraceLine) {
  CapturedDescriptor standardError(2);
  ASSERT_TRUE(KVTLogger::Initialize(Options(5)));
  FILE* const userLog = KVTLogger::mUserLogFile;
  EXPECT_NE(userLog, stderr);
  KVTLogger::Log("Run", "main.cpp", 7, 4, "too low");
  EXPECT_EQ(KVTLogger::mUserLogFile, userLog);
  KVTLogger::Log("Run", "main.cpp", 7, 5, "trace");
  EXPECT_EQ(KVTLogger::mUserLogFile, stderr);
  // Other options do not bring the file back.
  KVTLogger::mOptions.SetNumberOfLevelsToShowInUserLog(3);
  KVTLogger::Log("Run", "main.cpp", 7, 1, "fatal");
  EXPECT_EQ(KVTLogger::mUserLogFile, stderr);
  EXPECT_EQ(standardError.Text(),
            Header("TRACE") + "trace\n" + Header("FATAL") + "fatal\n");
  // The file's stream stays open and empty.
  EXPECT_GE(fputs("still open", userLog), 0);
  EXPECT_EQ(fclose(userLog), 0);
  EXPECT_EQ(User(), "still open");
  KVTLogger::Terminate();
}

TEST_F(LogDestination, IsStandardErrorWhereThereIsNoUserLog) {
  CapturedDescriptor standardError(2);
  ASSERT_TRUE(KVTLogger::Initialize(Options(0)));
  KVTLogger::Log("Run", "main.cpp", 7, 1, "not shown");
  EXPECT_EQ(KVTLogger::mUserLogFile, nullptr);
  KVTLogger::mOptions.SetNumberOfLevelsToShowInUserLog(2);
  KVTLogger::Log("Run", "main.cpp", 7, 3, "not shown");
  EXPECT_EQ(KVTLogger::mUserLogFile, nullptr);
  KVTLogger::Log("Run", "main.cpp", 7, 2, "shown");
  EXPECT_EQ(KVTLogger::mUserLogFile, stderr);
  EXPECT_EQ(standardError.Text(), Header("ERROR") + "shown\n");
  KVTLogger::Terminate();
}

// Standard error is unbuffered: the line is there without a flush.
TEST_F(LogDestination, ShowsTraceLinesAtOnce) {
  CapturedDescriptor standardError(2);
  ASSERT_TRUE(KVTLogger::Initialize(Options(5)));
  FILE* const userLog = KVTLogger::mUserLogFile;
  KVTLogger::Log("Run", "main.cpp", 7, 5, "trace");
  EXPECT_EQ(standardError.Written(), Header("TRACE") + "trace\n");
  KVTLogger::Terminate();
  fclose(userLog);
}

TEST_F(LogDestination, FollowsTheOptionsInForce) {
  CapturedDescriptor standardError(2);
  ASSERT_TRUE(KVTLogger::Initialize(Options(1)));
  KVTLogger::Log("Run", "main.cpp", 7, 2, "not shown");
  KVTLogger::mOptions.SetNumberOfLevelsToShowInUserLog(2);
  KVTLogger::mOptions.SetApplicationName("other");
  KVTLogger::Log("Run", "main.cpp", 7, 2, "shown");
  KVTLogger::Terminate();
  EXPECT_EQ(User(), "other" + Header("ERROR").substr(3) + "shown\n");
  EXPECT_EQ(standardError.Text(), "");
}

TEST_F(LogDestination, DoesNotDependOnTheSupportedLevels) {
  for (int supported : {-1, 0, 1, 6}) {
    std::remove(InternalPath().c_str());
    std::remove(UserPath().c_str());
    KVTLoggingOptions options = Options(4);
    options.SetNumberOfSupportedLevels(supported);
    ASSERT_TRUE(KVTLogger::Initialize(options));
    KVTLogger::Log("Run", "main.cpp", 7, 4, "x");
    KVTLogger::Log("Run", "main.cpp", 7, 6, "y");
    KVTLogger::Terminate();
    EXPECT_EQ(Internal(), Header(" INFO") + "x\n" + Header("DEBUG") + "y\n");
    EXPECT_EQ(User(), Header(" INFO") + "x\n");
  }
}

}  // namespace
