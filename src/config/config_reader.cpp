#include "KVTConfigReader.h"

#include <fstream>
#include <string>

namespace {

// Up to the first zero byte.
KVTString Decode(const std::string& text) {
  return KVTString(text.c_str(), KVTString::KVTCharEncodingUTF8);
}

}  // namespace

KVTConfigSection::~KVTConfigSection() = default;

KVTConfigReader::KVTConfigReader(const KVTString& path) {
  std::ifstream in(path.GetUTF8String());
  ReadConfiguration(in);
}

KVTConfigReader::KVTConfigReader(std::istream& in) { ReadConfiguration(in); }

void KVTConfigReader::ReadConfiguration(std::istream& in) {
  const KVTString whiteSpace(" \t\r");
  std::string line;
  while (std::getline(in, line)) {
    // Nothing is skipped before the first byte: callers rely on a blank in
    // front of "#" or "[" making the line an entry.
    if (line.empty() || line[0] == '#' || line[0] == ';') continue;
    if (line[0] == '[') {
      KVTConfigSection section;
      section.mName = Decode(line.substr(1, line.find(']') - 1));
      mSections.push_back(section);
      continue;
    }
    if (mSections.empty()) continue;
    const std::size_t equals = line.find('=');
    // Callers rely on a line without "=" being its own value.
    const std::string value =
        equals == std::string::npos ? line : line.substr(equals + 1);
    mSections.back().mEntries.emplace(
        TrimWhiteSpace(Decode(line.substr(0, equals)), whiteSpace),
        TrimWhiteSpace(Decode(value), whiteSpace));
  }
}

std::vector<KVTConfigSection>& KVTConfigReader::GetConfiguration() {
  return mSections;
}

KVTString KVTConfigReader::TrimWhiteSpace(const KVTString& text,
                                          const KVTString& characters) {
  const std::string bytes = text.GetUTF8String();
  const std::string set = characters.GetUTF8String();
  const std::size_t first = bytes.find_first_not_of(set);
  if (first == std::string::npos) return KVTString();
  const std::size_t last = bytes.find_last_not_of(set);
  return Decode(bytes.substr(first, last - first + 1));
}
