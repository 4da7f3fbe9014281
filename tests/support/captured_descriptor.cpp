#include "captured_descriptor.h"

#include <stdio.h>
#include <sys/mman.h>
#include <unistd.h>

#include <stdexcept>

namespace {

void Flush(int descriptor) { fflush(descriptor == 1 ? stdout : stderr); }

}  // namespace

CapturedDescriptor::CapturedDescriptor(int descriptor)
    : mDescriptor(descriptor) {
  Flush(descriptor);
  mPrevious = dup(descriptor);
  mFile = memfd_create("captured", MFD_CLOEXEC);
  if (mPrevious < 0 || mFile < 0 || dup2(mFile, descriptor) < 0) {
    throw std::runtime_error("cannot capture a descriptor");
  }
}

CapturedDescriptor::~CapturedDescriptor() {
  Flush(mDescriptor);
  dup2(mPrevious, mDescriptor);
  close(mPrevious);
  close(mFile);
}

std::string CapturedDescriptor::Text() {
  Flush(mDescriptor);
  return Written();
}

std::string CapturedDescriptor::Written() const {
  std::string text;
  char buffer[4096];
  ssize_t count;
  while ((count = pread(mFile, buffer, sizeof buffer,
                        static_cast<off_t>(text.size()))) > 0) {
    text.append(buffer, static_cast<size_t>(count));
  }
  return text;
}
