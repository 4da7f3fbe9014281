#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <utility>

#include "KVTString.h"
#include "test_strings.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// --- SubString

struct SubStringCase {
  const char* name;
  const char* text;
  unsigned start;
  unsigned count;
  const char* expected;
};

void PrintTo(const SubStringCase& c, std::ostream* out) { *out << c.name; }

const SubStringCase kSubStringCases[] = {
    {"Middle", "abcd", 1, 2, "bc"},
    {"Front", "abcd", 0, 1, "a"},
    {"NoUnits", "abcd", 1, 0, ""},
    {"UpToTheEnd", "abcd", 1, 3, "bcd"},
    {"CountBeyondTheEnd", "abcd", 1, 4, "bcd"},
    {"LargestCount", "abcd", 1, UINT_MAX, "bcd"},
    {"StartAtTheLength", "abcd", 4, 1, ""},
    {"LargestCountAtTheLength", "abcd", 4, UINT_MAX, ""},
    {"EmptyFromZero", "", 0, 1, ""},
    {"EmptyFromBeyondItsEnd", "", 5, 1, ""},
    {"CountsUnitsAndNotBytes",
     "\xE2\x82\xAC"
     "bc",
     1, 1, "b"},
};

class SubStringTable : public testing::TestWithParam<SubStringCase> {};

TEST_P(SubStringTable, Cuts) {
  const SubStringCase& c = GetParam();
  KVTString text = FromUtf8(c.text);
  EXPECT_EQ(text.SubString(c.start, c.count), c.expected);
  EXPECT_EQ(text, c.text);
}

INSTANTIATE_TEST_SUITE_P(, SubStringTable, testing::ValuesIn(kSubStringCases),
                         [](const auto& test) { return test.param.name; });

TEST(KVTStringSubString, RaisesTheToldTextWhenItStartsBeyondTheLength) {
  for (const unsigned start : {5u, 6u, UINT_MAX}) {
    try {
      KVTString("abcd").SubString(start, 1);
      FAIL() << "nothing thrown for " << start;
    } catch (const std::out_of_range& error) {
      EXPECT_STREQ(error.what(), "basic_string::substr");
    }
  }
}

TEST(KVTStringSubString, KeepsZeroUnits) {
  KVTString text(kWithZero);
  EXPECT_EQ(text.SubString(1, 2), KVTString(Units{0, 0x62}));
}

// --- SplitStringOnce, SplitStringOnceFromLast

struct SplitCase {
  const char* name;
  const char* text;
  std::vector<const char*> atFirst;
  std::vector<const char*> atLast;
};

void PrintTo(const SplitCase& c, std::ostream* out) { *out << c.name; }

const SplitCase kSplitCases[] = {
    // at the dot
    {"None", "abc", {}, {}},
    {"Empty", "", {}, {}},
    {"One", "a.b", {"a", "b"}, {"a", "b"}},
    {"Two", "a.b.c", {"a", "b.c"}, {"a.b", "c"}},
    {"AtTheEnd", "ab.", {"ab", ""}, {"ab", ""}},
    {"AtTheStart", ".ab", {"", "ab"}, {"", "ab"}},
    {"Alone", ".", {"", ""}, {"", ""}},
    {"Adjacent", "a..b", {"a", ".b"}, {"a.", "b"}},
    {"OnlySeparators", "...", {"", ".."}, {"..", ""}},
    {"BeyondAscii",
     "\xC3\xA9.\xE2\x82\xAC",
     {"\xC3\xA9", "\xE2\x82\xAC"},
     {"\xC3\xA9", "\xE2\x82\xAC"}},
};

class SplitTable : public testing::TestWithParam<SplitCase> {};

TEST_P(SplitTable, SplitsOnce) {
  const SplitCase& c = GetParam();
  const auto texts = [](const std::vector<const char*>& all) {
    return std::vector<KVTString>(all.begin(), all.end());
  };
  EXPECT_EQ(KVTString::SplitStringOnce(c.text, '.'), texts(c.atFirst));
  EXPECT_EQ(KVTString::SplitStringOnceFromLast(c.text, '.'), texts(c.atLast));
}

INSTANTIATE_TEST_SUITE_P(, SplitTable, testing::ValuesIn(kSplitCases),
                         [](const auto& test) { return test.param.name; });

