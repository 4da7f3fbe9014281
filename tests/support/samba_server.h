/// A Samba server on loopback that still lets SMB 1 in.

#ifndef KVT_TESTS_SAMBA_SERVER_H
#define KVT_TESTS_SAMBA_SERVER_H

#include <optional>
#include <string>

#include "server_process.h"
#include "temporary_directory.h"

/// An smbd on port 445 of 127.0.0.1 and ::1, with all its state in a temporary
/// directory.  Needs a network of the test's own
/// (EnterPrivateMountsAndNetwork), and root itself: smbd changes its groups.
///
/// The share "docs" can be written to, "readonly" can't.  The one account is
/// kUser with kPassword; the server takes any domain for it.
class SambaServer {
 public:
  static constexpr const char* kUser = "root";
  static constexpr const char* kPassword = "secret";
  static constexpr const char* kDomain = "KVTTEST";

  /// Starts the server.  Throws with its output when it does not come up.
  SambaServer();

  /// Where the files of the shares lie on disk.
  std::string Docs(const std::string& name) const {
    return mDirectory.Path("docs/" + name);
  }
  std::string Readonly(const std::string& name) const {
    return mDirectory.Path("readonly/" + name);
  }

  /// Kills the server with all its connections, as a crash would.
  void Kill() { mServer.reset(); }

  /// Starts the server again after Kill, so that it refuses what is older than
  /// `oldestProtocol`: "NT1" is SMB 1, "SMB2" the first of SMB 2.
  void Start(const std::string& oldestProtocol = "NT1");

 private:
  std::string Configuration() const { return mDirectory.Path("smb.conf"); }

  TemporaryDirectory mDirectory;
  std::optional<ServerProcess> mServer;
};

#endif  // KVT_TESTS_SAMBA_SERVER_H
