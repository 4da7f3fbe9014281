#include <algorithm>
#include <cctype>
#include <sstream>
#include <stdexcept>

#include "KVTString.h"

namespace {

using Units = std::basic_string<unsigned short>;

constexpr char kDigits[] = "1234567890";
constexpr char kUpperCaseLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr char kWhiteSpace[] = " \t\v\r\n";
constexpr char kVowels[] = "AEIOUaeiou";
constexpr char kSpecialCharacters[] = "~`!@#$%^&*()_+{}:\"<>?/.,';][=-|\\";
constexpr char kFileNameCharacters[] = "\\/:?%*<\">|";

KVTString Decode(const std::string& bytes) {
  return KVTString(bytes.c_str(), KVTString::KVTCharEncodingUTF8);
}

[[noreturn]] void ThrowSubstrOutOfRange() {
  throw std::out_of_range("basic_string::substr");
}

// Empty for a separator that is zero or not ASCII.
KVTString SeparatorSet(char separator) {
  return Decode(std::string(1, separator));
}

// The two sides of the unit at `position`, or nothing when there is none.
std::vector<KVTString> SplitAt(KVTString& text, std::size_t position) {
  std::vector<KVTString> parts;
  if (position == Units::npos) return parts;
  const unsigned int length = static_cast<unsigned int>(text.size());
  const unsigned int index = static_cast<unsigned int>(position);
  parts.reserve(2);
  parts.push_back(text.SubString(0, index));
  parts.push_back(text.SubString(index + 1, length - 1));
  return parts;
}

KVTString ConvertBytes(const KVTString& text, int (*convert)(int)) {
  std::string bytes = text.GetUTF8String();
  for (char& byte : bytes) {
    byte = static_cast<char>(convert(static_cast<signed char>(byte)));
  }
  return Decode(bytes);
}

}  // namespace

// --- Cutting, splitting and joining

KVTString KVTString::SubString(unsigned int start, unsigned int count) {
  if (empty()) return KVTString();
  if (start > size()) ThrowSubstrOutOfRange();
  return KVTString(substr(start, count));
}

std::vector<KVTString> KVTString::SplitStringOnce(KVTString text,
                                                  char separator) {
  return SplitAt(text, text.find_first_of(SeparatorSet(separator)));
}

std::vector<KVTString> KVTString::SplitStringOnceFromLast(KVTString text,
                                                          char separator) {
  return SplitAt(text, text.find_last_of(SeparatorSet(separator)));
}

bool KVTString::SubStrings(const KVTString& delimiters,
                           std::vector<KVTString>& out) const {
  if (delimiters.empty()) return false;
  if (find_first_of(delimiters) == npos) {
    out.push_back(*this);
    return true;
  }

  std::size_t start = find_first_not_of(delimiters);
  if (start == npos) return true;
  std::size_t end = find_first_of(delimiters, start);
  // Callers rely on a token that only has delimiters in front being left out.
  if (end == npos) return true;

  while (true) {
    out.push_back(KVTString(substr(start, end - start)));
    start = find_first_not_of(delimiters, end + 1);
    if (start == npos) return true;
    end = find_first_of(delimiters, start);
    if (end == npos) {
      out.push_back(KVTString(substr(start)));
      return true;
    }
  }
}

std::vector<std::string> KVTString::GetVectorFromString(KVTString text,
                                                        char separator) {
  std::vector<std::string> fields;
  std::istringstream in(text.GetUTF8String());
  for (std::string field; std::getline(in, field, separator);) {
    fields.push_back(field);
  }
  return fields;
}

KVTString KVTString::GetStringFromVector(std::vector<KVTString> parts,
                                         KVTString separator) {
  Units joined;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) joined += separator;
    joined += parts[i];
  }
  return KVTString(joined);
}

void KVTString::ListCombinationsOfString(char* buffer, unsigned int start,
                                         unsigned int end, unsigned int index,
                                         unsigned int size,
                                         std::vector<KVTString>& out) const {
  if (index == size) {
    buffer[size] = 0;
    out.push_back(KVTString(buffer, KVTCharEncodingUTF8));
    return;
  }
  for (unsigned int i = start; i <= end && size - index <= end + 1 - i; ++i) {
    buffer[index] = static_cast<char>(data()[i]);
    ListCombinationsOfString(buffer, i + 1, end, index + 1, size, out);
  }
}

