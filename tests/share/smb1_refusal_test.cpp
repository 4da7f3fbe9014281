#include <curl/curl.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "allowed_leaks.h"
#include "file_capabilities.h"
#include "hooks.h"
#include "smb1_server.h"

namespace {

// Whom the server lets in

struct LoginCase {
  const char* name;
  const char* domain;
  const char* user;
  const char* password;
  int result;
  const char* line;
};

void PrintTo(const LoginCase& c, std::ostream* out) { *out << c.name; }

constexpr const char* kLoginDeniedLine =
    "Curl return code  67 , curl response code 0";
constexpr const char* kAccessDeniedLine =
    "Curl return code  9 , curl response code 0";

constexpr const char* kNotFoundLine =
    "Curl return code  78 , curl response code 0";

const LoginCase kLogins[] = {
    {"UserAndPassword", "", "root", "secret", 0, kDoneLine},
    {"Domain", "KVTTEST", "root", "secret", 0, kDoneLine},
    {"DomainInTheUserName", "", "KVTTEST\\root", "secret", 0, kDoneLine},
    {"WrongPassword", "", "root", "wrong", 6, kLoginDeniedLine},
    {"WrongPasswordOfADomain", "KVTTEST", "root", "wrong", 6, kLoginDeniedLine},
    {"NoPassword", "", "root", "", 6, kLoginDeniedLine},
    {"UnknownUser", "", "nosuchuser", "secret", 6, kLoginDeniedLine},
    // Without a user the server takes the login for that of a guest, who may
    // not enter the share.
    {"NothingSet", "", "", "", 1, kAccessDeniedLine},
    {"DomainWithoutUser", "KVTTEST", "", "", 1, kAccessDeniedLine},
    {"PasswordWithoutUser", "", "", "secret", 1, kAccessDeniedLine},
};

class Smb1Login : public Smb1Server,
                  public testing::WithParamInterface<LoginCase> {
 protected:
  KVTAuthentication mLogin{GetParam().user, GetParam().password,
                           GetParam().domain};
};

TEST_P(Smb1Login, DecidesAnUpload) {
  std::filesystem::remove(Server().Docs("login"));
  WriteFile(Local("a"), "login");
  EXPECT_EQ(Send(Local("a"), "//127.0.0.1/docs/login", &mLogin),
            GetParam().result);
  EXPECT_EQ(mError, GetParam().line);
  EXPECT_EQ(std::filesystem::exists(Server().Docs("login")),
            GetParam().result == 0);
}

// A file is there in any case: it is opened before the login.
TEST_P(Smb1Login, DecidesADownload) {
  WriteFile(Server().Docs("login"), "login");
  EXPECT_EQ(Send("//127.0.0.1/docs/login", Local("a"), &mLogin),
            GetParam().result);
  EXPECT_EQ(mError, GetParam().line);
  EXPECT_EQ(ReadFile(Local("a")), GetParam().result == 0 ? "login" : "");
}

INSTANTIATE_TEST_SUITE_P(, Smb1Login, testing::ValuesIn(kLogins),
                         [](const auto& test) { return test.param.name; });

class Smb1Refusal : public Smb1Server {};

// libcurl itself refuses to go on without a user name.
TEST_F(Smb1Refusal, NoCredentialsAtAllCountAsADeniedLogin) {
  WriteFile(Server().Docs("login"), "login");
  WriteFile(Local("a"), "login");
  EXPECT_EQ(Send(Local("a"), "//127.0.0.1/docs/login", nullptr), 6);
  EXPECT_EQ(mError, kLoginDeniedLine);
  EXPECT_EQ(Send("//127.0.0.1/docs/login", Local("b"), nullptr), 6);
  EXPECT_EQ(mError, kLoginDeniedLine);
}

// What the share does not have or allow

TEST_F(Smb1Refusal, MissingRemoteFileLeavesAnEmptyLocalOne) {
  WriteFile(Local("a"), "old");
  EXPECT_EQ(Download("//127.0.0.1/docs/missing", Local("a")), 1);
  EXPECT_EQ(mError, kNotFoundLine);
  EXPECT_EQ(ReadFile(Local("a")), "");
}

TEST_F(Smb1Refusal, MissingRemoteFolderFails) {
  WriteFile(Local("a"), "a");
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/docs/nofolder/a"), 1);
  EXPECT_EQ(mError, kNotFoundLine);
  EXPECT_FALSE(std::filesystem::exists(Server().Docs("nofolder")));
}

TEST_F(Smb1Refusal, MissingShareFails) {
  WriteFile(Local("a"), "a");
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/noshare/a"), 1);
  EXPECT_EQ(mError, kNotFoundLine);
  EXPECT_EQ(Download("//127.0.0.1/noshare/a", Local("b")), 1);
  EXPECT_EQ(mError, kNotFoundLine);
}

TEST_F(Smb1Refusal, ReadOnlyShareTakesNoUpload) {
  WriteFile(Server().Readonly("a"), "old");
  WriteFile(Local("a"), "new");
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/readonly/a"), 1);
  EXPECT_EQ(mError, kAccessDeniedLine);
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/readonly/b"), 1);
  EXPECT_EQ(mError, kAccessDeniedLine);
  EXPECT_EQ(ReadFile(Server().Readonly("a")), "old");
  EXPECT_FALSE(std::filesystem::exists(Server().Readonly("b")));
}

TEST_F(Smb1Refusal, ReadOnlyShareGivesADownload) {
  WriteFile(Server().Readonly("a"), "old");
  EXPECT_EQ(Download("//127.0.0.1/readonly/a", Local("a")), 0);
  EXPECT_EQ(ReadFile(Local("a")), "old");
}

TEST_F(Smb1Refusal, FolderOfTheShareIsNoFile) {
  std::filesystem::create_directory(Server().Docs("folder"));
  WriteFile(Local("a"), "a");
  EXPECT_EQ(Download("//127.0.0.1/docs/folder", Local("b")), 1);
  EXPECT_EQ(mError, "Curl return code  56 , curl response code 0");
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/docs/folder"), 1);
  EXPECT_EQ(mError, kNotFoundLine);
}

// What the local side does not have or allow

TEST_F(Smb1Refusal, MissingLocalFileIsNamed) {
  EXPECT_EQ(Upload(Local("missing"), "//127.0.0.1/docs/unsent"), 1);
  EXPECT_EQ(mError, "Unable to open file " + mDirectory.Text("missing"));
  EXPECT_FALSE(std::filesystem::exists(Server().Docs("unsent")));
}

TEST_F(Smb1Refusal, UnreadableLocalFileIsNamed) {
  WriteFile(Local("secret"), "secret");
  ASSERT_EQ(chmod(Local("secret").c_str(), 0), 0);
  const WithoutFileCapabilities asAnyone;
  EXPECT_EQ(Upload(Local("secret"), "//127.0.0.1/docs/unsent"), 1);
  EXPECT_EQ(mError, "Unable to open file " + mDirectory.Text("secret"));
  EXPECT_FALSE(std::filesystem::exists(Server().Docs("unsent")));
}

constexpr int kAskedInVain = 1000;

// Lets fread come back empty kAskedInVain times; then the transfer is called
// off.
class EmptyReads {
 public:
  EmptyReads()
      : mOnFread(hooks::onFread, [this](void*, size_t, size_t, FILE*) {
          return ++mTimes < kAskedInVain ? size_t{0} : CURL_READFUNC_ABORT;
        }) {}

