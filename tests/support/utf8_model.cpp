#include "utf8_model.h"

#include <cstdlib>

namespace {

// A number written in binary, most significant digit first.
using Bits = std::string;

Bits ToBits(unsigned value, std::size_t width) {
  Bits bits;
  for (std::size_t i = 0; i < width; ++i) {
    bits.insert(bits.begin(), (value & 1) != 0 ? '1' : '0');
    value /= 2;
  }
  return bits;
}

unsigned FromBits(const Bits& bits) {
  return static_cast<unsigned>(std::strtoul(bits.c_str(), nullptr, 2));
}

Bits LowBits(char byte, std::size_t count) {
  return ToBits(static_cast<unsigned char>(byte), 8).substr(8 - count);
}

Bits Payload(char lead, std::size_t leadBits, const std::string& behind) {
  Bits bits = LowBits(lead, leadBits);
  for (const char byte : behind) bits += LowBits(byte, 6);
  return bits;
}

struct Lead {
  unsigned first;
  unsigned last;
  std::size_t behind;
  std::size_t payloadBits;
};

constexpr Lead kLeads[] = {
    {0x00, 0x7F, 0, 7},
    {0x80, 0xDF, 1, 5},
    {0xE0, 0xEF, 2, 4},
    {0xF0, 0xF7, 3, 3},
};

}  // namespace

std::basic_string<unsigned short> ModelDecodeUtf8(const std::string& bytes) {
  std::basic_string<unsigned short> units;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const unsigned byte = static_cast<unsigned char>(bytes[i]);
    for (const Lead& lead : kLeads) {
      if (byte < lead.first || byte > lead.last) continue;
      if (i + lead.behind >= bytes.size()) break;
      const Bits bits =
          Payload(bytes[i], lead.payloadBits, bytes.substr(i + 1, lead.behind));
      if (lead.behind < 3) {
        units += static_cast<unsigned short>(FromBits(bits));
      } else {
        // Of the 21 bits, the upper five are the plane.
        const unsigned plane = FromBits(bits.substr(0, 5)) - 1u;
        const unsigned high = FromBits(bits.substr(5, 6));
        const unsigned low = FromBits(bits.substr(11));
        units += static_cast<unsigned short>(0xD800u | (plane * 64u) | high);
        units += static_cast<unsigned short>(0xDC00u + low);
      }
      i += lead.behind;
      break;
    }
  }
  return units;
}

std::string ModelEncodeUtf8(const std::basic_string<unsigned short>& units) {
  const auto byte = [](const Bits& bits) {
    return static_cast<char>(FromBits(bits));
  };
  std::string bytes;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const Bits bits = ToBits(units[i], 16);
    const Bits next = i + 1 < units.size() ? ToBits(units[i + 1], 16) : "";
    if (units[i] <= 0x7F) {
      bytes += byte(bits);
    } else if (units[i] <= 0x7FE) {
      bytes += byte("110" + bits.substr(5, 5));
      bytes += byte("10" + bits.substr(10));
    } else if (bits.substr(0, 6) == "110110" && next.substr(0, 6) == "110111") {
      const Bits plane = ToBits(FromBits(bits.substr(6, 4)) + 1, 5);
      const Bits code = plane + bits.substr(10) + next.substr(6);
      bytes += byte("11110" + code.substr(0, 3));
      bytes += byte("10" + code.substr(3, 6));
      bytes += byte("10" + code.substr(9, 6));
      bytes += byte("10" + code.substr(15));
      ++i;
    } else {
      bytes += byte("1110" + bits.substr(0, 4));
      bytes += byte("10" + bits.substr(4, 6));
      bytes += byte("10" + bits.substr(10));
    }
  }
  return bytes;
}
