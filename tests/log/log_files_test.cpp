// Opening and closing the logs.

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

#include "captured_descriptor.h"
#include "logger_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Writes down what is opened and closed.
class StreamLog {
 public:
  StreamLog()
      : mFopen(hooks::onFopen,
               [this](const char* path, const char* mode) {
                 opened.push_back(std::string(mode) + " " + path);
                 return hooks::RealFopen(path, mode);
               }),
        mFclose(hooks::onFclose, [this](FILE* stream) {
          closed.push_back(stream);
          return hooks::RealFclose(stream);
        }) {}

  std::vector<std::string> opened;
  std::vector<FILE*> closed;

 private:
  hooks::Scoped<decltype(hooks::onFopen)> mFopen;
  hooks::Scoped<decltype(hooks::onFclose)> mFclose;
};

class LogFiles : public LoggerTest {
 protected:
  // Tells apart options that were taken over and those of before.
  static void ExpectDefaultOptions() {
    EXPECT_EQ(KVTLogger::mOptions.GetApplicationName(), "");
    EXPECT_EQ(KVTLogger::mOptions.NumberOfSupportedLevels(), 1);
    EXPECT_EQ(KVTLogger::mOptions.NumberOfLevelsToShowInUserLog(), 3);
    EXPECT_FALSE(KVTLogger::mOptions.GetInternalLogFile().HasPath());
    EXPECT_FALSE(KVTLogger::mOptions.GetUserLogFile().HasPath());
  }
};

TEST_F(LogFiles, AreMadeWhereTheyAreMissing) {
  StreamLog log;
  EXPECT_TRUE(KVTLogger::Initialize(Options(3)));
  EXPECT_THAT(log.opened,
              ElementsAre("w " + InternalPath(), "w " + UserPath()));
  EXPECT_NE(KVTLogger::mInternalLogFile, nullptr);
  EXPECT_NE(KVTLogger::mUserLogFile, nullptr);
  KVTLogger::Terminate();
  EXPECT_EQ(Internal(), "");
  EXPECT_EQ(User(), "");
}

TEST_F(LogFiles, KeepTheirContentWhereTheyExist) {
  WriteFile(InternalPath(), "old internal\n");
  WriteFile(UserPath(), "old user\n");
  StreamLog log;
  EXPECT_TRUE(KVTLogger::Initialize(Options(3)));
  EXPECT_THAT(log.opened,
              ElementsAre("a+ " + InternalPath(), "a+ " + UserPath()));
  KVTLogger::Log("Run", "main.cpp", 7, 1, "new");
  KVTLogger::Terminate();
  EXPECT_EQ(Internal(), "old internal\n" + Header("FATAL") + "new\n");
  EXPECT_EQ(User(), "old user\n" + Header("FATAL") + "new\n");
}

TEST_F(LogFiles, AreAskedForEachByItself) {
  WriteFile(UserPath(), "");
  StreamLog log;
  EXPECT_TRUE(KVTLogger::Initialize(Options(3)));
  EXPECT_THAT(log.opened,
              ElementsAre("w " + InternalPath(), "a+ " + UserPath()));
  KVTLogger::Terminate();
}

// With both logs in one file, the second finds it made by the first.
TEST_F(LogFiles, MayBeOneFile) {
  KVTLoggingOptions options = Options(3);
  options.SetUserLogFile(FromUtf8(InternalPath()));
  StreamLog log;
  EXPECT_TRUE(KVTLogger::Initialize(options));
  EXPECT_THAT(log.opened,
              ElementsAre("w " + InternalPath(), "a+ " + InternalPath()));
  KVTLogger::Terminate();
}

TEST_F(LogFiles, LeaveTheUserLogAloneWhenNothingIsToBeShown) {
  KVTLoggingOptions options = Options(0);
  options.SetUserLogFile(KVTFile());
  StreamLog log;
  KVTLogger::mUserLogFile = stdout;
  EXPECT_TRUE(KVTLogger::Initialize(options));
  EXPECT_THAT(log.opened, ElementsAre("w " + InternalPath()));
  EXPECT_EQ(KVTLogger::mUserLogFile, stdout);
  KVTLogger::mUserLogFile = nullptr;
  EXPECT_TRUE(KVTLogger::Terminate());
  EXPECT_EQ(log.closed.size(), 1u);
}

TEST_F(LogFiles, OpenTheUserLogForANegativeNumberOfLevels) {
  StreamLog log;
  EXPECT_TRUE(KVTLogger::Initialize(Options(-1)));
  EXPECT_EQ(log.opened.size(), 2u);
  KVTLogger::Terminate();
}

