/// What the tests inside the guest share: the file server's share `docs`, the
/// folder behind it, and mounts that each test starts without.

#ifndef KVT_TESTS_GUEST_TEST_H
#define KVT_TESTS_GUEST_TEST_H

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "KVTAuthentication.h"
#include "KVTShareFile.h"
#include "program_run.h"
#include "temporary_directory.h"
#include "test_strings.h"

/// The folder that the server gives out as `docs`.
constexpr char kServerFolder[] = "/run/share";
/// The folder that the library mounts on when it finds none.
constexpr char kFirstFolder[] = "/mnt/orbmountZ";
/// The address at which the server listens, and one at which nothing does.
constexpr char kServer[] = "127.0.0.1";
constexpr char kNoServer[] = "127.0.0.9";

/// What a call gave back: its result, and its error text as the call left it.
struct Outcome {
  int result;
  std::string error;
};
bool operator==(const Outcome& a, const Outcome& b);
void PrintTo(const Outcome& outcome, std::ostream* out);

class GuestTest : public testing::Test {
 protected:
  /// The file server without further settings, empty server and local folders,
  /// no mounts, no mount folders, and a library as a process finds it that has
  /// just started.
  GuestTest();
  ~GuestTest() override;

  /// Has the file server run with these settings until the test ends, from the
  /// next mount on.
  void UseServer(const std::vector<std::string>& settings);
  /// Ends the file server at once, as a crash would.
  void KillServer();

  KVTShareFile& Share() { return *KVTShareFile::Instance(); }

  /// The calls with `mAuth` on the side of the share and null on the other;
  /// `error` is the text that the call finds.
  Outcome Send(const std::string& source, const std::string& destination,
               const std::string& error = "");
  Outcome SendOnce(const std::string& source, const std::string& destination,
                   const std::string& error = "");
  Outcome Delete(const std::string& location, const std::string& error = "");

  /// The path of `name` in the server's folder, and in the local one, which is
  /// no part of any share.
  std::string OnServer(const std::string& name) const;
  std::string Local(const std::string& name) const;

  /// Who asks; root with the right password to begin with.
  KVTAuthentication mAuth;
};

/// The lines of /proc/mounts whose file system is CIFS.
std::vector<std::string> CifsMounts();

/// What the library writes about one failed mount.
std::string Report(const std::string& dialect, int error,
                   const std::string& share, const std::string& folder);

/// Whether both files can be read and hold the same bytes; `prefix`: whether
/// the first holds the beginning of the second, or all of it.
testing::AssertionResult SameBytes(const std::string& a, const std::string& b);
testing::AssertionResult IsPrefixOf(const std::string& a, const std::string& b);

#endif  // KVT_TESTS_GUEST_TEST_H
