/// What both programs do with the functions they got hold of.

#ifndef KVT_TESTS_JSON_ROUND_TRIP_H
#define KVT_TESTS_JSON_ROUND_TRIP_H

#include <cjson/cJSON.h>
#include <stdio.h>
#include <string.h>

struct JsonFunctions {
  decltype(&cJSON_Parse) parse;
  decltype(&cJSON_GetObjectItem) getObjectItem;
  decltype(&cJSON_AddNumberToObject) addNumberToObject;
  decltype(&cJSON_PrintUnformatted) printUnformatted;
  decltype(&cJSON_free) release;
  decltype(&cJSON_Delete) remove;
};

/// Parses a text, reads a field, adds one, prints the whole; returns the exit
/// status of the program, 0 when everything came out as it should.
inline int RunJsonRoundTrip(const JsonFunctions& json) {
  cJSON* const root =
      json.parse("{\"share\": \"docs\", \"files\": [1, 2.5, null]}");
  if (root == nullptr) {
    fputs("cJSON_Parse gave nothing\n", stderr);
    return 1;
  }
  cJSON* const share = json.getObjectItem(root, "share");
  const bool read = share != nullptr && strcmp(share->valuestring, "docs") == 0;
  json.addNumberToObject(root, "count", 3);
  char* const text = json.printUnformatted(root);
  const char* const expected =
      "{\"share\":\"docs\",\"files\":[1,2.5,null],\"count\":3}";
  const bool printed = text != nullptr && strcmp(text, expected) == 0;
  if (!read) fputs("the field \"share\" is not \"docs\"\n", stderr);
  if (!printed) fprintf(stderr, "printed: %s\n", text ? text : "(null)");
  json.release(text);
  json.remove(root);
  return read && printed ? 0 : 1;
}

#endif  // KVT_TESTS_JSON_ROUND_TRIP_H
