// Move completion: waits until the robot has reached a target, polling the
// position (or the running state) with queries of its own.

#include "api/ApiState.h"
#include "api/Extensions.h"
#include "api/qrx_host.h"

#include <QElapsedTimer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

using namespace qrx::api;

namespace {

constexpr int kPollMs = 50;
constexpr int kRunningJob = 2;

bool withinTolerance(const double *position, const double *target, double tolerance)
{
    for (int axis = 0; axis < 6; ++axis) {
        if (!(std::fabs(position[axis] - target[axis]) <= tolerance))
            return false;
    }
    return true;
}

} // namespace

extern "C" {

int qrx_wait_move_done(const double *target, int coord, double tolerance, int timeout_ms)
{
    if (!currentRobot())
        return -1;
    QElapsedTimer clock;
    clock.start();
    const auto remaining = [&] { return timeout_ms > 0 ? timeout_ms - int(clock.elapsed()) : 1 << 30; };
    for (;;) {
        bool reached = false;
        {
            // A silent controller must not hold the poll past the bound.
            const ScopedWaitBound bound(std::max(1, std::min(remaining(), 1 << 30)));
            if (target) {
                double position[6] = {};
                get_current_position(position, coord);
                reached = !qrx_last_call_timed_out() && withinTolerance(position, target, tolerance);
            } else {
                const int state = get_robot_running_state();
                reached = !qrx_last_call_timed_out() && state != kRunningJob;
            }
        }
        if (reached) {
            setLastCallTimedOut(false);
            return 1;
        }
        if (remaining() <= 0) {
            setLastCallTimedOut(true);
            return 0;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(std::min(kPollMs, remaining())));
    }
}

} // extern "C"
