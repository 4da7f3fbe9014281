#include <gmock/gmock.h>

#include <algorithm>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "smb1_recording.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// The end of a transfer

class Smb1End : public Smb1Recording {};

std::string LineFor(int code) {
  return "Curl return code  " + std::to_string(code) +
         " , curl response code 0";
}

TEST_F(Smb1End, EveryFailureOfLibcurlIsAResultAndALine) {
  for (int code = 1; code <= CURL_LAST; ++code) {
    mCurl.performResult = static_cast<CURLcode>(code);
    const int expected = code == 67 ? 6 : 1;
    const KVTString line = FromUtf8(LineFor(code));
    mError = "earlier";
    EXPECT_EQ(Upload(), expected) << code;
    EXPECT_EQ(mError, line);
    mError = "earlier";
    EXPECT_EQ(Download(), expected) << code;
    EXPECT_EQ(mError, line);
    mError = "earlier";
    EXPECT_EQ(ProbeUpload(), expected) << code;
    EXPECT_EQ(mError, line);
    EXPECT_EQ(ProbeDownload(), expected) << code;
    EXPECT_FALSE(StreamIsOpen());
    EXPECT_EQ(mCurl.LiveHandles(), 0);
  }
  EXPECT_THAT(mCurl.Calls(), Not(Contains(HasSubstr("dead handle"))));
}

TEST_F(Smb1End, SuccessReplacesTheTextByTheLineToo) {
  mError = "earlier";
  EXPECT_EQ(Upload(), 0);
  EXPECT_EQ(mError, "Curl return code  0 , curl response code 0");
  mError = "earlier";
  EXPECT_EQ(Download(), 0);
  EXPECT_EQ(mError, "Curl return code  0 , curl response code 0");
  mError = "earlier";
  EXPECT_EQ(ProbeUpload(), 0);
  EXPECT_EQ(mError, "Curl return code  0 , curl response code 0");
  mError = "earlier";
  EXPECT_EQ(ProbeDownload(), 0);
  EXPECT_EQ(mError, "Curl return code  0 , curl response code 0");
}

TEST_F(Smb1End, LineHoldsTheResponseCode) {
  mCurl.responseCode = 226;
  EXPECT_EQ(Upload(), 0);
  EXPECT_EQ(mError, "Curl return code  0 , curl response code 226");
  mCurl.responseCode = -1;
  EXPECT_EQ(Upload(), 0);
  EXPECT_EQ(mError, "Curl return code  0 , curl response code -1");
  mCurl.responseCode = 3000000000;
  EXPECT_EQ(Upload(), 0);
  EXPECT_EQ(mError, "Curl return code  0 , curl response code 3000000000");
}

TEST_F(Smb1End, ResponseCodeIsZeroWhereLibcurlGivesNone) {
  mCurl.responseCode.reset();
  EXPECT_EQ(Download(), 0);
  EXPECT_EQ(mError, "Curl return code  0 , curl response code 0");
}

TEST_F(Smb1End, DeniedLoginClosesTheStreamThenReleasesTheHandle) {
  mCurl.performResult = CURLE_LOGIN_DENIED;
  EXPECT_EQ(Upload(), 6);
  EXPECT_EQ(mError, "Curl return code  67 , curl response code 0");
  ASSERT_GE(mCurl.Calls().size(), 2u);
  EXPECT_THAT(
      std::vector<std::string>(mCurl.Calls().end() - 4, mCurl.Calls().end()),
      ElementsAre("perform", "CURLINFO_RESPONSE_CODE", "fclose", "cleanup"));
}

TEST_F(Smb1End, OtherFailureClosesTheStreamThenReleasesTheHandle) {
  mCurl.performResult = CURLE_REMOTE_FILE_NOT_FOUND;
  EXPECT_EQ(ProbeDownload(), 1);
  EXPECT_THAT(
      std::vector<std::string>(mCurl.Calls().end() - 4, mCurl.Calls().end()),
      ElementsAre("perform", "CURLINFO_RESPONSE_CODE", "fclose", "cleanup"));
}

