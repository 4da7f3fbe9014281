#include "glob_model.h"

#include <cctype>

namespace {

char Folded(char c) {
  return static_cast<char>(tolower(static_cast<unsigned char>(c)));
}

bool AnyOf(const std::string& set, char c) {
  for (const char member : set) {
    if (Folded(member) == Folded(c)) return true;
  }
  return false;
}

}  // namespace

bool GlobMatches(const std::string& pattern, const std::string& name) {
  if (pattern.empty()) return name.empty();
  if (pattern[0] == '*') {
    // Nothing, or one character more.
    return GlobMatches(pattern.substr(1), name) ||
           (!name.empty() && GlobMatches(pattern, name.substr(1)));
  }
  if (name.empty()) return false;
  const std::size_t close = pattern.find(']', 1);
  if (pattern[0] == '[' && close != std::string::npos) {
    return AnyOf(pattern.substr(1, close - 1), name[0]) &&
           GlobMatches(pattern.substr(close + 1), name.substr(1));
  }
  const std::string rest =
      pattern.substr(pattern[0] == '\\' && pattern.size() > 1 ? 1 : 0);
  if (pattern[0] != '?' && Folded(rest[0]) != Folded(name[0])) return false;
  return GlobMatches(rest.substr(1), name.substr(1));
}
