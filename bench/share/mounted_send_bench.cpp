// 200 MB into a share through a mount, beside cp(1) onto the same mount.  Runs
// inside the guest of the tests: tests/guest/boot.sh starts it.  The guest has
// one processor, which the kernel client, the server and the program share, and
// maps memory a page at a time: large blocks are more than its host allows, and
// starting cp takes 0.1 s of its time.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "KVTShareFile.h"
#include "server_process.h"

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

void MakeSource() {
  std::ofstream file(kSource, std::ios::binary);
  std::vector<std::uint32_t> block((1 << 20) / sizeof(std::uint32_t));
  std::mt19937 random;
  for (std::size_t done = 0; done < kSize; done += 1 << 20) {
    std::generate(block.begin(), block.end(), std::ref(random));
    file.write(reinterpret_cast<const char*>(block.data()), 1 << 20);
  }
  if (!file.flush()) throw std::runtime_error("cannot write the source");
}

// The first send mounts; after it both write to a name that is new.
void BM_Send(benchmark::State& state, void (*send)()) {
  if (!std::filesystem::exists(kSource)) MakeSource();
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