// --- Trimming, replacing, case

KVTString KVTString::TrimLeadingSpaces(const KVTString& text) {
  // White space is one byte and one unit each, so the index holds for both.
  const std::size_t start = text.GetUTF8String().find_first_not_of(kWhiteSpace);
  if (start > text.size()) ThrowSubstrOutOfRange();
  return KVTString(text.substr(start));
}

KVTString KVTString::TrimChars(char c) const {
  const unsigned short unit =
      static_cast<unsigned short>(static_cast<signed char>(c));
  const KVTString text(*this);
  const std::size_t first = text.find_first_not_of(unit);
  if (first == npos) return KVTString();
  const std::size_t last = text.find_last_not_of(unit);
  return KVTString(text.substr(first, last - first + 1));
}

// Gives what replacing the first match and searching again from the front
// gives, in one pass.  All matches have one length, so the first to begin is
// the first to end: units move from the unread text to `done`, which never
// holds a match, and when `done` ends in `from`, that end gives way to `to`,
// put in front of what is still to be read.  Text made by one replacement can
// so match again.
KVTString& KVTString::ReplaceAll(const KVTString& from, const KVTString& to) {
  if (from.empty() || from == to) return *this;
  std::size_t position = find(from);
  if (position == npos) return *this;

  const std::size_t kept = from.size() - 1;
  Units done(*this, 0, position);
  Units pushedBack;  // last unit first
  while (position < size() || !pushedBack.empty()) {
    if (pushedBack.empty()) {
      done += (*this)[position++];
    } else {
      done += pushedBack.back();
      pushedBack.pop_back();
    }
    if (done.back() != from[kept] || done.size() <= kept) continue;
    const std::size_t start = done.size() - from.size();
    if (done.compare(start, from.size(), from) != 0) continue;
    done.resize(start);
    pushedBack.append(to.rbegin(), to.rend());
  }
  swap(done);
  return *this;
}

KVTString KVTString::ReplaceAllSpacesWithOneSpace(KVTString text) {
  std::string bytes = text.GetUTF8String();
  bytes.erase(std::unique(bytes.begin(), bytes.end(), SpaceComparer),
              bytes.end());
  return Decode(bytes);
}

bool KVTString::SpaceComparer(char a, char b) { return a == ' ' && b == a; }

void KVTString::RemoveInVisibleCharacters(KVTString& text) {
  std::string bytes = text.GetUTF8String();
  bytes.erase(std::remove_if(bytes.begin(), bytes.end(), IsNonVisibleCharacter),
              bytes.end());
  text = Decode(bytes);
}

KVTString KVTString::RemoveVowels() const {
  const Units vowels = Decode(kVowels);
  const KVTString text(*this);
  // Callers rely on a signed 32-bit count: from 0x80000000 units on it is
  // negative, and nothing is kept.
  const int count = static_cast<int>(text.size());
  std::string bytes;
  for (int i = 0; i < count; ++i) {
    const unsigned short unit = text.data()[i];
    if (vowels.find(unit) == npos) bytes += static_cast<char>(unit);
  }
  return Decode(bytes);
}

KVTString KVTString::ConvertStringLower() {
  return ConvertBytes(KVTString(*this), std::tolower);
}

KVTString KVTString::ConvertStringUpper() {
  return ConvertBytes(KVTString(*this), std::toupper);
}

// --- Character classes

bool KVTString::ContainsSpecialCharacters() const {
  return ContainsAny(Decode(kSpecialCharacters), 0);
}

bool KVTString::IsPermissableFileName() const {
  return !empty() && !ContainsAny(Decode(kFileNameCharacters), 0);
}

std::vector<KVTString> KVTString::GetNotAllowedCharactersForFileName() {
  return {"/", "\\", ":", "*", "?", ">", "\"", "<", "|", "%"};
}

bool KVTString::ContainsOnlyDigits() const {
  const KVTString text(*this);
  return !text.empty() && text.find_first_not_of(Decode(kDigits)) == npos;
}

bool KVTString::ContainsOnlyAlphabets() const {
  KVTString text(*this);
  for (unsigned short& unit : text) {
    unit = static_cast<unsigned short>(std::toupper(unit));
  }
  return !text.empty() &&
         text.find_first_not_of(Decode(kUpperCaseLetters)) == npos;
}
