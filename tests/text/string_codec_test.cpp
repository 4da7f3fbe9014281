#include <gtest/gtest.h>

#include <sstream>

#include "KVTString.h"
#include "random_seed.h"
#include "test_strings.h"
#include "utf8_model.h"

namespace {

std::string Hex(const std::string& bytes) {
  std::ostringstream out;
  out << "bytes" << std::hex;
  for (const unsigned char byte : bytes) out << " " << unsigned{byte};
  return out.str();
}

// --- One row for each behaviour of the encoder

struct EncodingCase {
  const char* name;  // part of the test's name: letters and digits only
  std::vector<unsigned short> units;
  const char* utf8;
};

void PrintTo(const EncodingCase& c, std::ostream* out) { *out << c.name; }

const EncodingCase kEncodingCases[] = {
    {"Empty", {}, ""},
    // One unit
    {"FirstOfOneByte", {0x01}, "\x01"},
    {"Ascii", {0x41}, "A"},
    {"LastOfOneByte", {0x7F}, "\x7F"},
    {"FirstOfTwoBytes", {0x80}, "\xC2\x80"},
    {"LatinSmallEWithAcute", {0xE9}, "\xC3\xA9"},
    {"LastOfTwoBytes", {0x7FE}, "\xDF\xBE"},
    {"Unit07FFTakesThreeBytes", {0x7FF}, "\xE0\x9F\xBF"},
    {"FirstOfThreeBytes", {0x800}, "\xE0\xA0\x80"},
    {"EuroSign", {0x20AC}, "\xE2\x82\xAC"},
    {"LastBeforeSurrogates", {0xD7FF}, "\xED\x9F\xBF"},
    {"FirstBehindSurrogates", {0xE000}, "\xEE\x80\x80"},
    {"ByteOrderMark", {0xFEFF}, "\xEF\xBB\xBF"},
    {"LastUnit", {0xFFFF}, "\xEF\xBF\xBF"},
    // Surrogate pairs
    {"Pair", {0xD83D, 0xDE00}, "\xF0\x9F\x98\x80"},
    {"FirstPair", {0xD800, 0xDC00}, "\xF0\x90\x80\x80"},
    {"LastOfPlane3", {0xD8BF, 0xDFFF}, "\xF0\xBF\xBF\xBF"},
    {"FirstOfPlane4", {0xD8C0, 0xDC00}, "\xF1\x80\x80\x80"},
    {"LastPair", {0xDBFF, 0xDFFF}, "\xF4\x8F\xBF\xBF"},
    // Surrogates without their other half
    {"HighAlone", {0xD83D}, "\xED\xA0\xBD"},
    {"FirstHighAlone", {0xD800}, "\xED\xA0\x80"},
    {"LastHighAlone", {0xDBFF}, "\xED\xAF\xBF"},
    {"FirstLowAlone", {0xDC00}, "\xED\xB0\x80"},
    {"LowAlone", {0xDE00}, "\xED\xB8\x80"},
    {"LastLowAlone", {0xDFFF}, "\xED\xBF\xBF"},
    {"HighBeforeAscii",
     {0xD83D, 0x41},
     "\xED\xA0\xBD"
     "A"},
    {"HighBeforeLastUnitBelowTheLows",
     {0xD83D, 0xDBFF},
     "\xED\xA0\xBD\xED\xAF\xBF"},
    {"HighBeforeFirstUnitAboveTheLows",
     {0xD83D, 0xE000},
     "\xED\xA0\xBD\xEE\x80\x80"},
    {"LowBeforeHigh", {0xDE00, 0xD83D}, "\xED\xB8\x80\xED\xA0\xBD"},
    {"HighBeforePair",
     {0xD83D, 0xD83D, 0xDE00},
     "\xED\xA0\xBD\xF0\x9F\x98\x80"},
    {"PairBeforeLow", {0xD83D, 0xDE00, 0xDE00}, "\xF0\x9F\x98\x80\xED\xB8\x80"},
    // Runs
    {"AllLengths",
     {0x41, 0xE9, 0x20AC, 0xD83D, 0xDE00, 0x7A},
     "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z"},
};

class EncodingTable : public testing::TestWithParam<EncodingCase> {};

TEST_P(EncodingTable, EncodesAndComesBack) {
  const KVTString text = FromUnits(GetParam().units);
  EXPECT_EQ(text.GetUTF8String(), GetParam().utf8);
  EXPECT_EQ(FromUtf8(GetParam().utf8), text);
}

INSTANTIATE_TEST_SUITE_P(, EncodingTable, testing::ValuesIn(kEncodingCases),
                         [](const auto& test) { return test.param.name; });

TEST(KVTStringEncoding, TakesThreeBytesFromUnit07FFOn) {
  EXPECT_EQ(FromUnits({0x7FE}).GetUTF8String(), "\xDF\xBE");
  EXPECT_EQ(FromUnits({0x7FF}).GetUTF8String(), "\xE0\x9F\xBF");
}

TEST(KVTStringEncoding, KeepsZeroUnitsAsZeroBytes) {
  EXPECT_EQ(FromUnits({0x61, 0, 0x62}).GetUTF8String(), std::string("a\0b", 3));
  EXPECT_EQ(FromUnits({0}).GetUTF8String(), std::string(1, '\0'));
  EXPECT_EQ(FromUnits({0xD83D, 0, 0xDE00}).GetUTF8String(),
            std::string("\xED\xA0\xBD\0\xED\xB8\x80", 7));
}

// --- One row for each behaviour of the decoder beyond undoing the encoder

struct DecodingCase {
  const char* name;  // part of the test's name: letters and digits only
  const char* utf8;
  std::vector<unsigned short> units;
};

void PrintTo(const DecodingCase& c, std::ostream* out) { *out << c.name; }

const DecodingCase kDecodingCases[] = {
    {"TwoBytes", "\xC3\xA9", {0xE9}},
    {"Unit07FFInTwoBytes", "\xDF\xBF", {0x7FF}},
    // Leads of two bytes, continuation bytes among them: (b & 1F) << 6 | low 6
    {"FirstContinuationByteLeads", "\x80\x41", {0x01}},
    {"FirstContinuationByteLeadsTheLastByte", "\x80\xFF", {0x3F}},
    {"LastContinuationByteLeads", "\xBF\xBF", {0x7FF}},
    {"SecondOfTwoContinuationBytesIsSpent", "\x81\x82\x83", {0x42}},
    {"LastLeadOfTwo", "\xDF\x80", {0x7C0}},
    {"AsciiTakenAsContinuation", "\xC3(z", {0xE8, 0x7A}},
    {"LeadTakenAsContinuation", "\xC3\xC3\xA9", {0xC3}},
    // Leads of three: (b & 0F) << 12 | low 6 << 6 | low 6
    {"FirstLeadOfThree", "\xE0\xA0\x80", {0x800}},
    {"LastLeadOfThree", "\xEF\xBF\xBF", {0xFFFF}},
    {"ThreeWithAsciiBehind", "\xE2((z", {0x2A28, 0x7A}},
    {"HighSurrogateInThree", "\xED\xA0\xBD", {0xD83D}},
    {"SurrogatesInThreeEach", "\xED\xA0\xBD\xED\xB8\x80", {0xD83D, 0xDE00}},
    // Leads of four
    {"Four", "\xF0\x9F\x98\x80", {0xD83D, 0xDE00}},
    {"FourWithAsciiBehind", "\xF0PAB", {0xD800, 0xDC42}},
    {"FirstBeyondUnicode", "\xF4\x90\x80\x80", {0xDC00, 0xDC00}},
    {"LastLeadOfFour", "\xF7\xBF\xBF\xBF", {0xDFBF, 0xDFFF}},
    // Plane bits all zero: the high unit is 0xFFC0 with the next six bits
    {"OverlongFourOfZero", "\xF0\x80\x80\x80", {0xFFC0, 0xDC00}},
    {"OverlongFourLast", "\xF0\x8F\xBF\xBF", {0xFFFF, 0xDFFF}},
    {"OverlongFourOfTheEuroSign", "\xF0\x82\x82\xAC", {0xFFC8, 0xDCAC}},
    // Other overlong forms give the short value
    {"OverlongTwoOfSlash", "\xC0\xAF", {0x2F}},
    {"OverlongTwoOfA", "\xC1\x81", {0x41}},
    {"OverlongThreeOfSlash", "\xE0\x80\xAF", {0x2F}},
    {"OverlongThreeOfUnit07FF", "\xE0\x9F\xBF", {0x7FF}},
    {"OverlongTwoOfZeroStoresAZeroUnit", "a\xC0\x80z", {0x61, 0, 0x7A}},
    {"OverlongThreeOfZeroStoresAZeroUnit", "a\xE0\x80\x80z", {0x61, 0, 0x7A}},
    // Cut off by the end: only the lead goes
    {"LeadOfTwoAtEnd", "\xC3", {}},
    {"LeadOfTwoAtEndOfText", "abc\xC3", {0x61, 0x62, 0x63}},
    {"ContinuationByteAtEnd", "a\x80", {0x61}},
    {"LeadOfThreeAtEnd", "\xE2", {}},
    {"LeadOfThreeAndOneByte", "\xE2\x82", {}},
    {"LeadOfThreeAndAscii", "\xE2z", {0x7A}},
    {"LeadOfThreeAndLeadOfTwo", "\xE2\xC3", {}},
    {"LeadOfFourAtEnd", "\xF0", {}},
    {"LeadOfFourAndTwoLetters",
     "\xF0"
     "ab",
     {0x61, 0x62}},
    {"LeadOfFourBeforeAWholeTwo", "\xF0\xC3\xA9", {0xE9}},
    {"LeadOfFourAndTwoContinuationBytes", "\xF0\x9F\x98", {0x7D8}},
    // No leads
    {"ByteF8", "\xF8", {}},
    {"ByteFF", "\xFF", {}},
    {"NoLeadsGoOneAtATime", "a\xF8\xFC\xFE\xFFz", {0x61, 0x7A}},
    {"ByteF8WithFourBehind",
     "\xF8"
     "abcd",
     {0x61, 0x62, 0x63, 0x64}},
    {"ByteF8BeforeAWholeTwo", "\xF8\xC3\xA9", {0xE9}},
};

class DecodingTable : public testing::TestWithParam<DecodingCase> {};

TEST_P(DecodingTable, Decodes) {
  EXPECT_EQ(FromUtf8(GetParam().utf8), FromUnits(GetParam().units));
}

INSTANTIATE_TEST_SUITE_P(, DecodingTable, testing::ValuesIn(kDecodingCases),
                         [](const auto& test) { return test.param.name; });

TEST(KVTStringDecoding, FindsSequencesAtEveryDistanceFromTheFront) {
  for (std::size_t front = 0; front < 20; ++front) {
    for (std::size_t back = 0; back < 20; ++back) {
      const std::string bytes =
          std::string(front, 'a') + "\xE2\x82\xAC" + std::string(back, 'z');
      const Units units =
          Units(front, 'a') + Units(1, 0x20AC) + Units(back, 'z');
      ASSERT_EQ(FromUtf8(bytes), KVTString(units)) << front << " " << back;
      ASSERT_EQ(KVTString(units).GetUTF8String(), bytes)
          << front << " " << back;
    }
  }
}

// --- Agreement with the model

void ExpectDecodesLikeTheModel(const std::string& bytes) {
  ASSERT_EQ(FromUtf8(bytes), KVTString(ModelDecodeUtf8(bytes))) << Hex(bytes);
}

std::string EveryByte() {
  std::string all;
  for (int byte = 1; byte <= 0xFF; ++byte) all += static_cast<char>(byte);
  return all;
}

TEST(KVTStringDecoding, AgreesWithTheModelOnEveryTextOfTwoBytes) {
  for (const std::string& text : AllTexts(EveryByte(), 2)) {
    ExpectDecodesLikeTheModel(text);
    if (HasFatalFailure()) return;
  }
}

TEST(KVTStringDecoding, AgreesWithTheModelOnEverySequenceOfThreeBytes) {
  const std::vector<std::string> behind = AllTexts(EveryByte(), 2);
  for (int lead = 0xE0; lead <= 0xEF; ++lead) {
    for (const std::string& rest : behind) {
      ExpectDecodesLikeTheModel(static_cast<char>(lead) + rest);
      if (HasFatalFailure()) return;
    }
  }
}

// Two bytes of the three behind the lead go through all values at a time.
TEST(KVTStringDecoding, AgreesWithTheModelOnSequencesOfFourBytes) {
  const std::string bytes = EveryByte();
  for (int byte = 0xF0; byte <= 0xF7; ++byte) {
    const std::string lead(1, static_cast<char>(byte));
    for (const char a : bytes) {
      for (const char b : bytes) {
        ExpectDecodesLikeTheModel(lead + a + b + '\xAA');
        ExpectDecodesLikeTheModel(lead + a + '\x95' + b);
        ExpectDecodesLikeTheModel(lead + '\xAA' + a + b);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(KVTStringDecoding, AgreesWithTheModelOnTextsOfFourBytesAtTheEdges) {
  const std::string edges =
      "\x01Pz\x7F\x80\x81\x8F\x90\xA0\xBF\xC0\xC1\xC3\xDF\xE0\xE2\xED\xEF"
      "\xF0\xF1\xF4\xF5\xF7\xF8\xFE\xFF";
  for (const std::string& text : AllTexts(edges, 4)) {
    ExpectDecodesLikeTheModel(text);
    if (HasFatalFailure()) return;
  }
}

TEST(KVTStringDecoding, AgreesWithTheModelOnRandomBytes) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 5000; ++round) {
    std::string bytes(random() % 40, '\0');
    for (char& byte : bytes) byte = static_cast<char>(1 + random() % 255);
    ExpectDecodesLikeTheModel(bytes);
    if (HasFatalFailure()) return;
  }
}

TEST(KVTStringCodec, DecodingUndoesEncodingOfEveryUnit) {
  for (unsigned unit = 1; unit <= 0xFFFF; ++unit) {
    const KVTString text(Units(1, static_cast<unsigned short>(unit)));
    const std::string bytes = text.GetUTF8String();
    ASSERT_EQ(bytes, ModelEncodeUtf8(text)) << std::hex << unit;
    ASSERT_EQ(FromUtf8(bytes), text) << std::hex << unit;
  }
}

TEST(KVTStringCodec, DecodingUndoesEncodingOfRandomUnits) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 5000; ++round) {
    const KVTString text(RandomUnits(random, 40, false));
    const std::string bytes = text.GetUTF8String();
    ASSERT_EQ(bytes, ModelEncodeUtf8(text));
    ASSERT_EQ(FromUtf8(bytes), text);
  }
}

TEST(KVTStringEncoding, AgreesWithTheModelOnRandomUnitsWithZeros) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 5000; ++round) {
    const Units units = RandomUnits(random, 40, true);
    ASSERT_EQ(KVTString(units).GetUTF8String(), ModelEncodeUtf8(units));
  }
}

}  // namespace
