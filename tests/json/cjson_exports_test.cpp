// The cJSON functions stand in this library's dynamic symbol table and are
// libcjson's own.

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KVTTime.h"

namespace {

const char* const kNames[] = {
    "cJSON_AddArrayToObject",
    "cJSON_AddBoolToObject",
    "cJSON_AddFalseToObject",
    "cJSON_AddItemReferenceToArray",
    "cJSON_AddItemReferenceToObject",
    "cJSON_AddItemToArray",
    "cJSON_AddItemToObject",
    "cJSON_AddItemToObjectCS",
    "cJSON_AddNullToObject",
    "cJSON_AddNumberToObject",
    "cJSON_AddObjectToObject",
    "cJSON_AddRawToObject",
    "cJSON_AddStringToObject",
    "cJSON_AddTrueToObject",
    "cJSON_Compare",
    "cJSON_CreateArray",
    "cJSON_CreateArrayReference",
    "cJSON_CreateBool",
    "cJSON_CreateDoubleArray",
    "cJSON_CreateFalse",
    "cJSON_CreateFloatArray",
    "cJSON_CreateIntArray",
    "cJSON_CreateNull",
    "cJSON_CreateNumber",
    "cJSON_CreateObject",
    "cJSON_CreateObjectReference",
    "cJSON_CreateRaw",
    "cJSON_CreateString",
    "cJSON_CreateStringArray",
    "cJSON_CreateStringReference",
    "cJSON_CreateTrue",
    "cJSON_Delete",
    "cJSON_DeleteItemFromArray",
    "cJSON_DeleteItemFromObject",
    "cJSON_DeleteItemFromObjectCaseSensitive",
    "cJSON_DetachItemFromArray",
    "cJSON_DetachItemFromObject",
    "cJSON_DetachItemFromObjectCaseSensitive",
    "cJSON_DetachItemViaPointer",
    "cJSON_Duplicate",
    "cJSON_GetArrayItem",
    "cJSON_GetArraySize",
    "cJSON_GetErrorPtr",
    "cJSON_GetObjectItem",
    "cJSON_GetObjectItemCaseSensitive",
    "cJSON_GetStringValue",
    "cJSON_HasObjectItem",
    "cJSON_InitHooks",
    "cJSON_InsertItemInArray",
    "cJSON_IsArray",
    "cJSON_IsBool",
    "cJSON_IsFalse",
    "cJSON_IsInvalid",
    "cJSON_IsNull",
    "cJSON_IsNumber",
    "cJSON_IsObject",
    "cJSON_IsRaw",
    "cJSON_IsString",
    "cJSON_IsTrue",
    "cJSON_Minify",
    "cJSON_Parse",
    "cJSON_ParseWithOpts",
    "cJSON_Print",
    "cJSON_PrintBuffered",
    "cJSON_PrintPreallocated",
    "cJSON_PrintUnformatted",
    "cJSON_ReplaceItemInArray",
    "cJSON_ReplaceItemInObject",
    "cJSON_ReplaceItemInObjectCaseSensitive",
    "cJSON_ReplaceItemViaPointer",
    "cJSON_SetNumberHelper",
    "cJSON_Version",
    "cJSON_free",
    "cJSON_malloc",
};

class CjsonExport : public testing::Test {
 protected:
  // The handle of this library, found through one of its functions.
  static void* Library() {
    Dl_info info = {};
    void* const function = dlsym(RTLD_DEFAULT, "_ZN7KVTTimeC1Ev");
    if (function == nullptr || dladdr(function, &info) == 0) return nullptr;
    return dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD);
  }

  KVTTime mKeepsTheLibraryLinked;
};

TEST_F(CjsonExport, SeventyFourNames) { EXPECT_EQ(std::size(kNames), 74u); }

TEST_F(CjsonExport, EveryNameLeadsIntoLibcjson) {
  void* const library = Library();
  ASSERT_NE(library, nullptr) << dlerror();
  void* const cjson = dlopen("libcjson.so.1", RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(cjson, nullptr) << "not loaded along with the library";
  for (const char* const name : kNames) {
    void* const function = dlsym(library, name);
    ASSERT_NE(function, nullptr) << name;
    EXPECT_EQ(function, dlsym(cjson, name)) << name;
    Dl_info info = {};
    ASSERT_NE(dladdr(function, &info), 0) << name;
    EXPECT_THAT(info.dli_fname, testing::HasSubstr("libcjson.so.1")) << name;
  }
  dlclose(cjson);
  dlclose(library);
}

TEST_F(CjsonExport, VersionIsAtLeast1_7_12) {
  void* const library = Library();
  ASSERT_NE(library, nullptr) << dlerror();
  const auto version =
      reinterpret_cast<const char* (*)()>(dlsym(library, "cJSON_Version"));
  ASSERT_NE(version, nullptr);
  int major = 0, minor = 0, patch = 0;
  ASSERT_EQ(sscanf(version(), "%d.%d.%d", &major, &minor, &patch), 3)
      << version();
  EXPECT_EQ(major, 1);
  EXPECT_GE(minor * 1000 + patch, 7012) << version();
  dlclose(library);
}

}  // namespace
