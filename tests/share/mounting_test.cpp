#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "KVTShareFile.h"
#include "hooks.h"
#include "share_fakes.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

constexpr const char* kUntouched = "untouched";
constexpr const char* kDocs = "//10.0.0.5/docs";

// The reports of the three attempts, written out.
std::string Smb3(int reason, const std::string& folder = "/mnt/orbmountZ") {
  return "smb3: mount return code: -1 , errno: " + std::to_string(reason) +
         " , stderror: " + strerror(reason) +
         " , for share: //10.0.0.5/docs , for Mount Point: " + folder;
}
std::string Smb2(int reason, const std::string& folder = "/mnt/orbmountZ") {
  return "\nsmb2: mount return code: -1 , errno: " + std::to_string(reason) +
         " , stderror: " + strerror(reason) +
         " , for share: //10.0.0.5/docs , for Mount Point: " + folder;
}
std::string Smb1(int reason, const std::string& folder = "/mnt/orbmountZ") {
  return "\nsmb1: mount return code: -1 , errno: " + std::to_string(reason) +
         " , stderror: " + strerror(reason) +
         " , for share: //10.0.0.5/docs , for Mount Point: " + folder;
}

class Mounting : public EmptyMnt {
 protected:
  // `error` is passed on as it stands.
  int Mount(const KVTString& location, KVTAuthentication* auth = nullptr) {
    path = kUntouched;
    return manager.MountNetworkShare(location, auth, path, error);
  }

  // The data argument of the first attempt with `auth`.
  std::string Options(const KVTString& location, KVTAuthentication* auth) {
    const FakeMount mount;
    EXPECT_EQ(Mount(location, auth), 0);
    EXPECT_EQ(mount.Calls().size(), 1u);
    return mount.Calls().empty() ? "" : mount.Calls()[0].data;
  }

  FakeNames names{UsualNames()};
  MountManager manager;
  KVTString path;
  KVTString error;
};

// Options

TEST_F(Mounting, AsksTheKernelForACifsMount) {
  const FakeMount mount;
  EXPECT_EQ(Mount("\\\\fs1\\docs\\reports\\q1.txt"), 0);
  ASSERT_EQ(mount.Calls().size(), 1u);
  const FakeMount::Call& call = mount.Calls()[0];
  EXPECT_EQ(call.source, "//10.0.0.5/docs");
  EXPECT_EQ(call.target, "/mnt/orbmountZ");
  EXPECT_EQ(call.type, "cifs");
  EXPECT_EQ(call.flags, 0xC0ED8000UL);
  EXPECT_EQ(call.data, "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,vers=3.0");
  EXPECT_EQ(path, "/mnt/orbmountZ/reports/q1.txt");
  EXPECT_EQ(error, "");
  EXPECT_EQ(manager.mMountedShares[kDocs], "/mnt/orbmountZ");
}

TEST_F(Mounting, HasOnlyUncIpAndVersWithoutCredentials) {
  EXPECT_EQ(Options(kDocs, nullptr),
            "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,vers=3.0");
}

TEST_F(Mounting, HasADotForTheDomainWhenNothingIsSet) {
  KVTAuthentication auth;
  EXPECT_EQ(Options(kDocs, &auth),
            "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,domain=.,vers=3.0");
}

TEST_F(Mounting, HasTheUserWithoutAPassword) {
  KVTAuthentication auth("backup", "");
  EXPECT_EQ(Options(kDocs, &auth),
            "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,domain=.,user=backup,vers=3.0");
}

TEST_F(Mounting, HasUserAndDomain) {
  KVTAuthentication auth("backup", "", "CORP");
  EXPECT_EQ(
      Options(kDocs, &auth),
      "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,domain=CORP,user=backup,vers=3.0");
}

TEST_F(Mounting, HasTheDomainAlone) {
  KVTAuthentication auth("", "", "CORP");
  EXPECT_EQ(Options(kDocs, &auth),
            "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,domain=CORP,vers=3.0");
}

TEST_F(Mounting, HasThePasswordAlone) {
  KVTAuthentication auth("", "secret");
  EXPECT_EQ(Options(kDocs, &auth),
            "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,domain=.,pass=secret,vers=3.0");
}

TEST_F(Mounting, HasUserAndPassword) {
  KVTAuthentication auth("backup", "secret");
  EXPECT_EQ(Options(kDocs, &auth),
            "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,domain=.,user=backup,"
            "pass=secret,vers=3.0");
}

