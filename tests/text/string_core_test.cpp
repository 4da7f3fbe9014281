#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "KVTString.h"
#include "hooks.h"
#include "test_strings.h"

namespace {

using testing::ElementsAre;

constexpr auto kNarrow = KVTString::KVTCharEncodingNarrow;
constexpr auto kUtf8 = KVTString::KVTCharEncodingUTF8;

// --- The class

TEST(KVTStringClass, StandsOnTheStringTemplateAndAddsOnlyAVirtualDestructor) {
  EXPECT_TRUE(
      (std::is_base_of_v<
          std::basic_string<unsigned short, std::char_traits<unsigned short>,
                            std::allocator<unsigned short>>,
          KVTString>));
  EXPECT_TRUE(std::has_virtual_destructor_v<KVTString>);
  EXPECT_EQ(sizeof(KVTString), sizeof(void*) + sizeof(Units));
}

TEST(KVTStringClass, NumbersTheEncodings) {
  EXPECT_EQ(static_cast<int>(kNarrow), 0);
  EXPECT_EQ(static_cast<int>(kUtf8), 1);
}

TEST(KVTStringClass, HasItsDestructorCalledThroughAPointer) {
  const std::unique_ptr<KVTString> text(new KVTString("text", kUtf8));
  EXPECT_EQ(*text, "text");
}

TEST(KVTStringClass, KeepsThePublicOperationsOfTheBaseString) {
  KVTString text("a/b/c", kUtf8);
  EXPECT_EQ(text.find('/'), 1u);
  EXPECT_EQ(text.rfind('/'), 3u);
  EXPECT_EQ(text.find_first_of(KVTString("c/", kUtf8)), 1u);
  EXPECT_EQ(text.find_last_of(KVTString("a/", kUtf8)), 3u);
  EXPECT_EQ(text.find_first_not_of(KVTString("a/", kUtf8)), 2u);
  EXPECT_EQ(KVTString(text.substr(2)), "b/c");
  EXPECT_EQ(text[4], 'c');
  text.append(KVTString("/d", kUtf8));
  text.replace(0, 1, KVTString("xy", kUtf8));
  EXPECT_EQ(text, "xy/b/c/d");
  EXPECT_THROW(text.substr(9), std::out_of_range);
}

// --- Construction and assignment

TEST(KVTStringConstruction, IsEmptyByDefault) {
  EXPECT_TRUE(KVTString().empty());
}

TEST(KVTStringConstruction, CopiesUnitsUpToTheFirstZeroUnit) {
  const unsigned short units[] = {0x61, 0xD800, 0, 0x62, 0};
  EXPECT_EQ(KVTString(units), FromUnits({0x61, 0xD800}));
  EXPECT_TRUE(KVTString(units + 2).empty());
}

TEST(KVTStringConstruction, RefusesNullUnitsWithTheToldText) {
  const unsigned short* const null = nullptr;
  try {
    const KVTString text(null);
    FAIL() << "nothing thrown";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ(error.what(), "basic_string::_S_construct null not valid");
  }
}

TEST(KVTStringConstruction, TakesNullAndEmptyWideTextAsEmpty) {
  EXPECT_TRUE(KVTString(static_cast<const wchar_t*>(nullptr)).empty());
  EXPECT_TRUE(KVTString(L"").empty());
}

TEST(KVTStringConstruction, NarrowsEachWideElementToItsLow16Bits) {
  EXPECT_EQ(KVTString(L"a\u20AC"), FromUnits({0x61, 0x20AC}));
  // No surrogate pair: U+1F600 loses its upper bits.
  EXPECT_EQ(KVTString(L"\U0001F600"), FromUnits({0xF600}));
  const wchar_t edges[] = {0xFFFF, 0x10001, -1, 0};
  EXPECT_EQ(KVTString(edges), FromUnits({0xFFFF, 0x0001, 0xFFFF}));
}

TEST(KVTStringConstruction, EndsWideTextAtAnElementOfAllZeroBitsOnly) {
  const wchar_t text[] = {0x61, 0x10000, 0x62, 0, 0x63, 0};
  EXPECT_EQ(KVTString(text), FromUnits({0x61, 0, 0x62}));
}

TEST(KVTStringConstruction, TakesNullNarrowTextAsEmptyInEveryEncoding) {
  EXPECT_TRUE(KVTString(nullptr, kNarrow).empty());
  EXPECT_TRUE(KVTString(nullptr, kUtf8).empty());
  EXPECT_TRUE(KVTString(nullptr, static_cast<KVTString::KVTCharEncodingType>(2))
                  .empty());
}

TEST(KVTStringConstruction, SignExtendsNarrowBytes) {
  EXPECT_EQ(KVTString("A\x7F\x80\xE9\xFF", kNarrow),
            FromUnits({0x0041, 0x007F, 0xFF80, 0xFFE9, 0xFFFF}));
  EXPECT_TRUE(KVTString("", kNarrow).empty());
}

TEST(KVTStringConstruction, EndsNarrowBytesAtTheFirstZeroByte) {
  EXPECT_EQ(KVTString("ab\0cd", kNarrow), FromUnits({0x61, 0x62}));
  EXPECT_EQ(KVTString("ab\0cd", kUtf8), FromUnits({0x61, 0x62}));
}

TEST(KVTStringConstruction, IsEmptyForAnEncodingItDoesNotKnow) {
  for (const int encoding : {2, 3, -1, 256}) {
    EXPECT_TRUE(
        KVTString("text", static_cast<KVTString::KVTCharEncodingType>(encoding))
            .empty())
        << encoding;
  }
}

TEST(KVTStringConstruction, ReadsUtf8WithoutAnEncoding) {
  EXPECT_EQ(KVTString("\xC3\xA9"), FromUnits({0xE9}));
}

TEST(KVTStringConstruction, TakesTheBaseStringWhole) {
  const KVTString text(kWithZero);
  EXPECT_THAT(text, ElementsAre(0x61, 0, 0x62));
}

TEST(KVTStringConstruction, CopiesUpToTheFirstZeroUnitWhileAssignmentKeepsAll) {
  const KVTString text(kWithZero);
  const KVTString copy(text);
  EXPECT_THAT(copy, ElementsAre(0x61));
  KVTString assigned("before", kUtf8);
  EXPECT_EQ(&(assigned = text), &assigned);
  EXPECT_THAT(assigned, ElementsAre(0x61, 0, 0x62));
  EXPECT_EQ(text.size(), 3u);
}

TEST(KVTStringConstruction, CopiesTextWithoutZeroUnitsWhole) {
  const KVTString text(Units{0x61, 0xD83D, 0xFFFF});
  const KVTString copy(text);
  EXPECT_EQ(copy, text);
  EXPECT_NE(copy.data(), text.data());
}

TEST(KVTStringConstruction, HasNoMoveThatWouldKeepWhatACopyCuts) {
  KVTString text(kWithZero);
  const KVTString moved(std::move(text));
  EXPECT_THAT(moved, ElementsAre(0x61));
  EXPECT_THAT(text, ElementsAre(0x61, 0, 0x62));
  KVTString assigned;
  assigned = std::move(text);
  EXPECT_THAT(assigned, ElementsAre(0x61, 0, 0x62));
  EXPECT_THAT(text, ElementsAre(0x61, 0, 0x62));
}

TEST(KVTStringConstruction, IsCutByAVectorThatTakesOrMovesIt) {
  std::vector<KVTString> texts;
  texts.push_back(KVTString(kWithZero));
  EXPECT_THAT(texts[0], ElementsAre(0x61));
  texts[0] = KVTString(kWithZero);
  EXPECT_THAT(texts[0], ElementsAre(0x61, 0, 0x62));
  texts.reserve(texts.capacity() + 1);
  EXPECT_THAT(texts[0], ElementsAre(0x61));
}

TEST(KVTStringConstruction, StaysAsItIsWhenAssignedToItself) {
  KVTString text(kWithZero);
  KVTString& same = text;
  EXPECT_EQ(&(text = same), &text);
  EXPECT_THAT(text, ElementsAre(0x61, 0, 0x62));
}

// --- Memory

TEST(KVTStringMemory, RunsOutWithTheStandardException) {
  const std::string bytes(100, 'a');
  const std::wstring wide(100, L'a');
  const Units units(100, 'a');
  const KVTString text(units);
  KVTString changed("before", kUtf8);
  const auto runsOut = [](auto operation) {
    const hooks::FailingAllocator allocator(0);
    EXPECT_THROW(operation(), std::bad_alloc);
  };
  runsOut([&] { KVTString(bytes.c_str(), kUtf8); });
  runsOut([&] { KVTString(bytes.c_str(), kNarrow); });
  runsOut([&] { KVTString(wide.c_str()); });
  runsOut([&] { KVTString(units.c_str()); });
  runsOut([&] { KVTString{units}; });
  runsOut([&] { KVTString{text}; });
  runsOut([&] { text.GetUTF8String(); });
  runsOut([&] { text.GetWstring(); });
  runsOut([&] { changed = text; });
  runsOut([&] { changed += bytes.c_str(); });
  EXPECT_EQ(changed, "before");
}

TEST(KVTStringMemory, IsTakenOnceForNarrowBytes) {
  const std::string bytes(100, 'a');
  const hooks::FailingAllocator allocator(1);
  EXPECT_EQ(KVTString(bytes.c_str(), kNarrow).size(), 100u);
}

TEST(KVTStringMemory, IsReservedForTwoBytesAUnitOfTheUtf8Form) {
  EXPECT_GE(Repeat("a", 100).GetUTF8String().capacity(), 200u);
}

// --- Conversions and queries

TEST(KVTStringQueries, GiveAllOnesForNoPosition) {
  EXPECT_EQ(KVTString::GetNPos(), 0xFFFFFFFFFFFFFFFFul);
  EXPECT_EQ(KVTString("abc", kUtf8).find('x'), KVTString::GetNPos());
}

TEST(KVTStringQueries, WidenEachUnitByZeroExtension) {
  EXPECT_EQ(FromUnits({0x61, 0x80, 0xFFE9, 0xFFFF}).GetWstring(),
            (std::wstring{0x61, 0x80, 0xFFE9, 0xFFFF}));
  EXPECT_TRUE(KVTString().GetWstring().empty());
}

TEST(KVTStringQueries, WidenASurrogatePairToTwoElementsAndKeepZeroUnits) {
  EXPECT_EQ(FromUnits({0xD83D, 0xDE00}).GetWstring(),
            (std::wstring{0xD83D, 0xDE00}));
  EXPECT_EQ(FromUnits({0x61, 0, 0x62}).GetWstring(), std::wstring(L"a\0b", 3));
}

struct ContainsAnyCase {
  const char* name;
  const char* text;
  const char* set;
  unsigned start;
  bool expected;
};

void PrintTo(const ContainsAnyCase& c, std::ostream* out) { *out << c.name; }

const ContainsAnyCase kContainsAnyCases[] = {
    {"Found", "abc", "xb", 0, true},
    {"FoundAtFront", "abc", "a", 0, true},
    {"FoundAtEnd", "abc", "c", 0, true},
    {"NotFound", "abc", "xyz", 0, false},
    {"EmptySet", "abc", "", 0, false},
    {"EmptyText", "", "abc", 0, false},
    {"BothEmpty", "", "", 0, false},
    {"FoundAtStart", "abc", "xb", 1, true},
    {"OnlyBeforeStart", "abc", "xa", 1, false},
    // `start` held against the set
    {"StartBelowSetLength", "aaab", "xb", 1, true},
    {"StartAtSetLength", "aaab", "xb", 2, false},
    {"StartAboveSetLength", "aaab", "xb", 3, false},
    {"OneUnitSetFromOne", "abb", "b", 1, false},
    {"LongSetReachesFurther", "aaab", "xyzb", 3, true},
    // `start` held against the text
    {"StartAtTextLength", "ab", "xyzab", 2, false},
    {"StartAboveTextLength", "ab", "xyzab", 3, false},
    {"StartAtLastUnit", "ab", "xyzab", 1, true},
    {"LargestStart", "ab", "ab", UINT_MAX, false},
};

class ContainsAnyTable : public testing::TestWithParam<ContainsAnyCase> {};

TEST_P(ContainsAnyTable, Tells) {
  const ContainsAnyCase& c = GetParam();
  EXPECT_EQ(FromUtf8(c.text).ContainsAny(FromUtf8(c.set), c.start), c.expected);
}

INSTANTIATE_TEST_SUITE_P(, ContainsAnyTable,
                         testing::ValuesIn(kContainsAnyCases),
                         [](const auto& test) { return test.param.name; });

TEST(KVTStringContainsAny, LooksAtUnitsBehindAZeroUnitAndForZeroUnits) {
  EXPECT_TRUE(KVTString(kWithZero).ContainsAny("b", 0));
  EXPECT_TRUE(KVTString(kWithZero).ContainsAny(KVTString(Units{0x78, 0}), 0));
  EXPECT_FALSE(
      KVTString("ab", kUtf8).ContainsAny(KVTString(Units{0x78, 0}), 0));
}

TEST(KVTStringIsNonVisibleCharacter, HoldsForExactlySixBytes) {
  for (int byte = 0; byte <= 0xFF; ++byte) {
    const bool expected = byte == 0x08 || byte == 0x09 || byte == 0x0A ||
                          byte == 0x0B || byte == 0x0C || byte == 0x0D;
    EXPECT_EQ(
        KVTString::IsNonVisibleCharacter(static_cast<unsigned char>(byte)),
        expected)
        << byte;
  }
}

}  // namespace
