#include "KVTStream.h"

KVTWriteStream::KVTWriteStream(IKVTTransferBytes* transport)
    : mTransport(transport) {
  static_cast<void>(mTransport);
}

KVTWriteStream::~KVTWriteStream() = default;

long long KVTWriteStream::TransferByte(unsigned char& /*value*/) { return 0; }

long long KVTWriteStream::TransferByte(unsigned char* /*values*/,
                                       long long /*count*/) {
  return 0;
}

KVTString KVTWriteStream::TransferString(KVTString& /*value*/, bool, bool) {
  return KVTString();
}

long long KVTWriteStream::TransferBool(bool& /*value*/) { return 0; }

long long KVTWriteStream::TransferBool(bool* /*values*/, long long /*count*/) {
  return 0;
}

long long KVTWriteStream::TransferInt16(short& /*value*/) { return 0; }

long long KVTWriteStream::TransferInt16(short* /*values*/,
                                        long long /*count*/) {
  return 0;
}

long long KVTWriteStream::TransferInt32(int& /*value*/) { return 0; }

long long KVTWriteStream::TransferInt32(int* /*values*/, long long /*count*/) {
  return 0;
}

long long KVTWriteStream::TransferInt64(long long& /*value*/) { return 0; }

long long KVTWriteStream::TransferInt64(long long* /*values*/,
                                        long long /*count*/) {
  return 0;
}

void KVTWriteStream::Comment(char* /*text*/) {}

unsigned long long KVTWriteStream::Seek(int /*offset*/,
                                        KVTSeekFromWhere /*where*/) {
  return 0;
}

unsigned long long KVTWriteStream::Tell() { return 0; }

void KVTWriteStream::SetEndOfStream() {}

void KVTWriteStream::Flush() {}

KVTStreamState KVTWriteStream::GetStreamState() { return KVTStreamAtEnd; }

bool KVTWriteStream::IsReading() const { return false; }

bool KVTWriteStream::IsWriting() const { return true; }

void KVTWriteStream::SetSwapping(bool /*swapping*/) {}

bool KVTWriteStream::GetSwapping() const { return false; }

void KVTWriteStream::Close() {}
