/// @file
/// Files to and from Windows-style network shares.
///
/// KVTShareFile::Instance() and KVTShareFile::SendFile() are what most callers
/// need; KVTShareFileInternal holds the operations on locations, MountManager
/// the mounts, and one object serves as all three.
///
/// A location is `\\host\share\dir\file`, `//host/share/dir/file` or
/// `smb://host/share/dir/file`; the host is a name, an IPv4 address or an IPv6
/// address with or without square brackets.  No port can be given.  Names are
/// resolved with getaddrinfo(3) when a location is taken apart, so mounts and
/// URLs are made from addresses.
///
/// Results are the values of KVTErrorCodeEnum as `int`: judge a call by its
/// result, never by its error text.  Texts named `error` are not cleared on
/// entry, so pass an empty one; each call says what it assigns or appends.
/// The password is in none of them.
///
/// Nothing here takes a lock: the table of mounts, the choice of a mount folder
/// and the mount folders themselves are shared by all threads that use one
/// object, and callers that use several threads keep their calls apart.  Calls
/// block for as long as the name service, the kernel and the server take.

#ifndef KVTSHAREFILE_H
#define KVTSHAREFILE_H

#include <cstddef>
#include <cstdio>
#include <map>

#include "KVTAuthentication.h"
#include "KVTErrorCode.h"
#include "KVTExport.h"
#include "KVTString.h"

/// Operations on locations.  It has no data and its members use nothing of
/// their object, so that they may run on several threads at once, with the
/// exception of those that look up a host: inet_ntoa(3) has one static area.
class KVT_EXPORT KVTShareFileInternal {
 public:
  /// Tells whether one of *?<>|% stands anywhere in `path`.
  bool isMaliciousNetworkShare(KVTString path);

  /// @name Pieces of a location
  /// Text only; no server is asked.
  /// @{

  /// Gives in `parent` what stands before the last separator of `path`, without
  /// separators at its ends: `\\host\share\f` gives `host\share`.  A backslash
  /// anywhere makes the backslash the separator and "/" an ordinary character;
  /// without one "/" is the separator.  Separators at the end of `path` are
  /// ignored.
  ///
  /// Returns 0 when there is a parent.  Returns 1 with `parent` emptied when
  /// there is none, and with `parent` left alone when `path` is empty.
  int GetParentPath(KVTString path, KVTString& parent);

  /// Gives in `name` what stands behind the last "/" of `path`, without any
  /// behind the last "\", and without either the whole `path`.  Callers rely on
  /// "/" winning here, where "\" wins in GetParentPath().
  ///
  /// Returns 0 when there is a name.  Returns 1 with `name` emptied when `path`
  /// is empty or ends in that separator, or when the last component is an IPv4
  /// or IPv6 address (the host of a bare location).
  int GetFileName(const KVTString& path, KVTString& name);

  /// Makes the directory in which the local file `path` is to lie, with its
  /// own parents.  Returns false when it exists or was made and true when it
  /// could not be made; callers rely on that sense.
  bool CreateParentDirectoryIfDoesntExist(KVTString path);

  /// @}
  /// @name Hosts and shares
  /// @{

  /// Takes a location apart: `\\fs1\docs\a\b.txt` gives `10.0.0.5`, `docs` and
  /// `a\b.txt`, when fs1 has that address.
  ///
  /// `hostIp` gets what ResolveHostAddress() gives, `shareFolder` the component
  /// behind the host, `remainder` all that follows, with its separators as
  /// they are and none at its ends.  A leading `smb:` and then two separators
  /// of one kind are dropped, either may be missing; `cifs:` is taken for the
  /// host.  Square brackets are taken off a host that starts with one.
  ///
  /// Returns 0 when the location was taken apart and 1 when it was refused:
  /// two 16-bit units or fewer, no host, or two separators behind the host.
  /// The pieces are not cleared on entry and assigned only when they are
  /// reached, also before a refusal or an exception.  0 does not mean that all
  /// are there: a host that is not found leaves `hostIp` as
  /// ResolveHostAddress() does, and share folder and rest may be missing.
  ///
  /// Callers rely on lengths being found in bytes of the UTF-8 form and taken
  /// in 16-bit units: a host or share folder with letters beyond ASCII comes
  /// out with some of what follows it.
  ///
  /// Throws a `char*` or `KVTString*` from below as it is, and for anything
  /// else, memory running out included, a KVTString "Parsing network path
  /// failed " with `path` behind it.
  int ParseNetworkPath(KVTString path, KVTString& hostIp,
                       KVTString& shareFolder, KVTString& remainder);

