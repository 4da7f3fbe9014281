#include <KVTFileUtil.h>

#include <iostream>

int main(int argc, char** argv) {
  std::cout << KVTFileUtil::MaskIP("192.168.1.2") << " has type "
            << KVTFileUtil::GetAddressType("192.168.1.2") << "\n";
  if (argc < 3) return 0;
  const proxy none = {0, nullptr, nullptr};
  return KVTFileUtil::GetFile(argv[1], KVTFile(argv[2]), none);
}
