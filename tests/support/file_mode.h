/// Permissions of files, and the mask that new ones get them under.

#ifndef KVT_TESTS_FILE_MODE_H
#define KVT_TESTS_FILE_MODE_H

#include <sys/stat.h>

#include <stdexcept>
#include <string>

/// The process's umask(2) while the object lives.
class Umask {
 public:
  explicit Umask(mode_t mask) : mPrevious(umask(mask)) {}
  ~Umask() { umask(mPrevious); }
  Umask(const Umask&) = delete;
  Umask& operator=(const Umask&) = delete;

 private:
  mode_t mPrevious;
};

/// The twelve bits of permission; throws when there is no file.
inline mode_t ModeOf(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) {
    throw std::runtime_error("no file " + path);
  }
  return status.st_mode & 07777;
}

#endif  // KVT_TESTS_FILE_MODE_H
