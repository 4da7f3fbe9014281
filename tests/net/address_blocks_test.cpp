#include <gtest/gtest.h>

#include <cctype>
#include <set>
#include <string>

#include "KVTFileUtil.h"
#include "address_models.h"
#include "hooks.h"

namespace {

struct BlockCase {
  const char* name;  // part of the test's name: letters and digits only
  const char* block;
  bool valid;
};

void PrintTo(const BlockCase& c, std::ostream* out) { *out << c.name; }

const BlockCase kIPV4Blocks[] = {
    {"Empty", "", false},
    {"Zero", "0", true},
    {"Nine", "9", true},
    {"SmallestLowerCaseLetter", "a", true},
    {"LargestLowerCaseLetter", "z", true},
    {"SmallestUpperCaseLetter", "A", true},
    {"LargestUpperCaseLetter", "Z", true},
    {"Hyphen", "-", false},
    {"Blank", " ", false},
    {"TwoZeros", "00", false},
    {"ZeroBeforeDigit", "09", false},
    {"ZeroBeforeLetter", "0a", false},
    {"ThreeZeros", "000", false},
    {"ZeroBeforeTwoDigits", "012", false},
    {"TenIsNoLeadingZero", "10", true},
    {"NinetyNine", "99", true},
    {"Letter59", "1a", true},
    {"Letter164", "9z", true},
    {"Letters212", "AZ", true},
    {"Letters244", "Az", true},
    {"Letters490", "a0", false},
    {"Letters814", "zz", false},
    {"UpperCaseLetters302", "JZ", false},
    {"UpperCaseLetters247", "FK", true},
    {"Hundred", "100", true},
    {"TwoHundredFiftyFive", "255", true},
    {"TwoHundredFiftySix", "256", false},
    {"NineHundredNinetyNine", "999", false},
    {"Letter149", "10a", true},
    {"Letter184", "11z", true},
    {"Letter162", "12Z", true},
    {"Letter255", "20g", true},   // 200 + 0 + 55
    {"Letter256", "20h", false},  // 200 + 0 + 56
    {"Letters287", "1AA", false},
    {"HyphenBehindDigit", "1-", false},
    {"HyphenBeforeDigit", "-1", false},
    {"HyphenInTheMiddle", "1-1", false},
    {"HyphenAtTheEnd", "11-", false},
    {"FourDigits", "1234", false},
    {"FourDigitsOfSmallValue", "0001", false},
    {"NonAsciiLetter", "\xC3\xA9", false},
};

class IPV4BlockTable : public testing::TestWithParam<BlockCase> {};

TEST_P(IPV4BlockTable, IsJudged) {
  EXPECT_EQ(KVTFileUtil::IsValidIPV4Block(GetParam().block), GetParam().valid);
}

INSTANTIATE_TEST_SUITE_P(, IPV4BlockTable, testing::ValuesIn(kIPV4Blocks),
                         [](const auto& test) { return test.param.name; });

TEST(IPV4Block, RefusesAZeroByteInside) {
  EXPECT_FALSE(KVTFileUtil::IsValidIPV4Block(std::string("1\0", 2)));
}

TEST(IPV4Block, AgreesWithTheTableOfWeightsOnEveryTextOfUpToThreeBytes) {
  const std::string interesting =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
      "/:@[`{-. \x7F\x80\xC3\xE9\xFF";
  for (const char a : interesting) {
    ASSERT_EQ(KVTFileUtil::IsValidIPV4Block({a}), ModelIPV4Block({a}));
    for (const char b : interesting) {
      ASSERT_EQ(KVTFileUtil::IsValidIPV4Block({a, b}), ModelIPV4Block({a, b}));
      for (const char c : interesting) {
        const std::string block = {a, b, c};
        ASSERT_EQ(KVTFileUtil::IsValidIPV4Block(block), ModelIPV4Block(block))
            << block;
      }
    }
  }
}

// In a locale with letters above 0x7F, isalnum(3) gets them as negative values.
TEST(IPV4Block, AsksIsalnumAboutTheSignExtendedByte) {
  std::set<int> asked;
  const hooks::Scoped letters(hooks::onIsalnum, [&asked](int character) {
    asked.insert(character);
    return 1;
  });
  EXPECT_TRUE(KVTFileUtil::IsValidIPV4Block("\xE9"));
  EXPECT_TRUE(KVTFileUtil::IsValidIPV4Block("9\x80"));  // 90 - 176
  EXPECT_EQ(asked, (std::set<int>{-128, -23, '9'}));
}

const BlockCase kIPV6Blocks[] = {
    {"Empty", "", true},
    {"OneDigit", "0", true},
    {"LeadingZeros", "0001", true},
    {"LowerCase", "abcd", true},
    {"UpperCase", "ABCD", true},
    {"LargestLetters", "fF", true},
    {"FirstLetterBeyondLowerCase", "g", false},
    {"FirstLetterBeyondUpperCase", "G", false},
    {"FiveDigits", "12345", false},
    {"Blank", " ", false},
    {"BlankBehindDigits", "12 ", false},
    {"Dot", "1.2", false},
    {"Colon", "1:2", false},
    {"Prefix", "0x1", false},
    {"NonAscii", "\xC3\xA9", false},
};

class IPV6BlockTable : public testing::TestWithParam<BlockCase> {};

TEST_P(IPV6BlockTable, IsJudged) {
  EXPECT_EQ(KVTFileUtil::IsValidIPV6Block(GetParam().block), GetParam().valid);
}

INSTANTIATE_TEST_SUITE_P(, IPV6BlockTable, testing::ValuesIn(kIPV6Blocks),
                         [](const auto& test) { return test.param.name; });

TEST(IPV6Block, RefusesAZeroByteInside) {
  EXPECT_FALSE(KVTFileUtil::IsValidIPV6Block(std::string("1\0", 2)));
}

TEST(IPV6Block, TakesExactlyTheHexadecimalDigits) {
  for (int code = 0; code < 256; ++code) {
    const std::string block(1, static_cast<char>(code));
    EXPECT_EQ(KVTFileUtil::IsValidIPV6Block(block),
              code < 128 && std::isxdigit(code) != 0)
        << code;
  }
}

}  // namespace
