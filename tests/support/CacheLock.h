#pragma once
// Reads or presets a Robot's cached values the way its handlers write them:
// under the cache lock, so that a test thread and the link thread never
// touch a cache field at the same time.
//   withCache(robot, [&] { robot->servoStatus = 9; });
//   QTRY_COMPARE(withCache(robot, [&] { return robot->currentPosition[5]; }), 6.0);

#include "robot/RobotState.h"

#include <mutex>

template <class F>
auto withCache(const qrx::RobotState *robot, F f)
{
    std::lock_guard<std::recursive_mutex> lock(robot->cacheMutex);
    return f();
}
