// What becomes of everything that can be thrown through the share code.

#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "KVTShareFile.h"
#include "hooks.h"
#include "share_fakes.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

char narrowText[] = "narrow text";
KVTString wideText("wide text");

struct Thrown {
  const char* name;  // part of the test's name: letters and digits only
  void (*raise)();
  bool isNarrowPointer;
  bool isWidePointer;
  // What KVTShareFile::SendFile makes of it when it reaches its own handler.
  const char* text;
};

const Thrown kThrown[] = {
    {"NarrowPointer", [] { throw static_cast<char*>(narrowText); }, true, false,
     "narrow text"},
    {"WidePointer", [] { throw &wideText; }, false, true, nullptr},
    {"WideText", [] { throw KVTString("wide text"); }, false, false,
     "wide text"},
    {"Pair",
     [] {
       throw std::pair<KVTString, KVTErrorCodeEnum>("text of the pair",
                                                    KVTErrorCodeAccessDenied);
     },
     false, false, "text of the pair"},
    {"Integer", [] { throw 5; }, false, false, nullptr},
    {"Literal", [] { throw "a literal is no char*"; }, false, false, nullptr},
    {"OutOfMemory", [] { throw std::bad_alloc(); }, false, false, nullptr},
    {"StandardError", [] { throw std::runtime_error("standard"); }, false,
     false, nullptr},
};

void PrintTo(const Thrown& thrown, std::ostream* out) { *out << thrown.name; }

// What left a call.
struct Outcome {
  int result = -1;
  const char* narrow = nullptr;
  const KVTString* wide = nullptr;
  bool threwText = false;
  KVTString text;
  bool threwElse = false;
};

Outcome Call(const std::function<int()>& call) {
  Outcome outcome;
  try {
    outcome.result = call();
  } catch (char* narrow) {
    outcome.narrow = narrow;
  } catch (KVTString* wide) {
    outcome.wide = wide;
  } catch (const KVTString& text) {
    outcome.threwText = true;
    outcome.text = text;
  } catch (...) {
    outcome.threwElse = true;
  }
  return outcome;
}

class ThrownTexts : public EmptyMnt,
                    public testing::WithParamInterface<Thrown> {
 protected:
  static bool IsPointer() {
    return GetParam().isNarrowPointer || GetParam().isWidePointer;
  }

  // The same pointer came out.
  static void ExpectPointer(const Outcome& outcome) {
    EXPECT_EQ(outcome.narrow,
              GetParam().isNarrowPointer ? narrowText : nullptr);
    EXPECT_EQ(outcome.wide, GetParam().isWidePointer ? &wideText : nullptr);
    EXPECT_FALSE(outcome.threwText);
    EXPECT_FALSE(outcome.threwElse);
    EXPECT_EQ(outcome.result, -1);
  }

  // The call returned.
  static void ExpectResult(const Outcome& outcome, int result) {
    EXPECT_EQ(outcome.result, result);
    EXPECT_EQ(outcome.narrow, nullptr);
    EXPECT_EQ(outcome.wide, nullptr);
    EXPECT_FALSE(outcome.threwText);
    EXPECT_FALSE(outcome.threwElse);
  }

  // A text was thrown by value.
  static void ExpectText(const Outcome& outcome, const KVTString& text) {
    EXPECT_TRUE(outcome.threwText);
    EXPECT_EQ(outcome.text, text);
  }

  // From the name service, for any name.
  static auto ThrowFromNames() {
    return hooks::Scoped(hooks::onGetaddrinfo,
                         [raise = GetParam().raise](auto...) {
                           raise();
                           return 0;
                         });
  }

  // When /proc/mounts is opened.
  static auto ThrowFromMountList() {
    return hooks::Scoped(
        hooks::onFopen,
        [raise = GetParam().raise](const char* path, const char* mode) {
          if (std::string(path) == "/proc/mounts") raise();
          return hooks::RealFopen(path, mode);
        });
  }

  // When the copy opens a file.
  static auto ThrowFromCopy() {
    return hooks::Scoped(hooks::onOpen, [raise = GetParam().raise](auto...) {
      raise();
      return -1;
    });
  }

  static auto ThrowFromSleep() {
    return hooks::Scoped(hooks::onSleep, [raise = GetParam().raise](unsigned) {
      raise();
      return 0u;
    });
  }

  const TemporaryDirectory local;
  KVTShareFile share;
  KVTString error;
};

TEST_P(ThrownTexts, LeaveResolveHostAddress) {
  const auto throwing = ThrowFromNames();
  KVTString address("untouched");
  const Outcome outcome =
      Call([&] { return share.ResolveHostAddress("\\host/", address); });
  EXPECT_EQ(address, "untouched");
  if (IsPointer()) return ExpectPointer(outcome);
  // The host is the one that was given, with its separators.
  ExpectText(outcome, "Failed to resolve Host\\host/");
}

