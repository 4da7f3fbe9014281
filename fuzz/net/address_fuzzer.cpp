// Any narrow text, as an address or a host name.

#include <cstddef>
#include <cstdint>
#include <string>

#include "KVTFileUtil.h"
#include "address_models.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const KVTString decoded(bytes.c_str(), KVTString::KVTCharEncodingUTF8);
  const KVTString text(decoded);  // as calls by value see it
  const std::string utf8 = text.GetUTF8String();

  Require(KVTFileUtil::IsValidIPV4Block(bytes) == ModelIPV4Block(bytes),
          "takes the blocks that the model takes");
  const bool isIPV4 = KVTFileUtil::IsValidIPV4Address(text);
  const bool isIPV6 = KVTFileUtil::IsValidIPV6Address(text);
  const int type = KVTFileUtil::GetAddressType(text);
  Require(isIPV4 == ModelIPV4Address(utf8), "takes the model's IPv4 addresses");
  Require(!(isIPV4 && isIPV6), "nothing is both kinds of address");
  Require(type == ModelAddressType(utf8), "has the model's type");
  Require(type != 0 || isIPV4, "type 0 is an IPv4 address");
  Require(type != 1 || isIPV6, "type 1 is an IPv6 address");
  Require(KVTFileUtil::IsValidHostNameAddress(text) == ModelHostName(utf8),
          "takes the model's host names");

  const KVTString masked = KVTFileUtil::MaskIP(text);
  Require(masked.size() == text.size(), "masking keeps the length");
  Require(masked.GetUTF8String() == ModelMask(utf8), "masks like the model");
  Require(isIPV4 || isIPV6 || masked == text,
          "what is no address stays as it is");
  return 0;
}
