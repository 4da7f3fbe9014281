#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KVTString.h"
#include "test_strings.h"

namespace {

struct EncodingCase {
  const char* name;  // part of the test's name: letters and digits only
  std::vector<unsigned short> units;
  const char* utf8;
};

const EncodingCase kEncodingCases[] = {
    {"Empty", {}, ""},
    {"Ascii", {0x41}, "A"},
    {"LastOfOneByte", {0x7F}, "\x7F"},
    {"FirstOfTwoBytes", {0x80}, "\xC2\x80"},
    {"LastOfTwoBytes", {0x7FE}, "\xDF\xBE"},
    {"Unit07FFTakesThreeBytes", {0x7FF}, "\xE0\x9F\xBF"},
    {"FirstOfThreeBytes", {0x800}, "\xE0\xA0\x80"},
    {"Pair", {0xD83D, 0xDE00}, "\xF0\x9F\x98\x80"},
    {"HighAlone", {0xD83D}, "\xED\xA0\xBD"},
    {"LowAlone", {0xDE00}, "\xED\xB8\x80"},
};

void PrintTo(const EncodingCase& c, std::ostream* out) { *out << c.name; }

class EncodingTable : public testing::TestWithParam<EncodingCase> {};

TEST_P(EncodingTable, EncodesAndComesBack) {
  const KVTString text = FromUnits(GetParam().units);
  EXPECT_EQ(text.GetUTF8String(), GetParam().utf8);
  EXPECT_EQ(FromUtf8(GetParam().utf8), text);
}

INSTANTIATE_TEST_SUITE_P(, EncodingTable, testing::ValuesIn(kEncodingCases),
                         [](const auto& test) { return test.param.name; });

}  // namespace
