#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <type_traits>

#include "KVTGUID.h"
#include "KVTString.h"
#include "random_seed.h"
#include "test_strings.h"

namespace {

KVTGUID Make(unsigned data1, unsigned data2, unsigned data3,
             std::initializer_list<unsigned> data4) {
  signed char bytes[8] = {};
  std::size_t i = 0;
  for (const unsigned byte : data4) bytes[i++] = static_cast<signed char>(byte);
  return KVTGUID(static_cast<int>(data1), static_cast<short>(data2),
                 static_cast<short>(data3), bytes);
}

std::string Shown(const KVTGUID& id) {
  char text[64];
  const auto byte = [&id](int i) {
    return static_cast<unsigned>(static_cast<unsigned char>(id.mData4[i]));
  };
  std::snprintf(
      text, sizeof text, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
      static_cast<unsigned>(id.mData1),
      static_cast<unsigned>(static_cast<unsigned short>(id.mData2)),
      static_cast<unsigned>(static_cast<unsigned short>(id.mData3)), byte(0),
      byte(1), byte(2), byte(3), byte(4), byte(5), byte(6), byte(7));
  return text;
}

// --- The value

TEST(KVTGUIDClass, HoldsFourFieldsInOrderAndAVirtualDestructor) {
  EXPECT_TRUE(std::has_virtual_destructor_v<KVTGUID>);
  EXPECT_EQ(sizeof(KVTGUID), 24u);
  const KVTGUID id;
  const char* const base = reinterpret_cast<const char*>(&id);
  EXPECT_EQ(reinterpret_cast<const char*>(&id.mData1) - base, 8);
  EXPECT_EQ(reinterpret_cast<const char*>(&id.mData2) - base, 12);
  EXPECT_EQ(reinterpret_cast<const char*>(&id.mData3) - base, 14);
  EXPECT_EQ(reinterpret_cast<const char*>(&id.mData4) - base, 16);
}

TEST(KVTGUIDClass, HasItsDestructorCalledThroughAPointer) {
  const std::unique_ptr<KVTGUID> id(new KVTGUID);
  EXPECT_EQ(id->mData1, 0);
}

TEST(KVTGUIDValue, IsAllZeroByDefault) {
  EXPECT_EQ(Shown(KVTGUID()), "00000000-0000-0000-0000-000000000000");
}

TEST(KVTGUIDValue, TakesThreeNumbersAndEightBytes) {
  signed char bytes[9] = {-128, -1, 0, 1, 2, 3, 4, 127, 99};
  const KVTGUID id(-5, -6, 7, bytes);
  EXPECT_EQ(id.mData1, -5);
  EXPECT_EQ(id.mData2, -6);
  EXPECT_EQ(id.mData3, 7);
  EXPECT_EQ(std::memcmp(id.mData4, bytes, 8), 0);
}

TEST(KVTGUIDValue, IsCopiedAndAssigned) {
  const KVTGUID id = Make(1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11});
  const KVTGUID copy(id);
  EXPECT_EQ(Shown(copy), "00000001-0002-0003-0405-060708090a0b");
  KVTGUID assigned;
  EXPECT_EQ(&(assigned = id), &assigned);
  EXPECT_EQ(Shown(assigned), Shown(id));
}

TEST(KVTGUIDValue, IsEqualWhenAllFieldsAre) {
  const KVTGUID id = Make(1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11});
  const auto differs = [&id](const KVTGUID& other) {
    return !(id == other) && id != other && !(other == id) && other != id;
  };
  EXPECT_TRUE(id == KVTGUID(id));
  EXPECT_FALSE(id != KVTGUID(id));
  EXPECT_TRUE(differs(Make(9, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11})));
  EXPECT_TRUE(differs(Make(1, 9, 3, {4, 5, 6, 7, 8, 9, 10, 11})));
  EXPECT_TRUE(differs(Make(1, 2, 9, {4, 5, 6, 7, 8, 9, 10, 11})));
  for (int i = 0; i < 8; ++i) {
    KVTGUID other(id);
    other.mData4[i] = -1;
    EXPECT_TRUE(differs(other)) << i;
  }
}

// --- From text

struct TextCase {
  const char* name;
  const char* text;
  const char* expected;
};

void PrintTo(const TextCase& c, std::ostream* out) { *out << c.name; }

