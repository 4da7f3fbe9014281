#include <KVTTransferBytes.h>

#include <iostream>

int main() {
  KVTMemoryTransferBytes bytes(nullptr, 64);
  char first[] = "abc";
  char second[] = "def";
  bytes.Write(first, 3);
  bytes.Write(second, 3);
  char text[65] = "";
  bytes.Read(text, 64);
  std::cout << text << " at " << bytes.Tell() << "\n";
}
