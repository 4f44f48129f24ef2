// servo, mode, coord, speed, tool: show a value, or set it and wait until
// the controller reports it.

#include "Bound.h"
#include "Commands.h"
#include "Controller.h"
#include "Link.h"
#include "qrx_host.h"

#include <chrono>
#include <thread>

namespace qrxcli {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kPollPause{50};

void show(const char *key, long value, const std::vector<std::string> &names)
{
    Report report;
    if (names.empty())
        report.integer(key, value);
    else
        report.coded(key, value, nameOf(value, names));
    print(report);
}

// "mode", "coord", "speed" and "tool" share one shape.
void showOrSet(const Args &args, const char *key, const char *synopsis, const std::vector<std::string> &names,
               long minimum, long maximum, const std::function<int()> &read, void (*set)(int))
{
    args.expect(0, 1, synopsis);
    if (args.count() == 0) {
        goOnline();
        show(key, read(), names);
        return;
    }
    const std::string &word = args.word(0, key);
    const long want = names.empty() ? Args::toInteger(word, key) : choice(word, names, key);
    if (want < minimum || want > maximum)
        fail(ExitUsage, std::string(key) + " must be " + std::to_string(minimum) + ".." + std::to_string(maximum));
    goOnline();
    setAndConfirm(key, [set, want] { set(int(want)); }, read, int(want));
    show(key, want, names);
}

} // namespace

void setAndConfirm(const std::string &what, const std::function<void()> &send, const std::function<int()> &read,
                   int want)
{
    expectAnswer();
    send();
    settle();
    failIfRefused();
    const Clock::time_point deadline = Clock::now() + waitBound();
    for (;;) {
        const int value = read();
        if (value == want)
            return;
        failIfRefused();
        if (Clock::now() > deadline)
            fail(ExitRefused, "refused by the controller: " + what + " stayed at " + std::to_string(value));
        std::this_thread::sleep_for(kPollPause);
    }
}

void sendChecked(const std::function<void()> &send)
{
    expectAnswer();
    send();
    settle();
    failIfRefused();
}

void runServo(const Args &args)
{
    args.expect(1, 1, "servo on|off");
    const bool on = choice(args.word(0, "on or off"), {"off", "on"}, "servo") == 1;
    goOnline();
    if (on) {
        setAndConfirm("the servo", [] { bounded<int>("the servo", [] { return servo_power_on(); }); }, readServo,
                      kServoRunning);
    } else {
        expectAnswer();
        boundedCall("the servo", [] { servo_power_off(); });
        const Clock::time_point deadline = Clock::now() + waitBound();
        while (readServo() == kServoRunning) {
            failIfRefused();
            if (Clock::now() > deadline)
                fail(ExitRefused, "refused by the controller: the drives kept running");
            std::this_thread::sleep_for(kPollPause);
        }
    }
    const int servo = get_servo_state();
    show("servo", servo, servoNames());
}

void runMode(const Args &args)
{
    showOrSet(args, "mode", "mode [teach|remote|run]", modeNames(), 0, 2, readMode, set_current_mode);
}

void runCoord(const Args &args)
{
    showOrSet(args, "coord", "coord [joint|cartesian|tool|user]", coordNames(), 0, 3, readCoord, set_current_coord);
}

void runSpeed(const Args &args)
{
    showOrSet(args, "speed", "speed [PERCENT]", {}, 0, 103, readSpeed, set_jogging_speed);
}

void runTool(const Args &args)
{
    showOrSet(args, "tool", "tool [NUMBER]", {}, 0, 31, readTool, switch_tool_hand);
}

} // namespace qrxcli
