#include <gtest/gtest.h>

#include <set>
#include <string_view>
#include <unordered_set>

#include "KVTFileUtil.h"
#include "KVTString.h"
#include "hooks.h"
#include "test_strings.h"

namespace {

constexpr char kValid[] = "00112233-4455-6677-8899-aabbccddeeff";

// --- isGUIDValid

struct ValidityCase {
  const char* name;
  const char* text;
  bool valid;
};

void PrintTo(const ValidityCase& c, std::ostream* out) { *out << c.name; }

const ValidityCase kValidityCases[] = {
    {"LowerCase", kValid, true},
    {"UpperCase", "00112233-4455-6677-8899-AABBCCDDEEFF", true},
    {"MixedCase", "00112233-4455-6677-8899-AaBbCcDdEeFf", true},
    {"AllZero", "00000000-0000-0000-0000-000000000000", true},
    {"Empty", "", false},
    {"Of35Units", "00112233-4455-6677-8899-aabbccddeef", false},
    {"Of37Units", "00112233-4455-6677-8899-aabbccddeefff", false},
    {"InBraces", "{00112233-4455-6677-8899-aabbccddeeff}", false},
    {"InBracesAndOf36Units", "{0112233-4455-6677-8899-aabbccddeef}", false},
    {"WithoutDashes", "00112233445566778899aabbccddeeff", false},
    {"WithoutDashesAndOf36Units", "00112233445566778899aabbccddeeff0011",
     false},
    {"DashOnePlaceToTheLeft", "0011223-34455-6677-8899-aabbccddeeff", false},
    {"DashOnePlaceToTheRight", "001122334-455-6677-8899-aabbccddeeff", false},
    {"LetterG", "00112233-4455-6677-8899-aabbccddeefg", false},
    {"BlankInFront", " 0112233-4455-6677-8899-aabbccddeeff", false},
};

class ValidityTable : public testing::TestWithParam<ValidityCase> {};

TEST_P(ValidityTable, Tells) {
  EXPECT_EQ(KVTFileUtil::isGUIDValid(GetParam().text), GetParam().valid);
}

INSTANTIATE_TEST_SUITE_P(, ValidityTable, testing::ValuesIn(kValidityCases),
                         [](const auto& test) { return test.param.name; });

TEST(IsGUIDValid, LooksAtTheLowByteOfEachUnitOnly) {
  KVTString text(kValid);
  text[24] = 0x0141;
  EXPECT_TRUE(KVTFileUtil::isGUIDValid(text));
  text[8] = 0xFF2D;
  EXPECT_TRUE(KVTFileUtil::isGUIDValid(text));
  text[24] = 0x0147;
  EXPECT_FALSE(KVTFileUtil::isGUIDValid(text));
}

TEST(IsGUIDValid, TakesExactlyTheDashOrTheHexadecimalDigitsAtEachPosition) {
  const std::string_view digits = "0123456789abcdefABCDEF";
  for (std::size_t position = 0; position < 36; ++position) {
    const bool dash = kValid[position] == '-';
    for (unsigned byte = 1; byte <= 0xFF; ++byte) {
      const char character = static_cast<char>(byte);
      const bool expected =
          dash ? character == '-'
               : digits.find(character) != std::string_view::npos;
      for (const unsigned high : {0u, 0x4100u}) {
        KVTString text(kValid);
        text[position] = static_cast<unsigned short>(high | byte);
        ASSERT_EQ(KVTFileUtil::isGUIDValid(text), expected)
            << position << " " << (high | byte);
      }
    }
  }
}

TEST(IsGUIDValid, AsksIsxdigitAboutTheSignExtendedLowByte) {
  KVTString text(kValid);
  text[0] = 0x41E9;
  text[35] = 0x80;
  std::set<int> asked;
  const hooks::Scoped hook(hooks::onIsxdigit, [&asked](int character) {
    asked.insert(character);
    return 1;
  });
  EXPECT_TRUE(KVTFileUtil::isGUIDValid(text));
  EXPECT_EQ(asked,
            (std::set<int>{-128, -23, '0', '1', '2', '3', '4', '5', '6', '7',
                           '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'}));
}

TEST(IsGUIDValid, RefusesAZeroLowByte) {
  KVTString text(kValid);
  text[35] = 0x0100;
  EXPECT_FALSE(KVTFileUtil::isGUIDValid(text));
}

// --- GetUUID

TEST(GetUUID, GivesAValidTextOf36Characters) {
  for (int i = 0; i < 100; ++i) {
    const KVTString text = KVTFileUtil::GetUUID("");
    EXPECT_EQ(text.size(), 36u);
    EXPECT_TRUE(KVTFileUtil::isGUIDValid(text));
  }
}

TEST(GetUUID, IsWhatUuidGenerateGivesInLowerCase) {
  const hooks::Scoped hook(hooks::onUuidGenerate, [](unsigned char* out) {
    for (unsigned i = 0; i < 16; ++i) {
      out[i] = static_cast<unsigned char>(0x11 * i);
    }
  });
  EXPECT_EQ(KVTFileUtil::GetUUID(""), kValid);
  EXPECT_EQ(KVTFileUtil::GetUUID("id-"), KVTString("id-") + kValid);
}

TEST(GetUUID, PutsThePrefixInFrontWithNothingBetween) {
  const KVTString prefix("pre\xE2\x82\xAC ");
  KVTString text = KVTFileUtil::GetUUID(prefix);
  const unsigned length = static_cast<unsigned>(prefix.size());
  EXPECT_EQ(text.size(), length + 36u);
  EXPECT_EQ(text.SubString(0, length), prefix);
  EXPECT_TRUE(KVTFileUtil::isGUIDValid(text.SubString(length, 36)));
}

TEST(GetUUID, ChecksNothingAboutThePrefix) {
  EXPECT_EQ(KVTFileUtil::GetUUID("-").size(), 37u);
  EXPECT_EQ(KVTFileUtil::GetUUID(KVTString(Units{0, 0})).size(), 38u);
}

TEST(GetUUID, GivesAMillionTextsWithoutAClash) {
  constexpr std::size_t kCount = 1000000;
  std::unordered_set<std::string> seen;
  seen.reserve(kCount);
  for (std::size_t i = 0; i < kCount; ++i) {
    ASSERT_TRUE(seen.insert(KVTFileUtil::GetUUID("").GetUTF8String()).second);
  }
  EXPECT_EQ(seen.size(), kCount);
}

}  // namespace