TEST_F(Mounting, HasAllThree) {
  KVTAuthentication auth("backup", "secret", "CORP");
  EXPECT_EQ(Options(kDocs, &auth),
            "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,domain=CORP,user=backup,"
            "pass=secret,vers=3.0");
  EXPECT_EQ(auth.GetUser(), "backup");
  EXPECT_EQ(auth.GetPassword(), "secret");
  EXPECT_EQ(auth.GetDomain(), "CORP");
}

TEST_F(Mounting, LeavesValuesUnquoted) {
  KVTAuthentication auth("a,b", "p=,\"' \xC3\xA9", "D,E");
  EXPECT_EQ(Options("//10.0.0.5/my, docs", &auth),
            "unc=\\\\10.0.0.5\\my, docs,ip=10.0.0.5,domain=D,E,user=a,b,"
            "pass=p=,\"' \xC3\xA9,vers=3.0");
}

TEST_F(Mounting, TurnsASlashInsideTheShareFolderIntoABackslash) {
  // Two letters beyond ASCII make the share folder run on behind its separator.
  EXPECT_EQ(Options("//fs1/\xC3\xA9t\xC3\xA9/abc", nullptr),
            "unc=\\\\10.0.0.5\\\xC3\xA9t\xC3\xA9\\"
            "a,ip=10.0.0.5,vers=3.0");
}

TEST_F(Mounting, LeavesAnIPv6AddressWithoutBrackets) {
  const FakeMount mount;
  EXPECT_EQ(Mount("\\\\[fe80::1]\\docs\\a\\b.txt"), 0);
  ASSERT_EQ(mount.Calls().size(), 1u);
  EXPECT_EQ(mount.Calls()[0].source, "//fe80::1/docs");
  EXPECT_EQ(mount.Calls()[0].data, "unc=\\\\fe80::1\\docs,ip=fe80::1,vers=3.0");
  EXPECT_EQ(path, "/mnt/orbmountZ/a/b.txt");
}

TEST_F(Mounting, TriesThreeDialectsWithTheSameOptionsOtherwise) {
  KVTAuthentication auth("backup", "secret", "CORP");
  const FakeMount mount({EHOSTUNREACH, EHOSTUNREACH, EHOSTUNREACH});
  EXPECT_EQ(Mount(kDocs, &auth), 1);
  const std::string options =
      "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,domain=CORP,user=backup,pass=secret";
  EXPECT_THAT(mount.Data(),
              testing::ElementsAre(options + ",vers=3.0", options + ",vers=2.0",
                                   options + ",vers=1.0"));
  for (const auto& call : mount.Calls()) {
    EXPECT_EQ(call.source, "//10.0.0.5/docs");
    EXPECT_EQ(call.target, "/mnt/orbmountZ");
    EXPECT_EQ(call.type, "cifs");
    EXPECT_EQ(call.flags, 0xC0ED8000UL);
  }
}

// The two roads, whole

TEST_F(Mounting, SucceedsWithTheSecondDialectAndKeepsTheFirstReport) {
  KVTAuthentication auth("backup", "secret");
  const FakeMount mount({95});
  EXPECT_EQ(Mount("\\\\fs1\\docs\\reports\\q1.txt", &auth), 0);
  const std::string options =
      "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,domain=.,user=backup,pass=secret";
  EXPECT_THAT(mount.Data(), testing::ElementsAre(options + ",vers=3.0",
                                                 options + ",vers=2.0"));
  EXPECT_EQ(error,
            "smb3: mount return code: -1 , errno: 95 , stderror: Operation "
            "not supported , for share: //10.0.0.5/docs , for Mount Point: "
            "/mnt/orbmountZ");
  EXPECT_EQ(path, "/mnt/orbmountZ/reports/q1.txt");
  EXPECT_EQ(manager.mMountedShares.size(), 1u);
  EXPECT_EQ(manager.mMountedShares[kDocs], "/mnt/orbmountZ");
}

TEST_F(Mounting, FailsWithThreeReportsAndLeavesFolderAndEntry) {
  const FakeMount mount({113, 113, 113});
  EXPECT_EQ(Mount("\\\\fs1\\docs\\reports\\q1.txt"), 1);
  EXPECT_EQ(error,
            "smb3: mount return code: -1 , errno: 113 , stderror: No route to "
            "host , for share: //10.0.0.5/docs , for Mount Point: "
            "/mnt/orbmountZ\n"
            "smb2: mount return code: -1 , errno: 113 , stderror: No route to "
            "host , for share: //10.0.0.5/docs , for Mount Point: "
            "/mnt/orbmountZ\n"
            "smb1: mount return code: -1 , errno: 113 , stderror: No route to "
            "host , for share: //10.0.0.5/docs , for Mount Point: "
            "/mnt/orbmountZ");
  EXPECT_EQ(path, kUntouched);
  EXPECT_TRUE(FolderExists('Z'));
  EXPECT_EQ(manager.mMountedShares[kDocs], "/mnt/orbmountZ");
}

