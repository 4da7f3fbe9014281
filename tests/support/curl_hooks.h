/// Interposers for libcurl's easy interface: what the library asks of libcurl,
/// in which order, and scripted answers.
///
/// A test program that links kvt_test_curl_hooks defines curl_easy_init,
/// curl_easy_setopt, curl_easy_perform, curl_easy_getinfo, curl_easy_cleanup
/// and curl_global_init itself, so the dynamic linker gives its definitions to
/// the library.  While a CurlRecorder lives, they note each call there;
/// otherwise libcurl answers.
///
///     CurlRecorder curl;
///     curl.performResult = CURLE_COULDNT_CONNECT;
///     EXPECT_EQ(KVTFileUtil::GetFile(url, file, noProxy), 1);
///     EXPECT_THAT(curl.Calls(),
///                 ElementsAre("init", "CURLOPT_URL http://host/x",
///                             "CURLOPT_WRITEFUNCTION write_data",
///                             "CURLOPT_WRITEDATA pointer", "perform",
///                             "CURLINFO_RESPONSE_CODE", "cleanup"));
///     EXPECT_EQ(curl.LiveHandles(), 0);

#ifndef KVT_TESTS_CURL_HOOKS_H
#define KVT_TESTS_CURL_HOOKS_H

#include <curl/curl.h>

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// Notes the calls while it lives; only one may live at a time.  For calls on
/// one thread.
class CurlRecorder {
 public:
  enum class Mode {
    /// Answers as the public members say; nothing reaches libcurl.
    kScripted,
    /// Notes the call and hands it on to libcurl.
    kForwarding
  };

  explicit CurlRecorder(Mode mode = Mode::kScripted);
  ~CurlRecorder();
  CurlRecorder(const CurlRecorder&) = delete;
  CurlRecorder& operator=(const CurlRecorder&) = delete;

  /// @name The script
  /// @{
  /// curl_easy_init gives null (in both modes).
  bool initFails = false;
  CURLcode setoptResult = CURLE_OK;
  CURLcode performResult = CURLE_OK;
  /// Run by curl_easy_perform before it gives `performResult`; may call Deliver
  /// and Fetch, change the script, or throw.
  std::function<void()> onPerform;
  /// What CURLINFO_RESPONSE_CODE stores.  Without a value the variable is left
  /// alone and curl_easy_getinfo fails.
  std::optional<long> responseCode = 0;
  /// @}

  /// The calls so far, in order: "init" (also when it gave null), "perform",
  /// "cleanup", "CURLINFO_RESPONSE_CODE", "curl_global_init", and for
  /// curl_easy_setopt the option and its value:
  ///
  ///     CURLOPT_URL smb://10.0.0.5/docs/a   a text as it is; "null" for null
  ///     CURLOPT_UPLOAD 1                    long and curl_off_t in decimal
  ///     CURLOPT_WRITEFUNCTION write_data    a function by its qualified name,
  ///                                         without its parameters
  ///     CURLOPT_WRITEDATA pointer           any other pointer; the name that
  ///                                         NamePointer gave it, or "null"
  ///
  /// " on a dead handle" follows where the handle is not one that
  /// curl_easy_init gave and curl_easy_cleanup has not yet taken.
  const std::vector<std::string>& Calls() const { return mCalls; }

  /// Those of Calls that set an option.
  std::vector<std::string> Options() const;

  /// Puts a line of the test's own into the list, such as one for an fopen
  /// that comes between.
  void Note(const std::string& line) { mCalls.push_back(line); }

  /// Has `pointer` shown as `name` from now on.
  void NamePointer(const void* pointer, const std::string& name);

  /// How many handles curl_easy_init gave, and how many of them
  /// curl_easy_cleanup has not taken yet.
  int MadeHandles() const { return mMade; }
  int LiveHandles() const { return static_cast<int>(mLive.size()); }

  /// Hands `bytes` to the function of CURLOPT_WRITEFUNCTION with the pointer of
  /// CURLOPT_WRITEDATA, as one item of size 1 each, and returns its result.
  std::size_t Deliver(const std::string& bytes);

  /// Asks the function of CURLOPT_READFUNCTION, with the pointer of
  /// CURLOPT_READDATA, for up to `size` bytes, and returns those it gave.
  std::string Fetch(std::size_t size);

  /// The value last given for an option that takes a pointer or a function;
  /// null when it was never set.
  void* Pointer(CURLoption option) const;

  /// @name What the interposers call
  /// @{
  CURL* Init();
  CURLcode SetLong(CURL* handle, CURLoption option, long value);
  CURLcode SetOffset(CURL* handle, CURLoption option, curl_off_t value);
  CURLcode SetPointer(CURL* handle, CURLoption option, void* value);
  CURLcode Perform(CURL* handle);
  CURLcode GetInfo(CURL* handle, CURLINFO info, void* out);
  void Cleanup(CURL* handle);
  /// @}

 private:
  std::string OnHandle(CURL* handle) const;

  const Mode mMode;
  std::vector<std::string> mCalls;
  std::set<CURL*> mLive;
  int mMade = 0;
  std::map<const void*, std::string> mNames;
  std::map<CURLoption, void*> mPointers;
};

#endif  // KVT_TESTS_CURL_HOOKS_H
