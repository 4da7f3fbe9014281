/// The rights of files, as they hold for those who are not root.

#ifndef KVT_TESTS_FILE_CAPABILITIES_H
#define KVT_TESTS_FILE_CAPABILITIES_H

/// While the object lives, this thread cannot pass over the rights of files and
/// directories, root or not.  Throws when the kernel refuses.
class WithoutFileCapabilities {
 public:
  WithoutFileCapabilities();
  ~WithoutFileCapabilities();
  WithoutFileCapabilities(const WithoutFileCapabilities&) = delete;
  WithoutFileCapabilities& operator=(const WithoutFileCapabilities&) = delete;

 private:
  unsigned mPrevious;
};

#endif  // KVT_TESTS_FILE_CAPABILITIES_H