  /// Gives in `address` the numeric form of `host`, which may have separators
  /// at its ends.  An IPv4 or IPv6 address is kept as it is written; for a name
  /// getaddrinfo(3) is asked, without a preference for either family, and its
  /// first usable answer taken.  The library sets no time limit.
  ///
  /// Returns 0 when there is an address, otherwise 1: with `address` emptied
  /// when `host` has two 16-bit units or fewer (such a name is never looked
  /// up) or the answer held no usable address, with `address` left alone when
  /// the look-up failed.
  ///
  /// Of the answer only the first node is released; callers rely on
  /// freeaddrinfo(3) not being called.
  ///
  /// Throws a `char*` or `KVTString*` from below as it is, and for anything
  /// else a KVTString "Failed to resolve Host" with `host` right behind it.
  int ResolveHostAddress(KVTString host, KVTString& address);

  /// Returns the host name that Windows uses for an IPv6 address: `fe80::1`
  /// gives `fe80--1.ipv6-literal.net`.  Anything else comes back as it is, an
  /// address in brackets too.
  KVTString RefactorIPv6ForMounting(KVTString address);

  /// Returns the URL of a location for libcurl, `smb://10.0.0.5/docs/a/b.txt`
  /// or `smb://[fe80::1]/docs/b.txt`: the address in place of the name, "/"
  /// behind the share folder even where nothing follows, nothing
  /// percent-encoded.  A location that ParseNetworkPath() refuses gives a URL
  /// of the pieces it found, `smb:////` for none.  Throws what
  /// ParseNetworkPath() throws.
  KVTString RefactorIPv6ForWindowSMB1(KVTString path);

  /// @}

  /// @name What libcurl calls during a transfer over smb://
  /// @{

  /// The read function of an upload (CURLOPT_READFUNCTION): exactly
  /// fread(3) from `stream`, a FILE*, and its result, which counts whole items
  /// of `size` bytes.
  static size_t HandleWindowSMB1Read_CallBack(void* buffer, unsigned long size,
                                              unsigned long count,
                                              void* stream);

  /// The write function of a download (CURLOPT_WRITEFUNCTION): exactly
  /// fwrite(3) to `stream` and its result, which counts whole items of `size`
  /// bytes.
  static size_t HandleWindowSMB1Write_CallBack(void* buffer, unsigned long size,
                                               unsigned long count,
                                               FILE* stream);

  /// @}
};

/// Mounts shares with the kernel's CIFS client on the folders /mnt/orbmountZ
/// down to /mnt/orbmountA and knows which share lives where.  The process needs
/// the privilege to call mount(2).
///
/// Copying an object copies its table, and each destructor unmounts what its
/// table names.
class KVT_EXPORT MountManager : public KVTShareFileInternal {
 public:
  /// Calls UnmountAll().
  ~MountManager();

  /// Gives in `mountPoint` the folder on which `share` is mounted or should be
  /// mounted.  `share` is "//", address, "/", share folder.
  ///
  /// Returns 4 when GetMountPointForMountedNetwork() knows the share, and
  /// otherwise 0 with the first folder from Z to A that does not exist, or on
  /// which nothing is mounted.  One that does not exist is made and entered
  /// into mMountedShares at once, before any mount; one that exists is not
  /// entered, and may be the folder of another share's entry.
  ///
  /// Returns 1 when there is none: `mountPoint` is empty when all 26 are taken,
  /// the folder when it could not be made, and as it was when stat(2) failed
  /// on a folder or on /mnt.
  ///
  /// `error` is not used.
  int GetMountPoint(KVTString share, KVTString& mountPoint, KVTString& error);

