// One server, many ways to write where it is; one share, one mount.

#include <filesystem>
#include <fstream>

#include "guest_test.h"

namespace {

struct LocationCase {
  const char* name;
  const char* folder;  // in the share
  const char* device;  // as /proc/mounts shows it
};

// `filer` stands in the guest's /etc/hosts.
const LocationCase kLocations[] = {
    {"Backslashes", R"(\\127.0.0.1\docs\sub)", "//127.0.0.1/docs "},
    {"Slashes", "//127.0.0.1/docs/sub", "//127.0.0.1/docs "},
    {"SmbScheme", "smb://127.0.0.1/docs/sub", "//127.0.0.1/docs "},
    {"SmbSchemeWithBackslashes", R"(smb:\\127.0.0.1\docs\sub)",
     "//127.0.0.1/docs "},
    {"BothKindsOfSlashes", R"(\\127.0.0.1/docs\sub)", "//127.0.0.1/docs "},
    {"HostName", "//filer/docs/sub", "//127.0.0.1/docs "},
    {"HostNameOfAnIPv6Address", R"(\\filer6\docs\sub)", "//::1/docs "},
    {"IPv6InBrackets", "//[::1]/docs/sub", "//::1/docs "},
    {"IPv6Bare", R"(\\::1\docs\sub)", "//::1/docs "},
    {"SmbSchemeWithIPv6", "smb://[::1]/docs/sub", "//::1/docs "},
};

void PrintTo(const LocationCase& c, std::ostream* out) { *out << c.name; }

class Location : public GuestTest,
                 public testing::WithParamInterface<LocationCase> {
 protected:
  static void SetUpTestSuite() {
    std::ofstream("/etc/hosts") << "127.0.0.1 localhost filer\n::1 filer6\n";
  }
};

TEST_P(Location, ReachesTheShareInBothDirections) {
  WriteFile(Local("source"), "by many names");
  const std::string folder = GetParam().folder;
  const std::string slash = folder[folder.size() - 4] == '/' ? "/" : "\\";

  EXPECT_EQ(Send(Local("source"), folder + slash + "file"), (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(OnServer("sub/file")), "by many names");
  EXPECT_EQ(Send(folder + slash + "file", Local("back")), (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(Local("back")), "by many names");

  ASSERT_EQ(CifsMounts().size(), 1U);
  EXPECT_EQ(CifsMounts()[0].find(GetParam().device), 0U) << CifsMounts()[0];
}

INSTANTIATE_TEST_SUITE_P(, Location, testing::ValuesIn(kLocations),
                         [](const auto& test) { return test.param.name; });

class Mounts : public GuestTest {};

TEST_F(Mounts, TwoLocationsOnOneShareAreOneMount) {
  WriteFile(Local("source"), "x");
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/one"), (Outcome{0, ""}));
  EXPECT_EQ(Send(Local("source"), R"(\\127.0.0.1\docs\deep\two)"),
            (Outcome{0, ""}));
  EXPECT_EQ(Send("smb://127.0.0.1/docs/deep/two", Local("back")),
            (Outcome{0, ""}));

  ASSERT_EQ(CifsMounts().size(), 1U);
  EXPECT_EQ(CifsMounts()[0].find("//127.0.0.1/docs /mnt/orbmountZ cifs "), 0U);
  EXPECT_EQ(Share().mMountedShares.size(), 1U);
}

TEST_F(Mounts, TwoSharesTakeFoldersFromZDownward) {
  WriteFile(Local("source"), "x");
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/one"), (Outcome{0, ""}));
  EXPECT_EQ(Send(Local("source"), "//[::1]/docs/two"), (Outcome{0, ""}));

  ASSERT_EQ(CifsMounts().size(), 2U);
  EXPECT_EQ(CifsMounts()[0].find("//127.0.0.1/docs /mnt/orbmountZ cifs "), 0U);
  EXPECT_EQ(CifsMounts()[1].find("//::1/docs /mnt/orbmountY cifs "), 0U);
}

TEST_F(Mounts, AMountOfAnotherProcessIsFoundAndNotRepeated) {
  WriteFile(Local("source"), "first");
  ASSERT_EQ(
      RunProgram({KVTSHARE, "send", Local("source"), "//127.0.0.1/docs/one",
                  "--user", "root", "--password-env", "SECRET"},
                 {"SECRET=secret"}),
      (ProgramRun{0, "result: 0\n"}));
  ASSERT_EQ(CifsMounts().size(), 1U) << "mounts outlive the process";

  KVTString path;
  KVTString error;
  EXPECT_EQ(Share().MountNetworkShare(FromUtf8(R"(\\127.0.0.1\docs\one)"),
                                      nullptr, path, error),
            0);
  EXPECT_EQ(path, "/mnt/orbmountZ/one");
  EXPECT_EQ(error, "\n//127.0.0.1/docs share location is already mounted.");
  EXPECT_TRUE(Share().mMountedShares.empty()) << "known to the kernel only";

  EXPECT_EQ(Send("//127.0.0.1/docs/one", Local("back")), (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(Local("back")), "first");
  EXPECT_EQ(CifsMounts().size(), 1U);
}

TEST_F(Mounts, AShareWrittenInOtherCaseIsTheSameInTheTableOnly) {
  WriteFile(Local("source"), "x");
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/one"), (Outcome{0, ""}));
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/DOCS/two"), (Outcome{0, ""}));
  EXPECT_EQ(CifsMounts().size(), 1U);

  // Without the table, /proc/mounts is compared byte for byte.
  KVTShareFile other;
  KVTString folder;
  KVTString error;
  EXPECT_EQ(other.GetMountPoint(FromUtf8("//127.0.0.1/docs"), folder, error),
            4);
  EXPECT_EQ(folder, "/mnt/orbmountZ");
  EXPECT_EQ(other.GetMountPoint(FromUtf8("//127.0.0.1/DOCS"), folder, error),
            0);
  EXPECT_EQ(folder, "/mnt/orbmountY");
}

TEST_F(Mounts, AHostWithoutAddressIsNotMounted) {
  KVTString path = FromUtf8("kept");
  KVTString error;
  EXPECT_EQ(Share().MountNetworkShare(FromUtf8("//nosuchhost.invalid/docs/x"),
                                      &mAuth, path, error),
            1);
  EXPECT_EQ(error, " tempHostIp or tempShareFolder is empty");
  EXPECT_EQ(path, "kept");
  EXPECT_FALSE(std::filesystem::exists(kFirstFolder));
}

TEST_F(Mounts, AShareThatTheServerHasNotIsTriedInEveryDialect) {
  KVTString path = FromUtf8("kept");
  KVTString error;
  EXPECT_EQ(Share().MountNetworkShare(FromUtf8("//127.0.0.1/nothing/x"), &mAuth,
                                      path, error),
            1);
  const std::string share = "//127.0.0.1/nothing";
  EXPECT_EQ(error.GetUTF8String(),
            Report("smb3", 2, share, kFirstFolder) + "\n" +
                Report("smb2", 2, share, kFirstFolder) + "\n" +
                Report("smb1", 6, share, kFirstFolder));
  EXPECT_EQ(path, "kept");
}

}  // namespace
