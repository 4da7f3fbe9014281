// Whole files, each beside what it is to give: corpus/NAME.conf and
// corpus/NAME.expected, the latter written by hand in the form of Show.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "KVTConfigReader.h"
#include "config_model.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

std::string CorpusPath(const std::string& name) {
  return KVT_CONFIG_CORPUS "/" + name;
}

std::vector<std::string> CorpusNames() {
  std::vector<std::string> names;
  for (const auto& entry :
       std::filesystem::directory_iterator(KVT_CONFIG_CORPUS)) {
    if (entry.path().extension() == ".conf") {
      names.push_back(entry.path().stem().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

class ConfigCorpus : public testing::TestWithParam<std::string> {
 protected:
  const std::string mPath = CorpusPath(GetParam() + ".conf");
  const std::string mExpected = ReadFile(CorpusPath(GetParam() + ".expected"));
};

TEST_P(ConfigCorpus, IsReadFromItsPath) {
  KVTConfigReader reader(FromUtf8(mPath));
  EXPECT_EQ(Show(ToModel(reader.GetConfiguration())), mExpected);
}

TEST_P(ConfigCorpus, IsReadFromAStreamToItsEnd) {
  std::ifstream in(mPath, std::ios::binary);
  ASSERT_TRUE(in);
  KVTConfigReader reader(in);
  EXPECT_EQ(Show(ToModel(reader.GetConfiguration())), mExpected);
  EXPECT_TRUE(in.eof());
  EXPECT_FALSE(in.bad());
}

// Where the first line is no header, the second reading gives the last section
// of the first one more entries: the model says so too.
TEST_P(ConfigCorpus, IsReadTwiceFromOneStream) {
  std::ifstream in(mPath, std::ios::binary);
  KVTConfigReader reader(in);
  reader.ReadConfiguration(in);
  EXPECT_EQ(Show(ToModel(reader.GetConfiguration())), mExpected);
  in.clear();
  in.seekg(0);
  reader.ReadConfiguration(in);
  std::vector<ModelSection> twice;
  ModelReadConfiguration(ReadFile(mPath), twice);
  ModelReadConfiguration(ReadFile(mPath), twice);
  EXPECT_EQ(Show(ToModel(reader.GetConfiguration())), Show(twice));
}

TEST_P(ConfigCorpus, AgreesWithTheModel) {
  std::vector<ModelSection> model;
  ModelReadConfiguration(ReadFile(mPath), model);
  EXPECT_EQ(Show(model), mExpected);
}

INSTANTIATE_TEST_SUITE_P(, ConfigCorpus, testing::ValuesIn(CorpusNames()),
                         [](const auto& test) { return test.param; });

}  // namespace
