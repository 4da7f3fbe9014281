# Says at configure time whether the libcurl found was built with smb://, which
# newer releases leave out by default.  The library builds either way: without
# it KVTShareFile::SendFileOnWindowSMB1 fails with libcurl's return code 1.
include(CheckCXXSourceRuns)

set(CMAKE_REQUIRED_LIBRARIES CURL::libcurl)
set(kvt_curl_smb_check [[
#include <curl/curl.h>
#include <string.h>

int main() {
  const char* const* name = curl_version_info(CURLVERSION_NOW)->protocols;
  for (; *name != nullptr; ++name) {
    if (strcmp(*name, "smb") == 0) return 0;
  }
  return 1;
}
]])
if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
  message(STATUS "libcurl cannot be asked for smb:// when cross-compiling")
else()
  check_cxx_source_runs("${kvt_curl_smb_check}" KVT_CURL_HAS_SMB)
  if(KVT_CURL_HAS_SMB)
    message(STATUS "libcurl ${CURL_VERSION_STRING} has smb://")
  else()
    message(WARNING
      "libcurl ${CURL_VERSION_STRING} was built without smb://: transfers "
      "through KVTShareFile::SendFileOnWindowSMB1 will fail.  Build or install "
      "a libcurl with SMB enabled; nothing else in the library needs it.")
  endif()
endif()
unset(CMAKE_REQUIRED_LIBRARIES)
