// The path algebra held against its model, over every short path and over
// random ones.

#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "KVTFile.h"
#include "path_model.h"
#include "random_seed.h"
#include "test_strings.h"

namespace {

void ExpectUnits(const KVTString& actual, const Units& expected,
                 const char* operation, const Units& path) {
  if (static_cast<const Units&>(actual) == expected) return;
  ADD_FAILURE() << operation << " of "
                << testing::PrintToString(KVTString(path)) << " gave "
                << testing::PrintToString(actual) << " and not "
                << testing::PrintToString(KVTString(expected));
}

void ExpectChange(const path_model::Changed& expected, const char* operation,
                  const Units& path, const std::function<bool(KVTFile&)>& act) {
  KVTFile file;
  file.SetPath(KVTString(path));  // keeps zero units, which a copy would not
  EXPECT_EQ(act(file), expected.result)
      << operation << " of " << testing::PrintToString(KVTString(path));
  ExpectUnits(file.mPath, expected.path, operation, path);
}

void ExpectQueriesAgree(const Units& path) {
  KVTFile file;
  file.SetPath(KVTString(path));
  for (const bool keep : {false, true}) {
    ExpectUnits(file.GetParentPath(keep), path_model::Parent(path, '/', keep),
                "GetParentPath", path);
    ExpectUnits(file.GetLinuxParentPath(keep),
                path_model::Parent(path, '/', keep), "GetLinuxParentPath",
                path);
    ExpectUnits(file.GetWinParentPath(keep),
                path_model::Parent(path, '\\', keep), "GetWinParentPath", path);
    ExpectUnits(file.GetFileNameFromURL(keep),
                path_model::FileNameFromURL(path, keep), "GetFileNameFromURL",
                path);
  }
  ExpectUnits(file.GetName(), path_model::Name(path), "GetName", path);
  ExpectUnits(file.GetExtension(), path_model::Extension(path), "GetExtension",
              path);
  ExpectUnits(KVTFile::RemoveFileExtension(file.mPath),
              path_model::WithoutExtension(path), "RemoveFileExtension", path);
  EXPECT_EQ(file.IsValidName(), path_model::IsValidName(path))
      << testing::PrintToString(KVTString(path));
  EXPECT_EQ(file.HasValidPath(), path_model::HasValidPath(path))
      << testing::PrintToString(KVTString(path));
}

void ExpectChangesAgree(const Units& path, const Units& argument) {
  KVTString text;
  text = KVTString(argument);
  ExpectChange(path_model::SetName(path, argument), "SetName", path,
               [&](KVTFile& file) { return file.SetName(text); });
  ExpectChange(path_model::AppendName(path, argument), "AppendName", path,
               [&](KVTFile& file) { return file.AppendName(text); });
  ExpectChange(path_model::SetExtension(path, argument), "SetExtension", path,
               [&](KVTFile& file) { return file.SetExtension(text); });
  ExpectChange(path_model::RemoveName(path), "RemoveName", path,
               [](KVTFile& file) { return file.RemoveName(); });
}

// Until one fails.
void ForEveryShortPath(const std::function<void(const Units&)>& check) {
  for (const std::string& path : AllTexts("a./\\:", 6)) {
    check(FromUtf8(path));
    if (testing::Test::HasFailure()) return;
  }
}

Units ToUnits(const char* text) { return KVTString(text); }

TEST(PathAlgebraModel, AgreesOnTheQueriesOfEveryShortPath) {
  ForEveryShortPath(ExpectQueriesAgree);
}

TEST(PathAlgebraModel, AgreesOnTheChangesOfEveryShortPath) {
  const std::vector<Units> arguments = {
      ToUnits(""), ToUnits("b"), ToUnits(".x"), ToUnits("/"), ToUnits("c:")};
  ForEveryShortPath([&arguments](const Units& path) {
    for (const Units& argument : arguments) ExpectChangesAgree(path, argument);
  });
}

TEST(PathAlgebraModel, AgreesOnRandomPathsWithZeroUnits) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 5000 && !HasFailure(); ++round) {
    Units path = RandomUnits(random, 40, true);
    // Random units are rarely separators or dots.
    for (unsigned short& unit : path) {
      if (random() % 4 == 0) unit = "/.\\:*"[random() % 5];
    }
    const Units argument = RandomUnits(random, 5, true);
    ExpectQueriesAgree(path);
    ExpectChangesAgree(path, argument);
  }
}

}  // namespace
