/// @file
/// The file object: one path, the algebra on its text, and the operations on
/// the disk behind it.
///
/// Lengths and positions count 16-bit units; on its way to libc a path becomes
/// UTF-8, at each call.  Objects are values without a lock: const calls may run
/// on several threads at once, a call that changes an object needs the caller's
/// own lock.  Between the look at the disk and the action that follows another
/// process can change what is there; no operation guards against that.
///
/// Operations answer with a bool, an empty text or 0 and keep no reason; every
/// one may throw std::bad_alloc when memory runs out and throws nothing else.

#ifndef KVTFILE_H
#define KVTFILE_H

#include "KVTErrorCode.h"
#include "KVTExport.h"
#include "KVTString.h"
#include "KVTTime.h"

/// A value that holds one path, with no open handle and no cached metadata.
///
/// The path is kept as it was given: "." and ".." are not resolved, doubled and
/// trailing separators stay, a backslash is an ordinary unit.  An empty path
/// stands for no file: the result of a KVTFileUtil call that fails.
class KVT_EXPORT KVTFile {
 public:
  /// Flags of GetBool and SetBool.
  enum KVTFileBoolEnum {
    /// The one flag to which SetBool answers true.
    KVTFileBoolSettable = 8
  };
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

  /// @name Value operations
  /// @{

  /// Makes an object with an empty path.
  KVTFile();

  /// Copies `path`, like every copy of a KVTString up to its first zero unit.
  KVTFile(const KVTString& path);

  /// Copies the path up to its first zero unit.
  KVTFile(const KVTFile& other);
  /// Assigns the whole path.
  KVTFile& operator=(const KVTFile& other);
  /// Leaves the disk alone.
  virtual ~KVTFile();

  /// Tells whether both paths have the same units: case and a trailing
  /// separator count.
  bool operator==(const KVTFile& other);
  /// The opposite of operator==.
  bool operator!=(const KVTFile& other);

  /// Tells whether the path is not empty.
  bool HasPath() const;

  /// Returns a copy of the path.
  KVTString GetPath() const;

  /// Assigns the path.  Always returns false; callers ignore it.
  bool SetPath(const KVTString& path);

  /// Tells whether stat(2) finds something at the path.  Links are followed, so
  /// a dangling one does not exist.
  bool Exists() const;

  /// @}
  /// @name Members with fixed results
  /// Callers compile and link against them; each does what is said here.
  /// @{

  /// Does nothing.
  void ResolvePathAliases();
  /// Returns false.
  bool ResolveAlias();
  /// Returns false.
  bool IsOpen() const;
  /// Returns false.
  bool CanOpen(KVTFileAccessModeEnum access, KVTFileShareModeEnum share) const;
  /// Returns a time that is not set, without a look at the file.
  KVTTime GetTime(KVTFileTimeEnum which) const;
  /// Returns false and changes nothing.
  bool SetTime(KVTFileTimeEnum which, const KVTTime& time);
  /// Returns false for every flag and every path.
  bool GetBool(KVTFileBoolEnum flag) const;
  /// Tells whether the file exists and `flag` is KVTFileBoolSettable.  `value`
  /// is not read and nothing changes.
  bool SetBool(KVTFileBoolEnum flag, bool value);

  /// @}
  /// @name Path algebra
  /// Works on the text alone.  Positions are 32-bit and wrap, which gives the
  /// results at the edges; callers rely on them.
  /// @{

  /// Returns the text before the last "/", with that separator when
  /// `keepSeparator` is true.
  ///
  /// A trailing separator gets no special treatment: the parent of /a/b/ is
  /// /a/b.  Callers rely on a path without a separator being its own parent, or
  /// having the empty one when `keepSeparator` is true, and on the parent of /a
  /// being empty (or /).
  KVTString GetParentPath(bool keepSeparator) const;

  /// Returns what GetParentPath returns.
  KVTString GetLinuxParentPath(bool keepSeparator) const;

  /// Returns what GetParentPath returns, with the backslash as the separator
  /// and "/" as an ordinary unit.
  KVTString GetWinParentPath(bool keepSeparator) const;

  /// Returns the last component.  One trailing separator is ignored: the name
  /// of a/ is a, those of a// and / are empty.
  KVTString GetName() const;

  /// Replaces as many units at the end of the path as GetName has by `name`,
  /// which is not checked.  Returns false, with the path unchanged, when either
  /// is empty.  Callers rely on the cut counting from the end: /a/b/ and c give
  /// /a/bc.
  bool SetName(const KVTString& name);

