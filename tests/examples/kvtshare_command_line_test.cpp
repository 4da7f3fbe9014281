// What kvtshare makes of its command line, and what it prints and returns where
// no server is needed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "program_run.h"
#include "scripted_server.h"
#include "temporary_directory.h"

namespace {

using testing::HasSubstr;
using testing::Not;

ProgramRun Kvtshare(std::vector<std::string> arguments,
                    const std::vector<std::string>& environment = {}) {
  arguments.insert(arguments.begin(), KVTSHARE);
  return RunProgram(arguments, environment);
}

struct ParseCase {
  const char* name;
  const char* location;
  ProgramRun run;
};

const ParseCase kParseCases[] = {
    {"Backslashes",
     R"(\\10.0.0.5\docs\a\b.txt)",
     {0, "host: 10.0.0.5\nshare folder: docs\nrest: a\\b.txt\nresult: 0\n"}},
    {"SmbSchemeAndIPv6",
     "smb://[fe80::1]/docs/b.txt",
     {0, "host: fe80::1\nshare folder: docs\nrest: b.txt\nresult: 0\n"}},
    {"NoRest",
     "//10.0.0.5/docs/",
     {0, "host: 10.0.0.5\nshare folder: docs\nrest: \nresult: 0\n"}},
    {"NoShare",
     "//10.0.0.5",
     {0, "host: 10.0.0.5\nshare folder: \nrest: \nresult: 0\n"}},
    {"LettersBeyondAscii",
     "//10.0.0.5/docs/\xC3\xBC/\xF0\x9F\x93\x84",
     {0,
      "host: 10.0.0.5\nshare folder: docs\nrest: \xC3\xBC/\xF0\x9F\x93\x84\n"
      "result: 0\n"}},
    {"TooShort", "ab", {1, "host: \nshare folder: \nrest: \nresult: 1\n"}},
    {"TwoSeparatorsBehindTheHost",
     "//10.0.0.5//docs",
     {1, "host: 10.0.0.5\nshare folder: \nrest: \nresult: 1\n"}},
};

void PrintTo(const ParseCase& c, std::ostream* out) { *out << c.name; }

class KvtshareParse : public testing::TestWithParam<ParseCase> {};

TEST_P(KvtshareParse, ShowsThePartsAndTheResult) {
  EXPECT_EQ(Kvtshare({"parse", GetParam().location}), GetParam().run);
}

INSTANTIATE_TEST_SUITE_P(, KvtshareParse, testing::ValuesIn(kParseCases),
                         [](const auto& test) { return test.param.name; });

struct MisuseCase {
  const char* name;
  std::vector<std::string> arguments;
};

const MisuseCase kMisuseCases[] = {
    {"NoCommand", {}},
    {"UnknownCommand", {"copy", "a", "b"}},
    {"SendWithoutDestination", {"send", "a"}},
    {"PasswordOnTheCommandLine",
     {"send", "a", "//h/s/a", "--user", "u", "--password", "p"}},
    {"TwoSourcesOfThePassword",
     {"send", "a", "//h/s/a", "--user", "u", "--password-file", "f",
      "--password-env", "E"}},
    {"ProbeWithoutSmb1", {"send", "a", "//h/s/a", "--probe"}},
    {"UnmountOfNothing", {"unmount"}},
    {"UnmountOfOneAndAll", {"unmount", "/mnt/orbmountZ", "--all"}},
    {"ProxyUserWithoutProxy",
     {"download", "http://h/", "f", "--proxy-user", "u"}},
    {"ProxyPasswordWithoutUser",
     {"download", "http://h/", "f", "--proxy", "p:1", "--password-env", "E"}},
};

void PrintTo(const MisuseCase& c, std::ostream* out) { *out << c.name; }

class KvtshareMisuse : public testing::TestWithParam<MisuseCase> {};

TEST_P(KvtshareMisuse, EndsWithTwoAndNoResult) {
  const ProgramRun run = Kvtshare(GetParam().arguments);
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.output, "");
  EXPECT_THAT(run.output, Not(HasSubstr("result:")));
}

INSTANTIATE_TEST_SUITE_P(, KvtshareMisuse, testing::ValuesIn(kMisuseCases),
                         [](const auto& test) { return test.param.name; });

TEST(Kvtshare, HelpNamesEveryCommandAndEndsWithZero) {
  const ProgramRun run = Kvtshare({"--help"});
  EXPECT_EQ(run.status, 0);
  for (const char* command :
       {"send", "delete", "parse", "unmount", "download"}) {
    EXPECT_THAT(run.output, HasSubstr(std::string("\n  ") + command + " "));
  }
}

TEST(Kvtshare, ADirectoryIsNotSent) {
  const TemporaryDirectory directory;
  EXPECT_EQ(Kvtshare({"send", directory.Path(), "//10.0.0.5/docs/x"}),
            (ProgramRun{1, "result: 1\n"}));
}

TEST(Kvtshare, UnmountingAFolderWithoutAMountLeavesIt) {
  const TemporaryDirectory directory;
  EXPECT_EQ(Kvtshare({"unmount", directory.Path()}),
            (ProgramRun{1, "result: 1\n"}));
  EXPECT_TRUE(std::filesystem::exists(directory.Path()));
}

TEST(Kvtshare, ShowsTheTextOfAFailure) {
  EXPECT_EQ(
      Kvtshare({"send", "--smb1", "/no/such/file", "//10.0.0.5/docs/x"}),
      (ProgramRun{1, "result: 1\ntext: Unable to open file /no/such/file\n"}));
}

TEST(Kvtshare, DownloadsWithoutAProxy) {
  const TemporaryDirectory directory;
  const ScriptedServer server([](ScriptedConnection& connection) {
    const bool found = connection.ReadHead().find("GET /found ") == 0;
    connection.Write(found ? "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody"
                           : "HTTP/1.1 404 No\r\nContent-Length: 0\r\n\r\n");
  });
  const std::string url = "http://127.0.0.1:" + std::to_string(server.Port());
  const std::vector<std::string> environment = {"no_proxy=*"};

  EXPECT_EQ(Kvtshare({"download", url + "/found", directory.Path("file")},
                     environment),
            (ProgramRun{0, "result: 0\n"}));
  EXPECT_EQ(ReadFile(directory.Path("file")), "body");
  EXPECT_EQ(Kvtshare({"download", url + "/missing", directory.Path("file")},
                     environment),
            (ProgramRun{1, "result: 1\n"}));
}

TEST(Kvtshare, SaysThatItsLibcurlHasNoSmb) {
  const std::vector<std::string> environment = {
      "LD_PRELOAD=" CURL_WITHOUT_SMB,
      // The sanitizer's own run time need not come first.
      "ASAN_OPTIONS=verify_asan_link_order=0"};
  EXPECT_EQ(
      Kvtshare({"send", "--smb1", "/no/such/file", "//10.0.0.5/docs/x"},
               environment),
      (ProgramRun{1,
                  "kvtshare: this libcurl was built without smb://, so no "
                  "transfer with --smb1 can succeed.\n"
                  "result: 1\ntext: Unable to open file /no/such/file\n"}));
}

}  // namespace
