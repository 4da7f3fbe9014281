/// One download into a file of the test's own.

#ifndef KVT_TESTS_NET_DOWNLOAD_H
#define KVT_TESTS_NET_DOWNLOAD_H

#include <gtest/gtest.h>

#include <string>

#include "KVTFileUtil.h"
#include "temporary_directory.h"
#include "test_strings.h"

constexpr proxy kNoProxy = {0, nullptr, nullptr};

/// The target does not exist at first.
class Download : public testing::Test {
 protected:
  int Get(const std::string& url) {
    return KVTFileUtil::GetFile(FromUtf8(url), mTarget, kNoProxy);
  }

  const TemporaryDirectory mDirectory;
  const KVTFile mTarget = mDirectory.File("target");
  const std::string mTargetPath = mDirectory.Path("target");
};

#endif  // KVT_TESTS_NET_DOWNLOAD_H
