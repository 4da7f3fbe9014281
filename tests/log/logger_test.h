/// What the tests of the logger share.

#ifndef KVT_TESTS_LOGGER_TEST_H
#define KVT_TESTS_LOGGER_TEST_H

#include <gtest/gtest.h>
#include <time.h>

#include <cstdio>
#include <string>

#include "KVTLogger.h"
#include "hooks.h"
#include "temporary_directory.h"
#include "test_strings.h"
#include "time_zone.h"

/// Gives each test a logger as it is when the library is loaded, a clock that
/// stands at Saturday, 2026-03-07 13:05:00 UTC, and files in a directory.
class LoggerTest : public testing::Test {
 protected:
  LoggerTest()
      : mClock(hooks::onTime, [this](time_t*) {
          ++mClockReads;
          return mNow;
        }) {
    Reset();
  }
  ~LoggerTest() override { Reset(); }

  std::string InternalPath() const { return mDirectory.Path("internal.log"); }
  std::string UserPath() const { return mDirectory.Path("user.log"); }
  std::string Internal() const { return ReadFile(InternalPath()); }
  std::string User() const { return ReadFile(UserPath()); }

  /// Application "app", both files, `shown` levels.
  KVTLoggingOptions Options(int shown) const {
    KVTLoggingOptions options;
    options.SetApplicationName("app");
    options.SetNumberOfLevelsToShowInUserLog(shown);
    options.SetInternalLogFile(FromUtf8(InternalPath()));
    options.SetUserLogFile(FromUtf8(UserPath()));
    return options;
  }

  /// The header of a line that "Run" in "main.cpp" logs at line 7.
  static std::string Header(const std::string& paddedLevel) {
    return "app " + paddedLevel + " : Saturday, March 07, 2026 01:05PM " +
           "                 Run() " + "            main.cpp:7 ";
  }

  time_t mNow = 1772888700;
  int mClockReads = 0;
  TemporaryDirectory mDirectory;

 private:
  static void Reset() {
    KVTLogger::mInternalLogFile = nullptr;
    KVTLogger::mUserLogFile = nullptr;
    KVTLogger::mOptions = KVTLoggingOptions();
  }

  TimeZone mZone{kUtc};
  hooks::Scoped<decltype(hooks::onTime)> mClock;
};

#endif  // KVT_TESTS_LOGGER_TEST_H
