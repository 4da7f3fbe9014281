/// A server that a test starts on loopback and stops by its process id.

#ifndef KVT_TESTS_SERVER_PROCESS_H
#define KVT_TESTS_SERVER_PROCESS_H

#include <sys/types.h>

#include <string>
#include <vector>

/// A child process in a process group of its own.  Its output goes to a file
/// whose text the errors quote.
class ServerProcess {
 public:
  /// Starts `command` (searched on PATH, the sbin folders included) and waits
  /// until something listens on TCP `port` of 127.0.0.1, or of ::1 where
  /// `address` says so.  Throws with the server's output when it ends first or
  /// nothing listens within ten seconds.
  ServerProcess(std::vector<std::string> command, int port,
                const std::string& address = "127.0.0.1");

  /// Kills the whole process group and waits for it.
  ~ServerProcess();

  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  pid_t Pid() const { return mPid; }

  /// Kills the process group now (SIGKILL), as a crash would.  None of its
  /// processes is left, and its connections are closed, on return.
  void Kill();

  /// What the server wrote to its standard output and standard error so far.
  std::string Output() const;

 private:
  pid_t mPid;
  std::string mOutputPath;
};

/// A TCP port of loopback on which nothing listens just now.
int FreePort();

/// Runs `command` to its end and returns its exit status; throws when it cannot
/// be started.  Its output goes where the test's goes.
int Run(const std::vector<std::string>& command);

#endif  // KVT_TESTS_SERVER_PROCESS_H
