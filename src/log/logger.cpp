#include "KVTLogger.h"

#include <cstdarg>
#include <cstring>
#include <string>

#include "KVTTime.h"

FILE* KVTLogger::mInternalLogFile = nullptr;
FILE* KVTLogger::mUserLogFile = nullptr;
KVTLoggingOptions KVTLogger::mOptions;

namespace {

constexpr const char* kLevelNames[] = {"NONE", "FATAL", "ERROR", "WARN",
                                       "INFO", "TRACE", "DEBUG"};
constexpr int kTraceLevel = 5;

// What stands before the caller's text, as UTF-8.
struct LineHeader {
  std::string applicationName;
  const char* level;
  std::string date;
  std::string time;
  std::string function;
  std::string file;
  long long line;
};

// Each call of stdio holds the stream's lock by itself: lines of two threads
// can come mixed between the calls.
void PrintLine(FILE* stream, const LineHeader& header, const char* format,
               va_list arguments) {
  std::fprintf(stream, "%s %5s : %s %s %20s() %20s:%lld ",
               header.applicationName.c_str(), header.level,
               header.date.c_str(), header.time.c_str(),
               header.function.c_str(), header.file.c_str(), header.line);
  std::vfprintf(stream, format, arguments);
  // Callers rely on the format alone being looked at, not the text it makes,
  // and keep it from being empty: its last byte is read unasked.
  const char* const end = format + std::strlen(format);
  if (end[-1] != '\n') std::fputc('\n', stream);
}

bool PassesToUserLog(int level, int shown) {
  if (level > shown || shown == 0) return false;
  // Callers rely on 5 showing trace lines alone, and any other number none.
  return (shown == kTraceLevel) == (level == kTraceLevel);
}

// Null, with the message on standard error, when the file cannot be opened.
FILE* OpenLog(const KVTFile& file) {
  const char* const mode = file.Exists() ? "a+" : "w";
  const std::string path = file.GetPath().GetUTF8String();
  FILE* const stream = std::fopen(path.c_str(), mode);
  if (stream == nullptr) {
    // Callers rely on the internal log being called the user log here as well.
    std::fprintf(stderr, "Error in %s opening user log file: %s\n",
                 "Initialize", path.c_str());
  }
  return stream;
}

}  // namespace

bool KVTLogger::Initialize(const KVTLoggingOptions& options) {
  // Streams of an earlier call are the caller's to close.
  mInternalLogFile = OpenLog(options.GetInternalLogFile());
  if (mInternalLogFile == nullptr) return false;
  if (options.NumberOfLevelsToShowInUserLog() != 0) {
    mUserLogFile = OpenLog(options.GetUserLogFile());
    if (mUserLogFile == nullptr) return false;
  }
  mOptions.SetApplicationName(options.GetApplicationName());
  mOptions.SetNumberOfSupportedLevels(options.NumberOfSupportedLevels());
  mOptions.SetNumberOfLevelsToShowInUserLog(
      options.NumberOfLevelsToShowInUserLog());
  mOptions.SetUserLogFile(options.GetUserLogFile());
  mOptions.SetInternalLogFile(options.GetInternalLogFile());
  return true;
}

void KVTLogger::Log(const KVTString& function, const KVTString& file,
                    long long line, int level, const char* format, ...) {
  LineHeader header;
  header.applicationName = mOptions.GetApplicationName().GetUTF8String();
  const KVTTime now(KVTTime::CurrentTime());
  KVTString text;
  now.DateToString(text, false);
  header.date = text.GetUTF8String();
  now.TimeToString(text);
  header.time = text.GetUTF8String();
  // Callers keep the level within the table.
  header.level = kLevelNames[level];
  header.function = function.GetUTF8String();
  header.file = file.GetUTF8String();
  header.line = line;

  va_list arguments;
  va_start(arguments, format);
  PrintLine(mInternalLogFile, header, format, arguments);
  va_end(arguments);

  if (!PassesToUserLog(level, mOptions.NumberOfLevelsToShowInUserLog())) return;
  // Callers rely on the switch being for good and on the stream that stood here
  // staying open.
  if (mUserLogFile == nullptr || level == kTraceLevel) mUserLogFile = stderr;

  va_start(arguments, format);
  PrintLine(mUserLogFile, header, format, arguments);
  va_end(arguments);
}

bool KVTLogger::Terminate() {
  if (mUserLogFile != nullptr && mUserLogFile != stderr) {
    std::fclose(mUserLogFile);
  }
  if (mInternalLogFile != nullptr) std::fclose(mInternalLogFile);
  // Callers find the closed streams still standing in the members.
  return true;
}
