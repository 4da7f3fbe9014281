/// Interposers: functions of libc and the allocator that the library calls,
/// redirected for as long as a test wants it.
///
/// A test program that links kvt_test_hooks defines these functions itself, so
/// the dynamic linker gives its definitions to the library.  Each looks at its
/// hook: while one is set, it answers; otherwise the real function does.

#ifndef KVT_TESTS_HOOKS_H
#define KVT_TESTS_HOOKS_H

#include <dirent.h>
#include <netdb.h>
#include <stdarg.h>
#include <netinet/in.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <time.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace hooks {

extern std::function<int(const char* source, const char* target,
                         const char* type, unsigned long flags,
                         const void* data)>
    onMount;
extern std::function<int(const char* target, int flags)> onUmount2;
extern std::function<unsigned(unsigned seconds)> onSleep;
extern std::function<int(const char* node, const char* service,
                         const addrinfo* hints, addrinfo** result)>
    onGetaddrinfo;
extern std::function<const char*(int family, const void* address, char* out,
                                 socklen_t size)>
    onInetNtop;
extern std::function<char*(in_addr address)> onInetNtoa;
extern std::function<FILE*(const char* path, const char* mode)> onFopen;
extern std::function<int(FILE* stream)> onFclose;
extern std::function<int(FILE* stream, const char* format, va_list arguments)>
    onVfprintf;
extern std::function<long(FILE* stream)> onFtell;
extern std::function<int(FILE* stream, long offset, int where)> onFseek;
extern std::function<int(const char* path, struct stat* status)> onStat;
extern std::function<int(const char* path, mode_t mode)> onMkdir;
extern std::function<dirent*(DIR* directory)> onReaddir;
extern std::function<time_t(time_t* out)> onTime;
extern std::function<int(const char* command)> onSystem;
extern std::function<char*(const char* text)> onStrdup;
extern std::function<int(int character)> onToupper;
extern std::function<int(int character)> onTolower;
extern std::function<size_t(char* out, size_t size, const char* format,
                            const tm* fields)>
    onStrftime;
extern std::function<int(int character)> onIsalnum;
extern std::function<int(int character)> onIsxdigit;
/// `mode` is 0 where `flags` hold no O_CREAT.
extern std::function<int(const char* path, int flags, mode_t mode)> onOpen;
extern std::function<DIR*(const char* path)> onOpendir;
extern std::function<ssize_t(int to, int from, off_t* offset, size_t count)>
    onSendfile;
extern std::function<int(const char* path)> onRemove;
extern std::function<ssize_t(const char* path, char* out, size_t size)>
    onReadlink;
extern std::function<int(char* pattern)> onMkstemp;
extern std::function<ssize_t(int descriptor, void* out, size_t size)> onRead;
extern std::function<size_t(void* out, size_t size, size_t count, FILE* stream)>
    onFread;
extern std::function<ssize_t(int socket, void* out, size_t size, int flags)>
    onRecv;
extern std::function<int()> onRand;
extern std::function<void(unsigned seed)> onSrand;
/// Of libuuid; `out` takes 16 bytes.
extern std::function<void(unsigned char* out)> onUuidGenerate;

/// The functions behind the hooks.
FILE* RealFopen(const char* path, const char* mode);
int RealFclose(FILE* stream);
int RealVfprintf(FILE* stream, const char* format, va_list arguments);
long RealFtell(FILE* stream);
int RealFseek(FILE* stream, long offset, int where);
int RealStat(const char* path, struct stat* status);
int RealMkdir(const char* path, mode_t mode);
dirent* RealReaddir(DIR* directory);
int RealOpen(const char* path, int flags, mode_t mode);
DIR* RealOpendir(const char* path);
ssize_t RealSendfile(int to, int from, off_t* offset, size_t count);
int RealRemove(const char* path);
ssize_t RealRecv(int socket, void* out, size_t size, int flags);
int RealMkstemp(char* pattern);
ssize_t RealRead(int descriptor, void* out, size_t size);
int RealGetaddrinfo(const char* node, const char* service,
                    const addrinfo* hints, addrinfo** result);

/// Sets a hook while the object lives.
template <class Function>
class Scoped {
 public:
  template <class Replacement>
  Scoped(Function& hook, Replacement replacement)
      : mHook(hook), mPrevious(std::move(hook)) {
    mHook = std::move(replacement);
  }
  ~Scoped() { mHook = std::move(mPrevious); }
  Scoped(const Scoped&) = delete;
  Scoped& operator=(const Scoped&) = delete;

 private:
  Function& mHook;
  Function mPrevious;
};
template <class Function, class Replacement>
Scoped(Function&, Replacement) -> Scoped<Function>;

/// While the object lives, system(3) notes its command and runs nothing.
class RecordedCommands {
 public:
  const std::vector<std::string>& All() const { return mAll; }

 private:
  std::vector<std::string> mAll;
  Scoped<decltype(onSystem)> mHook{onSystem, [this](const char* command) {
                                     mAll.push_back(command);
                                     return 0;
                                   }};
};

/// While the object lives, operator new throws std::bad_alloc for a request
/// once `count` further requests of at least `size` bytes have been granted.
/// After `times` refusals it grants everything again.
class FailingAllocator {
 public:
  explicit FailingAllocator(std::size_t count, std::size_t size = 0,
                            std::size_t times = static_cast<std::size_t>(-1));
  ~FailingAllocator();
  FailingAllocator(const FailingAllocator&) = delete;
  FailingAllocator& operator=(const FailingAllocator&) = delete;

  /// How many requests have been refused so far.
  std::size_t Refused() const;
  /// The size of the last one refused, in bytes.
  std::size_t LastRefused() const;
};

/// While the object lives, operator new[] keeps a record and gives blocks that
/// nothing can damage the heap with: behind each are `slack` bytes, zero at
/// first, that overruns go into, and operator delete[] takes any pointer.  All
/// blocks stay readable until the object goes; nothing allocated before may be
/// released, and nothing allocated meanwhile be used, beyond that.
class WatchedArrays {
 public:
  explicit WatchedArrays(std::size_t slack);
  ~WatchedArrays();
  WatchedArrays(const WatchedArrays&) = delete;
  WatchedArrays& operator=(const WatchedArrays&) = delete;

  struct Block {
    unsigned char* start;
    std::size_t size;  // as requested
  };

  /// In the order of the requests.
  const std::vector<Block>& Blocks() const;
  /// What operator delete[] was given, null excepted.
  const std::vector<void*>& Released() const;
};

}  // namespace hooks

#endif  // KVT_TESTS_HOOKS_H
