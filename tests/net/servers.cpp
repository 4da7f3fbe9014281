#include "servers.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "namespaces.h"

namespace {

constexpr int kHttpPort = 8080;
constexpr int kHttpsPort = 8443;
constexpr int kUntrustedHttpsPort = 8444;
constexpr int kFtpPort = 2121;
constexpr int kProxyPort = 8888;
constexpr int kProxyWithPasswordPort = 8889;

// Where temporary directories are made from then on, in memory.
constexpr char kTemporary[] = "/srv";

constexpr char kTrustedBundle[] = "/etc/ssl/certs/ca-certificates.crt";

// Names are relative to the server's folder.
constexpr char kNginxConfiguration[] = R"(
daemon off;
user root;
worker_processes 1;
pid nginx.pid;
error_log stderr warn;
events { worker_connections 64; }
http {
  access_log off;
  default_type application/octet-stream;
  client_body_temp_path body;
  proxy_temp_path proxy;
  fastcgi_temp_path fastcgi;
  uwsgi_temp_path uwsgi;
  scgi_temp_path scgi;
  server {
    listen 127.0.0.1:@http@;
    listen 127.0.0.1:@https@ ssl;
    ssl_certificate server.pem;
    ssl_certificate_key server.key;
    include locations.conf;
  }
  server {
    listen 127.0.0.1:@untrusted@ ssl;
    ssl_certificate stranger.pem;
    ssl_certificate_key stranger.key;
    include locations.conf;
  }
}
)";

constexpr char kNginxLocations[] = R"(
root @files@;
index index;
location = /answers/204 { return 204; }
location = /answers/206 { return 206 "part"; }
location = /answers/226 { return 226 "used"; }
location = /answers/301 { return 301 /hello.txt; }
location = /answers/302 { return 302 /hello.txt; }
location = /answers/307 { return 307 /hello.txt; }
location = /answers/404 { return 404 "nothing here"; }
location = /answers/500 { return 500 "out of order"; }
location = /head {
  if ($request_method != HEAD) { return 405; }
  return 200;
}
location = /relay {
  proxy_pass http://127.0.0.1:$arg_port;
  proxy_buffering off;
}
location = /via { return 200 "$http_via"; }
)";

constexpr char kVsftpdConfiguration[] = R"(
listen=YES
listen_address=127.0.0.1
listen_port=@port@
background=NO
run_as_launching_user=YES
seccomp_sandbox=NO
isolate=NO
isolate_network=NO
anonymous_enable=YES
local_enable=NO
connect_from_port_20=NO
xferlog_enable=NO
secure_chroot_dir=@empty@
anon_root=@files@
)";

constexpr char kTinyproxyConfiguration[] = R"(
Port @port@
Listen 127.0.0.1
Allow 127.0.0.1
Timeout 30
ViaProxyName "gatekeeper"
@rest@
)";

using Values = std::vector<std::pair<std::string, std::string>>;

// `text` with each name in it replaced by its value.
std::string Fill(std::string text, const Values& values) {
  for (const auto& [name, value] : values) {
    for (std::size_t at = text.find(name); at != std::string::npos;
         at = text.find(name, at + value.size())) {
      text.replace(at, name.size(), value);
    }
  }
  return text;
}

std::string Url(const char* protocol, int port, const std::string& path) {
  return std::string(protocol) + "://127.0.0.1:" + std::to_string(port) + "/" +
         path;
}

// libcurl takes proxies from the environment too.
void ForgetProxies() {
  for (const char* name :
       {"http_proxy", "https_proxy", "ftp_proxy", "all_proxy", "no_proxy",
        "HTTPS_PROXY", "FTP_PROXY", "ALL_PROXY", "NO_PROXY"}) {
    unsetenv(name);
  }
}

void Openssl(const TemporaryDirectory& place, const std::string& arguments) {
  const std::string command =
      "cd " + place.Path() + " && openssl " + arguments + " >>openssl.log 2>&1";
  if (Run({"sh", "-c", command}) != 0) {
    throw std::runtime_error(command + ":\n" +
                             ReadFile(place.Path("openssl.log")));
  }
}

