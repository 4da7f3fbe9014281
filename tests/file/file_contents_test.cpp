#include <errno.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

#include "KVTFileUtil.h"
#include "file_capabilities.h"
#include "hooks.h"
#include "open_descriptors.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

namespace fs = std::filesystem;

class FileContents : public testing::Test {
 protected:
  std::string Path() const { return mDirectory.Path("f"); }
  KVTString Read() const {
    return KVTString(static_cast<const Units&>(
        KVTFileUtil::GetFileContents(mDirectory.Text("f"))));
  }
  KVTString ReadOf(const std::string& content) const {
    WriteFile(Path(), content);
    return Read();
  }

  const TemporaryDirectory mDirectory;
};

TEST_F(FileContents, AreTheWholeFileAsText) {
  EXPECT_EQ(ReadOf(""), "");
  EXPECT_EQ(ReadOf("x"), "x");
  EXPECT_EQ(ReadOf("\r\n a\n\nb\t\x1A\n"), "\r\n a\n\nb\t\x1A\n");
  EXPECT_EQ(ReadOf("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"),
            FromUnits({0xE4, 0x20AC, 0xD83D, 0xDE00}));
}

TEST_F(FileContents, EndAtTheFirstZeroByte) {
  EXPECT_EQ(ReadOf(std::string("ab\0cd", 5)), "ab");
  EXPECT_EQ(ReadOf(std::string("\0cd", 3)), "");
}

TEST_F(FileContents, AreDecodedAsTheStringDoesIt) {
  // A byte-order mark stays; a sequence cut off by the end gives nothing.
  EXPECT_EQ(ReadOf("\xEF\xBB\xBF"
                   "a"),
            FromUnits({0xFEFF, 'a'}));
  EXPECT_EQ(ReadOf("a\xE2\x82"), FromUtf8("a\xE2\x82"));
  // Every byte but zero.
  std::string binary;
  for (int byte = 1; byte < 256; ++byte) binary += static_cast<char>(byte);
  EXPECT_EQ(ReadOf(binary), FromUtf8(binary));
}

TEST_F(FileContents, KeepAZeroUnitThatAnOverlongSequenceGives) {
  EXPECT_EQ(ReadOf("a\xC0\x80"
                   "b"),
            FromUnits({'a', 0, 'b'}));
}

TEST_F(FileContents, AreEmptyWhereThereIsNoFileToRead) {
  EXPECT_EQ(Read(), "");
  EXPECT_EQ(KVTFileUtil::GetFileContents(""), "");
  EXPECT_EQ(KVTFileUtil::GetFileContents(mDirectory.Text("no/file")), "");
  EXPECT_EQ(KVTFileUtil::GetFileContents(mDirectory.Text()), "");
  EXPECT_EQ(KVTFileUtil::GetFileContents("/"), "");
}

TEST_F(FileContents, AreEmptyWhereTheFileMayNotBeRead) {
  WriteFile(Path(), "secret");
  ASSERT_EQ(chmod(Path().c_str(), 0), 0);
  const WithoutFileCapabilities asAnyone;
  EXPECT_EQ(Read(), "");
}

TEST_F(FileContents, TakeNoRightToWrite) {
  WriteFile(Path(), "to be read");
  ASSERT_EQ(chmod(Path().c_str(), 0400), 0);
  const WithoutFileCapabilities asAnyone;
  EXPECT_EQ(Read(), "to be read");
}

TEST_F(FileContents, AreEmptyForAFileThatTellsNoSize) {
  EXPECT_EQ(KVTFileUtil::GetFileContents("/proc/self/mounts"), "");
}

TEST_F(FileContents, HoldAHundredMegabytes) {
  const std::size_t size = 100 * 1000 * 1000;
  {
    const std::string block(1000 * 1000, 'x');
    std::ofstream out(Path(), std::ios::binary);
    for (int i = 0; i < 100; ++i) out << block;
  }
  ASSERT_EQ(truncate(Path().c_str(), size + 10), 0);  // ten zero bytes behind
  const KVTString text = KVTFileUtil::GetFileContents(mDirectory.Text("f"));
  EXPECT_EQ(text.size(), size);
  EXPECT_EQ(text.find_first_not_of('x'), KVTString::npos);
}

TEST_F(FileContents, AreEmptyWhereMemoryRunsOut) {
  WriteFile(Path(), std::string(1 << 20, 'x'));
  // For the bytes, and for the text that is made of them.
  for (const std::size_t granted : {0, 1}) {
    const hooks::FailingAllocator allocator(granted, 1 << 20);
    EXPECT_EQ(KVTFileUtil::GetFileContents(mDirectory.Text("f")), "");
    EXPECT_EQ(allocator.Refused(), 1u);
  }
}

TEST_F(FileContents, CloseTheFile) {
  WriteFile(Path(), std::string(1 << 20, 'x'));
  const std::size_t before = OpenDescriptors();
  EXPECT_EQ(Read().size(), 1u << 20);
  {
    const hooks::FailingAllocator allocator(0, 1 << 20);
    EXPECT_EQ(KVTFileUtil::GetFileContents(mDirectory.Text("f")), "");
  }
  EXPECT_EQ(OpenDescriptors(), before);
}

// --- A file that changes between the look at its size and the reading

class ChangingFile : public FileContents {
 protected:
  // Reads with `change` done before the first byte is read.
  KVTString ReadAfter(const std::function<void()>& change) const {
    bool changed = false;
    hooks::Scoped hook(hooks::onRead,
                       [&](int descriptor, void* out, std::size_t size) {
                         if (!changed) {
                           changed = true;
                           change();
                         }
                         return hooks::RealRead(descriptor, out, size);
                       });
    const KVTString text = Read();
    EXPECT_TRUE(changed);
    return text;
  }
};

TEST_F(ChangingFile, GivesNoMoreThanItsFirstSize) {
  for (const std::size_t size : {10, 100000}) {
    WriteFile(Path(), std::string(size, 'x'));
    EXPECT_EQ(ReadAfter([this] {
                std::ofstream(Path(), std::ios::app) << std::string(50, 'y');
              }),
              std::string(size, 'x').c_str());
  }
}

TEST_F(ChangingFile, GivesWhatIsLeftOfIt) {
  for (const std::size_t size : {10, 100000}) {
    WriteFile(Path(), std::string(size, 'x'));
    EXPECT_EQ(ReadAfter([this] {
                if (truncate(Path().c_str(), 4) != 0) {
                  throw std::runtime_error("truncate");
                }
              }),
              "xxxx");
  }
}

TEST_F(ChangingFile, IsEmptyWhereNothingIsLeft) {
  WriteFile(Path(), "content");
  EXPECT_EQ(ReadAfter([this] {
              if (truncate(Path().c_str(), 0) != 0) {
                throw std::runtime_error("truncate");
              }
            }),
            "");
}

TEST_F(ChangingFile, IsReadToItsEndAfterItVanishes) {
  WriteFile(Path(), "content");
  EXPECT_EQ(ReadAfter([this] { fs::remove(Path()); }), "content");
}

TEST_F(ChangingFile, IsEmptyWhereReadingFails) {
  WriteFile(Path(), "content");
  hooks::Scoped hook(hooks::onRead, [](int, void*, std::size_t) -> ssize_t {
    errno = EIO;
    return -1;
  });
  EXPECT_EQ(Read(), "");
}

}  // namespace
