#include <string>

#include "KVTShareFile.h"

namespace {

// Compared byte for byte: "SMB:" is no prefix.
constexpr const char* kSharePrefixes[] = {"smb:", "cifs:", "\\\\", "//"};

// A shorter path, in 16-bit units, is never a share.
constexpr std::size_t kShortestSharePath = 3;

bool StartsWith(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

}  // namespace

bool KVTShareFile::IsSharePath(const KVTString& path) {
  if (path.length() < kShortestSharePath) return false;
  const std::string utf8 = path.GetUTF8String();
  for (const char* prefix : kSharePrefixes) {
    // Callers rely on a location with a refused character being no share: it
    // goes down the local route and no error says why.
    if (StartsWith(utf8, prefix)) return !isMaliciousNetworkShare(path);
  }
  return false;
}

bool KVTShareFileInternal::isMaliciousNetworkShare(KVTString path) {
  return path.ContainsAny("*?<>|%", 0);
}
