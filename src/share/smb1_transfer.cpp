#include <curl/curl.h>
#include <sys/stat.h>

#include <string>

#include "KVTShareFile.h"
#include "share/thrown_texts.h"

namespace {

// Limits the connection only: callers rely on a transfer taking as long as it
// takes.
constexpr long kConnectTimeoutSeconds = 10;

// What a probe of a share receives.  Callers rely on the relative name: the
// file lies in the process's working directory.
constexpr const char* kProbeFile = "tempHandleWindowSMB1KVTShareFile";

bool BeginsWith(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

// The smb:// form of the destination of an upload.  Callers rely on nothing
// being percent-encoded and on an IPv6 address staying as they wrote it: they
// give the brackets.
KVTString MakeUploadUrl(const KVTString& destination) {
  KVTString url(destination);
  url.ReplaceAll("\\", "/");
  const std::string bytes = url.GetUTF8String();
  if (BeginsWith(bytes, "smb:")) return url;
  if (BeginsWith(bytes, "//")) return "smb:" + url;
  return "smb://" + url;
}

// Callers rely on both options being set once there are credentials, empty ones
// too, and on neither being set without.
void SetCredentials(CURL* handle, KVTAuthentication* auth) {
  if (auth == nullptr) return;
  KVTString user;
  if (auth->IsDomainSet()) user = auth->GetDomain() + "\\";
  if (auth->IsUserSet()) user += auth->GetUser();
  KVTString password;
  if (auth->IsPasswordSet()) password = auth->GetPassword();
  curl_easy_setopt(handle, CURLOPT_USERNAME, user.GetUTF8String().c_str());
  curl_easy_setopt(handle, CURLOPT_PASSWORD, password.GetUTF8String().c_str());
}

// Releases the handle and tells in `error` which file would not open.
bool FailToOpen(CURL* handle, const KVTString& path, KVTString& error) {
  curl_easy_cleanup(handle);
  error = "Unable to open file " + path;
  return false;
}

// Sets the options of a transfer to the share and, unless it is a probe, opens
// the local file.  Returns false, with the handle released, when that fails.
bool PrepareUpload(CURL* handle, const KVTString& source, bool transferFile,
                   const KVTString& destination, KVTAuthentication* auth,
                   FILE*& stream, KVTString& error) {
  const KVTString url = MakeUploadUrl(destination);
  curl_easy_setopt(handle, CURLOPT_URL, url.GetUTF8String().c_str());

  // A file that cannot be examined counts as empty: fopen decides.
  struct stat status = {};
  stat(source.GetUTF8String().c_str(), &status);
  curl_easy_setopt(handle, CURLOPT_INFILESIZE_LARGE,
                   static_cast<curl_off_t>(status.st_size));

  SetCredentials(handle, auth);

  // A probe reads the remote file to libcurl's default output.
  if (!transferFile) return true;

  stream = fopen(source.GetUTF8String().c_str(), "rb");
  if (stream == nullptr) return FailToOpen(handle, source, error);
  curl_easy_setopt(handle, CURLOPT_UPLOAD, 1L);
  curl_easy_setopt(handle, CURLOPT_READFUNCTION,
                   KVTShareFileInternal::HandleWindowSMB1Read_CallBack);
  curl_easy_setopt(handle, CURLOPT_READDATA, stream);
  return true;
}

// Sets the options of a transfer from the share and opens the local file, or
// that of a probe.  Returns false when that fails.
bool PrepareDownload(CURL* handle, KVTShareFileInternal& share,
                     const KVTString& source, KVTAuthentication* auth,
                     bool transferFile, const KVTString& destination,
                     FILE*& stream, KVTString& error) {
  const KVTString url = share.RefactorIPv6ForWindowSMB1(source);
  curl_easy_setopt(handle, CURLOPT_URL, url.GetUTF8String().c_str());

  SetCredentials(handle, auth);

  if (transferFile && share.CreateParentDirectoryIfDoesntExist(destination)) {
    // Callers rely on the handle staying behind here.
    error = "Unable to create parent directory for " + destination;
    return false;
  }
  const KVTString probeFile(kProbeFile);
  const KVTString& target = transferFile ? destination : probeFile;
  stream = fopen(target.GetUTF8String().c_str(), "wb");
  if (stream == nullptr) return FailToOpen(handle, target, error);

  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION,
                   KVTShareFileInternal::HandleWindowSMB1Write_CallBack);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, stream);
  return true;
}

