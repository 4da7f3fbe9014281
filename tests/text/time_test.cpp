#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <type_traits>

#include "KVTTime.h"
#include "hooks.h"
#include "random_seed.h"
#include "test_strings.h"
#include "time_zone.h"

namespace {

constexpr unsigned long long kAllOnes = 0xFFFFFFFFFFFFFFFF;

// 2026-03-07 13:05:09 UTC, a Saturday
constexpr unsigned long long kSaturdayAfternoon = 1772888709;

unsigned long long SecondsOf(int year, int month, int day, int hour = 0,
                             int minute = 0, int second = 0) {
  KVTTime time;
  EXPECT_TRUE(time.SetTime(year, month, day, hour, minute, second));
  return time.mTime;
}

struct Fields {
  int year = -7, month = -7, day = -7, hour = -7, minute = -7, second = -7,
      weekday = -7;

  bool Read(const KVTTime& time) {
    return time.GetTime(&year, &month, &day, &hour, &minute, &second, &weekday);
  }
  bool operator==(const Fields& other) const {
    return std::memcmp(this, &other, sizeof *this) == 0;
  }
};

std::ostream& operator<<(std::ostream& out, const Fields& f) {
  return out << f.year << "-" << f.month << "-" << f.day << " " << f.hour << ":"
             << f.minute << ":" << f.second << " weekday " << f.weekday;
}

Fields FieldsOf(unsigned long long seconds) {
  Fields fields;
  EXPECT_TRUE(fields.Read(KVTTime(seconds)));
  return fields;
}

// --- The value

TEST(KVTTimeClass, HoldsOneFieldAndAVirtualDestructor) {
  EXPECT_TRUE(std::has_virtual_destructor_v<KVTTime>);
  EXPECT_EQ(sizeof(KVTTime), sizeof(void*) + sizeof(unsigned long long));
  EXPECT_TRUE((std::is_same_v<decltype(KVTTime::mTime), unsigned long long>));
}

TEST(KVTTimeClass, HasItsDestructorCalledThroughAPointer) {
  const std::unique_ptr<KVTTime> time(new KVTTime(5));
  EXPECT_EQ(time->mTime, 5u);
}

TEST(KVTTimeValue, IsNotSetByDefault) {
  EXPECT_EQ(KVTTime().mTime, 0u);
  EXPECT_FALSE(KVTTime().IsValid());
  EXPECT_FALSE(KVTTime(0).IsValid());
  EXPECT_TRUE(KVTTime(1).IsValid());
  EXPECT_TRUE(KVTTime(kAllOnes).IsValid());
}

TEST(KVTTimeValue, IsCopiedAssignedAndSet) {
  const KVTTime time(5);
  const KVTTime copy(time);
  EXPECT_EQ(copy.mTime, 5u);
  KVTTime assigned;
  EXPECT_EQ(&(assigned = time), &assigned);
  EXPECT_EQ(assigned.GetTime(), 5u);
  assigned.SetTime(kAllOnes);
  EXPECT_EQ(assigned.mTime, kAllOnes);
  EXPECT_EQ(time.GetTime(), 5u);
}

TEST(KVTTimeValue, ComparesAsAnUnsignedNumber) {
  const unsigned long long values[] = {
      0, 5, 6, 0x7FFFFFFFFFFFFFFF, 0x8000000000000000, kAllOnes};
  for (const unsigned long long a : values) {
    for (const unsigned long long b : values) {
      EXPECT_EQ(KVTTime(a) == KVTTime(b), a == b) << a << " " << b;
      EXPECT_EQ(KVTTime(a).Equals(KVTTime(b)), a == b) << a << " " << b;
      EXPECT_EQ(KVTTime(a) != KVTTime(b), a != b) << a << " " << b;
      EXPECT_EQ(KVTTime(a) < KVTTime(b), a < b) << a << " " << b;
      EXPECT_EQ(KVTTime(a) > KVTTime(b), a > b) << a << " " << b;
    }
  }
  EXPECT_TRUE(KVTTime(5) < KVTTime(6));
  EXPECT_TRUE(KVTTime(kAllOnes) > KVTTime(kSaturdayAfternoon));
}

TEST(KVTTimeValue, TakesTheCurrentTimeFromTheClock) {
  constexpr time_t kBeyond32Bits = 0x123456789;
  bool calledWithNull = false;
  const hooks::Scoped hook(hooks::onTime, [&calledWithNull](time_t* out) {
    calledWithNull = out == nullptr;
    return kBeyond32Bits;
  });
  EXPECT_EQ(KVTTime::CurrentTime(), 0x123456789u);
  EXPECT_TRUE(calledWithNull);
}

// --- From calendar fields

TEST(KVTTimeSetFields, ReadsThemAsLocalTime) {
  {
    const TimeZone zone(kUtc);
    EXPECT_EQ(SecondsOf(2026, 3, 7, 13, 5, 9), kSaturdayAfternoon);
    EXPECT_EQ(SecondsOf(2000, 1, 1), 946684800u);
    EXPECT_EQ(SecondsOf(9999, 12, 31, 23, 59, 59), 253402300799u);
  }
  {
    const TimeZone zone(kCentralEurope);
    EXPECT_EQ(SecondsOf(2026, 3, 7, 14, 5, 9), kSaturdayAfternoon);
  }
  {
    const TimeZone zone(kNewYork);
    EXPECT_EQ(SecondsOf(2026, 3, 7, 8, 5, 9), kSaturdayAfternoon);
  }
  const TimeZone zone(kNepal);
  EXPECT_EQ(SecondsOf(2026, 3, 7, 18, 50, 9), kSaturdayAfternoon);
}

TEST(KVTTimeSetFields, KnowsSummerTime) {
  const TimeZone zone(kCentralEurope);
  // 10:00 UTC
  EXPECT_EQ(SecondsOf(2026, 7, 1, 12, 0, 0), 1782900000u);
  // The clock goes from 01:59:59 to 03:00:00.
  EXPECT_EQ(SecondsOf(2026, 3, 29, 1, 59, 59), 1774745999u);
  EXPECT_EQ(SecondsOf(2026, 3, 29, 3, 0, 0), 1774746000u);
}

TEST(KVTTimeSetFields, RollsADayTheMonthDoesNotHaveIntoTheNext) {
  const TimeZone zone(kUtc);
  const unsigned long long seconds = SecondsOf(2023, 2, 31, 12, 0, 0);
  EXPECT_EQ(seconds, 1677844800u);
  EXPECT_EQ(FieldsOf(seconds).month, 3);
  EXPECT_EQ(FieldsOf(seconds).day, 3);
  EXPECT_EQ(SecondsOf(2024, 2, 29), 1709164800u);
  EXPECT_EQ(SecondsOf(2023, 2, 29), 1677628800u);  // 1 March
  EXPECT_EQ(SecondsOf(2026, 4, 31), 1777593600u);  // 1 May
}

struct SetTimeCase {
  const char* name;
  int year, month, day, hour, minute, second;
  bool accepted;
};

void PrintTo(const SetTimeCase& c, std::ostream* out) { *out << c.name; }

const int kLowest = -0x7FFFFFFF - 1;
const int kHighest = 0x7FFFFFFF;

const SetTimeCase kSetTimeCases[] = {
    {"Year1600", 1600, 1, 1, 0, 0, 0, false},
    {"Year1601", 1601, 1, 1, 0, 0, 0, true},
    {"Year0", 0, 1, 1, 0, 0, 0, false},
    {"YearNegative", -2026, 1, 1, 0, 0, 0, false},
    {"Year9999", 9999, 1, 1, 0, 0, 0, true},
    {"Year10000", 10000, 1, 1, 0, 0, 0, true},
    {"YearHighest", kHighest, 1, 1, 0, 0, 0, true},
    {"Month0", 2026, 0, 1, 0, 0, 0, false},
    {"Month1", 2026, 1, 1, 0, 0, 0, true},
    {"Month12", 2026, 12, 1, 0, 0, 0, true},
    {"Month13", 2026, 13, 1, 0, 0, 0, false},
    {"MonthNegative", 2026, -1, 1, 0, 0, 0, false},
    {"Day0", 2026, 1, 0, 0, 0, 0, false},
    {"Day1", 2026, 1, 1, 0, 0, 0, true},
    {"Day31", 2026, 1, 31, 0, 0, 0, true},
    {"Day32", 2026, 1, 32, 0, 0, 0, false},
    {"DayNegative", 2026, 1, -1, 0, 0, 0, false},
    {"Day31InAShortMonth", 2026, 2, 31, 0, 0, 0, true},
    {"Hour0", 2026, 1, 1, 0, 0, 0, true},
    {"Hour23", 2026, 1, 1, 23, 0, 0, true},
    {"Hour24", 2026, 1, 1, 24, 0, 0, false},
    {"HourNegative", 2026, 1, 1, -1, 0, 0, false},
    {"HourLowest", 2026, 1, 1, kLowest, 0, 0, false},
    {"Minute59", 2026, 1, 1, 0, 59, 0, true},
    {"Minute60", 2026, 1, 1, 0, 60, 0, false},
    {"MinuteNegative", 2026, 1, 1, 0, -1, 0, false},
    {"Second59", 2026, 1, 1, 0, 0, 59, true},
    {"Second60", 2026, 1, 1, 0, 0, 60, false},
    {"SecondNegative", 2026, 1, 1, 0, 0, -1, false},
};

class SetTimeTable : public testing::TestWithParam<SetTimeCase> {};

TEST_P(SetTimeTable, IsTakenOrLeavesTheTimeUnchanged) {
  const SetTimeCase& c = GetParam();
  KVTTime time(77);
  EXPECT_EQ(time.SetTime(c.year, c.month, c.day, c.hour, c.minute, c.second),
            c.accepted);
  EXPECT_EQ(time.mTime != 77u, c.accepted);
}

INSTANTIATE_TEST_SUITE_P(, SetTimeTable, testing::ValuesIn(kSetTimeCases),
                         [](const auto& test) { return test.param.name; });

TEST(KVTTimeSetFields, HoldsADateBefore1970AsAVeryLargeNumber) {
  const TimeZone zone(kUtc);
  const unsigned long long seconds = SecondsOf(1601, 1, 1);
  EXPECT_EQ(seconds, 0ull - 11644473600ull);
  EXPECT_TRUE(KVTTime(seconds) > KVTTime(SecondsOf(2026, 1, 1)));
  EXPECT_EQ(FieldsOf(seconds), (Fields{1601, 1, 1, 0, 0, 0, 2}));
}

TEST(KVTTimeSetFields, StoresMinusOneAsAllOnes) {
  const TimeZone zone(kUtc);
  EXPECT_EQ(SecondsOf(1969, 12, 31, 23, 59, 59), kAllOnes);
}

TEST(KVTTimeSetFields, CanGiveTheTimeThatIsNotSet) {
  const TimeZone zone(kUtc);
  KVTTime time(77);
  EXPECT_TRUE(time.SetTime(1970, 1, 1, 0, 0, 0));
  EXPECT_EQ(time.mTime, 0u);
  EXPECT_FALSE(time.IsValid());
}

TEST(KVTTimeSetFields, LosesTheRestBehindTheFourthDigitOfAYear) {
  const TimeZone zone(kUtc);
  // strptime reads 1000 and stops; the day before 1 January is left.
  EXPECT_EQ(SecondsOf(10000, 5, 6, 7, 8, 9), 0ull - 30610310400ull);
  EXPECT_EQ(SecondsOf(10001, 1, 1), 0ull - 30610310400ull);
}

// --- To calendar fields

TEST(KVTTimeGetFields, GivesLocalTime) {
  {
    const TimeZone zone(kUtc);
    EXPECT_EQ(FieldsOf(kSaturdayAfternoon), (Fields{2026, 3, 7, 13, 5, 9, 7}));
    EXPECT_EQ(FieldsOf(1), (Fields{1970, 1, 1, 0, 0, 1, 5}));
  }
  {
    const TimeZone zone(kNewYork);
    EXPECT_EQ(FieldsOf(kSaturdayAfternoon), (Fields{2026, 3, 7, 8, 5, 9, 7}));
    EXPECT_EQ(FieldsOf(1), (Fields{1969, 12, 31, 19, 0, 1, 4}));
  }
  const TimeZone zone(kNepal);
  EXPECT_EQ(FieldsOf(kSaturdayAfternoon), (Fields{2026, 3, 7, 18, 50, 9, 7}));
}

TEST(KVTTimeGetFields, NumbersTheWeekFromSundayAs1) {
  const TimeZone zone(kUtc);
  constexpr unsigned long long kDay = 86400;
  for (int i = 0; i < 14; ++i) {
    EXPECT_EQ(FieldsOf(kSaturdayAfternoon + kDay + i * kDay).weekday,
              i % 7 + 1);
  }
}

TEST(KVTTimeGetFields, WritesNothingWhenTheTimeIsNotSet) {
  Fields fields;
  EXPECT_FALSE(fields.Read(KVTTime()));
  EXPECT_EQ(fields, Fields());
}

TEST(KVTTimeGetFields, TakesNullForEachPointer) {
  const TimeZone zone(kUtc);
  const KVTTime time(kSaturdayAfternoon);
  EXPECT_TRUE(time.GetTime(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                           nullptr));
  const int expected[] = {2026, 3, 7, 13, 5, 9, 7};
  for (std::size_t i = 0; i < 7; ++i) {
    int value = -7;
    int* pointers[7] = {};
    pointers[i] = &value;
    EXPECT_TRUE(time.GetTime(pointers[0], pointers[1], pointers[2], pointers[3],
                             pointers[4], pointers[5], pointers[6]));
    EXPECT_EQ(value, expected[i]);
  }
}

TEST(KVTTimeGetFields, RefusesATimeBeyondTheCalendar) {
  const KVTTime time(0x7FFFFFFFFFFFFFFF);
  Fields fields;
  EXPECT_FALSE(fields.Read(time));
  EXPECT_EQ(fields, Fields());
  KVTString text("before");
  EXPECT_FALSE(time.DateToString(text, true));
  EXPECT_EQ(text, "");
  text = "before";
  EXPECT_FALSE(time.DateToString(text, false));
  EXPECT_EQ(text, "");
  text = "before";
  EXPECT_FALSE(time.TimeToString(text));
  EXPECT_EQ(text, "");
}

TEST(KVTTimeGetFields, GivesBackWhatWasSet) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (const char* const name : {kUtc, kCentralEurope, kNewYork, kNepal}) {
    const TimeZone zone(name);
    for (int round = 0; round < 1000; ++round) {
      const auto draw = [&random](int lowest, int highest) {
        return lowest + static_cast<int>(random() % static_cast<unsigned>(
                                                        highest - lowest + 1));
      };
      // From 4 o'clock on, where no clock is put forward.
      const Fields drawn = {draw(1601, 9999),
                            draw(1, 12),
                            draw(1, 28),
                            draw(4, 23),
                            draw(0, 59),
                            draw(0, 59),
                            0};
      const KVTTime time(SecondsOf(drawn.year, drawn.month, drawn.day,
                                   drawn.hour, drawn.minute, drawn.second));
      Fields read = FieldsOf(time.mTime);
      ASSERT_GE(read.weekday, 1);
      ASSERT_LE(read.weekday, 7);
      read.weekday = 0;
      ASSERT_EQ(read, drawn) << name;
    }
  }
}

}  // namespace
