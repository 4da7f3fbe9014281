/// An open directory, read entry by entry.

#ifndef KVT_FILE_DIRECTORY_READER_H
#define KVT_FILE_DIRECTORY_READER_H

#include <dirent.h>

#include <string>
#include <string_view>

/// Owns the handle of opendir(3) and closes it.
class DirectoryReader {
 public:
  explicit DirectoryReader(const std::string& path)
      : mDirectory(opendir(path.c_str())) {}
  ~DirectoryReader() {
    if (mDirectory != nullptr) closedir(mDirectory);
  }
  DirectoryReader(const DirectoryReader&) = delete;
  DirectoryReader& operator=(const DirectoryReader&) = delete;

  bool IsOpen() const { return mDirectory != nullptr; }

  /// Returns the next entry other than "." and "..", null at the end.  The
  /// entry lives until the next call.  Only for an open directory.
  const dirent* Next() {
    while (const dirent* entry = readdir(mDirectory)) {
      const std::string_view name = entry->d_name;
      if (name != "." && name != "..") return entry;
    }
    return nullptr;
  }

 private:
  DIR* mDirectory;
};

#endif  // KVT_FILE_DIRECTORY_READER_H
