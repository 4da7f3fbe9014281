#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "KVTConfigReader.h"
#include "test_strings.h"

namespace {

using testing::IsEmpty;

struct TrimCase {
  const char* name;  // part of the test's name: letters and digits only
  const char* text;
  const char* characters;
  const char* result;
};

const TrimCase kTrimCases[] = {
    {"Nothing", "", "", ""},
    {"NoCharacters", " a ", "", " a "},
    {"BothEnds", " \ta b\t ", " \t", "a b"},
    {"FrontAlone", "xxa", "x", "a"},
    {"BackAlone", "axx", "x", "a"},
    {"InnerOnesStay", "xaxbx", "x", "axb"},
    {"NothingElse", "xyxy", "xy", ""},
    {"CaseCounts", "Xax", "x", "Xa"},
    {"WholeCharacterBeyondAscii",
     "\xC3\xA9"
     "a\xC3\xA9",
     "\xC3\xA9", "a"},
    // By byte: of U+00E0 (C3 A0) the first byte goes, and the A0 that is left
    // leads a sequence of two with the "a" (61): (A0 & 1F) << 6 | 61 & 3F = 21.
    {"PartOfACharacterInFront",
     "\xC3\xA0"
     "ab",
     "\xC3\xA9", "!b"},
    // Of U+0129 (C4 A9) at the end the second byte goes; C4 alone is nothing.
    {"PartOfACharacterAtTheEnd", "a\xC4\xA9", "\xC3\xA9", "a"},
};

void PrintTo(const TrimCase& c, std::ostream* out) { *out << c.name; }

class ConfigTrim : public testing::TestWithParam<TrimCase> {};

TEST_P(ConfigTrim, TakesTheBytesAwayAtBothEnds) {
  std::istringstream nothing;
  KVTConfigReader reader(nothing);
  EXPECT_EQ(reader.TrimWhiteSpace(FromUtf8(GetParam().text),
                                  FromUtf8(GetParam().characters)),
            FromUtf8(GetParam().result));
  EXPECT_THAT(reader.GetConfiguration(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, ConfigTrim, testing::ValuesIn(kTrimCases),
                         [](const auto& test) { return test.param.name; });

TEST(ConfigTrimOfZeroUnits, StopsAtTheFirstThatIsLeft) {
  std::istringstream nothing;
  KVTConfigReader reader(nothing);
  const KVTString& text = FromUnits({' ', 'a', 0, 'b', ' '});
  EXPECT_EQ(reader.TrimWhiteSpace(text, " "), "a");
  const KVTString& zero = FromUnits({0, 'a', 0});
  EXPECT_EQ(reader.TrimWhiteSpace(zero, " "), "");
  // A zero unit among the characters is one of them.
  EXPECT_EQ(reader.TrimWhiteSpace(zero, FromUnits({0})), "a");
}

}  // namespace
