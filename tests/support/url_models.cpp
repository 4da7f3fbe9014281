#include "url_models.h"

#include "utf8_model.h"

namespace {

// How many bytes of the UTF-8 form stand before the first that is in `set`;
// -1 when none is.  Goes unit by unit and adds up the bytes each takes.
long BytesBefore(const KVTString& text, const std::string& set) {
  long bytes = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] < 0x80 &&
        set.find(static_cast<char>(text[i])) != std::string::npos) {
      return bytes;
    }
    const bool pair = text[i] >= 0xD800 && text[i] <= 0xDBFF &&
                      i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                      text[i + 1] <= 0xDFFF;
    if (pair) {
      bytes += 4;
      ++i;
    } else {
      bytes += text[i] < 0x80 ? 1 : text[i] < 0x7FF ? 2 : 3;
    }
  }
  return -1;
}

// The units before `end`, or all of them.
KVTString Head(const KVTString& text, long end) {
  std::basic_string<unsigned short> units;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (end >= 0 && static_cast<long>(i) >= end) break;
    units += text[i];
  }
  return KVTString(units);
}

}  // namespace

bool ModelHasProtocol(const KVTString& location) {
  const KVTString head = Head(location, BytesBefore(location, ":/"));
  std::string lower;
  for (const unsigned short unit : head) {
    if (unit >= 0x80) return false;
    const char c = static_cast<char>(unit);
    lower += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return lower == "https" || lower == "http" || lower == "ftp";
}

ModelText ModelProtocol(const KVTString& location) {
  const long end = BytesBefore(location, ":/");
  if (end == static_cast<long>(location.size())) return {false, false, "", ""};
  return {false, true, Head(location, end), ""};
}

ModelText ModelUrl(const KVTString& location) {
  KVTString rest = location;
  std::string printed;
  if (ModelHasProtocol(location)) {
    const long start = BytesBefore(location, ":/") + 3;  // 2 when not found
    const long size = static_cast<long>(location.size());
    if (start > size) return {true, false, "", ""};
    std::basic_string<unsigned short> units;
    for (long i = start; i < size; ++i) {
      units += location[static_cast<std::size_t>(i)];
    }
    rest = KVTString(units);
    printed = ModelEncodeUtf8(units) + "\n";
  }
  const long end = BytesBefore(rest, "/");
  if (end == static_cast<long>(rest.size())) return {false, false, "", printed};
  return {false, true, Head(rest, end), printed};
}
