#include "logger_test.h"

#include <climits>
#include <string>

namespace {

class LogLine : public LoggerTest {
 protected:
  void SetUp() override { ASSERT_TRUE(KVTLogger::Initialize(Options(6))); }

  // What both logs hold once they are closed.
  std::string Finish() {
    KVTLogger::Terminate();
    EXPECT_EQ(User(), Internal());
    return Internal();
  }
};

struct LevelCase {
  int level;
  const char* padded;
};

TEST_F(LogLine, NamesTheLevelRightAlignedInFiveColumns) {
  const LevelCase cases[] = {{0, " NONE"}, {1, "FATAL"}, {2, "ERROR"},
                             {3, " WARN"}, {4, " INFO"}, {6, "DEBUG"}};
  std::string expected;
  for (const LevelCase& c : cases) {
    KVTLogger::Log("Run", "main.cpp", 7, c.level, "text");
    expected += Header(c.padded) + "text\n";
  }
  EXPECT_EQ(Finish(), expected);
}

TEST_F(LogLine, NamesTraceInTheInternalLog) {
  KVTLogger::Log("Run", "main.cpp", 7, 5, "text");
  KVTLogger::Terminate();
  EXPECT_EQ(Internal(), Header("TRACE") + "text\n");
  EXPECT_EQ(User(), "");
}

TEST_F(LogLine, HasTheWholeFormToTheByte) {
  KVTLogger::Log("Run", "main.cpp", 7, 4, "%d files of %s", 3, "backup");
  EXPECT_EQ(Finish(),
            "app  INFO : Saturday, March 07, 2026 01:05PM "
            "                 Run() "
            "            main.cpp:7 "
            "3 files of backup\n");
}

TEST_F(LogLine, AlignsNamesInTwentyColumnsAndCutsNothing) {
  const struct {
    std::string name;
    std::string padded;
  } cases[] = {
      {"", "                    "},
      {"n", "                   n"},
      {"nineteen_characters", " nineteen_characters"},
      {"twenty_characters_xx", "twenty_characters_xx"},
      {"twenty_one_characters", "twenty_one_characters"},
      {std::string(300, 'x'), std::string(300, 'x')},
  };
  std::string expected;
  for (const auto& c : cases) {
    KVTLogger::Log(FromUtf8(c.name), FromUtf8(c.name), 1, 4, "x");
    expected += "app  INFO : Saturday, March 07, 2026 01:05PM " + c.padded +
                "() " + c.padded + ":1 x\n";
  }
  EXPECT_EQ(Finish(), expected);
}

TEST_F(LogLine, ShowsNamesAsTheyAreGiven) {
  KVTLogger::Log("Class::Run(int)", "../src/log/main.cpp", 1, 4, "x");
  EXPECT_EQ(Finish(),
            "app  INFO : Saturday, March 07, 2026 01:05PM "
            "     Class::Run(int)()  ../src/log/main.cpp:1 x\n");
}

// printf counts bytes.
TEST_F(LogLine, AlignsByTheBytesOfUtf8) {
  KVTLogger::Log(FromUtf8("\xC3\xBC"), FromUtf8("\xF0\x9F\x98\x80"), 1, 4, "x");
  EXPECT_EQ(Finish(),
            "app  INFO : Saturday, March 07, 2026 01:05PM "
            "                  \xC3\xBC() "
            "                \xF0\x9F\x98\x80:1 x\n");
}

TEST_F(LogLine, TakesLineNumbersOf64Bits) {
  KVTLogger::Log("Run", "main.cpp", LLONG_MAX, 4, "x");
  KVTLogger::Log("Run", "main.cpp", LLONG_MIN, 4, "x");
  KVTLogger::Log("Run", "main.cpp", 0, 4, "x");
  const std::string front =
      "app  INFO : Saturday, March 07, 2026 01:05PM                  Run() "
      "            main.cpp:";
  EXPECT_EQ(Finish(), front + "9223372036854775807 x\n" + front +
                          "-9223372036854775808 x\n" + front + "0 x\n");
}

TEST_F(LogLine, AddsALineFeedUnlessTheFormatEndsInOne) {
  KVTLogger::Log("Run", "main.cpp", 7, 4, "none");
  KVTLogger::Log("Run", "main.cpp", 7, 4, "one\n");
  KVTLogger::Log("Run", "main.cpp", 7, 4, "two\n\n");
  KVTLogger::Log("Run", "main.cpp", 7, 4, "in\nside");
  KVTLogger::Log("Run", "main.cpp", 7, 4, "\n");
  const std::string header = Header(" INFO");
  EXPECT_EQ(Finish(), header + "none\n" + header + "one\n" + header +
                          "two\n\n" + header + "in\nside\n" + header + "\n");
}

TEST_F(LogLine, LooksForTheLineFeedInTheFormatAlone) {
  KVTLogger::Log("Run", "main.cpp", 7, 4, "%s", "one\n");
  KVTLogger::Log("Run", "main.cpp", 7, 4, "%s\n", "two\n");
  const std::string header = Header(" INFO");
  EXPECT_EQ(Finish(), header + "one\n\n" + header + "two\n\n");
}

// The last byte is then the one in front of the text.
TEST_F(LogLine, DoesNotAskWhetherTheFormatIsEmpty) {
  char lineFeed[] = "\n";
  char letter[] = "x";
  KVTLogger::Log("Run", "main.cpp", 7, 4, lineFeed + 1);
  KVTLogger::Log("Run", "main.cpp", 7, 4, letter + 1);
  const std::string header = Header(" INFO");
  EXPECT_EQ(Finish(), header + header + "\n");
}

// The argument list is started afresh for the user log.
TEST_F(LogLine, FormatsEveryKindOfArgumentForBothLogs) {
  KVTLogger::Log("Run", "main.cpp", 7, 4, "%d %u %lld %s %c %.3f %p %x %%", -1,
                 2u, 3ll, "four", '5', 6.0, nullptr, 7);
  EXPECT_EQ(Finish(), Header(" INFO") + "-1 2 3 four 5 6.000 (nil) 7 %\n");
}

TEST_F(LogLine, PassesTextBeyondAsciiThroughUnchanged) {
  KVTLogger::Log("Run", "main.cpp", 7, 4, "\xFF%s", "\xC3\xBC\x80");
  EXPECT_EQ(Finish(), Header(" INFO") + "\xFF\xC3\xBC\x80\n");
}

TEST_F(LogLine, TakesVeryLongText) {
  const std::string text(1 << 20, 'x');
  KVTLogger::Log("Run", "main.cpp", 7, 4, "%s", text.c_str());
  EXPECT_EQ(Finish(), Header(" INFO") + text + "\n");
}

TEST_F(LogLine, ReadsTheClockOncePerCall) {
  KVTLogger::Log("Run", "main.cpp", 7, 4, "x");
  EXPECT_EQ(mClockReads, 1);
  KVTLogger::Log("Run", "main.cpp", 7, 5, "x");
  EXPECT_EQ(mClockReads, 2);
  KVTLogger::Terminate();
}

TEST_F(LogLine, HasNoDateWhenTheClockStandsAtZero) {
  mNow = 0;
  KVTLogger::Log("Run", "main.cpp", 7, 4, "x");
  EXPECT_EQ(Finish(),
            "app  INFO :                    Run() "
            "            main.cpp:7 x\n");
}

class LogDate : public LoggerTest {
 protected:
  // The date and time of a line logged at `now` in `zone`.
  std::string DateAt(const std::string& zone, time_t now) {
    const TimeZone timeZone(zone);
    mNow = now;
    std::remove(InternalPath().c_str());
    EXPECT_TRUE(KVTLogger::Initialize(Options(0)));
    KVTLogger::Log("F", "f", 1, 4, "x");
    KVTLogger::Terminate();
    const std::string line = Internal();
    const std::string front = "app  INFO : ";
    const std::string back =
        "                    F()                    f:1 x\n";
    EXPECT_EQ(line.substr(0, front.size()), front);
    EXPECT_EQ(line.substr(line.size() - back.size()), back);
    return line.substr(front.size(), line.size() - front.size() - back.size());
  }
};

// The year is that of the ISO 8601 week.
TEST_F(LogDate, ShowsTheYearOfTheWeekAroundNewYear) {
  const struct {
    const char* zone;
    time_t now;
    const char* date;
  } cases[] = {
      // 2024-12-30 is the Monday of week 1 of 2025.
      {kUtc, 1735516799, "Sunday, December 29, 2024 11:59PM"},
      {kUtc, 1735516800, "Monday, December 30, 2025 12:00AM"},
      {kUtc, 1735689599, "Tuesday, December 31, 2025 11:59PM"},
      {kUtc, 1735689600, "Wednesday, January 01, 2025 12:00AM"},
      // 2021-01-03 is the Sunday of week 53 of 2020.
      {kUtc, 1609459199, "Thursday, December 31, 2020 11:59PM"},
      {kUtc, 1609459200, "Friday, January 01, 2020 12:00AM"},
      {kUtc, 1609718399, "Sunday, January 03, 2020 11:59PM"},
      {kUtc, 1609718400, "Monday, January 04, 2021 12:00AM"},
      // The same moments elsewhere.
      {"<+14>-14", 1735466399, "Sunday, December 29, 2024 11:59PM"},
      {"<+14>-14", 1735466400, "Monday, December 30, 2025 12:00AM"},
      {"<+14>-14", 1609718399, "Monday, January 04, 2021 01:59PM"},
      {kNewYork, 1735516800, "Sunday, December 29, 2024 07:00PM"},
      {kNewYork, 1609718400, "Sunday, January 03, 2020 07:00PM"},
      {kCentralEurope, 1735516799, "Monday, December 30, 2025 12:59AM"},
      {kCentralEurope, 1772888700, "Saturday, March 07, 2026 02:05PM"},
      {kCentralEurope, 1782820800, "Tuesday, June 30, 2026 02:00PM"},
      {kNepal, 1609459200, "Friday, January 01, 2020 05:45AM"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(DateAt(c.zone, c.now), c.date) << c.zone << " " << c.now;
  }
}

TEST_F(LogDate, ShowsTheTwelveHourClock) {
  const time_t midnight = 1772841600;  // 2026-03-07 00:00:00 UTC
  const struct {
    time_t seconds;
    const char* time;
  } cases[] = {{0, "12:00AM"},         {59, "12:00AM"},
               {60, "12:01AM"},        {3600, "01:00AM"},
               {11 * 3600, "11:00AM"}, {12 * 3600 - 1, "11:59AM"},
               {12 * 3600, "12:00PM"}, {13 * 3600, "01:00PM"},
               {23 * 3600, "11:00PM"}};
  for (const auto& c : cases) {
    EXPECT_EQ(DateAt(kUtc, midnight + c.seconds),
              std::string("Saturday, March 07, 2026 ") + c.time);
  }
}

class LogName : public LoggerTest {
 protected:
  std::string LineOf(const KVTString& application) {
    KVTLoggingOptions options = Options(0);
    options.SetApplicationName(application);
    EXPECT_TRUE(KVTLogger::Initialize(options));
    KVTLogger::Log("Run", "main.cpp", 7, 4, "x");
    KVTLogger::Terminate();
    return Internal();
  }

  const std::string mBack =
      "  INFO : Saturday, March 07, 2026 01:05PM                  Run() "
      "            main.cpp:7 x\n";
};

TEST_F(LogName, StandsFirstInUtf8) {
  EXPECT_EQ(LineOf(FromUtf8("gr\xC3\xBC\xC3\x9F"
                            "e 100% %s")),
            "gr\xC3\xBC\xC3\x9F"
            "e 100% %s" +
                mBack);
}

TEST_F(LogName, MayBeEmpty) { EXPECT_EQ(LineOf(""), mBack); }

TEST_F(LogName, StopsAtItsFirstZeroUnit) {
  const KVTString& name = FromUnits({'a', 0, 'b'});
  EXPECT_EQ(LineOf(name), "a" + mBack);
}

}  // namespace
