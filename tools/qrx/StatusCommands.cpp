// status and watch.

#include "Commands.h"
#include "Controller.h"
#include "Exit.h"
#include "Link.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <iostream>
#include <thread>
#include <unistd.h>

namespace qrxcli {

namespace {

std::atomic<bool> g_stop{false};

void onStopSignal(int)
{
    g_stop = true;
}

} // namespace

void runStatus(const Args &args)
{
    args.expect(0, 0, "status");
    goOnline();
    print(statusReport());
}

void runWatch(const Args &args)
{
    args.expect(0, 0, "watch [--interval SECONDS]");
    const double interval = args.number("interval", 1.0);
    if (interval < 0.05 || interval > 3600.0)
        fail(ExitUsage, "--interval must be 0.05..3600 seconds");
    goOnline();
    std::signal(SIGINT, onStopSignal);
    std::signal(SIGTERM, onStopSignal);
    const bool inPlace = !jsonOutput() && ::isatty(STDOUT_FILENO);
    bool first = true;
    while (!g_stop) {
        const Report report = statusReport();
        if (inPlace)
            std::cout << "\033[H\033[2J"; // home, clear screen
        else if (!first && !jsonOutput())
            std::cout << "\n";
        print(report);
        first = false;
        // Sleep in small steps so that Ctrl-C ends the wait at once.
        const auto until = std::chrono::steady_clock::now() + std::chrono::duration<double>(interval);
        while (!g_stop && std::chrono::steady_clock::now() < until)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

} // namespace qrxcli
