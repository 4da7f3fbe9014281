// Uses cJSON through dlopen(3) and dlsym(3) on the library named as argument.

#include <dlfcn.h>

#include "json_round_trip.h"

namespace {

template <class Function>
void Find(void* library, const char* name, Function*& function) {
  function = reinterpret_cast<Function*>(dlsym(library, name));
}

}  // namespace

int main(int argc, char** argv) {
  void* const library =
      argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
  if (library == nullptr) {
    const char* const reason = dlerror();
    fprintf(stderr, "%s\n", reason ? reason : "usage: kvt_json_loaded LIBRARY");
    return 2;
  }
  JsonFunctions json = {};
  Find(library, "cJSON_Parse", json.parse);
  Find(library, "cJSON_GetObjectItem", json.getObjectItem);
  Find(library, "cJSON_AddNumberToObject", json.addNumberToObject);
  Find(library, "cJSON_PrintUnformatted", json.printUnformatted);
  Find(library, "cJSON_free", json.release);
  Find(library, "cJSON_Delete", json.remove);
  if (!json.parse || !json.getObjectItem || !json.addNumberToObject ||
      !json.printUnformatted || !json.release || !json.remove) {
    fprintf(stderr, "%s\n", dlerror());
    return 2;
  }
  const int result = RunJsonRoundTrip(json);
  dlclose(library);
  return result;
}
