#include "KVTString.h"

namespace {

using Units = std::basic_string<unsigned short>;

bool SameUnits(const Units& a, const Units& b) { return a == b; }

// Joins the base strings: a copied KVTString would lose what follows a zero
// unit.
KVTString Join(const Units& a, const Units& b) { return KVTString(a + b); }

KVTString Decode(const char* text) {
  return KVTString(text, KVTString::KVTCharEncodingUTF8);
}

}  // namespace

bool operator==(const wchar_t* a, const KVTString& b) {
  return SameUnits(KVTString(a), b);
}

bool operator==(const KVTString& a, const wchar_t* b) {
  return SameUnits(a, KVTString(b));
}

bool operator==(const char* a, const KVTString& b) {
  return SameUnits(Decode(a), b);
}

bool operator==(const KVTString& a, const char* b) {
  return SameUnits(a, Decode(b));
}

KVTString& operator+=(KVTString& a, const char* b) {
  a.append(Decode(b));
  return a;
}

KVTString operator+(const char* a, const KVTString& b) {
  return Join(Decode(a), b);
}

KVTString operator+(const KVTString& a, const char* b) {
  return Join(a, Decode(b));
}

KVTString operator+(const wchar_t* a, const KVTString& b) {
  return Join(KVTString(a), b);
}

KVTString operator+(const KVTString& a, const wchar_t* b) {
  return Join(a, KVTString(b));
}

std::ostream& operator<<(std::ostream& out, const KVTString& text) {
  return out << text.GetUTF8String().c_str();
}
