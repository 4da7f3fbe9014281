// The password goes to the kernel and nowhere else.

#include <errno.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "KVTShareFile.h"
#include "captured_descriptor.h"
#include "hooks.h"
#include "share_fakes.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

constexpr const char* kPassword = "correct-horse-battery";

// One way in which a step of a transfer fails.
struct Failure {
  const char* name;
  // Put in place before the call.
  std::function<std::shared_ptr<void>()> arrange;
};

template <class Hook, class Replacement>
std::shared_ptr<void> Set(Hook& hook, Replacement replacement) {
  return std::make_shared<hooks::Scoped<Hook>>(hook, std::move(replacement));
}

std::vector<Failure> Failures() {
  std::vector<Failure> all = {
      {"nothing fails", [] { return nullptr; }},
      {"the name service throws a text",
       [] {
         return Set(hooks::onGetaddrinfo, [](auto...) -> int {
           static char text[] = "thrown";
           throw static_cast<char*>(text);
         });
       }},
      {"the name service throws a number",
       [] {
         return Set(hooks::onGetaddrinfo, [](auto...) -> int { throw 1; });
       }},
      {"the list of mounts throws",
       [] { return Set(hooks::onFopen, [](auto...) -> FILE* { throw 1; }); }},
      {"no folder can be made",
       [] {
         return Set(hooks::onMkdir, [](auto...) {
           errno = EROFS;
           return -1;
         });
       }},
      {"a folder cannot be looked at",
       [] {
         mkdir(Folder('Z').c_str(), 0755);
         return Set(hooks::onStat,
                    [n = 0](const char* path, struct stat* out) mutable {
                      if (path == Folder('Z') && ++n % 2 == 0) return -1;
                      return hooks::RealStat(path, out);
                    });
       }},
      {"the copy writes nothing",
       [] {
         return Set(hooks::onSendfile, [](auto...) -> ssize_t { return -1; });
       }},
      {"the copy throws",
       [] { return Set(hooks::onOpen, [](auto...) -> int { throw 1; }); }},
      {"the pause throws",
       [] {
         return Set(hooks::onSleep, [](unsigned) -> unsigned { throw 1; });
       }},
  };
  // Each sequence of answers of the kernel, on a new folder and an idle one.
  const std::vector<std::vector<int>> answers = {
      {EACCES},
      {EIO, EACCES},
      {EIO, EIO, EACCES},
      std::vector<int>(15, EIO),
      std::vector<int>(15, EINVAL),
  };
  for (const bool idle : {false, true}) {
    for (const auto& sequence : answers) {
      all.push_back({"the kernel refuses", [idle, sequence] {
                       if (idle) mkdir(Folder('Z').c_str(), 0755);
                       return std::make_shared<FakeMount>(sequence);
                     }});
    }
  }
  // Memory that runs out at one request after the other: texts as long as the
  // option string, and all behind the first refused one.
  for (std::size_t count = 0; count < 60; ++count) {
    all.push_back({"memory runs out", [count] {
                     return std::make_shared<hooks::FailingAllocator>(count, 70,
                                                                      3);
                   }});
  }
  return all;
}

class Password : public EmptyMnt {
 protected:
  using Call = std::function<int(KVTShareFile& share, KVTString& error)>;

  static void ExpectNone(const KVTString& text, const char* where) {
    EXPECT_EQ(text.GetUTF8String().find(kPassword), std::string::npos) << where;
  }

  // Looks through all that `call` on a new object leaves when `failure` is
  // arranged for it.
  static void Search(const Call& call, const Failure& failure) {
    KVTShareFile share;
    KVTString error;
    try {
      const auto arranged = failure.arrange();
      call(share, error);
    } catch (char* text) {
      ExpectNone(text, "a thrown char*");
    } catch (KVTString* text) {
      ExpectNone(*text, "a thrown KVTString*");
    } catch (const KVTString& text) {
      ExpectNone(text, "a thrown KVTString");
    } catch (const std::exception& exception) {
      ExpectNone(exception.what(), "an exception");
    }
    ExpectNone(error, "the error text");
    for (const auto& entry : share.mMountedShares) {
      ExpectNone(entry.first, "a key of the table");
      ExpectNone(entry.second, "a folder of the table");
    }
  }

  // Takes no memory, which may be short.
  int Mount(const char* source, const char* target, const char* type,
            const void* data) {
    if (strstr(static_cast<const char*>(data), kPassword) != nullptr) {
      ++mGivenToTheKernel;
    }
    for (const char* text : {source, target, type}) {
      EXPECT_EQ(strstr(text, kPassword), nullptr);
    }
    return 0;
  }

  int mGivenToTheKernel = 0;
  const hooks::Scoped<decltype(hooks::onMount)> mMounting{
      hooks::onMount,
      [this](const char* source, const char* target, const char* type,
             unsigned long,
             const void* data) { return Mount(source, target, type, data); }};
  const hooks::Scoped<decltype(hooks::onGetaddrinfo)> mNames{
      hooks::onGetaddrinfo, [](auto...) { return EAI_NONAME; }};
  const hooks::Scoped<decltype(hooks::onSleep)> mSleeping{
      hooks::onSleep, [](unsigned) { return 0u; }};
};

TEST_F(Password, StaysOutOfEveryTextWhicheverStepFails) {
  const TemporaryDirectory local;
  WriteFile(local.Path("present"), "content");
  WriteFile(local.Path("file"), "in the way");
  KVTAuthentication auth("backup", kPassword, "CORP");

  const auto send = [&](const KVTString& from, const KVTString& to) -> Call {
    return [&auth, from, to](KVTShareFile& share, KVTString& error) {
      return share.SendFile(from, &auth, to, &auth, error);
    };
  };
  const std::vector<Call> calls = {
      send(local.Text("present"), "\\\\10.0.0.5\\docs\\a"),
      send("\\\\10.0.0.5\\docs\\a", local.Text("x/fetched")),
      send("//10.0.0.5/docs/a", local.Text("file/fetched")),
      send(local.Text("missing"), "//10.0.0.5/docs/x/a"),
      send("///fs1/docs", local.Text("fetched")),
      send("//10.0.0.5/docs/a", "//10.0.0.6/docs/b"),
      send("//nohost/docs/a", local.Text("fetched")),
      send(local.Text("present"), "//10.0.0.5"),
      [&](KVTShareFile& share, KVTString& error) {
        return share.SendFileUsingMount("//nohost/docs/a", &auth,
                                        local.Text("fetched"), &auth, error);
      },
      [&](KVTShareFile& share, KVTString& error) {
        return share.DeleteShareFile("\\\\10.0.0.5\\docs\\a", &auth, error);
      },
      [&](KVTShareFile& share, KVTString& error) {
        KVTString path;
        const int result =
            share.MountNetworkShare("//10.0.0.5/docs/a", &auth, path, error);
        ExpectNone(path, "the mounted path");
        return result;
      },
  };

  CapturedDescriptor out(STDOUT_FILENO);
  CapturedDescriptor err(STDERR_FILENO);
  for (const Failure& failure : Failures()) {
    SCOPED_TRACE(failure.name);
    for (const Call& call : calls) {
      Search(call, failure);
      // The next call finds an empty /mnt.
      EmptyMnt::TearDown();
      EmptyMnt::SetUp();
    }
  }
  EXPECT_EQ(out.Text().find(kPassword), std::string::npos);
  EXPECT_EQ(err.Text().find(kPassword), std::string::npos);
  EXPECT_GT(mGivenToTheKernel, 100);
}

}  // namespace
