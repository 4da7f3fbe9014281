#include <KVTLogger.h>

int main() {
  KVTLoggingOptions options;
  options.SetApplicationName("example");
  options.SetInternalLogFile(KVTFile("example-internal.log"));
  options.SetUserLogFile(KVTFile("example.log"));
  options.SetNumberOfLevelsToShowInUserLog(4);  // up to INFO
  if (!KVTLogger::Initialize(options)) return 1;
  KVTLogger::Log(__func__, __FILE__, __LINE__, 4, "%d files sent", 3);
  KVTLogger::Terminate();
}
