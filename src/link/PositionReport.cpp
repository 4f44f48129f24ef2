#include "link/PositionReport.h"

#include "common/Payload.h"

#include <json/value.h>

namespace qrx {

bool decodePositionReport(const QByteArray &data, PositionReport &report)
{
    Json::Value root;
    if (!parsePayload(data, root) || !root.isObject())
        return false;
    for (const char *key : {"posDeg", "coord", "robot", "configuration"}) {
        if (!root.isMember(key))
            return false;
    }
    try {
        const Json::Value &posDeg = root["posDeg"];
        if (posDeg.isObject()) // not an array: no elements to read by index
            return false;
        report.position.clear();
        report.position.reserve(int(posDeg.size()));
        for (Json::ArrayIndex i = 0; i < posDeg.size(); ++i)
            report.position.append(posDeg[i].asDouble());
        report.coord = root["coord"].asInt();
        report.robot = root["robot"].asInt();
        report.configuration = root["configuration"].asInt();
    } catch (const Json::Exception &) {
        return false;
    }
    return true;
}

} // namespace qrx
