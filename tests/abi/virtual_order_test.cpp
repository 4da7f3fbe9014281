// The order of the virtual operations: programs that are built already call
// them by their place in the table.

#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KVTStream.h"
#include "KVTTransferBytes.h"
#include "virtual_table.h"

namespace {

using testing::ElementsAre;

// Tells which of its operations was called.
class Transport : public IKVTTransferBytes {
 public:
  explicit Transport(std::string& called) : mCalled(called) {}
  ~Transport() override { mCalled = "destructor"; }
  unsigned long long Read(void*, unsigned long long size) override {
    mCalled = "Read";
    return size;
  }
  unsigned long long Write(void*, unsigned long long size) override {
    mCalled = "Write";
    return size;
  }
  unsigned long long Seek(unsigned long long offset,
                          KVTSeekFromWhere where) override {
    mCalled = "Seek";
    return offset + where;
  }
  unsigned long long Tell() override {
    mCalled = "Tell";
    return 7;
  }
  void Flush() override { mCalled = "Flush"; }
  KVTStreamState GetStreamState() override {
    mCalled = "GetStreamState";
    return KVTStreamFailed;
  }
  void SetEndOfStream() override { mCalled = "SetEndOfStream"; }

 private:
  std::string& mCalled;
};

TEST(TransferBytesTable, SlotsInOrder) {
  using Size = unsigned long long;
  std::string called;
  Transport transport(called);
  EXPECT_EQ((CallSlot<Size, void*, Size>(&transport, 2, nullptr, 5)), 5u);
  EXPECT_EQ(called, "Read");
  EXPECT_EQ((CallSlot<Size, void*, Size>(&transport, 3, nullptr, 6)), 6u);
  EXPECT_EQ(called, "Write");
  EXPECT_EQ((CallSlot<Size, Size, KVTSeekFromWhere>(&transport, 4, 10,
                                                    KVTSeekFromEnd)),
            14u);
  EXPECT_EQ(called, "Seek");
  EXPECT_EQ(CallSlot<Size>(&transport, 5), 7u);
  EXPECT_EQ(called, "Tell");
  CallSlot<void>(&transport, 6);
  EXPECT_EQ(called, "Flush");
  EXPECT_EQ(CallSlot<KVTStreamState>(&transport, 7), KVTStreamFailed);
  EXPECT_EQ(called, "GetStreamState");
  CallSlot<void>(&transport, 8);
  EXPECT_EQ(called, "SetEndOfStream");
}

TEST(TransferBytesTable, DestructorsComeFirst) {
  std::string called;
  alignas(Transport) unsigned char place[sizeof(Transport)];
  void* const inPlace = new (place) Transport(called);
  CallSlot<void>(inPlace, 0);
  EXPECT_EQ(called, "destructor");

  called.clear();
  void* const onHeap = new Transport(called);
  CallSlot<void>(onHeap, 1);  // LeakSanitizer sees whether it deletes
  EXPECT_EQ(called, "destructor");
}

// Tells which of its operations was called.
class Stream : public IKVTStream {
 public:
  explicit Stream(std::string& called) : mCalled(called) {}
  ~Stream() override { mCalled = "destructor"; }
  long long TransferByte(unsigned char&) override { return Say("Byte"); }
  long long TransferByte(unsigned char*, long long) override {
    return Say("Bytes");
  }
  KVTString TransferString(KVTString& value, bool, bool) override {
    Say("String");
    return value;
  }
  long long TransferBool(bool&) override { return Say("Bool"); }
  long long TransferBool(bool*, long long) override { return Say("Bools"); }
  long long TransferInt16(short&) override { return Say("Int16"); }
  long long TransferInt16(short*, long long) override { return Say("Int16s"); }
  long long TransferInt32(int&) override { return Say("Int32"); }
  long long TransferInt32(int*, long long) override { return Say("Int32s"); }
  long long TransferInt64(long long&) override { return Say("Int64"); }
  long long TransferInt64(long long*, long long) override {
    return Say("Int64s");
  }
  void Comment(char*) override { Say("Comment"); }
  unsigned long long Seek(int, KVTSeekFromWhere) override {
    Say("Seek");
    return 9;
  }
  unsigned long long Tell() override {
    Say("Tell");
    return 8;
  }
  void SetEndOfStream() override { Say("SetEndOfStream"); }
  void Flush() override { Say("Flush"); }
  KVTStreamState GetStreamState() override {
    Say("GetStreamState");
    return KVTStreamAtEnd;
  }
  bool IsReading() const override { return Say("IsReading"); }
  bool IsWriting() const override { return Say("IsWriting"); }
  void SetSwapping(bool) override { Say("SetSwapping"); }
  bool GetSwapping() const override { return Say("GetSwapping"); }
  bool Open() override { return Say("Open"); }
  void Close() override { Say("Close"); }

