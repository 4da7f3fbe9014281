#include <cjson/cJSON.h>

#include <cstdio>

int main() {
  cJSON* const job = cJSON_Parse("{\"files\": [\"a.txt\", \"b.txt\"]}");
  cJSON* const files = cJSON_GetObjectItem(job, "files");
  std::printf("%d %s\n", cJSON_GetArraySize(files),
              cJSON_GetArrayItem(files, 1)->valuestring);
  cJSON_Delete(job);
}
