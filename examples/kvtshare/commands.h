/// What kvtshare does, one function for each of its commands.  Each prints the
/// library's result and text as they are and returns the result.

#ifndef KVTSHARE_COMMANDS_H
#define KVTSHARE_COMMANDS_H

#include <string>

#include "password.h"

/// Who asks.  Without any of it the library gets no credentials at all.
struct Credentials {
  std::string user;
  std::string domain;
  PasswordSource password;
};

struct SendArguments {
  std::string source;
  std::string destination;
  Credentials credentials;
  /// libcurl's smb:// instead of a mount.
  bool smb1 = false;
  /// With smb1: connect and log in, transfer nothing.
  bool probe = false;
};

struct DownloadArguments {
  std::string url;
  std::string target;
  std::string proxyAddress;
  std::string proxyUser;
  PasswordSource proxyPassword;
};

int Send(const SendArguments& arguments);
int Delete(const std::string& location, const Credentials& credentials);
int Parse(const std::string& location);
int Unmount(const std::string& folder);
int UnmountEverything();
int Download(const DownloadArguments& arguments);

#endif  // KVTSHARE_COMMANDS_H
