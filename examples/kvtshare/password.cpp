#include "password.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

std::string FirstLine(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  if (!file) {
    throw std::runtime_error("cannot read the password file " + path + ": " +
                             std::strerror(errno));
  }
  std::getline(file, line);
  if (file.bad())
    throw std::runtime_error("cannot read the password file " + path);
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

// The signals that end or stop a program at its terminal.
constexpr int kSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTSTP};

volatile sig_atomic_t gPending = 0;

void Note(int signal) { gPending = signal; }

// The terminal without echo, for as long as the object lives.  Signals that
// come meanwhile are only noted, and only while Read waits: so none can end the
// program with the echo still off.
class SilentTerminal {
 public:
  SilentTerminal()
      : mDescriptor(open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (mDescriptor < 0 || tcgetattr(mDescriptor, &mSettings) != 0) {
      if (mDescriptor >= 0) close(mDescriptor);
      throw std::runtime_error(
          "no terminal to ask for the password on: use --password-file or "
          "--password-env");
    }
    gPending = 0;
    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int signal : kSignals) sigaddset(&blocked, signal);
    sigprocmask(SIG_BLOCK, &blocked, &mMask);
    struct sigaction note = {};
    note.sa_handler = Note;
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
      sigaction(kSignals[i], nullptr, &mActions[i]);
      // What the caller ignores, nohup for one, stays ignored.
      if (mActions[i].sa_handler != SIG_IGN)
        sigaction(kSignals[i], &note, nullptr);
    }
    termios silent = mSettings;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
    tcsetattr(mDescriptor, TCSAFLUSH, &silent);
  }

  ~SilentTerminal() {
    tcsetattr(mDescriptor, TCSAFLUSH, &mSettings);
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
      sigaction(kSignals[i], &mActions[i], nullptr);
    }
    sigprocmask(SIG_SETMASK, &mMask, nullptr);
    close(mDescriptor);
  }

  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

  void Write(const std::string& text) {
    // A prompt that does not show is no reason to give up.
    [[maybe_unused]] const ssize_t written =
        write(mDescriptor, text.data(), text.size());
  }

  // Reads one line into `line`.  Returns the number of the signal that came
  // first, or 0.
  int Read(std::string& line) {
    for (;;) {
      pollfd wait = {mDescriptor, POLLIN, 0};
      const int ready = ppoll(&wait, 1, nullptr, &mMask);
      if (gPending != 0) return gPending;
      if (ready < 0 && errno == EINTR) continue;
      char c;
      if (read(mDescriptor, &c, 1) != 1) {
        throw std::runtime_error("the terminal gave no password");
      }
      if (c == '\n') return 0;
      line += c;
    }
  }

 private:
  int mDescriptor;
  termios mSettings;
  sigset_t mMask;
  struct sigaction mActions[std::size(kSignals)];
};

std::string AskForPassword(const std::string& prompt) {
  for (;;) {
    std::string line;
    int signal;
    {
      SilentTerminal terminal;
      terminal.Write(prompt);
      signal = terminal.Read(line);
      terminal.Write("\n");
    }
    if (signal == 0) return line;
    // With the terminal as it was, the signal does what it does; after a stop
    // the question comes again.
    raise(signal);
  }
}

}  // namespace

std::string GetPassword(const PasswordSource& source,
                        const std::string& prompt) {
  if (!source.file.empty()) return FirstLine(source.file);
  if (!source.variable.empty()) {
    const char* value = std::getenv(source.variable.c_str());
    if (value == nullptr) {
      throw std::runtime_error("the environment has no variable " +
                               source.variable);
    }
    return value;
  }
  return AskForPassword(prompt);
}
