// Preloaded into kvtshare: a libcurl that was built without smb://, as far as
// it tells about itself.

#include <curl/curl.h>
#include <dlfcn.h>

#include <cstring>
#include <vector>

extern "C" curl_version_info_data* curl_version_info(CURLversion version) {
  static curl_version_info_data data;
  static std::vector<const char*> protocols;
  const auto real = reinterpret_cast<decltype(&curl_version_info)>(
      dlsym(RTLD_NEXT, "curl_version_info"));
  data = *real(version);
  protocols.clear();
  for (const char* const* name = data.protocols; *name != nullptr; ++name) {
    if (std::strncmp(*name, "smb", 3) != 0) protocols.push_back(*name);
  }
  protocols.push_back(nullptr);
  data.protocols = protocols.data();
  return &data;
}
