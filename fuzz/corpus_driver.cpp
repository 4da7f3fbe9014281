// A main that runs a fuzzer once over every file of the folders it is given.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size);

namespace {

namespace fs = std::filesystem;

void RunFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path.string());
  const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
  // A copy of exactly this size, so that a sanitizer sees a read beyond it.
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  // Names the input that an abort was about.
  std::fprintf(stderr, "%s\n", path.c_str());
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t count = 0;
  try {
    for (int i = 1; i < argc; ++i) {
      std::set<fs::path> files;
      for (const auto& entry : fs::directory_iterator(argv[i])) {
        if (entry.is_regular_file()) files.insert(entry.path());
      }
      for (const fs::path& file : files) RunFile(file);
      count += files.size();
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  std::printf("%zu inputs\n", count);
  return count > 0 ? 0 : 1;
}
