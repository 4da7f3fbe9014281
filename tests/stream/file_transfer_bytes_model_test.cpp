// Random operations of the file transport against a model of its rules.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>

#include "KVTTransferBytes.h"
#include "hooks.h"
#include "random_seed.h"
#include "temporary_directory.h"

namespace {

using Number = unsigned long long;

// What the file holds once everything is flushed.
struct Model {
  std::string content;
  std::size_t position = 0;

  Number Write(const std::string& data) {
    if (data.empty()) return 0;
    if (content.size() < position) content.resize(position, '\0');
    content.replace(position, data.size(), data);
    position += data.size();
    return data.size();
  }

  std::string Read(Number size, bool nothingOnDisk) {
    if (nothingOnDisk || position >= content.size()) return "";
    const std::string data = content.substr(position, size);
    position += data.size();
    return data;
  }

  Number Seek(long long offset, int where) {
    long long origin = 0;
    if (where == 2) origin = static_cast<long long>(position);
    if (where == 4) origin = static_cast<long long>(content.size());
    if (where == 1 || where == 2 || where == 4) {
      if (origin + offset < 0) return 0;
      position = static_cast<std::size_t>(origin + offset);
    }
    return position;
  }
};

class Walk {
 public:
  Walk(std::mt19937& random, bool buffered)
      : mRandom(random), mBuffered(buffered) {
    hooks::Scoped hook(hooks::onFopen, [&](const char* p, const char* mode) {
      FILE* const stream = hooks::RealFopen(p, mode);
      if (!buffered) setvbuf(stream, nullptr, _IONBF, 0);
      return stream;
    });
    const bool fresh = Pick(2) == 0;
    if (!fresh) mModel.content = Data(Pick(4) == 0 ? 20000 : 30);
    WriteFile(Path(), mModel.content);
    mBytes =
        new KVTFileTransferBytes(mDirectory.File("a"), fresh ? "w+" : "r+");
  }

  void Run() {
    for (int step = 0; step < 60 && !testing::Test::HasFailure(); ++step) {
      switch (Pick(8)) {
        case 0:
        case 1: {
          std::string data = Data(Pick(8) == 0 ? 9000 : 20);
          mHistory += "Write " + std::to_string(data.size()) + "; ";
          EXPECT_EQ(mBytes->Write(data.data(), data.size()),
                    mModel.Write(data));
          break;
        }
        case 2:
        case 3: {
          const Number size = Pick(Pick(4) == 0 ? 10000 : 20);
          mHistory += "Read " + std::to_string(size) + "; ";
          const bool nothing = std::filesystem::file_size(Path()) == 0;
          std::string buffer(size, '#');
          buffer.resize(mBytes->Read(buffer.data(), size));
          EXPECT_TRUE(buffer == mModel.Read(size, nothing));
          break;
        }
        case 4:
        case 5: {
          const int where = static_cast<int>(Pick(6));
          const long long offset =
              static_cast<long long>(Pick(60)) - (where == 1 ? 5 : 30);
          mHistory += "Seek " + std::to_string(offset) + " from " +
                      std::to_string(where) + "; ";
          EXPECT_EQ(mBytes->Seek(static_cast<Number>(offset),
                                 static_cast<KVTSeekFromWhere>(where)),
                    mModel.Seek(offset, where));
          break;
        }
        case 6:
          mHistory += "Flush; ";
          mBytes->Flush();
          EXPECT_TRUE(ReadFile(Path()) == mModel.content);
          break;
        case 7:
          if (Pick(3) != 0) break;
          mHistory += "SetEndOfStream; ";
          // Bytes that stdio has read ahead would show up when the file grows
          // again behind its new end.
          if (mBuffered) mBytes->Flush();
          mBytes->SetEndOfStream();
          mModel.content.resize(mModel.position, '\0');
          EXPECT_EQ(std::filesystem::file_size(Path()), mModel.position);
          break;
      }
      EXPECT_EQ(mBytes->Tell(), mModel.position);
      EXPECT_EQ(mBytes->GetStreamState(), KVTStreamGood);
    }
    delete mBytes;
    EXPECT_TRUE(ReadFile(Path()) == mModel.content);
    if (testing::Test::HasFailure()) ADD_FAILURE() << mHistory;
  }

 private:
  std::string Path() const { return mDirectory.Path("a"); }

  Number Pick(Number count) {
    return std::uniform_int_distribution<Number>(0, count - 1)(mRandom);
  }

  std::string Data(Number maxLength) {
    std::string data(Pick(maxLength + 1), '\0');
    for (char& c : data) c = static_cast<char>(Pick(256));
    return data;
  }

  std::mt19937& mRandom;
  bool mBuffered;
  TemporaryDirectory mDirectory;
  Model mModel;
  KVTFileTransferBytes* mBytes;
  std::string mHistory;
};

TEST(FileTransferBytesModel, AgreesOverRandomOperations) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int i = 0; i < 300 && !HasFailure(); ++i) {
    Walk(random, i % 2 == 0).Run();
  }
}

}  // namespace
