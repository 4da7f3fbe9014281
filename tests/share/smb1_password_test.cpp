// The password goes to libcurl and nowhere else.

#include <gmock/gmock.h>
#include <unistd.h>

#include <exception>
#include <functional>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "allowed_leaks.h"
#include "captured_descriptor.h"
#include "smb1_recording.h"
#include "temporary_directory.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr char kPassword[] = "correct-horse-battery";

class Smb1Password : public Smb1Recording {
 protected:
  void ExpectNone(const KVTString& text) {
    EXPECT_THAT(text.GetUTF8String(), Not(HasSubstr(kPassword)));
  }

  // One transfer with what is arranged, and a look at all that it leaves.
  void Search(const std::string& source, const std::string& destination,
              bool transferFile) {
    mError = KVTString();
    try {
      Send(source, &mAuth, destination, &mAuth, transferFile);
    } catch (char* text) {
      ExpectNone(text);
    } catch (KVTString* text) {
      ExpectNone(*text);
    } catch (const std::exception& exception) {
      // From the copies that the call itself makes.
      ExpectNone(exception.what());
    }
    ExpectNone(mError);
    EXPECT_THAT(mContent, Not(HasSubstr(kPassword)));
    CloseStream();
  }

  void SearchAllRoads() {
    for (const bool transferFile : {true, false}) {
      Search("/data/a", "//10.0.0.5/docs/a", transferFile);
      Search("//10.0.0.5/docs/a", mDirectory.Path("b/a"), transferFile);
      Search("//fileserver/docs/a", mDirectory.Path("a"), transferFile);
      Search("//10.0.0.5/docs/a", mDirectory.Path("file/sub/a"), transferFile);
      Search("//10.0.0.5/docs/a", "//10.0.0.6/docs/a", transferFile);
      Search("/data/a", "/data/b", transferFile);
    }
  }

  const TemporaryDirectory mDirectory;
  KVTAuthentication mAuth{"backup", kPassword, "CORP"};
};

TEST_F(Smb1Password, StaysOutOfEveryTextWhicheverStepFails) {
  // Callers rely on handle and stream staying behind after an exception.
  const AllowedLeaks handlesAndStreams;
  WriteFile(mDirectory.Path("file"), "in the way");
  static char narrow[] = "thrown";
  KVTString wide("thrown");
  const std::vector<std::pair<const char*, std::function<void()>>> failures = {
      {"nothing fails", [] {}},
      {"libcurl gives no handle", [&] { mCurl.initFails = true; }},
      {"options are refused",
       [&] { mCurl.setoptResult = CURLE_UNKNOWN_OPTION; }},
      {"the file does not open", [&] { mOpenFails = true; }},
      {"the file does not close", [&] { mCloseFails = true; }},
      {"a char* is thrown",
       [&] { mCurl.onPerform = [] { throw static_cast<char*>(narrow); }; }},
      {"a KVTString* is thrown",
       [&] { mCurl.onPerform = [&wide] { throw &wide; }; }},
      {"memory runs out",
       [&] { mCurl.onPerform = [] { throw std::bad_alloc(); }; }},
  };

  CapturedDescriptor out(STDOUT_FILENO);
  CapturedDescriptor err(STDERR_FILENO);
  for (const auto& [name, arrange] : failures) {
    SCOPED_TRACE(name);
    arrange();
    SearchAllRoads();
    mCurl.initFails = false;
    mCurl.setoptResult = CURLE_OK;
    mCurl.onPerform = nullptr;
    mOpenFails = false;
    mCloseFails = false;
  }
  for (int code = 1; code <= CURL_LAST; ++code) {
    SCOPED_TRACE(code);
    mCurl.performResult = static_cast<CURLcode>(code);
    Search("/data/a", "//10.0.0.5/docs/a", true);
    Search("//10.0.0.5/docs/a", mDirectory.Path("a"), true);
  }
  EXPECT_THAT(out.Text(), Not(HasSubstr(kPassword)));
  EXPECT_THAT(err.Text(), Not(HasSubstr(kPassword)));
  int givenToLibcurl = 0;
  for (const std::string& call : mCurl.Calls()) {
    if (call.find(kPassword) == std::string::npos) continue;
    EXPECT_EQ(call, std::string("CURLOPT_PASSWORD ") + kPassword);
    ++givenToLibcurl;
  }
  // Twice for each code of a failure alone.
  EXPECT_GT(givenToLibcurl, 2 * CURL_LAST);
}

}  // namespace
