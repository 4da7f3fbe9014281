#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "KVTTime.h"
#include "hooks.h"
#include "test_strings.h"
#include "time_zone.h"

namespace {

// 2026-03-07 13:05:09 UTC, a Saturday
constexpr unsigned long long kSaturdayAfternoon = 1772888709;

KVTString LongDate(unsigned long long seconds) {
  KVTString text("before");
  EXPECT_TRUE(KVTTime(seconds).DateToString(text, false));
  return text;
}

KVTString ShortDate(unsigned long long seconds) {
  KVTString text("before");
  EXPECT_TRUE(KVTTime(seconds).DateToString(text, true));
  return text;
}

KVTString TimeOfDay(unsigned long long seconds) {
  KVTString text("before");
  EXPECT_TRUE(KVTTime(seconds).TimeToString(text));
  return text;
}

// --- As text

TEST(KVTTimeText, IsEmptyAndRefusedWhenTheTimeIsNotSet) {
  for (const bool shortForm : {true, false}) {
    KVTString text("before");
    EXPECT_FALSE(KVTTime().DateToString(text, shortForm));
    EXPECT_EQ(text, "");
  }
  KVTString text("before");
  EXPECT_FALSE(KVTTime().TimeToString(text));
  EXPECT_EQ(text, "");
}

TEST(KVTTimeText, GivesTheShortDateWithoutPadding) {
  const TimeZone zone(kUtc);
  EXPECT_EQ(ShortDate(kSaturdayAfternoon), "3/7/2026");
  EXPECT_EQ(ShortDate(253402300799), "12/31/9999");
}

TEST(KVTTimeText, GivesDatesBefore1970) {
  const TimeZone zone(kUtc);
  EXPECT_EQ(ShortDate(0ull - 11644473600ull), "1/1/1601");
  EXPECT_EQ(LongDate(0ull - 11644473600ull), "Monday, January 01, 1601");
}

TEST(KVTTimeText, GivesTheLongDateWithATwoDigitDay) {
  const TimeZone zone(kUtc);
  EXPECT_EQ(LongDate(kSaturdayAfternoon), "Saturday, March 07, 2026");
  EXPECT_EQ(LongDate(253402300799), "Friday, December 31, 9999");
}

TEST(KVTTimeText, EndsTheLongDateInTheYearOfTheIsoWeek) {
  const TimeZone zone(kUtc);
  EXPECT_EQ(LongDate(1798804800), "Friday, January 01, 2026");  // 2027
  EXPECT_EQ(ShortDate(1798804800), "1/1/2027");
  EXPECT_EQ(LongDate(1798718400), "Thursday, December 31, 2026");
  EXPECT_EQ(LongDate(1735473600), "Sunday, December 29, 2024");
  EXPECT_EQ(LongDate(1735560000), "Monday, December 30, 2025");  // 2024
  EXPECT_EQ(LongDate(1609675200), "Sunday, January 03, 2020");   // 2021
  EXPECT_EQ(LongDate(1609761600), "Monday, January 04, 2021");
}

TEST(KVTTimeText, GivesDatesInLocalTime) {
  // 2027-01-01 00:30 in central Europe, still 2026 in New York
  const unsigned long long seconds = 1798718400 + 11 * 3600 + 1800;
  {
    const TimeZone zone(kCentralEurope);
    EXPECT_EQ(ShortDate(seconds), "1/1/2027");
    EXPECT_EQ(LongDate(seconds), "Friday, January 01, 2026");
    EXPECT_EQ(TimeOfDay(seconds), "12:30AM");
  }
  const TimeZone zone(kNewYork);
  EXPECT_EQ(ShortDate(seconds), "12/31/2026");
  EXPECT_EQ(LongDate(seconds), "Thursday, December 31, 2026");
  EXPECT_EQ(TimeOfDay(seconds), "06:30PM");
}

TEST(KVTTimeText, GivesTheTimeOnATwelveHourClock) {
  const TimeZone zone(kUtc);
  constexpr unsigned long long kMidnight = 1772841600;  // 2026-03-07
  const std::pair<int, const char*> rows[] = {
      {0 * 60 + 0, "12:00AM"},  {0 * 60 + 5, "12:05AM"},
      {1 * 60 + 0, "01:00AM"},  {11 * 60 + 59, "11:59AM"},
      {12 * 60 + 0, "12:00PM"}, {13 * 60 + 5, "01:05PM"},
      {23 * 60 + 59, "11:59PM"}};
  for (const auto& [minutes, expected] : rows) {
    EXPECT_EQ(TimeOfDay(kMidnight + static_cast<unsigned>(minutes) * 60),
              expected);
  }
}

TEST(KVTTimeText, IsWhatStrftimeGivesInto100BytesReadAsUtf8) {
  std::vector<std::pair<std::string, std::size_t>> calls;
  const hooks::Scoped hook(
      hooks::onStrftime,
      [&calls](char* out, std::size_t size, const char* format, const tm*) {
        calls.emplace_back(format, size);
        std::strcpy(out, "f\xC3\xA9vrier");
        return std::size_t{8};
      });
  EXPECT_EQ(LongDate(kSaturdayAfternoon),
            FromUnits({'f', 0xE9, 'v', 'r', 'i', 'e', 'r'}));
  EXPECT_EQ(TimeOfDay(kSaturdayAfternoon), "f\xC3\xA9vrier");
  const std::vector<std::pair<std::string, std::size_t>> expected = {
      {"%A, %B %d, %G", 100}, {"%I:%M%p", 100}};
  EXPECT_EQ(calls, expected);
}

TEST(KVTTimeText, IsEmptyWhenStrftimeHasNoRoom) {
  const hooks::Scoped hook(
      hooks::onStrftime, [](char* out, std::size_t, const char*, const tm*) {
        std::strcpy(out, "rest");  // what a failed call leaves is undefined
        return std::size_t{0};
      });
  EXPECT_EQ(LongDate(kSaturdayAfternoon), "");
  EXPECT_EQ(TimeOfDay(kSaturdayAfternoon), "");
}

}  // namespace
