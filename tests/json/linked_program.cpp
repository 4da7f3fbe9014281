// Uses cJSON with -lkvtbase alone on its link line.

#include "json_round_trip.h"

int main() {
  return RunJsonRoundTrip({cJSON_Parse, cJSON_GetObjectItem,
                           cJSON_AddNumberToObject, cJSON_PrintUnformatted,
                           cJSON_free, cJSON_Delete});
}
