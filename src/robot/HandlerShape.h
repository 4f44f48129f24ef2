#pragma once
// The body of Robot::takeReport, for the handler files: parse, read, and
// wake every thread waiting on replyCondition at the end, read or not.
//
// What "lacks the keys" means: every handler names the keys whose values it
// stores or reports (its content keys: "status" of the servo report, "pos"
// of the position report, "robot" of the current-robot report). A payload
// that is not JSON, is no object, or holds none of its content keys changes
// nothing and emits nothing, but still wakes the waiters. A report that
// holds some of them is taken; a member it leaves out reads as 0, false or
// empty, as any missing member does, and keys that only select (the
// "robot" or "mode" beside a status) are never required. A report that
// only logs and hands its payload on has content keys too: the members its
// line and its notification carry ("Joint" of the joint parameters, "result"
// of a calibration result, the DH members); a robot number that is itself
// an argument of the notification (step end, cycle index) counts as one.
// Only a pure relay, which reads no member, takes every payload that parses.
//
// The payload is parsed as UTF-8 text directly (qrx::parsePayload), not
// through a Latin-1 view and back: that keeps non-ASCII names ("机器人2")
// comparable with what the host and the controller wrote.

#include "common/JsonRead.h"
#include "common/Payload.h"
#include "robot/Robot.h"

#include <json/value.h>

#include <initializer_list>

template <typename Read>
void Robot::takeReport(const QByteArray &data, Read &&read)
{
    WakeAtEnd wake(this);
    Json::Value root;
    if (qrx::parsePayload(data, root)) {
        std::lock_guard<std::recursive_mutex> lock(cacheMutex);
        read(root);
    }
}

template <typename Read>
void Robot::takeReport(const QByteArray &data, std::initializer_list<const char *> contentKeys, Read &&read)
{
    // The same shape, cache lock included; only the key check is added.
    takeReport(data, [&](const Json::Value &root) {
        if (qrx::hasAnyKey(root, contentKeys))
            read(root);
    });
}
