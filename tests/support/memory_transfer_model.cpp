#include "memory_transfer_model.h"

#include <algorithm>
#include <vector>

#include "KVTTransferBytes.h"
#include "hooks.h"

namespace {

using Number = unsigned long long;

// Behind each block; positions and sizes stay below kLimit, so that nothing
// leaves it.
constexpr std::size_t kSlack = 8192;
constexpr std::size_t kLimit = 1500;

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

  bool WriteDividesByZero(const std::string& data) const {
    return size == 0 && !data.empty();
  }

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

  Number Read(std::string& target, Number wanted) {
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
        block.substr(position, there < wanted ? there : wanted) + '\0');
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

  std::string block;
  Number position = 0;
  Number size;
  std::vector<Number> requested;
  std::vector<Number> released;  // as the distance from the block's start

 private:
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

  bool firstRead = true;
};

class Walk {
 public:
  Walk(const std::uint8_t* data, std::size_t size)
      : mData(data),
        mEnd(data + size),
        mArrays(kSlack),
        mModel(mData == mEnd ? 8 : *mData++ % 24),
        mBytes(new KVTMemoryTransferBytes(nullptr, mModel.size)),
        mTarget(2 * kSlack, '\0'),
        mModelTarget(mTarget) {}

  ~Walk() { delete mBytes; }

  std::string Run() {
    Compare();
    while (mDifference.empty() && mData != mEnd && mModel.size < kLimit &&
           mModel.position < kLimit) {
      Step();
      Compare();
    }
    // Going, it releases its block.
    delete mBytes;
    mBytes = nullptr;
    mModel.released.push_back(mModel.position);
    Expect(Released() == mModel.released, "releases");
    return mDifference.empty() ? "" : mDifference + " after " + mHistory;
  }

 private:
  Number Next() { return mData == mEnd ? 0 : *mData++; }

  // Zero bytes come often.
  std::string Bytes(Number count) {
    std::string bytes;
    for (; count > 0; --count) {
      const Number byte = Next();
      bytes += static_cast<char>(byte % 16 == 0 ? 0 : byte);
    }
    return bytes;
  }

  void Step() {
    const Number operation = Next() % 9;
    if (operation <= 2) {
      Write();
    } else if (operation <= 4) {
      Read();
    } else if (operation <= 6) {
      Seek();
    } else if (operation == 7) {
      mHistory += "Flush; ";
      mModel.Flush();
      mBytes->Flush();
    } else {
      mHistory += "SetEndOfStream; ";
      mModel.SetEndOfStream();
      mBytes->SetEndOfStream();
    }
  }

  void Write() {
    std::string data = Bytes(Next() % 41);
    if (mModel.WriteDividesByZero(data)) return;
    mHistory += "Write " + std::to_string(data.size()) + "; ";
    const Number expected = mModel.Write(data);
    Expect(mBytes->Write(data.data(), data.size()) == expected, "the result");
  }

  void Read() {
    const Number wanted = Next();
    if (wanted >= 192) {
      mTarget.assign(mTarget.size(), '\0');
      Put(mTarget, 0, Bytes(wanted % 7));
      mModelTarget = mTarget;
    }
    if (TextAt(mTarget, 0).size() >= kLimit) return;
    mHistory += "Read " + std::to_string(wanted % 30) + "; ";
    const Number expected = mModel.Read(mModelTarget, wanted % 30);
    Expect(mBytes->Read(mTarget.data(), wanted % 30) == expected, "the result");
    Expect(mTarget == mModelTarget, "what was read");
  }

  void Seek() {
    const int where = static_cast<int>(Next() % 6);
    const Number byte = Next();
    Number offset = byte % 40;
    if (where == 4 && byte >= 128) offset = -std::min(offset, mModel.size);
    mHistory += "Seek " + std::to_string(static_cast<long long>(offset)) +
                " from " + std::to_string(where) + "; ";
    const Number expected = mModel.Seek(offset, where);
    Expect(
        mBytes->Seek(offset, static_cast<KVTSeekFromWhere>(where)) == expected,
        "the result");
  }

  void Compare() {
    Expect(mBytes->Tell() == mModel.position, "the position");
    Expect(mBytes->GetBufferSize() == mModel.size, "the size");
    Expect(
        mBytes->GetStreamState() ==
            (mModel.position == mModel.size ? KVTStreamAtEnd : KVTStreamGood),
        "the state");
    std::vector<Number> requested;
    for (const auto& block : mArrays.Blocks()) requested.push_back(block.size);
    Expect(requested == mModel.requested, "requests");
    const unsigned char* const start = mArrays.Blocks().back().start;
    Expect(mBytes->GetBuffer() == start + mModel.position, "the buffer");
    Expect(mModel.block == std::string(reinterpret_cast<const char*>(start),
                                       mArrays.Blocks().back().size + kSlack),
           "the block");
    Expect(Released() == mModel.released, "releases");
  }

  // Blocks go in the order in which they came.
  std::vector<Number> Released() const {
    std::vector<Number> released;
    for (void* const pointer : mArrays.Released()) {
      released.push_back(
          static_cast<Number>(static_cast<unsigned char*>(pointer) -
                              mArrays.Blocks()[released.size()].start));
    }
    return released;
  }

  void Expect(bool holds, const char* what) {
    if (!holds && mDifference.empty()) {
      mDifference = std::string(what) + " differ(s)";
    }
  }

  const std::uint8_t* mData;
  const std::uint8_t* mEnd;
  hooks::WatchedArrays mArrays;
  Model mModel;
  KVTMemoryTransferBytes* mBytes;
  std::string mTarget;
  std::string mModelTarget;
  std::string mDifference;
  std::string mHistory;
};

}  // namespace

std::string CompareMemoryTransfer(const std::uint8_t* data, std::size_t size) {
  return Walk(data, size).Run();
}
