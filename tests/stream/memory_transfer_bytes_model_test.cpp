// Random operations of the memory transport against a model of its rules.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "KVTTransferBytes.h"
#include "hooks.h"
#include "random_seed.h"

namespace {

using Number = unsigned long long;

// Behind each block, so that what overruns it by the rules can be followed.
constexpr std::size_t kSlack = 8192;

// The bytes from `from` on before the first zero byte.
std::string TextAt(const std::string& bytes, std::size_t from) {
  return bytes.substr(from, bytes.find('\0', from) - from);
}

void Put(std::string& bytes, std::size_t at, const std::string& what) {
  bytes.replace(at, what.size(), what);
}

// A block is a string: the bytes asked for and the slack.
class Model {
 public:
  explicit Model(Number size) : size(size) { NewBlock(size); }

  Number Write(const std::string& data) {
    const std::string text = TextAt(block, position);
    // Unsigned: a text longer than the block leaves an enormous rest.
    const bool fits = text.size() > size || data.size() + text.size() <= size;
    if (fits) {
      Put(block, position + text.size(), data);
    } else {
      released.push_back(position);
      if (data.size() < size) {
        size += size;
      } else {
        size *= data.size() / size + 1;
      }
      NewBlock(size);
      position = 0;
      Put(block, 0, text + data);
    }
    return TextAt(block, position).size();
  }

  Number Read(std::string& target, Number size) {
    const std::size_t there = TextAt(block, position).size();
    if (there == 0) return 0;
    std::size_t already = TextAt(target, 0).size();
    if (firstRead) {
      Put(target, 0, std::string(already, '\0'));
      already = 0;
      firstRead = false;
    }
    position += already;
    Put(target, already,
        block.substr(position, there < size ? there : size) + '\0');
    return TextAt(target, already).size();
  }

  Number Seek(Number offset, int where) {
    if (where == 1) {
      if (offset > size) {
        Carry(offset);
        size = offset;
      }
      position = offset;
    } else if (where == 2) {
      const Number old = position;
      // Unsigned: a position behind the end has an enormous room ahead.
      if (old <= size && old + offset > size) {
        Carry(offset);
        size = old + offset;
      }
      position = old + offset;
    } else if (where == 4) {
      size += offset;
      Carry(size);
      position = size;
    }
    return position;
  }

  void Flush() { Put(block, position, std::string(size, '\0')); }

  void SetEndOfStream() {
    const std::string text = TextAt(block, 0).substr(0, position);
    size = position;
    released.push_back(0);
    NewBlock(size);
    Put(block, 0, text);
  }

  // The text at the start moves to a new block of `request` bytes.
  void Carry(Number request) {
    const std::string text = TextAt(block, 0);
    released.push_back(0);
    NewBlock(request);
    Put(block, 0, text);
  }

  void NewBlock(Number request) {
    requested.push_back(request);
    block.assign(request + kSlack, '\0');
  }

  std::string block;
  Number position = 0;
  Number size;
  bool firstRead = true;
  std::vector<Number> requested;
  std::vector<Number> released;  // as the distance from the block's start
};

class Walk {
 public:
  Walk(std::mt19937& random, Number size)
      : mRandom(random),
        mArrays(kSlack),
        mModel(size),
        mBytes(new KVTMemoryTransferBytes(nullptr, size)) {}

