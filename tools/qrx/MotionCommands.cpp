// jog and move: motion that qrx watches until it is over.

#include "Bound.h"
#include "Commands.h"
#include "Controller.h"
#include "Link.h"
#include "qrx_host.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

namespace qrxcli {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kPollPause{50};

void showPosition(const char *key, const std::array<double, 6> &pos)
{
    Report report;
    report.numbers(key, toVector(pos.data(), pos.size()));
    print(report);
}

double farthest(const std::array<double, 6> &a, const std::array<double, 6> &b)
{
    double d = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i)
        d = std::max(d, std::fabs(a[i] - b[i]));
    return d;
}

} // namespace

void runJog(const Args &args)
{
    args.expect(2, 2, "jog AXIS +|- [--for SECONDS]");
    const long axis = Args::toInteger(args.word(0, "AXIS"), "AXIS");
    if (axis < 1 || axis > 7)
        fail(ExitUsage, "AXIS must be 1..7");
    const std::string &sign = args.word(1, "direction");
    if (sign != "+" && sign != "-")
        fail(ExitUsage, "the direction must be + or -");
    const double seconds = args.number("for", 1.0);
    if (seconds <= 0.0 || seconds > 60.0)
        fail(ExitUsage, "--for must be more than 0 and at most 60 seconds");

    goOnline();
    const int servo = readServo();
    if (servo != kServoRunning)
        fail(ExitRefused, "refused: the servo is not running (" + nameOf(servo, servoNames()) + "); try \"qrx servo on\"");
    expectAnswer();
    start_jogging(int(axis), sign == "+");
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    stop_jogging(int(axis));
    settle();
    failIfRefused();
    showPosition("joints", readPosition(0));
}

void runMove(const Args &args)
{
    const char *synopsis = "move joint|linear X1 .. X6 [options]";
    args.expect(7, 7, synopsis);
    const bool linear = choice(args.word(0, "joint or linear"), {"joint", "linear"}, "the move") == 1;
    std::array<double, 6> target{};
    for (std::size_t i = 0; i < target.size(); ++i)
        target[i] = Args::toNumber(args.word(i + 1, "a target value"), "a target value");
    const int speed = int(args.number("speed", 20));
    const int coord = args.has("coord") ? int(choice(args.option("coord", ""), coordNames(), "--coord")) : (linear ? 1 : 0);
    const int acc = int(args.number("acc", 50));
    const int dec = int(args.number("dec", 50));
    const double tolerance = args.number("tolerance", 0.01);
    if (speed < 1 || speed > 100 || acc < 1 || acc > 100 || dec < 1 || dec > 100)
        fail(ExitUsage, "--speed, --acc and --dec must be 1..100");

    goOnline();
    expectAnswer();
    std::array<double, 6> pos = target;
    if (linear)
        robot_movl(pos.data(), speed, coord, acc, dec);
    else
        robot_movj(pos.data(), speed, coord, acc, dec);
    // A refused move ends here, as soon as the controller says so.
    settle();
    failIfRefused();
    if (args.has("no-wait"))
        return;
    // Arrival: every axis within the tolerance. The bound applies to a
    // robot that stops moving short of the target, not to a long move.
    std::array<double, 6> last = readPosition(coord);
    Clock::time_point lastProgress = Clock::now();
    while (farthest(last, target) > tolerance) {
        failIfRefused();
        if (Clock::now() - lastProgress > waitBound())
            fail(ExitTimedOut, "timed out: the robot stopped " + formatNumber(farthest(last, target)) +
                                   " short of the target");
        std::this_thread::sleep_for(kPollPause);
        const std::array<double, 6> now = readPosition(coord);
        if (farthest(now, last) > 1e-9)
            lastProgress = Clock::now();
        last = now;
    }
    showPosition(linear ? "position" : "joints", last);
}

} // namespace qrxcli
