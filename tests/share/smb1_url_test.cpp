#include <gmock/gmock.h>

#include <iterator>
#include <random>
#include <string>

#include "random_seed.h"
#include "smb1_recording.h"

namespace {

struct UrlCase {
  const char* name;
  const char* path;
  const char* url;
};

void PrintTo(const UrlCase& c, std::ostream* out) { *out << c.name; }

// An upload's URL is the destination's own text.
const UrlCase kUploadUrls[] = {
    {"Slashes", "//host/share/x", "smb://host/share/x"},
    {"Backslashes", "\\\\host\\share\\x", "smb://host/share/x"},
    {"MixedSeparators", "\\\\host/share\\d/x", "smb://host/share/d/x"},
    {"SchemeAndSlashes", "smb://host/share/x", "smb://host/share/x"},
    {"SchemeAndBackslashes", "smb:\\\\host\\share\\x", "smb://host/share/x"},
    {"SchemeOnly", "smb:host/share/x", "smb:host/share/x"},
    {"SchemeAndOneSlash", "smb:/host/share/x", "smb:/host/share/x"},
    {"OtherScheme", "cifs://host/share/x", "smb://cifs://host/share/x"},
    {"OtherSchemeWithoutSlashes", "cifs:host/share/x",
     "smb://cifs:host/share/x"},
    {"ThreeSlashes", "///host/share/x", "smb:///host/share/x"},
    {"NameIsNotResolved", "//localhost/share/x", "smb://localhost/share/x"},
    {"Blank", "//host/share/a b", "smb://host/share/a b"},
    {"HashAndAmpersand", "//host/share/a#b&c", "smb://host/share/a#b&c"},
    {"Ipv6InBrackets", "//[::1]/share/x", "smb://[::1]/share/x"},
    {"Ipv6WithoutBrackets", "//::1/share/x", "smb://::1/share/x"},
    {"NoShare", "//host", "smb://host"},
    {"TrailingBackslash", "\\\\host\\share\\", "smb://host/share/"},
};

class Smb1UploadUrl : public Smb1Recording,
                      public testing::WithParamInterface<UrlCase> {};

TEST_P(Smb1UploadUrl, IsTheTextOfTheDestination) {
  EXPECT_EQ(Upload(nullptr, GetParam().path), 0);
  ASSERT_GE(mCurl.Calls().size(), 2u);
  EXPECT_EQ(mCurl.Calls()[1], std::string("CURLOPT_URL ") + GetParam().url);
}

INSTANTIATE_TEST_SUITE_P(, Smb1UploadUrl, testing::ValuesIn(kUploadUrls),
                         [](const auto& test) { return test.param.name; });

// A download's URL is put together from the pieces of the source.
const UrlCase kDownloadUrls[] = {
    {"Slashes", "//10.0.0.5/share/x", "smb://10.0.0.5/share/x"},
    {"Backslashes", "\\\\10.0.0.5\\share\\d\\x", "smb://10.0.0.5/share/d/x"},
    {"Scheme", "smb://10.0.0.5/share/x", "smb://10.0.0.5/share/x"},
    {"SchemeOnly", "smb:10.0.0.5/share/x", "smb://10.0.0.5/share/x"},
    {"Ipv6InBrackets", "//[::1]/share/x", "smb://[::1]/share/x"},
    {"Ipv6WithoutBrackets", "\\\\::1\\share\\x", "smb://[::1]/share/x"},
    {"Blank", "//10.0.0.5/share/a b", "smb://10.0.0.5/share/a b"},
    {"NoFile", "//10.0.0.5/share", "smb://10.0.0.5/share/"},
    {"HostOfTwoLetters", "//ab/share/x", "smb:///share/x"},
    {"Refused", "///x", "smb:////"},
};

class Smb1DownloadUrl : public Smb1Recording,
                        public testing::WithParamInterface<UrlCase> {};

TEST_P(Smb1DownloadUrl, IsMadeOfThePiecesOfTheSource) {
  EXPECT_EQ(Download(nullptr, GetParam().path), 0);
  ASSERT_GE(mCurl.Calls().size(), 2u);
  EXPECT_EQ(mCurl.Calls()[1], std::string("CURLOPT_URL ") + GetParam().url);
}

INSTANTIATE_TEST_SUITE_P(, Smb1DownloadUrl, testing::ValuesIn(kDownloadUrls),
                         [](const auto& test) { return test.param.name; });

using Smb1Url = Smb1Recording;

TEST_F(Smb1Url, OfADownloadHoldsTheAddressInPlaceOfTheName) {
  const hooks::Scoped onGetaddrinfo(
      hooks::onGetaddrinfo, [](const char* node, const char*,
                               const addrinfo* hints, addrinfo** result) {
        EXPECT_STREQ(node, "fileserver");
        return hooks::RealGetaddrinfo("10.9.8.7", nullptr, hints, result);
      });
  EXPECT_EQ(Download(nullptr, "\\\\fileserver\\docs\\a"), 0);
  EXPECT_EQ(mCurl.Calls()[1], "CURLOPT_URL smb://10.9.8.7/docs/a");
}

// What goes into a URL, by the plainest means: byte for byte.
std::string UploadUrlModel(const std::string& destination) {
  std::string url;
  for (const char byte : destination) url += byte == '\\' ? '/' : byte;
  if (url.substr(0, 4) == "smb:") return url;
  return (url.substr(0, 2) == "//" ? "smb:" : "smb://") + url;
}

TEST_F(Smb1Url, OfAnUploadToRandomTextAgreesWithTheModel) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  const char* const starts[] = {"smb:", "cifs:", "\\\\", "//"};
  const char* const parts[] = {"\\", "/", "smb:", "//", ":",
                               "[",  "]", "a",    " ",  "\xC3\xA9"};
  for (int i = 0; i < 2000; ++i) {
    std::string destination = starts[random() % std::size(starts)];
    for (unsigned count = random() % 12; count > 0; --count) {
      destination += parts[random() % std::size(parts)];
    }
    if (destination.size() <= 2) continue;
    const std::size_t before = mCurl.Calls().size();
    ASSERT_EQ(Upload(nullptr, destination), 0) << destination;
    ASSERT_GT(mCurl.Calls().size(), before + 1);
    ASSERT_EQ(mCurl.Calls()[before + 1],
              "CURLOPT_URL " + UploadUrlModel(destination));
  }
}

}  // namespace
