#include <gtest/gtest.h>

#include <cctype>

#include "KVTShareFile.h"
#include "test_strings.h"

namespace {

struct PathForm {
  const char* name;
  const char* path;
  bool isShare;
};

const PathForm kPathForms[] = {
    // Too short
    {"Empty", "", false},
    {"TwoLetters", "ab", false},
    {"TwoBackslashes", "\\\\", false},
    {"TwoSlashes", "//", false},
    // Prefixes
    {"BackslashesAndHost", "\\\\h", true},
    {"SlashesAndHost", "//a", true},
    {"SlashesHostAndShare", "//h/s", true},
    {"Smb", "smb://h/s", true},
    {"SmbAlone", "smb:", true},
    {"Cifs", "cifs://h/s", true},
    {"CifsAlone", "cifs:", true},
    {"ThreeSlashes", "///", true},
    // No prefix
    {"OneSlash", "/mnt/x", false},
    {"OneBackslash", "\\mnt\\x", false},
    {"SlashAndBackslash", "/\\h", false},
    {"UpperCaseSmb", "SMB://h/s", false},
    {"MixedCaseCifs", "Cifs://h/s", false},
    {"SmbWithoutColon", "smb//h/s", false},
    {"PrefixLater", "x//h/s", false},
    {"BareName", "host", false},
    // Refused characters
    {"Percent", "\\\\h\\s\\a%b", false},
    {"Star", "//h/s/*.txt", false},
    {"Question", "//h/s/a?", false},
    {"Less", "//h/s/<a", false},
    {"Greater", "smb://h/s/a>", false},
    {"Bar", "cifs://h|/s", false},
    {"PercentInShareFolder", "//h/my%20docs/a", false},
    // Characters that look like refused ones
    {"ColonQuoteAndBlank", "//h/s/a:\"b c", true},
    {"NonAscii", "//h/\xC3\xA9t\xC3\xA9/\xE6\x96\x87.txt", true},
};

void PrintTo(const PathForm& form, std::ostream* out) { *out << form.name; }

class PathForms : public testing::TestWithParam<PathForm> {};

TEST_P(PathForms, TellWhetherThePathIsAShare) {
  KVTShareFile share;
  EXPECT_EQ(share.IsSharePath(GetParam().path), GetParam().isShare);
}

INSTANTIATE_TEST_SUITE_P(, PathForms, testing::ValuesIn(kPathForms),
                         [](const auto& test) { return test.param.name; });

TEST(PathForm, CountsSixteenBitUnitsAndNotBytes) {
  // Two units, six bytes; the third unit makes the difference.
  KVTShareFile share;
  EXPECT_FALSE(share.IsSharePath(FromUnits({'/', '/'})));
  EXPECT_TRUE(share.IsSharePath(FromUnits({'/', '/', 0x6587})));
}

TEST(PathForm, IsSearchedForRefusedCharactersUpToAZeroUnit) {
  // The search gets a copy, and a copy ends there.
  KVTShareFile share;
  EXPECT_TRUE(share.IsSharePath(FromUnits({'/', '/', 'h', 0, '*'})));
  EXPECT_FALSE(share.IsSharePath(FromUnits({'/', '/', 'h', '*', 0})));
}

TEST(MaliciousShare, FindsEachOfSixCharactersAnywhere) {
  KVTShareFileInternal paths;
  for (int c = 1; c < 0x80; ++c) {
    const std::string one(1, static_cast<char>(c));
    const bool refused =
        std::string("*?<>|%").find(static_cast<char>(c)) != std::string::npos;
    EXPECT_EQ(paths.isMaliciousNetworkShare(FromUtf8(one)), refused) << c;
    EXPECT_EQ(paths.isMaliciousNetworkShare(FromUtf8(one + "//h/s")), refused)
        << c;
    EXPECT_EQ(paths.isMaliciousNetworkShare(FromUtf8("//h/s" + one)), refused)
        << c;
  }
}

TEST(MaliciousShare, FindsNothingInTheEmptyText) {
  KVTShareFileInternal paths;
  EXPECT_FALSE(paths.isMaliciousNetworkShare(""));
}

}  // namespace