// Every sequence of answers

TEST_F(Mounting, StopsAtSuccessOrRefusalForEverySequenceOfErrno) {
  const std::vector<int> reasons = {0,          EACCES,       EPERM,
                                    EOPNOTSUPP, EHOSTUNREACH, ECONNREFUSED};
  for (const int first : reasons) {
    for (const int second : reasons) {
      for (const int third : reasons) {
        SCOPED_TRACE(testing::Message()
                     << first << " " << second << " " << third);
        std::size_t calls = 1;
        int last = first;
        std::string text = "earlier text";
        if (first != 0 && first != EACCES) {
          text = Smb3(first);
          calls = 2;
          last = second;
          if (second != 0 && second != EACCES) {
            text += Smb2(second);
            calls = 3;
            last = third;
            if (third != 0 && third != EACCES) text += Smb1(third);
          }
        }
        MountManager fresh;
        KVTString report("earlier text");
        KVTString mounted(kUntouched);
        const FakeMount mount({first, second, third});
        EXPECT_EQ(fresh.MountNetworkShare("//10.0.0.5/docs/a", nullptr, mounted,
                                          report),
                  last == 0        ? 0
                  : last == EACCES ? 6
                                   : 1);
        EXPECT_EQ(mount.Calls().size(), calls);
        EXPECT_EQ(report.GetUTF8String(), text);
        EXPECT_EQ(mounted, last == 0 ? "/mnt/orbmountZ/a" : kUntouched);
      }
    }
  }
}

TEST_F(Mounting, LeavesTheErrorAloneWhenRefusedAtOnce) {
  error = "earlier text";
  const FakeMount mount({EACCES});
  EXPECT_EQ(Mount(kDocs), 6);
  EXPECT_EQ(error, "earlier text");
  EXPECT_EQ(path, kUntouched);
  EXPECT_EQ(mount.Calls().size(), 1u);
}

TEST_F(Mounting, KeepsTheReportWhenRefusedAtTheSecondAttempt) {
  const FakeMount mount({EOPNOTSUPP, EACCES});
  EXPECT_EQ(Mount(kDocs), 6);
  EXPECT_EQ(error.GetUTF8String(), Smb3(EOPNOTSUPP));
  EXPECT_EQ(mount.Calls().size(), 2u);
}

TEST_F(Mounting, HasTwoReportsAfterSuccessAtTheThirdAttempt) {
  const FakeMount mount({EOPNOTSUPP, EINVAL});
  EXPECT_EQ(Mount(kDocs), 0);
  EXPECT_EQ(error.GetUTF8String(), Smb3(EOPNOTSUPP) + Smb2(EINVAL));
}

TEST_F(Mounting, ReplacesEarlierTextWithTheFirstReport) {
  error = "earlier text";
  const FakeMount mount({EIO});
  EXPECT_EQ(Mount(kDocs), 0);
  EXPECT_EQ(error.GetUTF8String(), Smb3(EIO));
}

TEST_F(Mounting, TakesAnyOtherResultThanMinusOneForSuccess) {
  const hooks::Scoped odd(hooks::onMount, [](auto...) {
    errno = EACCES;
    return 7;
  });
  EXPECT_EQ(Mount(kDocs), 0);
  EXPECT_EQ(path, "/mnt/orbmountZ/");
}

TEST_F(Mounting, TakesMinusOneForFailureWithoutAReason) {
  const hooks::Scoped odd(hooks::onMount, [](auto...) {
    errno = 0;
    return -1;
  });
  EXPECT_EQ(Mount(kDocs), 1);
  EXPECT_EQ(error.GetUTF8String(), Smb3(0) + Smb2(0) + Smb1(0));
}

// Locations

TEST_F(Mounting, ReturnsOneForAnEmptyLocation) {
  const FakeMount mount;
  error = "earlier text";
  EXPECT_EQ(Mount(""), 1);
  EXPECT_EQ(error, "earlier text");
  EXPECT_EQ(path, kUntouched);
  EXPECT_TRUE(mount.Calls().empty());
}

