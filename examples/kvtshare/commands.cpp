#include "commands.h"

#include <curl/curl.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <system_error>

#include "KVTAuthentication.h"
#include "KVTFile.h"
#include "KVTFileUtil.h"
#include "KVTShareFile.h"
#include "mounts.h"

namespace {

KVTString Text(const std::string& utf8) { return KVTString(utf8.c_str()); }

int Report(int result, const KVTString& error) {
  std::cout << "result: " << result << "\n";
  if (!error.empty()) std::cout << "text: " << error.GetUTF8String() << "\n";
  return result;
}

// Null when the command line names no credentials: the library then sends none.
std::unique_ptr<KVTAuthentication> MakeAuthentication(
    const Credentials& credentials) {
  const bool hasUser = !credentials.user.empty();
  const bool hasPassword = credentials.password.IsSet();
  if (!hasUser && !hasPassword && credentials.domain.empty()) return nullptr;

  auto auth = std::make_unique<KVTAuthentication>();
  auth->SetUser(Text(credentials.user));
  auth->SetDomain(Text(credentials.domain));
  if (hasUser || hasPassword) {
    auth->SetPassword(Text(GetPassword(
        credentials.password, "Password for " + credentials.user + ": ")));
  }
  return auth;
}

// A folder that the library handed out may have nothing mounted on it, when the
// server could not be reached: from the second attempt on, a send goes on in
// the local folder, and its result may be success.  Whoever reads the result is
// told.
void WarnOfLocalFolders(int result) {
  if (result == KVTErrorCodeAccessDenied) return;
  const std::vector<CifsMount> mounts = ListMounts();
  for (const auto& [share, folder] : KVTShareFile::Instance()->mMountedShares) {
    const std::string path = folder.GetUTF8String();
    const bool mounted = std::any_of(
        mounts.begin(), mounts.end(),
        [&](const CifsMount& mount) { return mount.folder == path; });
    if (!mounted) {
      std::cerr << "kvtshare: " << share.GetUTF8String()
                << " is not mounted: the library worked in the local folder "
                << path << "\n";
    }
  }
}

// However they are written: with a separator at the end, relative, by a link.
bool IsSameFolder(const std::string& a, const std::string& b) {
  std::error_code cannotLook;
  return a == b || std::filesystem::equivalent(a, b, cannotLook);
}

bool CurlSpeaksSmb() {
  const curl_version_info_data* version = curl_version_info(CURLVERSION_NOW);
  for (const char* const* name = version->protocols; *name != nullptr; ++name) {
    if (std::strcmp(*name, "smb") == 0) return true;
  }
  return false;
}

// libcurl decodes %XX in both halves of its "user:password".
std::string Escape(const std::string& text) {
  const std::unique_ptr<char, void (*)(void*)> escaped(
      curl_easy_escape(nullptr, text.data(), static_cast<int>(text.size())),
      curl_free);
  if (escaped == nullptr) throw std::bad_alloc();
  return escaped.get();
}

}  // namespace

int Send(const SendArguments& arguments) {
  KVTShareFile& share = *KVTShareFile::Instance();
  const KVTString source = Text(arguments.source);
  const KVTString destination = Text(arguments.destination);
  const auto auth = MakeAuthentication(arguments.credentials);
  KVTAuthentication* sourceAuth =
      share.IsSharePath(source) ? auth.get() : nullptr;
  KVTAuthentication* destinationAuth =
      share.IsSharePath(destination) ? auth.get() : nullptr;
  KVTString error;

  if (arguments.smb1) {
    if (!CurlSpeaksSmb()) {
      std::cerr << "kvtshare: this libcurl was built without smb://, so no "
                   "transfer with --smb1 can succeed.\n";
    }
    const int result =
        share.SendFileOnWindowSMB1(source, sourceAuth, !arguments.probe,
                                   destination, destinationAuth, error);
    return Report(result, error);
  }
  const int result =
      share.SendFile(source, sourceAuth, destination, destinationAuth, error);
  WarnOfLocalFolders(result);
  return Report(result, error);
}

int Delete(const std::string& location, const Credentials& credentials) {
  const auto auth = MakeAuthentication(credentials);
  KVTString error;
  const int result = KVTShareFile::Instance()->DeleteShareFile(
      Text(location), auth.get(), error);
  return Report(result, error);
}

int Parse(const std::string& location) {
  KVTString host;
  KVTString shareFolder;
  KVTString rest;
  const int result = KVTShareFile::Instance()->ParseNetworkPath(
      Text(location), host, shareFolder, rest);
  std::cout << "host: " << host.GetUTF8String() << "\n"
            << "share folder: " << shareFolder.GetUTF8String() << "\n"
            << "rest: " << rest.GetUTF8String() << "\n";
  return Report(result, KVTString());
}

int Unmount(const std::string& folder) {
  // After unmounting, the library removes the files that it finds in the
  // folder: with a share below, those would be the server's.
  for (const CifsMount& mount : ListMounts()) {
    if (mount.layers > 1 && IsSameFolder(mount.folder, folder)) {
      std::cerr << "kvtshare: " << folder << " is left alone: " << mount.layers
                << " file systems lie on it\n";
      return KVTErrorCodeFailure;
    }
  }
  return Report(KVTShareFile::Instance()->UnMountShare(Text(folder)),
                KVTString());
}

int UnmountEverything() {
  // The library's own UnmountAll knows the mounts of its process only, and this
  // process has made none.
  int worst = KVTErrorCodeSuccess;
  for (const CifsMount& mount : ListMounts()) {
    std::cout << mount.folder << " (" << mount.share << ")\n" << std::flush;
    worst = std::max(worst, Unmount(mount.folder));
  }
  return worst;
}

int Download(const DownloadArguments& arguments) {
  std::string credentials;
  if (!arguments.proxyUser.empty()) {
    credentials = Escape(arguments.proxyUser) + ":" +
                  Escape(GetPassword(arguments.proxyPassword,
                                     "Password for " + arguments.proxyUser +
                                         " at the proxy: "));
  }
  const proxy settings = {arguments.proxyAddress.empty() ? 0 : 1,
                          arguments.proxyAddress.c_str(),
                          credentials.empty() ? nullptr : credentials.c_str()};
  const int result = KVTFileUtil::GetFile(
      Text(arguments.url), KVTFile(Text(arguments.target)), settings);
  return Report(result, KVTString());
}
