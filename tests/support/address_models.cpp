#include "address_models.h"

#include <arpa/inet.h>

#include <algorithm>

namespace {

// The weight of each alphanumeric byte by its place in this list, as a table of
// digits, upper-case and lower-case letters would give it.
int Weight(char byte) {
  static const std::string kDigits = "0123456789";
  static const std::string kUpper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  static const std::string kLower = "abcdefghijklmnopqrstuvwxyz";
  std::size_t place = kDigits.find(byte);
  if (place != std::string::npos) return static_cast<int>(place);
  place = kUpper.find(byte);
  if (place != std::string::npos) return 17 + static_cast<int>(place);
  place = kLower.find(byte);
  if (place != std::string::npos) return 49 + static_cast<int>(place);
  return -1;
}

bool ModelIPV6Address(const std::string& text) {
  unsigned char address[16];
  return inet_pton(AF_INET6, text.c_str(), address) == 1;
}

bool AllDigits(const std::string& block) {
  return !block.empty() && std::all_of(block.begin(), block.end(), [](char c) {
    return c >= '0' && c <= '9';
  });
}

std::string MaskUpTo(std::string text, char delimiter, long count) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto before = text.begin() + static_cast<std::ptrdiff_t>(i);
    if (std::count(text.begin(), before, delimiter) == count) break;
    if (text[i] != delimiter) text[i] = 'X';
  }
  return text;
}

}  // namespace

std::vector<std::string> SplitAtEach(const std::string& text, char delimiter) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == delimiter) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

bool ModelIPV4Block(const std::string& block) {
  for (const char byte : block) {
    if (Weight(byte) < 0) return false;
  }
  switch (block.size()) {
    case 1:
      return true;
    case 2:
      return block[0] != '0' && 10 * Weight(block[0]) + Weight(block[1]) <= 255;
    case 3:
      return block[0] != '0' && 100 * Weight(block[0]) + 10 * Weight(block[1]) +
                                        Weight(block[2]) <=
                                    255;
    default:
      return false;
  }
}

bool ModelIPV4Address(const std::string& text) {
  const std::vector<std::string> parts = SplitAtEach(text, '.');
  return parts.size() == 4 &&
         std::all_of(parts.begin(), parts.end(), ModelIPV4Block);
}

bool ModelHostName(const std::string& text) {
  std::vector<std::string> blocks = SplitAtEach(text, '.');
  // What ends with the text is no block when nothing is in it.
  if (blocks.back().empty()) blocks.pop_back();
  const bool numeric = std::all_of(blocks.begin(), blocks.end(), AllDigits);
  return !numeric && text.find_first_of("':?,!()\";") == std::string::npos;
}

int ModelAddressType(const std::string& text) {
  if (text.find('.') < 4) return ModelIPV4Address(text) ? 0 : 2;
  if (text.find(':') < 5) return ModelIPV6Address(text) ? 1 : 2;
  return 2;
}

std::string ModelMask(const std::string& text) {
  if (ModelIPV4Address(text)) return MaskUpTo(text, '.', 2);
  if (ModelIPV6Address(text)) return MaskUpTo(text, ':', 4);
  return text;
}