TEST_F(Mounting, NamesALocationThatIsRefused) {
  const FakeMount mount;
  error = "earlier text";
  EXPECT_EQ(Mount("///fs1/docs"), 1);
  EXPECT_EQ(error, "///fs1/docs parsing network path Failed");
  EXPECT_EQ(Mount("ab"), 1);
  EXPECT_EQ(error, "ab parsing network path Failed");
  EXPECT_EQ(path, kUntouched);
  EXPECT_FALSE(FolderExists('Z'));
  EXPECT_TRUE(mount.Calls().empty());
}

class WithoutHostOrShare : public Mounting,
                           public testing::WithParamInterface<const char*> {};

TEST_P(WithoutHostOrShare, NothingIsMounted) {
  const FakeMount mount;
  const FakeMountList list("");
  error = "earlier text";
  EXPECT_EQ(Mount(GetParam()), 1);
  EXPECT_EQ(error, " tempHostIp or tempShareFolder is empty");
  EXPECT_EQ(path, kUntouched);
  EXPECT_TRUE(mount.Calls().empty());
  // No folder was looked for.
  EXPECT_EQ(list.Opened(), 0);
  EXPECT_FALSE(FolderExists('Z'));
  EXPECT_TRUE(manager.mMountedShares.empty());
}

INSTANTIATE_TEST_SUITE_P(, WithoutHostOrShare,
                         testing::Values("\\\\10.0.0.5", "//10.0.0.5/",
                                         "//nohost/docs", "//db/docs",
                                         "cifs:/fs1/docs", "\\\\[]\\docs\\a"));

TEST_F(Mounting, PutsASlashBehindTheFolderOfAShareAlone) {
  const FakeMount mount;
  EXPECT_EQ(Mount("\\\\10.0.0.5\\docs"), 0);
  EXPECT_EQ(path, "/mnt/orbmountZ/");
}

TEST_F(Mounting, TurnsBackslashesOfTheRestIntoSlashes) {
  const FakeMount mount;
  EXPECT_EQ(Mount("//10.0.0.5/docs\\a/b\\c d"), 0);
  EXPECT_EQ(path, "/mnt/orbmountZ/a/b/c d");
}

// Shares that are mounted already

TEST_F(Mounting, MountsAShareOnceForTwoLocations) {
  const FakeMount mount;
  EXPECT_EQ(Mount("//10.0.0.5/docs/a"), 0);
  EXPECT_EQ(path, "/mnt/orbmountZ/a");
  EXPECT_EQ(error, "");
  EXPECT_EQ(Mount("\\\\fs1\\docs\\sub\\b"), 0);
  EXPECT_EQ(path, "/mnt/orbmountZ/sub/b");
  EXPECT_EQ(error, "\n//10.0.0.5/docs share location is already mounted.");
  EXPECT_EQ(mount.Calls().size(), 1u);
}

TEST_F(Mounting, AppendsTheRemarkOnAMountedShare) {
  const FakeMount mount;
  manager.mMountedShares[kDocs] = "/mnt/orbmountQ";
  error = "earlier text";
  EXPECT_EQ(Mount(kDocs), 0);
  EXPECT_EQ(error,
            "earlier text\n//10.0.0.5/docs share location is already "
            "mounted.");
  EXPECT_EQ(path, "/mnt/orbmountQ/");
  EXPECT_TRUE(mount.Calls().empty());
}

TEST_F(Mounting, UsesAMountOfTheKernelsListWithoutANewEntry) {
  const FakeMount mount;
  const FakeMountList list("//10.0.0.5/docs /mnt/elsewhere cifs rw 0 0\n");
  EXPECT_EQ(Mount("\\\\10.0.0.5\\docs\\a"), 0);
  EXPECT_EQ(path, "/mnt/elsewhere/a");
  EXPECT_EQ(error, "\n//10.0.0.5/docs share location is already mounted.");
  EXPECT_TRUE(mount.Calls().empty());
  EXPECT_TRUE(manager.mMountedShares.empty());
}

TEST_F(Mounting, TurnsBackslashesOfTheKernelsFolderIntoSlashesToo) {
  const FakeMountList list("//10.0.0.5/docs /mnt/my\\040folder cifs rw 0 0\n");
  EXPECT_EQ(Mount("\\\\10.0.0.5\\docs\\a"), 0);
  EXPECT_EQ(path, "/mnt/my/040folder/a");
}

TEST_F(Mounting, EntersAShareMountedOnAFolderThatStoodIdle) {
  ASSERT_EQ(mkdir(Folder('Z').c_str(), 0755), 0);
  const FakeMount mount;
  EXPECT_EQ(Mount(kDocs), 0);
  EXPECT_EQ(manager.mMountedShares[kDocs], "/mnt/orbmountZ");
}

