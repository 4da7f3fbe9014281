#include <gmock/gmock.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "smb1_recording.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

class Smb1Options : public Smb1Recording {};

TEST_F(Smb1Options, UploadSetsThemInThisOrder) {
  KVTAuthentication auth("backup", "secret", "CORP");
  const hooks::Scoped onStat(hooks::onStat,
                             [this](const char* path, struct stat* status) {
                               mCurl.Note(std::string("stat ") + path);
                               *status = {};
                               status->st_size = 5;
                               return 0;
                             });
  EXPECT_EQ(Upload(&auth), 0);
  EXPECT_THAT(
      mCurl.Calls(),
      ElementsAre("init", "CURLOPT_URL smb://10.0.0.5/docs/a", "stat /data/a",
                  "CURLOPT_INFILESIZE_LARGE 5", "CURLOPT_USERNAME CORP\\backup",
                  "CURLOPT_PASSWORD secret", "fopen /data/a rb",
                  "CURLOPT_UPLOAD 1",
                  "CURLOPT_READFUNCTION "
                  "KVTShareFileInternal::HandleWindowSMB1Read_CallBack",
                  "CURLOPT_READDATA stream", "CURLOPT_CONNECTTIMEOUT 10",
                  "perform", "CURLINFO_RESPONSE_CODE", "fclose", "cleanup"));
}

TEST_F(Smb1Options, DownloadSetsThemInThisOrder) {
  KVTAuthentication auth("backup", "secret", "CORP");
  EXPECT_EQ(Download(&auth), 0);
  EXPECT_THAT(
      mCurl.Calls(),
      ElementsAre("init", "CURLOPT_URL smb://10.0.0.5/docs/a",
                  "CURLOPT_USERNAME CORP\\backup", "CURLOPT_PASSWORD secret",
                  "fopen /tmp/a wb",
                  "CURLOPT_WRITEFUNCTION "
                  "KVTShareFileInternal::HandleWindowSMB1Write_CallBack",
                  "CURLOPT_WRITEDATA stream", "CURLOPT_CONNECTTIMEOUT 10",
                  "perform", "CURLINFO_RESPONSE_CODE", "fclose", "cleanup"));
}

TEST_F(Smb1Options, ProbeOfAnUploadIsAPlainReadWithoutAStream) {
  KVTAuthentication auth("backup", "secret", "CORP");
  const hooks::Scoped onStat(hooks::onStat,
                             [](const char*, struct stat* status) {
                               *status = {};
                               status->st_size = 5;
                               return 0;
                             });
  EXPECT_EQ(ProbeUpload(&auth), 0);
  EXPECT_THAT(
      mCurl.Calls(),
      ElementsAre("init", "CURLOPT_URL smb://10.0.0.5/docs/a",
                  "CURLOPT_INFILESIZE_LARGE 5", "CURLOPT_USERNAME CORP\\backup",
                  "CURLOPT_PASSWORD secret", "CURLOPT_CONNECTTIMEOUT 10",
                  "perform", "CURLINFO_RESPONSE_CODE", "cleanup"));
}

TEST_F(Smb1Options, ProbeOfADownloadWritesToAFileOfFixedNameAndLeavesItOpen) {
  KVTAuthentication auth("backup", "secret", "CORP");
  EXPECT_EQ(ProbeDownload(&auth), 0);
  EXPECT_THAT(
      mCurl.Calls(),
      ElementsAre("init", "CURLOPT_URL smb://10.0.0.5/docs/a",
                  "CURLOPT_USERNAME CORP\\backup", "CURLOPT_PASSWORD secret",
                  "fopen tempHandleWindowSMB1KVTShareFile wb",
                  "CURLOPT_WRITEFUNCTION "
                  "KVTShareFileInternal::HandleWindowSMB1Write_CallBack",
                  "CURLOPT_WRITEDATA stream", "CURLOPT_CONNECTTIMEOUT 10",
                  "perform", "CURLINFO_RESPONSE_CODE", "cleanup"));
  EXPECT_TRUE(StreamIsOpen());
}

// The size goes in whole, beyond 32 bits too.
TEST_F(Smb1Options, UploadTellsTheSizeThatStatGave) {
  const hooks::Scoped onStat(hooks::onStat,
                             [](const char*, struct stat* status) {
                               status->st_size = 5000000000;
                               return 0;
                             });
  EXPECT_EQ(Upload(), 0);
  EXPECT_THAT(mCurl.Options(), Contains("CURLOPT_INFILESIZE_LARGE 5000000000"));
}

TEST_F(Smb1Options, UploadTakesTheSizeThoughStatFails) {
  const hooks::Scoped onStat(hooks::onStat,
                             [](const char*, struct stat* status) {
                               status->st_size = 7;
                               return -1;
                             });
  EXPECT_EQ(Upload(), 0);
  EXPECT_THAT(mCurl.Options(), Contains("CURLOPT_INFILESIZE_LARGE 7"));
}

TEST_F(Smb1Options, UploadTellsSizeZeroWhenStatGivesNone) {
  const hooks::Scoped onStat(hooks::onStat,
                             [](const char*, struct stat*) { return -1; });
  EXPECT_EQ(Upload(), 0);
  EXPECT_THAT(mCurl.Options(), Contains("CURLOPT_INFILESIZE_LARGE 0"));
}

TEST_F(Smb1Options, RefusedOnesGoUnnoticed) {
  mCurl.setoptResult = CURLE_UNKNOWN_OPTION;
  EXPECT_EQ(Upload(), 0);
  EXPECT_EQ(Download(), 0);
}

