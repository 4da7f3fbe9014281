#include <gtest/gtest.h>

#include <climits>
#include <type_traits>

#include "KVTLogger.h"
#include "test_strings.h"

namespace {

static_assert(!std::is_polymorphic<KVTLoggingOptions>::value, "");

void ExpectDefaults(const KVTLoggingOptions& options) {
  EXPECT_EQ(options.GetApplicationName(), "");
  EXPECT_EQ(options.NumberOfSupportedLevels(), 1);
  EXPECT_EQ(options.NumberOfLevelsToShowInUserLog(), 3);
  EXPECT_FALSE(options.GetUserLogFile().HasPath());
  EXPECT_FALSE(options.GetInternalLogFile().HasPath());
}

TEST(LoggingOptions, StartWithTheDefaults) {
  ExpectDefaults(KVTLoggingOptions());
}

TEST(LoggingOptions, KeepWhatTheyAreGiven) {
  KVTLoggingOptions options;
  EXPECT_TRUE(options.SetApplicationName("app"));
  EXPECT_TRUE(options.SetNumberOfSupportedLevels(6));
  EXPECT_TRUE(options.SetNumberOfLevelsToShowInUserLog(4));
  EXPECT_TRUE(options.SetUserLogFile(KVTFile("/user")));
  EXPECT_TRUE(options.SetInternalLogFile(KVTFile("/internal")));
  EXPECT_EQ(options.GetApplicationName(), "app");
  EXPECT_EQ(options.NumberOfSupportedLevels(), 6);
  EXPECT_EQ(options.NumberOfLevelsToShowInUserLog(), 4);
  EXPECT_EQ(options.GetUserLogFile().GetPath(), "/user");
  EXPECT_EQ(options.GetInternalLogFile().GetPath(), "/internal");
}

TEST(LoggingOptions, CheckNothing) {
  KVTLoggingOptions options;
  for (int number : {INT_MIN, -1, 0, 7, INT_MAX}) {
    EXPECT_TRUE(options.SetNumberOfSupportedLevels(number));
    EXPECT_TRUE(options.SetNumberOfLevelsToShowInUserLog(number));
    EXPECT_EQ(options.NumberOfSupportedLevels(), number);
    EXPECT_EQ(options.NumberOfLevelsToShowInUserLog(), number);
  }
  EXPECT_TRUE(options.SetUserLogFile(KVTFile()));
  EXPECT_TRUE(options.SetApplicationName(KVTString()));
}

TEST(LoggingOptions, GiveCopies) {
  KVTLoggingOptions options;
  options.SetApplicationName("app");
  options.SetUserLogFile(KVTFile("/user"));
  KVTString name = options.GetApplicationName();
  name += "changed";
  KVTFile file = options.GetUserLogFile();
  file = KVTFile();
  EXPECT_EQ(options.GetApplicationName(), "app");
  EXPECT_EQ(options.GetUserLogFile().GetPath(), "/user");
}

TEST(LoggingOptions, AreValues) {
  KVTLoggingOptions options;
  options.SetApplicationName("app");
  options.SetInternalLogFile(KVTFile("/internal"));
  KVTLoggingOptions copy(options);
  options = KVTLoggingOptions();
  ExpectDefaults(options);
  EXPECT_EQ(copy.GetApplicationName(), "app");
  EXPECT_EQ(copy.GetInternalLogFile().GetPath(), "/internal");
}

// As the library's loading has left it: this runs in a process of its own.
TEST(LoggerAtLoad, HasTheDefaultsAndNoStreams) {
  ExpectDefaults(KVTLogger::mOptions);
  EXPECT_EQ(KVTLogger::mInternalLogFile, nullptr);
  EXPECT_EQ(KVTLogger::mUserLogFile, nullptr);
}

}  // namespace
