#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <type_traits>
#include <utility>

#include "KVTString.h"
#include "test_strings.h"

namespace {

using testing::ElementsAre;

const char* const kNull = nullptr;
const wchar_t* const kWideNull = nullptr;

// --- Comparison

TEST(KVTStringEquality, ComparesNarrowTextAfterDecodingIt) {
  const KVTString text = FromUnits({0x61, 0xE9});
  EXPECT_TRUE(text == "a\xC3\xA9");
  EXPECT_TRUE("a\xC3\xA9" == text);
  EXPECT_FALSE(text == "a\xE9");
  EXPECT_FALSE("a\xE9" == text);
}

TEST(KVTStringEquality, ComparesWideTextAfterNarrowingIt) {
  const KVTString text = FromUnits({0x61, 0xF600});
  EXPECT_TRUE(text == L"a\uF600");
  EXPECT_TRUE(L"a\uF600" == text);
  // U+1F600 loses its upper bits and so is the same.
  EXPECT_TRUE(text == L"a\U0001F600");
  EXPECT_TRUE(L"a\U0001F600" == text);
}

TEST(KVTStringEquality, NeedsEqualLengthAndCase) {
  const KVTString text("abc");
  EXPECT_FALSE(text == "ab");
  EXPECT_FALSE("ab" == text);
  EXPECT_FALSE(text == "abcd");
  EXPECT_FALSE(text == "abC");
  EXPECT_FALSE(text == L"ab");
  EXPECT_FALSE(L"abcd" == text);
  EXPECT_FALSE(text == L"abC");
}

TEST(KVTStringEquality, TakesNullAsEmpty) {
  EXPECT_TRUE(KVTString() == kNull);
  EXPECT_TRUE(kNull == KVTString());
  EXPECT_TRUE(KVTString() == kWideNull);
  EXPECT_TRUE(kWideNull == KVTString());
  EXPECT_FALSE(KVTString("a") == kNull);
  EXPECT_FALSE(kWideNull == KVTString("a"));
}

TEST(KVTStringEquality, HoldsForTwoEmptyTexts) {
  EXPECT_TRUE(KVTString() == "");
  EXPECT_TRUE("" == KVTString());
  EXPECT_TRUE(KVTString() == L"");
  EXPECT_TRUE(L"" == KVTString());
}

TEST(KVTStringEquality, LooksAtUnitsBehindAZeroUnit) {
  EXPECT_FALSE(KVTString(kWithZero) == "a");
  EXPECT_FALSE("a" == KVTString(kWithZero));
  EXPECT_TRUE(KVTString(kWithZero) ==
              "a\xC0\x80"
              "b");
  EXPECT_TRUE(
      "a\xC0\x80"
      "b" == KVTString(kWithZero));
  const wchar_t wide[] = {0x61, 0x10000, 0x62, 0};
  EXPECT_TRUE(KVTString(kWithZero) == wide);
  EXPECT_TRUE(wide == KVTString(kWithZero));
}

// --- Concatenation

TEST(KVTStringConcatenation, AppendsDecodedTextToTheLeftOperand) {
  KVTString text("a");
  EXPECT_EQ(&(text += "\xE2\x82\xAC"), &text);
  EXPECT_EQ(text, FromUnits({0x61, 0x20AC}));
  text += kNull;
  text += "";
  EXPECT_EQ(text, FromUnits({0x61, 0x20AC}));
}

TEST(KVTStringConcatenation, AppendsBehindAZeroUnitAndAppendsZeroUnits) {
  KVTString text(kWithZero);
  text += "c\xC0\x80z";
  EXPECT_THAT(text, ElementsAre(0x61, 0, 0x62, 0x63, 0, 0x7A));
}

template <class Text, class = void>
struct CanBeAppended : std::false_type {};
template <class Text>
struct CanBeAppended<Text, std::void_t<decltype(std::declval<KVTString&>() +=
                                                std::declval<Text>())>>
    : std::true_type {};

TEST(KVTStringConcatenation, AppendsNoWideTextInPlace) {
  EXPECT_TRUE(CanBeAppended<const char*>::value);
  EXPECT_FALSE(CanBeAppended<const wchar_t*>::value);
}

TEST(KVTStringConcatenation, JoinsNarrowTextInTheOrderWritten) {
  const KVTString text("mid");
  EXPECT_EQ("\xC3\xA9" + text, FromUnits({0xE9, 'm', 'i', 'd'}));
  EXPECT_EQ(text + "\xC3\xA9", FromUnits({'m', 'i', 'd', 0xE9}));
  EXPECT_EQ(text, "mid");
}

TEST(KVTStringConcatenation, JoinsWideTextInTheOrderWritten) {
  const KVTString text("mid");
  EXPECT_EQ(L"\u20AC" + text, FromUnits({0x20AC, 'm', 'i', 'd'}));
  EXPECT_EQ(text + L"\U0001F600", FromUnits({'m', 'i', 'd', 0xF600}));
}

TEST(KVTStringConcatenation, TakesNullAsEmpty) {
  const KVTString text("text");
  EXPECT_EQ(text + kNull, "text");
  EXPECT_EQ(kNull + text, "text");
  EXPECT_EQ(text + kWideNull, "text");
  EXPECT_EQ(kWideNull + text, "text");
}

TEST(KVTStringConcatenation, KeepsUnitsBehindAZeroUnit) {
  const KVTString text(kWithZero);
  EXPECT_EQ((text + "c").size(), 4u);
  EXPECT_EQ(("c" + text).size(), 4u);
  EXPECT_EQ((text + L"c").size(), 4u);
  EXPECT_EQ((L"c" + text).size(), 4u);
}

TEST(KVTStringConcatenation, OfTwoStringsIsTheBaseStringsAndTurnsBack) {
  const KVTString a("one ");
  const KVTString b("two");
  EXPECT_TRUE((std::is_same_v<decltype(a + b), Units>));
  const KVTString joined = a + b;
  EXPECT_EQ(joined, "one two");
}

// --- Output

std::string Printed(const KVTString& text) {
  std::ostringstream out;
  out << text;
  return out.str();
}

TEST(KVTStringOutput, WritesTheUtf8Form) {
  EXPECT_EQ(Printed(FromUnits({0x61, 0x7FF, 0xD83D, 0xDE00})),
            "a\xE0\x9F\xBF\xF0\x9F\x98\x80");
  EXPECT_EQ(Printed(KVTString()), "");
}

TEST(KVTStringOutput, StopsAtTheFirstZeroByte) {
  EXPECT_EQ(Printed(KVTString(kWithZero)), "a");
  EXPECT_EQ(Printed(KVTString(Units{0, 0x61})), "");
}

TEST(KVTStringOutput, ReturnsTheStreamAndHeedsItsWidth) {
  std::ostringstream out;
  std::ostream& returned = out << std::setw(5) << KVTString("ab");
  EXPECT_EQ(&returned, &out);
  out << KVTString("c");
  EXPECT_EQ(out.str(), "   abc");
}

}  // namespace