KVTString DescribeResult(CURLcode code, long responseCode) {
  return "Curl return code  " + KVTString::ConvertIntToString(code) +
         " , curl response code " + KVTString::ConvertIntToString(responseCode);
}

// Runs the prepared transfer and releases its handle.
int Perform(CURL* handle, bool transferFile, FILE* stream, KVTString& error) {
  curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, kConnectTimeoutSeconds);
  const CURLcode code = curl_easy_perform(handle);
  long responseCode = 0;
  curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &responseCode);

  // Callers rely on this line after a success as well.
  error = DescribeResult(code, responseCode);

  int result = KVTErrorCodeFailure;
  if (code == CURLE_OK) {
    // What stdio still holds is written now: a full disk shows only here.
    // Callers rely on the stream of a successful probe staying open.
    const bool written = !transferFile || fclose(stream) == 0;
    if (written) result = KVTErrorCodeSuccess;
  } else {
    if (stream != nullptr) fclose(stream);
    if (code == CURLE_LOGIN_DENIED) result = KVTErrorCodeAccessDenied;
  }
  curl_easy_cleanup(handle);
  return result;
}

int Transfer(KVTShareFile& share, const KVTString& source,
             KVTAuthentication* sourceAuth, bool transferFile,
             const KVTString& destination, KVTAuthentication* destinationAuth,
             KVTString& error) {
  const bool download = share.IsSharePath(source);
  const bool upload = share.IsSharePath(destination);
  if (download && upload) return KVTErrorCodeFailure;

  CURL* const handle = curl_easy_init();
  if (handle == nullptr) return KVTErrorCodeFailure;
  // Callers rely on the handle staying behind here.
  if (!download && !upload) return KVTErrorCodeFailure;

  FILE* stream = nullptr;
  const bool prepared =
      upload ? PrepareUpload(handle, source, transferFile, destination,
                             destinationAuth, stream, error)
             : PrepareDownload(handle, share, source, sourceAuth, transferFile,
                               destination, stream, error);
  if (!prepared) return KVTErrorCodeFailure;
  return Perform(handle, transferFile, stream, error);
}

}  // namespace

int KVTShareFile::SendFileOnWindowSMB1(const KVTString& source,
                                       KVTAuthentication* sourceAuth,
                                       bool transferFile,
                                       const KVTString& destination,
                                       KVTAuthentication* destinationAuth,
                                       KVTString& error) {
  if (source.length() <= 2) return KVTErrorCodeFailure;
  return PassOnThrownTexts(
      [&]() -> int {
        return Transfer(*this, source, sourceAuth, transferFile, destination,
                        destinationAuth, error);
      },
      [&]() -> int {
        // Callers rely on the handle and the stream staying behind here, and on
        // text that is there already being kept.
        if (error.empty()) error = "Failed to send file using SMB1 Share";
        return KVTErrorCodeFailure;
      });
}

int KVTShareFile::DeleteFileOnWindowSMB1(const KVTString& /*path*/,
                                         KVTAuthentication* /*auth*/) {
  // Callers rely on success; the file stays.
  return KVTErrorCodeSuccess;
}

size_t KVTShareFileInternal::HandleWindowSMB1Read_CallBack(void* buffer,
                                                           unsigned long size,
                                                           unsigned long count,
                                                           void* stream) {
  return fread(buffer, size, count, static_cast<FILE*>(stream));
}

size_t KVTShareFileInternal::HandleWindowSMB1Write_CallBack(void* buffer,
                                                            unsigned long size,
                                                            unsigned long count,
                                                            FILE* stream) {
  return fwrite(buffer, size, count, stream);
}
