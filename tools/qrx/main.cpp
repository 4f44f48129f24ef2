// qrx: commissioning a robot controller from a terminal, through the
// exported functions of qrx_host.

#include "Bound.h"
#include "Commands.h"
#include "Link.h"
#include "Report.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>

using namespace qrxcli;

namespace {

const char *kGlobalOptions =
    "Options for every command:\n"
    "  --host ADDRESS     the controller's IP address (default: $QRX_HOST)\n"
    "  --timeout SECONDS  bound on the connect and every wait for the controller (default 5)\n"
    "  --json             print results as one JSON object per line\n"
    "  --verbose          let the library's log lines through to standard error\n"
    "  --help             this text, or a command's (qrx COMMAND --help)\n"
    "\n"
    "Exit status: 0 success, 1 other failure, 2 bad command line, 3 not connected,\n"
    "4 refused by the controller, 5 timed out. Errors go to standard error.\n";

void printOverview()
{
    std::cout << "usage: qrx [options] COMMAND [arguments]\n\n"
                 "Drives a robot controller over its network link, one command at a time.\n\n"
                 "Commands:\n";
    for (const Command &c : commands())
        std::printf("  %-8s %s\n", c.name, c.summary);
    std::cout << "\n" << kGlobalOptions;
}

void printCommandHelp(const Command &c)
{
    std::cout << "usage: qrx " << c.synopsis << "\n\n" << c.summary << ".\n" << c.details << "\n" << kGlobalOptions;
}

struct Global
{
    std::string host;
    double timeout = 5.0;
    bool json = false;
    bool verbose = false;
    bool help = false;
    std::string command;
    std::vector<std::string> words;
};

// Global options may stand anywhere; everything else belongs to the command.
Global parseGlobal(int argc, char **argv)
{
    Global g;
    if (const char *env = std::getenv("QRX_HOST"))
        g.host = env;
    for (int i = 1; i < argc; ++i) {
        const std::string w = argv[i];
        auto value = [&](const char *name) {
            if (i + 1 >= argc)
                fail(ExitUsage, std::string(name) + " needs a value");
            return std::string(argv[++i]);
        };
        if (w == "--host")
            g.host = value("--host");
        else if (w.compare(0, 7, "--host=") == 0)
            g.host = w.substr(7);
        else if (w == "--timeout")
            g.timeout = Args::toNumber(value("--timeout"), "--timeout");
        else if (w.compare(0, 10, "--timeout=") == 0)
            g.timeout = Args::toNumber(w.substr(10), "--timeout");
        else if (w == "--json")
            g.json = true;
        else if (w == "--verbose")
            g.verbose = true;
        else if (w == "--help" || w == "-h")
            g.help = true;
        else if (g.command.empty() && w != "help")
            g.command = w;
        else if (g.command.empty())
            g.help = true;
        else
            g.words.push_back(w);
    }
    if (g.timeout <= 0.0 || g.timeout > 3600.0)
        fail(ExitUsage, "--timeout must be more than 0 and at most 3600 seconds");
    return g;
}

int run(int argc, char **argv)
{
    const Global g = parseGlobal(argc, argv);
    const Command *command = g.command.empty() ? nullptr : findCommand(g.command);
    if (!g.command.empty() && !command)
        fail(ExitUsage, "unknown command \"" + g.command + "\"; see qrx --help");
    if (g.help || !command) {
        if (command)
            printCommandHelp(*command);
        else
            printOverview();
        return g.help ? ExitOk : ExitUsage;
    }

    const Args args = Args::parse(g.words, command->valueOptions, command->flags);
    setJsonOutput(g.json);
    setWaitBound(std::chrono::milliseconds(long(g.timeout * 1000.0)));
    // The library logs every call at debug level; a terminal user sees
    // only qrx's own lines unless asked (QT_LOGGING_RULES set by the user
    // wins).
    if (!g.verbose)
        setenv("QT_LOGGING_RULES", "*.debug=false;*.info=false", 0);

    // Each command connects once its arguments are checked (goOnline).
    setHost(g.host);
    command->run(args);
    disconnectLink();
    return ExitOk;
}

} // namespace

int main(int argc, char **argv)
{
    try {
        return run(argc, argv);
    } catch (const Failure &failure) {
        std::cout.flush();
        std::cerr << "qrx: " << failure.message << std::endl;
        // A wait that ran out leaves a thread blocked inside the library:
        // end without running exit handlers that could wait for it.
        if (failure.status == ExitTimedOut || failure.status == ExitNotConnected) {
            std::fflush(nullptr);
            std::_Exit(failure.status);
        }
        if (failure.status != ExitUsage)
            disconnectLink();
        return failure.status;
    }
}
