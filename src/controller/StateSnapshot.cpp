#include "controller/StateSnapshot.h"

#include "robot/Robot.h"

#include <algorithm>
#include <cstring>
#include <mutex>

namespace qrx {

StateSnapshot snapshotOf(const Robot &robot)
{
    StateSnapshot s;
    s.link = robot.connected.load();
    s.servo = robot.servoStatus.load();
    s.mode = robot.operationMode.load();
    s.coord = robot.coordinate.load();
    s.speed = robot.speed.load();
    s.running = robot.runningStatus.load();
    s.line = robot.currentRunLine.load();
    s.tool = robot.currentTool.load();
    s.type = robot.robotType.load();
    std::lock_guard<std::recursive_mutex> lock(robot.cacheMutex);
    std::copy(robot.jointPosition, robot.jointPosition + 6, s.joints);
    std::copy(robot.cartesianPosition, robot.cartesianPosition + 6, s.cartesian);
    return s;
}

bool stateChanged(const Robot &robot, StateSnapshot &last)
{
    const StateSnapshot now = snapshotOf(robot);
    // Plain members only: a byte comparison is a member comparison.
    if (std::memcmp(&now, &last, sizeof now) == 0)
        return false;
    last = now;
    return true;
}

} // namespace qrx
