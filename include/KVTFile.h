/// @file
/// The file object: one path, the algebra on its text, and the operations on
/// the disk behind it.

#ifndef KVTFILE_H
#define KVTFILE_H

#include "KVTErrorCode.h"
#include "KVTExport.h"
#include "KVTString.h"
#include "KVTTime.h"

/// A value that holds one path, with no open handle and no cached metadata.
class KVT_EXPORT KVTFile {
 public:
  /// Flags of GetBool and SetBool; only KVTFileBoolSettable is significant.
  enum KVTFileBoolEnum { KVTFileBoolSettable = 8 };
  /// Argument of GetTime and SetTime, which ignore it.
  enum KVTFileTimeEnum {
    KVTFileTimeCreated,
    KVTFileTimeModified,
    KVTFileTimeAccessed
  };
  /// Argument of CanOpen, which ignores it.
  enum KVTFileAccessModeEnum { KVTFileAccessRead, KVTFileAccessWrite };
  /// Argument of CanOpen, which ignores it.
  enum KVTFileShareModeEnum { KVTFileShareNone, KVTFileShareRead };

  KVTFile();
  KVTFile(const KVTString& path);
  KVTFile(const KVTFile& other);
  KVTFile& operator=(const KVTFile& other);
  virtual ~KVTFile();

  bool operator==(const KVTFile& other);
  bool operator!=(const KVTFile& other);

  bool HasPath() const;
  KVTString GetPath() const;
  bool SetPath(const KVTString& path);
  bool Exists() const;

  void ResolvePathAliases();
  bool ResolveAlias();
  bool IsOpen() const;
  bool CanOpen(KVTFileAccessModeEnum access, KVTFileShareModeEnum share) const;
  KVTTime GetTime(KVTFileTimeEnum which) const;
  bool SetTime(KVTFileTimeEnum which, const KVTTime& time);
  bool GetBool(KVTFileBoolEnum flag) const;
  bool SetBool(KVTFileBoolEnum flag, bool value);

  KVTString GetParentPath(bool keepSeparator) const;
  KVTString GetLinuxParentPath(bool keepSeparator) const;
  KVTString GetWinParentPath(bool keepSeparator) const;
  KVTString GetName() const;
  bool SetName(const KVTString& name);
  bool AppendName(const KVTString& name);
  bool RemoveName();
  KVTString GetExtension() const;
  bool SetExtension(const KVTString& extension);
  KVTString GetFileNameFromURL(bool keepExtension) const;
  static KVTString RemoveFileExtension(const KVTString& text);
  bool IsValidName() const;

  bool Touch();
  unsigned long long GetSize() const;
  bool IsEmpty() const;
  bool IsFileSymbolicLink() const;
  bool IsFileDeviceFile() const;
  bool Delete() const;
  bool HasValidPath() const;
  bool ParentExists() const;
  bool MakeDirectory(bool createParents, KVTErrorCodeEnum* ignored = nullptr);
  bool CreateFile(bool createParents, KVTErrorCodeEnum* ignored = nullptr);

  KVTString mPath;
};

#endif  // KVTFILE_H
