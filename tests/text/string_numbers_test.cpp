#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <csignal>
#include <locale>

#include "KVTString.h"
#include "random_seed.h"
#include "test_strings.h"

namespace {

using testing::ElementsAre;

// --- GetIntValue

using Manipulator = std::ios_base& (*)(std::ios_base&);

struct IntCase {
  const char* name;
  const char* text;
  Manipulator base;
  unsigned expected;
};

void PrintTo(const IntCase& c, std::ostream* out) { *out << c.name; }

const IntCase kIntCases[] = {
    {"Empty", "", std::dec, 0},
    {"Zero", "0", std::dec, 0},
    {"Decimal", "42", std::dec, 42},
    {"BlankInFront", " 42", std::dec, 42},
    {"WhiteSpaceInFront", " \t\r\n\v\f42", std::dec, 42},
    {"OnlyBlanks", "   ", std::dec, 0},
    {"StopsAtALetter", "12abc", std::dec, 12},
    {"StopsAtABlank", "12 34", std::dec, 12},
    {"StopsAtAPoint", "12.9", std::dec, 12},
    {"Garbage", "abc", std::dec, 0},
    {"GarbageInFront", "x12", std::dec, 0},
    {"LeadingZerosStayDecimal", "0010", std::dec, 10},
    {"Plus", "+7", std::dec, 7},
    {"MinusOne", "-1", std::dec, 0xFFFFFFFF},
    {"MinusTwo", "-2", std::dec, 0xFFFFFFFE},
    {"MinusAlone", "-", std::dec, 0},
    {"Largest", "4294967295", std::dec, 0xFFFFFFFF},
    {"OneBelowTheLargest", "4294967294", std::dec, 0xFFFFFFFE},
    {"OneTooLarge", "4294967296", std::dec, 0xFFFFFFFF},
    {"FarTooLarge", "99999999999999999999999999", std::dec, 0xFFFFFFFF},
    {"LargestNegated", "-4294967295", std::dec, 1},
    {"OtherDigits", "\xD9\xA1\xD9\xA2", std::dec, 0},
    {"Hexadecimal", "ff", std::hex, 255},
    {"HexadecimalInCapitals", "FF", std::hex, 255},
    {"HexadecimalWithPrefix", "0xFF", std::hex, 255},
    {"HexadecimalWithCapitalPrefix", "0Xff", std::hex, 255},
    {"HexadecimalGarbage", "zz", std::hex, 0},
    {"HexadecimalStops", "1g", std::hex, 1},
    {"HexadecimalLargest", "ffffffff", std::hex, 0xFFFFFFFF},
    {"HexadecimalTooLarge", "100000000", std::hex, 0xFFFFFFFF},
    {"HexadecimalLeadingZeros", "00000000ff", std::hex, 255},
    {"HexadecimalMinus", "-1", std::hex, 0xFFFFFFFF},
    {"PrefixIsNoDecimal", "0xFF", std::dec, 0},
    {"Octal", "17", std::oct, 15},
    {"OctalStopsAtEight", "18", std::oct, 1},
};

class IntTable : public testing::TestWithParam<IntCase> {};

TEST_P(IntTable, Reads) {
  EXPECT_EQ(FromUtf8(GetParam().text).GetIntValue(GetParam().base),
            GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(, IntTable, testing::ValuesIn(kIntCases),
                         [](const auto& test) { return test.param.name; });

TEST(KVTStringGetIntValue, StopsAtAZeroUnit) {
  EXPECT_EQ(KVTString(Units{0x31, 0, 0x32}).GetIntValue(std::dec), 1u);
}

// While it lives, the global locale groups digits in threes by points.
class GroupingLocale {
 public:
  GroupingLocale()
      : mPrevious(std::locale::global(std::locale(
            std::locale(std::locale::classic(), new Wide), new Narrow))) {}
  ~GroupingLocale() { std::locale::global(mPrevious); }

 private:
  template <class Character>
  struct Points : std::numpunct<Character> {
    Character do_thousands_sep() const override { return '.'; }
    Character do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
  };
  using Wide = Points<wchar_t>;
  using Narrow = Points<char>;
  std::locale mPrevious;
};

TEST(KVTStringGetIntValue, GoesByTheGlobalLocaleOfTheMoment) {
  const KVTString text("1.234");
  EXPECT_EQ(text.GetIntValue(std::dec), 1u);
  {
    const GroupingLocale locale;
    EXPECT_EQ(text.GetIntValue(std::dec), 1234u);
  }
  EXPECT_EQ(text.GetIntValue(std::dec), 1u);
}

// --- GetDoubleValue

TEST(KVTStringGetDoubleValue, ReadsAFloatingPointNumber) {
  EXPECT_EQ(KVTString("1.5e3").GetDoubleValue(), 1500.0);
  EXPECT_EQ(KVTString("42").GetDoubleValue(), 42.0);
  EXPECT_EQ(KVTString(".25").GetDoubleValue(), 0.25);
  EXPECT_EQ(KVTString("  -2.5").GetDoubleValue(), -2.5);
  EXPECT_EQ(KVTString("1E-2").GetDoubleValue(), 0.01);
}

TEST(KVTStringGetDoubleValue, IgnoresWhatFollows) {
  EXPECT_EQ(KVTString("2.5abc").GetDoubleValue(), 2.5);
  EXPECT_EQ(KVTString("2.5.7").GetDoubleValue(), 2.5);
  EXPECT_EQ(KVTString("2 5").GetDoubleValue(), 2.0);
}

TEST(KVTStringGetDoubleValue, IsZeroWithoutANumber) {
  EXPECT_EQ(KVTString("x").GetDoubleValue(), 0.0);
  EXPECT_EQ(KVTString().GetDoubleValue(), 0.0);
  EXPECT_EQ(KVTString("   ").GetDoubleValue(), 0.0);
}

TEST(KVTStringGetDoubleValue, GoesByTheGlobalLocaleOfTheMoment) {
  const GroupingLocale locale;
  EXPECT_EQ(KVTString("1.234,5").GetDoubleValue(), 1234.5);
}

// --- AppendNumber, AppendUNumber

KVTString Appended(int value, const char* format) {
  KVTString text("n=");
  EXPECT_EQ(text.AppendNumber(value, format), 0);
  return text;
}

TEST(KVTStringAppendNumber, AppendsDecimalAndReturnsZero) {
  KVTString text("n=");
  EXPECT_EQ(text.AppendNumber(-5), 0);
  EXPECT_EQ(text, "n=-5");
  EXPECT_EQ(text.AppendNumber(0), 0);
  EXPECT_EQ(text, "n=-50");
  EXPECT_EQ(text.AppendNumber(INT_MIN), 0);
  EXPECT_EQ(text, "n=-50-2147483648");
}

TEST(KVTStringAppendNumber, AppendsUnsignedNumbersWithTheirBitsUnchanged) {
  KVTString text("n=");
  EXPECT_EQ(text.AppendUNumber(4294967295u), 0);
  EXPECT_EQ(text, "n=4294967295");
  EXPECT_EQ(text.AppendUNumber(0x80000000u), 0);
  EXPECT_EQ(text, "n=42949672952147483648");
  KVTString zero;
  EXPECT_EQ(zero.AppendUNumber(0), 0);
  EXPECT_EQ(zero, "0");
}

TEST(KVTStringAppendNumber, HeedsTheFormat) {
  EXPECT_EQ(Appended(7, "%d"), "n=7");
  EXPECT_EQ(Appended(255, "%x"), "n=ff");
  EXPECT_EQ(Appended(7, "%03d"), "n=007");
  EXPECT_EQ(Appended(7, "[%-3d]"), "n=[7  ]");
  EXPECT_EQ(Appended('A', "%c"), "n=A");
}

TEST(KVTStringAppendNumber, ReadsTheFormatsUtf8Form) {
  EXPECT_EQ(Appended(7, "%d \xE2\x82\xAC"), "n=7 \xE2\x82\xAC");
}

TEST(KVTStringAppendNumber, AppendsBehindAZeroUnit) {
  KVTString text(Units{0x61, 0});
  text.AppendNumber(7);
  EXPECT_THAT(text, ElementsAre(0x61, 0, 0x37));
}

TEST(KVTStringAppendNumber, HasRoomFor99Bytes) {
  KVTString text;
  EXPECT_EQ(text.AppendNumber(7, "%099d"), 0);
  EXPECT_EQ(text.GetUTF8String(), std::string(98, '0') + "7");
}

// AddressSanitizer answers __sprintf_chk in place of libc, with its own report
// and exit status.
#ifdef __SANITIZE_ADDRESS__
constexpr char kOverflowReport[] = "stack-buffer-overflow";
bool IsAbort(int status) { return testing::ExitedWithCode(1)(status); }
#else
constexpr char kOverflowReport[] = "buffer overflow detected";
bool IsAbort(int status) { return testing::KilledBySignal(SIGABRT)(status); }
#endif

TEST(KVTStringAppendNumberDeathTest, AbortsTheProcessFor100Bytes) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(KVTString().AppendNumber(7, "%0100d"), IsAbort, kOverflowReport);
  // One byte of digits, 33 times three of text
  EXPECT_EXIT(KVTString().AppendNumber(7, "%d" + Repeat("\xE2\x82\xAC", 33)),
              IsAbort, kOverflowReport);
}

// What takes the place of __sprintf_chk under AddressSanitizer looks for no %n.
#ifndef __SANITIZE_ADDRESS__
TEST(KVTStringAppendNumberDeathTest, AbortsTheProcessForAFormatThatStores) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(KVTString().AppendNumber(7, "%n"), IsAbort,
              "%n in writable segment detected");
}
#endif

// --- ConvertIntToString, ConvertIntToHexString

TEST(KVTStringConvertInt, GivesDecimalDigits) {
  EXPECT_EQ(KVTString::ConvertIntToString(0), "0");
  EXPECT_EQ(KVTString::ConvertIntToString(7), "7");
  EXPECT_EQ(KVTString::ConvertIntToString(-7), "-7");
  EXPECT_EQ(KVTString::ConvertIntToString(1234567), "1234567");
  EXPECT_EQ(KVTString::ConvertIntToString(LLONG_MAX), "9223372036854775807");
  EXPECT_EQ(KVTString::ConvertIntToString(LLONG_MIN), "-9223372036854775808");
}

TEST(KVTStringConvertInt, GivesHexadecimalDigitsOfTheTwosComplement) {
  EXPECT_EQ(KVTString::ConvertIntToHexString(0), "0");
  EXPECT_EQ(KVTString::ConvertIntToHexString(255), "ff");
  EXPECT_EQ(KVTString::ConvertIntToHexString(0xABCDEF), "abcdef");
  EXPECT_EQ(KVTString::ConvertIntToHexString(-1), "ffffffffffffffff");
  EXPECT_EQ(KVTString::ConvertIntToHexString(LLONG_MIN), "8000000000000000");
  EXPECT_EQ(KVTString::ConvertIntToHexString(LLONG_MAX), "7fffffffffffffff");
}

TEST(KVTStringConvertInt, GroupsDigitsOnlyWhereTheGlobalLocaleDoes) {
  {
    const GroupingLocale locale;
    EXPECT_EQ(KVTString::ConvertIntToString(1234567), "1.234.567");
  }
  EXPECT_EQ(KVTString::ConvertIntToString(1234567), "1234567");
}

TEST(KVTStringConvertInt, IsReadBackByGetIntValue) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 2000; ++round) {
    const unsigned value = static_cast<unsigned>(random()) >> random() % 32;
    ASSERT_EQ(KVTString::ConvertIntToString(value).GetIntValue(std::dec),
              value);
    ASSERT_EQ(KVTString::ConvertIntToHexString(value).GetIntValue(std::hex),
              value);
    KVTString appended;
    appended.AppendUNumber(value);
    ASSERT_EQ(appended, KVTString::ConvertIntToString(value));
  }
}

}  // namespace
