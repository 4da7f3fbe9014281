// Bytes in, units out: what KVTString makes of any narrow text.

#include <cstddef>
#include <cstdint>
#include <string>

#include "KVTString.h"
#include "require.h"
#include "utf8_model.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::string text(bytes.c_str());
  const KVTString decoded(text.c_str(), KVTString::KVTCharEncodingUTF8);

  Require(decoded == KVTString(ModelDecodeUtf8(text)),
          "decodes like the model");
  Require(decoded.size() <= text.size(), "gives no more units than bytes");

  const std::string encoded = decoded.GetUTF8String();
  Require(encoded == ModelEncodeUtf8(decoded), "encodes like the model");
  if (decoded.find(static_cast<unsigned short>(0)) == KVTString::GetNPos()) {
    Require(
        KVTString(encoded.c_str(), KVTString::KVTCharEncodingUTF8) == decoded,
        "what was decoded once comes back from its UTF-8 form");
  }

  const KVTString narrow(text.c_str(), KVTString::KVTCharEncodingNarrow);
  Require(narrow.size() == text.size(), "narrow text has one unit a byte");
  return 0;
}