  /// Gives in `mountPoint` the folder of `share`, from mMountedShares, where
  /// case does not count, or else from /proc/mounts, where it does: the first
  /// line whose device is `share`.  The folder stands there as the kernel shows
  /// it, with a blank as `\040`; for the same reason a share with a blank is
  /// not found.  Returns 0 when found; otherwise, also when /proc/mounts cannot
  /// be opened, 1 with `mountPoint` left alone.
  ///
  /// Callers rely on an entry of the table answering whether or not anything is
  /// mounted there.
  ///
  /// `error` is not used.
  int GetMountPointForMountedNetwork(KVTString share, KVTString& mountPoint,
                                     KVTString& error);

  /// Mounts the share of the location `networkPath`, which may lie deep inside
  /// it, and gives in `mountedPath` the local path that stands for it, with
  /// every "\" turned into "/".  Where the location is the share itself the
  /// path ends in "/".
  ///
  /// mount(2) is tried with the dialects 3.0, 2.0 and 1.0 in turn until one
  /// succeeds or is refused with EACCES.  `auth` may be null.  User, password
  /// and domain go into the option string as they are: a comma in one of them
  /// starts an option of its own.  The host is resolved first; the mount uses
  /// its address.
  ///
  /// Returns 0 when the share is mounted now or counts as mounted already, 6
  /// when the server refused access (EACCES), 1 for anything else; only 0
  /// assigns `mountedPath`.
  ///
  /// Callers rely on a share counting as mounted when it has an entry in
  /// mMountedShares: a failed mount on a folder that was made for it leaves
  /// folder and entry behind, and the next call for the share returns 0 with a
  /// path in that local folder.  A failed mount on a folder that existed
  /// leaves no entry, and the next call tries again.
  ///
  /// What `error` holds afterwards:
  /// - `networkPath` empty: what it held.
  /// - Location refused: `networkPath` and " parsing network path Failed".
  /// - No host found or no share folder: " tempHostIp or tempShareFolder is
  ///   empty".
  /// - No mount folder: what it held, then a line "Failed to get the mount
  ///   point for " with the share.
  /// - Mounted already (result 0): what it held, then a line with the share
  ///   and " share location is already mounted."
  /// - Mounted at the first attempt: what it held.
  /// - Attempts failed: one line for each, in place of what it held, also when
  ///   a later attempt succeeded or was refused: "smb3: mount return code: -1
  ///   , errno: 95 , stderror: Operation not supported , for share:
  ///   //10.0.0.5/docs , for Mount Point: /mnt/orbmountZ", then smb2 and smb1.
  ///   An attempt refused with EACCES has no line.
  /// - An exception other than `char*` and `KVTString*`, which becomes result
  ///   1: what it held, or "Failed to Mount " and `networkPath`.
  ///
  /// Throws a `char*` or `KVTString*` from below as it is.
  int MountNetworkShare(KVTString networkPath, KVTAuthentication* auth,
                        KVTString& mountedPath, KVTString& error);

  /// Unmounts the folder `mountPoint` (umount2(2) with MNT_FORCE) and removes
  /// it with the files in it.  Returns 0 when it was unmounted, whether or not
  /// the folder went away, and 1, with the folder kept, when it was not.  The
  /// entry in mMountedShares stays.
  int UnMountShare(const KVTString& mountPoint);

  /// Calls UnMountShare() for the folder of every entry of mMountedShares, in
  /// the order of their keys, whatever becomes of each.  Always returns 0; the
  /// entries stay, and callers rely on the shares still counting as mounted.
  int UnmountAll();