TEST_F(LogFiles, HavePathsBeyondAscii) {
  KVTLoggingOptions options = Options(3);
  const std::string path = mDirectory.Path("gr\xC3\xBCn \xF0\x9F\x98\x80");
  options.SetInternalLogFile(FromUtf8(path));
  EXPECT_TRUE(KVTLogger::Initialize(options));
  KVTLogger::Terminate();
  EXPECT_EQ(ReadFile(path), "");
}

TEST_F(LogFiles, TakeOverAllOptions) {
  KVTLoggingOptions options = Options(4);
  options.SetNumberOfSupportedLevels(6);
  EXPECT_TRUE(KVTLogger::Initialize(options));
  EXPECT_EQ(KVTLogger::mOptions.GetApplicationName(), "app");
  EXPECT_EQ(KVTLogger::mOptions.NumberOfSupportedLevels(), 6);
  EXPECT_EQ(KVTLogger::mOptions.NumberOfLevelsToShowInUserLog(), 4);
  EXPECT_EQ(KVTLogger::mOptions.GetInternalLogFile().GetPath(),
            FromUtf8(InternalPath()));
  EXPECT_EQ(KVTLogger::mOptions.GetUserLogFile().GetPath(),
            FromUtf8(UserPath()));
  // A copy: later changes by the caller do not show.
  options.SetApplicationName("other");
  EXPECT_EQ(KVTLogger::mOptions.GetApplicationName(), "app");
  KVTLogger::Terminate();
}

TEST_F(LogFiles, TakeOverTheOptionsOfASecondInitialize) {
  EXPECT_TRUE(KVTLogger::Initialize(Options(4)));
  KVTLogger::Terminate();
  KVTLoggingOptions options;
  options.SetApplicationName("other");
  options.SetNumberOfSupportedLevels(2);
  options.SetNumberOfLevelsToShowInUserLog(1);
  options.SetInternalLogFile(mDirectory.File("internal2.log"));
  options.SetUserLogFile(mDirectory.File("user2.log"));
  EXPECT_TRUE(KVTLogger::Initialize(options));
  EXPECT_EQ(KVTLogger::mOptions.GetApplicationName(), "other");
  EXPECT_EQ(KVTLogger::mOptions.NumberOfSupportedLevels(), 2);
  EXPECT_EQ(KVTLogger::mOptions.NumberOfLevelsToShowInUserLog(), 1);
  EXPECT_EQ(KVTLogger::mOptions.GetInternalLogFile().GetPath(),
            mDirectory.Text("internal2.log"));
  EXPECT_EQ(KVTLogger::mOptions.GetUserLogFile().GetPath(),
            mDirectory.Text("user2.log"));
  KVTLogger::Terminate();
}

TEST_F(LogFiles, MayBeOpenedWithTheOptionsInForce) {
  KVTLogger::mOptions = Options(4);
  EXPECT_TRUE(KVTLogger::Initialize(KVTLogger::mOptions));
  EXPECT_EQ(KVTLogger::mOptions.GetApplicationName(), "app");
  EXPECT_EQ(KVTLogger::mOptions.NumberOfLevelsToShowInUserLog(), 4);
  KVTLogger::Terminate();
}

TEST_F(LogFiles, ReportDefaultOptionsWithAnEmptyPath) {
  CapturedDescriptor standardError(2);
  StreamLog log;
  EXPECT_FALSE(KVTLogger::Initialize(KVTLoggingOptions()));
  EXPECT_EQ(standardError.Text(),
            "Error in Initialize opening user log file: \n");
  EXPECT_THAT(log.opened, ElementsAre("w "));
  EXPECT_EQ(KVTLogger::mInternalLogFile, nullptr);
}

TEST_F(LogFiles, ReportAnInternalLogThatDoesNotOpen) {
  KVTLoggingOptions options = Options(3);
  const std::string path = mDirectory.Path("miss\xC3\xADng/100%s.log");
  options.SetInternalLogFile(FromUtf8(path));
  CapturedDescriptor standardError(2);
  StreamLog log;
  KVTLogger::mInternalLogFile = stdout;
  KVTLogger::mUserLogFile = stdout;
  EXPECT_FALSE(KVTLogger::Initialize(options));
  EXPECT_EQ(standardError.Text(),
            "Error in Initialize opening user log file: " + path + "\n");
  EXPECT_EQ(KVTLogger::mInternalLogFile, nullptr);
  // The user log was not tried.
  EXPECT_EQ(KVTLogger::mUserLogFile, stdout);
  KVTLogger::mUserLogFile = nullptr;
  EXPECT_THAT(log.opened, ElementsAre("w " + path));
  EXPECT_FALSE(KVTFile(FromUtf8(UserPath())).Exists());
  ExpectDefaultOptions();
  // There is nothing to close.
  EXPECT_TRUE(KVTLogger::Terminate());
  EXPECT_THAT(log.closed, IsEmpty());
}