TEST_F(Smb1Options, TextGoesInAsUtf8) {
  KVTAuthentication auth("j\xC3\xBCrgen", "p\xC3\xA4ss", "B\xC3\x9CRO");
  EXPECT_EQ(Send("/data/\xC3\xA9", nullptr, "//10.0.0.5/docs/\xC3\xA9", &auth),
            0);
  EXPECT_THAT(mCurl.Calls(),
              Contains("CURLOPT_URL smb://10.0.0.5/docs/\xC3\xA9"));
  EXPECT_THAT(mCurl.Calls(),
              Contains("CURLOPT_USERNAME B\xC3\x9CRO\\j\xC3\xBCrgen"));
  EXPECT_THAT(mCurl.Calls(), Contains("CURLOPT_PASSWORD p\xC3\xA4ss"));
  EXPECT_THAT(mCurl.Calls(), Contains("fopen /data/\xC3\xA9 rb"));
}

// Each combination of what is set, on each road.
struct CredentialCase {
  const char* name;
  const char* domain;
  const char* user;
  const char* password;
  const char* userOption;
  const char* passwordOption;
};

const CredentialCase kCredentialCases[] = {
    {"Nothing", "", "", "", "CURLOPT_USERNAME ", "CURLOPT_PASSWORD "},
    {"Password", "", "", "pw", "CURLOPT_USERNAME ", "CURLOPT_PASSWORD pw"},
    {"User", "", "me", "", "CURLOPT_USERNAME me", "CURLOPT_PASSWORD "},
    {"UserPassword", "", "me", "pw", "CURLOPT_USERNAME me",
     "CURLOPT_PASSWORD pw"},
    {"Domain", "CORP", "", "", "CURLOPT_USERNAME CORP\\", "CURLOPT_PASSWORD "},
    {"DomainPassword", "CORP", "", "pw", "CURLOPT_USERNAME CORP\\",
     "CURLOPT_PASSWORD pw"},
    {"DomainUser", "CORP", "me", "", "CURLOPT_USERNAME CORP\\me",
     "CURLOPT_PASSWORD "},
    {"All", "CORP", "me", "pw", "CURLOPT_USERNAME CORP\\me",
     "CURLOPT_PASSWORD pw"},
};

void PrintTo(const CredentialCase& c, std::ostream* out) { *out << c.name; }

class Smb1Credentials : public Smb1Recording,
                        public testing::WithParamInterface<CredentialCase> {
 protected:
  std::vector<std::string> OptionsOfCredentials() const {
    std::vector<std::string> found;
    for (const std::string& option : mCurl.Options()) {
      if (option.rfind("CURLOPT_USERNAME", 0) == 0 ||
          option.rfind("CURLOPT_PASSWORD", 0) == 0) {
        found.push_back(option);
      }
    }
    return found;
  }

  void ExpectBothOptions() const {
    EXPECT_THAT(OptionsOfCredentials(),
                ElementsAre(GetParam().userOption, GetParam().passwordOption));
  }

  KVTAuthentication mAuth{GetParam().user, GetParam().password,
                          GetParam().domain};
  /// Of the side that is no share: plays no part.
  KVTAuthentication mOther{"other", "other", "OTHER"};
};

TEST_P(Smb1Credentials, OfAnUploadAreTheDestinations) {
  EXPECT_EQ(Send("/data/a", &mOther, "//10.0.0.5/docs/a", &mAuth), 0);
  ExpectBothOptions();
}

TEST_P(Smb1Credentials, OfAnUploadProbeAreTheDestinations) {
  EXPECT_EQ(Send("/data/a", &mOther, "//10.0.0.5/docs/a", &mAuth, false), 0);
  ExpectBothOptions();
}

TEST_P(Smb1Credentials, OfADownloadAreTheSources) {
  EXPECT_EQ(Send("//10.0.0.5/docs/a", &mAuth, "/tmp/a", &mOther), 0);
  ExpectBothOptions();
}

TEST_P(Smb1Credentials, OfADownloadProbeAreTheSources) {
  EXPECT_EQ(Send("//10.0.0.5/docs/a", &mAuth, "/tmp/a", &mOther, false), 0);
  ExpectBothOptions();
}

INSTANTIATE_TEST_SUITE_P(, Smb1Credentials, testing::ValuesIn(kCredentialCases),
                         [](const auto& test) { return test.param.name; });

class Smb1NullCredentials : public Smb1Recording {
 protected:
  void ExpectNoOption() const {
    EXPECT_THAT(mCurl.Options(), Not(Contains(StartsWith("CURLOPT_USERNAME"))));
    EXPECT_THAT(mCurl.Options(), Not(Contains(StartsWith("CURLOPT_PASSWORD"))));
  }

  KVTAuthentication mOther{"other", "other", "OTHER"};
};

TEST_F(Smb1NullCredentials, OfAnUploadSetNoOption) {
  EXPECT_EQ(Send("/data/a", &mOther, "//10.0.0.5/docs/a", nullptr), 0);
  ExpectNoOption();
}

TEST_F(Smb1NullCredentials, OfAnUploadProbeSetNoOption) {
  EXPECT_EQ(Send("/data/a", &mOther, "//10.0.0.5/docs/a", nullptr, false), 0);
  ExpectNoOption();
}

TEST_F(Smb1NullCredentials, OfADownloadSetNoOption) {
  EXPECT_EQ(Send("//10.0.0.5/docs/a", nullptr, "/tmp/a", &mOther), 0);
  ExpectNoOption();
}

TEST_F(Smb1NullCredentials, OfADownloadProbeSetNoOption) {
  EXPECT_EQ(Send("//10.0.0.5/docs/a", nullptr, "/tmp/a", &mOther, false), 0);
  ExpectNoOption();
}

}  // namespace
