#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "KVTConfigReader.h"
#include "config_model.h"
#include "hooks.h"
#include "open_descriptors.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

static_assert(!std::is_polymorphic<KVTConfigSection>::value, "");

std::vector<KVTConfigSection> Sections(const std::string& text) {
  std::istringstream in(text);
  KVTConfigReader reader(in);
  return reader.GetConfiguration();
}

struct EntryCase {
  const char* name;  // part of the test's name: letters and digits only
  const char* line;
  const char* key;
  const char* value;
};

const EntryCase kEntryCases[] = {
    {"Plain", "a=b", "a", "b"},
    {"BlanksAround", "a = b ", "a", "b"},
    {"TabsAndCarriageReturn", "\ta\t=\tb\t\r", "a", "b"},
    {"NoEquals", "a", "a", "a"},
    {"NoEqualsWithBlanks", " a b ", "a b", "a b"},
    {"BeginsWithEquals", "=b", "", "b"},
    {"EndsWithEquals", "a=", "a", ""},
    {"EqualsAlone", "=", "", ""},
    {"FurtherEqualsBelongToTheValue", "a=b=c", "a", "b=c"},
    {"BlanksAlone", "   ", "", ""},
    {"CarriageReturnAlone", "\r", "", ""},
    {"BlankBeforeBracket", " [a]", "[a]", "[a]"},
    {"BlankBeforeComment", " # a", "# a", "# a"},
    {"BlankBeforeSemicolon", "\t; a=b", "; a", "b"},
    {"CommentSignInside", "a#b=c;d", "a#b", "c;d"},
    {"Quotes", "\"a\"=\" b \"", "\"a\"", "\" b \""},
    {"Backslash", "a\\=b\\", "a\\", "b\\"},
    {"Variable", "a=$HOME", "a", "$HOME"},
    {"BracketBehind", "]a[=b", "]a[", "b"},
    {"VerticalTabStays", "\va=b\f", "\va", "b\f"},
};

void PrintTo(const EntryCase& c, std::ostream* out) { *out << c.name; }

class ConfigEntry : public testing::TestWithParam<EntryCase> {};

TEST_P(ConfigEntry, HasItsKeyAndValue) {
  const auto sections = Sections(std::string("[s]\n") + GetParam().line + "\n");
  ASSERT_EQ(sections.size(), 1u);
  EXPECT_EQ(sections[0].mName, "s");
  EXPECT_THAT(sections[0].mEntries,
              ElementsAre(Pair(KVTString(GetParam().key),
                               KVTString(GetParam().value))));
}

TEST_P(ConfigEntry, IsDroppedBeforeTheFirstHeader) {
  const auto sections = Sections(std::string(GetParam().line) + "\n[s]\n");
  ASSERT_EQ(sections.size(), 1u);
  EXPECT_THAT(sections[0].mEntries, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, ConfigEntry, testing::ValuesIn(kEntryCases),
                         [](const auto& test) { return test.param.name; });

struct HeaderCase {
  const char* name;  // part of the test's name: letters and digits only
  const char* line;
  const char* section;
};

const HeaderCase kHeaderCases[] = {
    {"Plain", "[a]", "a"},
    {"Empty", "[]", ""},
    {"BracketAlone", "[", ""},
    {"BlanksInside", "[ a b\t]", " a b\t"},
    {"TextBehindIsIgnored", "[a] b=c", "a"},
    {"FirstClosingBracketCounts", "[a]b]", "a"},
    {"OpeningBracketInside", "[[a]", "[a"},
    {"NotClosed", "[a b", "a b"},
    {"NotClosedWithCarriageReturn", "[a\r", "a\r"},
    {"CarriageReturnBehind", "[a]\r", "a"},
    {"EqualsInside", "[a=b]", "a=b"},
    {"CaseStays", "[AbC]", "AbC"},
};

void PrintTo(const HeaderCase& c, std::ostream* out) { *out << c.name; }

class ConfigHeader : public testing::TestWithParam<HeaderCase> {};

TEST_P(ConfigHeader, BeginsASectionWithoutEntries) {
  const auto sections = Sections(GetParam().line);
  ASSERT_EQ(sections.size(), 1u);
  EXPECT_EQ(sections[0].mName, GetParam().section);
  EXPECT_THAT(sections[0].mEntries, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, ConfigHeader, testing::ValuesIn(kHeaderCases),
                         [](const auto& test) { return test.param.name; });

TEST(ConfigReader, KeepsEqualKeysInTheOrderOfTheFile) {
  const auto sections = Sections("[s]\nkey=1\na=0\nkey=2\nkey=1\n");
  EXPECT_THAT(sections[0].mEntries,
              ElementsAre(Pair(KVTString("a"), KVTString("0")),
                          Pair(KVTString("key"), KVTString("1")),
                          Pair(KVTString("key"), KVTString("2")),
                          Pair(KVTString("key"), KVTString("1"))));
}

TEST(ConfigReader, DoesNotMergeSectionsOfOneName) {
  const auto sections = Sections("[s]\nkey=1\n[s]\nkey=2\n");
  ASSERT_EQ(sections.size(), 2u);
  EXPECT_EQ(sections[0].mName, "s");
  EXPECT_EQ(sections[1].mName, "s");
  EXPECT_THAT(sections[0].mEntries,
              ElementsAre(Pair(KVTString("key"), KVTString("1"))));
  EXPECT_THAT(sections[1].mEntries,
              ElementsAre(Pair(KVTString("key"), KVTString("2"))));
}

TEST(ConfigReader, KeepsTheCaseOfKeys) {
  const auto sections = Sections("[s]\nKey=1\nKEY=2\n");
  EXPECT_THAT(sections[0].mEntries,
              ElementsAre(Pair(KVTString("KEY"), KVTString("2")),
                          Pair(KVTString("Key"), KVTString("1"))));
  EXPECT_EQ(sections[0].mEntries.count("key"), 0u);
}

TEST(ConfigReader, TakesAnEmptyFileAndAMissingOneAlike) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("empty"), "");
  EXPECT_THAT(KVTConfigReader(directory.Text("empty")).GetConfiguration(),
              IsEmpty());
  EXPECT_THAT(KVTConfigReader(directory.Text("missing")).GetConfiguration(),
              IsEmpty());
  EXPECT_THAT(KVTConfigReader(KVTString()).GetConfiguration(), IsEmpty());
  EXPECT_THAT(KVTConfigReader(directory.Text()).GetConfiguration(), IsEmpty());
}

