/// Commands for the shell.

#ifndef KVT_FILE_SHELL_COMMAND_H
#define KVT_FILE_SHELL_COMMAND_H

#include <stdlib.h>

#include <string>

/// Runs `command` through system(3) and waits for its end.  Callers rely on its
/// outcome not mattering.
inline void RunInShell(const std::string& command) {
  [[maybe_unused]] const int status = system(command.c_str());
}

#endif  // KVT_FILE_SHELL_COMMAND_H
