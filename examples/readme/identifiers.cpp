#include <KVTFileUtil.h>
#include <KVTGUID.h>

#include <iostream>

int main() {
  const KVTString text = KVTFileUtil::GetUUID("");
  const KVTGUID guid = KVTString::GetGUID(text);
  std::cout << text << " is " << (KVTFileUtil::isGUIDValid(text) ? "" : "not ")
            << "valid, its first group is " << std::hex << guid.mData1 << "\n";
}
