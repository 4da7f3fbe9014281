// The facade: attempts, pauses, results.

#include <errno.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "KVTShareFile.h"
#include "allowed_leaks.h"
#include "hooks.h"
#include "namespaces.h"
#include "share_fakes.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

std::string AllReports(int reason) {
  const std::string tail =
      ": mount return code: -1 , errno: " + std::to_string(reason) +
      " , stderror: " + strerror(reason) +
      " , for share: //10.0.0.5/docs , for Mount Point: /mnt/orbmountZ";
  return "smb3" + tail + "\nsmb2" + tail + "\nsmb1" + tail;
}

using Sleeps = std::vector<unsigned>;

class SendFile : public EmptyMnt {
 protected:
  static std::string Remote(const std::string& name) {
    return Folder('Z') + "/" + name;
  }

  // A folder without an entry in the table.
  static void MakeIdle() { ASSERT_EQ(mkdir(Folder('Z').c_str(), 0755), 0); }

  int Send(const KVTString& source, const KVTString& destination) {
    return share.SendFile(source, nullptr, destination, nullptr, error);
  }

  const TemporaryDirectory local;
  const FakeSleep sleep;
  KVTShareFile share;
  KVTString error;
};

TEST_F(SendFile, SendsAtTheFirstAttempt) {
  WriteFile(local.Path("a"), "content");
  const FakeMount mount;
  error = "earlier text";
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/x/b"), 0);
  EXPECT_EQ(error, "");
  EXPECT_EQ(ReadFile(Remote("x/b")), "content");
  EXPECT_EQ(sleep.Seconds(), Sleeps{});
}

TEST_F(SendFile, FetchesAtTheFirstAttempt) {
  MakeIdle();
  WriteFile(Remote("b"), "content");
  const FakeMount mount({EOPNOTSUPP});
  EXPECT_EQ(Send("//10.0.0.5/docs/b", local.Text("x/a")), 0);
  // The report of the first dialect is gone.
  EXPECT_EQ(error, "");
  EXPECT_EQ(ReadFile(local.Path("x/a")), "content");
  EXPECT_EQ(sleep.Seconds(), Sleeps{});
}

TEST_F(SendFile, TakesBackslashesForSeparatorsOnBothSides) {
  WriteFile(local.Path("a"), "content");
  const FakeMount mount;
  KVTString source = local.Text("a");
  source.ReplaceAll("/", "\\");
  EXPECT_EQ(Send(source, "\\\\10.0.0.5\\docs\\x\\b"), 0);
  EXPECT_EQ(ReadFile(Remote("x/b")), "content");
  KVTString destination = local.Text("y/c");
  destination.ReplaceAll("/", "\\");
  EXPECT_EQ(Send("\\\\10.0.0.5\\docs\\x\\b", destination), 0);
  EXPECT_EQ(ReadFile(local.Path("y/c")), "content");
  EXPECT_EQ(mount.Calls().size(), 1u);
}

TEST_F(SendFile, TakesTheCredentialsOfTheShareItself) {
  MakeIdle();
  WriteFile(Remote("a"), "content");
  KVTAuthentication source("reader", "");
  KVTAuthentication destination("writer", "");
  const FakeMount mount;
  EXPECT_EQ(share.SendFile("//10.0.0.5/docs/a", &source, local.Text("a"),
                           &destination, error),
            0);
  EXPECT_EQ(share.SendFile(local.Text("a"), &source, "//10.0.0.6/docs/b",
                           &destination, error),
            0);
  const std::vector<std::string> expected = {
      "unc=\\\\10.0.0.5\\docs,ip=10.0.0.5,domain=.,user=reader,vers=3.0",
      "unc=\\\\10.0.0.6\\docs,ip=10.0.0.6,domain=.,user=writer,vers=3.0"};
  EXPECT_EQ(mount.Data(), expected);
}

