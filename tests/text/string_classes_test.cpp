#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "KVTString.h"
#include "hooks.h"
#include "test_strings.h"

namespace {

using testing::ElementsAre;

// Calls `check` for each unit with whether it is a character of `set`.
template <class Check>
void ForEachUnit(const std::string& set, Check check) {
  for (unsigned unit = 1; unit <= 0xFFFF; ++unit) {
    const bool inSet =
        unit < 0x80 && set.find(static_cast<char>(unit)) != std::string::npos;
    check(KVTString(Units(1, static_cast<unsigned short>(unit))), inSet);
    if (testing::Test::HasFailure()) return;
  }
}

const char kSpecial[] = "~`!@#$%^&*()_+{}:\"<>?/.,';][=-|\\";
const char kFileName[] = "\\/:?%*<\">|";
const char kDigits[] = "0123456789";
const char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

TEST(KVTStringSpecialCharacters, AreExactlyThe32PunctuationCharacters) {
  EXPECT_EQ(sizeof kSpecial - 1, 32u);
  ForEachUnit(kSpecial, [](const KVTString& unit, bool special) {
    EXPECT_EQ(unit.ContainsSpecialCharacters(), special)
        << testing::PrintToString(unit);
  });
}

TEST(KVTStringSpecialCharacters, AreFoundAnywhere) {
  EXPECT_TRUE(KVTString("abc-def").ContainsSpecialCharacters());
  EXPECT_TRUE(KVTString("abc|").ContainsSpecialCharacters());
  EXPECT_FALSE(KVTString("abc def 123\t").ContainsSpecialCharacters());
  EXPECT_FALSE(KVTString().ContainsSpecialCharacters());
}

TEST(KVTStringSpecialCharacters, AreFoundBehindAZeroUnit) {
  EXPECT_TRUE(KVTString(Units{0x61, 0, '/'}).ContainsSpecialCharacters());
  EXPECT_FALSE(KVTString(Units{0x61, 0, 0x62}).ContainsSpecialCharacters());
}

TEST(KVTStringFileName, RefusesExactlyTenCharacters) {
  EXPECT_EQ(sizeof kFileName - 1, 10u);
  ForEachUnit(kFileName, [](const KVTString& unit, bool refused) {
    EXPECT_EQ(unit.IsPermissableFileName(), !refused)
        << testing::PrintToString(unit);
  });
}

TEST(KVTStringFileName, RefusesTheEmptyTextAndThoseCharactersAnywhere) {
  EXPECT_FALSE(KVTString().IsPermissableFileName());
  EXPECT_FALSE(KVTString("100%").IsPermissableFileName());
  EXPECT_FALSE(KVTString("a/b").IsPermissableFileName());
  EXPECT_TRUE(KVTString("report (1).txt").IsPermissableFileName());
  EXPECT_TRUE(KVTString(" ").IsPermissableFileName());
  EXPECT_TRUE(KVTString("..").IsPermissableFileName());
}

TEST(KVTStringFileName, IsRefusedForACharacterBehindAZeroUnit) {
  EXPECT_FALSE(KVTString(Units{0x61, 0, '/'}).IsPermissableFileName());
  EXPECT_TRUE(KVTString(Units{0, 0x61}).IsPermissableFileName());
}

TEST(KVTStringFileName, ListsTheRefusedCharactersInItsOwnOrder) {
  EXPECT_THAT(KVTString::GetNotAllowedCharactersForFileName(),
              ElementsAre("/", "\\", ":", "*", "?", ">", "\"", "<", "|", "%"));
}

TEST(KVTStringOnlyDigits, HoldsForExactlyTenUnits) {
  ForEachUnit(kDigits, [](const KVTString& unit, bool digit) {
    EXPECT_EQ(unit.ContainsOnlyDigits(), digit) << testing::PrintToString(unit);
  });
}

TEST(KVTStringOnlyDigits, NeedsEveryUnitToBeOne) {
  EXPECT_TRUE(KVTString("1234567890").ContainsOnlyDigits());
  EXPECT_FALSE(KVTString().ContainsOnlyDigits());
  EXPECT_FALSE(KVTString("-1").ContainsOnlyDigits());
  EXPECT_FALSE(KVTString("12 ").ContainsOnlyDigits());
  EXPECT_FALSE(KVTString("1a1").ContainsOnlyDigits());
}

TEST(KVTStringOnlyDigits, LooksAtTheTextUpToAZeroUnit) {
  EXPECT_TRUE(KVTString(Units{0x31, 0, 0x61}).ContainsOnlyDigits());
  EXPECT_FALSE(KVTString(Units{0, 0x31}).ContainsOnlyDigits());
}

TEST(KVTStringOnlyAlphabets, HoldsForExactlyTheAsciiLetters) {
  ForEachUnit(kLetters, [](const KVTString& unit, bool letter) {
    EXPECT_EQ(unit.ContainsOnlyAlphabets(), letter)
        << testing::PrintToString(unit);
  });
}

TEST(KVTStringOnlyAlphabets, NeedsEveryUnitToBeOne) {
  EXPECT_TRUE(KVTString("abcXYZ").ContainsOnlyAlphabets());
  EXPECT_FALSE(KVTString().ContainsOnlyAlphabets());
  EXPECT_FALSE(KVTString("\xC3\xA9").ContainsOnlyAlphabets());
  EXPECT_FALSE(KVTString("abc1").ContainsOnlyAlphabets());
  EXPECT_FALSE(KVTString("a b").ContainsOnlyAlphabets());
}

TEST(KVTStringOnlyAlphabets, PassesEachUnitToToupperAsItStands) {
  std::vector<int> seen;
  const hooks::Scoped upper(hooks::onToupper, [&seen](int character) {
    seen.push_back(character);
    return 'A';
  });
  EXPECT_TRUE(FromUnits({0x61, 0xE9, 0xFFFF}).ContainsOnlyAlphabets());
  EXPECT_THAT(seen, ElementsAre(0x61, 0xE9, 0xFFFF));
}

TEST(KVTStringOnlyAlphabets, LooksAtTheTextUpToAZeroUnit) {
  EXPECT_TRUE(KVTString(Units{0x61, 0, 0x31}).ContainsOnlyAlphabets());
  EXPECT_FALSE(KVTString(Units{0, 0x61}).ContainsOnlyAlphabets());
}

}  // namespace