constexpr char kAllZero[] = "00000000-0000-0000-0000-000000000000";

const TextCase kTextCases[] = {
    {"Whole", "00112233-4455-6677-8899-aabbccddeeff",
     "00112233-4455-6677-8899-aabbccddeeff"},
    {"InCapitals", "00112233-4455-6677-8899-AABBCCDDEEFF",
     "00112233-4455-6677-8899-aabbccddeeff"},
    {"AllOnes", "ffffffff-ffff-ffff-ffff-ffffffffffff",
     "ffffffff-ffff-ffff-ffff-ffffffffffff"},
    // Length and number of parts
    {"Empty", "", kAllZero},
    {"Of35Units", "00112233-4455-6677-8899-aabbccddeef", kAllZero},
    {"Of37Units", "00112233-4455-6677-8899-aabbccddeefff", kAllZero},
    {"Of37UnitsWithALongFirstPart", "000112233-4455-6677-8899-aabbccddeeff",
     kAllZero},
    {"InBraces", "{00112233-4455-6677-8899-aabbccddeeff}", kAllZero},
    {"WithThreeDashes", "00112233-4455-6677-88990aabbccddeeff", kAllZero},
    {"WithFiveDashes", "00112233-4455-6677-8899-aabbcc-deeff", kAllZero},
    {"WithNoDash", "001122334455667788990aabbccddeeff123", kAllZero},
    {"WithADashInFrontAndFourParts", "-0112233-4455-6677-8899aabbccddeeff0",
     kAllZero},
    {"WithADashInFrontAndFiveParts", "-0112233-4455-6677-8899-aabbccddeeff",
     "00112233-4455-6677-8899-aabbccddeeff"},
    {"WithADashBehindAndFiveParts", "00112233-4455-6677-8899-aabbccddeef-",
     "00112233-4455-6677-8899-aabbccddee0f"},
    {"WithTwoDashesTogetherAndFiveParts",
     "0112233--4455-6677-8899-aabbccddeeff",
     "00112233-4455-6677-8899-aabbccddeeff"},
    // Lengths of the parts
    {"FirstPartTooLarge", "1001122334-455-667-8899-aabbccddeeff",
     "ffffffff-0455-0667-8899-aabbccddeeff"},
    {"SecondPartIsCutTo16Bits", "0011223-445566-677-8899-aabbccddeeff",
     "00011223-5566-0677-8899-aabbccddeeff"},
    {"ThirdPartIsCutTo16Bits", "0011223-445-667788-8899-aabbccddeeff",
     "00011223-0445-7788-8899-aabbccddeeff"},
    {"FourthAndFifthPartAreJoined", "00112233-4455-6677-889-9aabbccddeeff",
     "00112233-4455-6677-8899-aabbccddeeff"},
    {"TailOf14Digits", "0011223344-5566-7788-8899-aabbccddee",
     "11223344-5566-7788-8899-aabbccddee00"},
    {"TailOf15Digits", "000112233-4455-6677-8899-aabbccddeef",
     "00112233-4455-6677-8899-aabbccddee0f"},
    {"TailOf17Digits", "0011223-4455-6677-8899-aabbccddeeff0", kAllZero},
    {"TailOf18Digits", "001122-4455-6677-8899-aabbccddeeff00", kAllZero},
    // Other characters in the tail
    {"LettersInFrontOfTheFifthPart", "00112233-4455-6677-8899-zzbbccddeeff",
     "00112233-4455-6677-8899-000000000000"},
    {"LettersInFrontOfTheFourthPart", "00112233-4455-6677-zz99-aabbccddeeff",
     "00112233-4455-6677-0000-000000000000"},
    {"LettersInTheLastPair", "00112233-4455-6677-8899-aabbccddeezz",
     "00112233-4455-6677-8899-aabbccddee00"},
    {"DigitAndLetterStopTheNext", "00112233-4455-6677-8899-aabbccd1zff0",
     "00112233-4455-6677-8899-aabbccd10000"},
    {"DigitBeforeALetterCountsAlone", "00112233-4455-6677-8899-1gbbccddeeff",
     "00112233-4455-6677-8899-010000000000"},
    {"LetterBeforeADigit", "00112233-4455-6677-8899-g1bbccddeeff",
     "00112233-4455-6677-8899-000000000000"},
    // A prefix without digits is read, and gives zero; nothing of it stays.
    {"PrefixAlone", "00112233-4455-6677-8899-0xbbccddeeff",
     "00112233-4455-6677-8899-00bbccddeeff"},
    {"BlankAndDigit", "00112233-4455-6677-8899- 1bbccddeeff",
     "00112233-4455-6677-8899-01bbccddeeff"},
    // A sign behind a digit is left over and read in front of the next pair.
    {"PlusBehindADigit", "00112233-4455-6677-8899-a+1bccddeeff",
     "00112233-4455-6677-8899-0a1bccddeeff"},
    {"PlusBeforeADigit", "00112233-4455-6677-8899-+1bbccddeeff",
     "00112233-4455-6677-8899-01bbccddeeff"},
    {"TwoByteCharacterMakesTheTailTooLong",
     "00112233-4455-6677-8899-aabbccddeef\xC3\xA9", kAllZero},
    {"TwoByteCharacterInAShortTail",
     "000112233-4455-6677-8899-aabbccddee\xC3\xA9",
     "00112233-4455-6677-8899-aabbccddee00"},
    // Other characters in the first three parts
    {"LettersInTheFirstPart", "zz112233-4455-6677-8899-aabbccddeeff",
     "00000000-4455-6677-8899-aabbccddeeff"},
    {"LetterBehindDigits", "0011223z-445z-66zz-8899-aabbccddeeff",
     "00011223-0445-0066-8899-aabbccddeeff"},
};

