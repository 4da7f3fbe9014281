#include "KVTLogger.h"

KVTLoggingOptions::KVTLoggingOptions()
    : mSupportedLevels(1), mLevelsToShow(3) {}

KVTLoggingOptions::~KVTLoggingOptions() = default;

KVTString KVTLoggingOptions::GetApplicationName() const {
  return mApplicationName;
}

bool KVTLoggingOptions::SetApplicationName(const KVTString& name) {
  mApplicationName = name;
  return true;
}

int KVTLoggingOptions::NumberOfSupportedLevels() const {
  return mSupportedLevels;
}

bool KVTLoggingOptions::SetNumberOfSupportedLevels(int levels) {
  mSupportedLevels = levels;
  return true;
}

KVTFile KVTLoggingOptions::GetUserLogFile() const { return mUserLogFile; }

bool KVTLoggingOptions::SetUserLogFile(const KVTFile& file) {
  mUserLogFile = file;
  return true;
}

KVTFile KVTLoggingOptions::GetInternalLogFile() const {
  return mInternalLogFile;
}

bool KVTLoggingOptions::SetInternalLogFile(const KVTFile& file) {
  mInternalLogFile = file;
  return true;
}

int KVTLoggingOptions::NumberOfLevelsToShowInUserLog() const {
  return mLevelsToShow;
}

bool KVTLoggingOptions::SetNumberOfLevelsToShowInUserLog(int levels) {
  mLevelsToShow = levels;
  return true;
}
