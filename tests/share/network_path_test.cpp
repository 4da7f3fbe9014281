#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "KVTShareFile.h"
#include "share_fakes.h"
#include "test_strings.h"

namespace {

// Stands in the pieces before each call; still there where none was assigned.
constexpr const char* kUntouched = "untouched";

struct ParseCase {
  const char* name;
  const char* path;
  int result;
  const char* hostIp;
  const char* shareFolder;
  const char* remainder;
};

const ParseCase kParseCases[] = {
    {"TooShort", "ab", 1, kUntouched, kUntouched, kUntouched},
    {"Backslashes", "\\\\10.0.0.5\\docs\\a\\b.txt", 0, "10.0.0.5", "docs",
     "a\\b.txt"},
    {"Slashes", "//10.0.0.5/docs/a/b.txt", 0, "10.0.0.5", "docs", "a/b.txt"},
    {"Smb", "smb://fs1/docs/b.txt", 0, "10.0.0.5", "docs", "b.txt"},
    {"SmbWithBackslashes", "smb:\\\\fs1\\docs\\b.txt", 0, "10.0.0.5", "docs",
     "b.txt"},
    {"SmbWithoutSeparators", "smb:fs1\\docs", 0, "10.0.0.5", "docs",
     kUntouched},
    {"NoPrefix", "fs1\\docs\\a", 0, "10.0.0.5", "docs", "a"},
    {"ShareFolderOnly", "\\\\fs1\\docs", 0, "10.0.0.5", "docs", kUntouched},
    {"SeparatorBehindShareFolder", "\\\\fs1\\docs\\", 0, "10.0.0.5", "docs",
     kUntouched},
    {"TwoSeparatorsBehindShareFolder", "\\\\fs1\\docs\\\\", 0, "10.0.0.5",
     "docs", ""},
    {"SeparatorBehindRest", "\\\\fs1\\docs\\a\\", 0, "10.0.0.5", "docs", "a"},
    {"MixedSeparators", "\\\\fs1\\docs/a\\b", 0, "10.0.0.5", "docs", "a\\b"},
    {"HostOnly", "\\\\fs1", 0, "10.0.0.5", kUntouched, kUntouched},
    {"SeparatorBehindHost", "\\\\fs1\\", 0, "10.0.0.5", kUntouched, kUntouched},
    {"TwoSeparatorsBehindHost", "\\\\fs1\\\\docs", 1, "10.0.0.5", kUntouched,
     kUntouched},
    {"ThreeSlashesInFront", "///fs1/docs", 1, kUntouched, kUntouched,
     kUntouched},
    {"BracketedIPv6", "\\\\[fe80::1]\\docs\\a", 0, "fe80::1", "docs", "a"},
    {"BareIPv6", "\\\\fe80::1\\docs\\a", 0, "fe80::1", "docs", "a"},
    {"BracketedLoopback", "//[::1]/docs", 0, "::1", "docs", kUntouched},
    {"UnknownHost", "\\\\nohost\\docs\\a", 0, kUntouched, "docs", "a"},
    {"TwoLetterHost", "\\\\db\\docs\\a", 0, "", "docs", "a"},
    {"CifsWithTwoSlashes", "cifs://fs1/docs", 1, kUntouched, kUntouched,
     kUntouched},
    {"CifsWithOneSlash", "cifs:/fs1/docs", 0, kUntouched, "fs1", "docs"},

    {"ShortestWithPrefix", "\\\\a", 0, "", kUntouched, kUntouched},
    {"SmbAlone", "smb:", 1, kUntouched, kUntouched, kUntouched},
    {"SmbAndSlashes", "smb://", 1, kUntouched, kUntouched, kUntouched},
    {"ThreeBackslashes", "\\\\\\", 1, kUntouched, kUntouched, kUntouched},
    {"EmptyBrackets", "\\\\[]\\docs", 0, "", "docs", kUntouched},
    {"OpeningBracketAlone", "\\\\[fe80::1\\docs", 0, "fe80::1", "docs",
     kUntouched},
    {"ClosingBracketAlone", "\\\\fe80::1]\\docs", 0, kUntouched, "docs",
     kUntouched},
    {"ManyBrackets", "\\\\[[fe80::1]]\\docs", 0, "fe80::1", "docs", kUntouched},
    {"BracketsAroundIPv4", "\\\\[10.0.0.5]\\docs", 0, "10.0.0.5", "docs",
     kUntouched},
    {"MixedSeparatorsBehindRest", "\\\\fs1\\docs\\a/b/", 0, "10.0.0.5", "docs",
     "a/b"},
    {"DoubledSeparatorBeforeRest", "//fs1/docs//a", 0, "10.0.0.5", "docs", "a"},
    // All "\" go first and then all "/": what then stands at the ends stays.
    {"SlashesAroundBackslashes", "\\\\fs1\\docs\\\\/\\a\\/\\", 0, "10.0.0.5",
     "docs", "\\a\\"},
    {"RestInBackslashesInsideSlashes", "//fs1/docs//\\a\\/", 0, "10.0.0.5",
     "docs", "\\a\\"},
    {"Port", "//fs1:445/docs", 0, kUntouched, "docs", kUntouched},
    {"UpperCaseSmb", "SMB:/fs1/docs", 0, kUntouched, "fs1", "docs"},
    {"SlashAndBackslashInFront", "/\\fs1\\docs", 1, kUntouched, kUntouched,
     kUntouched},
    {"SmbTwice", "smb:smb:/fs1/docs", 0, kUntouched, "fs1", "docs"},
    {"OneLetterShareFolder", "//fs1/d", 0, "10.0.0.5", "d", kUntouched},
    {"OneLetterRest", "//fs1/d/e", 0, "10.0.0.5", "d", "e"},
    {"BlanksStay", "//fs1/my docs/ a b ", 0, "10.0.0.5", "my docs", " a b "},
    {"NonAsciiRest", "//fs1/docs/\xC3\xA9/\xE6\x96\x87.txt", 0, "10.0.0.5",
     "docs", "\xC3\xA9/\xE6\x96\x87.txt"},
    // Bytes are counted and units taken: the share folder runs on by one unit
    // for a two-byte letter, and the separator it then ends in is trimmed; with
    // a second such letter it takes a letter of the rest along.
    {"NonAsciiShareFolder", "//fs1/\xC3\xA9t/abc", 0, "10.0.0.5", "\xC3\xA9t",
     "abc"},
    {"ShareFolderRunsOn", "//fs1/\xC3\xA9t\xC3\xA9/abc", 0, "10.0.0.5",
     "\xC3\xA9t\xC3\xA9/a", "abc"},
    {"ShareFolderRunsOnToTheEnd", "//fs1/\xE6\x96\x87\xE6\x96\x87/a", 0,
     "10.0.0.5", "\xE6\x96\x87\xE6\x96\x87/a", "a"},
};

void PrintTo(const ParseCase& c, std::ostream* out) { *out << c.name; }

class ParseNetworkPath : public testing::TestWithParam<ParseCase> {};

TEST_P(ParseNetworkPath, AssignsThePiecesThatItReaches) {
  const FakeNames names(UsualNames());
  KVTShareFileInternal paths;
  KVTString hostIp(kUntouched);
  KVTString shareFolder(kUntouched);
  KVTString remainder(kUntouched);
  EXPECT_EQ(
      paths.ParseNetworkPath(GetParam().path, hostIp, shareFolder, remainder),
      GetParam().result);
  EXPECT_EQ(hostIp, GetParam().hostIp);
  EXPECT_EQ(shareFolder, GetParam().shareFolder);
  EXPECT_EQ(remainder, GetParam().remainder);
}

INSTANTIATE_TEST_SUITE_P(, ParseNetworkPath, testing::ValuesIn(kParseCases),
                         [](const auto& test) { return test.param.name; });

struct HostCase {
  const char* name;
  const char* path;
  const char* host;  // what the name service is asked for
};

const HostCase kHostCases[] = {
    {"Ascii", "//server/docs", "server"},
    {"CifsPrefix", "cifs://fs1/docs", "cifs:"},
    {"Port", "//fs1:445/docs", "fs1:445"},
    // One two-byte letter: the separator comes along and is trimmed again.
    {"OneNonAsciiLetter", "//s\xC3\xA9rver/docs", "s\xC3\xA9rver"},
    // Two of them: a letter of the share folder comes along.
    {"TwoNonAsciiLetters", "//s\xC3\xA9rv\xC3\xA9r/docs",
     "s\xC3\xA9rv\xC3\xA9r/d"},
    {"BracketsInTheMiddle", "//a[b]/docs", "a[b]"},
};

void PrintTo(const HostCase& c, std::ostream* out) { *out << c.name; }

class HostText : public testing::TestWithParam<HostCase> {};

TEST_P(HostText, IsLookedUp) {
  const FakeNames names({});
  KVTShareFileInternal paths;
  KVTString hostIp;
  KVTString shareFolder;
  KVTString remainder;
  paths.ParseNetworkPath(GetParam().path, hostIp, shareFolder, remainder);
  EXPECT_EQ(names.Asked(), std::vector<std::string>{GetParam().host});
}

INSTANTIATE_TEST_SUITE_P(, HostText, testing::ValuesIn(kHostCases),
                         [](const auto& test) { return test.param.name; });

struct UrlCase {
  const char* name;
  const char* path;
  const char* url;
};

const UrlCase kUrlCases[] = {
    {"IPv4", "\\\\10.0.0.5\\docs\\a\\b.txt", "smb://10.0.0.5/docs/a/b.txt"},
    {"Name", "smb://fs1/docs/b.txt", "smb://10.0.0.5/docs/b.txt"},
    {"BracketedIPv6", "\\\\[fe80::1]\\docs\\b.txt",
     "smb://[fe80::1]/docs/b.txt"},
    {"BareIPv6WithoutRest", "\\\\fe80::1\\docs", "smb://[fe80::1]/docs/"},
    {"UnknownHost", "\\\\nohost\\docs\\b.txt", "smb:///docs/b.txt"},
    {"Refused", "///x", "smb:////"},
    {"NameWithIPv6Only", "//six/docs/b.txt", "smb://[fe80::1]/docs/b.txt"},
    {"NothingIsEncoded", "//fs1/my docs/a#b", "smb://10.0.0.5/my docs/a#b"},
    {"TooShort", "ab", "smb:////"},
    {"RefusedBehindTheHost", "//fs1//docs", "smb://10.0.0.5//"},
};

void PrintTo(const UrlCase& c, std::ostream* out) { *out << c.name; }

class UrlForSMB1 : public testing::TestWithParam<UrlCase> {};

TEST_P(UrlForSMB1, IsMadeFromThePieces) {
  const FakeNames names(UsualNames());
  KVTShareFileInternal paths;
  EXPECT_EQ(paths.RefactorIPv6ForWindowSMB1(GetParam().path), GetParam().url);
}

INSTANTIATE_TEST_SUITE_P(, UrlForSMB1, testing::ValuesIn(kUrlCases),
                         [](const auto& test) { return test.param.name; });

TEST(IPv6LiteralName, ReplacesColonsAndAppendsTheDomain) {
  KVTShareFileInternal paths;
  EXPECT_EQ(paths.RefactorIPv6ForMounting("fe80::1"),
            "fe80--1.ipv6-literal.net");
  EXPECT_EQ(paths.RefactorIPv6ForMounting("::1"), "--1.ipv6-literal.net");
  EXPECT_EQ(paths.RefactorIPv6ForMounting("::ffff:10.0.0.5"),
            "--ffff-10.0.0.5.ipv6-literal.net");
  EXPECT_EQ(paths.RefactorIPv6ForMounting("FE80::A"),
            "FE80--A.ipv6-literal.net");
}

TEST(IPv6LiteralName, LeavesEverythingElseAlone) {
  KVTShareFileInternal paths;
  EXPECT_EQ(paths.RefactorIPv6ForMounting("10.0.0.5"), "10.0.0.5");
  EXPECT_EQ(paths.RefactorIPv6ForMounting("[fe80::1]"), "[fe80::1]");
  EXPECT_EQ(paths.RefactorIPv6ForMounting("fe80::1%eth0"), "fe80::1%eth0");
  EXPECT_EQ(paths.RefactorIPv6ForMounting("a:b"), "a:b");
  EXPECT_EQ(paths.RefactorIPv6ForMounting(""), "");
}

}  // namespace
