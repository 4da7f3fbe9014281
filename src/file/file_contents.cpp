#include <fstream>
#include <memory>

#include "KVTFileUtil.h"

KVTString KVTFileUtil::GetFileContents(KVTString path) {
  try {
    std::ifstream in(path.GetUTF8String(), std::ios::in | std::ios::ate);
    const std::streamoff size = in.tellg();
    // -1 for a file that did not open.
    if (size < 0) return KVTString();
    in.seekg(0);
    in.clear();
    const std::unique_ptr<char[]> text(
        new char[static_cast<std::size_t>(size) + 1]);
    in.read(text.get(), size);
    // A file that shrank meanwhile gives fewer bytes than its size.
    text[static_cast<std::size_t>(in.gcount())] = '\0';
    // Callers rely on the text ending at the file's first zero byte.
    return KVTString(text.get(), KVTString::KVTCharEncodingUTF8);
  } catch (...) {
    return KVTString();
  }
}
