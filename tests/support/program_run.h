/// A program that a test runs to its end.

#ifndef KVT_TESTS_PROGRAM_RUN_H
#define KVT_TESTS_PROGRAM_RUN_H

#include <ostream>
#include <string>
#include <vector>

struct ProgramRun {
  /// The exit status, or 128 and the number of the signal that ended it.
  int status;
  /// What it wrote to its standard output and standard error, in that order
  /// in time.
  std::string output;
};
bool operator==(const ProgramRun& a, const ProgramRun& b);
void PrintTo(const ProgramRun& run, std::ostream* out);

/// Runs `command` (searched on PATH) with an empty standard input, and with
/// `environment`, of the form NAME=value, added to this process's.  A program
/// that cannot be started gives the status 127 and the reason.
ProgramRun RunProgram(const std::vector<std::string>& command,
                      const std::vector<std::string>& environment = {});

#endif  // KVT_TESTS_PROGRAM_RUN_H