  int TimesAsked() const { return mTimes; }

 private:
  int mTimes = 0;
  hooks::Scoped<decltype(hooks::onFread)> mOnFread;
};

// libcurl 7.88 waits for as many bytes as it was told of: without being called
// off the transfer would never end.
TEST_F(Smb1Refusal, FileThatIsShorterThanItsSizeIsReadOnAndOn) {
  WriteFile(Local("a"), "1234567");
  const EmptyReads reads;
  EXPECT_EQ(Upload(Local("a"), "//127.0.0.1/docs/shorter"), 1);
  EXPECT_EQ(mError, "Curl return code  42 , curl response code 0");
  EXPECT_EQ(reads.TimesAsked(), kAskedInVain);
  EXPECT_EQ(ReadFile(Server().Docs("shorter")), "");
}

// fopen takes a folder for reading, and no byte comes.
TEST_F(Smb1Refusal, LocalFolderIsReadOnAndOn) {
  const EmptyReads reads;
  EXPECT_EQ(Upload(mDirectory.Path(), "//127.0.0.1/docs/fromfolder"), 1);
  EXPECT_EQ(mError, "Curl return code  42 , curl response code 0");
  EXPECT_EQ(reads.TimesAsked(), kAskedInVain);
}

TEST_F(Smb1Refusal, FileThatIsLongerThanItsSizeIsCut) {
  WriteFile(Local("a"), "1234567");
  const std::string local = Local("a");
  const hooks::Scoped onStat(hooks::onStat,
                             [&](const char* path, struct stat* status) {
                               const int result = hooks::RealStat(path, status);
                               if (path == local) status->st_size = 3;
                               return result;
                             });
  EXPECT_EQ(Upload(local, "//127.0.0.1/docs/longer"), 0);
  EXPECT_EQ(ReadFile(Server().Docs("longer")), "123");
}

TEST_F(Smb1Refusal, FileInAnUnwritableLocalFolderIsNamed) {
  WriteFile(Server().Docs("wanted"), "wanted");
  std::filesystem::create_directory(Local("closed"));
  ASSERT_EQ(chmod(Local("closed").c_str(), 0500), 0);
  const WithoutFileCapabilities asAnyone;
  EXPECT_EQ(Download("//127.0.0.1/docs/wanted", Local("closed/a")), 1);
  EXPECT_EQ(mError, "Unable to open file " + mDirectory.Text("closed/a"));
}

TEST_F(Smb1Refusal, FileBelowAnUnwritableLocalFolderIsNamed) {
  WriteFile(Server().Docs("wanted"), "wanted");
  std::filesystem::create_directory(Local("closed"));
  ASSERT_EQ(chmod(Local("closed").c_str(), 0500), 0);
  const WithoutFileCapabilities asAnyone;
  // Callers rely on the handle staying behind.
  const AllowedLeaks handle;
  EXPECT_EQ(Download("//127.0.0.1/docs/wanted", Local("closed/sub/a")), 1);
  EXPECT_EQ(mError, "Unable to create parent directory for " +
                        mDirectory.Text("closed/sub/a"));
}

// Whichever request for memory is refused, the call ends with a result.
TEST_F(Smb1Refusal, RefusedMemoryIsAResultAndAText) {
  WriteFile(Local("a"), "a");
  const KVTString local = mDirectory.Text("a");
  const KVTString remote = "//127.0.0.1/docs/memory";
  KVTShareFile share;
  std::size_t refusals = 0;
  for (bool done = false; !done; ++refusals) {
    KVTString error;
    int result = -1;
    {
      // Callers rely on handle and stream staying behind after an exception.
      const AllowedLeaks handleAndStream;
      const hooks::FailingAllocator allocator(refusals, 0, 1);
      result = share.SendFileOnWindowSMB1(local, nullptr, true, remote, &mAuth,
                                          error);
      done = allocator.Refused() == 0;
    }
    EXPECT_EQ(result, done ? 0 : 1) << "refusal " << refusals;
    EXPECT_EQ(error, done ? kDoneLine : "Failed to send file using SMB1 Share");
  }
  EXPECT_GT(refusals, 10);
}

}  // namespace
