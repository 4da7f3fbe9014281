// Any narrow text, as the location of a share.

#include <arpa/inet.h>
#include <netdb.h>
#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "KVTFileUtil.h"
#include "KVTShareFile.h"
#include "network_path_model.h"
#include "require.h"

namespace {

namespace model = network_path_model;

const model::Names kNames = {
    {"fs1", "10.0.0.5"}, {"six", "fe80::1"}, {"s\xC3\xA9rver", "10.0.0.6"}};

struct Node {
  addrinfo info;
  sockaddr_in6 address;
};

const KVTString kUntouched("untouched by the call");

KVTString OrUntouched(const std::optional<Units>& piece) {
  return KVTString(piece.value_or(kUntouched));
}

void CheckCuts(KVTShareFileInternal& paths, const KVTString& text) {
  KVTString parent(kUntouched);
  const int parentResult = paths.GetParentPath(text, parent);
  Require((parent == kUntouched) == text.empty(),
          "a parent is assigned unless the path is empty");
  Require((parentResult == 0) == (!text.empty() && !parent.empty()),
          "there is a parent exactly when the result is 0");
  KVTString name(kUntouched);
  const int nameResult = paths.GetFileName(text, name);
  Require((nameResult == 0) == !name.empty(),
          "there is a name exactly when the result is 0");
  Require(name.find('/') == KVTString::npos, "a name holds no slash");
  Require(text.size() >= name.size() &&
              text.compare(text.size() - name.size(), name.size(), name) == 0,
          "a name is the end of its path");
}

}  // namespace

// Stands in for the name service.
extern "C" int getaddrinfo(const char* name, const char*, const addrinfo*,
                           addrinfo** result) {
  const auto found = kNames.find(name);
  if (found == kNames.end()) return EAI_NONAME;
  auto* node = static_cast<Node*>(calloc(1, sizeof(Node)));
  node->info.ai_addr = reinterpret_cast<sockaddr*>(&node->address);
  auto* four = reinterpret_cast<sockaddr_in*>(&node->address);
  if (inet_pton(AF_INET, found->second.c_str(), &four->sin_addr) == 1) {
    node->info.ai_family = AF_INET;
  } else {
    inet_pton(AF_INET6, found->second.c_str(), &node->address.sin6_addr);
    node->info.ai_family = AF_INET6;
  }
  *result = &node->info;
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const KVTString decoded(bytes.c_str(), KVTString::KVTCharEncodingUTF8);
  const KVTString text(decoded);  // as calls by value see it
  KVTShareFile share;

  KVTString hostIp(kUntouched);
  KVTString shareFolder(kUntouched);
  KVTString remainder(kUntouched);
  const int result =
      share.ParseNetworkPath(text, hostIp, shareFolder, remainder);
  const model::Pieces expected = model::Parse(text, kNames);
  Require(result == expected.result, "has the model's result");
  Require(hostIp == OrUntouched(expected.hostIp), "has the model's address");
  Require(shareFolder == OrUntouched(expected.shareFolder),
          "has the model's share folder");
  Require(remainder == OrUntouched(expected.remainder), "has the model's rest");

  KVTString slashes(text);
  slashes.ReplaceAll("\\", "/");
  const model::Pieces pieces = model::Parse(slashes, kNames);
  Units host = pieces.hostIp.value_or(Units());
  if (KVTFileUtil::IsValidIPV6Address(KVTString(host))) {
    host = KVTString("[" + KVTString(host) + "]");
  }
  Require(share.RefactorIPv6ForWindowSMB1(text) ==
              "smb://" + KVTString(host) + "/" +
                  KVTString(pieces.shareFolder.value_or(Units())) + "/" +
                  KVTString(pieces.remainder.value_or(Units())),
          "the URL is made of the model's pieces");

  const std::string utf8 = text.GetUTF8String();
  const bool prefixed = utf8.rfind("smb:", 0) == 0 ||
                        utf8.rfind("cifs:", 0) == 0 ||
                        utf8.rfind("\\\\", 0) == 0 || utf8.rfind("//", 0) == 0;
  Require(share.IsSharePath(text) ==
              (text.size() > 2 && prefixed &&
               utf8.find_first_of("*?<>|%") == std::string::npos),
          "a share has a prefix and no refused character");

  const KVTString literal = share.RefactorIPv6ForMounting(text);
  if (KVTFileUtil::IsValidIPV6Address(text)) {
    Require(literal.find(':') == KVTString::npos, "a literal has no colon");
    Require(literal.size() == text.size() + 17, "a literal has its domain");
  } else {
    Require(literal == text, "what is no IPv6 address stays as it is");
  }

  CheckCuts(share, text);
  return 0;
}
