/// Patterns with * ? [abc] and backslash, matched slowly and without regard to
/// case, for the tests of directory listings.

#ifndef KVT_TESTS_GLOB_MODEL_H
#define KVT_TESTS_GLOB_MODEL_H

#include <string>

/// Tells whether `pattern` stands for all of `name`.
bool GlobMatches(const std::string& pattern, const std::string& name);

#endif  // KVT_TESTS_GLOB_MODEL_H
