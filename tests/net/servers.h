/// The real servers that the download tests talk to, on loopback in a network
/// of the test program's own.

#ifndef KVT_TESTS_NET_SERVERS_H
#define KVT_TESTS_NET_SERVERS_H

#include <string>

#include "server_process.h"
#include "temporary_directory.h"

/// nginx, vsftpd and two tinyproxies, started before the first test and stopped
/// behind the last.
///
/// The program then has mounts and a network of its own, and its temporary
/// directories lie in memory and not below /tmp.
/// Certificates are signed by an authority of the tests' own, which takes the
/// place of the system's bundle of trusted ones.
class Servers {
 public:
  /// Makes the certificates and starts the servers; throws when any of it
  /// fails.
  Servers();

  /// "http://127.0.0.1:8080/" + path.  What it answers:
  /// - the files that Files() holds, 200; a folder's by its file "index"
  /// - answers/206 ("part"), answers/226 ("used"), answers/301 and 302 and 307
  ///   (to "hello.txt"), answers/404 ("nothing here"), answers/500 ("out of
  ///   order"), answers/204, each with that code
  /// - relay?port=N: what the server on port N of loopback answers, as it comes
  /// - head: 200 to HEAD, 405 to anything else
  /// - via: the request's header "Via", empty when no proxy handed it on
  static std::string Http(const std::string& path);
  /// The same over HTTPS with a trusted certificate for 127.0.0.1.
  static std::string Https(const std::string& path);
  /// The same over HTTPS with a certificate that nobody trusts.
  static std::string UntrustedHttps(const std::string& path);
  /// vsftpd with the same files.
  static std::string Ftp(const std::string& path);

  /// The folder that nginx and vsftpd serve.
  const TemporaryDirectory& Files() const { return mFiles; }

  /// The address of a proxy that lets everybody pass, and of one that asks for
  /// the user "keeper" with the password "open-sesame".
  static const char* Proxy();
  static const char* ProxyWithPassword();

  /// A port of loopback on which nothing listens.
  static constexpr int kDeadPort = 1;

 private:
  TemporaryDirectory mPlace;
  TemporaryDirectory mFiles;
  ServerProcess mNginx;
  ServerProcess mVsftpd;
  ServerProcess mProxy;
  ServerProcess mProxyWithPassword;
};

/// The one object, which lives from before the first test to behind the last.
Servers& TheServers();

#endif  // KVT_TESTS_NET_SERVERS_H
