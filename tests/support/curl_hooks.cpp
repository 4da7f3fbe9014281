#include "curl_hooks.h"

#include <cxxabi.h>
#include <dlfcn.h>

#include <cstdarg>
#include <cstdlib>
#include <memory>
#include <stdexcept>

#undef curl_easy_setopt
#undef curl_easy_getinfo

namespace {

CurlRecorder* active = nullptr;

// While one lives, calls go straight to libcurl, which makes handles of its own
// in the middle of a transfer.
class InsideLibcurl {
 public:
  InsideLibcurl() : mRecorder(active) { active = nullptr; }
  ~InsideLibcurl() { active = mRecorder; }
  InsideLibcurl(const InsideLibcurl&) = delete;
  InsideLibcurl& operator=(const InsideLibcurl&) = delete;

 private:
  CurlRecorder* const mRecorder;
};

// libcurl's definition of `name`.
template <class Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

const auto realInit = Real<decltype(curl_easy_init)>("curl_easy_init");
const auto realSetopt = Real<decltype(curl_easy_setopt)>("curl_easy_setopt");
const auto realPerform = Real<decltype(curl_easy_perform)>("curl_easy_perform");
const auto realGetinfo = Real<decltype(curl_easy_getinfo)>("curl_easy_getinfo");
const auto realCleanup = Real<decltype(curl_easy_cleanup)>("curl_easy_cleanup");
const auto realGlobalInit =
    Real<decltype(curl_global_init)>("curl_global_init");

curl_easytype TypeOf(CURLoption option) {
  const curl_easyoption* const known = curl_easy_option_by_id(option);
  if (known == nullptr) {
    throw std::logic_error("unknown option " + std::to_string(option));
  }
  return known->type;
}

std::string NameOf(CURLoption option) {
  const curl_easyoption* const known = curl_easy_option_by_id(option);
  return known == nullptr ? "option " + std::to_string(option)
                          : std::string("CURLOPT_") + known->name;
}

// "KVTFileUtil::GetFile" for that member's address.
std::string FunctionName(const void* function) {
  Dl_info info = {};
  if (dladdr(function, &info) == 0 || info.dli_sname == nullptr ||
      info.dli_saddr != function) {
    return "function";
  }
  const std::unique_ptr<char, void (*)(void*)> readable(
      abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, nullptr),
      std::free);
  const std::string name = readable ? readable.get() : info.dli_sname;
  return name.substr(0, name.find('('));
}

}  // namespace

CurlRecorder::CurlRecorder(Mode mode) : mMode(mode) {
  if (active != nullptr) throw std::logic_error("a CurlRecorder lives already");
  active = this;
}

CurlRecorder::~CurlRecorder() { active = nullptr; }

std::vector<std::string> CurlRecorder::Options() const {
  std::vector<std::string> options;
  for (const std::string& call : mCalls) {
    if (call.rfind("CURLOPT_", 0) == 0) options.push_back(call);
  }
  return options;
}

void CurlRecorder::NamePointer(const void* pointer, const std::string& name) {
  mNames[pointer] = name;
}

std::size_t CurlRecorder::Deliver(const std::string& bytes) {
  const auto write =
      reinterpret_cast<std::size_t (*)(const void*, std::size_t, std::size_t,
                                       void*)>(Pointer(CURLOPT_WRITEFUNCTION));
  if (write == nullptr) throw std::logic_error("no CURLOPT_WRITEFUNCTION");
  return write(bytes.data(), 1, bytes.size(), Pointer(CURLOPT_WRITEDATA));
}

std::string CurlRecorder::Fetch(std::size_t size) {
  const auto read =
      reinterpret_cast<std::size_t (*)(void*, std::size_t, std::size_t, void*)>(
          Pointer(CURLOPT_READFUNCTION));
  if (read == nullptr) throw std::logic_error("no CURLOPT_READFUNCTION");
  std::string bytes(size, '\0');
  bytes.resize(read(bytes.data(), 1, size, Pointer(CURLOPT_READDATA)));
  return bytes;
}

void* CurlRecorder::Pointer(CURLoption option) const {
  const auto found = mPointers.find(option);
  return found == mPointers.end() ? nullptr : found->second;
}

std::string CurlRecorder::OnHandle(CURL* handle) const {
  return mLive.count(handle) == 0 ? " on a dead handle" : "";
}

CURL* CurlRecorder::Init() {
  mCalls.push_back("init");
  if (initFails) return nullptr;
  // Scripted handles are distinct addresses that nobody looks behind.
  static char handles[1000];
  CURL* handle = &handles[mMade % 1000];
  if (mMode == Mode::kForwarding) {
    const InsideLibcurl inside;
    handle = realInit();
  }
  if (handle == nullptr) return nullptr;
  ++mMade;
  mLive.insert(handle);
  return handle;
}

