#include <KVTString.h>
#include <KVTTime.h>

#include <iostream>

int main() {
  const KVTString line("größe=12 MB");
  const auto parts = KVTString::SplitStringOnce(line, '=');
  std::cout << parts[0] << " has " << parts[0].size() << " units, "
            << parts[0].GetUTF8String().size() << " bytes, value "
            << parts[1].GetIntValue(std::dec) << "\n";
  KVTString date;
  KVTTime(KVTTime::CurrentTime()).DateToString(date, false);
  std::cout << date << "\n";
}