TEST(KVTStringSplit, FindsNoSeparatorThatIsZeroOrNotAscii) {
  const KVTString text(Units{0x61, 0, 0x80, 0xFF80, 0xC3, 0x62});
  for (const char separator : {'\0', '\x80', '\xC3', '\xFF'}) {
    EXPECT_THAT(KVTString::SplitStringOnce(KVTString(Units(text)), separator),
                IsEmpty());
    EXPECT_THAT(
        KVTString::SplitStringOnceFromLast(KVTString(Units(text)), separator),
        IsEmpty());
  }
  EXPECT_THAT(KVTString::SplitStringOnce("a\x7F"
                                         "b",
                                         '\x7F'),
              ElementsAre("a", "b"));
}

// --- SubStrings

struct TokenCase {
  const char* name;
  const char* text;
  const char* delimiters;
  bool result;
  std::vector<const char*> tokens;
};

void PrintTo(const TokenCase& c, std::ostream* out) { *out << c.name; }

const TokenCase kTokenCases[] = {
    {"Two", "a,b", ",", true, {"a", "b"}},
    {"Three", "ab,cd,ef", ",", true, {"ab", "cd", "ef"}},
    {"AdjacentDelimitersMakeNoToken", "a,,b", ",", true, {"a", "b"}},
    {"DelimiterBehind", "a,", ",", true, {"a"}},
    {"DelimitersBehind", "a,,", ",", true, {"a"}},
    {"NoDelimiter", "abc", ",", true, {"abc"}},
    {"EmptyTextIsOneEmptyToken", "", ",", true, {""}},
    {"OnlyDelimiters", ",,,", ",", true, {}},
    {"OneDelimiter", ",", ",", true, {}},
    // All delimiters before the only token
    {"OneTokenWithTheDelimiterInFront", ",a", ",", true, {}},
    {"OneTokenWithDelimitersInFront", ",,abc", ",", true, {}},
    {"OneTokenBetweenDelimiters", ",a,", ",", true, {"a"}},
    {"TwoTokensWithTheDelimiterInFront", ",a,b", ",", true, {"a", "b"}},
    // Sets
    {"AnyOfTheSet", "a,b;c", ",;", true, {"a", "b", "c"}},
    {"MixedRun", "a,;,b", ";,", true, {"a", "b"}},
    {"OtherPunctuation", "a.b", ",;", true, {"a.b"}},
    {"EmptySet", "a,b", "", false, {}},
    {"EmptySetAndText", "", "", false, {}},
};

class TokenTable : public testing::TestWithParam<TokenCase> {};

TEST_P(TokenTable, AppendsItsTokens) {
  const TokenCase& c = GetParam();
  std::vector<KVTString> out = {"before"};
  std::vector<KVTString> expected = {"before"};
  expected.insert(expected.end(), c.tokens.begin(), c.tokens.end());
  EXPECT_EQ(FromUtf8(c.text).SubStrings(FromUtf8(c.delimiters), out), c.result);
  EXPECT_EQ(out, expected);
}

INSTANTIATE_TEST_SUITE_P(, TokenTable, testing::ValuesIn(kTokenCases),
                         [](const auto& test) { return test.param.name; });

// --- GetVectorFromString

struct FieldCase {
  const char* name;
  const char* text;
  std::vector<std::string> fields;
};

void PrintTo(const FieldCase& c, std::ostream* out) { *out << c.name; }

const FieldCase kFieldCases[] = {
    // at the comma
    {"EmptyTextHasNone", "", {}},
    {"One", "abc", {"abc"}},
    {"Two", "a,b", {"a", "b"}},
    {"EmptyFieldBetween", "a,,b", {"a", "", "b"}},
    {"NoneBehindATrailingSeparator", "a,", {"a"}},
    {"EmptyFieldInFront", ",a", {"", "a"}},
    {"OneSeparator", ",", {""}},
    {"TwoSeparators", ",,", {"", ""}},
    {"InUtf8", "\xC3\xA9,\xE2\x82\xAC", {"\xC3\xA9", "\xE2\x82\xAC"}},
};

class FieldTable : public testing::TestWithParam<FieldCase> {};

TEST_P(FieldTable, GivesTheFields) {
  EXPECT_EQ(KVTString::GetVectorFromString(GetParam().text, ','),
            GetParam().fields);
}

INSTANTIATE_TEST_SUITE_P(, FieldTable, testing::ValuesIn(kFieldCases),
                         [](const auto& test) { return test.param.name; });

TEST(KVTStringFields, AreSeparatedByBytesOfTheUtf8Form) {
  // U+00E9 is C3 A9.
  EXPECT_THAT(KVTString::GetVectorFromString("a\xC3\xA9z", '\xC3'),
              ElementsAre("a", "\xA9z"));
  EXPECT_THAT(KVTString::GetVectorFromString(KVTString(kWithZero), '\0'),
              ElementsAre("a", "b"));
}