TEST_F(Mounting, PutsTwoSharesOnOneIdleFolder) {
  // Nothing is really mounted, so the folder of the first stands idle.
  const FakeMount mount;
  EXPECT_EQ(Mount(kDocs), 0);
  EXPECT_EQ(Mount("//10.0.0.6/other"), 0);
  EXPECT_EQ(manager.mMountedShares["//10.0.0.6/other"], "/mnt/orbmountZ");
  EXPECT_EQ(Mount("//10.0.0.5/docs/a"), 0);
  EXPECT_EQ(path, "/mnt/orbmountZ/a");
  EXPECT_EQ(mount.Calls().size(), 2u);
}

// No folder

TEST_F(Mounting, AppendsThatThereIsNoFolder) {
  WriteFile(Folder('Z'), "in the way");
  const FakeMount mount;
  error = "earlier text";
  EXPECT_EQ(Mount("\\\\10.0.0.5\\docs\\a"), 1);
  EXPECT_EQ(error,
            "earlier text\nFailed to get the mount point for //10.0.0.5/docs");
  EXPECT_EQ(path, kUntouched);
  EXPECT_TRUE(mount.Calls().empty());
}

// After a failure

TEST_F(Mounting, IsNotTriedAgainAfterFailingOnANewFolder) {
  const FakeMount mount({EIO, EIO, EIO});
  EXPECT_EQ(Mount("//10.0.0.5/docs/a"), 1);
  error = KVTString();
  EXPECT_EQ(Mount("//10.0.0.5/docs/a"), 0);
  EXPECT_EQ(path, "/mnt/orbmountZ/a");
  EXPECT_EQ(error, "\n//10.0.0.5/docs share location is already mounted.");
  EXPECT_EQ(mount.Calls().size(), 3u);
}

TEST_F(Mounting, IsNotTriedAgainAfterARefusalOnANewFolder) {
  const FakeMount mount({EACCES});
  EXPECT_EQ(Mount("//10.0.0.5/docs/a"), 6);
  EXPECT_EQ(Mount("//10.0.0.5/docs/a"), 0);
  EXPECT_EQ(path, "/mnt/orbmountZ/a");
  EXPECT_EQ(error, "\n//10.0.0.5/docs share location is already mounted.");
  EXPECT_EQ(mount.Calls().size(), 1u);
}

TEST_F(Mounting, IsTriedAgainAfterFailingOnAFolderThatStoodIdle) {
  ASSERT_EQ(mkdir(Folder('Z').c_str(), 0755), 0);
  const FakeMount mount({EIO, EIO, EIO, EPERM, EPERM, EPERM});
  EXPECT_EQ(Mount("//10.0.0.5/docs/a"), 1);
  EXPECT_TRUE(manager.mMountedShares.empty());
  EXPECT_EQ(Mount("//10.0.0.5/docs/a"), 1);
  EXPECT_EQ(error.GetUTF8String(), Smb3(EPERM) + Smb2(EPERM) + Smb1(EPERM));
  EXPECT_EQ(mount.Calls().size(), 6u);
  EXPECT_EQ(Mount("//10.0.0.5/docs/a"), 0);
  EXPECT_EQ(path, "/mnt/orbmountZ/a");
  EXPECT_EQ(mount.Calls().size(), 7u);
}

TEST_F(Mounting, IsTriedAgainAfterARefusalOnAFolderThatStoodIdle) {
  ASSERT_EQ(mkdir(Folder('Z').c_str(), 0755), 0);
  const FakeMount mount({EACCES, EACCES});
  EXPECT_EQ(Mount("//10.0.0.5/docs/a"), 6);
  EXPECT_EQ(Mount("//10.0.0.5/docs/a"), 6);
  EXPECT_EQ(error, "");
  EXPECT_EQ(mount.Calls().size(), 2u);
}

TEST_F(Mounting, ReportsTheFolderThatWasChosen) {
  ASSERT_EQ(mkdir(Folder('Z').c_str(), 0755), 0);
  MountForReal("something", Folder('Z'));
  const FakeMount mount({EIO, EIO, EIO});
  EXPECT_EQ(Mount(kDocs), 1);
  EXPECT_EQ(error.GetUTF8String(), Smb3(EIO, "/mnt/orbmountY") +
                                       Smb2(EIO, "/mnt/orbmountY") +
                                       Smb1(EIO, "/mnt/orbmountY"));
}

}  // namespace
