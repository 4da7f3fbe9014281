#include <unistd.h>

#include "KVTFileUtil.h"

namespace {

constexpr std::size_t kMaxPathBytes = 256;

// The target of the link, cut after kMaxPathBytes.
std::string ReadExecutableLink() {
  char target[kMaxPathBytes];
  const ssize_t length = readlink("/proc/self/exe", target, sizeof target);
  if (length < 0) return std::string();
  return std::string(target, static_cast<std::size_t>(length));
}

}  // namespace

KVTString KVTFileUtil::GetCurrentExecutablePath(bool includeName) {
  std::string path = ReadExecutableLink();
  const std::size_t slash = path.rfind('/');
  if (!includeName && slash != std::string::npos) path.erase(slash);
  return KVTString(path.c_str(), KVTString::KVTCharEncodingUTF8);
}