CURLcode CurlRecorder::SetLong(CURL* handle, CURLoption option, long value) {
  mCalls.push_back(NameOf(option) + " " + std::to_string(value) +
                   OnHandle(handle));
  if (mMode == Mode::kForwarding) return realSetopt(handle, option, value);
  return setoptResult;
}

CURLcode CurlRecorder::SetOffset(CURL* handle, CURLoption option,
                                 curl_off_t value) {
  mCalls.push_back(NameOf(option) + " " + std::to_string(value) +
                   OnHandle(handle));
  if (mMode == Mode::kForwarding) return realSetopt(handle, option, value);
  return setoptResult;
}

CURLcode CurlRecorder::SetPointer(CURL* handle, CURLoption option,
                                  void* value) {
  std::string text;
  const auto named = mNames.find(value);
  if (value == nullptr) {
    text = "null";
  } else if (TypeOf(option) == CURLOT_STRING) {
    text = static_cast<const char*>(value);
  } else if (TypeOf(option) == CURLOT_FUNCTION) {
    text = FunctionName(value);
  } else {
    text = named == mNames.end() ? "pointer" : named->second;
  }
  mCalls.push_back(NameOf(option) + " " + text + OnHandle(handle));
  mPointers[option] = value;
  if (mMode == Mode::kForwarding) return realSetopt(handle, option, value);
  return setoptResult;
}

CURLcode CurlRecorder::Perform(CURL* handle) {
  mCalls.push_back("perform" + OnHandle(handle));
  if (mMode == Mode::kForwarding) {
    const InsideLibcurl inside;
    return realPerform(handle);
  }
  if (onPerform) onPerform();
  return performResult;
}

CURLcode CurlRecorder::GetInfo(CURL* handle, CURLINFO info, void* out) {
  const bool isResponseCode = info == CURLINFO_RESPONSE_CODE;
  mCalls.push_back((isResponseCode ? "CURLINFO_RESPONSE_CODE"
                                   : "info " + std::to_string(info)) +
                   OnHandle(handle));
  if (mMode == Mode::kForwarding) return realGetinfo(handle, info, out);
  if (!isResponseCode || !responseCode) return CURLE_UNKNOWN_OPTION;
  *static_cast<long*>(out) = *responseCode;
  return CURLE_OK;
}

void CurlRecorder::Cleanup(CURL* handle) {
  mCalls.push_back("cleanup" + OnHandle(handle));
  const bool lived = mLive.erase(handle) != 0;
  if (mMode == Mode::kForwarding && lived) {
    const InsideLibcurl inside;
    realCleanup(handle);
  }
}

extern "C" {

CURL* curl_easy_init() {
  return active == nullptr ? realInit() : active->Init();
}

CURLcode curl_easy_setopt(CURL* handle, CURLoption option, ...) {
  va_list arguments;
  va_start(arguments, option);
  CURLcode result = CURLE_UNKNOWN_OPTION;
  switch (TypeOf(option)) {
    case CURLOT_LONG:
    case CURLOT_VALUES: {
      const long value = va_arg(arguments, long);
      result = active == nullptr ? realSetopt(handle, option, value)
                                 : active->SetLong(handle, option, value);
      break;
    }
    case CURLOT_OFF_T: {
      const curl_off_t value = va_arg(arguments, curl_off_t);
      result = active == nullptr ? realSetopt(handle, option, value)
                                 : active->SetOffset(handle, option, value);
      break;
    }
    default: {
      void* const value = va_arg(arguments, void*);
      result = active == nullptr ? realSetopt(handle, option, value)
                                 : active->SetPointer(handle, option, value);
    }
  }
  va_end(arguments);
  return result;
}

CURLcode curl_easy_perform(CURL* handle) {
  return active == nullptr ? realPerform(handle) : active->Perform(handle);
}

CURLcode curl_easy_getinfo(CURL* handle, CURLINFO info, ...) {
  va_list arguments;
  va_start(arguments, info);
  void* const out = va_arg(arguments, void*);
  va_end(arguments);
  return active == nullptr ? realGetinfo(handle, info, out)
                           : active->GetInfo(handle, info, out);
}

void curl_easy_cleanup(CURL* handle) {
  if (active == nullptr) {
    realCleanup(handle);
  } else {
    active->Cleanup(handle);
  }
}

CURLcode curl_global_init(long flags) {
  if (active != nullptr) active->Note("curl_global_init");
  return realGlobalInit(flags);
}

}  // extern "C"
