// A large HTTP download from nginx on loopback: GetFile, the curl command, and
// libcurl alone, which keeps nothing of what arrives.

#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <stdlib.h>
#include <sys/resource.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "KVTFileUtil.h"
#include "namespaces.h"
#include "server_process.h"
#include "sized_bytes.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

constexpr std::size_t kSize = std::size_t{256} << 20;
constexpr int kPort = 8080;
constexpr char kUrl[] = "http://127.0.0.1:8080/file";
constexpr char kInMemory[] = "/srv";

// Names are relative to the server's folder.
constexpr char kConfiguration[] = R"(
daemon off;
user root;
worker_processes 1;
pid nginx.pid;
error_log stderr warn;
events { worker_connections 16; }
http {
  access_log off;
  sendfile on;
  client_body_temp_path body;
  proxy_temp_path proxy;
  fastcgi_temp_path fastcgi;
  uwsgi_temp_path uwsgi;
  scgi_temp_path scgi;
  server { listen 127.0.0.1:8080; root .; }
}
)";

// Mounts and a network of the program's own, with files in memory, so that
// neither a disk nor a proxy of the environment has a part in it.
void EnterNamespaces() {
  for (const char* name : {"http_proxy", "all_proxy", "ALL_PROXY"}) {
    unsetenv(name);
  }
  EnterPrivateMountsAndNetwork();
  CoverWithEmptyDirectory(kInMemory);
  setenv("TMPDIR", kInMemory, 1);
}

class Server {
 public:
  // Starts it at the first call.
  static Server& Get() {
    static const bool entered = (EnterNamespaces(), true);
    static Server server;
    (void)entered;
    return server;
  }

  std::string Target() const { return mPlace.Path("target"); }

  // Throws unless the target is what was served.
  void CheckTarget() const {
    if (ReadFile(Target()) != ReadFile(mPlace.Path("file"))) {
      throw std::runtime_error("the download differs from the file");
    }
  }

 private:
  Server() : mNginx(Configure(mPlace), kPort) {}

  static std::vector<std::string> Configure(const TemporaryDirectory& place) {
    WriteBytes(place.Path("file"), kSize);
    WriteFile(place.Path("nginx.conf"), kConfiguration);
    return {"nginx", "-e", "stderr", "-p", place.Path(), "-c", "nginx.conf"};
  }

  const TemporaryDirectory mPlace;
  ServerProcess mNginx;
};

// Processor time in milliseconds of this process and of the children that it
// has waited for: the server is not among them, the curl command is.
double ProcessorTime() {
  double milliseconds = 0;
  for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    rusage usage = {};
    getrusage(who, &usage);
    for (const timeval& time : {usage.ru_utime, usage.ru_stime}) {
      milliseconds += static_cast<double>(time.tv_sec) * 1e3 +
                      static_cast<double>(time.tv_usec) / 1e3;
    }
  }
  return milliseconds;
}

// Repeats `download`, which says whether it went well, and checks once what it
// left behind where `keeps`.
void Measure(benchmark::State& state, bool keeps,
             const std::function<bool()>& download) {
  Server& server = Server::Get();
  if (!download()) {
    state.SkipWithError("the download failed");
    return;
  }
  if (keeps) server.CheckTarget();
  const double before = ProcessorTime();
  for (auto _ : state) {
    if (!download()) {
      state.SkipWithError("the download failed");
      return;
    }
  }
  state.counters["processor_ms"] = benchmark::Counter(
      ProcessorTime() - before, benchmark::Counter::kAvgIterations);
  state.SetBytesProcessed(static_cast<std::int64_t>(kSize) *
                          static_cast<std::int64_t>(state.iterations()));
}

void GetFile(benchmark::State& state) {
  const KVTString url(kUrl);
  const KVTFile target(FromUtf8(Server::Get().Target()));
  Measure(state, true, [&] {
    return KVTFileUtil::GetFile(url, target, {0, nullptr, nullptr}) == 0;
  });
}

void CurlCommand(benchmark::State& state) {
  const std::string target = Server::Get().Target();
  Measure(state, true, [&] {
    return Run({"curl", "-s", "-S", "-f", "-o", target, kUrl}) == 0;
  });
}

std::size_t Discard(void*, std::size_t size, std::size_t count, void* total) {
  *static_cast<std::size_t*>(total) += size * count;
  return size * count;
}

// The argument is the size of libcurl's buffer: its default, which GetFile
// leaves as it is, that of the curl command, and the largest.
void LibcurlAlone(benchmark::State& state) {
  Measure(state, false, [&state] {
    std::size_t total = 0;
    CURL* const handle = curl_easy_init();
    curl_easy_setopt(handle, CURLOPT_URL, kUrl);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, Discard);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &total);
    curl_easy_setopt(handle, CURLOPT_BUFFERSIZE,
                     static_cast<long>(state.range(0)));
    const CURLcode result = curl_easy_perform(handle);
    curl_easy_cleanup(handle);
    return result == CURLE_OK && total == kSize;
  });
}

BENCHMARK(GetFile)->UseRealTime()->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK(CurlCommand)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(1);
BENCHMARK(LibcurlAlone)
    ->Arg(CURL_MAX_WRITE_SIZE)
    ->Arg(100 << 10)
    ->Arg(CURL_MAX_READ_SIZE)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(1);

}  // namespace
