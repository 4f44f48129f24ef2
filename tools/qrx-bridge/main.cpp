// qrx-bridge: the controllers of a cell on an MQTT broker.

#include "Bridge.h"
#include "BridgeLogging.h"
#include "Options.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <pthread.h>
#include <sstream>
#include <systemd/sd-daemon.h>
#include <thread>

namespace {

bool readFile(const std::string &path, std::string &text)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return true;
}

// The password is the file's first line.
bool readPassword(const std::string &path, std::string &password)
{
    std::string text;
    if (!readFile(path, text))
        return false;
    password = text.substr(0, text.find_first_of("\r\n"));
    return true;
}

// Systemd's watchdog, when the unit has WatchdogSec: a ping at most every
// half of its period.
class Watchdog
{
public:
    Watchdog()
    {
        uint64_t usec = 0;
        if (sd_watchdog_enabled(0, &usec) > 0)
            m_every = std::chrono::microseconds(usec / 2);
    }
    void tick()
    {
        const auto now = std::chrono::steady_clock::now();
        if (m_every.count() > 0 && now >= m_next) {
            sd_notify(0, "WATCHDOG=1");
            m_next = now + m_every;
        }
    }

private:
    std::chrono::microseconds m_every{0};
    std::chrono::steady_clock::time_point m_next;
};

} // namespace

int main(int argc, char **argv)
{
    using namespace qrxbridge;
    const ParsedOptions parsed = parseOptions(std::vector<std::string>(argv + 1, argv + argc), readFile);
    if (parsed.help) {
        std::cout << helpText();
        return 0;
    }
    if (!parsed.error.empty()) {
        std::cerr << "qrx-bridge: " << parsed.error << '\n';
        return 2;
    }
    std::string password;
    if (!parsed.options.passwordFile.empty() && !readPassword(parsed.options.passwordFile, password)) {
        std::cerr << "qrx-bridge: cannot read the password file " << parsed.options.passwordFile << '\n';
        return 2;
    }

    // SIGINT and SIGTERM are taken by one thread of their own; every other
    // thread (the library's, libmosquitto's) starts with them blocked.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    Bridge bridge(parsed.options, password);
    std::string error;
    if (!bridge.start(error)) {
        std::cerr << "qrx-bridge: " << error << '\n';
        return 1;
    }
    std::thread signalWaiter([&] {
        int signal = 0;
        sigwait(&stopSignals, &signal);
        qCInfo(lcBridge, "signal %d: stopping", signal);
        bridge.stop();
    });
    sd_notify(0, "READY=1");
    Watchdog watchdog;
    bridge.run([&] { watchdog.tick(); });
    sd_notify(0, "STOPPING=1");
    // A controller call that never returns must not keep the process from
    // ending: the goodbye is out, the rest gets a few seconds.
    std::thread([] {
        std::this_thread::sleep_for(std::chrono::seconds(5));
        qCWarning(lcBridge, "a controller did not let go within 5 s; leaving without it");
        std::_Exit(0);
    }).detach();
    signalWaiter.join();
    return 0;
}
