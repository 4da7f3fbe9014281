/// A directory of the test's own that goes away with the object.

#ifndef KVT_TESTS_TEMPORARY_DIRECTORY_H
#define KVT_TESTS_TEMPORARY_DIRECTORY_H

#include <string>

#include "KVTFile.h"
#include "KVTString.h"

/// An empty directory below the system's temporary directory, removed with
/// everything in it when the object goes.  Throws when it cannot be made.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  /// Without a trailing separator.
  const std::string& Path() const { return mPath; }
  /// The path of `name` inside.
  std::string Path(const std::string& name) const { return mPath + "/" + name; }
  KVTString Text() const;
  KVTString Text(const std::string& name) const;
  KVTFile File() const { return KVTFile(Text()); }
  KVTFile File(const std::string& name) const { return KVTFile(Text(name)); }

 private:
  std::string mPath;
};

/// Makes the process's working directory `path` while the object lives.
class WorkingDirectory {
 public:
  explicit WorkingDirectory(const std::string& path);
  ~WorkingDirectory();
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;

 private:
  std::string mPrevious;
};

/// Writes `content` to a new or emptied file; throws when it cannot.
void WriteFile(const std::string& path, const std::string& content);

/// The bytes of the file; throws when it cannot be read.
std::string ReadFile(const std::string& path);

#endif  // KVT_TESTS_TEMPORARY_DIRECTORY_H
