// Continuous motion: the mode, the queue, and its run.
//
//   0x50B1 {"open"}  opens or closes the mode -> 0x50B3 {"open","robot"}
//                    (the host wakes its waiting calls on it). Closing stops
//                    the queue and empties it.
//   0x50B4 {"data":[instruction objects],"robot"}  appends the instructions
//                    to the queue, also while it runs; every instruction is
//                    checked first (QueueInstructions.cpp) and a queue with
//                    one the controller cannot execute is refused whole.
//   0x50B8  start (or resume after a suspend)
//   0x50B7  suspend: the robot holds where it is, a wait holds its time
//   0x50B9  stop: the robot stops where it is, the queue is emptied
// Running, the queue works off its instructions in order: each starts as
// soon as the one before is done (a move when the axes arrive, a wait when
// its time is up), so nothing waits for a fixed step. When the last is done
// the queue is empty and the run ends.
//
// What the host sees: the running state 0x3D03 {"robot","status"} (2
// running, 1 suspended, 0 stopped or done) goes to every client on each
// change; the running line asked with 0x3503 is the number (from 1) of the
// instruction being executed, the last one after the run ended; the
// position moves as with any move.
//
// Refused (error 0x2B03, nothing changes): queues and starts while the mode
// is closed; a queue with an instruction that cannot be executed; starts
// while the servo is not running, while a job runs or a move is under way,
// or with nothing queued. An instruction that cannot run when its turn comes
// (a global position that does not exist) stops the run with an error; the
// drives going off suspend it with one.

#include "sim/Session.h"
#include "sim/Simulator.h"
#include "sim/commands/Families.h"
#include "sim/commands/QueueInstructions.h"
#include "sim/commands/Refusal.h"

#include <algorithm>

