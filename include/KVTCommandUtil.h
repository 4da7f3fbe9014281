/// @file
/// The walk of PATH.

#ifndef KVTCOMMANDUTIL_H
#define KVTCOMMANDUTIL_H

#include "KVTExport.h"
#include "KVTString.h"

/// One static operation, no data.
class KVT_EXPORT KVTCommandUtil {
 public:
  /// Lists on standard output what the directories of the environment variable
  /// PATH hold; returns true when PATH is unset or empty, otherwise false.
  ///
  /// Callers rely on `command` being neither read nor written, and so on the
  /// result not depending on it.
  ///
  /// Through std::cout go, for each directory, a line with a blank and the
  /// directory, then a line with a blank and the full path for every file found
  /// so far.  Callers rely on the files of earlier directories being repeated.
  /// A directory that cannot be opened gives its line and ":(" without a line
  /// end.  Lines are flushed, that mark is not.  Subdirectories are not listed;
  /// files come in the order of readdir(3).  PATH is split by
  /// KVTString::SubStrings: empty parts are skipped, and of ":/bin" nothing is
  /// left at all.
  ///
  /// Takes no lock: lines of other threads can come mixed.
  static bool CheckCommandExistence(KVTString& command);
};

#endif  // KVTCOMMANDUTIL_H
