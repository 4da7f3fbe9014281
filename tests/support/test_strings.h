/// KVTString values for tests, and how GoogleTest shows them.

#ifndef KVT_TESTS_TEST_STRINGS_H
#define KVT_TESTS_TEST_STRINGS_H

#include <initializer_list>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "KVTFile.h"
#include "KVTString.h"

using Units = std::basic_string<unsigned short>;

/// "a", a zero unit, "b"; as the base string, so that nothing cuts it early.
inline const Units kWithZero{0x61, 0, 0x62};

/// Keeps zero units, which the copy constructor would cut: assign the result
/// or take it by reference.
KVTString FromUnits(const std::vector<unsigned short>& units);

KVTString FromUtf8(const std::string& bytes);

/// `count` times `text`.
KVTString Repeat(const std::string& text, std::size_t count);

std::vector<KVTString> FromUtf8(std::initializer_list<const char*> texts);

/// Every text over `alphabet` of at most `longest` characters, the shortest
/// first.
std::vector<std::string> AllTexts(const std::string& alphabet,
                                  std::size_t longest);

/// Random units up to `maxLength` of them: ASCII, surrogates and the edges of
/// the encoding come often; zero units only where `withZero`.
Units RandomUnits(std::mt19937& random, std::size_t maxLength, bool withZero);

/// Shows text as UTF-8 in quotes, or as units where that would mislead.
void PrintTo(const KVTString& text, std::ostream* out);
inline void PrintTo(const KVTFile& file, std::ostream* out) {
  PrintTo(file.GetPath(), out);
}

#endif  // KVT_TESTS_TEST_STRINGS_H
