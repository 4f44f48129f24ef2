#pragma once
// How the simulated controller refuses what it cannot or may not carry out:
// an error message 0x2B03 {"data": text, "type": code}, as a controller
// reports a refused command. The host hands "data" to its error callback;
// the message wakes no waiting call. A refused command changes nothing.
//
// kRefusals is the one list of reasons: their codes go out under "type", and
// qrx-sim --help prints the list.

#include "common/JsonRead.h"
#include "common/Payload.h"
#include "protocol/Codes.h"
#include "sim/Ranges.h"
#include "sim/Session.h"

#include <json/value.h>
#include <string>

namespace qrxsim {

enum class Refusal : int {
    ServoOff = 0x1101,      // moves, jogs, runs while the drives are not running
    OutOfRange = 0x1102,    // a mode, coordinate system, axis, port, speed... outside its range
    UnknownJob = 0x1103,    // a job the controller does not hold
    Busy = 0x1104,          // a job or the queue is running
    NotTeachMode = 0x1105,  // jogging outside teach mode
    QueueClosed = 0x1106,   // queue commands while continuous motion is not open
    NotExecutable = 0x1107, // a queued instruction the controller cannot execute
    NothingToDo = 0x1108,   // continue without a paused job, start with an empty queue
};

struct RefusalReason
{
    Refusal code;
    const char *what;
};

inline constexpr RefusalReason kRefusals[] = {
    {Refusal::ServoOff, "moves, jog steps, job runs and queue starts while the servo is not running"},
    {Refusal::OutOfRange, "values outside the ranges above: operating mode, coordinate system, jog speed, "
                          "deadman, move speed/acceleration/coordinate system, axis targets, IO ports and "
                          "values, coordinate system of a global position"},
    {Refusal::UnknownJob, "opening, running, stepping, deleting or calling a job it does not hold"},
    {Refusal::Busy, "a job run while a job or the queue runs; moves and jogging while the queue is active"},
    {Refusal::NotTeachMode, "jog steps outside teach mode"},
    {Refusal::QueueClosed, "queues and queue starts while continuous motion is not open"},
    {Refusal::NotExecutable, "queued instructions it cannot execute (the whole queue is refused)"},
    {Refusal::NothingToDo, "continuing without a paused job; starting an empty queue"},
};

inline Json::Value refusalMessage(Refusal code, const std::string &text)
{
    Json::Value v(Json::objectValue);
    v["data"] = text;
    v["type"] = int(code);
    return v;
}

// To the client whose command is refused.
inline void refuse(Session &session, Refusal code, const std::string &text)
{
    session.replyJson(qrx::protocol::report::Error, refusalMessage(code, text));
}

// The JSON object of a request; an empty object when it is none.
inline Json::Value requestObject(const QByteArray &payload)
{
    Json::Value request;
    if (!qrx::parsePayload(payload, request) || !request.isObject())
        return Json::Value(Json::objectValue);
    return request;
}

// A number (or true/false) read by the library's tolerant reader, else the
// fallback.
inline int requestInt(const Json::Value &request, const char *key, int fallback = 0)
{
    return qrx::jsonIntOr(request, key, fallback);
}

inline double requestReal(const Json::Value &request, const char *key, double fallback = 0.0)
{
    return qrx::jsonRealOr(request, key, fallback);
}

// "1.5" / "-20" for texts of refusals.
inline std::string numberText(double v)
{
    std::string s = std::to_string(v);
    s.erase(s.find_last_not_of('0') + 1);
    if (!s.empty() && s.back() == '.')
        s.pop_back();
    return s;
}

// "<value> is outside <min>..<max>"
inline std::string rangeText(double value, const ValueRange &range)
{
    return numberText(value) + " is outside " + numberText(range.min) + ".." + numberText(range.max);
}

// "<what> refused: <value> is outside <min>..<max>"
inline std::string outOfRange(const std::string &what, double value, const ValueRange &range)
{
    return what + " refused: " + rangeText(value, range);
}

} // namespace qrxsim