TEST_P(ThrownTexts, LeaveParseNetworkPath) {
  const auto throwing = ThrowFromNames();
  KVTString hostIp("untouched");
  KVTString shareFolder("untouched");
  KVTString remainder("untouched");
  const Outcome outcome = Call([&] {
    return share.ParseNetworkPath("smb:\\\\host\\docs\\a", hostIp, shareFolder,
                                  remainder);
  });
  EXPECT_EQ(hostIp, "untouched");
  EXPECT_EQ(shareFolder, "untouched");
  EXPECT_EQ(remainder, "untouched");
  if (IsPointer()) return ExpectPointer(outcome);
  ExpectText(outcome, "Parsing network path failed smb:\\\\host\\docs\\a");
}

TEST_P(ThrownTexts, PassThroughTheUrl) {
  const auto throwing = ThrowFromNames();
  const Outcome outcome = Call([&] {
    share.RefactorIPv6ForWindowSMB1("\\\\host\\docs\\a");
    return 0;
  });
  if (IsPointer()) return ExpectPointer(outcome);
  ExpectText(outcome, "Parsing network path failed //host/docs/a");
}

TEST_P(ThrownTexts, FromTheParserEndInMountNetworkShare) {
  const auto throwing = ThrowFromNames();
  KVTString path("untouched");
  const auto mount = [&] {
    return share.MountNetworkShare("//host/docs/a", nullptr, path, error);
  };
  const Outcome outcome = Call(mount);
  EXPECT_EQ(path, "untouched");
  if (IsPointer()) {
    EXPECT_EQ(error, "");
    return ExpectPointer(outcome);
  }
  ExpectResult(outcome, 1);
  EXPECT_EQ(error, "Failed to Mount //host/docs/a");

  error = "earlier text";
  ExpectResult(Call(mount), 1);
  EXPECT_EQ(error, "earlier text");
}

TEST_P(ThrownTexts, FromTheMountListEndInMountNetworkShare) {
  const auto throwing = ThrowFromMountList();
  KVTString path("untouched");
  const auto mount = [&] {
    return share.MountNetworkShare("//10.0.0.5/docs/a", nullptr, path, error);
  };
  const Outcome outcome = Call(mount);
  EXPECT_EQ(path, "untouched");
  EXPECT_FALSE(FolderExists('Z'));
  if (IsPointer()) {
    EXPECT_EQ(error, "");
    return ExpectPointer(outcome);
  }
  ExpectResult(outcome, 1);
  EXPECT_EQ(error, "Failed to Mount //10.0.0.5/docs/a");

  error = "earlier text";
  ExpectResult(Call(mount), 1);
  EXPECT_EQ(error, "earlier text");
}

TEST_P(ThrownTexts, PassThroughTheChoiceOfAFolder) {
  // No handler here: whatever it is leaves as it is.
  const auto throwing = ThrowFromMountList();
  KVTString folder("untouched");
  EXPECT_ANY_THROW(share.GetMountPoint("//10.0.0.5/docs", folder, error));
  EXPECT_ANY_THROW(
      share.GetMountPointForMountedNetwork("//10.0.0.5/docs", folder, error));
  EXPECT_EQ(folder, "untouched");
  EXPECT_TRUE(share.mMountedShares.empty());
}

TEST_P(ThrownTexts, FromTheMountLeaveAFetchOrMakeItFail) {
  const auto throwing = ThrowFromNames();
  const Outcome outcome = Call([&] {
    return share.SendFileUsingMount("//host/docs/a", nullptr, local.Text("a"),
                                    nullptr, error);
  });
  if (IsPointer()) {
    EXPECT_EQ(error, "");
    return ExpectPointer(outcome);
  }
  ExpectResult(outcome, 5);
  EXPECT_EQ(error, "Failed to Mount //host/docs/a");
}

TEST_P(ThrownTexts, FromTheMountLeaveASendOrMakeItFail) {
  const auto throwing = ThrowFromNames();
  const Outcome outcome = Call([&] {
    return share.SendFileUsingMount(local.Text("a"), nullptr, "//host/docs/a",
                                    nullptr, error);
  });
  EXPECT_EQ(error, "");
  if (IsPointer()) return ExpectPointer(outcome);
  ExpectResult(outcome, 5);
}

TEST_P(ThrownTexts, FromTheCopyEndInSendFileUsingMount) {
  WriteFile(local.Path("a"), "content");
  const FakeMount mount;
  const auto throwing = ThrowFromCopy();
  const auto send = [&] {
    return share.SendFileUsingMount(local.Text("a"), nullptr,
                                    "//10.0.0.5/docs/b", nullptr, error);
  };
  const Outcome outcome = Call(send);
  if (IsPointer()) {
    EXPECT_EQ(error, "");
    return ExpectPointer(outcome);
  }
  ExpectResult(outcome, 1);
  EXPECT_EQ(error, "Failed to send using mount");

  error = "earlier text";
  ExpectResult(Call(send), 1);
  EXPECT_EQ(error, "earlier text");
}

