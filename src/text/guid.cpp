#include "KVTGUID.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "KVTString.h"

namespace {

constexpr std::size_t kTextLength = 36;
constexpr std::size_t kParts = 5;
constexpr std::size_t kTailBytes = 8;

// Reads pairs of hexadecimal digits into `bytes`; false when there are more
// than eight.
bool ReadTail(const std::string& tail, signed char (&bytes)[kTailBytes]) {
  std::stringstream stream;
  stream << std::hex;
  for (std::size_t i = 0; i < tail.size(); i += 2) {
    unsigned int number = 0;
    // Callers rely on what a read could not use staying in front of the next
    // pair: after the first bad pair every read fails and gives zero.
    stream.clear();
    stream << tail.substr(i, 2);
    stream >> number;
    if (i / 2 == kTailBytes) return false;
    bytes[i / 2] = static_cast<signed char>(number);
  }
  return true;
}

}  // namespace

KVTGUID::KVTGUID() : mData1(0), mData2(0), mData3(0), mData4{} {}

KVTGUID::KVTGUID(int data1, short data2, short data3, signed char* data4)
    : mData1(data1), mData2(data2), mData3(data3) {
  std::copy_n(data4, kTailBytes, mData4);
}

KVTGUID::KVTGUID(const KVTGUID& other) = default;

KVTGUID& KVTGUID::operator=(const KVTGUID& other) = default;

KVTGUID::~KVTGUID() = default;

bool KVTGUID::operator==(const KVTGUID& other) const {
  return mData1 == other.mData1 && mData2 == other.mData2 &&
         mData3 == other.mData3 &&
         std::equal(mData4, mData4 + kTailBytes, other.mData4);
}

bool KVTGUID::operator!=(const KVTGUID& other) const {
  return !(*this == other);
}

KVTGUID KVTString::GetGUID(KVTString text) {
  if (text.size() != kTextLength) return KVTGUID();
  std::vector<KVTString> parts;
  text.SubStrings(KVTString("-", KVTCharEncodingUTF8), parts);
  if (parts.size() != kParts) return KVTGUID();

  signed char bytes[kTailBytes] = {};
  const KVTString tail = parts[3] + parts[4];
  if (!ReadTail(tail.GetUTF8String(), bytes)) return KVTGUID();
  return KVTGUID(static_cast<int>(parts[0].GetIntValue(std::hex)),
                 static_cast<short>(parts[1].GetIntValue(std::hex)),
                 static_cast<short>(parts[2].GetIntValue(std::hex)), bytes);
}
