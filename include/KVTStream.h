/// @file
/// Typed streams: one Transfer operation serves both directions.  A reading
/// stream fills the variable it is given, a writing stream stores it.
///
/// Of the operations here, only bytes and single truth values move, and only
/// through KVTReadStream, one byte each.  The others are part of the interface
/// with fixed results, which callers rely on.  The classes leave Open to be
/// supplied by a class derived from them.
///
/// One object belongs to one thread at a time.

#ifndef KVTSTREAM_H
#define KVTSTREAM_H

#include "KVTExport.h"
#include "KVTString.h"
#include "KVTTransferBytes.h"

/// The interface of a typed stream.  Counts are elements, offsets and positions
/// bytes.
class KVT_EXPORT IKVTStream {
 public:
  /// Does nothing.
  virtual ~IKVTStream();

  /// One byte.
  virtual long long TransferByte(unsigned char& value) = 0;
  /// `count` bytes.
  virtual long long TransferByte(unsigned char* values, long long count) = 0;
  /// A text.
  virtual KVTString TransferString(KVTString& value, bool, bool) = 0;
  /// One truth value.
  virtual long long TransferBool(bool& value) = 0;
  /// `count` truth values.
  virtual long long TransferBool(bool* values, long long count) = 0;
  /// One 16-bit number.
  virtual long long TransferInt16(short& value) = 0;
  /// `count` 16-bit numbers.
  virtual long long TransferInt16(short* values, long long count) = 0;
  /// One 32-bit number.
  virtual long long TransferInt32(int& value) = 0;
  /// `count` 32-bit numbers.
  virtual long long TransferInt32(int* values, long long count) = 0;
  /// One 64-bit number.
  virtual long long TransferInt64(long long& value) = 0;
  /// `count` 64-bit numbers.
  virtual long long TransferInt64(long long* values, long long count) = 0;
  /// A remark for people who look at the stored bytes.
  virtual void Comment(char* text) = 0;

  /// Moves the position by `offset` from `where` and returns it.
  virtual unsigned long long Seek(int offset, KVTSeekFromWhere where) = 0;
  /// Returns the position.
  virtual unsigned long long Tell() = 0;
  /// Ends the content at the position.
  virtual void SetEndOfStream() = 0;
  /// Hands on what is buffered.
  virtual void Flush() = 0;
  /// Tells whether the stream can be used.
  virtual KVTStreamState GetStreamState() = 0;

  /// Tells whether Transfer operations fill their variables.
  virtual bool IsReading() const = 0;
  /// Tells whether Transfer operations store their variables.
  virtual bool IsWriting() const = 0;

  /// Keeps a wish for the other byte order.
  virtual void SetSwapping(bool swapping) = 0;
  /// Returns the wish that was kept.
  virtual bool GetSwapping() const = 0;

  /// Makes the stream ready for use, the counterpart of Close; returns whether
  /// it is.  Nothing in the library calls it.
  virtual bool Open() = 0;
  /// Ends the use of the stream.
  virtual void Close() = 0;
};

/// A stream that reads from the transport it owns.  The transport may be null
/// only if nothing but the constructor, the destructor and the operations that
/// do nothing is called.
class KVT_EXPORT KVTReadStream : public IKVTStream {
 public:
  /// Takes over `transport`, which was made with new.
  KVTReadStream(IKVTTransferBytes* transport);

  /// Calls KVTReadStream::Close and deletes the transport.
  ~KVTReadStream() override;

  KVTReadStream(const KVTReadStream&) = delete;
  KVTReadStream& operator=(const KVTReadStream&) = delete;

  /// Reads one byte with the transport's Read and returns `value`.  When there
  /// is none, `value` stays as it was, so that a byte and a failure look alike.
  ///
  /// A KVTMemoryTransferBytes takes `value` for a zero-terminated text with
  /// room behind it: give it the first element of an array that holds zeros.
  long long TransferByte(unsigned char& value) override;

  /// Returns what the transport's Read gives for `values` and `count`.
  long long TransferByte(unsigned char* values, long long count) override;

  /// Returns an empty text and leaves `value` alone.
  KVTString TransferString(KVTString& value, bool, bool) override;

  /// Reads one byte: 0 makes `value` false, 1 makes it true, any other leaves
  /// it alone.  Returns `value` as a number.  At the end of the transport the
  /// byte counts as 0.
  long long TransferBool(bool& value) override;

  /// @name Operations that move nothing and return 0
  /// @{
  long long TransferBool(bool* values, long long count) override;
  long long TransferInt16(short& value) override;
  long long TransferInt16(short* values, long long count) override;
  long long TransferInt32(int& value) override;
  long long TransferInt32(int* values, long long count) override;
  long long TransferInt64(long long& value) override;
  long long TransferInt64(long long* values, long long count) override;
  /// @}

