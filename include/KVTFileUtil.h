/// @file
/// Static operations on files, directories, network names and URLs.

#ifndef KVTFILEUTIL_H
#define KVTFILEUTIL_H

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include "KVTExport.h"
#include "KVTFile.h"
#include "KVTString.h"

/// The proxy of KVTFileUtil::GetFile.  The texts belong to the caller, who keeps
/// them alive over the call.
struct proxy {
  /// Non-zero: use the proxy.  Zero: the other two fields are not read.
  int enabled;
  /// The address, for CURLOPT_PROXY.
  const char* address;
  /// User name and password joined by a colon, for CURLOPT_PROXYUSERPWD.
  const char* credentials;
};

/// The write callback of KVTFileUtil::GetFile (CURLOPT_WRITEFUNCTION): returns
/// what fwrite(3) returns for the same arguments.
KVT_EXPORT size_t write_data(void* buffer, size_t size, size_t count,
                             FILE* stream);

/// A class of static members only, with no data and no instances.
class KVT_EXPORT KVTFileUtil {
 public:
  KVTFileUtil() = delete;

  /// @name Path characters and directory test
  /// @{
  static KVTString GetSeparator();
  static std::vector<KVTString> GetReservedNames();
  static std::vector<KVTString> GetIllegalCharacters();
  static std::vector<KVTString> GetPunctuationCharacters();
  static bool IsDirectory(const KVTString& path);
  /// @}

  /// @name Files and directories on disk
  /// @{
  static bool DeleteDirectory(const KVTFile& directory, bool deleteContents);
  /// @}

  /// @name Copy, move and rename
  /// @{
  static bool RenameFile(KVTFile& file, const KVTString& newName);
  static bool CopyFile(const KVTFile& source, const KVTFile& target,
                       bool failIfExists);
  static bool MoveFile(const KVTFile& source, const KVTFile& target,
                       bool failIfExists);
  static bool CopyFileCreateDir(const KVTFile& source, const KVTFile& target,
                                bool failIfExists);
  static bool CopyDirectory(const KVTFile& source, const KVTFile& target,
                            bool recursive, bool failIfExists);
  /// @}

  /// @name Directories and unique names
  /// @{
  static KVTString GetCurrentExecutablePath(bool includeName);
  static KVTFile CreateUniqueDirectory(const KVTString& parent,
                                       const KVTString& prefix);
  static int GetFileNamesInDirectory(const KVTString& directory,
                                     const KVTString& startsWith,
                                     const KVTString& contains,
                                     const KVTString& extension,
                                     std::vector<KVTString>& names,
                                     bool fullPaths);
  static KVTFile GetSystemTempDirectory();
  static KVTString GetFileContents(KVTString path);
  static KVTFile CreateUniqueTemporaryDirectory();
  static KVTFile CreateUniqueFile(const KVTString& directory,
                                  const KVTString& prefix,
                                  const KVTString& extension);
  static KVTFile CreateUniqueTemporaryFile(const KVTString& prefix,
                                           const KVTString& extension);
  /// @}

  /// @name Address validation
  /// @{
  static bool IsValidIPV4Block(std::string block);
  static bool IsValidIPV6Block(std::string block);
  static bool IsValidIPV4Address(KVTString address);
  static bool IsValidIPV6Address(KVTString address);
  static bool IsValidHostNameAddress(KVTString name);
  static int GetAddressType(KVTString address);
  static KVTString MaskIP(KVTString address);
  /// @}

  /// @name URLs and download
  /// @{
  static std::vector<KVTString> GetNetworkProtocols();
  static bool IsProtocolAddedToURL(const KVTString& text);
  static bool GetProtocolFromNetworkLocation(const KVTString& location,
                                             KVTString& protocol);
  static bool GetURLFromNetworkLocation(KVTString location, KVTString& url);
  static int GetFile(const KVTString& url, const KVTFile& target,
                     proxy settings);
  static bool IsURLValid(const KVTString& url);
  /// @}

  /// @name Identifiers
  /// @{

  /// Tells whether `text` has 36 units: hexadecimal digits of either case, with
  /// dashes at positions 8, 13, 18 and 23.  No other form passes, with braces or
  /// without dashes.  Callers rely on only the low byte of each unit being
  /// looked at: 0x0141 passes for the letter A.
  static bool isGUIDValid(KVTString text);

  /// Returns `prefix` followed directly by the 36 characters of a fresh UUID,
  /// made by uuid_generate(3) and written by uuid_unparse(3).
  static KVTString GetUUID(KVTString prefix);
  /// @}
};

#endif  // KVTFILEUTIL_H
