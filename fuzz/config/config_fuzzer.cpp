// Any bytes as a configuration file.

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "KVTConfigReader.h"
#include "config_model.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  std::istringstream in(bytes);
  KVTConfigReader reader(in);
  std::vector<ModelSection> model;
  ModelReadConfiguration(bytes, model);
  Require(ToModel(reader.GetConfiguration()) == model, "reads like the model");
  Require(in.eof(), "reads to the end of the stream");

  in.clear();
  in.seekg(0);
  reader.ReadConfiguration(in);
  ModelReadConfiguration(bytes, model);
  Require(ToModel(reader.GetConfiguration()) == model,
          "reads further like the model");

  const KVTString text(bytes.c_str());
  Require(reader.TrimWhiteSpace(text, " \t\r") ==
              KVTString(ModelTrim(text, " \t\r")),
          "trims like the model");
  return 0;
}
