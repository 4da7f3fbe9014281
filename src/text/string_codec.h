/// Conversion between UTF-8 bytes and 16-bit units.

#ifndef KVT_TEXT_STRING_CODEC_H
#define KVT_TEXT_STRING_CODEC_H

#include <cstddef>
#include <string>

using KVTUnits = std::basic_string<unsigned short>;

/// Decodes `size` bytes; never fails.
KVTUnits DecodeUtf8(const char* bytes, std::size_t size);

/// Encodes `size` units; never fails.
std::string EncodeUtf8(const unsigned short* units, std::size_t size);

#endif  // KVT_TEXT_STRING_CODEC_H
