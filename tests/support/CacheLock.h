#pragma once
// Reads or presets a Robot's cached values the way its handlers write them:
// under the cache lock, so that a test thread and the link thread never
// touch a cache field at the same time.
//   withCache([&] { robot->servoStatus = 9; });
//   QTRY_COMPARE(withCache([&] { return robot->currentPosition[5]; }), 6.0);

#include "robot/RobotState.h"

#include <mutex>

template <class F>
auto withCache(F f)
{
    std::lock_guard<std::recursive_mutex> lock(qrx::cacheMutex());
    return f();
}
