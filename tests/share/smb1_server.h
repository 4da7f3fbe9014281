/// The file server of the smb:// tests, and one transfer to or from it.

#ifndef KVT_TESTS_SMB1_SERVER_H
#define KVT_TESTS_SMB1_SERVER_H

#include <gtest/gtest.h>

#include <string>

#include "KVTShareFile.h"
#include "samba_server.h"
#include "temporary_directory.h"
#include "test_strings.h"

/// The program's one server, which runs from its first test to its last in a
/// network of the program's own.
SambaServer& Server();

/// Transfers with the account of the server, where a test says nothing else.
class Smb1Server : public testing::Test {
 protected:
  int Upload(const std::string& source, const std::string& destination) {
    return Send(source, destination, &mAuth);
  }
  int Download(const std::string& source, const std::string& destination) {
    return Send(source, destination, &mAuth);
  }
  int Probe(const std::string& source, const std::string& destination) {
    return Send(source, destination, &mAuth, false);
  }
  /// `auth` goes with both sides; the local one's plays no part.
  int Send(const std::string& source, const std::string& destination,
           KVTAuthentication* auth, bool transferFile = true) {
    KVTShareFile share;
    return share.SendFileOnWindowSMB1(FromUtf8(source), auth, transferFile,
                                      FromUtf8(destination), auth, mError);
  }

  /// A local file of the test's own.
  std::string Local(const std::string& name) const {
    return mDirectory.Path(name);
  }

  KVTAuthentication mAuth{SambaServer::kUser, SambaServer::kPassword};
  KVTString mError;
  const TemporaryDirectory mDirectory;
};

constexpr const char* kDoneLine = "Curl return code  0 , curl response code 0";

#endif  // KVT_TESTS_SMB1_SERVER_H
