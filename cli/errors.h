// What ends a command early, and the exit status that it becomes.
// SPDX-License-Identifier: MIT
#pragma once

#include <exception>
#include <stdexcept>
#include <string>

namespace hearth_cli {

enum ExitStatus : int {
    esDone = 0,
    esRefused = 1, // the library refused the input
    esUsage = 2, // the command line is wrong
    esFile = 3, // a file or address cannot be read or written
};

/// The command line asks for what is not possible, seen only when the command runs.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The input is refused for a reason that the command knows better than the library.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// There is no input and a person at the terminal: the command shows its help instead of waiting.
class HelpWanted : public std::exception { };

/// A file or address cannot be read or written.
class FileError : public std::runtime_error {
public:
    /// `error` is a number of errno.
    FileError(const std::string& place, int error);
    FileError(const std::string& place, const std::string& message);
};

/// Prints the exception being handled on standard error and returns the status to end with. Call in a catch
/// block.
int ReportException() noexcept;

}
