// The parser held against the model, over short texts and over random ones.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "KVTShareFile.h"
#include "network_path_model.h"
#include "random_seed.h"
#include "share_fakes.h"
#include "test_strings.h"

namespace {

namespace model = network_path_model;

const model::Names kNames = {
    {"fs1", "10.0.0.5"}, {"aaa", "10.0.0.6"}, {"[aa", "fe80::1"}};

FakeNames::Names ForTheFake() {
  FakeNames::Names names;
  for (const auto& [name, address] : kNames) names[name] = {address};
  return names;
}

KVTString OrUntouched(const std::optional<Units>& piece) {
  return KVTString(piece.value_or(Units{'?', '?'}));
}

// True when parser and model agree on `path`, and the URL with them.
testing::AssertionResult Agree(const KVTString& path) {
  KVTShareFileInternal paths;
  KVTString hostIp("??");
  KVTString shareFolder("??");
  KVTString remainder("??");
  const int result =
      paths.ParseNetworkPath(path, hostIp, shareFolder, remainder);
  const model::Pieces expected = model::Parse(path, kNames);
  if (result != expected.result || hostIp != OrUntouched(expected.hostIp) ||
      shareFolder != OrUntouched(expected.shareFolder) ||
      remainder != OrUntouched(expected.remainder)) {
    return testing::AssertionFailure()
           << testing::PrintToString(path) << " gave " << result << " "
           << testing::PrintToString(hostIp) << " "
           << testing::PrintToString(shareFolder) << " "
           << testing::PrintToString(remainder) << ", the model "
           << expected.result << " "
           << testing::PrintToString(OrUntouched(expected.hostIp)) << " "
           << testing::PrintToString(OrUntouched(expected.shareFolder)) << " "
           << testing::PrintToString(OrUntouched(expected.remainder));
  }
  return testing::AssertionSuccess();
}

TEST(NetworkPathModel, AgreesOnAllShortTexts) {
  const FakeNames names(ForTheFake());
  const std::vector<unsigned short> alphabet = {'a', '/', '\\',
                                                '[', ']', 0x20AC};
  std::vector<Units> texts = {Units()};
  for (std::size_t from = 0; from < texts.size(); ++from) {
    const Units text = texts[from];
    ASSERT_TRUE(Agree(KVTString(text)));
    if (text.size() == 6) continue;
    for (const unsigned short unit : alphabet) texts.push_back(text + unit);
  }
  EXPECT_EQ(texts.size(), 55987u);  // 6^0 + ... + 6^6
}

TEST(NetworkPathModel, AgreesOnRandomLocations) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  const FakeNames names(ForTheFake());
  const std::vector<std::string> parts = {"smb:",
                                          "cifs:",
                                          "//",
                                          "\\\\",
                                          "/",
                                          "\\",
                                          "fs1",
                                          "10.0.0.5",
                                          "[::1]",
                                          "fe80::1",
                                          "docs",
                                          "a b",
                                          ".",
                                          "[",
                                          "]",
                                          "\xC3\xA9",
                                          "\xE6\x96\x87",
                                          "\xF0\x9F\x98\x80",
                                          "aaa"};
  std::uniform_int_distribution<std::size_t> part(0, parts.size() - 1);
  std::uniform_int_distribution<int> count(0, 10);
  for (int i = 0; i < 20000; ++i) {
    std::string path;
    for (int n = count(random); n > 0; --n) path += parts[part(random)];
    ASSERT_TRUE(Agree(FromUtf8(path)));
  }
}

TEST(NetworkPathModel, AgreesOnRandomUnits) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  const FakeNames names(ForTheFake());
  for (int i = 0; i < 20000; ++i) {
    Units units = RandomUnits(random, 20, false);
    for (auto& unit : units) {
      if (random() % 4 == 0) unit = random() % 2 == 0 ? '/' : '\\';
    }
    ASSERT_TRUE(Agree(KVTString(units)));
  }
}

}  // namespace