  // Stops when the next operation would divide by zero or leave the slack.
  void Run() {
    std::string target(16384, '\0');
    std::string modelTarget = target;
    for (int step = 0; step < 60; ++step) {
      if (mModel.size > 1500 || mModel.position > 1500) break;
      switch (Pick(9)) {
        case 0:
        case 1:
        case 2: {
          std::string data = Data(Pick(4) == 0 ? 40 : 10);
          const bool grows = data.size() > mModel.size;
          if (mModel.size == 0 && grows) break;
          mOperation = "Write " + std::to_string(data.size());
          const Number expected = mModel.Write(data);
          EXPECT_EQ(mBytes->Write(data.data(), data.size()), expected);
          break;
        }
        case 3:
        case 4: {
          if (Pick(3) == 0) {
            target.assign(target.size(), '\0');
            Put(target, 0, Data(6));
            modelTarget = target;
          }
          if (TextAt(target, 0).size() > 1000) break;
          const Number size = Pick(30);
          mOperation = "Read " + std::to_string(size);
          const Number expected = mModel.Read(modelTarget, size);
          EXPECT_EQ(mBytes->Read(target.data(), size), expected);
          EXPECT_TRUE(target == modelTarget);
          break;
        }
        case 5:
        case 6: {
          const int where = static_cast<int>(Pick(6));
          Number offset = Pick(Pick(2) == 0 ? 4 : 40);
          if (where == 4 && Pick(2) == 0) {
            offset = -(offset < mModel.size ? offset : mModel.size);
          }
          mOperation = "Seek " +
                       std::to_string(static_cast<long long>(offset)) +
                       " from " + std::to_string(where);
          const Number expected = mModel.Seek(offset, where);
          EXPECT_EQ(mBytes->Seek(offset, static_cast<KVTSeekFromWhere>(where)),
                    expected);
          break;
        }
        case 7:
          if (Pick(3) != 0) break;
          mOperation = "Flush";
          mModel.Flush();
          mBytes->Flush();
          break;
        case 8:
          mOperation = "SetEndOfStream";
          mModel.SetEndOfStream();
          mBytes->SetEndOfStream();
          break;
      }
      mHistory += mOperation + "; ";
      Compare();
      if (testing::Test::HasFailure()) {
        ADD_FAILURE() << mHistory;
        return;
      }
    }
    delete mBytes;
    mModel.released.push_back(mModel.position);
    CompareReleases();
  }

 private:
  Number Pick(Number count) {
    return std::uniform_int_distribution<Number>(0, count - 1)(mRandom);
  }

  // Zero bytes come now and then.
  std::string Data(Number maxLength) {
    std::string data(Pick(maxLength + 1), '\0');
    for (char& c : data) {
      c = Pick(12) == 0 ? '\0' : static_cast<char>(1 + Pick(255));
    }
    return data;
  }

  void Compare() {
    EXPECT_EQ(mBytes->Tell(), mModel.position);
    EXPECT_EQ(mBytes->GetBufferSize(), mModel.size);
    EXPECT_EQ(mBytes->GetStreamState(),
              mModel.position == mModel.size ? KVTStreamAtEnd : KVTStreamGood);
    std::vector<Number> requested;
    for (const auto& block : mArrays.Blocks()) requested.push_back(block.size);
    ASSERT_EQ(requested, mModel.requested);
    const unsigned char* const start = mArrays.Blocks().back().start;
    EXPECT_EQ(mBytes->GetBuffer(), start + mModel.position);
    EXPECT_TRUE(mModel.block ==
                std::string(reinterpret_cast<const char*>(start),
                            mArrays.Blocks().back().size + kSlack))
        << "the block is another";
    CompareReleases();
  }

  // Each block goes before the next but one is asked for, in order.
  void CompareReleases() {
    std::vector<Number> released;
    for (std::size_t i = 0; i < mArrays.Released().size(); ++i) {
      released.push_back(static_cast<Number>(
          static_cast<unsigned char*>(mArrays.Released()[i]) -
          mArrays.Blocks()[i].start));
    }
    EXPECT_EQ(released, mModel.released);
  }

  std::mt19937& mRandom;
  hooks::WatchedArrays mArrays;
  Model mModel;
  KVTMemoryTransferBytes* mBytes;
  std::string mOperation;
  std::string mHistory;
};

TEST(MemoryTransferBytesModel, AgreesOverRandomOperations) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int i = 0; i < 3000 && !HasFailure(); ++i) {
    Walk(random, random() % 24).Run();
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
