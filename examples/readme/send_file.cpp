#include <KVTShareFile.h>

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  KVTAuthentication login("backup", std::getenv("SHARE_PASSWORD"));
  KVTString error;
  const int result = KVTShareFile::Instance()->SendFile(argv[1], nullptr,
                                                        argv[2], &login, error);
  if (result != KVTErrorCodeSuccess) {
    std::cerr << "result " << result << ": " << error << "\n";
  }
  return result;
}
