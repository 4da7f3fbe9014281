/// A slow, obvious model of how configuration files are read.

#ifndef KVT_TESTS_CONFIG_MODEL_H
#define KVT_TESTS_CONFIG_MODEL_H

#include <string>
#include <utility>
#include <vector>

#include "KVTConfigReader.h"
#include "test_strings.h"

struct ModelSection {
  Units name;
  /// Ordered by key, equal keys in the order of the file.
  std::vector<std::pair<Units, Units>> entries;

  bool operator==(const ModelSection& other) const {
    return name == other.name && entries == other.entries;
  }
};

/// What a reader that holds `sections` has after it has read `bytes` too.
void ModelReadConfiguration(const std::string& bytes,
                            std::vector<ModelSection>& sections);

/// `text` without the bytes of `characters` at its ends.
Units ModelTrim(const Units& text, const std::string& characters);

/// What a reader holds, in the form of the model.
std::vector<ModelSection> ToModel(
    const std::vector<KVTConfigSection>& sections);

/// One line a section and entry, as UTF-8 in quotes, for people to read.
std::string Show(const std::vector<ModelSection>& sections);

#endif  // KVT_TESTS_CONFIG_MODEL_H
