#include "KVTLock.h"

KVTLock::KVTLock() { pthread_mutex_init(&mMutex, nullptr); }

KVTLock::~KVTLock() { pthread_mutex_destroy(&mMutex); }

bool KVTLock::Lock() {
  pthread_mutex_lock(&mMutex);
  return true;
}

bool KVTLock::Unlock() {
  pthread_mutex_unlock(&mMutex);
  return true;
}
