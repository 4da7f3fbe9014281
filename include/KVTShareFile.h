/// @file
/// Files to and from Windows-style network shares.

#ifndef KVTSHAREFILE_H
#define KVTSHAREFILE_H

#include <cstddef>
#include <cstdio>
#include <map>

#include "KVTAuthentication.h"
#include "KVTErrorCode.h"
#include "KVTExport.h"
#include "KVTString.h"

class KVT_EXPORT KVTShareFileInternal {
 public:
  bool isMaliciousNetworkShare(KVTString path);

  int GetParentPath(KVTString path, KVTString& parent);
  int GetFileName(const KVTString& path, KVTString& name);
  bool CreateParentDirectoryIfDoesntExist(KVTString path);

  int ParseNetworkPath(KVTString path, KVTString& hostIp,
                       KVTString& shareFolder, KVTString& remainder);
  int ResolveHostAddress(KVTString host, KVTString& address);
  KVTString RefactorIPv6ForMounting(KVTString address);
  KVTString RefactorIPv6ForWindowSMB1(KVTString path);

  static size_t HandleWindowSMB1Read_CallBack(void* buffer, unsigned long size,
                                              unsigned long count,
                                              void* stream);
  static size_t HandleWindowSMB1Write_CallBack(void* buffer, unsigned long size,
                                               unsigned long count,
                                               FILE* stream);
};

class KVT_EXPORT MountManager : public KVTShareFileInternal {
 public:
  ~MountManager();

  int GetMountPoint(KVTString share, KVTString& mountPoint, KVTString& error);
  int GetMountPointForMountedNetwork(KVTString share, KVTString& mountPoint,
                                     KVTString& error);
  int MountNetworkShare(KVTString networkPath, KVTAuthentication* auth,
                        KVTString& mountedPath, KVTString& error);
  int UnMountShare(const KVTString& mountPoint);
  int UnmountAll();

  std::map<KVTString, KVTString> mMountedShares;
};

class KVT_EXPORT KVTShareFile : public MountManager {
 public:
  KVTShareFile();
  static KVTShareFile* Instance();

  bool IsSharePath(const KVTString& path);

  int SendFile(const KVTString& source, KVTAuthentication* sourceAuth,
               const KVTString& destination,
               KVTAuthentication* destinationAuth, KVTString& error);
  int SendFileUsingMount(const KVTString& source,
                         KVTAuthentication* sourceAuth,
                         const KVTString& destination,
                         KVTAuthentication* destinationAuth, KVTString& error);
  int DeleteFileUsingMount(const KVTString& path, KVTAuthentication* auth,
                           KVTString& error);
  int DeleteShareFile(const KVTString& path, KVTAuthentication* auth,
                      KVTString& error);

  int SendFileOnWindowSMB1(const KVTString& source,
                           KVTAuthentication* sourceAuth, bool transferFile,
                           const KVTString& destination,
                           KVTAuthentication* destinationAuth,
                           KVTString& error);
  int DeleteFileOnWindowSMB1(const KVTString& path, KVTAuthentication* auth);

  static KVTShareFile* mInstance;
};

#endif  // KVTSHAREFILE_H
