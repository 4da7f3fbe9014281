/// @file
/// A point in time: whole seconds, with calendar fields in local time.
///
/// Objects are values without a lock.  The conversions go through the one
/// static area of localtime(3), so two threads that convert at once can disturb
/// each other.

#ifndef KVTTIME_H
#define KVTTIME_H

#include "KVTExport.h"
#include "KVTString.h"

/// Seconds since 1970-01-01 00:00:00 UTC, as time(2) counts them; 0 means not
/// set.
class KVT_EXPORT KVTTime {
 public:
  /// Makes a time that is not set.
  KVTTime();

  /// Takes `seconds` since 1970-01-01 00:00:00 UTC.
  KVTTime(unsigned long long seconds);

  /// Copies the seconds.
  KVTTime(KVTTime const& other);
  /// Assigns the seconds.
  KVTTime& operator=(KVTTime const& other);

  /// Does nothing.
  virtual ~KVTTime();

  /// @name Comparison of the seconds as unsigned numbers
  /// A date before 1970 is held as a very large number and so comes after every
  /// later date.
  /// @{

  /// Tells whether both are equal.
  bool operator==(KVTTime const& other) const;
  /// Tells whether they differ.
  bool operator!=(KVTTime const& other) const;
  /// Tells whether this time comes before `other`.
  bool operator<(KVTTime const& other) const;
  /// Tells whether this time comes after `other`.
  bool operator>(KVTTime const& other) const;
  /// The same as operator==.
  bool Equals(KVTTime const& other) const;
  /// @}

  /// Returns the seconds of time(2) now.
  static unsigned long long CurrentTime();

  /// Takes `seconds` since 1970-01-01 00:00:00 UTC; 0 means not set.
  void SetTime(unsigned long long seconds);

  /// Returns the seconds since 1970-01-01 00:00:00 UTC.
  unsigned long long GetTime() const;

  /// Takes calendar fields in local time, through strptime(3) and mktime(3).
  ///
  /// Returns false, with the time unchanged, unless `year` is above 1600,
  /// `month` 1 to 12, `day` 1 to 31, `hour` 0 to 23, `minute` and `second` 0 to
  /// 59.  A day that the month does not have rolls over into the next month
  /// (31 February becomes 3 March).  What strptime(3) or mktime(3) cannot make
  /// sense of is not noticed: mktime's -1 is stored as the all-ones number.
  bool SetTime(int year, int month, int day, int hour, int minute, int second);

  /// Gives the calendar fields in local time: the full year, `month` 1 to 12,
  /// `day` 1 to 31, `hour` 0 to 23, `minute`, `second`, `weekday` 1 (Sunday) to
  /// 7.  Each pointer may be null.  Returns false and writes nothing when the
  /// time is not set or localtime(3) has no calendar date for it.
  bool GetTime(int* year, int* month, int* day, int* hour, int* minute,
               int* second, int* weekday) const;

  /// Tells whether the time is set.
  bool IsValid() const;

  /// Gives the date in local time: "3/7/2026" (month, day, year) when
  /// `shortForm` is true, otherwise strftime(3)'s "%A, %B %d, %G".  Callers
  /// rely on %G, the ISO 8601 week-based year, which around New Year is the
  /// neighbouring year.  Returns false, with `out` empty, when the time is not
  /// set or localtime(3) has no calendar date for it.
  bool DateToString(KVTString& out, bool shortForm) const;

  /// Gives the time of day in local time as strftime(3)'s "%I:%M%p", such as
  /// "01:05PM".  Returns false, with `out` empty, when the time is not set or
  /// localtime(3) has no calendar date for it.
  bool TimeToString(KVTString& out) const;

  /// Seconds since 1970-01-01 00:00:00 UTC; 0 means not set.
  unsigned long long mTime;
};

#endif  // KVTTIME_H