  /// Adds `name` as a component.  Returns false, with the path unchanged, when
  /// either is empty or `name` holds one of \/:?%*<">|
  bool AppendName(const KVTString& name);

  /// Drops the last component and its separator.  Returns false for an empty
  /// path only.  Callers rely on a path with nothing to keep in front (a, a/,
  /// /) staying as it is, and on /a becoming empty.
  bool RemoveName();

  /// Returns the one to three units behind the last dot of GetName; empty when
  /// there are none or more, as in a.html.
  KVTString GetExtension() const;

  /// Replaces as many units at the end of the path as GetExtension has by
  /// `extension`, or adds a dot and `extension` where there is none; the path
  /// may be empty.  Returns false, with the path unchanged, only for an empty
  /// `extension`.  Callers rely on the cut counting from the end: a.txt/ and
  /// log give a.tlog.
  bool SetExtension(const KVTString& extension);

  /// Returns the text behind the last "/", without its extension when
  /// `keepExtension` is false.  A query stays.  What counts as an extension is
  /// GetExtension's rule, so a.html keeps its ending.
  KVTString GetFileNameFromURL(bool keepExtension) const;

  /// Returns `text` up to its last dot when two to four units follow that dot,
  /// otherwise all of it.  Callers rely on the range being one unit later than
  /// that of GetExtension, and on separators being ordinary units: a.b/c gives
  /// a.
  static KVTString RemoveFileExtension(const KVTString& text);

  /// Tells whether GetName is not empty and holds none of
  /// KVTFileUtil::GetIllegalCharacters.
  bool IsValidName() const;

  /// @}
  /// @name The file on disk
  /// An empty path answers false, or 0, without a look at the disk.
  /// @{

  /// Sets the times of an existing file to now through touch(1).  Returns false
  /// when nothing exists or a directory does, otherwise true whatever became of
  /// the command.  Callers rely on the path going to the shell (system(3)) as
  /// it is, neither quoted nor escaped: a blank splits it, and shell text in it
  /// runs.
  bool Touch();

  /// Returns the size in bytes of the file or of a link's target, or the number
  /// of entries of a directory other than "." and ".."; 0 when there is nothing
  /// or it cannot be opened.
  unsigned long long GetSize() const;

  /// Tells whether GetSize is 0; so a missing file is empty.  False for an
  /// empty path.
  bool IsEmpty() const;

  /// Tells whether the path is a link whose target exists (lstat(2)).
  bool IsFileSymbolicLink() const;

  /// Tells whether the path begins with /dev/; the disk is not looked at.
  bool IsFileDeviceFile() const;

  /// Removes a file (remove(3)) and tells whether that was done.  For what
  /// KVTFileUtil::IsDirectory takes for a directory callers rely on false, even
  /// though an empty one is removed: ask Exists.
  bool Delete() const;

  /// Tells whether the path is not empty and no component holds one of
  /// KVTFileUtil::GetIllegalCharacters.  Empty components, colons and percent
  /// signs are valid.  The disk is not looked at.
  bool HasValidPath() const;

  /// Tells whether stat(2) finds the text in front of the last component.  That
  /// text is not what GetParentPath gives: callers rely on a bare name testing
  /// itself, and on false for every child of the root.
  bool ParentExists() const;

  /// Makes a directory with mode 0775 under the umask (mkdir(2)).  `ignored` is
  /// neither read nor written.  Returns false when a directory is there
  /// already.
  ///
  /// With `createParents` false the parent must exist as ParentExists tells, so
  /// that a directory in the root is refused.  With `createParents` true every
  /// missing component is made from the start of the path on; at the first
  /// failure the call returns false, and what was made stays.  Callers rely on
  /// two results there: a component that ends in a colon with another one
  /// behind it (the C: of C:/a, but not that of C:/), or a last component with
  /// a colon before its last unit (x:y), is passed over; and p/x/x/ makes p and
  /// p/x only and returns true.
  bool MakeDirectory(bool createParents, KVTErrorCodeEnum* ignored = nullptr);

  /// Makes an empty file (fopen(3) with "w") and tells whether that was done.
  /// `ignored` is neither read nor written.
  ///
  /// With `createParents` false the parent must exist as ParentExists tells,
  /// and an existing file is left alone and gives false.  With `createParents`
  /// true a missing parent is made and an existing file is emptied.  Callers
  /// rely on the case of a bare name that does not exist: its parent is itself,
  /// so a directory of that name is made and the call returns false.
  bool CreateFile(bool createParents, KVTErrorCodeEnum* ignored = nullptr);

  /// @}

  /// The path as the caller gave it; may be empty.
  KVTString mPath;
};

#endif  // KVTFILE_H
