// How fast a large file travels, beside cp(1) onto the same mount.  Shown and
// recorded; nothing is held against a limit, since the guest shares a machine.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "guest_test.h"

namespace {

constexpr std::size_t kMegabytes = 200;

class Throughput : public GuestTest {};

// Megabytes (2^20 bytes) a second.
template <class Action>
double Rate(Action action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  const std::chrono::duration<double> time =
      std::chrono::steady_clock::now() - start;
  return kMegabytes / time.count();
}

double Middle(std::vector<double> rates) {
  std::sort(rates.begin(), rates.end());
  return rates[rates.size() / 2];
}

TEST_F(Throughput, OfASendBesideCp) {
  MakeFile(Local("source"), kMegabytes << 20);
  WriteFile(Local("small"), "x");
  ASSERT_EQ(Send(Local("small"), "//127.0.0.1/docs/small"), (Outcome{0, ""}));

  std::vector<double> send;
  std::vector<double> copy;
  for (int round = 0; round < 3; ++round) {
    send.push_back(Rate([&] {
      EXPECT_EQ(Send(Local("source"), "//127.0.0.1/docs/sent"),
                (Outcome{0, ""}));
    }));
    ASSERT_TRUE(SameBytes(OnServer("sent"), Local("source")));
    copy.push_back(Rate([&] {
      EXPECT_EQ(RunProgram({"cp", Local("source"), "/mnt/orbmountZ/copied"}),
                (ProgramRun{0, ""}));
    }));
    ASSERT_TRUE(SameBytes(OnServer("copied"), Local("source")));
    // Both write to a name that is new.
    std::filesystem::remove("/mnt/orbmountZ/sent");
    std::filesystem::remove("/mnt/orbmountZ/copied");
  }

  std::printf(
      "throughput of %zu MB to the share, middle of 3: SendFile %.0f MB/s, "
      "cp %.0f MB/s\n",
      kMegabytes, Middle(send), Middle(copy));
  RecordProperty("send_megabytes_per_second", static_cast<int>(Middle(send)));
  RecordProperty("cp_megabytes_per_second", static_cast<int>(Middle(copy)));
}

}  // namespace