TEST_F(SendFile, SucceedsAtTheThirdAttempt) {
  MakeIdle();
  WriteFile(Remote("b"), "content");
  const FakeMount mount({EIO, EIO, EIO, EIO, EIO, EIO});
  EXPECT_EQ(Send("//10.0.0.5/docs/b", local.Text("a")), 0);
  EXPECT_EQ(error, "");
  EXPECT_EQ(ReadFile(local.Path("a")), "content");
  EXPECT_EQ(sleep.Seconds(), (Sleeps{1, 1}));
  EXPECT_EQ(mount.Calls().size(), 7u);
}

TEST_F(SendFile, SucceedsAtTheFifthAttempt) {
  MakeIdle();
  WriteFile(local.Path("a"), "content");
  const FakeMount mount(std::vector<int>(12, EIO));
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/b"), 0);
  EXPECT_EQ(error, "");
  EXPECT_EQ(ReadFile(Remote("b")), "content");
  EXPECT_EQ(sleep.Seconds(), (Sleeps{1, 1, 1, 1}));
}

TEST_F(SendFile, StopsAtARefusalWithTheErrorEmptied) {
  MakeIdle();
  WriteFile(local.Path("a"), "content");
  error = "earlier text";
  const FakeMount mount({EACCES});
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/b"), 6);
  EXPECT_EQ(error, "");
  EXPECT_EQ(sleep.Seconds(), Sleeps{});
  EXPECT_EQ(mount.Calls().size(), 1u);
}

TEST_F(SendFile, StopsAtARefusalOfALaterAttempt) {
  MakeIdle();
  const FakeMount mount({EIO, EIO, EIO, EIO, EACCES});
  EXPECT_EQ(Send("//10.0.0.5/docs/b", local.Text("a")), 6);
  EXPECT_EQ(error, "");
  EXPECT_EQ(sleep.Seconds(), Sleeps{1});
  EXPECT_EQ(mount.Calls().size(), 5u);
}

TEST_F(SendFile, TriesFiveTimesBetweenTwoLocalPaths) {
  WriteFile(local.Path("a"), "content");
  error = "earlier text";
  const FakeMount mount;
  EXPECT_EQ(Send(local.Text("a"), local.Text("b")), 1);
  EXPECT_EQ(error, "earlier text");
  EXPECT_EQ(sleep.Seconds(), Sleeps(5, 1));
  EXPECT_FALSE(local.File("b").Exists());
  EXPECT_TRUE(mount.Calls().empty());
}

TEST_F(SendFile, TriesFiveTimesBetweenTwoShares) {
  const FakeMount mount;
  EXPECT_EQ(Send("//10.0.0.5/docs/a", "//10.0.0.6/docs/a"), 1);
  EXPECT_EQ(error,
            "Transfer of file from network share to network share is not "
            "supported.");
  EXPECT_EQ(sleep.Seconds(), Sleeps(5, 1));
  EXPECT_TRUE(mount.Calls().empty());
}

TEST_F(SendFile, RefusesADirectoryAsSource) {
  const FakeMount mount;
  error = "earlier text";
  EXPECT_EQ(Send(local.Text(), "//10.0.0.5/docs/b"), 1);
  EXPECT_EQ(error, "earlier text");
  EXPECT_EQ(sleep.Seconds(), Sleeps{});
  EXPECT_TRUE(mount.Calls().empty());
}

TEST_F(SendFile, RefusesADirectoryWrittenWithBackslashes) {
  const FakeMount mount;
  KVTString directory = local.Text();
  directory.ReplaceAll("/", "\\");
  EXPECT_EQ(Send(directory, "//10.0.0.5/docs/b"), 1);
  EXPECT_EQ(Send("//10.0.0.5/docs/b", directory), 1);
  EXPECT_EQ(sleep.Seconds(), Sleeps{});
  EXPECT_TRUE(mount.Calls().empty());
}

TEST_F(SendFile, RefusesALocationWhoseTextIsALocalDirectory) {
  // "//" and "/" name the same root, and a prefix alone makes a location.
  const FakeMount mount;
  error = "earlier text";
  const KVTString location = "/" + local.Text();
  ASSERT_TRUE(share.IsSharePath(location));
  EXPECT_EQ(Send(location, local.Text("a")), 1);
  EXPECT_EQ(Send(local.Text("a"), location), 1);
  EXPECT_EQ(error, "earlier text");
  EXPECT_EQ(sleep.Seconds(), Sleeps{});
  EXPECT_TRUE(mount.Calls().empty());
}

