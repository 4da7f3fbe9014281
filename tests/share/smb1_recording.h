/// What one smb:// transfer asks of libcurl and of stdio, in order.

#ifndef KVT_TESTS_SMB1_RECORDING_H
#define KVT_TESTS_SMB1_RECORDING_H

#include <gmock/gmock.h>
#include <stdio.h>

#include <memory>
#include <string>
#include <vector>

#include "KVTShareFile.h"
#include "curl_hooks.h"
#include "hooks.h"
#include "test_strings.h"

/// Among the calls of `mCurl` stand "fopen PATH MODE" and "fclose" for the
/// local file, whose stream lies in memory and is shown as "stream".
class Smb1Recording : public testing::Test {
 protected:
  Smb1Recording()
      : mOnFopen(hooks::onFopen, [this](const char* path, const char* mode) {
          return Open(path, mode);
        }) {}

  ~Smb1Recording() override { CloseStream(); }

  int Send(const std::string& source, KVTAuthentication* sourceAuth,
           const std::string& destination, KVTAuthentication* destinationAuth,
           bool transferFile = true) {
    KVTShareFile share;
    return share.SendFileOnWindowSMB1(FromUtf8(source), sourceAuth,
                                      transferFile, FromUtf8(destination),
                                      destinationAuth, mError);
  }

  /// From the local file "/data/a" to `destination`.
  int Upload(KVTAuthentication* auth = nullptr,
             const std::string& destination = "//10.0.0.5/docs/a") {
    return Send("/data/a", nullptr, destination, auth);
  }

  /// From `source` to the local file "/tmp/a", whose parent exists.
  int Download(KVTAuthentication* auth = nullptr,
               const std::string& source = "//10.0.0.5/docs/a") {
    return Send(source, auth, "/tmp/a", nullptr);
  }

  int ProbeUpload(KVTAuthentication* auth = nullptr) {
    return Send("/data/a", nullptr, "//10.0.0.5/docs/a", auth, false);
  }

  int ProbeDownload(KVTAuthentication* auth = nullptr) {
    return Send("//10.0.0.5/docs/a", auth, "/tmp/a", nullptr, false);
  }

  /// Whether the library has opened a stream and not closed it.
  bool StreamIsOpen() const { return mStream != nullptr; }

  void CloseStream() {
    if (mStream != nullptr) fclose(mStream);
  }

  CurlRecorder mCurl;
  KVTString mError;
  /// What can be read from the local file, and what was written to it.
  std::string mContent;
  bool mOpenFails = false;
  bool mCloseFails = false;

 private:
  FILE* Open(const std::string& path, const std::string& mode) {
    mCurl.Note("fopen " + path + " " + mode);
    if (mOpenFails) return nullptr;
    cookie_io_functions_t functions = {};
    functions.read = [](void* self, char* out, size_t size) -> ssize_t {
      std::string& content = static_cast<Smb1Recording*>(self)->mContent;
      const size_t count = content.copy(out, size);
      content.erase(0, count);
      return static_cast<ssize_t>(count);
    };
    functions.write = [](void* self, const char* bytes, size_t size) {
      static_cast<Smb1Recording*>(self)->mContent.append(bytes, size);
      return static_cast<ssize_t>(size);
    };
    functions.close = [](void* self) {
      Smb1Recording& recording = *static_cast<Smb1Recording*>(self);
      recording.mCurl.Note("fclose");
      recording.mStream = nullptr;
      return recording.mCloseFails ? -1 : 0;
    };
    mStream = fopencookie(this, mode.c_str(), functions);
    mCurl.NamePointer(mStream, "stream");
    return mStream;
  }

  FILE* mStream = nullptr;
  hooks::Scoped<decltype(hooks::onFopen)> mOnFopen;
};

#endif  // KVT_TESTS_SMB1_RECORDING_H
