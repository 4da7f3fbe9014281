#include <ctime>
#include <sstream>

#include "KVTTime.h"

namespace {

// False when the time is not set, or so far away that localtime(3) refuses it.
bool BreakDown(unsigned long long seconds, std::tm& fields) {
  if (seconds == 0) return false;
  const std::time_t time = static_cast<std::time_t>(seconds);
  const std::tm* const local = std::localtime(&time);
  if (local == nullptr) return false;
  fields = *local;
  return true;
}

bool InRange(int value, int lowest, int highest) {
  return value >= lowest && value <= highest;
}

void Store(int* target, int value) {
  if (target != nullptr) *target = value;
}

// Empty when the text has 100 bytes or more.
KVTString Format(const char* format, const std::tm& fields) {
  char buffer[100];
  if (std::strftime(buffer, sizeof buffer, format, &fields) == 0) {
    return KVTString();
  }
  return KVTString(buffer, KVTString::KVTCharEncodingUTF8);
}

KVTString FormatShortDate(const std::tm& fields) {
  KVTString text;
  text.AppendNumber(fields.tm_mon + 1);
  text += "/";
  text.AppendNumber(fields.tm_mday);
  text += "/";
  text.AppendNumber(fields.tm_year + 1900);
  return text;
}

}  // namespace

KVTTime::KVTTime() : mTime(0) {}

KVTTime::KVTTime(unsigned long long seconds) : mTime(seconds) {}

KVTTime::KVTTime(const KVTTime& other) = default;

KVTTime& KVTTime::operator=(const KVTTime& other) = default;

KVTTime::~KVTTime() = default;

bool KVTTime::operator==(const KVTTime& other) const {
  return mTime == other.mTime;
}

bool KVTTime::operator!=(const KVTTime& other) const {
  return mTime != other.mTime;
}

bool KVTTime::operator<(const KVTTime& other) const {
  return mTime < other.mTime;
}

bool KVTTime::operator>(const KVTTime& other) const {
  return mTime > other.mTime;
}

bool KVTTime::Equals(const KVTTime& other) const { return *this == other; }

unsigned long long KVTTime::CurrentTime() {
  return static_cast<unsigned long long>(std::time(nullptr));
}

void KVTTime::SetTime(unsigned long long seconds) { mTime = seconds; }

unsigned long long KVTTime::GetTime() const { return mTime; }

bool KVTTime::SetTime(int year, int month, int day, int hour, int minute,
                      int second) {
  // Per field only: a day that the month does not have rolls over in mktime.
  if (year <= 1600 || !InRange(month, 1, 12) || !InRange(day, 1, 31) ||
      !InRange(hour, 0, 23) || !InRange(minute, 0, 59) ||
      !InRange(second, 0, 59)) {
    return false;
  }
  std::ostringstream text;
  text << year << "-" << month << "-" << day << " " << hour << ":" << minute
       << ":" << second;

  std::tm fields = {};
  // strptime leaves this alone; -1 has mktime find out about summer time.
  fields.tm_isdst = -1;
  strptime(text.str().c_str(), "%Y-%m-%d %H:%M:%S", &fields);
  mTime = static_cast<unsigned long long>(std::mktime(&fields));
  return true;
}

bool KVTTime::GetTime(int* year, int* month, int* day, int* hour, int* minute,
                      int* second, int* weekday) const {
  std::tm fields;
  if (!BreakDown(mTime, fields)) return false;
  Store(year, fields.tm_year + 1900);
  Store(month, fields.tm_mon + 1);
  Store(day, fields.tm_mday);
  Store(hour, fields.tm_hour);
  Store(minute, fields.tm_min);
  Store(second, fields.tm_sec);
  Store(weekday, fields.tm_wday + 1);
  return true;
}

bool KVTTime::IsValid() const { return mTime != 0; }

bool KVTTime::DateToString(KVTString& out, bool shortForm) const {
  out.clear();
  std::tm fields;
  if (!BreakDown(mTime, fields)) return false;
  // Callers rely on %G, the year of the ISO 8601 week.
  out = shortForm ? FormatShortDate(fields) : Format("%A, %B %d, %G", fields);
  return true;
}

bool KVTTime::TimeToString(KVTString& out) const {
  out.clear();
  std::tm fields;
  if (!BreakDown(mTime, fields)) return false;
  out = Format("%I:%M%p", fields);
  return true;
}