TEST_F(Smb1End, FailingCloseFailsTheTransferUnderTheLineOfSuccess) {
  mCloseFails = true;
  EXPECT_EQ(Download(), 1);
  EXPECT_EQ(mError, "Curl return code  0 , curl response code 0");
  EXPECT_EQ(mCurl.Calls().back(), "cleanup");
  EXPECT_EQ(Upload(), 1);
  EXPECT_EQ(mError, "Curl return code  0 , curl response code 0");
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(Smb1End, FailingCloseAfterAFailureChangesNothing) {
  mCloseFails = true;
  mCurl.performResult = CURLE_LOGIN_DENIED;
  EXPECT_EQ(Download(), 6);
  mCurl.performResult = CURLE_RECV_ERROR;
  EXPECT_EQ(Download(), 1);
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(Smb1End, StreamOfASuccessfulProbeIsNotClosed) {
  mCloseFails = true;
  EXPECT_EQ(ProbeDownload(), 0);
  EXPECT_TRUE(StreamIsOpen());
  EXPECT_EQ(mCurl.LiveHandles(), 0);
}

TEST_F(Smb1End, OneAttemptIsAll) {
  mCurl.performResult = CURLE_COULDNT_CONNECT;
  EXPECT_EQ(Upload(), 1);
  EXPECT_EQ(mCurl.MadeHandles(), 1);
  EXPECT_EQ(std::count(mCurl.Calls().begin(), mCurl.Calls().end(), "perform"),
            1);
}

// What is thrown below

class Smb1Thrown : public Smb1Recording {
 protected:
  void ExpectAllLeftBehind() const {
    EXPECT_TRUE(StreamIsOpen());
    EXPECT_EQ(mCurl.LiveHandles(), 1);
  }

  template <class Value>
  void ThrowWhilePerforming(Value value) {
    mCurl.onPerform = [value] { throw value; };
  }
};

TEST_F(Smb1Thrown, CharPointerGoesOnUnchanged) {
  char text[] = "thrown";
  ThrowWhilePerforming<char*>(text);
  try {
    Upload();
    FAIL() << "nothing was thrown";
  } catch (char* caught) {
    EXPECT_EQ(caught, text);
  }
  EXPECT_TRUE(mError.empty());
  ExpectAllLeftBehind();
}

TEST_F(Smb1Thrown, StringPointerGoesOnUnchanged) {
  KVTString text("thrown");
  ThrowWhilePerforming(&text);
  try {
    Download();
    FAIL() << "nothing was thrown";
  } catch (KVTString* caught) {
    EXPECT_EQ(caught, &text);
  }
  EXPECT_TRUE(mError.empty());
  ExpectAllLeftBehind();
}

TEST_F(Smb1Thrown, AnythingElseIsAResultAndAText) {
  ThrowWhilePerforming(KVTString("by value"));
  EXPECT_EQ(Upload(), 1);
  EXPECT_EQ(mError, "Failed to send file using SMB1 Share");
  ExpectAllLeftBehind();
}

TEST_F(Smb1Thrown, TextThatIsThereStays) {
  ThrowWhilePerforming(std::bad_alloc());
  mError = "earlier";
  EXPECT_EQ(Download(), 1);
  EXPECT_EQ(mError, "earlier");
  ExpectAllLeftBehind();
}

TEST_F(Smb1Thrown, PointerToConstantTextIsAnythingElse) {
  ThrowWhilePerforming<const char*>("constant");
  EXPECT_EQ(Upload(), 1);
  EXPECT_EQ(mError, "Failed to send file using SMB1 Share");
}

TEST_F(Smb1Thrown, PairOfTextAndCodeIsAnythingElse) {
  ThrowWhilePerforming(
      std::make_pair(KVTString("text"), KVTErrorCodeAccessDenied));
  EXPECT_EQ(Upload(), 1);
  EXPECT_EQ(mError, "Failed to send file using SMB1 Share");
}

TEST_F(Smb1Thrown, FailureToParseTheSourceIsAResultAndAText) {
  const hooks::Scoped onGetaddrinfo(
      hooks::onGetaddrinfo,
      [](const char*, const char*, const addrinfo*, addrinfo**) -> int {
        throw std::bad_alloc();
      });
  EXPECT_EQ(Download(nullptr, "//fileserver/docs/a"), 1);
  EXPECT_EQ(mError, "Failed to send file using SMB1 Share");
  EXPECT_THAT(mCurl.Calls(), ElementsAre("init"));
  EXPECT_EQ(mCurl.LiveHandles(), 1);
}

TEST_F(Smb1Thrown, CharPointerOfTheParserGoesOnUnchanged) {
  static char text[] = "thrown";
  const hooks::Scoped onGetaddrinfo(
      hooks::onGetaddrinfo,
      [](const char*, const char*, const addrinfo*, addrinfo**) -> int {
        throw static_cast<char*>(text);
      });
  try {
    Download(nullptr, "//fileserver/docs/a");
    FAIL() << "nothing was thrown";
  } catch (char* caught) {
    EXPECT_EQ(caught, text);
  }
  EXPECT_EQ(mCurl.LiveHandles(), 1);
}

}  // namespace
