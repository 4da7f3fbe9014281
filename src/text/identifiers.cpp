#include <uuid/uuid.h>

#include <cctype>

#include "KVTFileUtil.h"

namespace {

constexpr std::size_t kTextLength = 36;
constexpr std::size_t kBufferSize = 40;  // uuid_unparse writes 37 bytes

bool IsDashPosition(std::size_t position) {
  return position == 8 || position == 13 || position == 18 || position == 23;
}

}  // namespace

bool KVTFileUtil::isGUIDValid(KVTString text) {
  if (text.size() != kTextLength) return false;
  for (std::size_t i = 0; i < kTextLength; ++i) {
    // Callers rely on the low byte alone being looked at: 0x0141 passes for A.
    const signed char low = static_cast<signed char>(text[i]);
    if (IsDashPosition(i) ? low != '-' : std::isxdigit(low) == 0) return false;
  }
  return true;
}

KVTString KVTFileUtil::GetUUID(KVTString prefix) {
  uuid_t uuid;
  uuid_generate(uuid);
  char text[kBufferSize];
  uuid_unparse(uuid, text);
  if (prefix.empty()) return KVTString(text, KVTString::KVTCharEncodingUTF8);
  return prefix + text;
}
