#include "share_fakes.h"

#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <stdexcept>

#include "namespaces.h"

namespace {

class PrivateMounts : public testing::Environment {
 public:
  // Managers unmount at their end, some of them behind TearDown: none may find
  // the machine's own /mnt, whose mounts would go with their folders.
  void SetUp() override {
    EnterPrivateMounts();
    CoverWithEmptyDirectory("/mnt");
  }
};

const testing::Environment* const kPrivateMounts =
    testing::AddGlobalTestEnvironment(new PrivateMounts);

// One block as getaddrinfo(3) makes it, with the address behind the node.
addrinfo* MakeNode(const std::string& address) {
  struct Block {
    addrinfo node;
    sockaddr_storage address;
  };
  auto* block = static_cast<Block*>(calloc(1, sizeof(Block)));
  auto* four = reinterpret_cast<sockaddr_in*>(&block->address);
  auto* six = reinterpret_cast<sockaddr_in6*>(&block->address);
  if (inet_pton(AF_INET, address.c_str(), &four->sin_addr) == 1) {
    block->node.ai_family = four->sin_family = AF_INET;
  } else if (inet_pton(AF_INET6, address.c_str(), &six->sin6_addr) == 1) {
    block->node.ai_family = six->sin6_family = AF_INET6;
  } else {
    throw std::logic_error("no address: " + address);
  }
  block->node.ai_addr = reinterpret_cast<sockaddr*>(&block->address);
  return &block->node;
}

}  // namespace

FakeMount::FakeMount(std::vector<int> answers)
    : mAnswers(std::move(answers)),
      mHook(hooks::onMount,
            [this](const char* source, const char* target, const char* type,
                   unsigned long flags, const void* data) {
              return Answer({source, target, type, flags,
                             static_cast<const char*>(data)});
            }) {}

int FakeMount::Answer(const Call& call) {
  const std::size_t index = mCalls.size();
  mCalls.push_back(call);
  if (index >= mAnswers.size() || mAnswers[index] == 0) return 0;
  errno = mAnswers[index];
  return -1;
}

std::vector<std::string> FakeMount::Data() const {
  std::vector<std::string> data;
  for (const Call& call : mCalls) data.push_back(call.data);
  return data;
}

FakeUnmount::FakeUnmount(int result)
    : mHook(hooks::onUmount2, [this, result](const char* target, int flags) {
        mCalls.push_back({target, flags});
        errno = EINVAL;
        return result;
      }) {}

FakeNames::FakeNames(Names names)
    : mNames(std::move(names)),
      mHook(hooks::onGetaddrinfo,
            [this](const char* node, const char*, const addrinfo*,
                   addrinfo** result) { return Answer(node, result); }) {}

FakeNames::~FakeNames() {
  for (addrinfo* node : mOurs) free(node);
}

int FakeNames::Answer(const char* node, addrinfo** result) {
  mAsked.push_back(node);
  const auto found = mNames.find(node);
  if (found == mNames.end()) return EAI_NONAME;
  addrinfo** next = result;
  *next = nullptr;
  for (const std::string& address : found->second) {
    *next = MakeNode(address);
    if (next != result) mOurs.push_back(*next);
    next = &(*next)->ai_next;
  }
  return 0;
}

FakeNames::Names UsualNames() {
  return {{"fs1", {"10.0.0.5"}}, {"six", {"fe80::1"}}};
}

FakeMountList::FakeMountList(std::string text)
    : mText(std::move(text)),
      mHook(hooks::onFopen, [this](const char* path, const char* mode) {
        if (strcmp(path, "/proc/mounts") != 0) {
          return hooks::RealFopen(path, mode);
        }
        EXPECT_STREQ(mode, "r");
        ++mOpened;
        FILE* file = tmpfile();
        fwrite(mText.data(), 1, mText.size(), file);
        rewind(file);
        return file;
      }) {}

FakeSleep::FakeSleep()
    : mHook(hooks::onSleep, [this](unsigned seconds) {
        mSeconds.push_back(seconds);
        return 0u;
      }) {}

void MountForReal(const std::string& source, const std::string& folder) {
  if (syscall(SYS_mount, source.c_str(), folder.c_str(), "tmpfs", 0UL, "") !=
      0) {
    throw std::runtime_error("mount on " + folder + ": " + strerror(errno));
  }
}

void EmptyMnt::SetUp() { CoverWithEmptyDirectory("/mnt"); }

void EmptyMnt::TearDown() { Uncover("/mnt"); }

std::string Folder(char letter) {
  return std::string("/mnt/orbmount") + letter;
}

bool FolderExists(char letter) {
  return faccessat(AT_FDCWD, Folder(letter).c_str(), F_OK,
                   AT_SYMLINK_NOFOLLOW) == 0;
}
