/// @file
/// Byte transports: one over a stdio stream, one over memory.
///
/// Sizes, offsets and positions are bytes.  One object belongs to one thread at
/// a time.  Failures come back as 0 and nothing more.  Where memory runs out,
/// the allocator's exception leaves the operation, and the object is then as it
/// was before.

#ifndef KVTTRANSFERBYTES_H
#define KVTTRANSFERBYTES_H

#include <cstdio>

#include "KVTExport.h"
#include "KVTFile.h"
#include "KVTString.h"

/// The origin of a seek; any other value moves nothing.
enum KVTSeekFromWhere {
  KVTSeekFromBeginning = 1,
  KVTSeekFromCurrent = 2,
  KVTSeekFromEnd = 4
};

/// The state of a transport or stream.
enum KVTStreamState {
  /// Usable.
  KVTStreamGood = 0,
  /// At the end.
  KVTStreamAtEnd = 1,
  /// No stream or block stands behind the object.
  KVTStreamNoStorage = 2,
  /// Failed; for transports of callers, since those here never get there.
  KVTStreamFailed = 3
};

/// What the typed streams read from and write to.
class KVT_EXPORT IKVTTransferBytes {
 public:
  /// Does nothing.
  virtual ~IKVTTransferBytes();

  /// Reads up to `size` bytes into `buffer`; returns how many came.
  virtual unsigned long long Read(void* buffer, unsigned long long size) = 0;

  /// Writes `size` bytes from `buffer`.
  virtual unsigned long long Write(void* buffer, unsigned long long size) = 0;

  /// Moves the position by `offset` from `where`; returns it as Tell does.
  virtual unsigned long long Seek(unsigned long long offset,
                                  KVTSeekFromWhere where) = 0;

  /// Returns the position.
  virtual unsigned long long Tell() = 0;

  /// Hands on what is buffered.
  virtual void Flush() = 0;

  /// Tells whether the transport can be used.
  virtual KVTStreamState GetStreamState() = 0;

  /// Ends the content at the position.
  virtual void SetEndOfStream() = 0;
};

/// A transport over a stdio stream of its own.
///
/// Callers rely on the destructor not testing for a stream: when the file could
/// not be opened, which GetStreamState tells by KVTStreamNoStorage, destroying
/// the object crashes.
class KVT_EXPORT KVTFileTransferBytes : public IKVTTransferBytes {
 public:
  /// Opens `file` with fopen(3); `mode` is handed to it as it stands.
  KVTFileTransferBytes(KVTFile file, KVTString mode);

  /// Closes the stream.
  ~KVTFileTransferBytes() override;

  KVTFileTransferBytes(const KVTFileTransferBytes&) = delete;
  KVTFileTransferBytes& operator=(const KVTFileTransferBytes&) = delete;

  /// Reads at most what lies between the position and the end of the stream;
  /// returns how many bytes came.  0 when the path is empty, leads nowhere, to
  /// a directory or to a file of size 0 on the disk (so that bytes of a new
  /// file that are not flushed yet cannot be read), or when the stream cannot
  /// seek.  The end shows only as this 0: the state stays KVTStreamGood.
  unsigned long long Read(void* buffer, unsigned long long size) override;

  /// Writes through fwrite(3), after a seek in place that lets a write follow a
  /// read; returns how many bytes went.  A file that was deleted after opening
  /// is still written.
  unsigned long long Write(void* buffer, unsigned long long size) override;

  /// Moves with fseek(3) and returns Tell(); 0 when there is no stream or fseek
  /// fails.  `offset` is taken as a signed number.
  unsigned long long Seek(unsigned long long offset,
                          KVTSeekFromWhere where) override;

  /// Returns the position of ftell(3), or 0 when there is none.  Callers rely
  /// on it going through 32 bits with its sign: from 2 GiB on it is wrong,
  /// while Read, Write and the move of Seek are right.
  unsigned long long Tell() override;

  /// Calls fflush(3).
  void Flush() override;

  /// KVTStreamNoStorage when the file could not be opened, KVTStreamAtEnd when
  /// feof(3) holds, which Read does not bring about on a regular file.
  KVTStreamState GetStreamState() override;

  /// Calls ftruncate(2) at the position of ftell(3).  What the stream has in
  /// its buffer stays there: bytes not yet written still will be, and bytes
  /// read ahead can come back after the file has grown again.
  void SetEndOfStream() override;

