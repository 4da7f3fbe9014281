#include "KVTStream.h"

IKVTStream::~IKVTStream() {}

KVTReadStream::KVTReadStream(IKVTTransferBytes* transport)
    : mTransport(transport), mSwapping(false) {}

KVTReadStream::~KVTReadStream() {
  KVTReadStream::Close();
  delete mTransport;
  mTransport = nullptr;
}

long long KVTReadStream::TransferByte(unsigned char& value) {
  mTransport->Read(&value, 1);
  return value;
}

long long KVTReadStream::TransferByte(unsigned char* values, long long count) {
  return static_cast<long long>(
      mTransport->Read(values, static_cast<unsigned long long>(count)));
}

KVTString KVTReadStream::TransferString(KVTString& /*value*/, bool, bool) {
  return KVTString();
}

long long KVTReadStream::TransferBool(bool& value) {
  // A memory transport takes this for a text and puts a zero byte behind what
  // it delivers.
  unsigned char bytes[2] = {0, 0};
  mTransport->Read(bytes, 1);
  // Callers rely on any other byte leaving the value alone.
  if (bytes[0] <= 1) value = bytes[0] == 1;
  return value;
}

long long KVTReadStream::TransferBool(bool* /*values*/, long long /*count*/) {
  return 0;
}

long long KVTReadStream::TransferInt16(short& /*value*/) { return 0; }

long long KVTReadStream::TransferInt16(short* /*values*/, long long /*count*/) {
  return 0;
}

long long KVTReadStream::TransferInt32(int& /*value*/) { return 0; }

long long KVTReadStream::TransferInt32(int* /*values*/, long long /*count*/) {
  return 0;
}

long long KVTReadStream::TransferInt64(long long& /*value*/) { return 0; }

long long KVTReadStream::TransferInt64(long long* /*values*/,
                                       long long /*count*/) {
  return 0;
}

void KVTReadStream::Comment(char* /*text*/) {}

unsigned long long KVTReadStream::Seek(int offset, KVTSeekFromWhere where) {
  return mTransport->Seek(
      static_cast<unsigned long long>(static_cast<long long>(offset)), where);
}

unsigned long long KVTReadStream::Tell() { return mTransport->Tell(); }

void KVTReadStream::SetEndOfStream() { mTransport->SetEndOfStream(); }

void KVTReadStream::Flush() { mTransport->Flush(); }

KVTStreamState KVTReadStream::GetStreamState() {
  return mTransport->GetStreamState();
}

bool KVTReadStream::IsReading() const { return true; }

bool KVTReadStream::IsWriting() const { return false; }

void KVTReadStream::SetSwapping(bool swapping) { mSwapping = swapping; }

bool KVTReadStream::GetSwapping() const { return mSwapping; }

void KVTReadStream::Close() {}
