// The session commands of the host: the post-connection request, the
// farewell, and continuous motion (mode, queue, start, suspend, stop).
//
// Replies, where the host's handler consumes one:
//  - 0x5052 post-connection request -> 0x5053 {"controlNumber","robot"}: the
//    report of the same family, carrying the controller's number.
//  - 0x50B1 {"open"} continuous-motion mode -> 0x50B3 {"open","robot"}: the
//    family's report code; the host wakes its waiting calls on it.
// 0x7277 (farewell), 0x50B4 (queue), 0x50B7/0x50B8/0x50B9 (suspend, start,
// stop) are answered with nothing; they change the model only. A queue that
// arrives while the mode is closed is refused (counted, not stored).
// While running, the controller works off one queued instruction per
// ContinuousMotion::stepMs.

#include "sim/Session.h"
#include "sim/Simulator.h"
#include "sim/commands/Families.h"

#include "common/Payload.h"

namespace qrxsim {

namespace {

void answerModeReport(Session &session)
{
    Json::Value report(Json::objectValue);
    report["open"] = session.model().continuous.open;
    report["robot"] = session.model().currentRobot;
    session.replyJson(0x50B3, report);
}

void takeQueue(Session &session, const ReceivedFrame &frame)
{
    ContinuousMotion &motion = session.model().continuous;
    Json::Value root;
    if (!qrx::parsePayload(frame.payload, root) || !root.isObject() || !root["data"].isArray())
        return;
    if (!motion.open) {
        ++motion.refusedQueues;
        return;
    }
    for (const Json::Value &instruction : root["data"])
        motion.queue.push_back(instruction);
}

} // namespace

std::vector<CommandEntry> sessionCommands()
{
    return {
        {0x5052,
         [](Session &session, const ReceivedFrame &) {
             ++session.model().postConnectionRequests;
             Json::Value report(Json::objectValue);
             report["controlNumber"] = "QRX-SIM-0001";
             report["robot"] = session.model().currentRobot;
             session.replyJson(0x5053, report);
         }},
        {0x7277, [](Session &session, const ReceivedFrame &) { ++session.model().farewells; }},
        {0x50B1,
         [](Session &session, const ReceivedFrame &frame) {
             Json::Value root;
             if (!qrx::parsePayload(frame.payload, root) || !root.isObject())
                 return;
             ContinuousMotion &motion = session.model().continuous;
             motion.open = root["open"].asBool();
             if (!motion.open) {
                 motion.state = ContinuousMotion::Stopped;
                 motion.queue.clear();
             }
             answerModeReport(session);
         }},
        {0x50B4, takeQueue},
        {0x50B7,
         [](Session &session, const ReceivedFrame &) {
             ContinuousMotion &motion = session.model().continuous;
             if (motion.state == ContinuousMotion::Running)
                 motion.state = ContinuousMotion::Suspended;
         }},
        {0x50B8,
         [](Session &session, const ReceivedFrame &) {
             ContinuousMotion &motion = session.model().continuous;
             if (motion.open)
                 motion.state = ContinuousMotion::Running;
         }},
        {0x50B9,
         [](Session &session, const ReceivedFrame &) {
             ContinuousMotion &motion = session.model().continuous;
             motion.state = ContinuousMotion::Stopped;
             motion.queue.clear();
         }},
    };
}

std::vector<TickEntry> sessionTicks()
{
    return {
        {"continuous motion",
         [](Simulator &simulator, qint64 elapsedMs) {
             ContinuousMotion &motion = simulator.model().continuous;
             if (motion.state != ContinuousMotion::Running)
                 return;
             motion.sinceStepMs += elapsedMs;
             while (motion.sinceStepMs >= ContinuousMotion::stepMs && !motion.queue.empty()) {
                 motion.sinceStepMs -= ContinuousMotion::stepMs;
                 motion.queue.erase(motion.queue.begin());
                 ++motion.executed;
             }
             if (motion.queue.empty())
                 motion.sinceStepMs = 0;
         }},
    };
}

} // namespace qrxsim