  /// The file that the constructor got.
  KVTFile GetFile() const;

 private:
  KVTFile mFile;
  KVTString mMode;
  FILE* mStream;
};

/// A transport over a block of memory of its own: a collector of text.
///
/// The content is measured with strlen(3), so the first zero byte ends it, and
/// nothing is checked against the end of the block.  Callers keep a zero byte
/// within it (a block larger than its text) and rely on all of the following as
/// it stands:
///
/// - Write appends to the text and does not move the position; Read does not
///   move it by what it delivers, but by what the target holds on the next
///   call.
/// - Write, when the block has to grow, and the destructor release the block
///   through the position.  Rewind with Seek(0, KVTSeekFromBeginning) before
///   either, or the heap is damaged.
/// - A block of 4 GiB or more is not supported: some requests go through 32
///   bits.
class KVT_EXPORT KVTMemoryTransferBytes : public IKVTTransferBytes {
 public:
  /// Makes a block of `size` zero bytes.  `buffer` is not looked at: what it
  /// points to is not taken over.
  KVTMemoryTransferBytes(unsigned char* buffer, unsigned long long size);

  /// Releases the block; the position must stand at its start.
  ~KVTMemoryTransferBytes() override;

  KVTMemoryTransferBytes(const KVTMemoryTransferBytes&) = delete;
  KVTMemoryTransferBytes& operator=(const KVTMemoryTransferBytes&) = delete;

  /// Copies up to `size` bytes of text behind the text that `buffer` holds, and
  /// a zero byte behind them; returns the length of what came.
  ///
  /// `buffer` holds a zero-terminated text and has room for `size` + 1 bytes
  /// behind it.  The first call that finds content clears that text; each later
  /// one counts it as read already and moves the position forward by its
  /// length.  Returns 0 at once when there is no text at the position.
  ///
  /// Callers rely on the length of the text being taken before that move: up to
  /// as many bytes are copied from the new position, whatever stands there, and
  /// beyond the end of the block if it is no longer.
  unsigned long long Read(void* buffer, unsigned long long size) override;

  /// Appends `size` bytes to the text at the position; returns the length of
  /// the text afterwards.
  ///
  /// The bytes go into the block when its size less the length of the text is
  /// at least `size`; the position is not taken into account, and an exact fit
  /// leaves no zero byte.  Otherwise the text from the position on moves to a
  /// block twice as large or, when `size` is not below the block's size, of
  /// (`size` / block size + 1) blocks.  The latter does not count the text: it
  /// overruns when what is left of the last block is less than the text.  A
  /// block of size 0 cannot grow: the division fails.
  unsigned long long Write(void* buffer, unsigned long long size) override;

  /// Moves the position; returns Tell().  An `offset` that leaves the block
  /// gives a new block, which takes over the text at the start of the old one
  /// and nothing behind its first zero byte:
  ///
  /// - from the beginning: of `offset` bytes; the position is its end.
  /// - from the current position: of `offset` bytes as well, though the size
  ///   becomes the old position plus `offset`; the position is what that size
  ///   makes the end, and so lies outside the block unless the old one was 0.
  /// - from the end: always, even for 0, of block size + `offset` bytes; the
  ///   position is its end.
  ///
  /// A negative offset in complement form is a request for an enormous block
  /// and ends in the allocator's exception, except from the end.
  unsigned long long Seek(unsigned long long offset,
                          KVTSeekFromWhere where) override;

  /// Returns the distance from the start of the block.
  unsigned long long Tell() override;

  /// Fills with zeros: as many bytes as the block has, from the position on.
  /// Callers rely on it erasing the content; away from the start it overruns
  /// the block.
  void Flush() override;

  /// KVTStreamAtEnd when the position, taken as 32 bits, equals the size of the
  /// block.
  KVTStreamState GetStreamState() override;

  /// Cuts the block to Tell() bytes; the position is its end.
  void SetEndOfStream() override;

  /// Returns the position and not the start of the block.  Valid until the
  /// block is replaced by Write, Seek or SetEndOfStream, or the object goes.
  unsigned char* GetBuffer() const;

  /// Returns the size of the block.
  unsigned long long GetBufferSize() const;

 private:
  unsigned char* mPosition;
  unsigned long long mSize;
  bool mFirstRead;
  unsigned char* mStart;
};

#endif  // KVTTRANSFERBYTES_H
