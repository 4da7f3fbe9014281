#include <gtest/gtest.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <new>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "KVTLock.h"

namespace {

TEST(KVTLockClass, HoldsThePosixMutexAlone) {
  EXPECT_EQ(sizeof(KVTLock), sizeof(pthread_mutex_t));
  EXPECT_FALSE(std::is_polymorphic_v<KVTLock>);
  EXPECT_TRUE((std::is_same_v<decltype(KVTLock::mMutex), pthread_mutex_t>));
}

TEST(KVTLock, SaysTrueWhenItLocksAndUnlocks) {
  KVTLock lock;
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(lock.Lock());
    EXPECT_TRUE(lock.Unlock());
  }
}

TEST(KVTLock, HoldsTheMutexFromLockToUnlock) {
  KVTLock lock;
  lock.Lock();
  // A recursive mutex would let its own thread in.
  EXPECT_EQ(pthread_mutex_trylock(&lock.mMutex), EBUSY);
  lock.Unlock();
  EXPECT_EQ(pthread_mutex_trylock(&lock.mMutex), 0);
  EXPECT_EQ(pthread_mutex_unlock(&lock.mMutex), 0);
}

TEST(KVTLock, LetsOneThreadInAtATime) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 50000;
  KVTLock lock;
  long count = 0;     // guarded by lock
  bool alone = true;  // guarded by lock
  int inside = 0;     // guarded by lock
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      ++ready;
      while (ready < kThreads) std::this_thread::yield();
      for (int round = 0; round < kRounds; ++round) {
        lock.Lock();
        alone = alone && ++inside == 1;
        ++count;
        --inside;
        lock.Unlock();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(count, long{kThreads} * kRounds);
  EXPECT_TRUE(alone);
}

// The state letter of a thread of this process: S while it waits.
char StateOf(pid_t thread) {
  std::ifstream in("/proc/self/task/" + std::to_string(thread) + "/stat");
  std::string line;
  std::getline(in, line);
  const std::size_t name = line.rfind(") ");
  return name == std::string::npos ? '?' : line[name + 2];
}

TEST(KVTLock, MakesAnotherThreadWaitUntilUnlock) {
  KVTLock lock;
  lock.Lock();
  std::atomic<pid_t> id{0};
  std::atomic<bool> inside{false};
  std::thread other([&] {
    id = gettid();
    EXPECT_TRUE(lock.Lock());
    inside = true;
    EXPECT_TRUE(lock.Unlock());
  });

  const auto deadline =
      std::chrono::steady_clock::now() + std::chrono::seconds(30);
  bool waits = false;
  while (!waits && !inside && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::yield();
    waits = id != 0 && StateOf(id) == 'S';
  }
  EXPECT_TRUE(waits);
  EXPECT_FALSE(inside);

  lock.Unlock();
  other.join();
  EXPECT_TRUE(inside);
}

// Misuse, which a race detector would report: kept apart by name.

TEST(KVTLockMisuse, SaysTrueWhateverTheMutexAnswers) {
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
  KVTLock lock;
  pthread_mutex_destroy(&lock.mMutex);
  pthread_mutex_init(&lock.mMutex, &attributes);
  pthread_mutexattr_destroy(&attributes);

  EXPECT_TRUE(lock.Unlock());  // EPERM
  EXPECT_TRUE(lock.Lock());
  EXPECT_TRUE(lock.Lock());  // EDEADLK
  EXPECT_TRUE(lock.Unlock());
}

TEST(KVTLockMisuse, FindsTheMutexDestroyedBehindTheDestructor) {
  alignas(KVTLock) unsigned char storage[sizeof(KVTLock)];
  KVTLock* const lock = new (storage) KVTLock;
  pthread_mutex_t* const mutex = &lock->mMutex;
  EXPECT_EQ(pthread_mutex_trylock(mutex), 0);
  EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
  lock->~KVTLock();
  // glibc marks a destroyed mutex as of no kind.
  EXPECT_EQ(pthread_mutex_trylock(mutex), EINVAL);
}

TEST(KVTLockMisuseDeathTest, BlocksForGoodWhenItsHolderLocksAgain) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        KVTLock lock;
        lock.Lock();
        itimerval soon = {};
        soon.it_value.tv_usec = 200000;
        setitimer(ITIMER_REAL, &soon, nullptr);
        lock.Lock();
        _exit(0);
      },
      testing::KilledBySignal(SIGALRM), "");
}

}  // namespace
