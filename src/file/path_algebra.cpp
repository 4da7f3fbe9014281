// Positions and lengths are 32-bit on purpose, and wrap: a search that finds
// nothing gives 0xFFFFFFFF, adding 1 to it gives the start of the text, and a
// count below zero reads to the end.  Callers rely on the results this gives at
// the edges.

#include <algorithm>

#include "KVTFile.h"
#include "KVTFileUtil.h"

namespace {

constexpr unsigned int kToTheEnd = 0xFFFFFFFF;
constexpr unsigned short kDot = '.';
constexpr unsigned short kSlash = '/';

unsigned int Length(const KVTString& text) {
  return static_cast<unsigned int>(text.size());
}

// The last index of a unit of `set`; 0xFFFFFFFF when there is none.
unsigned int FindLast(const KVTString& text, const KVTString& set) {
  return static_cast<unsigned int>(text.find_last_of(set));
}

unsigned int FindLast(const KVTString& text, unsigned short unit) {
  return static_cast<unsigned int>(text.rfind(unit));
}

KVTString SubString(const KVTString& text, unsigned int start,
                    unsigned int count) {
  KVTString whole;
  whole = text;  // a copy would end at the first zero unit
  return whole.SubString(start, count);
}

bool EndsWith(const KVTString& path, const KVTString& separator) {
  return FindLast(path, separator) == Length(path) - 1;
}

KVTString ParentPath(const KVTString& path, const KVTString& separator,
                     bool keepSeparator) {
  if (path.empty()) return KVTString();
  const unsigned int last = FindLast(path, separator);
  // Callers rely on a path without a separator being its own parent, and on an
  // empty parent when the separator is to stay.
  if (!keepSeparator) return SubString(path, 0, last);
  return SubString(path, 0, last + Length(separator));
}

}  // namespace

KVTString KVTFile::GetParentPath(bool keepSeparator) const {
  return ParentPath(mPath, KVTFileUtil::GetSeparator(), keepSeparator);
}

KVTString KVTFile::GetLinuxParentPath(bool keepSeparator) const {
  return ParentPath(mPath, "/", keepSeparator);
}

KVTString KVTFile::GetWinParentPath(bool keepSeparator) const {
  return ParentPath(mPath, "\\", keepSeparator);
}

KVTString KVTFile::GetName() const {
  if (mPath.empty()) return KVTString();
  const KVTString separator = KVTFileUtil::GetSeparator();
  if (!EndsWith(mPath, separator)) {
    return SubString(mPath, FindLast(mPath, separator) + Length(separator),
                     kToTheEnd);
  }
  const KVTString trimmed = SubString(mPath, 0, Length(mPath) - 1);
  return SubString(trimmed, FindLast(trimmed, separator) + Length(separator),
                   kToTheEnd);
}

bool KVTFile::SetName(const KVTString& name) {
  if (name.empty()) return false;
  const KVTString old = GetName();
  if (old.empty()) return false;
  // Callers rely on the cut counting from the end of the path, one unit to the
  // right of the name when a separator trails.
  mPath = SubString(mPath, 0, Length(mPath) - Length(old)) + name;
  return true;
}

bool KVTFile::AppendName(const KVTString& name) {
  if (name.empty() || mPath.empty()) return false;
  if (!name.IsPermissableFileName()) return false;
  const KVTString separator = KVTFileUtil::GetSeparator();
  if (EndsWith(mPath, separator)) {
    mPath = mPath + name;
  } else {
    mPath = mPath + separator + name;
  }
  return true;
}

bool KVTFile::RemoveName() {
  if (mPath.empty()) return false;
  const KVTString separator = KVTFileUtil::GetSeparator();
  const unsigned int separators = EndsWith(mPath, separator) ? 2 : 1;
  // Callers rely on a path too short for the subtraction staying as it is, and
  // on true all the same.
  mPath = SubString(
      mPath, 0,
      Length(mPath) - Length(GetName()) - separators * Length(separator));
  return true;
}

KVTString KVTFile::GetExtension() const {
  const KVTString name = GetName();
  const unsigned int dot = FindLast(name, kDot);
  if (dot == kToTheEnd) return KVTString();
  const unsigned int length = Length(name) - dot - 1;
  // Callers rely on .html and longer endings not counting as extensions.
  if (length < 1 || length > 3) return KVTString();
  return SubString(name, dot + 1, length);
}

bool KVTFile::SetExtension(const KVTString& extension) {
  if (extension.empty()) return false;
  const KVTString current = GetExtension();
  if (current.empty()) {
    mPath = mPath + "." + extension;
  } else {
    // Counted from the end of the path, as in SetName.
    mPath = SubString(mPath, 0, Length(mPath) - Length(current)) + extension;
  }
  return true;
}

KVTString KVTFile::GetFileNameFromURL(bool keepExtension) const {
  if (mPath.empty()) return KVTString();
  const unsigned int start = FindLast(mPath, kSlash) + 1;
  if (keepExtension) return SubString(mPath, start, Length(mPath));
  const KVTString extension = GetExtension();
  if (extension.empty()) return SubString(mPath, start, Length(mPath) - start);
  return SubString(mPath, start, Length(mPath) - 1 - Length(extension) - start);
}

KVTString KVTFile::RemoveFileExtension(const KVTString& text) {
  const std::size_t dot = text.rfind(kDot);
  // Callers rely on endings of two to four units going, one unit more than
  // GetExtension counts; unsigned wrapping takes shorter ones out of the range.
  const bool removes = text.size() - 3 - dot <= 2;
  return KVTString(text.substr(0, removes ? dot : KVTString::npos));
}

bool KVTFile::IsValidName() const {
  const KVTString name = GetName();
  if (name.empty()) return false;
  const std::vector<KVTString> illegal = KVTFileUtil::GetIllegalCharacters();
  return std::none_of(
      illegal.begin(), illegal.end(),
      [&name](const KVTString& entry) { return name.ContainsAny(entry, 0); });
}
