/// @file
/// The process-wide logger with its internal log and user log.
///
/// Fill a KVTLoggingOptions, call KVTLogger::Initialize once, log with
/// KVTLogger::Log, end with KVTLogger::Terminate.  Every line goes to the
/// internal log; a selected part of them also goes to the user log.  The
/// library itself logs nothing: failures of its operations come back as results
/// and texts, and callers decide what to log.
///
/// Levels are plain numbers:
///
///     0 NONE   1 FATAL   2 ERROR   3 WARN   4 INFO   5 TRACE   6 DEBUG
///
/// Nothing here takes a lock.

#ifndef KVTLOGGER_H
#define KVTLOGGER_H

#include <cstdio>

#include "KVTExport.h"
#include "KVTFile.h"
#include "KVTString.h"

/// What KVTLogger::Initialize is to set up.  A value; the setters store what
/// they are given unchecked, and all return true.
class KVT_EXPORT KVTLoggingOptions {
 public:
  /// Sets an empty application name, 1 supported level, 3 levels to show and
  /// two empty paths.
  KVTLoggingOptions();

  /// Leaves the logs alone.
  ~KVTLoggingOptions();

  /// The first field of every log line.
  KVTString GetApplicationName() const;
  /// Stores the name.  Always returns true.
  bool SetApplicationName(const KVTString& name);

  /// A number that callers may keep here; the logger copies it and never looks
  /// at it.  The internal log takes every line whatever it is.
  int NumberOfSupportedLevels() const;
  /// Stores the number unchecked.  Always returns true.
  bool SetNumberOfSupportedLevels(int levels);

  /// Where the user log is opened.
  KVTFile GetUserLogFile() const;
  /// Stores the file.  Always returns true.
  bool SetUserLogFile(const KVTFile& file);

  /// Where the internal log is opened.
  KVTFile GetInternalLogFile() const;
  /// Stores the file.  Always returns true.
  bool SetInternalLogFile(const KVTFile& file);

  /// Which lines the user log takes besides the internal log:
  ///
  /// | Number    | Levels                                | Where           |
  /// |-----------|---------------------------------------|-----------------|
  /// | 0         | none; the user log isn't opened       |                 |
  /// | 1 to 4    | 0 up to the number                    | user log file   |
  /// | 5         | 5 alone                               | standard error  |
  /// | above 5   | 0 up to the number, without 5         | user log file   |
  /// | below 0   | none of the levels that have a name   | user log file   |
  ///
  /// Callers rely on 5 being a trace mode for the console, and on level 0
  /// passing like any other.
  int NumberOfLevelsToShowInUserLog() const;
  /// Stores the number unchecked.  Always returns true.
  bool SetNumberOfLevelsToShowInUserLog(int levels);

 private:
  KVTString mApplicationName;
  int mSupportedLevels;
  int mLevelsToShow;
  KVTFile mUserLogFile;
  KVTFile mInternalLogFile;
};

/// The logger: static members only.
///
/// Each line is made by two or three calls of stdio, each of which holds the
/// stream's own lock, so the parts of lines that two threads log at once can
/// come mixed.  Nothing else is guarded: the date and time go through the one
/// static area of localtime(3), and mUserLogFile is assigned plainly.  Callers
/// that cannot have that keep their calls of Log apart.  Initialize and
/// Terminate must not run beside Log.
class KVT_EXPORT KVTLogger {
 public:
  /// Opens the logs and stores the options; returns true on success.
  ///
  /// A log file that exists is opened with fopen(3) mode "a+" and keeps its
  /// content; one that does not with "w".  The user log is left alone when the
  /// number of levels to show is 0.
  ///
  /// When fopen fails, "Error in Initialize opening user log file: " and the
  /// path go to standard error, for either log in the same words, mOptions
  /// stays as it was, and the result is false.  The stream in question is then
  /// null; when it is the user log, the internal log stays open.
  ///
  /// May be called again: streams that stand in the members are overwritten,
  /// not closed.
  static bool Initialize(const KVTLoggingOptions& options);

  /// Writes one line to the internal log and, where the options let it pass, to
  /// the user log: "%s %5s : %s %s %20s() %20s:%lld " with the application
  /// name, the level's name, the date of KVTTime::DateToString in its long
  /// form, the time of KVTTime::TimeToString, `function`, `file` and `line`,
  /// and then the caller's text.  Longer names widen their column.
  ///
  /// `function` is the caller's name without parentheses, `line` a line number
  /// in `file`.  `level` must be 0 to 6 and is not checked.  `format`, which
  /// must not be empty, and what follows it are as for printf(3); a line feed
  /// is added unless `format` itself ends in one, so one that ends a `%s`
  /// argument is doubled.
  ///
  /// Needs an internal log: call Initialize first, and do not call Log after
  /// Terminate.  Nothing is flushed: a line reaches the file when the buffer is
  /// full, at Terminate or at exit, and write errors go unnoticed.
  ///
  /// A line that passes and has level 5, or finds no user log open, makes
  /// standard error the user log.  Callers rely on that being for good: the
  /// stream that stood there is forgotten without being closed.
  ///
  /// Throws std::bad_alloc when memory runs out.
  static void Log(const KVTString& function, const KVTString& file,
                  long long line, int level, const char* format, ...)
      __attribute__((format(printf, 5, 6)));

  /// Closes both logs where they are open, standard error excepted; always
  /// returns true.  Callers call it once: the members keep the closed streams,
  /// and a second call would close them again.
  static bool Terminate();

  /// The internal log; null until Initialize has opened it.
  static FILE* mInternalLogFile;

  /// The user log, or standard error; null until there is one.
  static FILE* mUserLogFile;

  /// The options in force: the defaults until Initialize has succeeded.
  static KVTLoggingOptions mOptions;
};

#endif  // KVTLOGGER_H
