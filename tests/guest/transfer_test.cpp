// Files to the share and back: sizes, names, folders, what stood there before.

#include <filesystem>
#include <fstream>
#include <iterator>

#include "guest_test.h"
#include "sized_bytes.h"

namespace {

struct SizeCase {
  const char* name;
  std::size_t size;
};

const SizeCase kSizes[] = {
    {"Empty", 0},
    {"OneByte", 1},
    {"OneLessThanAPage", 4095},
    {"OnePage", 4096},
    {"OneMoreThanAPage", 4097},
    {"OneMoreThanAMegabyte", (std::size_t{1} << 20) + 1},
    {"TwoHundredMegabytes", std::size_t{200} << 20},
};

void PrintTo(const SizeCase& c, std::ostream* out) { *out << c.name; }

class TransferOfSize : public GuestTest,
                       public testing::WithParamInterface<SizeCase> {};

TEST_P(TransferOfSize, ArrivesAndComesBackByteForByte) {
  WriteBytes(Local("source"), GetParam().size);

  ASSERT_EQ(Send(Local("source"), "//127.0.0.1/docs/file"), (Outcome{0, ""}));
  EXPECT_TRUE(SameBytes(OnServer("file"), Local("source")));

  // Another file, so that the client has to ask the server for its bytes.
  std::filesystem::copy_file(OnServer("file"), OnServer("other"));
  ASSERT_EQ(Send("//127.0.0.1/docs/other", Local("back")), (Outcome{0, ""}));
  EXPECT_TRUE(SameBytes(Local("back"), Local("source")));
}

INSTANTIATE_TEST_SUITE_P(, TransferOfSize, testing::ValuesIn(kSizes),
                         [](const auto& test) { return test.param.name; });

class Transfer : public GuestTest {};

TEST_F(Transfer, MakesMissingParentsOnTheShare) {
  WriteFile(Local("source"), "deep");
  EXPECT_EQ(Send(Local("source"), R"(\\127.0.0.1\docs\a\b\c\d\file.txt)"),
            (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(OnServer("a/b/c/d/file.txt")), "deep");
}

TEST_F(Transfer, MakesMissingParentsOfALocalDestination) {
  WriteFile(OnServer("source"), "deep");
  EXPECT_EQ(Send("//127.0.0.1/docs/source", Local("a/b/c/d/file.txt")),
            (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(Local("a/b/c/d/file.txt")), "deep");
}

TEST_F(Transfer, LeavesNothingOfALongerFileOnTheShare) {
  WriteFile(Local("source"), "short");
  WriteFile(OnServer("file"), "what stood here before was longer");
  EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/file"), (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(OnServer("file")), "short");
}

TEST_F(Transfer, LeavesNothingOfALongerLocalFile) {
  WriteFile(OnServer("source"), "short");
  WriteFile(Local("file"), "what stood here before was longer");
  EXPECT_EQ(Send("//127.0.0.1/docs/source", Local("file")), (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(Local("file")), "short");
}

// The mount leaves the character set of names to the kernel's default.  That of
// the guest's kernel is ISO 8859-1, which takes every byte for a letter.
std::string AsTheKernelSendsIt(const std::string& name) {
  std::ifstream file("/proc/modules");
  const std::string modules(std::istreambuf_iterator<char>(file), {});
  if (modules.find("nls_iso8859_1 ") == std::string::npos) return name;
  std::string sent;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      sent += c;
    } else {
      sent += static_cast<char>(0xC0 | byte >> 6);
      sent += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return sent;
}

TEST_F(Transfer, CarriesNamesWithBlanksAndLettersBeyondAscii) {
  const std::string name = "Über die Straße/東京 \xF0\x9F\x93\x84 report 1.txt";
  WriteFile(Local("ein Brief é.txt"), "names");
  EXPECT_EQ(Send(Local("ein Brief é.txt"), "//127.0.0.1/docs/" + name),
            (Outcome{0, ""}));
  EXPECT_EQ(ReadFile("/mnt/orbmountZ/" + name), "names");
  EXPECT_EQ(ReadFile(OnServer(AsTheKernelSendsIt(name))), "names");
  EXPECT_EQ(Send(R"(\\127.0.0.1\docs\)" + name, Local(name)), (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(Local(name)), "names");
  EXPECT_EQ(Delete("//127.0.0.1/docs/" + name).result, 0);
  EXPECT_FALSE(std::filesystem::exists(OnServer(AsTheKernelSendsIt(name))));
}

TEST_F(Transfer, OfAMissingLocalFileStillDeletesTheFileOnTheShare) {
  WriteFile(OnServer("file"), "old");
  EXPECT_EQ(SendOnce(Local("missing"), "//127.0.0.1/docs/deep/file"),
            (Outcome{1, "Unable to copy file from " + Local("missing") +
                            " to /mnt/orbmountZ/deep/file"}));
  EXPECT_TRUE(std::filesystem::is_directory(OnServer("deep")));
  EXPECT_EQ(SendOnce(Local("missing"), "//127.0.0.1/docs/file"),
            (Outcome{1, "Unable to copy file from " + Local("missing") +
                            " to /mnt/orbmountZ/file"}));
  EXPECT_FALSE(std::filesystem::exists(OnServer("file")));
}

// A location is no directory to the local file system, so a folder there is met
// where an old file would be, and deleted when it is empty.
TEST_F(Transfer, ReplacesAnEmptyFolderOnTheShareAndNoOther) {
  WriteFile(Local("source"), "x");
  std::filesystem::create_directory(OnServer("empty"));
  EXPECT_EQ(SendOnce(Local("source"), "//127.0.0.1/docs/empty"),
            (Outcome{0, ""}));
  EXPECT_EQ(ReadFile(OnServer("empty")), "x");

  std::filesystem::create_directory(OnServer("full"));
  WriteFile(OnServer("full/file"), "stays");
  EXPECT_EQ(SendOnce(Local("source"), "//127.0.0.1/docs/full"),
            (Outcome{1, "Unable to copy file from " + Local("source") +
                            " to /mnt/orbmountZ/full"}));
  EXPECT_EQ(ReadFile(OnServer("full/file")), "stays");
}

TEST_F(Transfer, DeletesWithBothKindsOfSlashes) {
  WriteFile(OnServer("one.txt"), "1");
  std::filesystem::create_directory(OnServer("sub"));
  WriteFile(OnServer("sub/two.txt"), "2");

  EXPECT_EQ(Delete("//127.0.0.1/docs/one.txt"), (Outcome{0, ""}));
  EXPECT_FALSE(std::filesystem::exists(OnServer("one.txt")));

  EXPECT_EQ(
      Delete(R"(\\127.0.0.1\docs\sub\two.txt)"),
      (Outcome{0, "\n//127.0.0.1/docs share location is already mounted."}));
  EXPECT_FALSE(std::filesystem::exists(OnServer("sub/two.txt")));

  EXPECT_EQ(Delete("//127.0.0.1/docs/one.txt").result, 1) << "is gone already";
}

}  // namespace
