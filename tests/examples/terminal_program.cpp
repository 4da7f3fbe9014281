#include "terminal_program.h"

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>

TerminalProgram::TerminalProgram(const std::vector<std::string>& command) {
  mPid = forkpty(&mTerminal, nullptr, nullptr, nullptr);
  if (mPid < 0) throw std::runtime_error("no terminal");
  if (mPid > 0) return;
  std::vector<char*> arguments;
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

TerminalProgram::~TerminalProgram() {
  if (mPid > 0) {
    kill(mPid, SIGKILL);
    waitpid(mPid, nullptr, 0);
  }
  close(mTerminal);
}

bool TerminalProgram::ReadMore() {
  pollfd wait = {mTerminal, POLLIN, 0};
  if (poll(&wait, 1, 10000) != 1) {
    throw std::runtime_error("nothing came for ten seconds after: " + mScreen);
  }
  char block[4096];
  const ssize_t count = read(mTerminal, block, sizeof block);
  // The terminal of a program that has ended gives EIO.
  if (count <= 0) return false;
  mScreen.append(block, static_cast<std::size_t>(count));
  return true;
}

void TerminalProgram::WaitFor(const std::string& text) {
  std::size_t place;
  while ((place = mScreen.find(text, mSeen)) == std::string::npos) {
    if (!ReadMore()) {
      throw std::runtime_error("ended without " + text + ": " + mScreen);
    }
  }
  mSeen = place + text.size();
}

void TerminalProgram::Type(const std::string& keys) {
  if (write(mTerminal, keys.data(), keys.size()) !=
      static_cast<ssize_t>(keys.size())) {
    throw std::runtime_error("cannot type");
  }
}

bool TerminalProgram::Echoes() const {
  termios settings;
  if (tcgetattr(mTerminal, &settings) != 0) {
    throw std::runtime_error("no settings of the terminal");
  }
  return (settings.c_lflag & ECHO) != 0;
}

int TerminalProgram::Wait() {
  while (ReadMore()) {
  }
  int status = 0;
  waitpid(mPid, &status, 0);
  mPid = 0;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
