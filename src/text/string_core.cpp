#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "KVTString.h"
#include "string_codec.h"

namespace {

const unsigned short* CheckedUnits(const unsigned short* units) {
  if (units == nullptr) {
    throw std::logic_error("basic_string::_S_construct null not valid");
  }
  return units;
}

KVTUnits NarrowWideText(const wchar_t* text) {
  KVTUnits units;
  if (text == nullptr) return units;
  for (; *text != 0; ++text) units += static_cast<unsigned short>(*text);
  return units;
}

KVTUnits SignExtend(const char* text) {
  KVTUnits units;
  units.reserve(std::strlen(text));
  for (; *text != 0; ++text) {
    units += static_cast<unsigned short>(static_cast<signed char>(*text));
  }
  return units;
}

KVTUnits ReadNarrowText(const char* text,
                        KVTString::KVTCharEncodingType encoding) {
  if (text == nullptr) return KVTUnits();
  // As an int: callers may pass values that are no enumerator.
  switch (static_cast<int>(encoding)) {
    case KVTString::KVTCharEncodingNarrow:
      return SignExtend(text);
    case KVTString::KVTCharEncodingUTF8:
      return DecodeUtf8(text, std::strlen(text));
    default:
      return KVTUnits();
  }
}

std::string FoldedUtf8(const KVTString& text) {
  std::string bytes = text.GetUTF8String();
  for (char& byte : bytes) {
    byte = static_cast<char>(std::toupper(static_cast<signed char>(byte)));
  }
  return bytes;
}

char* DuplicateThrough(int (*convert)(int), const char* text) {
  if (text == nullptr) return nullptr;
  char* const copy = strdup(text);
  if (copy == nullptr) return nullptr;
  for (char* byte = copy; *byte != 0; ++byte) {
    *byte = static_cast<char>(convert(static_cast<unsigned char>(*byte)));
  }
  return copy;
}

}  // namespace

KVTString::KVTString() = default;

KVTString::KVTString(const unsigned short* units)
    : basic_string(CheckedUnits(units)) {}

KVTString::KVTString(const wchar_t* text)
    : basic_string(NarrowWideText(text)) {}

KVTString::KVTString(const char* text, KVTCharEncodingType encoding)
    : basic_string(ReadNarrowText(text, encoding)) {}

KVTString::KVTString(const basic_string& units) : basic_string(units) {}

// Callers rely on the copy ending at the first zero unit.
KVTString::KVTString(const KVTString& other) : basic_string(other.c_str()) {}

KVTString& KVTString::operator=(const KVTString& other) {
  assign(other);
  return *this;
}

KVTString::~KVTString() = default;

unsigned long KVTString::GetNPos() { return npos; }

std::wstring KVTString::GetWstring() const {
  return std::wstring(begin(), end());
}

std::string KVTString::GetUTF8String() const {
  return EncodeUtf8(data(), size());
}

bool KVTString::ContainsAny(const KVTString& set, unsigned int start) const {
  // Callers rely on `start` being held against the length of the set.
  if (start >= set.size() || start >= size()) return false;
  return find_first_of(set, start) != npos;
}

bool KVTString::IsNonVisibleCharacter(unsigned char c) {
  return c >= 0x08 && c <= 0x0D;
}

bool KVTString::CompareBasedOnOSCaseSensitivity(KVTString a, KVTString b) {
  return FoldedUtf8(a) == FoldedUtf8(b);
}

int KVTString::CompareBasedOnCaseInsensitivity(KVTString a, KVTString b) {
  const std::string first = FoldedUtf8(a);
  const std::string second = FoldedUtf8(b);
  const int order = std::memcmp(first.data(), second.data(),
                                std::min(first.size(), second.size()));
  if (order != 0) return order;
  const long long difference = static_cast<long long>(first.size()) -
                               static_cast<long long>(second.size());
  return static_cast<int>(
      std::max<long long>(INT_MIN, std::min<long long>(INT_MAX, difference)));
}

char* KVTString::ConvertStringLower(const char* s) {
  return DuplicateThrough(std::tolower, s);
}

char* KVTString::ConvertStringUpper(const char* s) {
  return DuplicateThrough(std::toupper, s);
}
