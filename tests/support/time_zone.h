/// The process's time zone, set for a while.

#ifndef KVT_TESTS_TIME_ZONE_H
#define KVT_TESTS_TIME_ZONE_H

#include <optional>
#include <string>

/// Zones in the form of tzset(3) that needs no files.
constexpr char kUtc[] = "UTC0";
constexpr char kCentralEurope[] = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr char kNewYork[] = "EST5EDT,M3.2.0,M11.1.0";
constexpr char kNepal[] = "NPT-5:45";

/// Sets TZ, in any form of tzset(3), while the object lives.
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