  /// The folders handed out, by share: "//10.0.0.5/docs" to "/mnt/orbmountZ".
  /// Nothing is ever removed, so an entry does not prove a mount.
  std::map<KVTString, KVTString> mMountedShares;
};

/// Sends files to and from shares.
class KVT_EXPORT KVTShareFile : public MountManager {
 public:
  /// Makes an object with an empty table of mounts.  Its destructor unmounts
  /// what it has mounted; that of Instance() never runs.
  KVTShareFile();

  /// Returns the process's one instance, made at the first call, which must not
  /// run on two threads at once.  It is never deleted, so its mounts outlive
  /// the process; a later process finds them in /proc/mounts.
  static KVTShareFile* Instance();

  /// Tells whether `path` names a network location: three or more 16-bit units
  /// that start with `smb:`, `cifs:`, `\\` or `//`, in lower case, with none of
  /// *?<>|% anywhere.  Callers rely on a location with one of those counting as
  /// a local path.
  bool IsSharePath(const KVTString& path);

  /// @name Through a mount
  /// The share stays mounted afterwards; UnMountShare() and UnmountAll() take
  /// it down.  Credentials may be null.
  /// @{

  /// Copies the file `source` to the file `destination`; exactly one of the
  /// two is a location on a share, in either form of slashes.  Makes up to five
  /// attempts with SendFileUsingMount() and sleeps a second after each that
  /// failed, whatever the reason.
  ///
  /// Returns 0 when the file was sent and 6 when the server refused access,
  /// both with `error` emptied; otherwise 1.  A directory on either side is
  /// refused at once with `error` left alone.
  ///
  /// `error` after 1: what the last attempt left there, not cleared between
  /// attempts.  The text of a thrown `char*`, KVTString or std::pair of
  /// KVTString and KVTErrorCodeEnum replaces an empty `error` and otherwise
  /// follows what is there behind a blank; anything else thrown gives an empty
  /// one "Failed to send file".  Nothing leaves but what the handling itself
  /// may throw, std::bad_alloc.
  int SendFile(const KVTString& source, KVTAuthentication* sourceAuth,
               const KVTString& destination, KVTAuthentication* destinationAuth,
               KVTString& error);

  /// Makes one attempt to copy `source` to `destination`, both taken as they
  /// are: mounts the share, makes the directory of the target, deletes an old
  /// target and copies.  A target that is left of a failed copy is deleted.
  ///
  /// Returns 0 when the file was copied, 5 when the share could not be mounted,
  /// 6 when the server refused access, otherwise 1.
  ///
  /// What `error` holds afterwards:
  /// - Both on shares: "Transfer of file from network share to network share is
  ///   not supported."
  /// - Neither on a share: what it held.
  /// - From a share: what MountNetworkShare() made of it.
  /// - To a share: what it held; callers rely on the mount's text not being
  ///   there in this direction.
  /// - No directory for the target: "Unable to create parent directory for "
  ///   and the target, which for a share is its local path.
  /// - Not copied: "Unable to copy file from ", source, " to ", target, the
  ///   share's side as its local path.
  /// - An exception other than `char*` and `KVTString*`, which becomes result
  ///   1: what it held, or "Failed to send using mount".
  ///
  /// Throws a `char*` or `KVTString*` from below as it is.
  int SendFileUsingMount(const KVTString& source, KVTAuthentication* sourceAuth,
                         const KVTString& destination,
                         KVTAuthentication* destinationAuth, KVTString& error);

  /// Makes one attempt to delete the file `path` on a share.  Returns 0 when
  /// KVTFile::Delete() reports it deleted, 5 when the share could not be
  /// mounted, 6 when the server refused access, otherwise 1.  `error` holds
  /// what MountNetworkShare() made of it.  Exceptions pass through.
  int DeleteFileUsingMount(const KVTString& path, KVTAuthentication* auth,
                           KVTString& error);

