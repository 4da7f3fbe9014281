#include "mounts.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

bool IsMountFolder(const std::string& folder) {
  const std::string prefix = "/mnt/orbmount";
  return folder.size() == prefix.size() + 1 &&
         folder.compare(0, prefix.size(), prefix) == 0 &&
         folder.back() >= 'A' && folder.back() <= 'Z';
}

}  // namespace

std::vector<CifsMount> ListMounts() {
  std::ifstream file("/proc/mounts");
  if (!file) throw std::runtime_error("cannot read /proc/mounts");

  std::vector<CifsMount> mounts;
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    CifsMount mount = {"", "", 1};
    std::string type;
    fields >> mount.share >> mount.folder >> type;
    if (type != "cifs" || !IsMountFolder(mount.folder)) continue;
    const auto same = std::find_if(
        mounts.begin(), mounts.end(),
        [&](const CifsMount& other) { return other.folder == mount.folder; });
    if (same == mounts.end()) {
      mounts.push_back(mount);
    } else {
      ++same->layers;
    }
  }
  return mounts;
}
