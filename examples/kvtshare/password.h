/// Where kvtshare takes a password from.  Never from the command line, where
/// every user of the machine could read it.

#ifndef KVTSHARE_PASSWORD_H
#define KVTSHARE_PASSWORD_H

#include <string>

/// The choices of the command line; at most one of the two is set.
struct PasswordSource {
  /// A file whose first line is the password.
  std::string file;
  /// The name of an environment variable that holds it.
  std::string variable;

  bool IsSet() const { return !file.empty() || !variable.empty(); }
};

/// Returns the password from `source`, or asks for it on the terminal with
/// `prompt` when `source` names none.  Throws std::runtime_error when it cannot
/// be had.
std::string GetPassword(const PasswordSource& source,
                        const std::string& prompt);

#endif  // KVTSHARE_PASSWORD_H