TEST(ConfigReader, OpensAPathBeyondAsciiAndClosesItAgain) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("gr\xC3\xBC\xC3\x9F"
                           "e \xF0\x9F\x98\x80"),
            "[s]\n");
  const std::size_t before = OpenDescriptors();
  KVTConfigReader reader(
      directory.Text("gr\xC3\xBC\xC3\x9F"
                     "e \xF0\x9F\x98\x80"));
  ASSERT_EQ(reader.GetConfiguration().size(), 1u);
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST(ConfigReader, LeavesAStreamAtItsEnd) {
  std::istringstream in("[s]\na=b");
  KVTConfigReader reader(in);
  EXPECT_TRUE(in.eof());
  EXPECT_TRUE(in.fail());
}

TEST(ConfigReader, BeginsWhereTheStreamStands) {
  std::istringstream in("[no]\n[s]\n");
  std::string skipped;
  std::getline(in, skipped);
  KVTConfigReader reader(in);
  ASSERT_EQ(reader.GetConfiguration().size(), 1u);
  EXPECT_EQ(reader.GetConfiguration()[0].mName, "s");
}

TEST(ConfigReader, ReadsNothingFromAStreamThatHasFailed) {
  for (const auto state : {std::ios::failbit, std::ios::badbit}) {
    std::istringstream in("[s]\n");
    in.setstate(state);
    KVTConfigReader reader(in);
    EXPECT_THAT(reader.GetConfiguration(), IsEmpty());
  }
}

TEST(ConfigReader, ReadsFurtherSectionsBehindThoseItHas) {
  std::istringstream first("[one]\na=1\n");
  KVTConfigReader reader(first);
  std::istringstream second("b=2\n[two]\nc=3\n");
  reader.ReadConfiguration(second);
  const auto& sections = reader.GetConfiguration();
  ASSERT_EQ(sections.size(), 2u);
  // What stands above the first header goes to the last section there is.
  EXPECT_THAT(sections[0].mEntries,
              ElementsAre(Pair(KVTString("a"), KVTString("1")),
                          Pair(KVTString("b"), KVTString("2"))));
  EXPECT_EQ(sections[1].mName, "two");
}

TEST(ConfigReader, HandsOutItsOwnVector) {
  std::istringstream in("[s]\na=1\n");
  KVTConfigReader reader(in);
  EXPECT_EQ(&reader.GetConfiguration(), &reader.GetConfiguration());
  reader.GetConfiguration()[0].mName = "changed";
  reader.GetConfiguration()[0].mEntries.emplace("b", "2");
  EXPECT_EQ(reader.GetConfiguration()[0].mName, "changed");
  EXPECT_EQ(reader.GetConfiguration()[0].mEntries.size(), 2u);
  reader.GetConfiguration().clear();
  EXPECT_THAT(reader.GetConfiguration(), IsEmpty());
}

TEST(ConfigReader, TakesVeryLongLines) {
  const std::string key(300000, 'k');
  const std::string value(1 << 20, 'v');
  const std::string name(200000, 'n');
  const auto sections =
      Sections("[" + name + "]\n" + key + "=" + value + "\n#" + value + "\n");
  ASSERT_EQ(sections.size(), 1u);
  EXPECT_EQ(sections[0].mName, KVTString(name.c_str()));
  ASSERT_EQ(sections[0].mEntries.size(), 1u);
  EXPECT_EQ(sections[0].mEntries.begin()->first, KVTString(key.c_str()));
  EXPECT_EQ(sections[0].mEntries.begin()->second, KVTString(value.c_str()));
}

