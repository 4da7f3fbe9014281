// Transfers that cannot end well.  A copy that moves no byte fails, and what it
// made is removed; one that moves some bytes counts as done, and they stay.

#include <sys/mount.h>

#include <chrono>
#include <filesystem>
#include <future>
#include <thread>

#include "guest_test.h"
#include "sized_bytes.h"
#include "hooks.h"

namespace {

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

// Without these the client may keep what it writes to itself; with them, each
// byte has to cross to the server before the next one does.  A client that
// keeps 200 MB tries for four minutes to hand them to a server that died, and
// the call tells success all the same.
const std::vector<std::string> kNoCaching = {"oplocks = no",
                                             "smb2 leases = no"};

class BrokenTransfer : public GuestTest {
 protected:
  hooks::Scoped<decltype(hooks::onSleep)> mNoSleep{hooks::onSleep,
                                                   [](unsigned) { return 0U; }};
};

// A folder that is a file system of its own, of `size` bytes in all.
class SmallDisk {
 public:
  SmallDisk(const std::string& folder, std::size_t size) : mFolder(folder) {
    std::filesystem::create_directory(folder);
    const std::string options = "size=" + std::to_string(size);
    EXPECT_EQ(mount("tmpfs", folder.c_str(), "tmpfs", 0, options.c_str()), 0);
  }
  ~SmallDisk() { EXPECT_EQ(umount2(mFolder.c_str(), MNT_DETACH), 0); }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

 private:
  std::string mFolder;
};

// Waits until the file is there and `fits` says true of its size.
template <class Predicate>
void WaitForSize(const std::string& path, Predicate fits) {
  const auto deadline =
      std::chrono::steady_clock::now() + std::chrono::seconds(20);
  std::error_code missing;
  for (;;) {
    const auto now = std::filesystem::file_size(path, missing);
    if (!missing && fits(now)) return;
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << path;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

TEST_F(BrokenTransfer, WhatCrossedBeforeTheServerDiedStaysAndCountsAsDone) {
  UseServer(kNoCaching);
  WriteBytes(Local("source"), 200 * kMegabyte);
  std::filesystem::copy(Local("source"), OnServer("file"));
  // Mounted first: the threads then only read the library's table.
  WriteFile(Local("small"), "x");
  ASSERT_EQ(Send(Local("small"), "//127.0.0.1/docs/small"), (Outcome{0, ""}));
  WriteFile(Local("late"), "old");

  // The copy to "late" moves nothing before the server is dead.
  std::shared_future<void> isDead;
  bool lateWasEmptied = false;
  const hooks::Scoped waiting(hooks::onSendfile, [&](int to, int from,
                                                     off_t* offset,
                                                     std::size_t count) {
    const std::string target =
        std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(to));
    if (target == Local("late")) {
      isDead.wait();
      lateWasEmptied = std::filesystem::file_size(target) == 0;
    }
    return hooks::RealSendfile(to, from, offset, count);
  });
  std::future<Outcome> fetch;
  std::future<Outcome> send;
  std::future<Outcome> late;
  // Goes before the others, so that none waits for ever.
  std::promise<void> dead;
  isDead = dead.get_future().share();
  fetch = std::async(std::launch::async, [&] {
    return Send("//127.0.0.1/docs/file", Local("back"));
  });
  send = std::async(std::launch::async, [&] {
    return Send(Local("source"), "//127.0.0.1/docs/new");
  });
  late = std::async(std::launch::async, [&] {
    return SendOnce("//127.0.0.1/docs/small", Local("late"));
  });
  const auto hasEnough = [](auto size) { return size >= 8 * kMegabyte; };
  WaitForSize(Local("back"), hasEnough);
  WaitForSize(OnServer("new"), hasEnough);
  WaitForSize(Local("late"), [](auto size) { return size == 0; });
  KillServer();
  dead.set_value();

  EXPECT_EQ(fetch.get(), (Outcome{0, ""}));
  EXPECT_EQ(send.get(), (Outcome{0, ""}));
  EXPECT_LT(std::filesystem::file_size(Local("back")), 200 * kMegabyte);
  EXPECT_LT(std::filesystem::file_size(OnServer("new")), 200 * kMegabyte);
  EXPECT_TRUE(IsPrefixOf(Local("back"), Local("source")));
  EXPECT_TRUE(IsPrefixOf(OnServer("new"), Local("source")));

  EXPECT_EQ(late.get(),
            (Outcome{1, "Unable to copy file from /mnt/orbmountZ/small to " +
                            Local("late")}));
  EXPECT_TRUE(lateWasEmptied);
  EXPECT_FALSE(std::filesystem::exists(Local("late")));
}

TEST_F(BrokenTransfer, ToAFullServerLeavesNoFile) {
  UseServer(kNoCaching);
  WriteBytes(Local("source"), kMegabyte);
  const SmallDisk disk(OnServer("disk"), kMegabyte);
  WriteBytes(OnServer("disk/filler"), kMegabyte);

  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/disk/file"),
            (Outcome{1, "Unable to copy file from " + Local("source") +
                            " to /mnt/orbmountZ/disk/file"}));
  EXPECT_FALSE(std::filesystem::exists(OnServer("disk/file")));

  // With room for some of it, the beginning arrives and the call tells success.
  std::filesystem::resize_file(OnServer("disk/filler"), kMegabyte / 2);
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/disk/file"),
            (Outcome{0, ""}));
  EXPECT_EQ(std::filesystem::file_size(OnServer("disk/file")), kMegabyte / 2);
  EXPECT_TRUE(IsPrefixOf(OnServer("disk/file"), Local("source")));
}

TEST_F(BrokenTransfer, ToAFullServerIsNotNoticedByAClientThatCaches) {
  WriteBytes(Local("source"), kMegabyte);
  const SmallDisk disk(OnServer("disk"), kMegabyte);
  WriteBytes(OnServer("disk/filler"), kMegabyte);
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/disk/file"),
            (Outcome{0, ""}));
  EXPECT_FALSE(SameBytes(OnServer("disk/file"), Local("source")));
}

TEST_F(BrokenTransfer, ToAFullLocalDiskLeavesNoFile) {
  WriteBytes(OnServer("source"), kMegabyte);
  const SmallDisk disk(Local("disk"), kMegabyte);
  WriteBytes(Local("disk/filler"), kMegabyte);

  EXPECT_EQ(Send("//127.0.0.1/docs/source", Local("disk/file")),
            (Outcome{1, "Unable to copy file from /mnt/orbmountZ/source to " +
                            Local("disk/file")}));
  EXPECT_FALSE(std::filesystem::exists(Local("disk/file")));

  std::filesystem::resize_file(Local("disk/filler"), kMegabyte / 2);
  EXPECT_EQ(Send("//127.0.0.1/docs/source", Local("disk/file")),
            (Outcome{0, ""}));
  EXPECT_EQ(std::filesystem::file_size(Local("disk/file")), kMegabyte / 2);
  EXPECT_TRUE(IsPrefixOf(Local("disk/file"), OnServer("source")));
}

TEST_F(BrokenTransfer, OfAMissingRemoteFileTakesTheOldLocalFileAway) {
  WriteFile(Local("back"), "old");
  EXPECT_EQ(Send("//127.0.0.1/docs/missing", Local("back")),
            (Outcome{1, "Unable to copy file from /mnt/orbmountZ/missing to " +
                            Local("back")}));
  EXPECT_FALSE(std::filesystem::exists(Local("back")));
}

}  // namespace
