/// The path algebra once more, slow and obvious: signed lengths, no wrapping,
/// one case after the other.  The library is held against it.

#ifndef KVT_TESTS_PATH_MODEL_H
#define KVT_TESTS_PATH_MODEL_H

#include <string>

#include "test_strings.h"

namespace path_model {

/// What an operation that changes a path answers and leaves.
struct Changed {
  bool result;
  Units path;
};

Units Parent(const Units& path, char separator, bool keepSeparator);
Units Name(const Units& path);
Units Extension(const Units& path);
Units FileNameFromURL(const Units& path, bool keepExtension);
Units WithoutExtension(const Units& text);
bool IsValidName(const Units& path);
bool HasValidPath(const Units& path);

Changed SetName(const Units& path, const Units& name);
Changed AppendName(const Units& path, const Units& name);
Changed RemoveName(const Units& path);
Changed SetExtension(const Units& path, const Units& extension);

}  // namespace path_model

#endif  // KVT_TESTS_PATH_MODEL_H
