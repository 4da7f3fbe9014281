#include <errno.h>
#include <string.h>
#include <sys/mount.h>

#include <string>

#include "KVTShareFile.h"
#include "share/thrown_texts.h"

namespace {

constexpr unsigned long kMountFlags = MS_MGC_VAL | MS_SILENT;
static_assert(kMountFlags == 0xC0ED8000UL, "what the mount is asked for");

struct Dialect {
  const char* option;
  const char* reportTag;
};

// Tried in this order.
constexpr Dialect kDialects[] = {
    {",vers=3.0", "smb3: mount return code: "},
    {",vers=2.0", "\nsmb2: mount return code: "},
    {",vers=1.0", "\nsmb1: mount return code: "},
};

// The data argument of mount(2) for type "cifs", without its dialect:
//   unc=\\10.0.0.5\docs,ip=10.0.0.5,domain=CORP,user=backup
// Callers rely on the values going in as they are, neither quoted nor escaped.
// Holds the password in clear: keep it out of every message.
KVTString MakeMountOptions(const KVTString& uncPath, const KVTString& hostIp,
                           KVTAuthentication* auth) {
  KVTString options = "unc=" + uncPath + ",ip=" + hostIp;
  if (auth == nullptr) return options;

  options += ",domain=";
  if (auth->IsDomainSet()) {
    options += auth->GetDomain();
  } else {
    options += ".";
  }
  if (auth->IsUserSet()) options += ",user=" + auth->GetUser();
  if (auth->IsPasswordSet()) options += ",pass=" + auth->GetPassword();
  return options;
}

// Returns true when mount(2) did not fail; otherwise `reason` is its errno.
bool Mount(const KVTString& sharePath, const KVTString& mountPoint,
           const KVTString& options, int& reason) {
  const std::string source = sharePath.GetUTF8String();
  const std::string target = mountPoint.GetUTF8String();
  const std::string data = options.GetUTF8String();
  const int result =
      mount(source.c_str(), target.c_str(), "cifs", kMountFlags, data.c_str());
  reason = errno;
  return result != -1;
}

// Names the share and the folder, never the options.
KVTString MakeReport(const char* tag, int reason, const KVTString& sharePath,
                     const KVTString& mountPoint) {
  return KVTString(tag) + "-1" +
         " , errno: " + KVTString::ConvertIntToString(reason) +
         " , stderror: " + strerror(reason) + " , for share: " + sharePath +
         " , for Mount Point: " + mountPoint;
}

// One attempt for each dialect; 0, 1 or 6.
int MountWithFallback(const KVTString& sharePath, const KVTString& mountPoint,
                      const KVTString& options, KVTString& error) {
  bool first = true;
  for (const Dialect& dialect : kDialects) {
    int reason = 0;
    if (Mount(sharePath, mountPoint, options + dialect.option, reason)) {
      return KVTErrorCodeSuccess;
    }
    if (reason == EACCES) return KVTErrorCodeAccessDenied;

    const KVTString report =
        MakeReport(dialect.reportTag, reason, sharePath, mountPoint);
    // Callers rely on the first report replacing what `error` held.
    if (first) {
      error = report;
    } else {
      error += report;
    }
    first = false;
  }
  return KVTErrorCodeFailure;
}

}  // namespace

int MountManager::MountNetworkShare(KVTString networkPath,
                                    KVTAuthentication* auth,
                                    KVTString& mountedPath, KVTString& error) {
  if (networkPath.empty()) return KVTErrorCodeFailure;
  return PassOnThrownTexts(
      [&]() -> int {
        KVTString hostIp;
        KVTString shareFolder;
        KVTString relativePath;
        if (ParseNetworkPath(networkPath, hostIp, shareFolder, relativePath) ==
            KVTErrorCodeFailure) {
          error = networkPath + " parsing network path Failed";
          return KVTErrorCodeFailure;
        }
        if (hostIp.empty() || shareFolder.empty()) {
          error = " tempHostIp or tempShareFolder is empty";
          return KVTErrorCodeFailure;
        }

        // Also the key of the table and the device in /proc/mounts.
        const KVTString sharePath = "//" + hostIp + "/" + shareFolder;
        KVTString mountPoint;
        const int found = GetMountPoint(sharePath, mountPoint, error);
        if (found == KVTErrorCodeFailure) {
          error += "\nFailed to get the mount point for " + sharePath;
          return KVTErrorCodeFailure;
        }
        if (found == KVTErrorCodeAlreadyMounted) {
          // Callers rely on this for a folder whose mount failed as well.
          error += "\n" + sharePath + " share location is already mounted.";
        } else {
          KVTString uncPath(sharePath);
          uncPath.ReplaceAll("/", "\\");
          const int mounted =
              MountWithFallback(sharePath, mountPoint,
                                MakeMountOptions(uncPath, hostIp, auth), error);
          if (mounted != KVTErrorCodeSuccess) return mounted;
          mMountedShares.insert_or_assign(sharePath, mountPoint);
        }

        mountedPath = mountPoint + "/" + relativePath;
        mountedPath.ReplaceAll("\\", "/");
        return KVTErrorCodeSuccess;
      },
      [&]() -> int {
        if (error.empty()) error = "Failed to Mount " + networkPath;
        return KVTErrorCodeFailure;
      });
}
