#pragma once

#include <string>

/// How a command of the shell ended.
struct CommandResult {
    int status;         // exit status; -1 when it did not exit by itself
    std::string output; // standard output and standard error
};

/// Runs `command` in the shell and waits for it.
CommandResult runCommand(const std::string& command);

/// `text` as one word of the shell.
std::string quoted(const std::string& text);
