#include "test_strings.h"

#include <algorithm>
#include <cstdio>

KVTString FromUnits(const std::vector<unsigned short>& units) {
  return KVTString(Units(units.begin(), units.end()));
}

KVTString FromUtf8(const std::string& bytes) {
  return KVTString(bytes.c_str(), KVTString::KVTCharEncodingUTF8);
}

KVTString Repeat(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return FromUtf8(all);
}

std::vector<KVTString> FromUtf8(std::initializer_list<const char*> texts) {
  return std::vector<KVTString>(texts.begin(), texts.end());
}

std::vector<std::string> AllTexts(const std::string& alphabet,
                                  std::size_t longest) {
  std::vector<std::string> texts = {""};
  std::size_t first = 0;
  for (std::size_t length = 1; length <= longest; ++length) {
    const std::size_t end = texts.size();
    for (; first < end; ++first) {
      for (const char next : alphabet) texts.push_back(texts[first] + next);
    }
  }
  return texts;
}

Units RandomUnits(std::mt19937& random, std::size_t maxLength, bool withZero) {
  static const unsigned short kEdges[] = {0x7F,   0x80,   0x7FE,  0x7FF,
                                          0x800,  0xD7FF, 0xD800, 0xDBFF,
                                          0xDC00, 0xDFFF, 0xE000, 0xFFFF};
  Units units(random() % (maxLength + 1), 0);
  for (unsigned short& unit : units) {
    switch (random() % 5) {
      case 0:
        unit = static_cast<unsigned short>(random());
        break;
      case 1:
        unit = static_cast<unsigned short>(0xD800 + random() % 0x800);
        break;
      case 2:
        unit = kEdges[random() % std::size(kEdges)];
        break;
      default:
        unit = static_cast<unsigned short>(random() % 0x80);
    }
    if (unit == 0 && !withZero) unit = 1;
  }
  return units;
}

void PrintTo(const KVTString& text, std::ostream* out) {
  const bool plain = std::all_of(text.begin(), text.end(), [](unsigned unit) {
    return unit >= 0x20 && (unit < 0xD800 || unit > 0xDFFF);
  });
  if (plain) {
    *out << '"' << text.GetUTF8String() << '"';
    return;
  }
  *out << "units {";
  for (const unsigned short unit : text) {
    char hex[8];
    std::snprintf(hex, sizeof hex, " %04X", unit);
    *out << hex;
  }
  *out << " }";
}
