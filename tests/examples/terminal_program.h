/// A program at a terminal that the test sits at.

#ifndef KVT_TESTS_TERMINAL_PROGRAM_H
#define KVT_TESTS_TERMINAL_PROGRAM_H

#include <sys/types.h>

#include <string>
#include <vector>

/// Runs `command` with a new terminal as its standard input, output and error
/// and as the one that /dev/tty names.
class TerminalProgram {
 public:
  explicit TerminalProgram(const std::vector<std::string>& command);
  ~TerminalProgram();
  TerminalProgram(const TerminalProgram&) = delete;
  TerminalProgram& operator=(const TerminalProgram&) = delete;

  /// Waits until the terminal shows `text`, counted from what an earlier call
  /// waited for; throws after ten seconds or when the program has ended.
  void WaitFor(const std::string& text);

  /// Types; control characters have the effect that they have at a terminal.
  void Type(const std::string& keys);

  /// Whether the terminal shows what is typed.
  bool Echoes() const;

  /// Waits for the end and returns the exit status, or 128 and the number of
  /// the signal that ended the program.
  int Wait();

  /// All that the terminal has shown.
  const std::string& Screen() const { return mScreen; }

 private:
  // False at the end of the output.
  bool ReadMore();

  int mTerminal;
  pid_t mPid;
  std::string mScreen;
  std::size_t mSeen = 0;
};

#endif  // KVT_TESTS_TERMINAL_PROGRAM_H
