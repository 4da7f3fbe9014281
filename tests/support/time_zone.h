/// The process's time zone, set for a while.

#ifndef KVT_TESTS_TIME_ZONE_H
#define KVT_TESTS_TIME_ZONE_H

#include <optional>
#include <string>

/// Sets TZ (in the form of tzset(3), such as "CET-1CEST,M3.5.0,M10.5.0/3",
/// which needs no files) while the object lives.
class TimeZone {
 public:
  explicit TimeZone(const std::string& zone);
  ~TimeZone();
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  std::optional<std::string> mPrevious;
};

#endif  // KVT_TESTS_TIME_ZONE_H
