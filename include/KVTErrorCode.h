/// @file
/// The results of the share operations.
///
/// The operations return them as plain `int`; callers judge a call by its
/// result, never by its error text.

#ifndef KVTERRORCODE_H
#define KVTERRORCODE_H

/// Results of the share operations.
enum KVTErrorCodeEnum {
  /// Done.
  KVTErrorCodeSuccess = 0,
  /// General failure, or nothing to do.
  KVTErrorCodeFailure = 1,
  /// The share is mounted already.  MountManager::GetMountPoint gives it,
  /// MountManager::MountNetworkShare turns it into success.
  KVTErrorCodeAlreadyMounted = 4,
  /// The share could not be mounted.  KVTShareFile::SendFile and
  /// KVTShareFile::DeleteShareFile fold it into KVTErrorCodeFailure.
  KVTErrorCodeMountFailed = 5,
  /// The server refused access: mount(2) failed with EACCES, or libcurl gave
  /// CURLE_LOGIN_DENIED.
  KVTErrorCodeAccessDenied = 6
};

#endif  // KVTERRORCODE_H
