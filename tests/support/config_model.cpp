#include "config_model.h"

#include <algorithm>
#include <cstdio>

#include "utf8_model.h"

namespace {

// What a field of a line becomes: a zero byte ends it.
Units Decode(const std::string& bytes) {
  return ModelDecodeUtf8(bytes.substr(0, bytes.find('\0')));
}

Units UpToZero(const Units& units) { return units.c_str(); }

void ReadLine(const std::string& line, std::vector<ModelSection>& sections) {
  switch (line.empty() ? '#' : line.front()) {
    case '#':
    case ';':
      return;
    case '[': {
      std::string name;
      for (std::size_t i = 1; i < line.size() && line[i] != ']'; ++i) {
        name += line[i];
      }
      // Copies of a text end at its first zero unit.
      sections.push_back({UpToZero(Decode(name)), {}});
      return;
    }
    default:
      break;
  }
  if (sections.empty()) return;

  std::string key;
  std::string value;
  bool behindEquals = false;
  for (const char c : line) {
    if (behindEquals) {
      value += c;
    } else if (c == '=') {
      behindEquals = true;
    } else {
      key += c;
    }
  }
  if (!behindEquals) value = key;

  auto& entries = sections.back().entries;
  entries.emplace_back(ModelTrim(Decode(key), " \t\r"),
                       ModelTrim(Decode(value), " \t\r"));
  std::stable_sort(
      entries.begin(), entries.end(), [](const auto& a, const auto& b) {
        return std::lexicographical_compare(a.first.begin(), a.first.end(),
                                            b.first.begin(), b.first.end());
      });
}

std::string Quoted(const Units& units) {
  std::string text = "\"";
  for (const char c : ModelEncodeUtf8(units)) {
    char escaped[8];
    if (c == '\t') {
      text += "\\t";
    } else if (c == '\r') {
      text += "\\r";
    } else if (c >= ' ' && c < '\x7F') {
      text += c;
    } else {
      std::snprintf(escaped, sizeof escaped, "\\x%02X",
                    static_cast<unsigned char>(c));
      text += escaped;
    }
  }
  return text + "\"";
}

}  // namespace

Units ModelTrim(const Units& text, const std::string& characters) {
  std::string bytes = ModelEncodeUtf8(text);
  const auto goes = [&characters](char c) {
    return characters.find(c) != std::string::npos;
  };
  while (!bytes.empty() && goes(bytes.front())) bytes.erase(0, 1);
  while (!bytes.empty() && goes(bytes.back())) bytes.pop_back();
  return Decode(bytes);
}

void ModelReadConfiguration(const std::string& bytes,
                            std::vector<ModelSection>& sections) {
  std::string line;
  for (const char c : bytes) {
    if (c == '\n') {
      ReadLine(line, sections);
      line.clear();
    } else {
      line += c;
    }
  }
  ReadLine(line, sections);
}

std::vector<ModelSection> ToModel(
    const std::vector<KVTConfigSection>& sections) {
  std::vector<ModelSection> model;
  for (const KVTConfigSection& section : sections) {
    model.push_back({section.mName, {}});
    for (const auto& entry : section.mEntries) {
      model.back().entries.emplace_back(entry.first, entry.second);
    }
  }
  return model;
}

std::string Show(const std::vector<ModelSection>& sections) {
  std::string text;
  for (const ModelSection& section : sections) {
    text += "section " + Quoted(section.name) + "\n";
    for (const auto& entry : section.entries) {
      text += "  " + Quoted(entry.first) + " " + Quoted(entry.second) + "\n";
    }
  }
  return text;
}
