#include <gtest/gtest.h>
#include <sys/statvfs.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "namespaces.h"
#include "sized_bytes.h"
#include "smb1_server.h"

namespace {

// Downloads into a file system of a few pages.
class Smb1FullDisk : public Smb1Server {
 protected:
  Smb1FullDisk() {
    std::filesystem::create_directory(Local("disk"));
    CoverWithEmptyDirectory(Local("disk"), kDiskBytes);
  }
  ~Smb1FullDisk() override { Uncover(Local("disk")); }

  // Writes until nothing more goes in.
  void FillTheDisk() const {
    std::ofstream filler(Local("disk/filler"), std::ios::binary);
    while (filler.put('x')) continue;
    struct statvfs status = {};
    ASSERT_EQ(statvfs(Local("disk").c_str(), &status), 0);
    ASSERT_EQ(status.f_bfree, 0u);
  }

  static constexpr std::size_t kDiskBytes = 64 << 10;
};

// The few bytes wait in stdio, which finds out when it closes the file.
TEST_F(Smb1FullDisk, FailsASmallDownloadAtTheCloseUnderTheLineOfSuccess) {
  FillTheDisk();
  WriteFile(Server().Docs("small"), "a hundred bytes or so");
  EXPECT_EQ(Download("//127.0.0.1/docs/small", Local("disk/a")), 1);
  EXPECT_EQ(mError, kDoneLine);
  EXPECT_EQ(ReadFile(Local("disk/a")), "");
}

// libcurl finds out, and stops.
TEST_F(Smb1FullDisk, FailsALargeDownloadInTheMiddle) {
  WriteFile(Server().Docs("large"), Bytes(1 << 20));
  EXPECT_EQ(Download("//127.0.0.1/docs/large", Local("disk/a")), 1);
  EXPECT_EQ(mError, "Curl return code  23 , curl response code 0");
  EXPECT_EQ(ReadFile(Local("disk/a")), Bytes(1 << 20).substr(0, kDiskBytes));
}

TEST_F(Smb1FullDisk, TakesADownloadThatJustFits) {
  WriteFile(Server().Docs("fits"), Bytes(kDiskBytes));
  EXPECT_EQ(Download("//127.0.0.1/docs/fits", Local("disk/a")), 0);
  EXPECT_TRUE(ReadFile(Local("disk/a")) == Bytes(kDiskBytes));
}

}  // namespace
