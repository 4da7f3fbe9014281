#include "sized_bytes.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <random>
#include <stdexcept>

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;

std::string NextBytes(std::mt19937_64& random, std::size_t size) {
  std::string bytes(size + 8, '\0');
  for (std::size_t i = 0; i < size; i += 8) {
    const std::uint64_t word = random();
    std::memcpy(&bytes[i], &word, 8);
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace

std::string Bytes(std::size_t size) {
  std::mt19937_64 random(size);
  return NextBytes(random, size);
}

void WriteBytes(const std::string& path, std::size_t size) {
  std::mt19937_64 random(size);
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  for (std::size_t done = 0; done < size; done += kBlock) {
    file << NextBytes(random, std::min(kBlock, size - done));
  }
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
}
