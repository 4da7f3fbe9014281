#include <errno.h>
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

constexpr const char* kRemark =
    "\n//10.0.0.5/docs share location is already mounted.";

std::string Report(const char* tag, int reason) {
  return tag + (": mount return code: -1 , errno: " + std::to_string(reason)) +
         " , stderror: " + strerror(reason) +
         " , for share: //10.0.0.5/docs , for Mount Point: /mnt/orbmountZ";
}

std::string AllReports(int reason) {
  return Report("smb3", reason) + "\n" + Report("smb2", reason) + "\n" +
         Report("smb1", reason);
}

// The share //10.0.0.5/docs is the folder /mnt/orbmountZ; no kernel is asked.
class MountTransfer : public EmptyMnt {
 protected:
  static std::string Remote(const std::string& name) {
    return Folder('Z') + "/" + name;
  }

  void PutOnShare(const std::string& name, const std::string& content) {
    mkdir(Folder('Z').c_str(), 0755);
    WriteFile(Remote(name), content);
  }

  int Send(const KVTString& source, const KVTString& destination) {
    return share.SendFileUsingMount(source, nullptr, destination, nullptr,
                                    error);
  }

  const TemporaryDirectory local;
  KVTShareFile share;
  KVTString error;
};

// Which way

TEST_F(MountTransfer, LooksAtNoFileBetweenTwoLocalPaths) {
  const FakeMount mount;
  WriteFile(local.Path("a"), "new");
  WriteFile(local.Path("b"), "old");
  error = "earlier text";
  EXPECT_EQ(Send(local.Text("a"), local.Text("b")), 1);
  EXPECT_EQ(error, "earlier text");
  EXPECT_EQ(ReadFile(local.Path("b")), "old");
  EXPECT_TRUE(mount.Calls().empty());
}

TEST_F(MountTransfer, DoesNotGoFromShareToShare) {
  const FakeMount mount;
  error = "earlier text";
  EXPECT_EQ(Send("//10.0.0.5/docs/a", "\\\\10.0.0.6\\other\\a"), 1);
  EXPECT_EQ(error,
            "Transfer of file from network share to network share is not "
            "supported.");
  EXPECT_TRUE(mount.Calls().empty());
  EXPECT_FALSE(FolderExists('Z'));
}

TEST_F(MountTransfer, TakesALocationWithARefusedCharacterForALocalPath) {
  const FakeMount mount;
  error = "earlier text";
  EXPECT_EQ(Send("//10.0.0.5/docs/50%.txt", local.Text("b")), 1);
  EXPECT_EQ(error, "earlier text");
  EXPECT_TRUE(mount.Calls().empty());
}

TEST_F(MountTransfer, TakesTheCredentialsOfTheShareItself) {
  PutOnShare("a", "x");
  KVTAuthentication source("reader", "");
  KVTAuthentication destination("writer", "");
  const FakeMount mount;
  EXPECT_EQ(share.SendFileUsingMount("//10.0.0.5/docs/a", &source,
                                     local.Text("a"), &destination, error),
            0);
  EXPECT_EQ(share.SendFileUsingMount(local.Text("a"), &source,
                                     "//10.0.0.6/docs/b", &destination, error),
            0);
  ASSERT_EQ(mount.Calls().size(), 2u);
  EXPECT_EQ(mount.Calls()[0].data,
            "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,domain=.,user=reader,"
            "vers=3.0");
  EXPECT_EQ(mount.Calls()[1].data,
            "unc=\\\\10.0.0.6\\docs,ip=10.0.0.6,domain=.,user=writer,"
            "vers=3.0");
}

// From the share

TEST_F(MountTransfer, FetchesAFileIntoAMissingFolder) {
  PutOnShare("a", "content");
  const FakeMount mount;
  EXPECT_EQ(Send("//10.0.0.5/docs/a", local.Text("x/y/b")), 0);
  EXPECT_EQ(ReadFile(local.Path("x/y/b")), "content");
  EXPECT_EQ(error, "");
  EXPECT_EQ(ReadFile(Remote("a")), "content");
}

TEST_F(MountTransfer, FetchesInPlaceOfALongerFile) {
  PutOnShare("a", "new");
  WriteFile(local.Path("b"), "much longer than that");
  const FakeMount mount;
  EXPECT_EQ(Send("//10.0.0.5/docs/a", local.Text("b")), 0);
  EXPECT_EQ(ReadFile(local.Path("b")), "new");
}

TEST_F(MountTransfer, LeavesTheMountsTextAfterFetching) {
  PutOnShare("a", "content");
  const FakeMount mount({EOPNOTSUPP});
  EXPECT_EQ(Send("//10.0.0.5/docs/a", local.Text("b")), 0);
  EXPECT_EQ(error.GetUTF8String(), Report("smb3", EOPNOTSUPP));
  EXPECT_EQ(Send("//10.0.0.5/docs/a", local.Text("b")), 0);
  EXPECT_EQ(error.GetUTF8String(), Report("smb3", EOPNOTSUPP) + kRemark);
}

