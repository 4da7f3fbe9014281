#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "KVTString.h"
#include "hooks.h"
#include "test_strings.h"

namespace {

using testing::ElementsAre;

// --- TrimLeadingSpaces

KVTString TrimLeading(const KVTString& text) {
  return KVTString("plays no part").TrimLeadingSpaces(text);
}

TEST(KVTStringTrimLeadingSpaces, CutsFiveKindsOfWhiteSpaceFromTheFront) {
  EXPECT_EQ(TrimLeading(" \t\v\r\nabc"), "abc");
  EXPECT_EQ(TrimLeading("  a b  "), "a b  ");
  EXPECT_EQ(TrimLeading("abc"), "abc");
}

TEST(KVTStringTrimLeadingSpaces, StopsAtAnyOtherCharacter) {
  EXPECT_EQ(TrimLeading(" \fabc"), "\fabc");
  EXPECT_EQ(TrimLeading(" \babc"), "\babc");
  EXPECT_EQ(TrimLeading("\xC2\xA0 abc"), "\xC2\xA0 abc");
  EXPECT_EQ(TrimLeading("  \xE2\x82\xAC"), "\xE2\x82\xAC");
  EXPECT_EQ(TrimLeading(KVTString(Units{0x20, 0, 0x61})),
            KVTString(Units{0, 0x61}));
}

TEST(KVTStringTrimLeadingSpaces, RaisesTheToldTextWhenNothingElseIsThere) {
  for (const char* const text : {"", " ", "   ", " \t\v\r\n"}) {
    try {
      TrimLeading(text);
      FAIL() << "nothing thrown";
    } catch (const std::out_of_range& error) {
      EXPECT_STREQ(error.what(), "basic_string::substr");
    }
  }
}

TEST(KVTStringTrimLeadingSpaces, LeavesItsObjectAndItsArgumentAlone) {
  KVTString object("  object");
  const KVTString text("  text");
  EXPECT_EQ(object.TrimLeadingSpaces(text), "text");
  EXPECT_EQ(object, "  object");
  EXPECT_EQ(text, "  text");
}

// --- TrimChars

TEST(KVTStringTrimChars, CutsTheRunsAtBothEnds) {
  EXPECT_EQ(KVTString("xxaxbxx").TrimChars('x'), "axb");
  EXPECT_EQ(KVTString("xxa").TrimChars('x'), "a");
  EXPECT_EQ(KVTString("axx").TrimChars('x'), "a");
  EXPECT_EQ(KVTString("a").TrimChars('x'), "a");
  EXPECT_EQ(KVTString("Xax").TrimChars('x'), "Xa");
}

TEST(KVTStringTrimChars, GivesNothingWhenNothingElseIsThere) {
  EXPECT_EQ(KVTString("xxx").TrimChars('x'), "");
  EXPECT_EQ(KVTString("x").TrimChars('x'), "");
  EXPECT_EQ(KVTString().TrimChars('x'), "");
}

TEST(KVTStringTrimChars, SignExtendsTheCharacter) {
  const KVTString text = FromUnits({0xFFE9, 0x61, 0xE9});
  EXPECT_EQ(text.TrimChars('\xE9'), FromUnits({0x61, 0xE9}));
  EXPECT_EQ(FromUnits({0xFF80, 0x61, 0xFFFF}).TrimChars('\x80'),
            FromUnits({0x61, 0xFFFF}));
  EXPECT_EQ(FromUnits({0x7F, 0x61}).TrimChars('\x7F'), "a");
}

TEST(KVTStringTrimChars, WorksOnTheTextUpToAZeroUnit) {
  EXPECT_EQ(KVTString(Units{0x78, 0x61, 0, 0x78}).TrimChars('x'), "a");
  EXPECT_EQ(KVTString(Units{0, 0x61}).TrimChars('x'), "");
  EXPECT_EQ(KVTString("a").TrimChars('\0'), "a");
}

// --- ReplaceAll

struct ReplaceCase {
  const char* name;
  const char* text;
  const char* from;
  const char* to;
  const char* expected;
};

void PrintTo(const ReplaceCase& c, std::ostream* out) { *out << c.name; }

const ReplaceCase kReplaceCases[] = {
    {"Each", "a\\b\\c", "\\", "/", "a/b/c"},
    {"NoMatch", "abc", "x", "y", "abc"},
    {"EmptyText", "", "a", "b", ""},
    {"EmptyFrom", "abc", "", "x", "abc"},
    {"EqualFromAndTo", "abab", "ab", "ab", "abab"},
    {"BothEmpty", "abc", "", "", "abc"},
    {"ToNothing", "a,b,c", ",", "", "abc"},
    {"AllToNothing", "aaaa", "aa", "", ""},
    {"FromLongerThanText", "ab", "abc", "x", "ab"},
    {"WholeText", "abc", "abc", "x", "x"},
    {"ToLonger", "a.b.c", ".", "--", "a--b--c"},
    {"CaseCounts", "aA", "a", "b", "bA"},
    {"BeyondAscii",
     "\xE2\x82\xAC"
     "5",
     "\xE2\x82\xAC", "EUR ", "EUR 5"},
    // What a replacement makes can match again
    {"OddRunShrinksToOne", "aaa", "aa", "a", "a"},
    {"EvenRunShrinksToOne", "aaaa", "aa", "a", "a"},
    {"BlanksShrinkToOne", "a     b", "  ", " ", "a b"},
    {"MatchOverTheSeam", "aabb", "ab", "", ""},
    {"MatchesOverSeveralSeams", "xaaabbby", "ab", "", "xy"},
    {"ReplacementEndsAMatch", "aab", "ab", "b", "b"},
    {"ReplacementStartsAMatch", "abb", "ab", "a", "a"},
    {"ReplacementIsInsideAMatch", "xyzz", "xyz", "y", "yz"},
    {"ReplacementCompletesAMatchOnBothSides", "a(bc)d", "bc", "", "a()d"},
    // The first match counts, not the one that ends a longer run
    {"LeftmostFirst", "aba", "ab", "b", "ba"},
    {"OverlappingMatches", "ababa", "aba", "c", "cba"},
    {"OverlapWithTheReplacement", "abaab", "aba", "ba", "baab"},
    {"MovesToTheBack", "abab", "ab", "ba", "bbaa"},
};

class ReplaceTable : public testing::TestWithParam<ReplaceCase> {};

TEST_P(ReplaceTable, ReplacesUntilNoMatchIsLeft) {
  const ReplaceCase& c = GetParam();
  KVTString text = FromUtf8(c.text);
  EXPECT_EQ(&text.ReplaceAll(FromUtf8(c.from), FromUtf8(c.to)), &text);
  EXPECT_EQ(text, c.expected);
}

INSTANTIATE_TEST_SUITE_P(, ReplaceTable, testing::ValuesIn(kReplaceCases),
                         [](const auto& test) { return test.param.name; });

TEST(KVTStringReplaceAll, SeesZeroUnitsInAllThreeTexts) {
  KVTString text(Units{0x61, 0, 0x62, 0});
  text.ReplaceAll(KVTString(Units{0, 0x62}), "x");
  EXPECT_THAT(text, ElementsAre(0x61, 0x78, 0));
  text.ReplaceAll("x", KVTString(Units{0, 0x79}));
  EXPECT_THAT(text, ElementsAre(0x61, 0, 0x79, 0));
}

TEST(KVTStringReplaceAll, GrowsUntilMemoryRunsOutWhenToContainsFrom) {
  constexpr std::size_t kMegabyte = 1 << 20;
  for (const char* const to : {"aa", "ba", "ab", "bab"}) {
    KVTString text("xax");
    const KVTString from("a");
    const KVTString replacement(to);
    const hooks::FailingAllocator allocator(0, kMegabyte);
    EXPECT_THROW(text.ReplaceAll(from, replacement), std::bad_alloc) << to;
    EXPECT_EQ(allocator.Refused(), 1u) << to;
  }
}

// --- ReplaceAllSpacesWithOneSpace, SpaceComparer

TEST(KVTStringOneSpace, CutsEachRunOfBlanksToOne) {
  EXPECT_EQ(KVTString::ReplaceAllSpacesWithOneSpace("   "), " ");
  EXPECT_EQ(KVTString::ReplaceAllSpacesWithOneSpace("a  b   c"), "a b c");
  EXPECT_EQ(KVTString::ReplaceAllSpacesWithOneSpace("  a  "), " a ");
  EXPECT_EQ(KVTString::ReplaceAllSpacesWithOneSpace(" "), " ");
  EXPECT_EQ(KVTString::ReplaceAllSpacesWithOneSpace(""), "");
}

TEST(KVTStringOneSpace, KeepsEverythingElse) {
  EXPECT_EQ(KVTString::ReplaceAllSpacesWithOneSpace(" \t "), " \t ");
  EXPECT_EQ(KVTString::ReplaceAllSpacesWithOneSpace("\t\t\n\n"), "\t\t\n\n");
  EXPECT_EQ(KVTString::ReplaceAllSpacesWithOneSpace("aabb"), "aabb");
  EXPECT_EQ(KVTString::ReplaceAllSpacesWithOneSpace("\xC2\xA0\xC2\xA0"),
            "\xC2\xA0\xC2\xA0");
}

TEST(KVTStringSpaceComparer, HoldsForTwoBlanksOnly) {
  EXPECT_TRUE(KVTString::SpaceComparer(' ', ' '));
  EXPECT_FALSE(KVTString::SpaceComparer(' ', 'a'));
  EXPECT_FALSE(KVTString::SpaceComparer('a', ' '));
  EXPECT_FALSE(KVTString::SpaceComparer('a', 'a'));
  EXPECT_FALSE(KVTString::SpaceComparer('\t', '\t'));
}

// --- RemoveInVisibleCharacters

TEST(KVTStringRemoveInVisible, TakesTheSixBytesOutInPlace) {
  KVTString text(
      "\x08"
      "a\tb\nc\vd\fe\rf");
  KVTString::RemoveInVisibleCharacters(text);
  EXPECT_EQ(text, "abcdef");
}

TEST(KVTStringRemoveInVisible, KeepsTheirNeighboursAndOtherText) {
  KVTString text("\x07 \x0E\x1F\x7F\xC2\x85\xE2\x80\x8B\xD8\x89");
  KVTString::RemoveInVisibleCharacters(text);
  EXPECT_EQ(text, "\x07 \x0E\x1F\x7F\xC2\x85\xE2\x80\x8B\xD8\x89");
}

TEST(KVTStringRemoveInVisible, CanLeaveNothing) {
  KVTString text("\t\r\n");
  KVTString::RemoveInVisibleCharacters(text);
  EXPECT_TRUE(text.empty());
  KVTString::RemoveInVisibleCharacters(text);
  EXPECT_TRUE(text.empty());
}

TEST(KVTStringRemoveInVisible, EndsTheTextAtAZeroUnit) {
  KVTString text(kWithZero);
  KVTString::RemoveInVisibleCharacters(text);
  EXPECT_EQ(text, "a");
}

// --- RemoveVowels

TEST(KVTStringRemoveVowels, DropsTheTenAsciiVowelsAndKeepsY) {
  EXPECT_EQ(KVTString("Education").RemoveVowels(), "dctn");
  EXPECT_EQ(KVTString("AEIOUaeiou").RemoveVowels(), "");
  EXPECT_EQ(KVTString("Yyxyz 019").RemoveVowels(), "Yyxyz 019");
  EXPECT_EQ(KVTString().RemoveVowels(), "");
}

TEST(KVTStringRemoveVowels, CutsUnitsToOneByteAndReadsTheBytesAsUtf8) {
  // 0xE9 alone is a lead byte without its sequence.
  EXPECT_EQ(FromUnits({0x62, 0xE9}).RemoveVowels(), "b");
  // 0x20AC is cut to 0xAC, which leads a sequence of two: AC 62.
  EXPECT_EQ(FromUnits({0x20AC, 0x62}).RemoveVowels(), FromUnits({0x0322}));
  // C3 and A9 are U+00E9 together.
  EXPECT_EQ(FromUnits({0xC3, 0x01A9}).RemoveVowels(), FromUnits({0xE9}));
  // 0x0161 is no vowel, though its low byte is.
  EXPECT_EQ(FromUnits({0x0161}).RemoveVowels(), "a");
  // 0x0100 is cut to a zero byte, where the text ends.
  EXPECT_EQ(FromUnits({0x62, 0x0100, 0x63}).RemoveVowels(), "b");
}

TEST(KVTStringRemoveVowels, WorksOnTheTextUpToAZeroUnit) {
  EXPECT_EQ(KVTString(Units{0x62, 0x61, 0, 0x63}).RemoveVowels(), "b");
}

// --- ConvertStringLower, ConvertStringUpper

TEST(KVTStringConvert, ChangesAsciiLettersOnly) {
  KVTString text("aZ @[`{ 09 \xC3\x89\xC3\xA9");
  EXPECT_EQ(text.ConvertStringLower(), "az @[`{ 09 \xC3\x89\xC3\xA9");
  EXPECT_EQ(text.ConvertStringUpper(), "AZ @[`{ 09 \xC3\x89\xC3\xA9");
  EXPECT_EQ(text, "aZ @[`{ 09 \xC3\x89\xC3\xA9");
  EXPECT_EQ(KVTString().ConvertStringLower(), "");
  EXPECT_EQ(KVTString().ConvertStringUpper(), "");
}

TEST(KVTStringConvert, WorksOnTheTextUpToAZeroUnit) {
  KVTString text(kWithZero);
  EXPECT_EQ(text.ConvertStringUpper(), "A");
  EXPECT_EQ(text.ConvertStringLower(), "a");
  EXPECT_THAT(text, ElementsAre(0x61, 0, 0x62));
}

TEST(KVTStringConvert, PassesBytesOfTheUtf8FormAsSignedChars) {
  std::vector<int> seen;
  const auto note = [&seen](int character) {
    seen.push_back(character);
    return character;
  };
  const hooks::Scoped lower(hooks::onTolower, note);
  const hooks::Scoped upper(hooks::onToupper, note);
  EXPECT_EQ(KVTString("\xC3\xA9").ConvertStringLower(), "\xC3\xA9");
  EXPECT_EQ(KVTString("a\xC3").ConvertStringUpper(), "a");
  EXPECT_THAT(seen, ElementsAre(-0x3D, -0x57, 'a'));
}

TEST(KVTStringConvert, DecodesWhatTheLocaleMakesOfTheBytesUpToAZeroByte) {
  const hooks::Scoped upper(hooks::onToupper, [](int character) {
    return character == 'b' ? 0 : character;
  });
  EXPECT_EQ(KVTString("abc").ConvertStringUpper(), "a");
}

}  // namespace
