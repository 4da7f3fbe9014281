// boot.sh itself, with a stand-in for the guest's kernel: no way to fail may
// look like success.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "program_run.h"
#include "temporary_directory.h"

namespace {

using testing::HasSubstr;

class Boot : public testing::Test {
 protected:
  // The kernel does what `script` says; $handover is what boot.sh hands over.
  void UseKernel(const std::string& script) {
    const std::string path = mPrograms.Path("linux.uml");
    WriteFile(path,
              "#!/bin/bash\n"
              "for word in \"$@\"; do\n"
              "  case $word in KVT_HANDOVER=*) handover=${word#*=} ;; esac\n"
              "done\n" +
                  script);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }

  ProgramRun Run(std::vector<std::string> arguments,
                 const std::string& moreFolders = "") {
    arguments.insert(arguments.begin(), KVT_GUEST_SCRIPTS "/boot.sh");
    return RunProgram(arguments, {"PATH=" + mPrograms.Path() + moreFolders});
  }

  const std::string mUsualFolders = std::string(":") + std::getenv("PATH");
  const TemporaryDirectory mPrograms;
  const TemporaryDirectory mResults;
};

TEST_F(Boot, ShowsTheOutputAndGivesTheStatusOfTheCommand) {
  UseKernel(
      "bash \"$handover/command\" >\"$handover/results/output\" 2>&1\n"
      "echo $? >\"$handover/results/status\"\n");
  EXPECT_EQ(Run({mResults.Path("new folder"), "bash", "-c",
                 R"(printf '<%s>' "$@"; exit 3)", "-", "a b", "*", "'\""},
                mUsualFolders),
            (ProgramRun{3, "<a b><*><'\">"}));
  EXPECT_EQ(ReadFile(mResults.Path("new folder/output")), "<a b><*><'\">");
}

TEST_F(Boot, FailsWhenTheGuestLeavesNoResult) {
  UseKernel("echo 'Kernel panic'\n");
  WriteFile(mResults.Path("status"), "0\n");  // of an earlier boot
  const ProgramRun run = Run({mResults.Path(), "true"}, mUsualFolders);
  EXPECT_EQ(run.status, 125);
  EXPECT_THAT(run.output, HasSubstr("Kernel panic"));
  EXPECT_THAT(run.output, HasSubstr("the guest left no result"));
}

TEST_F(Boot, EndsAGuestThatHangs) {
  UseKernel("exec sleep 60\n");
  const ProgramRun run =
      Run({"--timeout", "1", mResults.Path(), "true"}, mUsualFolders);
  EXPECT_EQ(run.status, 124);
  EXPECT_THAT(run.output, HasSubstr("did not end within 1 seconds"));
}

TEST_F(Boot, NamesThePackageOfAMissingKernel) {
  for (const char* program : {"dirname", "realpath"}) {
    std::filesystem::create_symlink(std::string("/usr/bin/") + program,
                                    mPrograms.Path(program));
  }
  EXPECT_EQ(Run({mResults.Path(), "true"}),
            (ProgramRun{125,
                        "boot.sh: linux.uml is missing: install the package "
                        "user-mode-linux\n"}));
}

TEST_F(Boot, RefusesAFolderThatTheGuestWouldNotSee) {
  UseKernel("echo 0 >\"$handover/results/status\"\n");
  const ProgramRun run = Run({"/mnt/kvt-results", "true"}, mUsualFolders);
  EXPECT_EQ(run.status, 125);
  EXPECT_THAT(run.output, HasSubstr("the guest covers /mnt"));
  EXPECT_FALSE(std::filesystem::exists("/mnt/kvt-results"));
}

TEST_F(Boot, RefusesAnIncompleteCommandLine) {
  EXPECT_EQ(Run({mResults.Path()}, mUsualFolders).status, 125);
  EXPECT_EQ(
      Run({"--speed", "9", mResults.Path(), "true"}, mUsualFolders).status,
      125);
}

}  // namespace
