#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "KVTFileUtil.h"
#include "address_models.h"
#include "random_seed.h"
#include "test_strings.h"

namespace {

struct AddressCase {
  const char* name;
  const char* text;
  bool isIPV4;
  bool isIPV6;
  bool isHostName;
  int type;
};

void PrintTo(const AddressCase& c, std::ostream* out) { *out << c.name; }

const AddressCase kAddresses[] = {
    // Dotted quads and near misses
    {"Private", "192.168.1.2", true, false, false, 0},
    {"AllZeros", "0.0.0.0", true, false, false, 0},
    {"AllOnes", "255.255.255.255", true, false, false, 0},
    {"PartTooLarge", "256.1.1.1", false, false, false, 2},
    {"LastPartTooLarge", "1.1.1.256", false, false, false, 2},
    {"LeadingZero", "01.2.3.4", false, false, false, 2},
    {"ThreeParts", "1.2.3", false, false, false, 2},
    {"TrailingDot", "1.2.3.4.", false, false, false, 2},
    {"TwoTrailingDots", "1.2.3.4..", false, false, true, 2},
    {"FiveParts", "1.2.3.4.5", false, false, false, 2},
    {"EmptyPart", "1..3.4", false, false, true, 2},
    {"EmptyFirstPart", ".1.2.3", false, false, true, 2},
    {"EmptyLastPart", "1.2.3.", false, false, false, 2},
    {"BlankInFront", " 1.2.3.4", false, false, true, 2},
    {"BlankBehind", "1.2.3.4 ", false, false, true, 2},
    {"FourDigitPart", "1234.1.1.1", false, false, false, 2},
    {"NegativePart", "1.2.3.-4", false, false, true, 2},
    // Quads with letters are at once addresses and host names
    {"FourLetters", "a.b.c.d", true, false, true, 0},
    {"DigitAndLetter", "1a.b.c.d", true, false, true, 0},
    {"MixedCase", "AZ.9z.11z.10a", true, false, true, 0},
    {"OneLetter", "1.2.3.a", true, false, true, 0},
    // Host names
    {"Hyphen", "server-01", false, false, true, 2},
    {"TwoLabels", "host.domain", false, false, true, 2},
    {"DigitLabelAndName", "1.host", false, false, true, 2},
    {"Port", "host:445", false, false, false, 2},
    {"Digits", "12345", false, false, false, 2},
    {"DigitsAndDot", "12345.", false, false, false, 2},
    {"Empty", "", false, false, false, 2},
    {"DotOnly", ".", false, false, true, 2},
    {"TwoDots", "..", false, false, true, 2},
    {"EmptyMiddleBlock", "1..2", false, false, true, 2},
    {"BlankOnly", " ", false, false, true, 2},
    {"Underscore", "my_host", false, false, true, 2},
    {"Slashes", "host/share\\x", false, false, true, 2},
    {"NonAscii", "\xC3\xBCro", false, false, true, 2},
    {"OtherPunctuation", "a@b#c$d%e^f&g*h=i+j[k]{l}~`|<>", false, false, true,
     2},
    {"Apostrophe", "a'b", false, false, false, 2},
    {"Colon", "a:b", false, false, false, 2},
    {"QuestionMark", "a?b", false, false, false, 2},
    {"Comma", "a,b", false, false, false, 2},
    {"ExclamationMark", "a!b", false, false, false, 2},
    {"OpeningParenthesis", "a(b", false, false, false, 2},
    {"ClosingParenthesis", "a)b", false, false, false, 2},
    {"DoubleQuote", "a\"b", false, false, false, 2},
    {"Semicolon", "a;b", false, false, false, 2},
    {"PunctuationAtTheEnd", "host;", false, false, false, 2},
    // IPv6
    {"Loopback", "::1", false, true, false, 1},
    {"AllZeroIPV6", "::", false, true, false, 1},
    {"LinkLocal", "fe80::1", false, true, false, 1},
    {"FullFirstGroup", "2001:db8::1", false, true, false, 1},
    {"EightGroups", "2001:db8:1:2:3:4:5:6", false, true, false, 1},
    {"UpperCaseGroups", "FE80::ABCD", false, true, false, 1},
    {"EmbeddedQuad", "::ffff:1.2.3.4", false, true, false, 1},
    {"SevenGroups", "1:2:3:4:5:6:7", false, false, false, 2},
    {"NineGroups", "1:2:3:4:5:6:7:8:9", false, false, false, 2},
    {"TwoGaps", "1::2::3", false, false, false, 2},
    {"GroupTooLong", "12345::1", false, false, false, 2},
    {"Zone", "fe80::1%eth0", false, false, false, 2},
    {"Brackets", "[::1]", false, false, false, 2},
    {"BlankBeforeIPV6", " ::1", false, false, false, 2},
    {"BlankBehindIPV6", "::1 ", false, false, false, 2},
    // Where the delimiter stands decides which test is asked
    {"DotBeforeColon", "a.b:c", false, false, false, 2},
    {"DotAmongTheFirstFourBytes", "255.1.1.1", true, false, false, 0},
    {"DotAtByteFive", "abcd.b.c.d", false, false, true, 2},
    {"ColonAtByteFive", "abcd::1", false, true, false, 1},
    {"IPV6WithADotAmongTheFirstFourBytes", "::1.2.3.4", false, true, false, 2},
    {"IPV6WithADotAtByteFive", "::12.2.3.4", false, true, false, 1},
    {"ColonAtByteSix", "abcde::1", false, false, false, 2},
};

class AddressTable : public testing::TestWithParam<AddressCase> {
 protected:
  const KVTString mText = FromUtf8(GetParam().text);
};

TEST_P(AddressTable, IsAnIPV4AddressOrNot) {
  EXPECT_EQ(KVTFileUtil::IsValidIPV4Address(mText), GetParam().isIPV4);
}

TEST_P(AddressTable, IsAnIPV6AddressOrNot) {
  EXPECT_EQ(KVTFileUtil::IsValidIPV6Address(mText), GetParam().isIPV6);
}

TEST_P(AddressTable, IsAHostNameOrNot) {
  EXPECT_EQ(KVTFileUtil::IsValidHostNameAddress(mText), GetParam().isHostName);
}

TEST_P(AddressTable, HasItsType) {
  EXPECT_EQ(KVTFileUtil::GetAddressType(mText), GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(, AddressTable, testing::ValuesIn(kAddresses),
                         [](const auto& test) { return test.param.name; });

TEST(HostName, HasNoLimitOfLength) {
  EXPECT_TRUE(KVTFileUtil::IsValidHostNameAddress(Repeat("a", 100000)));
  EXPECT_TRUE(KVTFileUtil::IsValidHostNameAddress(Repeat("label.", 10000)));
}

TEST(HostName, RefusesEachPunctuationCharacterAndNoOtherOfAscii) {
  const std::string refused = "':?,!()\";";
  for (char character = 1; character < 127; ++character) {
    const std::string name = {'a', character, 'b'};
    EXPECT_EQ(KVTFileUtil::IsValidHostNameAddress(FromUtf8(name)),
              refused.find(character) == std::string::npos)
        << name;
  }
}

// --- Against models, over every short text

TEST(AddressModel, AgreesOnEveryShortTextOfAnIPV4Alphabet) {
  for (const std::string& text : AllTexts("02a.", 8)) {
    const KVTString wide = FromUtf8(text);
    ASSERT_EQ(KVTFileUtil::IsValidIPV4Address(wide), ModelIPV4Address(text))
        << text;
    ASSERT_EQ(KVTFileUtil::GetAddressType(wide), ModelAddressType(text))
        << text;
  }
}

TEST(AddressModel, AgreesOnEveryShortTextOfAHostNameAlphabet) {
  for (const std::string& text : AllTexts("1a.:-(", 6)) {
    const KVTString wide = FromUtf8(text);
    ASSERT_EQ(KVTFileUtil::IsValidHostNameAddress(wide), ModelHostName(text))
        << text;
    ASSERT_EQ(KVTFileUtil::GetAddressType(wide), ModelAddressType(text))
        << text;
    ASSERT_EQ(KVTFileUtil::MaskIP(wide), FromUtf8(ModelMask(text))) << text;
  }
}

TEST(AddressModel, AgreesOnRandomAddresses) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  const std::vector<std::string> pieces = {
      ".", ".",  ":",  ":",    "::",   "0", "1",  "25",   "255", "256",     "a",
      "f", "fe", "Az", "abcd", "ffff", " ", "%1", "host", "-",   "\xC3\xA9"};
  for (int i = 0; i < 200000; ++i) {
    std::string text;
    for (unsigned n = random() % 17; n > 0; --n) {
      text += pieces[random() % pieces.size()];
    }
    const KVTString wide = FromUtf8(text);
    ASSERT_EQ(KVTFileUtil::IsValidIPV4Address(wide), ModelIPV4Address(text))
        << text;
    ASSERT_EQ(KVTFileUtil::IsValidHostNameAddress(wide), ModelHostName(text))
        << text;
    ASSERT_EQ(KVTFileUtil::GetAddressType(wide), ModelAddressType(text))
        << text;
    ASSERT_EQ(KVTFileUtil::MaskIP(wide), FromUtf8(ModelMask(text))) << text;
  }
}

}  // namespace
