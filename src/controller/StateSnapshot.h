#pragma once
// The state of a controller at a glance: the link and the values the
// controller last reported, copied out of a Robot's caches in one go. The
// host sees it as qrx_state (the same members in the same order).

class Robot;

namespace qrx {

struct StateSnapshot
{
    int link = 0;
    int servo = 0, mode = 0, coord = 0, speed = 0, running = 0, line = 0, tool = 0, type = 0;
    double joints[6] = {};
    double cartesian[6] = {};
};

// The Robot's state now (link: the Robot's own connected flag).
StateSnapshot snapshotOf(const Robot &robot);

// Takes the Robot's state into last; true when it differs from what last held.
bool stateChanged(const Robot &robot, StateSnapshot &last);

} // namespace qrx