namespace qrxsim {

namespace {

constexpr int kStopped = 0;
constexpr int kSuspended = 1;
constexpr int kRunning = 2;
constexpr int kServoRunning = 3;

void setRunStatus(Simulator &sim, int status)
{
    ControllerModel &m = sim.model();
    m.lastRunner = ControllerModel::QueueRunner;
    if (m.runStatus == status)
        return;
    m.runStatus = status;
    sim.broadcastJson(replyTo(code::GetRunStatus), runStatusReport(m));
}

void refuseAll(Simulator &sim, Refusal code, const std::string &text)
{
    sim.broadcastJson(report::Error, refusalMessage(code, text));
}

void stopQueue(Simulator &sim)
{
    ControllerModel &m = sim.model();
    ContinuousMotion &c = m.continuous;
    const bool wasActive = c.state != ContinuousMotion::Stopped;
    if (c.phase == ContinuousMotion::Moving)
        m.motion.waypoints.clear();
    if (c.phase == ContinuousMotion::Waiting)
        finishWaiting(m);
    m.motion.held = false;
    c.state = ContinuousMotion::Stopped;
    c.phase = ContinuousMotion::Idle;
    c.queue.clear();
    c.next = 0;
    if (wasActive)
        setRunStatus(sim, kStopped);
}

void suspendQueue(Simulator &sim)
{
    ControllerModel &m = sim.model();
    ContinuousMotion &c = m.continuous;
    c.state = ContinuousMotion::Suspended;
    m.motion.held = true;
    if (c.phase == ContinuousMotion::Waiting)
        c.waitLeftMs = std::max<qint64>(0, c.waitUntilMs - sim.nowMs());
    setRunStatus(sim, kSuspended);
}

// Works off what is done and starts what comes next, until an instruction
// takes time or the queue is done.
void advance(Simulator &sim)
{
    ControllerModel &m = sim.model();
    ContinuousMotion &c = m.continuous;
    while (c.state == ContinuousMotion::Running) {
        if (c.phase == ContinuousMotion::Moving) {
            if (m.motion.busy())
                return;
            c.arrivals.push_back({m.positionDeg[0], m.positionDeg[1], m.positionDeg[2], m.positionDeg[3],
                                  m.positionDeg[4], m.positionDeg[5], m.positionDeg[6]});
            c.phase = ContinuousMotion::Idle;
            ++c.executed;
        } else if (c.phase == ContinuousMotion::Waiting) {
            if (sim.nowMs() < c.waitUntilMs)
                return;
            finishWaiting(m);
            ++c.executed;
        }
        if (c.next >= c.queue.size()) {
            stopQueue(sim); // all done; the line stays at the last one
            return;
        }
        c.line = int(c.next) + 1;
        const Json::Value instruction = c.queue[c.next++];
        const std::string problem = startInstruction(instruction, m, sim.nowMs());
        if (!problem.empty()) {
            refuseAll(sim, Refusal::NotExecutable,
                      "continuous motion stopped at instruction " + std::to_string(c.line) + ": " + problem);
            stopQueue(sim);
            return;
        }
        if (c.phase == ContinuousMotion::Idle)
            ++c.executed;
    }
}

void answerModeReport(Session &session)
{
    Json::Value report(Json::objectValue);
    report["open"] = session.model().continuous.open;
    report["robot"] = session.model().currentRobot;
    session.replyJson(report::ContinuousModeState, report);
}

void openMode(Session &session, const ReceivedFrame &frame)
{
    Json::Value root;
    if (!qrx::parsePayload(frame.payload, root) || !root.isObject())
        return;
    ContinuousMotion &c = session.model().continuous;
    c.open = root["open"].asBool();
    if (!c.open)
        stopQueue(session.simulator());
    answerModeReport(session);
}

void takeQueue(Session &session, const ReceivedFrame &frame)
{
    ControllerModel &m = session.model();
    ContinuousMotion &c = m.continuous;
    Json::Value root;
    if (!qrx::parsePayload(frame.payload, root) || !root.isObject() || !root["data"].isArray())
        return;
    if (!c.open) {
        ++c.refusedQueues;
        refuse(session, Refusal::QueueClosed, "queue refused: continuous motion is not open");
        return;
    }
    const Json::Value &data = root["data"];
    for (Json::ArrayIndex i = 0; i < data.size(); ++i) {
        const std::string problem = notExecutable(data[i], m);
        if (!problem.empty()) {
            ++c.refusedQueues;
            refuse(session, Refusal::NotExecutable,
                   "queue refused: instruction " + std::to_string(i + 1) + " of " + std::to_string(data.size()) +
                       ": " + problem);
            return;
        }
    }
    for (const Json::Value &instruction : data)
        c.queue.push_back(instruction);
}

void start(Session &session, const ReceivedFrame &)
{
    Simulator &sim = session.simulator();
    ControllerModel &m = session.model();
    ContinuousMotion &c = m.continuous;
    if (!c.open) {
        refuse(session, Refusal::QueueClosed, "start refused: continuous motion is not open");
        return;
    }
    if (c.state == ContinuousMotion::Running)
        return;
    if (m.servoStatus != kServoRunning) {
        refuse(session, Refusal::ServoOff, "start refused: the servo is not running");
        return;
    }
    if (c.state == ContinuousMotion::Suspended) {
        c.state = ContinuousMotion::Running;
        m.motion.held = false;
        if (c.phase == ContinuousMotion::Moving) { // the drives may have dropped the target
            m.motion.waypoints.assign(1, c.target);
            m.motion.speedShare = c.speedShare;
        }
        if (c.phase == ContinuousMotion::Waiting)
            c.waitUntilMs = sim.nowMs() + c.waitLeftMs;
        setRunStatus(sim, kRunning);
        advance(sim);
        return;
    }
    if (m.runStatus == kRunning) {
        refuse(session, Refusal::Busy, "start refused: a job is running");
        return;
    }
    if (m.motion.busy()) {
        refuse(session, Refusal::Busy, "start refused: a move is under way");
        return;
    }
    if (c.queue.empty()) {
        refuse(session, Refusal::NothingToDo, "start refused: the queue is empty");
        return;
    }
    c.state = ContinuousMotion::Running;
    c.phase = ContinuousMotion::Idle;
    c.line = 0;
    setRunStatus(sim, kRunning);
    advance(sim);
}

void tick(Simulator &sim, qint64)
{
    ControllerModel &m = sim.model();
    if (m.continuous.state != ContinuousMotion::Running)
        return;
    if (m.servoStatus != kServoRunning) {
        suspendQueue(sim);
        refuseAll(sim, Refusal::ServoOff, "continuous motion suspended: the servo is not running");
        return;
    }
    advance(sim);
}

} // namespace

std::vector<CommandEntry> continuousCommands()
{
    return {
        {code::ContinuousMode, openMode},
        {code::ContinuousQueue, takeQueue},
        {code::ContinuousSuspend,
         [](Session &session, const ReceivedFrame &) {
             if (session.model().continuous.state == ContinuousMotion::Running)
                 suspendQueue(session.simulator());
         }},
        {code::ContinuousStart, start},
        {code::ContinuousStop, [](Session &session, const ReceivedFrame &) { stopQueue(session.simulator()); }},
    };
}

std::vector<TickEntry> continuousTicks()
{
    return {{"continuous motion", tick,
             [](const ControllerModel &m) { return m.continuous.state == ContinuousMotion::Running; }}};
}

} // namespace qrxsim
