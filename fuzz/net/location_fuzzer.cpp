// Any narrow text, as a network location.

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "KVTFileUtil.h"
#include "require.h"
#include "url_models.h"

namespace {

// Has what goes to std::cout come here.
class CapturedCout {
 public:
  CapturedCout() : mPrevious(std::cout.rdbuf(mText.rdbuf())) {}
  ~CapturedCout() { std::cout.rdbuf(mPrevious); }
  std::string Text() const { return mText.str(); }

 private:
  std::ostringstream mText;
  std::streambuf* const mPrevious;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const KVTString decoded(bytes.c_str(), KVTString::KVTCharEncodingUTF8);
  const KVTString location(decoded);  // as calls by value see it

  const bool hasProtocol = KVTFileUtil::IsProtocolAddedToURL(location);
  Require(hasProtocol == ModelHasProtocol(location),
          "knows the model's protocols");

  KVTString protocol;
  const ModelText modelProtocol = ModelProtocol(location);
  Require(KVTFileUtil::GetProtocolFromNetworkLocation(location, protocol) ==
              modelProtocol.found,
          "finds a protocol when the model does");
  Require(protocol == modelProtocol.text, "gives the model's protocol");

  const KVTString before("before");
  KVTString url = before;
  const ModelText modelUrl = ModelUrl(location);
  const CapturedCout output;
  try {
    const bool found = KVTFileUtil::GetURLFromNetworkLocation(location, url);
    Require(!modelUrl.throws, "throws when the model does");
    Require(found == modelUrl.found, "finds a server when the model does");
    Require(url == modelUrl.text, "gives the model's server");
  } catch (const std::out_of_range&) {
    Require(modelUrl.throws, "throws only when the model does");
    Require(url == before, "leaves the result alone when it throws");
  }
  Require(output.Text() == modelUrl.printed, "prints what the model prints");
  return 0;
}
