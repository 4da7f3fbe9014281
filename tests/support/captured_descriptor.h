/// What the process writes to standard output or standard error.

#ifndef KVT_TESTS_CAPTURED_DESCRIPTOR_H
#define KVT_TESTS_CAPTURED_DESCRIPTOR_H

#include <string>

/// Sends descriptor 1 or 2 to a file while the object lives, so that all that
/// is written there is caught, whichever way it comes.
class CapturedDescriptor {
 public:
  /// Throws when the descriptor cannot be redirected.
  explicit CapturedDescriptor(int descriptor);
  ~CapturedDescriptor();
  CapturedDescriptor(const CapturedDescriptor&) = delete;
  CapturedDescriptor& operator=(const CapturedDescriptor&) = delete;

  /// All that has come so far; what stdout or stderr still holds is flushed
  /// first.
  std::string Text();

  /// All that has reached the descriptor so far.
  std::string Written() const;

 private:
  int mDescriptor;
  int mPrevious;
  int mFile;
};

#endif  // KVT_TESTS_CAPTURED_DESCRIPTOR_H
