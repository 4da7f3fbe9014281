#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <cctype>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "KVTFileUtil.h"
#include "address_models.h"
#include "hooks.h"
#include "random_seed.h"
#include "test_strings.h"

namespace {

// --- One block

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
    {"Letter255", "20g", true},     // 200 + 0 + 55
    {"Letter256", "20h", false},    // 200 + 0 + 56
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

// --- Whole addresses

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
    {"NonAscii", "b\xC3\xBC" "ro", false, false, true, 2},
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

// The four bytes are those of the UTF-8 form: two letters of two bytes each put
// the dot out of reach although it is the third unit.
TEST(AddressType, CountsBytesAndNotUnits) {
  EXPECT_EQ(KVTFileUtil::GetAddressType(FromUtf8("a.b.c.d")), 0);
  EXPECT_EQ(KVTFileUtil::GetAddressType(FromUtf8("\xC3\xA9\xC3\xA9.b:::")), 2);
}

// --- Against models, over every short text

template <class Check>
void ForEveryText(const std::string& alphabet, std::size_t maxLength,
                  Check check) {
  std::vector<std::string> level = {""};
  for (std::size_t length = 0; length <= maxLength; ++length) {
    std::vector<std::string> next;
    for (const std::string& text : level) {
      check(text);
      if (length == maxLength) continue;
      for (const char c : alphabet) next.push_back(text + c);
    }
    level.swap(next);
  }
}

TEST(AddressModel, AgreesOnEveryShortTextOfAnIPV4Alphabet) {
  ForEveryText("02a.", 8, [](const std::string& text) {
    const KVTString wide = FromUtf8(text);
    ASSERT_EQ(KVTFileUtil::IsValidIPV4Address(wide), ModelIPV4Address(text))
        << text;
    ASSERT_EQ(KVTFileUtil::GetAddressType(wide), ModelAddressType(text))
        << text;
  });
}

TEST(AddressModel, AgreesOnEveryShortTextOfAHostNameAlphabet) {
  ForEveryText("1a.:-(", 6, [](const std::string& text) {
    const KVTString wide = FromUtf8(text);
    ASSERT_EQ(KVTFileUtil::IsValidHostNameAddress(wide), ModelHostName(text))
        << text;
    ASSERT_EQ(KVTFileUtil::GetAddressType(wide), ModelAddressType(text))
        << text;
    ASSERT_EQ(KVTFileUtil::MaskIP(wide), FromUtf8(ModelMask(text))) << text;
  });
}

TEST(AddressModel, AgreesOnRandomAddresses) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  const std::vector<std::string> pieces = {
      ".", ".",  ":",  ":",   "::",  "0", "1",   "25",   "255", "256", "a",
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

// --- Masking

struct MaskCase {
  const char* name;
  const char* text;
  const char* masked;
};

void PrintTo(const MaskCase& c, std::ostream* out) { *out << c.name; }

const MaskCase kMasks[] = {
    {"IPV4", "192.168.1.2", "XXX.XXX.1.2"},
    {"IPV4OfDigits", "1.2.3.4", "X.X.3.4"},
    {"IPV4OfLetters", "a.b.c.d", "X.X.c.d"},
    {"IPV6", "2001:db8:1:2:3:4:5:6", "XXXX:XXX:X:X:3:4:5:6"},
    {"Loopback", "::1", "::X"},
    {"AllZeroIPV6", "::", "::"},
    {"LinkLocal", "fe80::1", "XXXX::X"},
    {"ThreeColonsMaskEverythingElse", "::ffff:1.2.3.4", "::XXXX:XXXXXXX"},
    {"FourColonsStopTheMask", "1:2:3::4", "X:X:X::4"},
    {"HostName", "host.domain", "host.domain"},
    {"IPV4TooLarge", "256.1.1.1", "256.1.1.1"},
    {"IPV6WithZone", "fe80::1%eth0", "fe80::1%eth0"},
    {"Empty", "", ""},
};

class MaskTable : public testing::TestWithParam<MaskCase> {};

TEST_P(MaskTable, HidesTheLeadingParts) {
  EXPECT_EQ(KVTFileUtil::MaskIP(FromUtf8(GetParam().text)),
            FromUtf8(GetParam().masked));
}

INSTANTIATE_TEST_SUITE_P(, MaskTable, testing::ValuesIn(kMasks),
                         [](const auto& test) { return test.param.name; });

TEST(Mask, LeavesTheCallersTextAlone) {
  const KVTString address = FromUtf8("1.2.3.4");
  KVTFileUtil::MaskIP(address);
  EXPECT_EQ(address, FromUtf8("1.2.3.4"));
}

// --- IsValidIPV6Address when memory runs out

// The first request is the copy of the argument, the next the conversion.  A
// text of eight units and more needs memory for both.
bool IsValidIPV6WhenMemoryRunsOut(const char* text, std::size_t times) {
  const KVTString address = FromUtf8(text);
  const hooks::FailingAllocator failing(1, 0, times);
  const bool valid = KVTFileUtil::IsValidIPV6Address(address);
  EXPECT_GE(failing.Refused(), 1u);
  return valid;
}

struct SecondParserCase {
  const char* name;
  const char* text;
  bool first;   // what inet_pton says
  bool second;  // what the parser behind it says
};

void PrintTo(const SecondParserCase& c, std::ostream* out) { *out << c.name; }

const SecondParserCase kSecondParser[] = {
    {"EightGroups", "2001:db8:1:2:3:4:5:6", true, true},
    {"OneEmptyGroup", "1:2:3:4::6:7:8", true, true},
    {"EmptyGroupsOnlyTheSecondTakes", "1::3:4::6:7:8", false, true},
    {"SevenEmptyGroupsAndOneFull", ":::::::8", false, true},
    {"SevenGroups", "1:2:3:4:5:6:7", false, false},
    {"NineGroups", "1:2:3:4:5:6:7:8:9", false, false},
    {"TrailingColon", "1:2:3:4:5:6:7:8:", false, false},
    {"ShortForm", "2001:db8::1", true, false},
    {"EmbeddedQuad", "::ffff:1.2.3.4", true, false},
    {"EightGroupsAndAQuad", "1:2:3:4:5:6:7:1.2.3.4", false, false},
    {"GroupTooLong", "12345:2:3:4:5:6:7:8", false, false},
    {"NoHexadecimalDigit", "g:2:3:4:5:6:7:8", false, false},
    {"EndsInEmptyGroup", "1:2:3:4:5:6:7:", false, false},
};

class SecondParserTable : public testing::TestWithParam<SecondParserCase> {};

TEST_P(SecondParserTable, IsNotAskedWhileMemoryLasts) {
  EXPECT_EQ(KVTFileUtil::IsValidIPV6Address(FromUtf8(GetParam().text)),
            GetParam().first);
}

TEST_P(SecondParserTable, DecidesWhenTheConversionFailedOnce) {
  EXPECT_EQ(IsValidIPV6WhenMemoryRunsOut(GetParam().text, 1),
            GetParam().second);
}

TEST_P(SecondParserTable, SaysFalseWhenTheConversionFailsAgain) {
  EXPECT_FALSE(IsValidIPV6WhenMemoryRunsOut(GetParam().text, 2));
}

INSTANTIATE_TEST_SUITE_P(, SecondParserTable,
                         testing::ValuesIn(kSecondParser),
                         [](const auto& test) { return test.param.name; });

// Wherever in the call memory runs out, no exception leaves it.
TEST(IPV6Address, LetsNoExceptionOut) {
  const KVTString address = FromUtf8("2001:db8:1:2:3:4:5:6");
  for (std::size_t granted = 1; granted < 20; ++granted) {
    const hooks::FailingAllocator failing(granted);
    EXPECT_NO_THROW(KVTFileUtil::IsValidIPV6Address(address));
  }
}

}  // namespace
