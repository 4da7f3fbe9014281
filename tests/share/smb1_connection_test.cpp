#include <errno.h>
#include <gmock/gmock.h>
#include <stdio.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>

#include "hooks.h"
#include "namespaces.h"
#include "sized_bytes.h"
#include "smb1_server.h"

namespace {

class Smb1Connection : public Smb1Server {
 protected:
  ~Smb1Connection() override { Server().Start(); }
};

TEST_F(Smb1Connection, RefusedByTheHostFailsAtOnce) {
  Server().Kill();
  WriteFile(Local("a"), "a");
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/docs/a"), 1);
  EXPECT_EQ(mError, "Curl return code  7 , curl response code 0");
  EXPECT_EQ(Download("//127.0.0.1/docs/a", Local("b")), 1);
  EXPECT_EQ(mError, "Curl return code  7 , curl response code 0");
  EXPECT_EQ(ReadFile(Local("b")), "");
}

TEST_F(Smb1Connection, RefusedByAServerWithoutSmb1FailsAtOnce) {
  Server().Kill();
  Server().Start("SMB2");
  WriteFile(Server().Docs("a"), "a");
  EXPECT_EQ(Download("//127.0.0.1/docs/a", Local("b")), 1);
  EXPECT_EQ(mError, "Curl return code  7 , curl response code 0");
}

// The source's name is looked up before the transfer and comes out empty, the
// destination's by libcurl.
TEST_F(Smb1Connection, UnknownHostFails) {
  WriteFile(Local("a"), "a");
  EXPECT_EQ(Upload(Local("a"), "//no-such-host.invalid/docs/a"), 1);
  EXPECT_EQ(mError, "Curl return code  6 , curl response code 0");
  EXPECT_EQ(Download("//no-such-host.invalid/docs/a", Local("b")), 1);
  EXPECT_EQ(mError, "Curl return code  3 , curl response code 0");
}

// A neighbour that is known and never answers: what is sent there vanishes.
TEST_F(Smb1Connection, IsGivenUpAfterTenSecondsWithoutAnAnswer) {
  for (const char* command :
       {"ip link add kvt0 type veth peer name kvt1",
        "ip addr add 192.0.2.1/24 dev kvt0", "ip link set kvt0 up",
        "ip link set kvt1 up",
        "ip neigh add 192.0.2.2 lladdr 02:00:00:00:00:02 dev kvt0"}) {
    ASSERT_EQ(::Run({"sh", "-c", command}), 0) << command;
  }
  WriteFile(Local("a"), "a");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Upload(Local("a"), "//192.0.2.2/docs/a"), 1);
  const std::chrono::duration<double> elapsed =
      std::chrono::steady_clock::now() - start;
  EXPECT_EQ(mError, "Curl return code  28 , curl response code 0");
  EXPECT_GE(elapsed.count(), 9.9);
  EXPECT_LT(elapsed.count(), 15);
}

// A local file whose stream kills the server once half of kWhole went through.
class FileThatKillsTheServer {
 public:
  FileThatKillsTheServer()
      : mOnFopen(hooks::onFopen, [this](const char*, const char* mode) {
          cookie_io_functions_t functions = {};
          functions.read = [](void* self, char* out, size_t size) {
            std::fill(out, out + size, 'x');
            return Count(self, size);
          };
          functions.write = [](void* self, const char*, size_t size) {
            return Count(self, size);
          };
          functions.close = [](void* self) {
            static_cast<FileThatKillsTheServer*>(self)->mIsClosed = true;
            return 0;
          };
          return fopencookie(this, mode, functions);
        }) {}

  bool HasKilled() const { return mHasKilled; }
  bool IsClosed() const { return mIsClosed; }

  static constexpr std::size_t kWhole = 64 << 20;

 private:
  static ssize_t Count(void* self, std::size_t size) {
    auto& file = *static_cast<FileThatKillsTheServer*>(self);
    file.mCount += size;
    if (file.mCount >= kWhole / 2 && !file.mHasKilled) {
      file.mHasKilled = true;
      Server().Kill();
    }
    return static_cast<ssize_t>(size);
  }

