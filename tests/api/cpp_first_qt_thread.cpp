// A host whose own thread used Qt first (it logged through a Qt category
// before any handle was opened, as qrx-bridge's broker thread does), so Qt
// takes that thread for its main thread; the thread then ends. Handles to
// an address where nothing listens are then opened and closed, beside live
// controllers, from several threads: every open must come back within its
// bound, and the live links must still be reported up; so must the default
// controller's, connected and disconnected twice after them. (Before the fix, the
// first failed open after the thread ended left the library's application
// thread deaf: the next open waited for it for ever.)
// qrx-sim --count 2 listens on the address given and the next one; nothing
// listens on the address 9 after it.
//
// Usage: cpp_first_qt_thread <first address>   (exit status 0 when every check held)

#include "qrx_host.h"
#include "host_checks.h"

#include <QLoggingCategory>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

Q_LOGGING_CATEGORY(lcHost, "host")

namespace {

constexpr int kRounds = 4;
constexpr int kOpenBoundMs = 300;

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: cpp_first_qt_thread <first address>\n");
        return 2;
    }
    // A hang is the fault looked for: the process ends itself, failed, after
    // a bound far beyond what the rounds take.
    std::thread([] {
        std::this_thread::sleep_for(std::chrono::seconds(20));
        std::fprintf(stderr, "an open or close never came back\n");
        std::_Exit(1);
    }).detach();

    // The host's thread that uses Qt first; it ends once the library runs.
    std::atomic<bool> logged{false};
    std::atomic<bool> libraryRuns{false};
    std::thread first([&] {
        qCInfo(lcHost, "the host's first Qt thread");
        logged = true;
        while (!libraryRuns)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    });
    while (!logged)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const std::string absent = nextAddress(argv[1], 9);
    qrxc_close(qrxc_open_within(absent.c_str(), 6001, kOpenBoundMs)); // the library's application starts
    libraryRuns = true;
    first.join();

    std::vector<std::thread> threads;
    for (unsigned n = 0; n < 2; ++n) {
        threads.emplace_back([&, live = nextAddress(argv[1], n)] {
            for (int round = 0; round < kRounds; ++round) {
                qrx_controller *c = qrxc_open_within(live.c_str(), 6001, 3000);
                if (!c || !qrxc_link_up(c)) {
                    std::fprintf(stderr, "round %d: %s did not open\n", round, live.c_str());
                    ++failures;
                }
                qrxc_close(c);
            }
        });
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                if (qrx_controller *c = qrxc_open_within(absent.c_str(), 6001, kOpenBoundMs)) {
                    std::fprintf(stderr, "round %d: %s opened, where nothing listens\n", round, absent.c_str());
                    ++failures;
                    qrxc_close(c);
                }
            }
        });
    }
    for (std::thread &t : threads)
        t.join();
    // The default controller's link, on a thread of its own, twice over.
    for (int round = 0; round < 2; ++round) {
        if (connect_robot(argv[1]) != 1) {
            std::fprintf(stderr, "round %d: connect_robot(%s) failed\n", round, argv[1]);
            ++failures;
        }
        disconnect_robot();
    }
    std::fprintf(stderr, "%d failure(s)\n", failures.load());
    return failures.load() == 0 ? 0 : 1;
}
