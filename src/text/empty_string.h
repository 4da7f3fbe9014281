/// The process-wide string that takes error texts nobody reads.

#ifndef KVT_TEXT_EMPTY_STRING_H
#define KVT_TEXT_EMPTY_STRING_H

#include "KVTString.h"

/// Empty when the library is loaded, destroyed at process exit.  Sending from
/// the local disk to a share hands it to the mount as the error text, which
/// then stays here.  Not protected against use by several threads.
extern KVTString mEmptyString;

#endif  // KVT_TEXT_EMPTY_STRING_H