class GuidTextTable : public testing::TestWithParam<TextCase> {};

TEST_P(GuidTextTable, Reads) {
  EXPECT_EQ(Shown(KVTString::GetGUID(GetParam().text)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(, GuidTextTable, testing::ValuesIn(kTextCases),
                         [](const auto& test) { return test.param.name; });

TEST(KVTStringGetGUID, GivesTheFieldsAsSignedNumbers) {
  const KVTGUID id = KVTString::GetGUID("ffffffff-ffff-8000-8899-aabbccddeeff");
  EXPECT_EQ(id.mData1, -1);
  EXPECT_EQ(id.mData2, -1);
  EXPECT_EQ(id.mData3, -0x8000);
  EXPECT_EQ(id.mData4[0], -0x78);
  EXPECT_EQ(id.mData4[7], -1);
}

TEST(KVTStringGetGUID, GivesBackRandomValues) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 5000; ++round) {
    signed char bytes[8];
    for (signed char& byte : bytes) byte = static_cast<signed char>(random());
    const KVTGUID id(static_cast<int>(random()), static_cast<short>(random()),
                     static_cast<short>(random()), bytes);
    ASSERT_TRUE(KVTString::GetGUID(FromUtf8(Shown(id))) == id) << Shown(id);
  }
}

// What the tail gives, its unread characters kept for the next pair.
std::string ModelTail(const std::string& tail) {
  if (tail.size() > 16) return std::string(16, '0');
  std::string unread;
  std::string shown;
  for (std::size_t i = 0; i < tail.size(); i += 2) {
    unread += tail.substr(i, 2);
    std::string digits;
    while (!unread.empty() && std::isxdigit(unread[0]) != 0) {
      digits += unread[0];
      unread.erase(0, 1);
    }
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02lx",
                  std::strtoul(("0" + digits).c_str(), nullptr, 16) & 0xFF);
    shown += pair;
  }
  return shown.append(16 - shown.size(), '0');
}

TEST(KVTStringGetGUID, ReadsTheTailLikeTheModel) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 20000; ++round) {
    const std::size_t length = 9 + random() % 9;  // with the dash: 10 to 18
    std::string tail;
    for (std::size_t i = 0; i < length; ++i) {
      tail += "0123456789abcdefABCDEFgz"[random() % (random() % 4 ? 22 : 24)];
    }
    const std::size_t dash = 1 + random() % (length - 1);
    const std::string front = "1-2-" + std::string(35 - 5 - length, '0') + "-";
    const std::string text =
        front + tail.substr(0, dash) + "-" + tail.substr(dash);
    ASSERT_EQ(text.size(), 36u);
    std::string shown = Shown(KVTString::GetGUID(FromUtf8(text)));
    shown = shown.substr(19, 4) + shown.substr(24);
    ASSERT_EQ(shown, ModelTail(tail)) << text;
  }
}

}  // namespace
