#include "time_zone.h"

#include <cstdlib>
#include <ctime>

TimeZone::TimeZone(const std::string& zone) {
  if (const char* const previous = std::getenv("TZ")) mPrevious = previous;
  setenv("TZ", zone.c_str(), 1);
  tzset();
}

TimeZone::~TimeZone() {
  if (mPrevious) {
    setenv("TZ", mPrevious->c_str(), 1);
  } else {
    unsetenv("TZ");
  }
  tzset();
}
