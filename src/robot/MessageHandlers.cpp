// Errors, warnings and information from the controller (0x2B03, 0x2B04,
// 0x2B05 {"data", "type"}).
//
// Each message's "data" text goes, behind its prefix, to the host's error
// callback (called here, on the link thread, with NUL-terminated UTF-8 that
// is valid only during the call) and is kept without the prefix as the last
// message. An error of type 0x6010 whose text begins with the name of the
// current robot ("机器人1" .. "机器人4") is that robot's servo error.
// None of these handlers wakes a waiting request: a message alone does not
// answer a query.

#include "robot/Robot.h"

#include "common/Payload.h"
#include "common/JsonRead.h"

#include <QCoreApplication>
#include <QDateTime>

#include <mutex>

namespace {

constexpr int kServoErrorType = 0x6010;

const char *const kRobotNames[] = {
    QT_TRANSLATE_NOOP("Robot", "机器人1"),
    QT_TRANSLATE_NOOP("Robot", "机器人2"),
    QT_TRANSLATE_NOOP("Robot", "机器人3"),
    QT_TRANSLATE_NOOP("Robot", "机器人4"),
};

// "data" taken as a string: a number or a flag reads as its JSON spelling
// ({"data":404} is "404", {"data":true} is "true"), null as the empty text.
// An array or an object has no text.
QString dataText(const Json::Value &data)
{
    if (data.isString()) {
        const char *begin = nullptr;
        const char *end = nullptr;
        data.getString(&begin, &end);
        return QString::fromUtf8(begin, int(end - begin));
    }
    if (data.isNumeric() || data.isBool())
        return QString::fromStdString(data.asString());
    return QString();
}

} // namespace

Robot::DeliveredMessage Robot::deliverMessage(int level, const char *prefix, const QByteArray &payload)
{
    DeliveredMessage message;
    Json::Value root;
    if (!qrx::parsePayload(payload, root) || !root.isObject() || !root.isMember("data"))
        return message;
    message.delivered = true;
    message.data = dataText(qrx::jsonMember(root, "data"));
    message.hasType = root.isMember("type");
    message.type = qrx::jsonInt(root, "type");

    const QString text = QCoreApplication::translate("Robot", prefix) + message.data;
    MessageSink sink;
    {
        std::lock_guard<std::mutex> lock(m_sinkMutex);
        sink = m_messageSink;
    }
    if (sink)
        sink(level, text.toUtf8()); // NUL-terminated, alive during the call
    storeMessage(message.data.toStdString());
    return message;
}

void Robot::robot_net_slot_errProcess(const QByteArray &payload)
{
    const DeliveredMessage message = deliverMessage(0, QT_TRANSLATE_NOOP("Robot", "错误： "), payload);
    if (!message.delivered)
        return;
    // The time of the error; kept for a log sink, not handed over.
    const QString when = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    Q_UNUSED(when);
    if (!message.hasType)
        return;
    const QString code = QCoreApplication::translate("Robot", "错误代码: 0x") + QString::number(uint(message.type), 16);
    if (code != QCoreApplication::translate("Robot", "错误代码: 0x") + QString::number(kServoErrorType, 16))
        return;
    const QString head = message.data.left(4);
    for (int robot = 1; robot <= 4; ++robot) {
        if (head == QCoreApplication::translate("Robot", kRobotNames[robot - 1])) {
            if (robot == currentRobot())
                emit robot_servo_err_info(message.data);
            return;
        }
    }
}

void Robot::robot_net_slot_warnProcess(const QByteArray &payload)
{
    deliverMessage(1, QT_TRANSLATE_NOOP("Robot", "警告： "), payload);
}

void Robot::robot_net_slot_infoProcess(const QByteArray &payload)
{
    deliverMessage(2, QT_TRANSLATE_NOOP("Robot", "消息： "), payload);
}