TEST_F(MountTransfer, Returns5WithTheReportsWhenFetchingCannotMount) {
  WriteFile(local.Path("b"), "old");
  const FakeMount mount({EIO, EIO, EIO});
  EXPECT_EQ(Send("//10.0.0.5/docs/a", local.Text("b")), 5);
  EXPECT_EQ(error.GetUTF8String(), AllReports(EIO));
  EXPECT_EQ(ReadFile(local.Path("b")), "old");
}

TEST_F(MountTransfer, Returns6WithTheMountsTextWhenFetchingIsRefused) {
  WriteFile(local.Path("b"), "old");
  const FakeMount mount({EOPNOTSUPP, EACCES});
  EXPECT_EQ(Send("//10.0.0.5/docs/a", local.Text("b")), 6);
  EXPECT_EQ(error.GetUTF8String(), Report("smb3", EOPNOTSUPP));
  EXPECT_EQ(ReadFile(local.Path("b")), "old");
}

TEST_F(MountTransfer, NamesTheDestinationThatHasNoFolder) {
  PutOnShare("a", "content");
  WriteFile(local.Path("file"), "in the way");
  error = "earlier text";
  const FakeMount mount;
  EXPECT_EQ(Send("//10.0.0.5/docs/a", local.Text("file/b")), 1);
  EXPECT_EQ(error,
            "Unable to create parent directory for " + local.Text("file/b"));
}

TEST_F(MountTransfer, DeletesTheOldFileBeforeAFetchThatFails) {
  mkdir(Folder('Z').c_str(), 0755);
  WriteFile(local.Path("b"), "old");
  error = "earlier text";
  const FakeMount mount;
  EXPECT_EQ(Send("//10.0.0.5/docs/missing", local.Text("b")), 1);
  EXPECT_EQ(error, "Unable to copy file from /mnt/orbmountZ/missing to " +
                       local.Text("b"));
  EXPECT_FALSE(local.File("b").Exists());
}

// A sendfile(2) that writes one byte and fails.
int FailHalfway(int to) {
  const bool written = write(to, "x", 1) == 1;
  errno = written ? EIO : EBADF;
  return -1;
}

TEST_F(MountTransfer, LeavesNoPartialFileOfAFetch) {
  PutOnShare("a", "content");
  const FakeMount mount;
  const hooks::Scoped failing(hooks::onSendfile,
                              [&](int to, int, off_t*, std::size_t) -> ssize_t {
                                EXPECT_TRUE(local.File("b").Exists());
                                return FailHalfway(to);
                              });
  EXPECT_EQ(Send("//10.0.0.5/docs/a", local.Text("b")), 1);
  EXPECT_EQ(error,
            "Unable to copy file from /mnt/orbmountZ/a to " + local.Text("b"));
  EXPECT_FALSE(local.File("b").Exists());
  EXPECT_EQ(ReadFile(Remote("a")), "content");
}

// To the share

TEST_F(MountTransfer, SendsAFileIntoAMissingFolder) {
  WriteFile(local.Path("a"), "content");
  const FakeMount mount;
  error = "earlier text";
  EXPECT_EQ(Send(local.Text("a"), "\\\\10.0.0.5\\docs\\x\\y\\b"), 0);
  EXPECT_EQ(ReadFile(Remote("x/y/b")), "content");
  EXPECT_EQ(error, "earlier text");
}

TEST_F(MountTransfer, SendsInPlaceOfALongerFile) {
  PutOnShare("b", "much longer than that");
  WriteFile(local.Path("a"), "new");
  const FakeMount mount;
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/b"), 0);
  EXPECT_EQ(ReadFile(Remote("b")), "new");
}

TEST_F(MountTransfer, KeepsTheMountsTextToItselfWhenSending) {
  WriteFile(local.Path("a"), "content");
  const FakeMount mount({EOPNOTSUPP});
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/b"), 0);
  EXPECT_EQ(error, "");
  // The remark that the share is mounted already stays away too.
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/b"), 0);
  EXPECT_EQ(error, "");
  EXPECT_EQ(mount.Calls().size(), 2u);
}

TEST_F(MountTransfer, GathersTheMountsTextsOfAllSends) {
  // Each adds the remark to one text that nobody reads.  Nothing else asks for
  // that much memory at once.
  const FakeMount mount;
  WriteFile(local.Path("a"), "content");
  const hooks::FailingAllocator failing(0, 20000);
  int result = 0;
  int sends = 0;
  for (; result == 0 && sends < 1000; ++sends) {
    result = Send(local.Text("a"), "//10.0.0.5/docs/b");
  }
  EXPECT_EQ(result, 5);
  EXPECT_EQ(failing.Refused(), 1u);
  EXPECT_EQ(error, "");
}

