#include <fnmatch.h>

#include "KVTFileUtil.h"
#include "directory_reader.h"

namespace {

// The glob pattern of fnmatch(3).  Callers rely on the arguments going in as
// they are, and on nothing but the extension following `contains` when there
// is one.
std::string MakePattern(const KVTString& startsWith, const KVTString& contains,
                        const KVTString& extension) {
  const std::string start =
      startsWith.GetUTF8String() + "*" + contains.GetUTF8String();
  if (extension.empty()) return start + "*";
  return start + "." + extension.GetUTF8String();
}

}  // namespace

int KVTFileUtil::GetFileNamesInDirectory(const KVTString& directory,
                                         const KVTString& startsWith,
                                         const KVTString& contains,
                                         const KVTString& extension,
                                         std::vector<KVTString>& names,
                                         bool fullPaths) {
  // Callers rely on this sense: 0 is success.
  if (directory.empty()) return 1;
  DirectoryReader reader(directory.GetUTF8String());
  if (!reader.IsOpen()) return 1;

  const KVTString folder = directory + GetSeparator();
  const std::string pattern = MakePattern(startsWith, contains, extension);
  while (const dirent* entry = reader.Next()) {
    if (entry->d_type == DT_DIR) continue;
    if (fnmatch(pattern.c_str(), entry->d_name, FNM_CASEFOLD) != 0) continue;
    const KVTString name(entry->d_name, KVTString::KVTCharEncodingUTF8);
    names.push_back(fullPaths ? KVTString(folder + name) : name);
  }
  return 0;
}