TEST_P(ThrownTexts, FromTheMountPassThroughDeleting) {
  const auto throwing = ThrowFromNames();
  const Outcome one = Call([&] {
    return share.DeleteFileUsingMount("//host/docs/a", nullptr, error);
  });
  const Outcome two = Call(
      [&] { return share.DeleteShareFile("//host/docs/a", nullptr, error); });
  if (IsPointer()) {
    ExpectPointer(one);
    return ExpectPointer(two);
  }
  ExpectResult(one, 5);
  ExpectResult(two, 1);
  EXPECT_EQ(error, "Failed to Mount //host/docs/a");
}

// The facade.  What its pause throws reaches its handler as it is.

TEST_P(ThrownTexts, GiveSendFileItsTextWhenThereIsNone) {
  const auto throwing = ThrowFromSleep();
  const Outcome outcome = Call([&] {
    return share.SendFile(local.Text("a"), nullptr, local.Text("b"), nullptr,
                          error);
  });
  ExpectResult(outcome, 1);
  const char* const text = GetParam().text;
  EXPECT_EQ(error, text != nullptr ? text : "Failed to send file");
}

TEST_P(ThrownTexts, FollowEarlierTextOfSendFile) {
  const auto throwing = ThrowFromSleep();
  error = "earlier text";
  const Outcome outcome = Call([&] {
    return share.SendFile(local.Text("a"), nullptr, local.Text("b"), nullptr,
                          error);
  });
  ExpectResult(outcome, 1);
  const char* const text = GetParam().text;
  EXPECT_EQ(error, text != nullptr ? KVTString("earlier text ") + text
                                   : KVTString("earlier text"));
}

TEST_P(ThrownTexts, FromTheNameServiceEndInSendFile) {
  const FakeSleep sleep;
  const auto throwing = ThrowFromNames();
  const Outcome outcome = Call([&] {
    return share.SendFile("\\\\host\\docs\\a", nullptr, local.Text("a"),
                          nullptr, error);
  });
  ExpectResult(outcome, 1);
  if (GetParam().isNarrowPointer) {
    EXPECT_EQ(error, "narrow text");
  } else if (GetParam().isWidePointer) {
    EXPECT_EQ(error, "Failed to send file");
  } else {
    EXPECT_EQ(error, "Failed to Mount //host/docs/a");
  }
  // A pointer ends the attempts; everything else is one failed attempt of five.
  EXPECT_EQ(sleep.Seconds().size(), IsPointer() ? 0u : 5u);
}

INSTANTIATE_TEST_SUITE_P(, ThrownTexts, testing::ValuesIn(kThrown),
                         [](const auto& test) { return test.param.name; });

TEST(ThrownText, OfSendFileMayBeNullOrEmpty) {
  const TemporaryDirectory local;
  KVTShareFile share;
  char* thrown = nullptr;
  const hooks::Scoped throwing(hooks::onSleep,
                               [&](unsigned) -> unsigned { throw thrown; });
  KVTString error;
  const auto send = [&] {
    return share.SendFile(local.Text("a"), nullptr, local.Text("b"), nullptr,
                          error);
  };
  EXPECT_EQ(send(), 1);
  EXPECT_EQ(error, "");
  error = "earlier text";
  EXPECT_EQ(send(), 1);
  EXPECT_EQ(error, "earlier text ");
  char empty[] = "";
  thrown = empty;
  EXPECT_EQ(send(), 1);
  EXPECT_EQ(error, "earlier text  ");
}

TEST(ThrownText, OfSendFileIsReadAsUtf8) {
  const TemporaryDirectory local;
  KVTShareFile share;
  char thrown[] = "h\xC3\xB6st";
  const hooks::Scoped throwing(hooks::onSleep, [&](unsigned) -> unsigned {
    throw static_cast<char*>(thrown);
  });
  KVTString error;
  EXPECT_EQ(
      share.SendFile(local.Text("a"), nullptr, local.Text("b"), nullptr, error),
      1);
  EXPECT_EQ(error, FromUnits({'h', 0xF6, 's', 't'}));
}

// Running out of memory

// Its mounts and pauses keep no record, which would take memory as well.
class OutOfMemory : public EmptyMnt {
 protected:
  const hooks::Scoped<decltype(hooks::onMount)> mMount{
      hooks::onMount, [](auto...) { return 0; }};
  const hooks::Scoped<decltype(hooks::onSleep)> mSleep{
      hooks::onSleep, [](unsigned) { return 0u; }};
};