TEST_F(MountTransfer, Returns5WithTheErrorAsItWasWhenSendingCannotMount) {
  WriteFile(local.Path("a"), "content");
  error = "earlier text";
  const FakeMount mount({EIO, EIO, EIO});
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/b"), 5);
  EXPECT_EQ(error, "earlier text");
  EXPECT_EQ(mount.Calls().size(), 3u);
}

TEST_F(MountTransfer, Returns6WithTheErrorAsItWasWhenSendingIsRefused) {
  WriteFile(local.Path("a"), "content");
  const FakeMount mount({EOPNOTSUPP, EACCES});
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/b"), 6);
  EXPECT_EQ(error, "");
}

TEST_F(MountTransfer, NamesTheMountedPathThatHasNoFolder) {
  PutOnShare("file", "in the way");
  WriteFile(local.Path("a"), "content");
  error = "earlier text";
  const FakeMount mount;
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/file/b"), 1);
  EXPECT_EQ(error,
            "Unable to create parent directory for /mnt/orbmountZ/file/b");
}

TEST_F(MountTransfer, MountsAndDeletesBeforeItMissesTheSource) {
  PutOnShare("b", "old");
  error = "earlier text";
  const FakeMount mount;
  int looked = 0;
  const hooks::Scoped looking(
      hooks::onStat, [&](const char* path, struct stat* status) {
        if (path == local.Path("missing")) {
          ++looked;
          EXPECT_NE(access(Remote("b").c_str(), F_OK), 0);
        }
        return hooks::RealStat(path, status);
      });
  EXPECT_EQ(Send(local.Text("missing"), "//10.0.0.5/docs/b"), 1);
  EXPECT_GT(looked, 0);
  EXPECT_EQ(mount.Calls().size(), 1u);
  EXPECT_FALSE(KVTFile("/mnt/orbmountZ/b").Exists());
  EXPECT_EQ(error, "Unable to copy file from " + local.Text("missing") +
                       " to " + "/mnt/orbmountZ/b");
}

TEST_F(MountTransfer, MakesTheFolderBeforeItMissesTheSource) {
  const FakeMount mount;
  EXPECT_EQ(Send(local.Text("missing"), "//10.0.0.5/docs/x/y/b"), 1);
  EXPECT_TRUE(KVTFile("/mnt/orbmountZ/x/y").Exists());
  EXPECT_FALSE(KVTFile("/mnt/orbmountZ/x/y/b").Exists());
}

TEST_F(MountTransfer, LeavesNoPartialFileOfASend) {
  WriteFile(local.Path("a"), "content");
  const FakeMount mount;
  const hooks::Scoped failing(
      hooks::onSendfile, [&](int to, int, off_t*, std::size_t) -> ssize_t {
        EXPECT_TRUE(KVTFile("/mnt/orbmountZ/b").Exists());
        return FailHalfway(to);
      });
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/b"), 1);
  EXPECT_EQ(error, "Unable to copy file from " + local.Text("a") + " to " +
                       "/mnt/orbmountZ/b");
  EXPECT_FALSE(KVTFile("/mnt/orbmountZ/b").Exists());
}

// An old file that cannot be deleted is written over from its start, and keeps
// what lies behind the end of the new one.
TEST_F(MountTransfer, CopiesOverAFileThatStays) {
  const FakeMount mount;
  const hooks::Scoped failing(hooks::onRemove, [](const char*) {
    errno = EPERM;
    return -1;
  });
  WriteFile(local.Path("new"), "new");
  WriteFile(local.Path("old"), "earlier");
  PutOnShare("new", "new");
  PutOnShare("old", "earlier");
  EXPECT_EQ(Send(local.Text("new"), "//10.0.0.5/docs/old"), 0);
  EXPECT_EQ(ReadFile(Remote("old")), "newlier");
  EXPECT_EQ(Send("//10.0.0.5/docs/new", local.Text("old")), 0);
  EXPECT_EQ(ReadFile(local.Path("old")), "newlier");
}

TEST_F(MountTransfer, LeavesTheShareMounted) {
  WriteFile(local.Path("a"), "content");
  const FakeMount mount;
  const FakeUnmount unmount;
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/b"), 0);
  EXPECT_EQ(Send(local.Text("missing"), "//10.0.0.5/docs/b"), 1);
  EXPECT_TRUE(unmount.Calls().empty());
  EXPECT_EQ(share.mMountedShares["//10.0.0.5/docs"], "/mnt/orbmountZ");
}

// Deleting