TEST(ConfigReader, TakesManySectionsWithTheirEntries) {
  std::string text;
  for (int i = 0; i < 5000; ++i) {
    text += "[" + std::to_string(i) + "]\nkey=" + std::to_string(i * 7) + "\n";
  }
  const auto sections = Sections(text);
  ASSERT_EQ(sections.size(), 5000u);
  for (int i = 0; i < 5000; ++i) {
    ASSERT_EQ(sections[i].mName, KVTString::ConvertIntToString(i));
    ASSERT_THAT(sections[i].mEntries,
                ElementsAre(Pair(KVTString("key"),
                                 KVTString::ConvertIntToString(i * 7))));
  }
}

// A copy of a name ends at its first zero unit, an assigned one does not.
TEST(ConfigReader, CopiesItsSectionsWholeWhenTheVectorGrows) {
  std::istringstream first("[one]\nb=2\na=1\nb=1\n");
  KVTConfigReader reader(first);
  auto& sections = reader.GetConfiguration();
  sections.shrink_to_fit();
  ASSERT_EQ(sections.capacity(), 1u);
  sections[0].mName = FromUnits({'x', 0, 'y'});
  ASSERT_EQ(sections[0].mName.size(), 3u);
  const KVTString* const value = &sections[0].mEntries.begin()->second;
  std::istringstream second("[two]\n");
  reader.ReadConfiguration(second);
  ASSERT_EQ(sections.size(), 2u);
  EXPECT_EQ(sections[0].mName, "x");
  EXPECT_NE(&sections[0].mEntries.begin()->second, value);
  EXPECT_THAT(sections[0].mEntries,
              ElementsAre(Pair(KVTString("a"), KVTString("1")),
                          Pair(KVTString("b"), KVTString("2")),
                          Pair(KVTString("b"), KVTString("1"))));
}

// A stream whose buffer throws after some bytes.
class BreakingBuffer : public std::stringbuf {
 public:
  explicit BreakingBuffer(const std::string& text) : std::stringbuf(text) {}

 protected:
  int_type underflow() override {
    const int_type c = std::stringbuf::underflow();
    if (c == traits_type::eof()) throw std::runtime_error("broken");
    return c;
  }
};

TEST(ConfigReader, KeepsWhatItHasWhenTheStreamBreaks) {
  BreakingBuffer buffer("[one]\na=1\n[two]\nb=");
  std::istream in(&buffer);
  KVTConfigReader reader(in);
  EXPECT_TRUE(in.bad());
  ASSERT_EQ(reader.GetConfiguration().size(), 2u);
  EXPECT_EQ(reader.GetConfiguration()[1].mName, "two");
  EXPECT_THAT(reader.GetConfiguration()[1].mEntries, IsEmpty());
}

TEST(ConfigReader, LetsExceptionsOfTheStreamThrough) {
  BreakingBuffer buffer("[one]\n");
  std::istream in(&buffer);
  in.exceptions(std::ios::badbit);
  std::istringstream nothing;
  KVTConfigReader reader(nothing);
  EXPECT_THROW(reader.ReadConfiguration(in), std::runtime_error);
  EXPECT_EQ(reader.GetConfiguration().size(), 1u);
}

// Reads `text` with the allocator failing after `granted` requests; gives how
// many sections stand at the end, or -1 when std::bad_alloc came out.
int SectionsWhenMemoryRunsOut(const std::string& text, std::size_t granted,
                              std::ios::iostate& state, bool& refused) {
  std::istringstream in(text);
  std::istringstream nothing;
  KVTConfigReader reader(nothing);
  bool thrown = false;
  {
    hooks::FailingAllocator allocator(granted);
    try {
      reader.ReadConfiguration(in);
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    refused = allocator.Refused() > 0;
  }
  state = in.rdstate();
  // What has been read is whole.
  for (const KVTConfigSection& section : reader.GetConfiguration()) {
    EXPECT_EQ(section.mName.substr(0, 4), KVTString("name"));
  }
  return thrown ? -1 : static_cast<int>(reader.GetConfiguration().size());
}

TEST(ConfigReader, LetsTheAllocatorsExceptionThrough) {
  const std::string text = "[name 1]\nkey=val\n[name 2]\n[name 3]\nk=v\n";
  std::ios::iostate state;
  bool refused = true;
  int failures = 0;
  for (std::size_t granted = 0; refused; ++granted) {
    const int count = SectionsWhenMemoryRunsOut(text, granted, state, refused);
    EXPECT_EQ(count, refused ? -1 : 3) << granted;
    if (refused) ++failures;
  }
  EXPECT_GT(failures, 3);
}

// The line reader of the standard library keeps it to itself.
TEST(ConfigReader, StopsWhereMemoryRunsOutInsideALine) {
  const std::string text =
      "[name 1]\n" + std::string(100, 'x') + "\n[name 2]\n";
  std::ios::iostate state;
  bool refused = true;
  bool stopped = false;
  for (std::size_t granted = 0; refused; ++granted) {
    const int count = SectionsWhenMemoryRunsOut(text, granted, state, refused);
    if (count == 1) {
      stopped = true;
      EXPECT_EQ(state, std::ios::badbit | std::ios::failbit);
    } else {
      EXPECT_EQ(count, refused ? -1 : 2);
    }
  }
  EXPECT_TRUE(stopped);
}

}  // namespace
