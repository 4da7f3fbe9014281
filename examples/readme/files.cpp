#include <KVTFileUtil.h>

#include <iostream>

int main() {
  const KVTFile directory = KVTFileUtil::CreateUniqueTemporaryDirectory();
  KVTFile file(directory.GetPath());
  file.AppendName("report.txt");
  file.CreateFile(false);
  std::vector<KVTString> names;
  KVTFileUtil::GetFileNamesInDirectory(directory.GetPath(), "", "", "txt",
                                       names, false);
  for (const KVTString& name : names) std::cout << name << "\n";
  KVTFileUtil::DeleteDirectory(directory, true);
}
