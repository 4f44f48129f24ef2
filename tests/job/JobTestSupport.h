#pragma once
// Helpers of the job model tests: JSON from text, text from JSON.

#include "common/CompactJson.h"
#include "common/Payload.h"

#include <QByteArray>
#include <QString>
#include <json/value.h>

namespace jobtest {

inline Json::Value json(const char *text)
{
    Json::Value value;
    if (!qrx::parsePayload(QByteArray(text), value))
        qFatal("test JSON does not parse: %s", text);
    return value;
}

inline QString text(const Json::Value &value)
{
    return QString::fromStdString(qrx::compactJson(value));
}

} // namespace jobtest
