/// What the kernel says about the library's mount folders.

#ifndef KVTSHARE_MOUNTS_H
#define KVTSHARE_MOUNTS_H

#include <string>
#include <vector>

struct CifsMount {
  /// As it was given to mount(2): `//10.0.0.5/docs`.
  std::string share;
  std::string folder;
  /// How many file systems of any kind lie on that folder, one over the other.
  int layers;
};

/// The shares that /proc/mounts shows on the folders /mnt/orbmountA to
/// /mnt/orbmountZ, each folder once, whichever process mounted them.  Throws
/// std::runtime_error when it cannot be read.
std::vector<CifsMount> ListMounts();

#endif  // KVTSHARE_MOUNTS_H
