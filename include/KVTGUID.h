/// @file
/// A 128-bit identifier.  KVTString::GetGUID reads its text form,
/// KVTFileUtil::isGUIDValid checks it and KVTFileUtil::GetUUID makes one.
///
/// Objects are plain values without a lock.

#ifndef KVTGUID_H
#define KVTGUID_H

#include "KVTExport.h"

/// A 128-bit identifier (RFC 4122) in four fields.
class KVT_EXPORT KVTGUID {
 public:
  /// Sets all fields to zero.
  KVTGUID();

  /// Takes the three numbers and copies eight bytes from `data4`, which must
  /// not be null.
  KVTGUID(int data1, short data2, short data3, signed char* data4);

  /// Copies all fields.
  KVTGUID(KVTGUID const& other);
  /// Assigns all fields.
  KVTGUID& operator=(KVTGUID const& other);

  /// Does nothing.
  virtual ~KVTGUID();

  /// Tells whether all fields are equal.
  bool operator==(KVTGUID const& other) const;
  /// The opposite of operator==.
  bool operator!=(KVTGUID const& other) const;

  /// First group of the text form.
  int mData1;
  /// Second group.
  short mData2;
  /// Third group.
  short mData3;
  /// Fourth and fifth group, in the order of the text.
  signed char mData4[8];
};

#endif  // KVTGUID_H
