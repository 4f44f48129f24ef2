// A C++ host through qrx_host.hpp: connects with a bound on every call,
// watches the link, sees a move refused while the drives are off, powers
// the drives, moves and waits for the move to end, sets and reads a digital
// output, then disconnects (the Connection's destructor). Exit status 0
// when every step did what it should.
//
// Usage: qrx-cpp-host [--port N] [controller-address]

#include "qrx_host.hpp"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <thread>

using namespace std::chrono_literals;

namespace {

// Asks again until check() holds or the time runs out (the controller takes
// a moment to carry out a command).
template <class Check>
bool within(std::chrono::milliseconds limit, Check check)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (std::chrono::steady_clock::now() < deadline) {
        if (check())
            return true;
        std::this_thread::sleep_for(50ms);
    }
    return false;
}

void print(const char *label, const qrx::Axes &axes)
{
    std::cout << label;
    for (const double v : axes)
        std::cout << ' ' << std::fixed << std::setprecision(3) << v;
    std::cout << '\n';
}

} // namespace

int main(int argc, char **argv)
{
    int port = 6001;
    const char *address = "127.0.0.1";
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--port") == 0 && i + 1 < argc)
            port = std::atoi(argv[++i]);
        else
            address = argv[i];
    }
    if (!std::getenv("QT_LOGGING_RULES"))
        setenv("QT_LOGGING_RULES", "qrx.*.debug=false", 1);

    std::atomic<int> drops{0}; // outlives the Connection that reports to it
    try {
        qrx::Connection robot(address, 5s, port);
        robot.onLinkEvent([&drops](qrx::LinkEvent event, qrx::LinkReason) {
            if (event == qrx::LinkEvent::Dropped)
                ++drops;
        });
        robot.setMatchedReplies(true);
        std::cout << "connected to " << address << ':' << port << '\n';

        robot.setMode(qrx::Mode::Teach);
        const qrx::Axes target{20.0, 10.0, -5.0, 0.0, 30.0, 45.0};
        // The drives are off: the controller refuses the move, the call throws.
        try {
            robot.movj(target, 50, qrx::Coord::Joint, 50, 50);
            std::cerr << "FAILED: a move with the drives off was not refused\n";
            return 1;
        } catch (const qrx::Refused &e) {
            std::cout << "refused (command 0x" << std::hex << e.command() << std::dec << "): " << e.what() << '\n';
        }
        // powerOn() reports the first servo state that reaches the host after
        // the command; a state the controller sent before it saw the command
        // (its report to a newly connected host, say) can be that one. The
        // drives are up once the state reads Running.
        robot.powerOn();
        if (!within(5s, [&] { return robot.servoState() == qrx::ServoState::Running; })) {
            std::cerr << "FAILED: the drives did not come up\n";
            return 1;
        }
        std::cout << "drives running, mode " << int(robot.mode()) << '\n';

        robot.movj(target, 50, qrx::Coord::Joint, 50, 50);
        robot.waitMoveDone(target, qrx::Coord::Joint, 1e-3, 20s);
        print("arrived at", robot.position(qrx::Coord::Joint));

        robot.setDout(2, true);
        if (!within(3s, [&] { return robot.dout()[1] == 1.0; })) {
            std::cerr << "FAILED: digital output 2 not set\n";
            return 1;
        }
        std::cout << "digital output 2 set\n";
        robot.powerOff();
        std::cout << "link drops seen: " << drops.load() << '\n';
        std::cout << "last controller message: " << robot.lastMessage() << '\n';
    } catch (const qrx::ConnectionRefused &e) {
        std::cerr << "FAILED: " << e.what() << '\n';
        return 1;
    } catch (const qrx::Error &e) { // TimedOut, Refused
        std::cerr << "FAILED: " << e.what() << '\n';
        return 1;
    }
    std::cout << "cpp_host: all steps done\n";
    return 0;
}
