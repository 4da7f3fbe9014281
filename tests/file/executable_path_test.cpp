#include <errno.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>

#include "KVTFileUtil.h"
#include "hooks.h"
#include "test_strings.h"

namespace {

// The path with and without the name for an executable at `target`, as
// readlink(2) gives it: no terminator, no more than the buffer holds.
class Executable {
 public:
  explicit Executable(const std::string& target)
      : mHook(hooks::onReadlink,
              [target](const char* path, char* out, std::size_t size) {
                EXPECT_STREQ(path, "/proc/self/exe");
                EXPECT_EQ(size, 256u);
                std::memset(out, '/', size);
                const std::size_t count = std::min(size, target.size());
                std::memcpy(out, target.data(), count);
                return static_cast<ssize_t>(count);
              }) {}

  KVTString Path() const { return KVTFileUtil::GetCurrentExecutablePath(true); }
  KVTString Directory() const {
    return KVTFileUtil::GetCurrentExecutablePath(false);
  }

 private:
  hooks::Scoped<decltype(hooks::onReadlink)> mHook;
};

TEST(ExecutablePath, IsThatOfThisProgram) {
  const std::filesystem::path self =
      std::filesystem::read_symlink("/proc/self/exe");
  EXPECT_EQ(KVTFileUtil::GetCurrentExecutablePath(true), self.string().c_str());
  EXPECT_EQ(KVTFileUtil::GetCurrentExecutablePath(false),
            self.parent_path().string().c_str());
}

TEST(ExecutablePath, IsExactlyTheLinksTarget) {
  const Executable executable("/opt/\xC3\xA4/tool (deleted)");
  EXPECT_EQ(executable.Path(), FromUtf8("/opt/\xC3\xA4/tool (deleted)"));
  EXPECT_EQ(executable.Directory(), FromUtf8("/opt/\xC3\xA4"));
}

TEST(ExecutablePath, HasAnEmptyDirectoryInTheRoot) {
  const Executable executable("/tool");
  EXPECT_EQ(executable.Path(), "/tool");
  EXPECT_EQ(executable.Directory(), "");
}

TEST(ExecutablePath, StaysWholeWithoutASlash) {
  const Executable executable("tool");
  EXPECT_EQ(executable.Directory(), "tool");
}

TEST(ExecutablePath, IsCutAfter256Bytes) {
  const std::string directory = "/" + std::string(200, 'd');
  const std::string name(300, 'n');
  for (const std::size_t length : {255, 256, 257, 300}) {
    const std::string target = (directory + "/" + name).substr(0, length);
    const Executable executable(target);
    EXPECT_EQ(executable.Path(), target.substr(0, 256).c_str()) << length;
    EXPECT_EQ(executable.Directory(), directory.c_str()) << length;
  }
}

TEST(ExecutablePath, LosesWhatIsLeftOfItWhereTheCutFallsIntoTheDirectory) {
  const Executable executable("/a/" + std::string(300, 'd') + "/tool");
  EXPECT_EQ(executable.Directory(), "/a");
}

TEST(ExecutablePath, IsEmptyWhereTheLinkCannotBeRead) {
  hooks::Scoped hook(hooks::onReadlink,
                     [](const char*, char*, std::size_t) -> ssize_t {
                       errno = ENOENT;
                       return -1;
                     });
  EXPECT_EQ(KVTFileUtil::GetCurrentExecutablePath(true), "");
  EXPECT_EQ(KVTFileUtil::GetCurrentExecutablePath(false), "");
}

}  // namespace
