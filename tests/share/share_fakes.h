/// What the tests of the share code put in the place of the kernel, the name
/// service and the clock.
///
/// The whole program runs with mounts of its own and never sees the machine's
/// /mnt.

#ifndef KVT_TESTS_SHARE_FAKES_H
#define KVT_TESTS_SHARE_FAKES_H

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "hooks.h"

/// A mount(2) that succeeds or fails as told and mounts nothing.
class FakeMount {
 public:
  struct Call {
    std::string source;
    std::string target;
    std::string type;
    unsigned long flags;
    std::string data;
  };

  /// `answers`: for each call in turn its errno, 0 for success.  A call beyond
  /// them succeeds.
  explicit FakeMount(std::vector<int> answers = {});

  const std::vector<Call>& Calls() const { return mCalls; }
  /// The data arguments of all calls.
  std::vector<std::string> Data() const;

 private:
  int Answer(const Call& call);

  std::vector<int> mAnswers;
  std::vector<Call> mCalls;
  hooks::Scoped<decltype(hooks::onMount)> mHook;
};

/// An umount2(2) that answers `result` and unmounts nothing.
class FakeUnmount {
 public:
  struct Call {
    std::string target;
    int flags;
  };

  explicit FakeUnmount(int result = 0);

  const std::vector<Call>& Calls() const { return mCalls; }

 private:
  std::vector<Call> mCalls;
  hooks::Scoped<decltype(hooks::onUmount2)> mHook;
};

/// A name service that knows a few names: getaddrinfo(3) gives their addresses
/// in order, EAI_NONAME for any other.
class FakeNames {
 public:
  using Names = std::map<std::string, std::vector<std::string>>;

  explicit FakeNames(Names names);
  ~FakeNames();

  /// The names asked for, in order.
  const std::vector<std::string>& Asked() const { return mAsked; }

 private:
  int Answer(const char* node, addrinfo** result);

  Names mNames;
  std::vector<std::string> mAsked;
  // The nodes behind the head of each answer, which whoever asked releases.
  std::vector<addrinfo*> mOurs;
  hooks::Scoped<decltype(hooks::onGetaddrinfo)> mHook;
};

/// fs1 is 10.0.0.5, six is fe80::1; nothing else has an address.
FakeNames::Names UsualNames();

/// Another text in the place of /proc/mounts.
class FakeMountList {
 public:
  explicit FakeMountList(std::string text);

  /// How often it was opened.
  int Opened() const { return mOpened; }

 private:
  std::string mText;
  int mOpened = 0;
  hooks::Scoped<decltype(hooks::onFopen)> mHook;
};

/// A sleep(3) that counts the seconds and returns at once.
class FakeSleep {
 public:
  FakeSleep();

  const std::vector<unsigned>& Seconds() const { return mSeconds; }

 private:
  std::vector<unsigned> mSeconds;
  hooks::Scoped<decltype(hooks::onSleep)> mHook;
};

/// Tests that find /mnt empty.
class EmptyMnt : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
};

/// The folder /mnt/orbmount and `letter`.
std::string Folder(char letter);

/// Whether that folder exists in any form.
bool FolderExists(char letter);

/// Mounts an empty file system with the device text `source` on `folder`, past
/// any hook.
void MountForReal(const std::string& source, const std::string& folder);

#endif  // KVT_TESTS_SHARE_FAKES_H