TEST_F(SendFile, RefusesADirectoryAsDestination) {
  const FakeMount mount;
  error = "earlier text";
  EXPECT_EQ(Send("//10.0.0.5/docs/b", local.Text()), 1);
  EXPECT_EQ(Send("//10.0.0.5/docs/b", local.Text() + "\\"), 1);
  EXPECT_EQ(error, "earlier text");
  EXPECT_EQ(sleep.Seconds(), Sleeps{});
  EXPECT_TRUE(mount.Calls().empty());
}

// After a failed mount: four outcomes, by direction and by whether the call has
// just made the folder.

TEST_F(SendFile, SendsIntoTheLocalFolderAfterFailingOnANewOne) {
  WriteFile(local.Path("a"), "content");
  const FakeMount mount({EIO, EIO, EIO});
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/b"), 0);
  EXPECT_EQ(error, "");
  // The second attempt takes the entry of the first for a mount.
  EXPECT_EQ(sleep.Seconds(), Sleeps{1});
  EXPECT_EQ(mount.Calls().size(), 3u);
  EXPECT_EQ(ReadFile(Remote("b")), "content");
}

TEST_F(SendFile, FetchesNothingAfterFailingOnANewFolder) {
  WriteFile(local.Path("a"), "old");
  const FakeMount mount({EIO, EIO, EIO});
  EXPECT_EQ(Send("//10.0.0.5/docs/b", local.Text("a")), 1);
  EXPECT_EQ(error,
            "Unable to copy file from /mnt/orbmountZ/b to " + local.Text("a"));
  EXPECT_EQ(sleep.Seconds(), Sleeps(5, 1));
  EXPECT_EQ(mount.Calls().size(), 3u);
  EXPECT_FALSE(local.File("a").Exists());
}

TEST_F(SendFile, TriesToMountEachTimeWhenSendingOverAFolderThatStoodIdle) {
  MakeIdle();
  WriteFile(local.Path("a"), "content");
  const FakeMount mount(std::vector<int>(15, EIO));
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/docs/b"), 1);
  EXPECT_EQ(error, "");
  EXPECT_EQ(sleep.Seconds(), Sleeps(5, 1));
  EXPECT_EQ(mount.Calls().size(), 15u);
  EXPECT_TRUE(share.mMountedShares.empty());
}

TEST_F(SendFile, TriesToMountEachTimeWhenFetchingOverAFolderThatStoodIdle) {
  MakeIdle();
  const FakeMount mount(std::vector<int>(15, EIO));
  EXPECT_EQ(Send("//10.0.0.5/docs/b", local.Text("a")), 1);
  EXPECT_EQ(error.GetUTF8String(), AllReports(EIO));
  EXPECT_EQ(sleep.Seconds(), Sleeps(5, 1));
  EXPECT_EQ(mount.Calls().size(), 15u);
}

TEST_F(SendFile, ReportsAFailedCopyAfterFiveAttempts) {
  const FakeMount mount;
  EXPECT_EQ(Send(local.Text("missing"), "//10.0.0.5/docs/b"), 1);
  EXPECT_EQ(error, "Unable to copy file from " + local.Text("missing") +
                       " to " + "/mnt/orbmountZ/b");
  EXPECT_EQ(sleep.Seconds(), Sleeps(5, 1));
  EXPECT_EQ(mount.Calls().size(), 1u);
}

TEST_F(SendFile, RetriesALocationThatIsRefused) {
  const FakeMount mount;
  EXPECT_EQ(Send("///fs1/docs", local.Text("a")), 1);
  EXPECT_EQ(error, "///fs1/docs parsing network path Failed");
  EXPECT_EQ(sleep.Seconds(), Sleeps(5, 1));
}

