// Random operations of the memory transport against a model of its rules.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "KVTTransferBytes.h"
#include "memory_transfer_model.h"
#include "random_seed.h"

namespace {

using Number = unsigned long long;

TEST(MemoryTransferBytesModel, AgreesOverRandomOperations) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int i = 0; i < 3000 && !HasFailure(); ++i) {
    std::vector<std::uint8_t> operations(random() % 1500);
    for (std::uint8_t& byte : operations) {
      byte = static_cast<std::uint8_t>(random());
    }
    EXPECT_EQ(CompareMemoryTransfer(operations.data(), operations.size()), "");
  }
}

// Within the rules that keep the heap whole, on the plain allocator: the text
// collects, and reading into one buffer gives all of it.
TEST(MemoryTransferBytesModel, CollectsTextAndGivesItBackInPieces) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int i = 0; i < 500 && !HasFailure(); ++i) {
    KVTMemoryTransferBytes bytes(nullptr, 1 + random() % 32);
    std::string text;
    for (int writes = random() % 10; writes > 0; --writes) {
      std::string data(random() % 20, '\0');
      for (char& c : data) c = static_cast<char>(1 + random() % 255);
      const Number size = bytes.GetBufferSize();
      const bool fits = text.size() + data.size() <= size;
      const Number room = fits ? size
                          : size > data.size()
                              ? 2 * size
                              : (data.size() / size + 1) * size;
      if (text.size() + data.size() >= room) continue;
      text += data;
      EXPECT_EQ(bytes.Write(data.data(), data.size()), text.size());
      EXPECT_EQ(reinterpret_cast<char*>(bytes.GetBuffer()), text);
    }
    // Step by step: rewind, and the buffer says how much has been read.  Asking
    // for more than is left would read behind the text.
    std::string target(text.size() + 16, '\0');
    const Number piece = 1 + random() % 7;
    Number got = 0;
    while (got < text.size()) {
      bytes.Seek(0, KVTSeekFromBeginning);
      const Number wanted = std::min<Number>(piece, text.size() - got);
      ASSERT_EQ(bytes.Read(target.data(), wanted), wanted);
      got += wanted;
    }
    EXPECT_EQ(target.c_str(), text);
    bytes.Seek(0, KVTSeekFromBeginning);
  }
}

}  // namespace
