#pragma once
// Exit status of qrx and the one way a subcommand reports that it failed:
// throw Failure; main() prints the message on standard error and exits with
// its status.

#include <string>

namespace qrxcli {

enum ExitStatus : int {
    ExitOk = 0,
    ExitFailed = 1,       // anything else (a file that cannot be read, ...)
    ExitUsage = 2,        // bad command line
    ExitNotConnected = 3, // no controller answered at the address
    ExitRefused = 4,      // the controller (or its reported state) refused the command
    ExitTimedOut = 5,     // a wait ran past --timeout
};

struct Failure
{
    ExitStatus status;
    std::string message;
};

[[noreturn]] inline void fail(ExitStatus status, std::string message)
{
    throw Failure{status, std::move(message)};
}

} // namespace qrxcli
