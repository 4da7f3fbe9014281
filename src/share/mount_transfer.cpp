#include "KVTFile.h"
#include "KVTFileUtil.h"
#include "KVTShareFile.h"
#include "share/thrown_texts.h"
#include "text/empty_string.h"

namespace {

// What a failed MountManager::MountNetworkShare means to the caller.
int MountFailure(int result) {
  return result == KVTErrorCodeAccessDenied ? KVTErrorCodeAccessDenied
                                            : KVTErrorCodeMountFailed;
}

// Puts a copy of `source` in the place of `target`, both on local paths.
int ReplaceFile(KVTShareFileInternal& paths, const KVTString& source,
                const KVTString& target, KVTString& error) {
  if (paths.CreateParentDirectoryIfDoesntExist(target)) {
    error = "Unable to create parent directory for " + target;
    return KVTErrorCodeFailure;
  }
  // An old file goes first, since the copy does not shorten it.
  const KVTFile file(target);
  file.Delete();
  if (KVTFileUtil::CopyFile(KVTFile(source), file, false)) {
    return KVTErrorCodeSuccess;
  }
  if (file.Exists()) file.Delete();
  error = "Unable to copy file from " + source + " to " + target;
  return KVTErrorCodeFailure;
}

}  // namespace

int KVTShareFile::SendFileUsingMount(const KVTString& source,
                                     KVTAuthentication* sourceAuth,
                                     const KVTString& destination,
                                     KVTAuthentication* destinationAuth,
                                     KVTString& error) {
  return PassOnThrownTexts(
      [&]() -> int {
        const bool fromShare = IsSharePath(source);
        const bool toShare = IsSharePath(destination);
        if (fromShare && toShare) {
          error =
              "Transfer of file from network share to network share is not "
              "supported.";
          return KVTErrorCodeFailure;
        }
        if (!fromShare && !toShare) return KVTErrorCodeFailure;

        KVTString mountedPath;
        if (fromShare) {
          const int mounted =
              MountNetworkShare(source, sourceAuth, mountedPath, error);
          if (mounted != KVTErrorCodeSuccess) return MountFailure(mounted);
          return ReplaceFile(*this, mountedPath, destination, error);
        }
        // Callers rely on `error` not telling of the mount in this direction.
        const int mounted = MountNetworkShare(destination, destinationAuth,
                                              mountedPath, mEmptyString);
        if (mounted != KVTErrorCodeSuccess) return MountFailure(mounted);
        return ReplaceFile(*this, source, mountedPath, error);
      },
      [&]() -> int {
        if (error.empty()) error = "Failed to send using mount";
        return KVTErrorCodeFailure;
      });
}

int KVTShareFile::DeleteFileUsingMount(const KVTString& path,
                                       KVTAuthentication* auth,
                                       KVTString& error) {
  KVTString mountedPath;
  const int mounted = MountNetworkShare(path, auth, mountedPath, error);
  if (mounted != KVTErrorCodeSuccess) return MountFailure(mounted);
  return KVTFile(mountedPath).Delete() ? KVTErrorCodeSuccess
                                       : KVTErrorCodeFailure;
}

int KVTShareFile::DeleteShareFile(const KVTString& path,
                                  KVTAuthentication* auth, KVTString& error) {
  KVTString location(path);
  location.ReplaceAll("\\", KVTFileUtil::GetSeparator());
  const int result = DeleteFileUsingMount(location, auth, error);
  if (result == KVTErrorCodeSuccess || result == KVTErrorCodeAccessDenied) {
    return result;
  }
  return KVTErrorCodeFailure;
}
