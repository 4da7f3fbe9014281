#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "KVTString.h"
#include "hooks.h"
#include "test_strings.h"

namespace {

using testing::ElementsAre;

// --- Comparison without case

TEST(KVTStringCompareOS, IsTrueForEqualTextInSpiteOfCase) {
  EXPECT_TRUE(KVTString::CompareBasedOnOSCaseSensitivity("Abc", "aBC"));
  EXPECT_TRUE(KVTString::CompareBasedOnOSCaseSensitivity("abc", "abc"));
  EXPECT_TRUE(KVTString::CompareBasedOnOSCaseSensitivity("", ""));
  EXPECT_FALSE(KVTString::CompareBasedOnOSCaseSensitivity("abc", "abd"));
  EXPECT_FALSE(KVTString::CompareBasedOnOSCaseSensitivity("abc", "abcd"));
  EXPECT_FALSE(KVTString::CompareBasedOnOSCaseSensitivity("", "a"));
}

TEST(KVTStringCompareOS, FoldsAsciiLettersOnly) {
  EXPECT_TRUE(KVTString::CompareBasedOnOSCaseSensitivity("az", "AZ"));
  // The neighbours of the letters: @ ` and [ {
  EXPECT_FALSE(KVTString::CompareBasedOnOSCaseSensitivity("@", "`"));
  EXPECT_FALSE(KVTString::CompareBasedOnOSCaseSensitivity("[", "{"));
  EXPECT_FALSE(
      KVTString::CompareBasedOnOSCaseSensitivity("\xC3\xA9", "\xC3\x89"));
}

TEST(KVTStringCompareIgnoringCase, IsZeroForEqualText) {
  EXPECT_EQ(KVTString::CompareBasedOnCaseInsensitivity("Abc", "aBC"), 0);
  EXPECT_EQ(KVTString::CompareBasedOnCaseInsensitivity("", ""), 0);
}

TEST(KVTStringCompareIgnoringCase, GivesTheDifferenceOfLengthsForAPrefix) {
  EXPECT_EQ(KVTString::CompareBasedOnCaseInsensitivity("abc", "ABCD"), -1);
  EXPECT_EQ(KVTString::CompareBasedOnCaseInsensitivity("ABCD", "abc"), 1);
  EXPECT_EQ(KVTString::CompareBasedOnCaseInsensitivity("", "abcde"), -5);
  EXPECT_EQ(KVTString::CompareBasedOnCaseInsensitivity("abcde", ""), 5);
  // Lengths in bytes: the euro sign has three.
  EXPECT_EQ(KVTString::CompareBasedOnCaseInsensitivity("a", "a\xE2\x82\xAC"),
            -3);
}

TEST(KVTStringCompareIgnoringCase, OrdersByTheFirstBytesThatDiffer) {
  EXPECT_LT(KVTString::CompareBasedOnCaseInsensitivity("abc", "ABD"), 0);
  EXPECT_GT(KVTString::CompareBasedOnCaseInsensitivity("b", "AAAA"), 0);
  // As unsigned bytes: 0xC3 comes behind every ASCII letter.
  EXPECT_GT(KVTString::CompareBasedOnCaseInsensitivity("\xC3\xA9", "z"), 0);
  // After toupper: '_' (0x5F) stands behind 'Z' (0x5A) though before 'z'.
  EXPECT_GT(KVTString::CompareBasedOnCaseInsensitivity("_", "z"), 0);
}

TEST(KVTStringCompareIgnoringCase, GivesTheResultOfMemcmpAsItStands) {
  // Through a volatile pointer, so that libc answers and not the compiler.
  int (*volatile compare)(const void*, const void*, std::size_t) = std::memcmp;
  const std::pair<const char*, const char*> rows[] = {
      {"A", "C"},
      {"ZZZ", "AAA"},
      {"ABCDEFGH1", "ABCDEFGH9Z"},
      {"A", "\xC3\xA9"}};
  for (const auto& [first, second] : rows) {
    const std::size_t shorter =
        std::min(std::strlen(first), std::strlen(second));
    EXPECT_EQ(KVTString::CompareBasedOnCaseInsensitivity(first, second),
              compare(first, second, shorter))
        << first;
  }
}

TEST(KVTStringCompare, TakesItsArgumentsByValueAndSoUpToAZeroUnit) {
  const KVTString text(kWithZero);
  EXPECT_TRUE(KVTString::CompareBasedOnOSCaseSensitivity(text, "A"));
  EXPECT_EQ(KVTString::CompareBasedOnCaseInsensitivity(text, "A"), 0);
  // What never was copied is compared whole.
  EXPECT_FALSE(
      KVTString::CompareBasedOnOSCaseSensitivity(KVTString(kWithZero), "A"));
  EXPECT_EQ(
      KVTString::CompareBasedOnCaseInsensitivity(KVTString(kWithZero), "A"), 2);
}

TEST(KVTStringCompare, PassesBytesToToupperAsSignedChars) {
  std::vector<int> seen;
  const hooks::Scoped hook(hooks::onToupper, [&seen](int character) {
    seen.push_back(character);
    return character;
  });
  EXPECT_TRUE(
      KVTString::CompareBasedOnOSCaseSensitivity("\xC3\xA9", "\xC3\xA9"));
  EXPECT_THAT(seen, ElementsAre(-0x3D, -0x57, -0x3D, -0x57));
  seen.clear();
  EXPECT_EQ(KVTString::CompareBasedOnCaseInsensitivity("a\xC3\xA9", ""), 3);
  EXPECT_THAT(seen, ElementsAre('a', -0x3D, -0x57));
}

// --- Narrow text to lower and upper case

using NarrowText = std::unique_ptr<char, decltype(&std::free)>;

NarrowText Lower(const char* text) {
  return {KVTString::ConvertStringLower(text), std::free};
}

NarrowText Upper(const char* text) {
  return {KVTString::ConvertStringUpper(text), std::free};
}

TEST(KVTStringConvertNarrow, GivesNullForNull) {
  EXPECT_EQ(Lower(nullptr), nullptr);
  EXPECT_EQ(Upper(nullptr), nullptr);
}

TEST(KVTStringConvertNarrow, GivesACopyInTheOtherCase) {
  const char text[] = "aBc @[`{ 09 \xC3\x89\xC3\xA9";
  EXPECT_STREQ(Lower(text).get(), "abc @[`{ 09 \xC3\x89\xC3\xA9");
  EXPECT_STREQ(Upper(text).get(), "ABC @[`{ 09 \xC3\x89\xC3\xA9");
  EXPECT_STREQ(text, "aBc @[`{ 09 \xC3\x89\xC3\xA9");
  EXPECT_STREQ(Lower("").get(), "");
  EXPECT_STREQ(Upper("").get(), "");
}

TEST(KVTStringConvertNarrow, PassesBytesAsNumbersFrom0To255) {
  std::vector<int> seen;
  const auto note = [&seen](int character) {
    seen.push_back(character);
    return character;
  };
  const hooks::Scoped lower(hooks::onTolower, note);
  const hooks::Scoped upper(hooks::onToupper, note);
  EXPECT_STREQ(Lower("\x01\x7F\x80").get(), "\x01\x7F\x80");
  EXPECT_STREQ(Upper("\xE9\xFF").get(), "\xE9\xFF");
  EXPECT_THAT(seen, ElementsAre(0x01, 0x7F, 0x80, 0xE9, 0xFF));
}

TEST(KVTStringConvertNarrow, GivesNullWhenStrdupFails) {
  const hooks::Scoped hook(hooks::onStrdup,
                           [](const char*) -> char* { return nullptr; });
  EXPECT_EQ(Lower("text"), nullptr);
  EXPECT_EQ(Upper("text"), nullptr);
}

}  // namespace