  /// The same with each "\" in `path` turned into "/" first and 5 returned as
  /// 1.
  int DeleteShareFile(const KVTString& path, KVTAuthentication* auth,
                      KVTString& error);

  /// @}

  /// @name Without a mount, for a server that knows only SMB 1
  /// Nothing here falls back on these: a caller turns to them when SendFile()
  /// has failed.
  /// @{

  /// Transfers one file to or from a share with libcurl's smb:// (SMB 1, NTLM
  /// of the first version, port 445), in one attempt and without mounting.
  ///
  /// Exactly one side must be a share (IsSharePath()); its credentials are used
  /// and the other's play no part.  Null credentials set no user at all, which
  /// libcurl takes for a denied login; without a user or a password an empty
  /// text is sent.  The URL of an upload is the text of `destination` with each
  /// backslash turned into "/", behind "smb:" or, for a location that starts
  /// with "cifs:", behind "smb://": an IPv6 address needs its brackets.  That
  /// of a download is what RefactorIPv6ForWindowSMB1() makes of `source`.
  /// Nothing is percent-encoded: libcurl refuses a location with a blank (code
  /// 3) and ends the name at a "#".  An existing file is replaced, and folders
  /// missing above the local target are made; a failed transfer leaves what had
  /// come by then.
  ///
  /// `transferFile` false makes it a probe of the connection and the login,
  /// which reads the remote file and leaves both sides as they are: towards a
  /// share, the file that an upload would replace is read to standard output;
  /// from a share, the file goes to "tempHandleWindowSMB1KVTShareFile" in the
  /// working directory, which stays behind and is emptied by the next probe.
  /// A probe fails where there is no remote file to read.  The stream of a
  /// successful probe from a share stays open until the process ends.
  ///
  /// Returns
  /// - 0 when done;
  /// - 6 when the server denied the login (CURLE_LOGIN_DENIED);
  /// - 1 otherwise: a `source` of two units or fewer, two shares, no libcurl
  ///   handle, or no share (all with `error` left alone, the last leaking the
  ///   handle); a failure on the local side, which `error` names; or any other
  ///   failure of libcurl, its lack of smb:// included
  ///   (CURLE_UNSUPPORTED_PROTOCOL, code 1).
  ///
  /// Whenever libcurl was asked, `error` becomes the line
  /// "Curl return code  0 , curl response code 0" with the CURLcode and
  /// CURLINFO_RESPONSE_CODE, after a success as well; with code 0 and result 1
  /// the last bytes could not be written (fclose(3)), as on a full disk.
  /// Otherwise it becomes "Unable to open file " or "Unable to create parent
  /// directory for " with the path; the latter leaks the handle.
  ///
  /// The connection is given up after ten seconds; nothing limits what follows.
  /// libcurl 7.88 waits for ever, and uses up a processor meanwhile, when the
  /// server closes the connection in the middle of a transfer, when the local
  /// file turns out shorter than stat(2) told, and when it is a folder.
  ///
  /// A thrown `char*` or `KVTString*` goes on to the caller with the same
  /// pointer; after anything else the result is 1, with "Failed to send file
  /// using SMB1 Share" where `error` is empty.  All of these leak the handle
  /// and the stream.
  ///
  /// Calls may run on several threads at once, except for probes from a share,
  /// which all write to the one file, and for downloads whose host is a name.
  int SendFileOnWindowSMB1(const KVTString& source,
                           KVTAuthentication* sourceAuth, bool transferFile,
                           const KVTString& destination,
                           KVTAuthentication* destinationAuth,
                           KVTString& error);

  /// Does nothing and returns 0, whatever it is given.  Callers rely on the
  /// success; the file stays.
  int DeleteFileOnWindowSMB1(const KVTString& path, KVTAuthentication* auth);

  /// @}

  /// What Instance() returns; null until its first call.
  static KVTShareFile* mInstance;
};

#endif  // KVTSHAREFILE_H
