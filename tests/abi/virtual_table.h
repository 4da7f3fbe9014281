/// Tables of virtual operations, read as the compiler of a calling program
/// reads them (Itanium C++ ABI, section 2.5).

#ifndef KVT_TESTS_VIRTUAL_TABLE_H
#define KVT_TESTS_VIRTUAL_TABLE_H

#include <dlfcn.h>

#include <string>

/// The table that `object` points to: slot 0 and 1 are the destructors of the
/// complete object and of one made with new.
inline void** TableOf(void* object) { return *static_cast<void***>(object); }

/// The table that the library defines for the class with this mangled name
/// (length and name); null when it is not exported.
inline void** LibraryTable(const std::string& mangledClass) {
  const std::string symbol = "_ZTV" + mangledClass;
  void** const table = static_cast<void**>(dlsym(RTLD_DEFAULT, symbol.c_str()));
  // In front stand the offset to the top and the type information.
  return table == nullptr ? nullptr : table + 2;
}

/// Calls slot `slot` of the object's table with `arguments`.
template <class Result, class... Arguments>
Result CallSlot(void* object, int slot, Arguments... arguments) {
  using Function = Result (*)(void*, Arguments...);
  return reinterpret_cast<Function>(TableOf(object)[slot])(object,
                                                           arguments...);
}

#endif  // KVT_TESTS_VIRTUAL_TABLE_H
