/// @file
/// A mutex for callers; the library itself takes no lock.

#ifndef KVTLOCK_H
#define KVTLOCK_H

#include <pthread.h>

#include "KVTExport.h"

/// A normal, non-recursive POSIX mutex: a second Lock from the thread that
/// holds it blocks for good.
class KVT_EXPORT KVTLock {
 public:
  /// Calls pthread_mutex_init(3) with default attributes.
  KVTLock();

  /// Calls pthread_mutex_destroy(3); the mutex must not be held.
  ~KVTLock();

  KVTLock(KVTLock const&) = delete;
  KVTLock& operator=(KVTLock const&) = delete;

  /// Calls pthread_mutex_lock(3).  Always returns true.
  bool Lock();

  /// Calls pthread_mutex_unlock(3).  Always returns true.
  bool Unlock();

  /// The mutex itself.
  pthread_mutex_t mMutex;
};

#endif  // KVTLOCK_H
