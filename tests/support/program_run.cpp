#include "program_run.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

[[noreturn]] void Execute(const std::vector<std::string>& command,
                          const std::vector<std::string>& environment,
                          int output) {
  const int input = open("/dev/null", O_RDONLY);
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  for (const std::string& variable : environment) {
    putenv(const_cast<char*>(variable.c_str()));
  }
  std::vector<char*> arguments;
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  dprintf(STDERR_FILENO, "%s: %s\n", arguments[0], std::strerror(errno));
  _exit(127);
}

}  // namespace

bool operator==(const ProgramRun& a, const ProgramRun& b) {
  return a.status == b.status && a.output == b.output;
}

void PrintTo(const ProgramRun& run, std::ostream* out) {
  *out << "status " << run.status << ", output:\n" << run.output;
}

ProgramRun RunProgram(const std::vector<std::string>& command,
                      const std::vector<std::string>& environment) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const pid_t pid = fork();
  if (pid == 0) Execute(command, environment, ends[1]);
  close(ends[1]);

  ProgramRun run = {0, ""};
  char block[4096];
  for (;;) {
    const ssize_t count = read(ends[0], block, sizeof block);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    run.output.append(block, static_cast<std::size_t>(count));
  }
  close(ends[0]);
  int status = 0;
  if (pid < 0 || waitpid(pid, &status, 0) != pid) {
    throw std::runtime_error("cannot run " + command[0]);
  }
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return run;
}
