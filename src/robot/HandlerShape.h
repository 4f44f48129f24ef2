#pragma once
// The body of Robot::takeReport, for the handler files: parse, read, and
// wake every thread waiting on replyCondition at the end, parsed or not.

#include "common/Payload.h"
#include "robot/Robot.h"

#include <json/value.h>

template <typename Read>
void Robot::takeReport(const QByteArray &data, Read &&read)
{
    WakeAtEnd wake(this);
    Json::Value root;
    if (qrx::parsePayload(data, root)) {
        std::lock_guard<std::recursive_mutex> lock(qrx::cacheMutex());
        read(root);
    }
}
