// Which credentials reach the mount for which options of kvtshare.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "namespaces.h"
#include "program_run.h"
#include "temporary_directory.h"

namespace {

using testing::StartsWith;

struct CredentialsCase {
  const char* name;
  std::vector<std::string> options;
  const char* mountOptions;
};

const CredentialsCase kCases[] = {
    {"None", {}, ""},
    {"DomainAlone", {"--domain", "CORP"}, ",domain=CORP"},
    {"UserAndPassword",
     {"--user", "backup", "--password-env", "SECRET"},
     ",domain=.,user=backup,pass=hidden"},
    {"All",
     {"--user", "backup", "--password-env", "SECRET", "--domain", "CORP"},
     ",domain=CORP,user=backup,pass=hidden"},
    {"PasswordAlone",
     {"--password-env", "SECRET"},
     ",domain=.,pass=hidden"},
};

void PrintTo(const CredentialsCase& c, std::ostream* out) { *out << c.name; }

class KvtshareCredentials : public testing::TestWithParam<CredentialsCase> {
 protected:
  // The first line of output is the first mount's options.
  ProgramRun Kvtshare(std::vector<std::string> command) const {
    command.insert(command.begin(), KVTSHARE);
    command.insert(command.end(), GetParam().options.begin(),
                   GetParam().options.end());
    return RunProgram(command,
                      {"LD_PRELOAD=" REFUSING_MOUNT, "SECRET=hidden",
                       // The sanitizer's own run time need not come first.
                       "ASAN_OPTIONS=verify_asan_link_order=0"});
  }

  const TemporaryDirectory mDirectory;
  const std::string mExpected = std::string("unc=\\\\10.0.0.5\\docs,") +
                                "ip=10.0.0.5" + GetParam().mountOptions +
                                ",vers=3.0\n";
};

TEST_P(KvtshareCredentials, ReachTheMountOfEachCommand) {
  EnterPrivateMounts();
  CoverWithEmptyDirectory("/mnt");
  const std::string local = mDirectory.Path("file");
  const std::string share = "//10.0.0.5/docs/file";
  WriteFile(local, "content");

  const ProgramRun send = Kvtshare({"send", local, share});
  EXPECT_EQ(send, (ProgramRun{6, mExpected + "result: 6\n"}));

  const ProgramRun fetch = Kvtshare({"send", share, local});
  EXPECT_EQ(fetch.status, 6);
  EXPECT_THAT(fetch.output, StartsWith(mExpected + "result: 6\n"));

  const ProgramRun remove = Kvtshare({"delete", share});
  EXPECT_EQ(remove.status, 6);
  EXPECT_THAT(remove.output, StartsWith(mExpected + "result: 6\n"));
}

INSTANTIATE_TEST_SUITE_P(, KvtshareCredentials, testing::ValuesIn(kCases),
                         [](const auto& test) { return test.param.name; });

}  // namespace
