// Moves, jogging and the drives of the simulated controller.
//
// Moves 0x4501..0x4509 queue their target points; every tick the axes travel
// toward the next point on a straight line in axis space, all axes arriving
// together, at the commanded "vel" percent of the axes' full speed (the
// slowest axis sets the time, SimMotion::robotFullSpeed). The
// move frames are answered with nothing; a host watches the position
// (0x2F07 / 0x2A02). Circles pass through their three points (a full circle
// returns to the first one); the simulator has no kinematics.
//
// Jogging: each 0x2901 {"axis","direction"} keeps the axis moving for
// SimMotion::jogHoldMs at the jog speed (0x2601 percent of maxJogSpeed), so
// the axis moves for as long as the host's steps keep coming; with the
// jog-step speeds 101..103 each frame moves it once by 0.1, 0.01 or 0.001.
// 0x2902 stops it at once. Axes 8..12 are the synchronous axes 1..5.
//
// Drives: servo state 1 with deadman power on becomes 3 (running) after
// SimMotion::driveEngageMs; deadman power off turns 3 back into 1 and stops
// every motion. Both changes are reported with 0x2003 to every client.
//
// Refusals (error 0x2B03, nothing changes): moves and jog steps while the
// servo is not running or while the continuous-motion queue is active; jog
// steps outside teach mode or beyond an axis limit; moves with a speed,
// acceleration, deceleration or coordinate system outside its range, or a
// point outside the axis limits (sim/Ranges.h). Jogging stops at a limit.

#include "sim/Session.h"
#include "sim/Simulator.h"
#include "sim/commands/Families.h"
#include "sim/commands/Refusal.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace qrxsim {

