/// Namespaces of the test process's own, so that it can mount, cover folders
/// and listen on any port without touching the machine.

#ifndef KVT_TESTS_NAMESPACES_H
#define KVT_TESTS_NAMESPACES_H

#include <string>

/// Gives the process mounts of its own (and, where it is not root, a user
/// namespace in which it is).  Call before any thread runs.  Throws when the
/// kernel refuses.
void EnterPrivateMounts();

/// The same with a network of its own besides, in which only loopback exists
/// and is up: every port from 1 on is free.
void EnterPrivateMountsAndNetwork();

/// Covers `path` with an empty file system in memory of at most `bytes` bytes
/// (0: the kernel's default).  Needs private mounts.
void CoverWithEmptyDirectory(const std::string& path, unsigned long bytes = 0);

/// Covers `path` with an empty directory in which nobody, root included, can
/// make or change anything.  Needs private mounts.
void CoverWithReadOnlyDirectory(const std::string& path);

/// Makes `target` show `source`, a file or a directory.  Needs private mounts.
void CoverWith(const std::string& source, const std::string& target);

/// Takes away the topmost cover of `path`.
void Uncover(const std::string& path);

/// A cover that ends with the object, which a test opens with one of
///
///     const ScopedCover full("/tmp", 4096);
///     const ScopedCover readOnly("/tmp", ScopedCover::kReadOnly);
class ScopedCover {
 public:
  enum Kind { kReadOnly };
  explicit ScopedCover(const std::string& path, unsigned long bytes = 0)
      : mPath(path) {
    CoverWithEmptyDirectory(path, bytes);
  }
  ScopedCover(const std::string& path, Kind) : mPath(path) {
    CoverWithReadOnlyDirectory(path);
  }
  ~ScopedCover() { Uncover(mPath); }
  ScopedCover(const ScopedCover&) = delete;
  ScopedCover& operator=(const ScopedCover&) = delete;

 private:
  const std::string mPath;
};

#endif  // KVT_TESTS_NAMESPACES_H