TEST_F(LogFiles, ReportAUserLogThatDoesNotOpen) {
  KVTLoggingOptions options = Options(6);
  options.SetUserLogFile(mDirectory.File());
  CapturedDescriptor standardError(2);
  StreamLog log;
  KVTLogger::mUserLogFile = stdout;
  EXPECT_FALSE(KVTLogger::Initialize(options));
  const std::string message =
      "Error in Initialize opening user log file: " + mDirectory.Path() + "\n";
  EXPECT_EQ(standardError.Text(), message);
  EXPECT_THAT(log.opened,
              ElementsAre("w " + InternalPath(), "a+ " + mDirectory.Path()));
  EXPECT_NE(KVTLogger::mInternalLogFile, nullptr);
  EXPECT_EQ(KVTLogger::mUserLogFile, nullptr);
  ExpectDefaultOptions();

  // Logging works, by the options of before: three levels, no name.
  KVTLogger::Log("Run", "main.cpp", 7, 4, "internal alone");
  EXPECT_EQ(KVTLogger::mUserLogFile, nullptr);
  KVTLogger::Log("Run", "main.cpp", 7, 3, "both");
  EXPECT_EQ(KVTLogger::mUserLogFile, stderr);
  EXPECT_EQ(standardError.Text(),
            message + Header(" WARN").substr(3) + "both\n");
  EXPECT_TRUE(KVTLogger::Terminate());
  EXPECT_EQ(Internal(), Header(" INFO").substr(3) + "internal alone\n" +
                            Header(" WARN").substr(3) + "both\n");
}

TEST_F(LogFiles, AreOverwrittenWithoutBeingClosed) {
  StreamLog log;
  EXPECT_TRUE(KVTLogger::Initialize(Options(3)));
  FILE* const internal = KVTLogger::mInternalLogFile;
  FILE* const user = KVTLogger::mUserLogFile;
  KVTLogger::Log("Run", "main.cpp", 7, 1, "first");
  EXPECT_TRUE(KVTLogger::Initialize(Options(3)));
  EXPECT_THAT(log.closed, IsEmpty());
  EXPECT_NE(KVTLogger::mInternalLogFile, internal);
  EXPECT_NE(KVTLogger::mUserLogFile, user);
  // The second time the files are there.
  EXPECT_EQ(log.opened.size(), 4u);
  EXPECT_EQ(log.opened[2], "a+ " + InternalPath());
  EXPECT_EQ(log.opened[3], "a+ " + UserPath());
  fclose(internal);
  fclose(user);
  KVTLogger::Log("Run", "main.cpp", 7, 1, "second");
  KVTLogger::Terminate();
  EXPECT_EQ(Internal(),
            Header("FATAL") + "first\n" + Header("FATAL") + "second\n");
}

TEST_F(LogFiles, AreClosedUserLogFirst) {
  StreamLog log;
  EXPECT_TRUE(KVTLogger::Initialize(Options(3)));
  FILE* const internal = KVTLogger::mInternalLogFile;
  FILE* const user = KVTLogger::mUserLogFile;
  EXPECT_TRUE(KVTLogger::Terminate());
  EXPECT_THAT(log.closed, ElementsAre(user, internal));
  // The members keep what they held.
  EXPECT_EQ(KVTLogger::mInternalLogFile, internal);
  EXPECT_EQ(KVTLogger::mUserLogFile, user);
}

TEST_F(LogFiles, AreClosedAgainByASecondTerminate) {
  EXPECT_TRUE(KVTLogger::Initialize(Options(3)));
  FILE* const internal = KVTLogger::mInternalLogFile;
  FILE* const user = KVTLogger::mUserLogFile;
  {
    std::vector<FILE*> closed;
    hooks::Scoped hook(hooks::onFclose, [&closed](FILE* stream) {
      closed.push_back(stream);
      return 0;
    });
    EXPECT_TRUE(KVTLogger::Terminate());
    EXPECT_TRUE(KVTLogger::Terminate());
    EXPECT_THAT(closed, ElementsAre(user, internal, user, internal));
  }
  KVTLogger::Terminate();
}

TEST_F(LogFiles, NeedNoInitializeToTerminate) {
  StreamLog log;
  EXPECT_TRUE(KVTLogger::Terminate());
  EXPECT_THAT(log.closed, IsEmpty());
}

