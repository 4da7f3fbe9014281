// 200 MB into a share through a mount, beside cp(1) onto the same mount.  Runs
// inside the guest of the tests: tests/guest/boot.sh starts it.  The guest has
// one processor, which the kernel client, the server and the program share, and
// maps memory a page at a time: large blocks are more than its host allows, and
// starting cp takes 0.1 s of its time.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "KVTShareFile.h"
#include "server_process.h"
#include "sized_bytes.h"

namespace {

constexpr std::size_t kSize = 200 << 20;
constexpr char kSource[] = "/run/source";
constexpr char kOnServer[] = "/run/share/target";

void SendFile() {
  KVTAuthentication auth("root", "secret");
  KVTString error;
  if (KVTShareFile::Instance()->SendFile(
          kSource, nullptr, "//127.0.0.1/docs/target", &auth, error) != 0) {
    throw std::runtime_error("SendFile: " + error.GetUTF8String());
  }
}

void Cp() {
  if (Run({"cp", kSource, "/mnt/orbmountZ/target"}) != 0) {
    throw std::runtime_error("cp failed");
  }
}

// The first send mounts; after it both write to a name that is new.
void BM_Send(benchmark::State& state, void (*send)()) {
  if (!std::filesystem::exists(kSource)) WriteBytes(kSource, kSize);
  SendFile();
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove("/mnt/orbmountZ/target");
    state.ResumeTiming();
    send();
  }
  if (Run({"cmp", kOnServer, kSource}) != 0) {
    throw std::runtime_error("the bytes differ");
  }
  state.SetBytesProcessed(state.iterations() * kSize);
}

void Rounds(benchmark::internal::Benchmark* benchmark) {
  benchmark->Iterations(1)->Repetitions(7)->UseRealTime()->Unit(
      benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(BM_Send, Library, SendFile)->Apply(Rounds);
BENCHMARK_CAPTURE(BM_Send, Cp, Cp)->Apply(Rounds);

}  // namespace
