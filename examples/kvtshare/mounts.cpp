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
    std::string device;
    std::string folder;
    std::string type;
    fields >> device >> folder >> type;
    if (!IsMountFolder(folder)) continue;
    auto mount = std::find_if(
        mounts.begin(), mounts.end(),
        [&](const CifsMount& other) { return other.folder == folder; });
    if (mount == mounts.end()) {
      mount = mounts.insert(mounts.end(), {"", folder, 0});
    }
    ++mount->layers;
    if (type == "cifs") mount->share = device;
  }
  mounts.erase(std::remove_if(
                   mounts.begin(), mounts.end(),
                   [](const CifsMount& mount) { return mount.share.empty(); }),
               mounts.end());
  return mounts;
}
