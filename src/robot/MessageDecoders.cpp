// Errors, warnings and information from the controller (0x2B03, 0x2B04,
// 0x2B05 {"data", "type"}).
//
// Each message's "data" text goes, behind its prefix, to the host's error
// callback (Change::message, handed over by the entry point on the link
// thread) and is kept without the prefix as the last message. An error of
// type 0x6010 whose text begins with the name of the current robot
// ("机器人1" .. "机器人4") is that robot's servo error. A message alone
// answers no query: the rows wake nobody.

#include "robot/Decoders.h"

#include "common/JsonRead.h"
#include "robot/HandlerLines.h"
#include "robot/RobotSignals.h"
#include "robot/RobotState.h"

#include <QCoreApplication>

namespace qrx::decoders {

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

// Not taken without "data". text: "data".
Change message(int level, const char *prefix, const Json::Value &report, RobotState &state)
{
    Change change;
    if (!report.isObject() || !report.isMember("data"))
        return change;
    change.taken = true;
    change.text = dataText(jsonMember(report, "data"));
    change.messageLevel = level;
    change.message = (robotText(prefix) + change.text).toUtf8();
    state.lastMessageText = change.text.toStdString();
    return change;
}

} // namespace

// values: 1 when the error is the current robot's servo error.
Change error(const Json::Value &report, RobotState &state)
{
    Change change = message(0, QT_TRANSLATE_NOOP("Robot", "错误： "), report, state);
    if (!change.taken)
        return change;
    if (!report.isMember("type"))
        return change;
    const QString codeLine = robotText(QT_TRANSLATE_NOOP("Robot", "错误代码: 0x")) + QString::number(uint(jsonInt(report, "type")), 16);
    if (codeLine != robotText(QT_TRANSLATE_NOOP("Robot", "错误代码: 0x")) + QString::number(kServoErrorType, 16))
        return change;
    const QString head = change.text.left(4);
    for (int robot = 1; robot <= 4; ++robot) {
        if (head == robotText(kRobotNames[robot - 1])) {
            change.values[0] = robot == state.currentRobot();
            break;
        }
    }
    return change;
}

void notifyError(RobotSignals &to, const Change &change, const QByteArray &)
{
    if (change.values[0])
        emit to.robot_servo_err_info(change.text);
}

Change warning(const Json::Value &report, RobotState &state)
{
    return message(1, QT_TRANSLATE_NOOP("Robot", "警告： "), report, state);
}

Change information(const Json::Value &report, RobotState &state)
{
    return message(2, QT_TRANSLATE_NOOP("Robot", "消息： "), report, state);
}

} // namespace qrx::decoders
