#include "path_model.h"

namespace path_model {

namespace {

// Index of the last `unit`, -1 when there is none.
long LastIndex(const Units& text, char unit) {
  long last = -1;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == static_cast<unsigned char>(unit))
      last = static_cast<long>(i);
  }
  return last;
}

Units First(const Units& text, long count) {
  return Units(text.begin(), text.begin() + count);
}

Units Behind(const Units& text, long index) {
  return Units(text.begin() + index + 1, text.end());
}

bool HasAny(const Units& text, const std::string& characters) {
  for (const char character : characters) {
    if (LastIndex(text, character) != -1) return true;
  }
  return false;
}

long Length(const Units& text) { return static_cast<long>(text.size()); }

bool EndsInSeparator(const Units& path) {
  return !path.empty() && path.back() == '/';
}

}  // namespace

Units Parent(const Units& path, char separator, bool keepSeparator) {
  const long last = LastIndex(path, separator);
  if (last == -1) return keepSeparator ? Units() : path;
  return First(path, keepSeparator ? last + 1 : last);
}

Units Name(const Units& path) {
  const Units seen =
      EndsInSeparator(path) ? First(path, Length(path) - 1) : path;
  return Behind(seen, LastIndex(seen, '/'));
}

Units Extension(const Units& path) {
  const Units name = Name(path);
  const long dot = LastIndex(name, '.');
  if (dot == -1) return Units();
  const Units ending = Behind(name, dot);
  return ending.size() <= 3 ? ending : Units();
}

Units FileNameFromURL(const Units& path, bool keepExtension) {
  // Behind a trailing separator there is nothing to cut off.
  const Units rest = Behind(path, LastIndex(path, '/'));
  const long cut = Length(Extension(path)) + 1;
  if (keepExtension || rest.empty() || cut == 1) return rest;
  return First(rest, Length(rest) - cut);
}

Units WithoutExtension(const Units& text) {
  const long dot = LastIndex(text, '.');
  if (dot == -1) return text;
  const long ending = Length(Behind(text, dot));
  return ending >= 2 && ending <= 4 ? First(text, dot) : text;
}

bool IsValidName(const Units& path) {
  const Units name = Name(path);
  return !name.empty() && !HasAny(name, "\\/?*<\">|");
}

bool HasValidPath(const Units& path) {
  return !path.empty() && !HasAny(path, "\\?*<\">|");
}

Changed SetName(const Units& path, const Units& name) {
  const Units old = Name(path);
  if (name.empty() || old.empty()) return {false, path};
  return {true, First(path, Length(path) - Length(old)) + name};
}

Changed AppendName(const Units& path, const Units& name) {
  if (path.empty() || name.empty() || HasAny(name, "\\/:?%*<\">|")) {
    return {false, path};
  }
  if (EndsInSeparator(path)) return {true, path + name};
  return {true, path + Units(1, '/') + name};
}

Changed RemoveName(const Units& path) {
  if (path.empty()) return {false, path};
  const long left =
      Length(path) - Length(Name(path)) - (EndsInSeparator(path) ? 2 : 1);
  return {true, left < 0 ? path : First(path, left)};
}

Changed SetExtension(const Units& path, const Units& extension) {
  if (extension.empty()) return {false, path};
  const Units old = Extension(path);
  if (old.empty()) return {true, path + Units(1, '.') + extension};
  return {true, First(path, Length(path) - Length(old)) + extension};
}

}  // namespace path_model