namespace {

constexpr int kServoReady = 1;
constexpr int kServoRunning = 3;
constexpr int kTeachMode = 0;

// A point of n values: the robot's six axes, then (n = 12) the synchronous
// axes; what a point leaves out stays as it is at `from`.
bool readPoint(const Json::Value &array, int n, const SimWaypoint &from, SimWaypoint &out)
{
    if (!array.isArray() || int(array.size()) < n)
        return false;
    out = from;
    for (int i = 0; i < 6; ++i)
        out.robot[i] = array[i].asDouble();
    for (int i = 6; i < n && i - 6 < 5; ++i)
        out.sync[i - 6] = array[i].asDouble();
    return true;
}

// The points of one move request, in travel order.
bool pointsOf(quint16 code, const Json::Value &request, const SimWaypoint &start, std::vector<SimWaypoint> &points)
{
    const bool extra = code >= code::MoveJointExtra;
    const int n = extra ? 12 : 6;
    SimWaypoint last = start;
    auto add = [&](const Json::Value &array) {
        SimWaypoint p;
        if (!readPoint(array, n, last, p))
            return false;
        points.push_back(p);
        last = p;
        return true;
    };
    switch (code) {
    case code::MoveJoint: case code::MoveLinear: case code::MoveJointExtra: case code::MoveLinearExtra:
        return add(request["pos"]);
    case code::MoveCircle: case code::MoveCircleExtra:
        if (!add(request["posOne"]) || !add(request["posTwo"]) || !add(request["posThree"]))
            return false;
        if (request.get("isFull", false).asBool())
            points.push_back(points.front());
        return true;
    case code::MoveSpline:
        if (!request["pos"].isArray())
            return false;
        for (const Json::Value &p : request["pos"])
            if (!add(p))
                return false;
        return true;
    default:
        return false;
    }
}

// A number of the request outside its range, as a refusal text; empty
// when the key is absent or the number holds.
std::string badNumber(const Json::Value &request, const char *key, const ValueRange &range)
{
    if (!request.isMember(key))
        return {};
    const double v = requestReal(request, key);
    return range.holds(v) ? std::string() : outOfRange(std::string("move ") + key, v, range);
}

std::string refusalOfMove(const Json::Value &request)
{
    const std::pair<const char *, const ValueRange *> checks[] = {
        {"vel", &ranges::kMoveSpeed}, {"acc", &ranges::kAccDec}, {"dec", &ranges::kAccDec},
        {"coord", &ranges::kCoordinate}};
    for (const auto &[key, range] : checks) {
        const std::string text = badNumber(request, key, *range);
        if (!text.empty())
            return text;
    }
    return {};
}

void takeMove(Session &s, const ReceivedFrame &frame)
{
    ControllerModel &m = s.model();
    if (m.servoStatus != kServoRunning) {
        refuse(s, Refusal::ServoOff, "move refused: the servo is not running");
        return;
    }
    if (m.continuous.state != ContinuousMotion::Stopped) {
        refuse(s, Refusal::Busy, "move refused: the continuous-motion queue is active");
        return;
    }
    const Json::Value request = requestObject(frame.payload);
    const std::string bad = refusalOfMove(request);
    if (!bad.empty()) {
        refuse(s, Refusal::OutOfRange, bad);
        return;
    }
    const SimWaypoint start = m.motion.waypoints.empty() ? here(m) : m.motion.waypoints.back();
    std::vector<SimWaypoint> points;
    if (!pointsOf(frame.command, request, start, points) || points.empty()) {
        refuse(s, Refusal::OutOfRange, "move refused: bad target points");
        return;
    }
    for (const SimWaypoint &p : points) {
        const std::string outside = outsideLimits(p);
        if (!outside.empty()) {
            refuse(s, Refusal::OutOfRange, "move refused: " + outside);
            return;
        }
    }
    m.motion.speedShare = requestInt(request, "vel", 10) / 100.0;
    m.motion.waypoints.insert(m.motion.waypoints.end(), points.begin(), points.end());
    ++m.motion.moves;
}

// Jog axes 1..7 are the robot's, 8..12 the synchronous axes 1..5.
ValueRange limitOf(int axis)
{
    return axis <= 7 ? ranges::kRobotAxes[axis - 1] : ranges::kSyncAxes[axis - 8];
}

double *jogTarget(ControllerModel &m, int axis)
{
    if (axis >= 1 && axis <= 7)
        return &m.positionDeg[axis - 1];
    if (axis >= 8 && axis <= 12)
        return &m.motion.sync[axis - 8];
    return nullptr;
}

void takeJogStep(Session &s, const ReceivedFrame &frame)
{
    ControllerModel &m = s.model();
    ++m.motion.jogSteps;
    if (m.servoStatus != kServoRunning) {
        refuse(s, Refusal::ServoOff, "jog refused: the servo is not running");
        return;
    }
    if (m.operationMode != kTeachMode) {
        refuse(s, Refusal::NotTeachMode, "jog refused: not in teach mode");
        return;
    }
    if (m.continuous.state != ContinuousMotion::Stopped) {
        refuse(s, Refusal::Busy, "jog refused: the continuous-motion queue is active");
        return;
    }
    const Json::Value request = requestObject(frame.payload);
    const int axis = requestInt(request, "axis");
    const int direction = requestInt(request, "direction") < 0 ? -1 : 1;
    double *target = jogTarget(m, axis);
    if (!target) {
        refuse(s, Refusal::OutOfRange, "jog refused: axis " + std::to_string(axis) + " is outside 1..12");
        return;
    }
    const ValueRange limit = limitOf(axis);
    const double end = direction > 0 ? limit.max : limit.min;
    if (*target == end) {
        refuse(s, Refusal::OutOfRange,
               "jog refused: axis " + std::to_string(axis) + " is at its limit " + numberText(end));
        return;
    }
    if (m.speed > 100) {
        static const double steps[] = {0.1, 0.01, 0.001};
        *target = std::clamp(*target + direction * steps[std::min(m.speed, 103) - 101], limit.min, limit.max);
        return;
    }
    m.motion.jogAxis = axis;
    m.motion.jogDirection = direction;
    m.motion.jogUntilMs = s.nowMs() + SimMotion::jogHoldMs;
}

void reportServo(Simulator &sim)
{
    const ControllerModel &m = sim.model();
    sim.broadcastJson(replyTo(code::GetServoStatus), servoReport(m, m.currentRobot));
}

void stopMotion(SimMotion &motion)
{
    motion.waypoints.clear();
    motion.jogAxis = 0;
    motion.axisSpeed.fill(0.0);
    motion.syncSpeed.fill(0.0);
}

void tickDrives(Simulator &sim, qint64)
{
    ControllerModel &m = sim.model();
    const qint64 now = sim.nowMs();
    if (m.servoStatus == kServoReady && m.deadman == 1) {
        if (m.motion.driveEngageAtMs < 0) {
            m.motion.driveEngageAtMs = now + SimMotion::driveEngageMs;
        } else if (now >= m.motion.driveEngageAtMs) {
            m.motion.driveEngageAtMs = -1;
            m.servoStatus = kServoRunning;
            reportServo(sim);
        }
        return;
    }
    m.motion.driveEngageAtMs = -1;
    if (m.servoStatus == kServoRunning && m.deadman == 0) {
        m.servoStatus = kServoReady;
        stopMotion(m.motion);
        reportServo(sim);
    }
}

void tickMotion(Simulator &sim, qint64 elapsedMs)
{
    ControllerModel &m = sim.model();
    SimMotion &motion = m.motion;
    const double dt = elapsedMs / 1000.0;
    motion.axisSpeed.fill(0.0);
    motion.syncSpeed.fill(0.0);
    if (m.servoStatus != kServoRunning) {
        stopMotion(motion);
        return;
    }
    if (dt <= 0.0)
        return;

    // Seconds of travel this tick; each point is reached in the time its
    // slowest axis needs at the move's share of full speed.
    double budget = motion.held || motion.speedShare <= 0.0 ? 0.0 : dt;
    while (!motion.waypoints.empty() && budget > 0.0) {
        const SimWaypoint &target = motion.waypoints.front();
        double longest = 0.0;
        for (int i = 0; i < 7; ++i)
            longest = std::max(longest, std::fabs(target.robot[i] - m.positionDeg[i]) /
                                            (SimMotion::robotFullSpeed[i] * motion.speedShare));
        for (int i = 0; i < 5; ++i)
            longest = std::max(longest, std::fabs(target.sync[i] - motion.sync[i]) /
                                            (SimMotion::syncFullSpeed[i] * motion.speedShare));
        const double part = longest <= budget ? 1.0 : budget / longest;
        for (int i = 0; i < 7; ++i) {
            const double d = (target.robot[i] - m.positionDeg[i]) * part;
            m.positionDeg[i] += d;
            motion.axisSpeed[i] += std::fabs(d) / dt;
        }
        for (int i = 0; i < 5; ++i) {
            const double d = (target.sync[i] - motion.sync[i]) * part;
            motion.sync[i] += d;
            motion.syncSpeed[i] += std::fabs(d) / dt;
        }
        if (part < 1.0)
            break;
        budget -= longest;
        motion.waypoints.pop_front();
    }

    if (motion.jogAxis != 0) {
        if (sim.nowMs() >= motion.jogUntilMs || m.servoStatus != kServoRunning) {
            motion.jogAxis = 0;
            return;
        }
        if (double *axis = jogTarget(m, motion.jogAxis)) {
            const double speed = SimMotion::maxJogSpeed * std::clamp(m.speed, 0, 100) / 100.0;
            const ValueRange limit = limitOf(motion.jogAxis);
            *axis = std::clamp(*axis + motion.jogDirection * speed * dt, limit.min, limit.max);
            if (motion.jogAxis <= 7)
                motion.axisSpeed[motion.jogAxis - 1] = speed;
            else
                motion.syncSpeed[motion.jogAxis - 8] = speed;
        }
    }
}

} // namespace

