#include "KVTStream.h"

KVTReadWriteStream::KVTReadWriteStream(IKVTTransferBytes* transport)
    : mTransport(transport) {
  static_cast<void>(mTransport);
}

KVTReadWriteStream::~KVTReadWriteStream() = default;

long long KVTReadWriteStream::TransferByte(unsigned char& /*value*/) {
  return 0;
}

long long KVTReadWriteStream::TransferByte(unsigned char* /*values*/,
                                           long long /*count*/) {
  return 0;
}

KVTString KVTReadWriteStream::TransferString(KVTString& /*value*/, bool, bool) {
  return KVTString();
}

long long KVTReadWriteStream::TransferBool(bool& /*value*/) { return 0; }

long long KVTReadWriteStream::TransferBool(bool* /*values*/,
                                           long long /*count*/) {
  return 0;
}

long long KVTReadWriteStream::TransferInt16(short& /*value*/) { return 0; }

long long KVTReadWriteStream::TransferInt16(short* /*values*/,
                                            long long /*count*/) {
  return 0;
}

long long KVTReadWriteStream::TransferInt32(int& /*value*/) { return 0; }

long long KVTReadWriteStream::TransferInt32(int* /*values*/,
                                            long long /*count*/) {
  return 0;
}

long long KVTReadWriteStream::TransferInt64(long long& /*value*/) { return 0; }

long long KVTReadWriteStream::TransferInt64(long long* /*values*/,
                                            long long /*count*/) {
  return 0;
}

void KVTReadWriteStream::Comment(char* /*text*/) {}

unsigned long long KVTReadWriteStream::Seek(int /*offset*/,
                                            KVTSeekFromWhere /*where*/) {
  return 0;
}

unsigned long long KVTReadWriteStream::Tell() { return 0; }

void KVTReadWriteStream::SetEndOfStream() {}

void KVTReadWriteStream::Flush() {}

KVTStreamState KVTReadWriteStream::GetStreamState() { return KVTStreamAtEnd; }

bool KVTReadWriteStream::IsReading() const { return false; }

// Callers rely on both answers being false.
bool KVTReadWriteStream::IsWriting() const { return false; }

void KVTReadWriteStream::SetSwapping(bool /*swapping*/) {}

bool KVTReadWriteStream::GetSwapping() const { return false; }

void KVTReadWriteStream::Close() {}