TEST_F(MountTransfer, DeletesAFileWithEitherKindOfSlashes) {
  const FakeMount mount;
  for (const char* path :
       {"//10.0.0.5/docs/x/a", "\\\\10.0.0.5\\docs\\x\\a",
        "smb://10.0.0.5/docs/x/a", "//10.0.0.5\\docs/x\\a"}) {
    mkdir(Folder('Z').c_str(), 0755);
    mkdir(Remote("x").c_str(), 0755);
    PutOnShare("x/a", "content");
    EXPECT_EQ(share.DeleteShareFile(path, nullptr, error), 0) << path;
    EXPECT_FALSE(KVTFile("/mnt/orbmountZ/x/a").Exists()) << path;
    PutOnShare("x/a", "content");
    EXPECT_EQ(share.DeleteFileUsingMount(path, nullptr, error), 0) << path;
    EXPECT_FALSE(KVTFile("/mnt/orbmountZ/x/a").Exists()) << path;
  }
}

TEST_F(MountTransfer, TurnsBackslashesIntoSlashesBeforeItTakesALocationApart) {
  PutOnShare("a", "content");
  const FakeMount mount;
  const KVTString location("/\\10.0.0.5\\docs\\a");
  EXPECT_EQ(share.DeleteFileUsingMount(location, nullptr, error), 5);
  EXPECT_EQ(error, location + " parsing network path Failed");
  EXPECT_EQ(share.DeleteShareFile(location, nullptr, error), 0);
  EXPECT_FALSE(KVTFile("/mnt/orbmountZ/a").Exists());
  EXPECT_EQ(share.DeleteShareFile("\\\\\\", nullptr, error), 1);
  EXPECT_EQ(error, "/// parsing network path Failed");
}

TEST_F(MountTransfer, Returns1WithoutATextForAMissingFile) {
  const FakeMount mount;
  EXPECT_EQ(share.DeleteFileUsingMount("//10.0.0.5/docs/a", nullptr, error), 1);
  EXPECT_EQ(error, "");
  EXPECT_EQ(share.DeleteShareFile("//10.0.0.5/docs/a", nullptr, error), 1);
  EXPECT_EQ(error, kRemark);
}

TEST_F(MountTransfer, Returns1ForAnEmptyDirectoryThatItDeletes) {
  const FakeMount mount;
  mkdir(Folder('Z').c_str(), 0755);
  mkdir(Remote("x").c_str(), 0755);
  EXPECT_EQ(share.DeleteShareFile("//10.0.0.5/docs/x", nullptr, error), 1);
  EXPECT_FALSE(KVTFile("/mnt/orbmountZ/x").Exists());
}

TEST_F(MountTransfer, DeletingGives5Or1WhenItCannotMount) {
  mkdir(Folder('Z').c_str(), 0755);
  const FakeMount mount({EIO, EIO, EIO, EIO, EIO, EIO});
  EXPECT_EQ(share.DeleteFileUsingMount("//10.0.0.5/docs/a", nullptr, error), 5);
  EXPECT_EQ(error.GetUTF8String(), AllReports(EIO));
  EXPECT_EQ(share.DeleteShareFile("//10.0.0.5/docs/a", nullptr, error), 1);
  EXPECT_EQ(error.GetUTF8String(), AllReports(EIO));
  // A single attempt each.
  EXPECT_EQ(mount.Calls().size(), 6u);
}

TEST_F(MountTransfer, DeletingGives6WhenRefused) {
  mkdir(Folder('Z').c_str(), 0755);
  const FakeMount mount({EACCES, EACCES});
  EXPECT_EQ(share.DeleteFileUsingMount("//10.0.0.5/docs/a", nullptr, error), 6);
  EXPECT_EQ(share.DeleteShareFile("//10.0.0.5/docs/a", nullptr, error), 6);
  EXPECT_EQ(error, "");
}

TEST_F(MountTransfer, DeletingUsesItsCredentials) {
  KVTAuthentication auth("backup", "secret", "CORP");
  const FakeMount mount;
  share.DeleteShareFile("\\\\10.0.0.5\\docs\\a", &auth, error);
  ASSERT_EQ(mount.Calls().size(), 1u);
  EXPECT_EQ(mount.Calls()[0].data,
            "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,domain=CORP,user=backup,"
            "pass=secret,vers=3.0");
}

TEST_F(MountTransfer, DeletesOnALocationWithoutAPrefixToo) {
  // Deleting does not ask whether the path is a share.
  PutOnShare("a", "content");
  const FakeMount mount;
  EXPECT_EQ(share.DeleteShareFile("10.0.0.5\\docs\\a", nullptr, error), 0);
  EXPECT_FALSE(KVTFile("/mnt/orbmountZ/a").Exists());
}

}  // namespace
