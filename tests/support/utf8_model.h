/// A slow, obvious model of the two conversions between UTF-8 and units.

#ifndef KVT_TESTS_UTF8_MODEL_H
#define KVT_TESTS_UTF8_MODEL_H

#include <string>

/// What KVTString is to make of the narrow text `bytes`.
std::basic_string<unsigned short> ModelDecodeUtf8(const std::string& bytes);

/// What KVTString::GetUTF8String is to make of `units`.
std::string ModelEncodeUtf8(const std::basic_string<unsigned short>& units);

#endif  // KVT_TESTS_UTF8_MODEL_H