TEST_F(LogFiles, AreClosedEachByItself) {
  StreamLog log;
  FILE* const user = hooks::RealFopen(UserPath().c_str(), "w");
  KVTLogger::mUserLogFile = user;
  EXPECT_TRUE(KVTLogger::Terminate());
  EXPECT_THAT(log.closed, ElementsAre(user));
}

TEST_F(LogFiles, LeaveStandardErrorOpen) {
  StreamLog log;
  EXPECT_TRUE(KVTLogger::Initialize(Options(5)));
  FILE* const internal = KVTLogger::mInternalLogFile;
  FILE* const user = KVTLogger::mUserLogFile;
  {
    CapturedDescriptor standardError(2);
    KVTLogger::Log("Run", "main.cpp", 7, 5, "trace");
    EXPECT_TRUE(KVTLogger::Terminate());
    EXPECT_GE(fputs("still open", stderr), 0);
    EXPECT_EQ(standardError.Text(), Header("TRACE") + "trace\nstill open");
  }
  // Neither standard error nor the user log that it took the place of.
  EXPECT_THAT(log.closed, ElementsAre(internal));
  EXPECT_EQ(User(), "");
  fclose(user);
}

TEST_F(LogFiles, AreNotFlushedBeforeTerminate) {
  EXPECT_TRUE(KVTLogger::Initialize(Options(3)));
  KVTLogger::Log("Run", "main.cpp", 7, 1, "one\n");
  KVTLogger::Log("Run", "main.cpp", 7, 1, "two");
  EXPECT_EQ(Internal(), "");
  EXPECT_EQ(User(), "");
  KVTLogger::Terminate();
  EXPECT_EQ(Internal(), User());
  EXPECT_EQ(User(), Header("FATAL") + "one\n" + Header("FATAL") + "two\n");
}

TEST_F(LogFiles, TakeTextWhenTheBufferIsFull) {
  EXPECT_TRUE(KVTLogger::Initialize(Options(3)));
  std::string expected;
  for (int i = 0; i < 1000; ++i) {
    KVTLogger::Log("Run", "main.cpp", 7, 1, "line %d", i);
    expected += Header("FATAL") + "line " + std::to_string(i) + "\n";
  }
  for (const std::string& written : {Internal(), User()}) {
    EXPECT_NE(written, "");
    EXPECT_LT(written.size(), expected.size());
    EXPECT_EQ(written, expected.substr(0, written.size()));
  }
  KVTLogger::Terminate();
  EXPECT_EQ(Internal(), expected);
  EXPECT_EQ(User(), expected);
}

TEST_F(LogFiles, LoseTextOnAFullDeviceWithoutAWord) {
  KVTLoggingOptions options = Options(3);
  options.SetInternalLogFile(KVTFile("/dev/full"));
  CapturedDescriptor standardError(2);
  ASSERT_TRUE(KVTLogger::Initialize(options));
  const std::string text(100000, 'x');
  KVTLogger::Log("Run", "main.cpp", 7, 1, "%s", text.c_str());
  EXPECT_TRUE(KVTLogger::Terminate());
  EXPECT_EQ(standardError.Text(), "");
  EXPECT_EQ(User(), Header("FATAL") + text + "\n");
}

using LogFilesDeathTest = LogFiles;

TEST_F(LogFilesDeathTest, MustBeOpenBeforeTheFirstLine) {
#ifdef __SANITIZE_ADDRESS__
  EXPECT_DEATH(KVTLogger::Log("Run", "main.cpp", 7, 1, "x"), "null pointer");
#else
  EXPECT_EXIT(KVTLogger::Log("Run", "main.cpp", 7, 1, "x"),
              testing::KilledBySignal(SIGSEGV), "");
#endif
  // A stream of the caller's own will do.
  FILE* const stream = hooks::RealFopen(InternalPath().c_str(), "w");
  KVTLogger::mInternalLogFile = stream;
  KVTLogger::Log("Run", "main.cpp", 7, 4, "x");
  KVTLogger::Terminate();
  EXPECT_EQ(Internal(), Header(" INFO").substr(3) + "x\n");
}

TEST_F(LogFilesDeathTest, LoseWhatAProcessHasNotWrittenWhenItDies) {
  EXPECT_EXIT(
      {
        KVTLogger::Initialize(Options(3));
        KVTLogger::Log("Run", "main.cpp", 7, 1, "lost");
        _exit(7);
      },
      testing::ExitedWithCode(7), "");
  EXPECT_EQ(Internal(), "");
  EXPECT_EXIT(
      {
        KVTLogger::Initialize(Options(3));
        KVTLogger::Log("Run", "main.cpp", 7, 1, "kept");
        exit(7);
      },
      testing::ExitedWithCode(7), "");
  EXPECT_EQ(Internal(), Header("FATAL") + "kept\n");
}

}  // namespace