SimWaypoint here(const ControllerModel &m)
{
    SimWaypoint w;
    std::copy(m.positionDeg, m.positionDeg + 7, w.robot.begin());
    w.sync = m.motion.sync;
    return w;
}

std::string outsideLimits(const SimWaypoint &point)
{
    for (int i = 0; i < 7; ++i) {
        if (!ranges::kRobotAxes[i].holds(point.robot[i]))
            return "axis " + std::to_string(i + 1) + " target " + rangeText(point.robot[i], ranges::kRobotAxes[i]);
    }
    for (int i = 0; i < 5; ++i) {
        if (!ranges::kSyncAxes[i].holds(point.sync[i]))
            return "synchronous axis " + std::to_string(i + 1) + " target " +
                   rangeText(point.sync[i], ranges::kSyncAxes[i]);
    }
    return {};
}

std::vector<CommandEntry> motionCommands()
{
    std::vector<CommandEntry> table;
    for (quint16 move : {code::MoveJoint, code::MoveLinear, code::MoveCircle, code::MoveSpline, //
                         code::MoveJointExtra, code::MoveLinearExtra, code::MoveCircleExtra})
        table.push_back({move, takeMove});
    table.push_back({code::JogStep, takeJogStep});
    table.push_back({code::StopMove, [](Session &s, const ReceivedFrame &) { s.model().motion.jogAxis = 0; }});
    return table;
}

std::vector<TickEntry> motionTicks()
{
    const auto moving = [](const ControllerModel &m) {
        const auto still = [](double v) { return v == 0.0; };
        return m.motion.busy() || m.motion.jogAxis != 0 ||
               !std::all_of(m.motion.axisSpeed.begin(), m.motion.axisSpeed.end(), still) ||
               !std::all_of(m.motion.syncSpeed.begin(), m.motion.syncSpeed.end(), still);
    };
    const auto drivesChanging = [](const ControllerModel &m) {
        return (m.servoStatus == kServoReady && m.deadman == 1) || (m.servoStatus == kServoRunning && m.deadman == 0);
    };
    return {
        {"drives", tickDrives, drivesChanging},
        {"moves and jogging", tickMotion, moving},
    };
}

} // namespace qrxsim
