#include <gtest/gtest.h>

#include <string>

#include "KVTFile.h"
#include "test_strings.h"

namespace {

KVTFile FileAt(const char* path) { return KVTFile(FromUtf8(path)); }

// --- The worked results of the queries

struct PathCase {
  const char* name;
  const char* path;
  const char* fileName;
  const char* parent;
  const char* parentWithSeparator;
  const char* afterRemoveName;
  const char* extension;
};

const PathCase kPathCases[] = {
    {"Empty", "", "", "", "", "", ""},
    {"BareLetter", "a", "a", "a", "", "a", ""},
    {"BareName", "a.txt", "a.txt", "a.txt", "", "a.txt", "txt"},
    {"DotAndThree", ".abc", ".abc", ".abc", "", ".abc", "abc"},
    {"DotAndSix", ".bashrc", ".bashrc", ".bashrc", "", ".bashrc", ""},
    {"FourUnitEnding", "a.html", "a.html", "a.html", "", "a.html", ""},
    {"DotLast", "a.", "a.", "a.", "", "a.", ""},
    {"TwoDots", "a..b", "a..b", "a..b", "", "a..b", "b"},
    {"OneDotAlone", ".", ".", ".", "", ".", ""},
    {"TwoDotsAlone", "..", "..", "..", "", "..", ""},
    {"Root", "/", "", "", "/", "/", ""},
    {"DoubledRoot", "//", "", "/", "//", "", ""},
    {"ChildOfRoot", "/a", "a", "", "/", "", ""},
    {"ChildOfRootTrailing", "/a/", "a", "/a", "/a/", "", ""},
    {"TwoComponents", "/a/b", "b", "/a", "/a/", "/a", ""},
    {"TwoComponentsTrailing", "/a/b/", "b", "/a/b", "/a/b/", "/a", ""},
    {"Relative", "a/b", "b", "a", "a/", "a", ""},
    {"RelativeTrailing", "a/", "a", "a", "a/", "a/", ""},
    {"RelativeTwoTrailing", "a//", "", "a/", "a//", "a", ""},
    {"FileInDirectory", "dir/file.txt", "file.txt", "dir", "dir/", "dir",
     "txt"},
    {"TwoExtensions", "/usr/lib/x.tar.gz", "x.tar.gz", "/usr/lib", "/usr/lib/",
     "/usr/lib", "gz"},
    {"Hidden", "dir/.hidden", ".hidden", "dir", "dir/", "dir", ""},
    {"DottedDirectoryTrailing", "/mnt/x.y/", "x.y", "/mnt/x.y", "/mnt/x.y/",
     "/mnt", "y"},
    {"Backslashes", "C:\\dir\\f.txt", "C:\\dir\\f.txt", "C:\\dir\\f.txt", "",
     "C:\\dir\\f.txt", "txt"},
    {"BackslashInside", "/a\\b/c", "c", "/a\\b", "/a\\b/", "/a\\b", ""},
};

void PrintTo(const PathCase& c, std::ostream* os) { *os << c.name; }

class PathTable : public testing::TestWithParam<PathCase> {};

TEST_P(PathTable, GivesTheName) {
  EXPECT_EQ(FileAt(GetParam().path).GetName(), GetParam().fileName);
}

TEST_P(PathTable, GivesTheParent) {
  EXPECT_EQ(FileAt(GetParam().path).GetParentPath(false), GetParam().parent);
  EXPECT_EQ(FileAt(GetParam().path).GetLinuxParentPath(false),
            GetParam().parent);
}

TEST_P(PathTable, GivesTheParentWithItsSeparator) {
  EXPECT_EQ(FileAt(GetParam().path).GetParentPath(true),
            GetParam().parentWithSeparator);
  EXPECT_EQ(FileAt(GetParam().path).GetLinuxParentPath(true),
            GetParam().parentWithSeparator);
}

TEST_P(PathTable, RemovesTheName) {
  KVTFile file = FileAt(GetParam().path);
  EXPECT_EQ(file.RemoveName(), GetParam().path[0] != '\0');
  EXPECT_EQ(file.GetPath(), GetParam().afterRemoveName);
}

TEST_P(PathTable, GivesTheExtension) {
  EXPECT_EQ(FileAt(GetParam().path).GetExtension(), GetParam().extension);
}

INSTANTIATE_TEST_SUITE_P(, PathTable, testing::ValuesIn(kPathCases),
                         [](const auto& test) { return test.param.name; });

struct WinParentCase {
  const char* name;
  const char* path;
  const char* parent;
  const char* parentWithSeparator;
};

const WinParentCase kWinParentCases[] = {
    {"Empty", "", "", ""},
    {"DriveAndDirectory", "C:\\dir\\f.txt", "C:\\dir", "C:\\dir\\"},
    {"Relative", "x\\y", "x", "x\\"},
    {"Root", "/", "/", ""},
    {"SlashesOnly", "/a/b", "/a/b", ""},
    {"BareName", "a", "a", ""},
    {"SlashBehindTheBackslash", "a\\b/c", "a", "a\\"},
    {"Trailing", "a\\b\\", "a\\b", "a\\b\\"},
    {"BackslashAlone", "\\", "", "\\"},
};

void PrintTo(const WinParentCase& c, std::ostream* os) { *os << c.name; }

class WinParentTable : public testing::TestWithParam<WinParentCase> {};

TEST_P(WinParentTable, CutsAtTheLastBackslash) {
  const KVTFile file = FileAt(GetParam().path);
  EXPECT_EQ(file.GetWinParentPath(false), GetParam().parent);
  EXPECT_EQ(file.GetWinParentPath(true), GetParam().parentWithSeparator);
}

INSTANTIATE_TEST_SUITE_P(, WinParentTable, testing::ValuesIn(kWinParentCases),
                         [](const auto& test) { return test.param.name; });

// --- The worked results of the changes

using Change = bool (KVTFile::*)(const KVTString&);

struct ChangeCase {
  const char* name;
  Change change;
  const char* argument;
  const char* path;
  bool result;
  const char* after;
};

const ChangeCase kChangeCases[] = {
    {"SetNameOfAFile", &KVTFile::SetName, "c", "/a/b.txt", true, "/a/c"},
    {"SetNameShiftsBehindATrailingSeparator", &KVTFile::SetName, "c", "/a/b/",
     true, "/a/bc"},
    {"SetNameOfABareName", &KVTFile::SetName, "b", "a", true, "b"},
    {"SetNameOfTheRoot", &KVTFile::SetName, "x", "/", false, "/"},
    {"SetNameOfNothing", &KVTFile::SetName, "x", "", false, ""},
    {"SetNameToNothing", &KVTFile::SetName, "", "/a/b", false, "/a/b"},
    {"SetNameTakesAnyText", &KVTFile::SetName, "x/y:?", "/a/b", true,
     "/a/x/y:?"},
    {"SetNameOfTwoTrailingSeparators", &KVTFile::SetName, "c", "a//", false,
     "a//"},
    {"AppendName", &KVTFile::AppendName, "b", "/a", true, "/a/b"},
    {"AppendNameBehindASeparator", &KVTFile::AppendName, "b", "/a/", true,
     "/a/b"},
    {"AppendNameToTheRoot", &KVTFile::AppendName, "b", "/", true, "/b"},
    {"AppendNameToNothing", &KVTFile::AppendName, "b", "", false, ""},
    {"AppendNoName", &KVTFile::AppendName, "", "/a", false, "/a"},
    {"AppendNameWithASeparator", &KVTFile::AppendName, "b/c", "/a", false,
     "/a"},
    {"AppendNameWithAColon", &KVTFile::AppendName, "b:c", "/a", false, "/a"},
    {"AppendNameWithAPercentSign", &KVTFile::AppendName, "50%", "/a", false,
     "/a"},
    {"AppendNameWithABackslash", &KVTFile::AppendName, "b\\c", "/a", false,
     "/a"},
    {"AppendNameWithAQuestionMark", &KVTFile::AppendName, "b?", "/a", false,
     "/a"},
    {"AppendNameWithAStar", &KVTFile::AppendName, "b*", "/a", false, "/a"},
    {"AppendNameWithALessThan", &KVTFile::AppendName, "b<", "/a", false, "/a"},
    {"AppendNameWithAQuote", &KVTFile::AppendName, "b\"", "/a", false, "/a"},
    {"AppendNameWithAGreaterThan", &KVTFile::AppendName, "b>", "/a", false,
     "/a"},
    {"AppendNameWithABar", &KVTFile::AppendName, "b|", "/a", false, "/a"},
    {"AppendNameWithABlank", &KVTFile::AppendName, "b c", "/a", true, "/a/b c"},
    {"SetExtension", &KVTFile::SetExtension, "log", "a.txt", true, "a.log"},
    {"SetExtensionAddsOne", &KVTFile::SetExtension, "log", "a", true, "a.log"},
    {"SetExtensionKeepsAFourUnitEnding", &KVTFile::SetExtension, "log",
     "a.html", true, "a.html.log"},
    {"SetExtensionShiftsBehindATrailingSeparator", &KVTFile::SetExtension,
     "log", "a.txt/", true, "a.tlog"},
    {"SetExtensionAddsOneBehindATrailingSeparator", &KVTFile::SetExtension,
     "log", "a/", true, "a/.log"},
    {"SetExtensionOfNothing", &KVTFile::SetExtension, "log", "", true, ".log"},
    {"SetExtensionKeepsALeadingDot", &KVTFile::SetExtension, ".bak", "a.txt",
     true, "a..bak"},
    {"SetExtensionToNothing", &KVTFile::SetExtension, "", "a.txt", false,
     "a.txt"},
};

void PrintTo(const ChangeCase& c, std::ostream* os) { *os << c.name; }

class ChangeTable : public testing::TestWithParam<ChangeCase> {};

TEST_P(ChangeTable, GivesTheResultAndThePath) {
  KVTFile file = FileAt(GetParam().path);
  EXPECT_EQ((file.*GetParam().change)(FromUtf8(GetParam().argument)),
            GetParam().result);
  EXPECT_EQ(file.GetPath(), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(, ChangeTable, testing::ValuesIn(kChangeCases),
                         [](const auto& test) { return test.param.name; });

// --- Extensions of plain texts, names in URLs

struct TextCase {
  const char* name;
  const char* text;
  const char* withoutExtension;
};

const TextCase kTextCases[] = {
    {"Empty", "", ""},
    {"NoDot", "a", "a"},
    {"NoDotTwoUnits", "ab", "ab"},
    {"NoDotThreeUnits", "abc", "abc"},
    {"NoDotFourUnits", "abcd", "abcd"},
    {"NoDotFiveUnits", "abcde", "abcde"},
    {"OneUnitStays", "a.c", "a.c"},
    {"TwoUnits", "a.cc", "a"},
    {"ThreeUnits", "a.txt", "a"},
    {"FourUnits", "a.html", "a"},
    {"FiveUnitsStay", "a.jpeg2", "a.jpeg2"},
    {"TwoExtensions", "x.tar.gz", "x.tar"},
    {"NothingBeforeTheDot", ".ab", ""},
    {"DotLast", "a.", "a."},
    {"DotAlone", ".", "."},
    {"DotBeforeASeparator", "a.b/c", "a"},
    {"TwoDots", "a..bc", "a."},
};

void PrintTo(const TextCase& c, std::ostream* os) { *os << c.name; }

class TextTable : public testing::TestWithParam<TextCase> {};

TEST_P(TextTable, LosesAnEndingOfTwoToFourUnits) {
  EXPECT_EQ(KVTFile::RemoveFileExtension(FromUtf8(GetParam().text)),
            GetParam().withoutExtension);
}

INSTANTIATE_TEST_SUITE_P(, TextTable, testing::ValuesIn(kTextCases),
                         [](const auto& test) { return test.param.name; });

struct UrlCase {
  const char* name;
  const char* url;
  const char* withExtension;
  const char* withoutExtension;
};

const UrlCase kUrlCases[] = {
    {"Empty", "", "", ""},
    {"Zip", "http://h/a.zip", "a.zip", "a"},
    {"HtmlIsNoExtension", "http://h/a.html", "a.html", "a.html"},
    {"QueryStays", "http://h/a.zip?x=1", "a.zip?x=1", "a.zip?x=1"},
    {"NoExtension", "http://h/noext", "noext", "noext"},
    {"Directory", "http://h/dir/", "", ""},
    {"DirectoryWithADot", "http://h/x.y/", "", ""},
    {"DotFirst", "http://h/.cfg", ".cfg", ""},
    {"BareName", "a.zip", "a.zip", "a"},
    {"BackslashIsAnOrdinaryUnit", "h\\d/e\\f.zip", "e\\f.zip", "e\\f"},
    {"BackslashesOnly", "C:\\d\\f.zip", "C:\\d\\f.zip", "C:\\d\\f"},
    {"SlashAlone", "/", "", ""},
};

void PrintTo(const UrlCase& c, std::ostream* os) { *os << c.name; }

class UrlTable : public testing::TestWithParam<UrlCase> {};

TEST_P(UrlTable, GivesTheTextBehindTheLastSlash) {
  EXPECT_EQ(FileAt(GetParam().url).GetFileNameFromURL(true),
            GetParam().withExtension);
  EXPECT_EQ(FileAt(GetParam().url).GetFileNameFromURL(false),
            GetParam().withoutExtension);
}

INSTANTIATE_TEST_SUITE_P(, UrlTable, testing::ValuesIn(kUrlCases),
                         [](const auto& test) { return test.param.name; });

TEST(PathExtension, DisagreesWithRemoveFileExtensionOnOneAndFourUnits) {
  EXPECT_EQ(FileAt("a.c").GetExtension(), "c");
  EXPECT_EQ(KVTFile::RemoveFileExtension("a.c"), "a.c");
  EXPECT_EQ(FileAt("a.html").GetExtension(), "");
  EXPECT_EQ(KVTFile::RemoveFileExtension("a.html"), "a");
  // Two and three units count for both.
  EXPECT_EQ(FileAt("a.gz").GetExtension(), "gz");
  EXPECT_EQ(KVTFile::RemoveFileExtension("a.gz"), "a");
  EXPECT_EQ(FileAt("a.txt").GetExtension(), "txt");
  EXPECT_EQ(KVTFile::RemoveFileExtension("a.txt"), "a");
}

// --- Valid names

struct NameCase {
  const char* name;
  const char* path;
  bool valid;
};

const NameCase kNameCases[] = {
    {"Empty", "", false},
    {"Root", "/", false},
    {"TwoTrailingSeparators", "a//", false},
    {"Plain", "/a/b", true},
    {"TrailingSeparator", "/a/b/", true},
    {"Colon", "a:b", true},
    {"PercentSign", "50%", true},
    {"IllegalInTheParentOnly", "/a?/b", true},
    {"Backslash", "/a/b\\c", false},
    {"QuestionMark", "/a/b?", false},
    {"Star", "/a/*", false},
    {"LessThan", "/a/<b", false},
    {"Quote", "/a/b\"c", false},
    {"GreaterThan", "/a/b>", false},
    {"Bar", "/a/b|c", false},
};

void PrintTo(const NameCase& c, std::ostream* os) { *os << c.name; }

class NameTable : public testing::TestWithParam<NameCase> {};

TEST_P(NameTable, TellsWhetherTheNameIsValid) {
  EXPECT_EQ(FileAt(GetParam().path).IsValidName(), GetParam().valid);
}

INSTANTIATE_TEST_SUITE_P(, NameTable, testing::ValuesIn(kNameCases),
                         [](const auto& test) { return test.param.name; });

}  // namespace
