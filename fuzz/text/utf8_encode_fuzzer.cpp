// Units in, bytes out: each two bytes of the input, low byte first, are a unit.

#include <cstddef>
#include <cstdint>
#include <string>

#include "KVTString.h"
#include "require.h"
#include "utf8_model.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  std::basic_string<unsigned short> units;
  for (std::size_t i = 0; i + 1 < size; i += 2) {
    units += static_cast<unsigned short>(data[i] | data[i + 1] << 8);
  }
  const KVTString text(units);
  const std::string bytes = text.GetUTF8String();

  Require(text.size() == units.size(), "the base string is taken whole");
  Require(bytes == ModelEncodeUtf8(units), "encodes like the model");
  Require(bytes.size() >= units.size(), "gives a byte a unit at least");
  Require(bytes.size() <= 3 * units.size(), "gives three bytes a unit at most");

  const KVTString back(bytes.c_str(), KVTString::KVTCharEncodingUTF8);
  Require(back == KVTString(units.c_str()),
          "comes back as far as the first zero unit");
  return 0;
}