 private:
  long long Say(const char* name) const {
    mCalled = name;
    return 1;
  }

  std::string& mCalled;
};

class StreamTable : public testing::Test {
 protected:
  std::string mCalled;
  Stream mStream{mCalled};
};

TEST_F(StreamTable, DestructorsComeFirst) {
  alignas(Stream) unsigned char place[sizeof(Stream)];
  void* const inPlace = new (place) Stream(mCalled);
  CallSlot<void>(inPlace, 0);
  EXPECT_EQ(mCalled, "destructor");

  mCalled.clear();
  void* const onHeap = new Stream(mCalled);
  CallSlot<void>(onHeap, 1);
  EXPECT_EQ(mCalled, "destructor");
}

// Calls the slot of a transfer of one value by reference.
template <class Value>
void TransferOne(void* stream, int slot) {
  Value value = {};
  EXPECT_EQ((CallSlot<long long, Value&>(stream, slot, value)), 1);
}

// The same for the form that takes an array.
template <class Value>
void TransferMany(void* stream, int slot) {
  Value values[2] = {};
  EXPECT_EQ((CallSlot<long long, Value*, long long>(stream, slot, values, 2)),
            1);
}

TEST_F(StreamTable, TransfersInOrder) {
  std::vector<std::string> order;
  const auto note = [&] { order.push_back(mCalled); };
  TransferOne<unsigned char>(&mStream, 2);
  note();
  TransferMany<unsigned char>(&mStream, 3);
  note();
  // The result comes back through a hidden pointer in front of the object, as
  // in a function that is no member.
  using String = KVTString (*)(void*, KVTString&, bool, bool);
  KVTString text("abc");
  EXPECT_EQ(reinterpret_cast<String>(TableOf(&mStream)[4])(&mStream, text,
                                                           false, false),
            text);
  note();
  TransferOne<bool>(&mStream, 5);
  note();
  TransferMany<bool>(&mStream, 6);
  note();
  TransferOne<short>(&mStream, 7);
  note();
  TransferMany<short>(&mStream, 8);
  note();
  TransferOne<int>(&mStream, 9);
  note();
  TransferMany<int>(&mStream, 10);
  note();
  TransferOne<long long>(&mStream, 11);
  note();
  TransferMany<long long>(&mStream, 12);
  note();
  EXPECT_THAT(order,
              ElementsAre("Byte", "Bytes", "String", "Bool", "Bools", "Int16",
                          "Int16s", "Int32", "Int32s", "Int64", "Int64s"));
}

TEST_F(StreamTable, TheOtherOperationsInOrder) {
  std::vector<std::string> order;
  const auto note = [&] { order.push_back(mCalled); };
  CallSlot<void, char*>(&mStream, 13, nullptr);
  note();
  EXPECT_EQ((CallSlot<unsigned long long, int, KVTSeekFromWhere>(
                &mStream, 14, -1, KVTSeekFromCurrent)),
            9u);
  note();
  EXPECT_EQ(CallSlot<unsigned long long>(&mStream, 15), 8u);
  note();
  CallSlot<void>(&mStream, 16);
  note();
  CallSlot<void>(&mStream, 17);
  note();
  EXPECT_EQ(CallSlot<KVTStreamState>(&mStream, 18), KVTStreamAtEnd);
  note();
  EXPECT_TRUE(CallSlot<bool>(&mStream, 19));
  note();
  EXPECT_TRUE(CallSlot<bool>(&mStream, 20));
  note();
  CallSlot<void, bool>(&mStream, 21, true);
  note();
  EXPECT_TRUE(CallSlot<bool>(&mStream, 22));
  note();
  EXPECT_TRUE(CallSlot<bool>(&mStream, 23));
  note();
  CallSlot<void>(&mStream, 24);
  note();
  EXPECT_THAT(order,
              ElementsAre("Comment", "Seek", "Tell", "SetEndOfStream", "Flush",
                          "GetStreamState", "IsReading", "IsWriting",
                          "SetSwapping", "GetSwapping", "Open", "Close"));
}

// The library's own tables, slot by slot against the addresses of the
// operations.  %C stands for the class, ! for one left pure, "" for a slot that
// the compiler leaves empty: a class with a pure operation is never destroyed
// as a whole object.
void ExpectTable(const std::string& mangledClass,
                 const std::vector<std::string>& operations) {
  void** const table = LibraryTable(mangledClass);
  ASSERT_NE(table, nullptr) << mangledClass;
  for (std::size_t slot = 0; slot < operations.size(); ++slot) {
    std::string symbol = operations[slot];
    if (symbol.empty()) {
      EXPECT_EQ(table[slot], nullptr) << mangledClass << " slot " << slot;
      continue;
    }
    if (symbol == "!") {
      symbol = "__cxa_pure_virtual";
    } else {
      symbol.replace(symbol.find("%C"), 2, mangledClass);
    }
    void* const operation = dlsym(RTLD_DEFAULT, symbol.c_str());
    EXPECT_NE(operation, nullptr) << symbol;
    EXPECT_EQ(table[slot], operation)
        << "slot " << slot << " is not " << symbol;
  }
}

const std::vector<std::string> kTransportOperations = {
    "_ZN%CD1Ev",
    "_ZN%CD0Ev",
    "_ZN%C4ReadEPvy",
    "_ZN%C5WriteEPvy",
    "_ZN%C4SeekEy16KVTSeekFromWhere",
    "_ZN%C4TellEv",
    "_ZN%C5FlushEv",
    "_ZN%C14GetStreamStateEv",
    "_ZN%C14SetEndOfStreamEv",
};

const std::vector<std::string> kStreamOperations = {
    "",
    "",
    "_ZN%C12TransferByteERh",
    "_ZN%C12TransferByteEPhx",
    "_ZN%C14TransferStringER9KVTStringbb",
    "_ZN%C12TransferBoolERb",
    "_ZN%C12TransferBoolEPbx",
    "_ZN%C13TransferInt16ERs",
    "_ZN%C13TransferInt16EPsx",
    "_ZN%C13TransferInt32ERi",
    "_ZN%C13TransferInt32EPix",
    "_ZN%C13TransferInt64ERx",
    "_ZN%C13TransferInt64EPxx",
    "_ZN%C7CommentEPc",
    "_ZN%C4SeekEi16KVTSeekFromWhere",
    "_ZN%C4TellEv",
    "_ZN%C14SetEndOfStreamEv",
    "_ZN%C5FlushEv",
    "_ZN%C14GetStreamStateEv",
    "_ZNK%C9IsReadingEv",
    "_ZNK%C9IsWritingEv",
    "_ZN%C11SetSwappingEb",
    "_ZNK%C11GetSwappingEv",
    "!",
    "_ZN%C5CloseEv",
};

TEST(LibraryTables, Transports) {
  ExpectTable("20KVTFileTransferBytes", kTransportOperations);
  ExpectTable("22KVTMemoryTransferBytes", kTransportOperations);
}

TEST(LibraryTables, TypedStreamsWithOneOperationLeftPure) {
  ExpectTable("13KVTReadStream", kStreamOperations);
  ExpectTable("14KVTWriteStream", kStreamOperations);
  ExpectTable("18KVTReadWriteStream", kStreamOperations);
}

TEST(LibraryTables, InterfacesWithAllButTheirDestructorsPure) {
  std::vector<std::string> transport(kTransportOperations.size(), "!");
  transport[0] = transport[1] = "";
  ExpectTable("17IKVTTransferBytes", transport);
  std::vector<std::string> stream(kStreamOperations.size(), "!");
  stream[0] = stream[1] = "";
  ExpectTable("10IKVTStream", stream);
}

TEST(LibraryTables, ValuesHaveTheirTwoDestructorsAndNothingElse) {
  for (const char* const name :
       {"9KVTString", "7KVTTime", "7KVTGUID", "7KVTFile"}) {
    ExpectTable(name, {"_ZN%CD1Ev", "_ZN%CD0Ev"});
    void** const table = LibraryTable(name);
    ASSERT_NE(table, nullptr);
    Dl_info info = {};
    const Elf64_Sym* symbol = nullptr;
    ASSERT_NE(
        dladdr1(table - 2, &info,
                reinterpret_cast<void**>(const_cast<Elf64_Sym**>(&symbol)),
                RTLD_DL_SYMENT),
        0);
    EXPECT_EQ(symbol->st_size, 4 * sizeof(void*)) << name;
  }
}

}  // namespace
