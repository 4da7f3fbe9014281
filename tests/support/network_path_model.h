/// What becomes of a location, once more, slow and obvious: units are looked at
/// one by one, nothing is decoded and built again.  The library is held against
/// it.

#ifndef KVT_TESTS_NETWORK_PATH_MODEL_H
#define KVT_TESTS_NETWORK_PATH_MODEL_H

#include <map>
#include <optional>
#include <string>

#include "test_strings.h"

namespace network_path_model {

/// The names a name service knows, as UTF-8, and their addresses.
using Names = std::map<std::string, std::string>;

/// No value where a piece is not assigned.
struct Pieces {
  int result = 0;
  std::optional<Units> hostIp;
  std::optional<Units> shareFolder;
  std::optional<Units> remainder;
};

/// The address that is assigned for `host`, the empty text included.
std::optional<Units> Resolve(const Units& host, const Names& names);

Pieces Parse(const Units& path, const Names& names);

}  // namespace network_path_model

#endif  // KVT_TESTS_NETWORK_PATH_MODEL_H
