#include <dlfcn.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/sendfile.h>
#include <unistd.h>

#include "hooks.h"

namespace hooks {

decltype(onMount) onMount;
decltype(onUmount2) onUmount2;
decltype(onSleep) onSleep;
decltype(onGetaddrinfo) onGetaddrinfo;
decltype(onInetNtop) onInetNtop;
decltype(onInetNtoa) onInetNtoa;
decltype(onFopen) onFopen;
decltype(onFclose) onFclose;
decltype(onVfprintf) onVfprintf;
decltype(onFtell) onFtell;
decltype(onFseek) onFseek;
decltype(onStat) onStat;
decltype(onMkdir) onMkdir;
decltype(onReaddir) onReaddir;
decltype(onTime) onTime;
decltype(onSystem) onSystem;
decltype(onStrdup) onStrdup;
decltype(onToupper) onToupper;
decltype(onTolower) onTolower;
decltype(onStrftime) onStrftime;
decltype(onIsalnum) onIsalnum;
decltype(onIsxdigit) onIsxdigit;
decltype(onOpen) onOpen;
decltype(onOpendir) onOpendir;
decltype(onSendfile) onSendfile;
decltype(onRemove) onRemove;
decltype(onReadlink) onReadlink;
decltype(onMkstemp) onMkstemp;
decltype(onRead) onRead;
decltype(onFread) onFread;
decltype(onRecv) onRecv;
decltype(onRand) onRand;
decltype(onSrand) onSrand;
decltype(onUuidGenerate) onUuidGenerate;

namespace {

// The next definition of `name` behind this program's own.
template <class Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

FILE* RealFopen(const char* path, const char* mode) {
  static const auto real = Next<decltype(fopen)>("fopen");
  return real(path, mode);
}

int RealFclose(FILE* stream) {
  static const auto real = Next<decltype(fclose)>("fclose");
  return real(stream);
}

int RealVfprintf(FILE* stream, const char* format, va_list arguments) {
  static const auto real = Next<decltype(vfprintf)>("vfprintf");
  return real(stream, format, arguments);
}

long RealFtell(FILE* stream) {
  static const auto real = Next<decltype(ftell)>("ftell");
  return real(stream);
}

int RealFseek(FILE* stream, long offset, int where) {
  static const auto real = Next<decltype(fseek)>("fseek");
  return real(stream, offset, where);
}

int RealStat(const char* path, struct stat* status) {
  static const auto real = Next<int(const char*, struct stat*)>("stat");
  return real(path, status);
}

int RealMkdir(const char* path, mode_t mode) {
  static const auto real = Next<decltype(mkdir)>("mkdir");
  return real(path, mode);
}

dirent* RealReaddir(DIR* directory) {
  static const auto real = Next<decltype(readdir)>("readdir");
  return real(directory);
}

int RealOpen(const char* path, int flags, mode_t mode) {
  static const auto real = Next<int(const char*, int, ...)>("open");
  return real(path, flags, mode);
}

DIR* RealOpendir(const char* path) {
  static const auto real = Next<DIR*(const char*)>("opendir");
  return real(path);
}

ssize_t RealSendfile(int to, int from, off_t* offset, size_t count) {
  static const auto real = Next<ssize_t(int, int, off_t*, size_t)>("sendfile");
  return real(to, from, offset, count);
}

int RealRemove(const char* path) {
  static const auto real = Next<int(const char*)>("remove");
  return real(path);
}

int RealMkstemp(char* pattern) {
  static const auto real = Next<int(char*)>("mkstemp");
  return real(pattern);
}

ssize_t RealRecv(int socket, void* out, size_t size, int flags) {
  static const auto real = Next<ssize_t(int, void*, size_t, int)>("recv");
  return real(socket, out, size, flags);
}

ssize_t RealRead(int descriptor, void* out, size_t size) {
  static const auto real = Next<ssize_t(int, void*, size_t)>("read");
  return real(descriptor, out, size);
}

int RealGetaddrinfo(const char* node, const char* service,
                    const addrinfo* hints, addrinfo** result) {
  static const auto real = Next<decltype(getaddrinfo)>("getaddrinfo");
  return real(node, service, hints, result);
}

}  // namespace hooks

extern "C" {

int mount(const char* source, const char* target, const char* type,
          unsigned long flags, const void* data) noexcept {
  if (hooks::onMount) {
    return hooks::onMount(source, target, type, flags, data);
  }
  return hooks::Next<int(const char*, const char*, const char*, unsigned long,
                         const void*)>("mount")(source, target, type, flags,
                                                data);
}

int umount2(const char* target, int flags) noexcept {
  if (hooks::onUmount2) return hooks::onUmount2(target, flags);
  return hooks::Next<int(const char*, int)>("umount2")(target, flags);
}

unsigned sleep(unsigned seconds) {
  if (hooks::onSleep) return hooks::onSleep(seconds);
  return hooks::Next<unsigned(unsigned)>("sleep")(seconds);
}

int getaddrinfo(const char* node, const char* service, const addrinfo* hints,
                addrinfo** result) {
  if (hooks::onGetaddrinfo) {
    return hooks::onGetaddrinfo(node, service, hints, result);
  }
  return hooks::RealGetaddrinfo(node, service, hints, result);
}

const char* inet_ntop(int family, const void* address, char* out,
                      socklen_t size) noexcept {
  if (hooks::onInetNtop) return hooks::onInetNtop(family, address, out, size);
  return hooks::Next<const char*(int, const void*, char*, socklen_t)>(
      "inet_ntop")(family, address, out, size);
}

char* inet_ntoa(in_addr address) noexcept {
  if (hooks::onInetNtoa) return hooks::onInetNtoa(address);
  return hooks::Next<char*(in_addr)>("inet_ntoa")(address);
}

FILE* fopen(const char* path, const char* mode) {
  if (hooks::onFopen) return hooks::onFopen(path, mode);
  return hooks::RealFopen(path, mode);
}

int fclose(FILE* stream) {
  if (hooks::onFclose) return hooks::onFclose(stream);
  return hooks::RealFclose(stream);
}

int vfprintf(FILE* stream, const char* format, va_list arguments) {
  if (hooks::onVfprintf) return hooks::onVfprintf(stream, format, arguments);
  return hooks::RealVfprintf(stream, format, arguments);
}

long ftell(FILE* stream) {
  if (hooks::onFtell) return hooks::onFtell(stream);
  return hooks::RealFtell(stream);
}

int fseek(FILE* stream, long offset, int where) {
  if (hooks::onFseek) return hooks::onFseek(stream, offset, where);
  return hooks::RealFseek(stream, offset, where);
}

int stat(const char* path, struct stat* status) noexcept {
  if (hooks::onStat) return hooks::onStat(path, status);
  return hooks::RealStat(path, status);
}

int mkdir(const char* path, mode_t mode) noexcept {
  if (hooks::onMkdir) return hooks::onMkdir(path, mode);
  return hooks::RealMkdir(path, mode);
}

dirent* readdir(DIR* directory) {
  if (hooks::onReaddir) return hooks::onReaddir(directory);
  return hooks::RealReaddir(directory);
}

time_t time(time_t* out) noexcept {
  if (hooks::onTime) return hooks::onTime(out);
  return hooks::Next<time_t(time_t*)>("time")(out);
}

int system(const char* command) {
  if (hooks::onSystem) return hooks::onSystem(command);
  return hooks::Next<int(const char*)>("system")(command);
}

char* strdup(const char* text) noexcept {
  if (hooks::onStrdup) return hooks::onStrdup(text);
  return hooks::Next<char*(const char*)>("strdup")(text);
}

int toupper(int character) noexcept {
  if (hooks::onToupper) return hooks::onToupper(character);
  static const auto real = hooks::Next<int(int)>("toupper");
  return real(character);
}

int tolower(int character) noexcept {
  if (hooks::onTolower) return hooks::onTolower(character);
  static const auto real = hooks::Next<int(int)>("tolower");
  return real(character);
}

size_t strftime(char* out, size_t size, const char* format,
                const tm* fields) noexcept {
  if (hooks::onStrftime) return hooks::onStrftime(out, size, format, fields);
  return hooks::Next<size_t(char*, size_t, const char*, const tm*)>("strftime")(
      out, size, format, fields);
}

int isalnum(int character) noexcept {
  if (hooks::onIsalnum) return hooks::onIsalnum(character);
  static const auto real = hooks::Next<int(int)>("isalnum");
  return real(character);
}

int isxdigit(int character) noexcept {
  if (hooks::onIsxdigit) return hooks::onIsxdigit(character);
  static const auto real = hooks::Next<int(int)>("isxdigit");
  return real(character);
}

int open(const char* path, int flags, ...) {
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE) {
    va_list arguments;
    va_start(arguments, flags);
    mode = va_arg(arguments, mode_t);
    va_end(arguments);
  }
  if (hooks::onOpen) return hooks::onOpen(path, flags, mode);
  return hooks::RealOpen(path, flags, mode);
}

DIR* opendir(const char* path) {
  if (hooks::onOpendir) return hooks::onOpendir(path);
  return hooks::RealOpendir(path);
}

ssize_t sendfile(int to, int from, off_t* offset, size_t count) noexcept {
  if (hooks::onSendfile) return hooks::onSendfile(to, from, offset, count);
  return hooks::RealSendfile(to, from, offset, count);
}

int remove(const char* path) noexcept {
  if (hooks::onRemove) return hooks::onRemove(path);
  return hooks::RealRemove(path);
}

ssize_t readlink(const char* path, char* out, size_t size) noexcept {
  if (hooks::onReadlink) return hooks::onReadlink(path, out, size);
  return hooks::Next<ssize_t(const char*, char*, size_t)>("readlink")(path, out,
                                                                      size);
}

int mkstemp(char* pattern) {
  if (hooks::onMkstemp) return hooks::onMkstemp(pattern);
  return hooks::RealMkstemp(pattern);
}

ssize_t read(int descriptor, void* out, size_t size) {
  if (hooks::onRead) return hooks::onRead(descriptor, out, size);
  return hooks::RealRead(descriptor, out, size);
}

size_t fread(void* out, size_t size, size_t count, FILE* stream) {
  if (hooks::onFread) return hooks::onFread(out, size, count, stream);
  static const auto real =
      hooks::Next<size_t(void*, size_t, size_t, FILE*)>("fread");
  return real(out, size, count, stream);
}

ssize_t recv(int socket, void* out, size_t size, int flags) {
  if (hooks::onRecv) return hooks::onRecv(socket, out, size, flags);
  return hooks::RealRecv(socket, out, size, flags);
}

int rand() noexcept {
  if (hooks::onRand) return hooks::onRand();
  return hooks::Next<int()>("rand")();
}

void srand(unsigned seed) noexcept {
  if (hooks::onSrand) return hooks::onSrand(seed);
  hooks::Next<void(unsigned)>("srand")(seed);
}

void uuid_generate(unsigned char* out) {
  if (hooks::onUuidGenerate) return hooks::onUuidGenerate(out);
  static const auto real = hooks::Next<void(unsigned char*)>("uuid_generate");
  real(out);
}

}  // extern "C"
