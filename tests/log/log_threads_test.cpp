// Two threads that log at once: each call of stdio keeps together, a line does
// not have to.

#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "logger_test.h"

namespace {

constexpr int kLines = 3000;

// What one thread's calls of stdio write, in order.
std::vector<std::string> Calls(const std::string& function) {
  std::vector<std::string> calls;
  for (int i = 0; i < kLines; ++i) {
    calls.push_back("app FATAL : Saturday, March 07, 2026 01:05PM " +
                    std::string(20 - function.size(), ' ') + function +
                    "()             main.cpp:" + std::to_string(i) + " ");
    if (i % 2 == 0) {
      calls.push_back(function + " " + std::to_string(i));
      calls.push_back("\n");
    } else {
      calls.push_back(function + " " + std::to_string(i) + "\n");
    }
  }
  return calls;
}

void LogLines(const char* function) {
  for (int i = 0; i < kLines; ++i) {
    if (i % 2 == 0) {
      KVTLogger::Log(function, "main.cpp", i, 1, "%s %d", function, i);
    } else {
      KVTLogger::Log(function, "main.cpp", i, 1, "%s %d\n", function, i);
    }
  }
}

// Tells whether `text` is `a` and `b` merged, each in its own order and no
// element torn.
bool IsMerge(const std::string& text, const std::vector<std::string>& a,
             const std::vector<std::string>& b) {
  // How many of each have been found before the place that has been reached;
  // more than one pair only where both go on alike.
  std::set<std::pair<std::size_t, std::size_t>> reached = {{0, 0}};
  std::set<std::pair<std::size_t, std::size_t>> complete;
  std::vector<std::size_t> lengthOfA = {0};
  for (const auto& call : a)
    lengthOfA.push_back(lengthOfA.back() + call.size());
  std::vector<std::size_t> lengthOfB = {0};
  for (const auto& call : b)
    lengthOfB.push_back(lengthOfB.back() + call.size());
  while (!reached.empty()) {
    std::set<std::pair<std::size_t, std::size_t>> next;
    for (const auto& [i, j] : reached) {
      const std::size_t place = lengthOfA[i] + lengthOfB[j];
      if (i == a.size() && j == b.size()) return place == text.size();
      if (i < a.size() && text.compare(place, a[i].size(), a[i]) == 0) {
        next.emplace(i + 1, j);
      }
      if (j < b.size() && text.compare(place, b[j].size(), b[j]) == 0) {
        next.emplace(i, j + 1);
      }
    }
    reached = std::move(next);
  }
  return false;
}

TEST(LogMerge, IsRecognised) {
  EXPECT_TRUE(IsMerge("a1b1\n\na2", {"a1", "\n", "a2"}, {"b1", "\n"}));
  EXPECT_TRUE(IsMerge("b1\na1\na2", {"a1", "\n", "a2"}, {"b1", "\n"}));
  EXPECT_FALSE(IsMerge("ab11\n\na2", {"a1", "\n", "a2"}, {"b1", "\n"}));
  EXPECT_FALSE(IsMerge("a1b1\n\n", {"a1", "\n", "a2"}, {"b1", "\n"}));
  EXPECT_FALSE(IsMerge("a2b1\n\na1", {"a1", "\n", "a2"}, {"b1", "\n"}));
  EXPECT_FALSE(IsMerge("a1b1\n\na2x", {"a1", "\n", "a2"}, {"b1", "\n"}));
}

class LogThreads : public LoggerTest {};

TEST_F(LogThreads, KeepEachCallTogetherInBothLogs) {
  // The fixture's clock counts its calls, which threads may not do.
  hooks::Scoped clock(hooks::onTime,
                      [now = mNow](time_t*) -> time_t { return now; });
  ASSERT_TRUE(KVTLogger::Initialize(Options(3)));
  std::thread first(LogLines, "First");
  std::thread second(LogLines, "Second");
  first.join();
  second.join();
  KVTLogger::Terminate();
  const auto callsOfFirst = Calls("First");
  const auto callsOfSecond = Calls("Second");
  EXPECT_TRUE(IsMerge(Internal(), callsOfFirst, callsOfSecond));
  EXPECT_TRUE(IsMerge(User(), callsOfFirst, callsOfSecond));
}

// The second thread logs between the header and the text of the first.
TEST_F(LogThreads, MayHaveALineInsideAnother) {
  ASSERT_TRUE(KVTLogger::Initialize(Options(0)));
  bool once = false;
  hooks::Scoped hook(
      hooks::onVfprintf,
      [&once](FILE* stream, const char* format, va_list arguments) {
        if (!once) {
          once = true;
          std::thread second(
              [] { KVTLogger::Log("Run", "main.cpp", 7, 2, "second"); });
          second.join();
        }
        return hooks::RealVfprintf(stream, format, arguments);
      });
  KVTLogger::Log("Run", "main.cpp", 7, 1, "first");
  KVTLogger::Terminate();
  EXPECT_TRUE(once);
  EXPECT_EQ(Internal(), Header("FATAL") + Header("ERROR") + "second\nfirst\n");
}

}  // namespace