TEST_F(SendFile, MayBeGivenOneTextForPathAndError) {
  const FakeMount mount;
  KVTString text("///fs1/docs");
  EXPECT_EQ(share.SendFile(text, nullptr, local.Text("a"), nullptr, text), 1);
  EXPECT_EQ(text, "///fs1/docs parsing network path Failed");
}

// A mount that shows a folder of this machine, so that the road is gone all the
// way: mounted, copied, found again, unmounted.

TEST_F(SendFile, GoesThroughARealMountAndBack) {
  const TemporaryDirectory server;
  const hooks::Scoped mounting(hooks::onMount,
                               [&](const char*, const char* target, auto...) {
                                 CoverWith(server.Path(), target);
                                 return 0;
                               });
  std::string content(1 << 20, 'x');
  content += "end";
  WriteFile(local.Path("a"), content);

  EXPECT_EQ(Send(local.Text("a"), "\\\\10.0.0.5\\docs\\deep\\er\\b"), 0);
  EXPECT_EQ(error, "");
  EXPECT_EQ(ReadFile(server.Path("deep/er/b")), content);

  EXPECT_EQ(Send("//10.0.0.5/docs/deep/er/b", local.Text("back")), 0);
  EXPECT_EQ(ReadFile(local.Path("back")), content);

  // Another share finds the folder taken.
  EXPECT_EQ(Send(local.Text("a"), "//10.0.0.5/other/c"), 0);
  EXPECT_EQ(share.mMountedShares["//10.0.0.5/other"], "/mnt/orbmountY");

  EXPECT_EQ(
      share.DeleteShareFile("\\\\10.0.0.5\\docs\\deep\\er\\b", nullptr, error),
      0);
  EXPECT_FALSE(server.File("deep/er/b").Exists());
  EXPECT_TRUE(server.File("deep/er").Exists());

  {
    // A folder that is emptied stays open as a directory.
    const AllowedLeaks handles;
    EXPECT_EQ(share.UnmountAll(), 0);
  }
  EXPECT_FALSE(FolderExists('Z'));
  EXPECT_FALSE(FolderExists('Y'));
  EXPECT_TRUE(server.File("c").Exists());
}

// The instance

TEST(ShareFileInstance, IsMadeAtTheFirstCallAndStays) {
  EXPECT_EQ(KVTShareFile::mInstance, nullptr);
  KVTShareFile* const instance = KVTShareFile::Instance();
  ASSERT_NE(instance, nullptr);
  EXPECT_EQ(KVTShareFile::mInstance, instance);
  EXPECT_EQ(KVTShareFile::Instance(), instance);
  EXPECT_TRUE(instance->mMountedShares.empty());
}

TEST(ShareFileInstance, UnmountsNothingWhenTheProcessEnds) {
  EXPECT_EXIT(
      {
        hooks::onUmount2 = [](const char*, int) -> int { _exit(9); };
        KVTShareFile::Instance()->mMountedShares["//10.0.0.5/docs"] =
            "/mnt/orbmountZ";
        exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST(ShareFileInstance, UnmountsWhenACallerDeletesIt) {
  const FakeUnmount unmount;
  KVTShareFile* const instance = KVTShareFile::Instance();
  instance->mMountedShares["//10.0.0.5/docs"] = "/mnt/nowhere";
  delete instance;
  KVTShareFile::mInstance = nullptr;
  ASSERT_EQ(unmount.Calls().size(), 1u);
  EXPECT_EQ(unmount.Calls()[0].target, "/mnt/nowhere");
}

TEST(ShareFileInstance, IsOneObjectForAllThreeClasses) {
  KVTShareFile* const instance = KVTShareFile::Instance();
  MountManager* const manager = instance;
  KVTShareFileInternal* const internal = instance;
  EXPECT_EQ(static_cast<void*>(manager), static_cast<void*>(instance));
  EXPECT_EQ(static_cast<void*>(internal), static_cast<void*>(instance));
  EXPECT_EQ(sizeof(KVTShareFile), sizeof(std::map<KVTString, KVTString>));
  EXPECT_FALSE(std::is_polymorphic<KVTShareFile>::value);
}

}  // namespace
