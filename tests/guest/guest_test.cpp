#include "guest_test.h"

#include <signal.h>
#include <sys/mount.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

constexpr char kLocalFolder[] = "/run/local";

// What the running server was started with; init.sh started the first.
std::vector<std::string> gServerSettings;
bool gServerRuns = true;

void MakeEmpty(const std::string& folder) {
  std::filesystem::create_directories(folder);
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::filesystem::remove_all(entry);
  }
}

// Mounts of the test go first, since what lies under them is the server's.
void RemoveMountsAndFolders() {
  for (const std::string& line : CifsMounts()) {
    std::istringstream fields(line);
    std::string share;
    std::string folder;
    fields >> share >> folder;
    umount2(folder.c_str(), MNT_FORCE);
  }
  if (!CifsMounts().empty()) {
    throw std::runtime_error("cannot unmount " + CifsMounts()[0]);
  }
  MakeEmpty("/mnt");
}

// How the bytes of two files relate.  Reads them a block at a time: mapping
// large files costs the guest a hundred times as much.
struct Comparison {
  std::uintmax_t firstSize;
  std::uintmax_t secondSize;
  /// Whether they agree as far as the shorter goes.
  bool agree;
};

Comparison Compare(const std::string& a, const std::string& b) {
  Comparison result = {std::filesystem::file_size(a),
                       std::filesystem::file_size(b), true};
  std::ifstream first(a, std::ios::binary);
  std::ifstream second(b, std::ios::binary);
  std::vector<char> one(std::size_t{1} << 20);
  std::vector<char> two(one.size());
  std::uintmax_t left = std::min(result.firstSize, result.secondSize);
  while (left > 0 && result.agree) {
    const auto count = std::min<std::uintmax_t>(left, one.size());
    const auto length = static_cast<std::streamsize>(count);
    if (!first.read(one.data(), length) || !second.read(two.data(), length)) {
      throw std::runtime_error("cannot read " + a + " or " + b);
    }
    result.agree = std::memcmp(one.data(), two.data(), count) == 0;
    left -= count;
  }
  return result;
}

}  // namespace

bool operator==(const Outcome& a, const Outcome& b) {
  return a.result == b.result && a.error == b.error;
}

void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << "result " << outcome.result << ", error \"" << outcome.error << "\"";
}

GuestTest::GuestTest() : mAuth("root", "secret") {
  RemoveMountsAndFolders();
  UseServer({});
  MakeEmpty(kServerFolder);
  MakeEmpty(kLocalFolder);
}

GuestTest::~GuestTest() {
  // The next test finds no instance, as a new process does.
  delete KVTShareFile::mInstance;
  KVTShareFile::mInstance = nullptr;
}

void GuestTest::UseServer(const std::vector<std::string>& settings) {
  if (gServerRuns && gServerSettings == settings) return;
  std::vector<std::string> command = {KVT_GUEST_SCRIPTS "/samba.sh",
                                      gServerRuns ? "reconfigure" : "start"};
  command.insert(command.end(), settings.begin(), settings.end());
  const ProgramRun run = RunProgram(command);
  if (run.status != 0)
    throw std::runtime_error("samba.sh failed: " + run.output);
  gServerRuns = true;
  gServerSettings = settings;
}

void GuestTest::KillServer() {
  // The server leads a process group of its own, its children in it.
  std::ifstream file("/run/samba/smbd.pid");
  pid_t group = 0;
  file >> group;
  if (group <= 1 || kill(-group, SIGKILL) != 0) {
    throw std::runtime_error("cannot end the file server");
  }
  gServerRuns = false;
}

Outcome GuestTest::Send(const std::string& source,
                        const std::string& destination,
                        const std::string& error) {
  KVTString text = FromUtf8(error);
  const bool fetching = Share().IsSharePath(FromUtf8(source));
  const int result = Share().SendFile(
      FromUtf8(source), fetching ? &mAuth : nullptr, FromUtf8(destination),
      fetching ? nullptr : &mAuth, text);
  return {result, text.GetUTF8String()};
}

Outcome GuestTest::SendOnce(const std::string& source,
                            const std::string& destination,
                            const std::string& error) {
  KVTString text = FromUtf8(error);
  const bool fetching = Share().IsSharePath(FromUtf8(source));
  const int result = Share().SendFileUsingMount(
      FromUtf8(source), fetching ? &mAuth : nullptr, FromUtf8(destination),
      fetching ? nullptr : &mAuth, text);
  return {result, text.GetUTF8String()};
}

Outcome GuestTest::Delete(const std::string& location,
                          const std::string& error) {
  KVTString text = FromUtf8(error);
  const int result = Share().DeleteShareFile(FromUtf8(location), &mAuth, text);
  return {result, text.GetUTF8String()};
}

std::string GuestTest::OnServer(const std::string& name) const {
  return std::string(kServerFolder) + "/" + name;
}

std::string GuestTest::Local(const std::string& name) const {
  return std::string(kLocalFolder) + "/" + name;
}

std::vector<std::string> CifsMounts() {
  std::ifstream file("/proc/mounts");
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    if (line.find(" cifs ") != std::string::npos) lines.push_back(line);
  }
  return lines;
}

std::string Report(const std::string& dialect, int error,
                   const std::string& share, const std::string& folder) {
  return dialect + ": mount return code: -1 , errno: " + std::to_string(error) +
         " , stderror: " + std::strerror(error) + " , for share: " + share +
         " , for Mount Point: " + folder;
}

testing::AssertionResult SameBytes(const std::string& a,
                                   const std::string& b) try {
  const Comparison files = Compare(a, b);
  if (files.agree && files.firstSize == files.secondSize) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure()
         << a << " (" << files.firstSize << " bytes) and " << b << " ("
         << files.secondSize << " bytes) "
         << (files.agree ? "agree as far as the shorter goes" : "differ");
} catch (const std::exception& error) {
  return testing::AssertionFailure() << error.what();
}

testing::AssertionResult IsPrefixOf(const std::string& a,
                                    const std::string& b) try {
  const Comparison files = Compare(a, b);
  if (files.agree && files.firstSize <= files.secondSize) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure()
         << a << " (" << files.firstSize << " bytes) is not the beginning of "
         << b << " (" << files.secondSize << " bytes)";
} catch (const std::exception& error) {
  return testing::AssertionFailure() << error.what();
}
