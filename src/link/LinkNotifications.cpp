#include "link/LinkNotifications.h"

#include "common/Payload.h"
#include "link/DispatchTable.h"
#include "link/LinkTypes.h"

#include <json/value.h>

namespace {

// 0x2A03: "posDeg" (array of reals), "coord", "robot", "configuration".
// All four must be there; a payload that lacks one, does not parse, or
// holds values of the wrong kind is dropped.
bool decodePosition(const QByteArray &data, QVector<double> &position, int &coord, int &robot,
                    int &configuration)
{
    Json::Value root;
    if (!qrx::parsePayload(data, root) || !root.isObject())
        return false;
    for (const char *key : {"posDeg", "coord", "robot", "configuration"}) {
        if (!root.isMember(key))
            return false;
    }
    try {
        const Json::Value &posDeg = root["posDeg"];
        if (posDeg.isObject()) // not an array: no elements to read by index
            return false;
        position.clear();
        position.reserve(int(posDeg.size()));
        for (Json::ArrayIndex i = 0; i < posDeg.size(); ++i)
            position.append(posDeg[i].asDouble());
        coord = root["coord"].asInt();
        robot = root["robot"].asInt();
        configuration = root["configuration"].asInt();
    } catch (const Json::Exception &) {
        return false;
    }
    return true;
}

bool isJson(const QByteArray &data)
{
    Json::Value ignored;
    return qrx::parsePayload(data, ignored);
}

} // namespace

LinkNotifications::LinkNotifications(QObject *parent)
    : QObject(parent)
{
    qrx::registerLinkMetaTypes();
}

void LinkNotifications::onReceivedData(quint16 command, QByteArray data)
{
    const qrx::DispatchRow *row = qrx::findDispatchRow(command);
    if (!row) {
        Q_EMIT receivedData(command, data);
        return;
    }
    using Delivery = qrx::protocol::Delivery;
    switch (row->delivery) {
    case Delivery::ForwardIfJson:
        if (!isJson(data))
            return;
        Q_FALLTHROUGH();
    case Delivery::Forward:
        Q_EMIT(this->*row->notification)(data);
        if (row->second)
            Q_EMIT(this->*row->second)(data);
        return;
    case Delivery::TestModeByte:
        if (data.size() == 1)
            Q_EMIT receivedTestMode(static_cast<signed char>(data.at(0)));
        return;
    case Delivery::Position: {
        QVector<double> position;
        int coord = 0, robot = 0, configuration = 0;
        if (decodePosition(data, position, coord, robot, configuration))
            Q_EMIT receivedPosition(position, coord, robot, configuration);
        return;
    }
    case Delivery::NoArgument:
        Q_EMIT recvJobFileInfoFinish();
        return;
    case Delivery::Connection:
    case Delivery::None:
        return; // not delivered: findDispatchRow() never hands these out
    }
}
