#include "server_process.h"

#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include "temporary_directory.h"

namespace {

constexpr std::chrono::seconds kStartLimit(10);
constexpr std::chrono::milliseconds kPollInterval(10);

[[noreturn]] void Execute(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& word : command) {
    arguments.push_back(const_cast<char*>(word.c_str()));
  }
  arguments.push_back(nullptr);
  setenv("PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin",
         1);
  execvp(arguments[0], arguments.data());
  dprintf(STDERR_FILENO, "cannot run %s: %s\n", arguments[0], strerror(errno));
  _exit(127);
}

bool Connects(const sockaddr* address, socklen_t size) {
  const int fd = socket(address->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool connected = fd >= 0 && connect(fd, address, size) == 0;
  if (fd >= 0) close(fd);
  return connected;
}

bool Listens(const std::string& address, int port) {
  if (address.find(':') == std::string::npos) {
    sockaddr_in target = {};
    target.sin_family = AF_INET;
    target.sin_port = htons(static_cast<uint16_t>(port));
    inet_pton(AF_INET, address.c_str(), &target.sin_addr);
    return Connects(reinterpret_cast<sockaddr*>(&target), sizeof target);
  }
  sockaddr_in6 target = {};
  target.sin6_family = AF_INET6;
  target.sin6_port = htons(static_cast<uint16_t>(port));
  inet_pton(AF_INET6, address.c_str(), &target.sin6_addr);
  return Connects(reinterpret_cast<sockaddr*>(&target), sizeof target);
}

std::string MakeOutputFile(int& fd) {
  std::string path = "/tmp/kvtbase-server-XXXXXX";
  fd = mkostemp(path.data(), O_CLOEXEC);
  if (fd < 0) throw std::runtime_error("cannot make " + path);
  return path;
}

}  // namespace

ServerProcess::ServerProcess(std::vector<std::string> command, int port,
                             const std::string& address) {
  // The server's own children become this process's when the server goes, so
  // that Kill can wait for them too.
  prctl(PR_SET_CHILD_SUBREAPER, 1);

  int output = -1;
  mOutputPath = MakeOutputFile(output);
  mPid = fork();
  if (mPid == 0) {
    setpgid(0, 0);
    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    Execute(command);
  }
  setpgid(mPid, mPid);
  close(output);

  const auto limit = std::chrono::steady_clock::now() + kStartLimit;
  while (!Listens(address, port)) {
    const bool ended = waitpid(mPid, nullptr, WNOHANG) == mPid;
    if (ended || std::chrono::steady_clock::now() > limit) {
      const std::string output = Output();
      if (ended) mPid = -1;
      Kill();
      unlink(mOutputPath.c_str());
      throw std::runtime_error(command[0] + " does not listen on port " +
                               std::to_string(port) + ":\n" + output);
    }
    std::this_thread::sleep_for(kPollInterval);
  }
}

ServerProcess::~ServerProcess() {
  Kill();
  unlink(mOutputPath.c_str());
}

void ServerProcess::Kill() {
  if (mPid <= 0) return;
  kill(-mPid, SIGKILL);
  while (waitpid(-mPid, nullptr, 0) > 0) continue;
  mPid = -1;
}

std::string ServerProcess::Output() const { return ReadFile(mOutputPath); }

int FreePort() {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  const bool bound =
      bind(fd, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
      getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) == 0;
  close(fd);
  if (!bound) throw std::runtime_error("no free port");
  return ntohs(address.sin_port);
}

int Run(const std::vector<std::string>& command) {
  const pid_t pid = fork();
  if (pid == 0) Execute(command);
  int status = 0;
  if (pid < 0 || waitpid(pid, &status, 0) != pid) {
    throw std::runtime_error("cannot run " + command[0]);
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
