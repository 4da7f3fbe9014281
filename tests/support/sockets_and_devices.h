/// Files that are neither plain nor directories.

#ifndef KVT_TESTS_SOCKETS_AND_DEVICES_H
#define KVT_TESTS_SOCKETS_AND_DEVICES_H

#include <sys/types.h>

#include <string>

/// Leaves a socket's file at `path`; throws when it cannot.
void MakeSocket(const std::string& path);

/// Makes a device file of `type`, S_IFBLK or S_IFCHR, with no driver behind it.
/// Takes root; throws when the kernel refuses.
void MakeDevice(const std::string& path, mode_t type);

#endif  // KVT_TESTS_SOCKETS_AND_DEVICES_H
