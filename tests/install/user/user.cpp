// A program of a user's: every public header in the form that README.md tells,
// and a call into each part of the library.

#include <KVTAuthentication.h>
#include <KVTCommandUtil.h>
#include <KVTConfigReader.h>
#include <KVTErrorCode.h>
#include <KVTExport.h>
#include <KVTFile.h>
#include <KVTFileUtil.h>
#include <KVTGUID.h>
#include <KVTLock.h>
#include <KVTLogger.h>
#include <KVTShareFile.h>
#include <KVTStream.h>
#include <KVTString.h>
#include <KVTTime.h>
#include <KVTTransferBytes.h>

#include <iostream>
#include <sstream>

int main() {
  std::istringstream text("[share]\nhost = 10.0.0.5\n");
  KVTConfigReader reader(text);
  KVTConfigSection& section = reader.GetConfiguration().at(0);
  const KVTString host = section.mEntries.begin()->second;
  KVTShareFile* const share = KVTShareFile::Instance();
  const bool found = share->IsSharePath(KVTString("//") + host + "/docs/a.txt");
  const bool stored = KVTFile("/tmp").Exists();
  std::cout << section.mName << ' ' << host << ' '
            << KVTFileUtil::GetAddressType(host) << ' ' << found << stored
            << '\n';
  return found && stored ? 0 : 1;
}
