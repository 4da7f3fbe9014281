// Random text against the model.

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "KVTConfigReader.h"
#include "config_model.h"
#include "random_seed.h"
#include "test_strings.h"

namespace {

// Text in which what matters comes often.
std::string RandomConfiguration(std::mt19937& random) {
  static const std::string pieces[] = {"\n",
                                       "\n",
                                       "\n[",
                                       "[",
                                       "]",
                                       "=",
                                       "=",
                                       "#",
                                       ";",
                                       " ",
                                       "\t",
                                       "\r",
                                       "\r\n",
                                       "a",
                                       "b",
                                       "B",
                                       "zz",
                                       "\v",
                                       {'\0'},
                                       "\xC3\xA9",
                                       "\xC3",
                                       "\xA9",
                                       "\xC0\x80",
                                       "\xE2\x82\xAC",
                                       "\xF0\x9F\x98\x80",
                                       "\xF8",
                                       "\xEE\x80\x80",
                                       "[s]\n",
                                       "key=value\n"};
  std::string text;
  for (std::size_t count = random() % 60; count > 0; --count) {
    text += pieces[random() % std::size(pieces)];
  }
  return text;
}

TEST(ConfigReaderModel, AgreesOverRandomText) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int i = 0; i < 20000 && !HasFailure(); ++i) {
    const std::string text = RandomConfiguration(random);
    std::istringstream in(text);
    KVTConfigReader reader(in);
    std::vector<ModelSection> model;
    ModelReadConfiguration(text, model);
    EXPECT_EQ(Show(ToModel(reader.GetConfiguration())), Show(model))
        << testing::PrintToString(text);
    if (i % 4 == 0) {
      const std::string more = RandomConfiguration(random);
      std::istringstream further(more);
      reader.ReadConfiguration(further);
      ModelReadConfiguration(more, model);
      EXPECT_TRUE(ToModel(reader.GetConfiguration()) == model)
          << testing::PrintToString(text + " and " + more);
    }
  }
}

TEST(ConfigReaderModel, TrimsLikeTheModel) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  std::istringstream nothing;
  KVTConfigReader reader(nothing);
  for (int i = 0; i < 20000 && !HasFailure(); ++i) {
    const KVTString text(RandomUnits(random, 8, true));
    const KVTString characters(RandomUnits(random, 4, true));
    EXPECT_TRUE(reader.TrimWhiteSpace(text, characters) ==
                KVTString(ModelTrim(text, characters.GetUTF8String())))
        << testing::PrintToString(text) << testing::PrintToString(characters);
  }
}

}  // namespace