  std::size_t mCount = 0;
  bool mHasKilled = false;
  bool mIsClosed = false;
  hooks::Scoped<decltype(hooks::onFopen)> mOnFopen;
};

constexpr int kAskedInVain = 1000;

// Lets a socket say kAskedInVain times that the other end has closed it, and
// only then that the connection is lost.
class ClosedConnection {
 public:
  ClosedConnection()
      : mOnRecv(hooks::onRecv, [this](int socket, void* out, size_t size,
                                      int flags) {
          const ssize_t count = hooks::RealRecv(socket, out, size, flags);
          if (count != 0 || ++mTimes < kAskedInVain) return count;
          errno = ECONNRESET;
          return static_cast<ssize_t>(-1);
        }) {}

  int TimesAsked() const { return mTimes; }

 private:
  int mTimes = 0;
  hooks::Scoped<decltype(hooks::onRecv)> mOnRecv;
};

// libcurl 7.88 takes the end of the connection for bytes that are yet to come:
// without the loss that follows here the call would never return.
TEST_F(Smb1Connection, ClosedInTheMiddleOfADownloadIsAskedOnAndOn) {
  WriteFile(Server().Docs("cut"), Bytes(FileThatKillsTheServer::kWhole));
  const FileThatKillsTheServer file;
  const ClosedConnection connection;
  EXPECT_EQ(Download("//127.0.0.1/docs/cut", Local("a")), 1);
  EXPECT_EQ(mError, "Curl return code  56 , curl response code 0");
  EXPECT_EQ(connection.TimesAsked(), kAskedInVain);
  EXPECT_TRUE(file.HasKilled());
  EXPECT_TRUE(file.IsClosed());
}

// Whether libcurl learns of the loss as it sends or as it receives is a matter
// of what the server had taken in by then.
TEST_F(Smb1Connection, LostInTheMiddleOfAnUploadFailsIt) {
  const hooks::Scoped onStat(hooks::onStat,
                             [](const char* path, struct stat* status) {
                               const int result = hooks::RealStat(path, status);
                               if (path != std::string("/data/a"))
                                 return result;
                               status->st_size = FileThatKillsTheServer::kWhole;
                               return 0;
                             });
  const FileThatKillsTheServer file;
  const ClosedConnection connection;
  EXPECT_EQ(Upload("/data/a", "//127.0.0.1/docs/cut"), 1);
  EXPECT_THAT(mError.GetUTF8String(),
              testing::AnyOf("Curl return code  55 , curl response code 0",
                             "Curl return code  56 , curl response code 0"));
  EXPECT_TRUE(file.HasKilled());
  EXPECT_TRUE(file.IsClosed());
}

TEST_F(Smb1Connection, LostInTheMiddleOfADownloadLeavesWhatHadCome) {
  const std::string bytes = Bytes(1 << 20);
  WriteFile(Server().Docs("cut"), bytes);
  std::size_t received = 0;
  const hooks::Scoped onRecv(
      hooks::onRecv, [&](int socket, void* out, size_t size, int flags) {
        if (received > bytes.size() / 2) {
          errno = ECONNRESET;
          return static_cast<ssize_t>(-1);
        }
        const ssize_t count = hooks::RealRecv(socket, out, size, flags);
        if (count > 0) received += static_cast<std::size_t>(count);
        return count;
      });
  EXPECT_EQ(Download("//127.0.0.1/docs/cut", Local("a")), 1);
  EXPECT_EQ(mError, "Curl return code  56 , curl response code 0");
  const std::string left = ReadFile(Local("a"));
  EXPECT_GT(left.size(), bytes.size() / 4);
  EXPECT_LT(left.size(), bytes.size());
  EXPECT_TRUE(bytes.compare(0, left.size(), left) == 0);
}

TEST_F(Smb1Connection, ServerIsReachedAgainOnceItRuns) {
  Server().Kill();
  WriteFile(Local("a"), "again");
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/docs/again"), 1);
  Server().Start();
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/docs/again"), 0);
  EXPECT_EQ(ReadFile(Server().Docs("again")), "again");
}

}  // namespace