  /// Does nothing.
  void Comment(char* text) override;

  /// Calls the transport's Seek with `offset` extended to 64 bits with its
  /// sign, which a file transport takes for a move back and a memory transport
  /// for a very large number.
  unsigned long long Seek(int offset, KVTSeekFromWhere where) override;

  /// @name Operations of the transport
  /// @{
  unsigned long long Tell() override;
  void SetEndOfStream() override;
  void Flush() override;
  KVTStreamState GetStreamState() override;
  /// @}

  /// Returns true.
  bool IsReading() const override;

  /// Returns false.
  bool IsWriting() const override;

  /// Stores the flag, false at first; no bytes are ever swapped.
  void SetSwapping(bool swapping) override;
  bool GetSwapping() const override;

  /// Does nothing.
  void Close() override;

 private:
  IKVTTransferBytes* mTransport;  // owned
  bool mSwapping;
};

/// A stream that calls itself writing.  It never touches its transport, which
/// stays with the caller: every Transfer, Seek and Tell returns 0 or an empty
/// text and changes nothing.
class KVT_EXPORT KVTWriteStream : public IKVTStream {
 public:
  /// Keeps `transport` without ever using it.
  KVTWriteStream(IKVTTransferBytes* transport);
  /// Leaves the transport alone.
  ~KVTWriteStream() override;

  long long TransferByte(unsigned char& value) override;
  long long TransferByte(unsigned char* values, long long count) override;
  KVTString TransferString(KVTString& value, bool, bool) override;
  long long TransferBool(bool& value) override;
  long long TransferBool(bool* values, long long count) override;
  long long TransferInt16(short& value) override;
  long long TransferInt16(short* values, long long count) override;
  long long TransferInt32(int& value) override;
  long long TransferInt32(int* values, long long count) override;
  long long TransferInt64(long long& value) override;
  long long TransferInt64(long long* values, long long count) override;
  void Comment(char* text) override;
  unsigned long long Seek(int offset, KVTSeekFromWhere where) override;
  unsigned long long Tell() override;
  void SetEndOfStream() override;
  void Flush() override;
  /// Always returns KVTStreamAtEnd.
  KVTStreamState GetStreamState() override;
  /// Returns false.
  bool IsReading() const override;
  /// Returns true.
  bool IsWriting() const override;
  /// Does nothing.
  void SetSwapping(bool swapping) override;
  /// Returns false.
  bool GetSwapping() const override;
  void Close() override;

 private:
  IKVTTransferBytes* mTransport;  // the caller's
};

/// Like KVTWriteStream, and callers rely on its being neither reading nor
/// writing.
class KVT_EXPORT KVTReadWriteStream : public IKVTStream {
 public:
  /// Keeps `transport` without ever using it.
  KVTReadWriteStream(IKVTTransferBytes* transport);
  /// Leaves the transport alone.
  ~KVTReadWriteStream() override;

  long long TransferByte(unsigned char& value) override;
  long long TransferByte(unsigned char* values, long long count) override;
  KVTString TransferString(KVTString& value, bool, bool) override;
  long long TransferBool(bool& value) override;
  long long TransferBool(bool* values, long long count) override;
  long long TransferInt16(short& value) override;
  long long TransferInt16(short* values, long long count) override;
  long long TransferInt32(int& value) override;
  long long TransferInt32(int* values, long long count) override;
  long long TransferInt64(long long& value) override;
  long long TransferInt64(long long* values, long long count) override;
  void Comment(char* text) override;
  unsigned long long Seek(int offset, KVTSeekFromWhere where) override;
  unsigned long long Tell() override;
  void SetEndOfStream() override;
  void Flush() override;
  /// Always returns KVTStreamAtEnd.
  KVTStreamState GetStreamState() override;
  /// Returns false.
  bool IsReading() const override;
  /// Returns false.
  bool IsWriting() const override;
  /// Does nothing.
  void SetSwapping(bool swapping) override;
  /// Returns false.
  bool GetSwapping() const override;
  void Close() override;

 private:
  IKVTTransferBytes* mTransport;  // the caller's
};

/// A singleton with nothing in it.
class KVT_EXPORT KVTStreamUtil {
 public:
  KVTStreamUtil();

  /// Returns mUtil, which the first call makes; it is never deleted.  Takes no
  /// lock: callers keep first calls of several threads apart.
  static KVTStreamUtil* GetInstance();

  /// The instance; null before the first GetInstance.
  static KVTStreamUtil* mUtil;
};

#endif  // KVTSTREAM_H
