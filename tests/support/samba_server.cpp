#include "samba_server.h"

#include <filesystem>
#include <stdexcept>

namespace {

constexpr int kPort = 445;

// libcurl's smb:// logs in with NTLM of the first version only.
std::string MakeConfiguration(const std::string& directory,
                              const std::string& oldestProtocol) {
  std::string text =
      "[global]\n"
      "workgroup = " +
      std::string(SambaServer::kDomain) +
      "\n"
      "netbios name = KVTSERVER\n"
      "server min protocol = " +
      oldestProtocol +
      "\n"
      "ntlm auth = ntlmv1-permitted\n"
      "map to guest = never\n"
      "interfaces = lo\n"
      "bind interfaces only = yes\n"
      "smb ports = " +
      std::to_string(kPort) +
      "\n"
      "disable netbios = yes\n"
      "load printers = no\n"
      "disable spoolss = yes\n"
      "printcap name = /dev/null\n";
  for (const char* setting :
       {"private dir", "lock directory", "state directory", "cache directory",
        "pid directory", "ncalrpc dir"}) {
    text += std::string(setting) + " = " + directory + "/state\n";
  }
  text += "log file = " + directory + "/state/log\n";
  text += "[docs]\npath = " + directory + "/docs\nread only = no\n";
  text += "[readonly]\npath = " + directory + "/readonly\nread only = yes\n";
  return text;
}

}  // namespace

SambaServer::SambaServer() {
  for (const char* name : {"state", "docs", "readonly"}) {
    std::filesystem::create_directory(mDirectory.Path(name));
  }
  WriteFile(Configuration(), MakeConfiguration(mDirectory.Path(), "NT1"));
  const std::string passwords = mDirectory.Path("passwords");
  const std::string password = std::string(kPassword) + "\n";
  WriteFile(passwords, password + password);
  if (Run({"sh", "-c",
           "smbpasswd -c " + Configuration() + " -a -s " + kUser + " <" +
               passwords + " >/dev/null"}) != 0) {
    throw std::runtime_error("smbpasswd failed");
  }
  Start();
}

void SambaServer::Start(const std::string& oldestProtocol) {
  WriteFile(Configuration(),
            MakeConfiguration(mDirectory.Path(), oldestProtocol));
  // The connections' processes stay in the server's process group, so that
  // they go with it.
  mServer.emplace(
      std::vector<std::string>{"smbd", "--foreground", "--no-process-group",
                               "--debug-stdout", "--configfile",
                               Configuration()},
      kPort);
}