// A certificate and key NAME.pem and NAME.key; `rest` says who signs.
void MakeCertificate(const TemporaryDirectory& place, const std::string& name,
                     const std::string& rest) {
  Openssl(place, Fill("req -x509 -newkey ec -noenc -days 2"
                      " -pkeyopt ec_paramgen_curve:prime256v1"
                      " -subj /CN=@name@ -keyout @name@.key -out @name@.pem ",
                      {{"@name@", name}}) +
                     rest);
}

void MakeCertificates(const TemporaryDirectory& place) {
  MakeCertificate(place, "authority",
                  "-addext basicConstraints=critical,CA:TRUE");
  const std::string ofServer =
      " -addext basicConstraints=critical,CA:FALSE"
      " -addext subjectAltName=IP:127.0.0.1";
  MakeCertificate(place, "server",
                  "-CA authority.pem -CAkey authority.key" + ofServer);
  MakeCertificate(place, "stranger", ofServer);
  CoverWith(place.Path("authority.pem"), kTrustedBundle);
}

std::vector<std::string> Nginx(const TemporaryDirectory& place,
                               const TemporaryDirectory& files) {
  MakeCertificates(place);
  const Values values = {{"@files@", files.Path()},
                         {"@http@", std::to_string(kHttpPort)},
                         {"@https@", std::to_string(kHttpsPort)},
                         {"@untrusted@", std::to_string(kUntrustedHttpsPort)}};
  WriteFile(place.Path("locations.conf"), Fill(kNginxLocations, values));
  WriteFile(place.Path("nginx.conf"), Fill(kNginxConfiguration, values));
  return {"nginx", "-e", "stderr", "-p", place.Path(), "-c", "nginx.conf"};
}

std::vector<std::string> Vsftpd(const TemporaryDirectory& place,
                                const TemporaryDirectory& files) {
  std::filesystem::create_directory(place.Path("empty"));
  WriteFile(place.Path("vsftpd.conf"),
            Fill(kVsftpdConfiguration, {{"@port@", std::to_string(kFtpPort)},
                                        {"@empty@", place.Path("empty")},
                                        {"@files@", files.Path()}}));
  return {"vsftpd", place.Path("vsftpd.conf")};
}

std::vector<std::string> Tinyproxy(const TemporaryDirectory& place, int port,
                                   const std::string& rest) {
  const std::string path =
      place.Path("tinyproxy-" + std::to_string(port) + ".conf");
  WriteFile(path, Fill(kTinyproxyConfiguration,
                       {{"@port@", std::to_string(port)}, {"@rest@", rest}}));
  return {"tinyproxy", "-d", "-c", path};
}

std::unique_ptr<Servers> servers;

class Environment : public testing::Environment {
  void SetUp() override {
    ForgetProxies();
    EnterPrivateMountsAndNetwork();
    // The servers see the same mounts: what they serve must not lie below /tmp,
    // which tests cover.
    CoverWithEmptyDirectory(kTemporary);
    setenv("TMPDIR", kTemporary, 1);
    servers = std::make_unique<Servers>();
  }
  void TearDown() override { servers.reset(); }
};

testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new Environment);

}  // namespace

Servers::Servers()
    : mNginx(Nginx(mPlace, mFiles), kHttpPort),
      mVsftpd(Vsftpd(mPlace, mFiles), kFtpPort),
      mProxy(Tinyproxy(mPlace, kProxyPort, ""), kProxyPort),
      mProxyWithPassword(Tinyproxy(mPlace, kProxyWithPasswordPort,
                                   "BasicAuth keeper open-sesame"),
                         kProxyWithPasswordPort) {}

std::string Servers::Http(const std::string& path) {
  return Url("http", kHttpPort, path);
}

std::string Servers::Https(const std::string& path) {
  return Url("https", kHttpsPort, path);
}

std::string Servers::UntrustedHttps(const std::string& path) {
  return Url("https", kUntrustedHttpsPort, path);
}

std::string Servers::Ftp(const std::string& path) {
  return Url("ftp", kFtpPort, path);
}

const char* Servers::Proxy() { return "http://127.0.0.1:8888"; }

const char* Servers::ProxyWithPassword() { return "http://127.0.0.1:8889"; }

Servers& TheServers() { return *servers; }