// --- GetStringFromVector

TEST(KVTStringJoin, PutsTheSeparatorBetweenElementsEmptyOnesIncluded) {
  EXPECT_EQ(KVTString::GetStringFromVector({"a", "", "b"}, "-"), "a--b");
  EXPECT_EQ(KVTString::GetStringFromVector({"a", "b", "c"}, ", "), "a, b, c");
  EXPECT_EQ(KVTString::GetStringFromVector({"", ""}, "-"), "-");
  EXPECT_EQ(KVTString::GetStringFromVector({"a", "b"}, ""), "ab");
}

TEST(KVTStringJoin, GivesAnElementAloneAsItIsAndNothingForNone) {
  EXPECT_EQ(KVTString::GetStringFromVector({"a"}, "-"), "a");
  EXPECT_EQ(KVTString::GetStringFromVector({""}, "-"), "");
  EXPECT_EQ(KVTString::GetStringFromVector({}, "-"), "");
}

TEST(KVTStringJoin, KeepsZeroUnitsThatNoCopyHasCut) {
  std::vector<KVTString> parts(2);
  parts[0] = KVTString(kWithZero);
  parts[1] = KVTString(kWithZero);
  EXPECT_THAT(KVTString::GetStringFromVector(std::move(parts),
                                             KVTString(Units{0x2D, 0})),
              ElementsAre(0x61, 0, 0x62, 0x2D, 0, 0x61, 0, 0x62));
}

// --- ListCombinationsOfString

std::vector<KVTString> Combinations(const KVTString& text, unsigned size) {
  std::vector<KVTString> out;
  std::vector<char> buffer(size + 1, 'x');
  text.ListCombinationsOfString(
      buffer.data(), 0, static_cast<unsigned>(text.size()) - 1, 0, size, out);
  return out;
}

TEST(KVTStringCombinations, ListEachSelectionInOrderOfPosition) {
  EXPECT_THAT(Combinations("abc", 2), ElementsAre("ab", "ac", "bc"));
  EXPECT_THAT(Combinations("abc", 1), ElementsAre("a", "b", "c"));
  EXPECT_THAT(Combinations("abc", 3), ElementsAre("abc"));
  EXPECT_THAT(Combinations("abcd", 3), ElementsAre("abc", "abd", "acd", "bcd"));
  EXPECT_THAT(Combinations("aab", 2), ElementsAre("aa", "ab", "ab"));
}

TEST(KVTStringCombinations, AreNoneWhereTooFewCharactersRemain) {
  EXPECT_THAT(Combinations("abc", 4), IsEmpty());
  EXPECT_THAT(Combinations("", 1), IsEmpty());
}

TEST(KVTStringCombinations, AreNoneWhereTheStartIsBeyondTheEnd) {
  std::vector<KVTString> out;
  char buffer[] = "?";
  KVTString("abc").ListCombinationsOfString(buffer, 2, 0, 0, 1, out);
  EXPECT_THAT(out, IsEmpty());
}

TEST(KVTStringCombinations, OfNoCharactersAreOneEmptyText) {
  EXPECT_THAT(Combinations("abc", 0), ElementsAre(""));
  EXPECT_THAT(Combinations("", 0), ElementsAre(""));
}

TEST(KVTStringCombinations, KeepToThePositionsAndThePlacesFilledBefore) {
  std::vector<KVTString> out = {"before"};
  char buffer[] = "q???";
  KVTString("abcde").ListCombinationsOfString(buffer, 1, 3, 1, 3, out);
  EXPECT_THAT(out, ElementsAre("before", "qbc", "qbd", "qcd"));
  EXPECT_STREQ(buffer, "qcd");
}

TEST(KVTStringCombinations, CutUnitsToOneByteAndReadTheBytesAsUtf8) {
  // C3 and A9, the upper halves of the units lost, are U+00E9 together.
  EXPECT_THAT(Combinations(FromUnits({0x01C3, 0x02A9}), 2),
              ElementsAre("\xC3\xA9"));
  EXPECT_THAT(Combinations(FromUnits({0x0141, 0x0100, 0x42}), 3),
              ElementsAre("A"));
}

TEST(KVTStringCombinations, AreAsManyAsTheBinomialCoefficient) {
  EXPECT_THAT(Combinations("abcdefghij", 5), SizeIs(252));
}

}  // namespace
