#include <KVTConfigReader.h>

#include <iostream>
#include <sstream>

int main() {
  std::istringstream text("[server]\nname = fs1\nshare = docs\n");
  KVTConfigReader reader(text);
  for (const KVTConfigSection& section : reader.GetConfiguration()) {
    for (const auto& entry : section.mEntries) {
      std::cout << section.mName << "." << entry.first << "=" << entry.second
                << "\n";
    }
  }
}