TEST_F(OutOfMemory, NeverLeavesSendFile) {
  // Each request that could hold the long name is refused in turn, and all
  // behind it; the short texts of the handlers are not.
  const TemporaryDirectory local;
  WriteFile(local.Path("a"), "content");
  const KVTString destination =
      FromUtf8("//10.0.0.5/docs/" + std::string(200, 'n'));
  bool ranOut = true;
  bool reachedAttempts = false;
  for (std::size_t count = 0; ranOut; ++count) {
    SCOPED_TRACE(count);
    ASSERT_LT(count, 2000u);
    KVTShareFile share;
    KVTString error;
    int result = -1;
    {
      const hooks::FailingAllocator failing(count, 400);
      result =
          share.SendFile(local.Text("a"), nullptr, destination, nullptr, error);
      ranOut = failing.Refused() > 0;
    }
    if (!ranOut) {
      EXPECT_EQ(result, 0);
      EXPECT_EQ(error, "");
      break;
    }
    EXPECT_EQ(result, 1);
    if (!reachedAttempts) {
      reachedAttempts = error == "Failed to send using mount";
    }
    EXPECT_EQ(error, reachedAttempts ? "Failed to send using mount"
                                     : "Failed to send file");
  }
  EXPECT_TRUE(reachedAttempts);
}

TEST_F(OutOfMemory, LeavesTheParserAsItsText) {
  KVTShareFileInternal paths;
  const KVTString path = FromUtf8("//10.0.0.5/docs/" + std::string(1000, 'n'));
  bool ranOut = true;
  bool leftHost = false;
  bool leftShareFolder = false;
  std::size_t count = 0;
  for (; ranOut; ++count) {
    SCOPED_TRACE(count);
    ASSERT_LT(count, 2000u);
    KVTString hostIp;
    KVTString shareFolder;
    KVTString remainder;
    Outcome outcome;
    {
      // One request of the parser's own, behind the copy of its argument.
      const hooks::FailingAllocator failing(count + 1, 1000, 1);
      outcome = Call([&] {
        return paths.ParseNetworkPath(path, hostIp, shareFolder, remainder);
      });
      ranOut = failing.Refused() > 0;
    }
    if (ranOut) {
      EXPECT_TRUE(outcome.threwText);
      EXPECT_EQ(outcome.text, "Parsing network path failed " + path);
      // What was found before stays.
      leftHost |= hostIp == "10.0.0.5" && shareFolder.empty();
      leftShareFolder |= hostIp == "10.0.0.5" && shareFolder == "docs";
      EXPECT_EQ(remainder, "");
    } else {
      EXPECT_EQ(outcome.result, 0);
    }
  }
  EXPECT_GT(count, 5u);
  EXPECT_TRUE(leftHost);
  EXPECT_TRUE(leftShareFolder);
}

TEST_F(OutOfMemory, LeavesNoEntryWithoutAFolder) {
  // Such an entry would send the next file to the root of the file system.
  bool ranOut = true;
  std::size_t entered = 0;
  for (std::size_t count = 0; ranOut; ++count) {
    SCOPED_TRACE(count);
    ASSERT_LT(count, 2000u);
    rmdir(Folder('Z').c_str());
    KVTShareFile share;
    KVTString path;
    KVTString error;
    {
      const hooks::FailingAllocator failing(count, 0, 1);
      try {
        share.MountNetworkShare("//10.0.0.5/docs/a", nullptr, path, error);
      } catch (const std::bad_alloc&) {
        // From the copies that the call itself makes.
      }
      ranOut = failing.Refused() > 0;
    }
    for (const auto& entry : share.mMountedShares) {
      EXPECT_EQ(entry.first, "//10.0.0.5/docs");
      EXPECT_EQ(entry.second, "/mnt/orbmountZ");
      ++entered;
    }
  }
  EXPECT_GT(entered, 1u);
}

TEST_F(OutOfMemory, LeavesDeletingWhereItHasNoHandler) {
  // The mount turns it into a result; what comes behind the mount does not.
  const KVTString path = FromUtf8("//10.0.0.5/docs/" + std::string(200, 'n'));
  bool ranOut = true;
  bool threw = false;
  bool failedToMount = false;
  for (std::size_t count = 0; ranOut; ++count) {
    SCOPED_TRACE(count);
    ASSERT_LT(count, 2000u);
    KVTShareFile share;
    KVTString error("earlier text");
    const hooks::FailingAllocator failing(count, 400, 1);
    try {
      failedToMount |= share.DeleteFileUsingMount(path, nullptr, error) == 5;
    } catch (const std::bad_alloc&) {
      threw = true;
    }
    ranOut = failing.Refused() > 0;
  }
  EXPECT_TRUE(failedToMount);
  EXPECT_TRUE(threw);
}

}  // namespace
