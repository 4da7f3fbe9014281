// The program kvtshare against the real server.

#include <sys/mount.h>

#include <filesystem>

#include "guest_test.h"

namespace {

constexpr char kSmb1Done[] =
    "result: 0\ntext: Curl return code  0 , curl response code 0\n";

class KvtshareInGuest : public GuestTest {
 protected:
  KvtshareInGuest() { WriteFile(Local("source"), "by kvtshare"); }

  ProgramRun Run(std::vector<std::string> arguments,
                 const std::string& password = "secret") {
    arguments.insert(arguments.begin(), KVTSHARE);
    return RunProgram(arguments, {"SECRET=" + password});
  }
  ProgramRun RunAsRoot(std::vector<std::string> arguments,
                       const std::string& password = "secret") {
    arguments.insert(arguments.end(),
                     {"--user", "root", "--password-env", "SECRET"});
    return Run(arguments, password);
  }
};

TEST_F(KvtshareInGuest, SendsFetchesAndDeletes) {
  EXPECT_EQ(RunAsRoot({"send", Local("source"), R"(\\127.0.0.1\docs\a\file)"}),
            (ProgramRun{0, "result: 0\n"}));
  EXPECT_EQ(ReadFile(OnServer("a/file")), "by kvtshare");
  EXPECT_EQ(RunAsRoot({"send", "smb://127.0.0.1/docs/a/file", Local("back")}),
            (ProgramRun{0, "result: 0\n"}));
  EXPECT_EQ(ReadFile(Local("back")), "by kvtshare");
  EXPECT_EQ(RunAsRoot({"delete", "//127.0.0.1/docs/a/file"}),
            (ProgramRun{0,
                        "result: 0\ntext: \n//127.0.0.1/docs share location is "
                        "already mounted.\n"}));
  EXPECT_FALSE(std::filesystem::exists(OnServer("a/file")));
}

TEST_F(KvtshareInGuest, TakesThePasswordFromAFileAndSendsTheDomain) {
  WriteFile(Local("password"), "secret\nno part of it\n");
  EXPECT_EQ(
      Run({"send", Local("source"), "//127.0.0.1/docs/file", "--user", "root",
           "--domain", "WORKGROUP", "--password-file", Local("password")}),
      (ProgramRun{0, "result: 0\n"}));
  ASSERT_EQ(CifsMounts().size(), 1U);
  EXPECT_NE(CifsMounts()[0].find(",domain=WORKGROUP,"), std::string::npos);
}

TEST_F(KvtshareInGuest, ShowsARefusedLoginAsItsExitStatus) {
  EXPECT_EQ(
      RunAsRoot({"send", Local("source"), "//127.0.0.1/docs/file"}, "wrong"),
      (ProgramRun{6, "result: 6\n"}));
  EXPECT_EQ(RunAsRoot({"delete", "//127.0.0.1/docs/file"}, "wrong").status, 6);
}

TEST_F(KvtshareInGuest, TellsWhenTheFileWentIntoALocalFolder) {
  EXPECT_EQ(RunAsRoot({"send", Local("source"), "//127.0.0.9/docs/file"}),
            (ProgramRun{
                0,
                "kvtshare: //127.0.0.9/docs is not mounted: the library worked "
                "in the local folder /mnt/orbmountZ\nresult: 0\n"}));
  EXPECT_EQ(ReadFile("/mnt/orbmountZ/file"), "by kvtshare");
}

TEST_F(KvtshareInGuest, ShowsTheReportsOfADeleteThatCannotMount) {
  const std::string share = "//127.0.0.9/docs";
  EXPECT_EQ(
      RunAsRoot({"delete", "//127.0.0.9/docs/file"}),
      (ProgramRun{
          1, "result: 1\ntext: " + Report("smb3", 111, share, kFirstFolder) +
                 "\n" + Report("smb2", 111, share, kFirstFolder) + "\n" +
                 Report("smb1", 111, share, kFirstFolder) + "\n"}));
}

TEST_F(KvtshareInGuest, SendsAndFetchesOverSmb1WithoutAMount) {
  EXPECT_EQ(RunAsRoot({"send", "--smb1", Local("source"),
                       R"(\\127.0.0.1\docs\file)"}),
            (ProgramRun{0, kSmb1Done}));
  EXPECT_EQ(ReadFile(OnServer("file")), "by kvtshare");
  EXPECT_EQ(
      RunAsRoot({"send", "--smb1", "//[::1]/docs/file", Local("deep/back")}),
      (ProgramRun{0, kSmb1Done}));
  EXPECT_EQ(ReadFile(Local("deep/back")), "by kvtshare");
  EXPECT_TRUE(CifsMounts().empty());
  EXPECT_FALSE(std::filesystem::exists(kFirstFolder));
}

TEST_F(KvtshareInGuest, ProbesOverSmb1AndLeavesTheDestinationAlone) {
  WriteFile(OnServer("file"), "on the server");
  std::filesystem::create_directory(Local("work"));
  const WorkingDirectory work(Local("work"));
  EXPECT_EQ(RunAsRoot({"send", "--smb1", "--probe", "//127.0.0.1/docs/file",
                       Local("back")}),
            (ProgramRun{0, kSmb1Done}));
  EXPECT_FALSE(std::filesystem::exists(Local("back")));
  EXPECT_EQ(ReadFile(Local("work/tempHandleWindowSMB1KVTShareFile")),
            "on the server");
}

TEST_F(KvtshareInGuest, UnmountsOneFolder) {
  ASSERT_EQ(
      RunAsRoot({"send", Local("source"), "//127.0.0.1/docs/file"}).status, 0);
  EXPECT_EQ(Run({"unmount", kFirstFolder}), (ProgramRun{0, "result: 0\n"}));
  EXPECT_TRUE(CifsMounts().empty());
  EXPECT_EQ(Run({"unmount", kFirstFolder}), (ProgramRun{1, "result: 1\n"}));
}

TEST_F(KvtshareInGuest, UnmountsEveryShareWhicheverProcessMountedIt) {
  ASSERT_EQ(
      RunAsRoot({"send", Local("source"), "//127.0.0.1/docs/file"}).status, 0);
  ASSERT_EQ(RunAsRoot({"send", Local("source"), "//[::1]/docs/file"}).status,
            0);
  EXPECT_EQ(Run({"unmount", "--all"}),
            (ProgramRun{0,
                        "/mnt/orbmountZ (//127.0.0.1/docs)\nresult: 0\n"
                        "/mnt/orbmountY (//::1/docs)\nresult: 0\n"}));
  EXPECT_TRUE(CifsMounts().empty());
  EXPECT_EQ(Run({"unmount", "--all"}), (ProgramRun{0, ""}));
}

TEST_F(KvtshareInGuest, LeavesMountsElsewhereAloneWhenItUnmountsAll) {
  ASSERT_EQ(
      RunAsRoot({"send", Local("source"), "//127.0.0.1/docs/file"}).status, 0);
  constexpr char kElsewhere[] = "/mnt/orbmounta";
  std::filesystem::create_directory(kElsewhere);
  ASSERT_EQ(mount(kFirstFolder, kElsewhere, nullptr, MS_BIND, nullptr), 0);
  EXPECT_EQ(Run({"unmount", "--all"}),
            (ProgramRun{0, "/mnt/orbmountZ (//127.0.0.1/docs)\nresult: 0\n"}));
  ASSERT_EQ(CifsMounts().size(), 1U);
  EXPECT_NE(CifsMounts()[0].find(kElsewhere), std::string::npos);
}

TEST_F(KvtshareInGuest, LeavesAFolderAloneOnWhichMoreThanAShareLies) {
  ASSERT_EQ(
      RunAsRoot({"send", Local("source"), "//127.0.0.1/docs/file"}).status, 0);
  ASSERT_EQ(RunAsRoot({"send", Local("source"), "//[::1]/docs/file"}).status,
            0);
  ASSERT_EQ(mount("tmpfs", kFirstFolder, "tmpfs", 0, ""), 0);
  const std::string refusal =
      "kvtshare: /mnt/orbmountZ is left alone: 2 file systems lie on it\n";

  EXPECT_EQ(Run({"unmount", kFirstFolder}), (ProgramRun{1, refusal}));
  EXPECT_EQ(Run({"unmount", "/mnt/orbmountZ/"}),
            (ProgramRun{1,
                        "kvtshare: /mnt/orbmountZ/ is left alone: 2 file "
                        "systems lie on it\n"}));
  EXPECT_EQ(Run({"unmount", "--all"}),
            (ProgramRun{1, "/mnt/orbmountZ (//127.0.0.1/docs)\n" + refusal +
                               "/mnt/orbmountY (//::1/docs)\nresult: 0\n"}))
      << "the second share goes, and the result is that of the first";
  ASSERT_EQ(CifsMounts().size(), 1U);
  EXPECT_EQ(ReadFile(OnServer("file")), "by kvtshare");
  EXPECT_EQ(umount2(kFirstFolder, 0), 0);
}

}  // namespace
