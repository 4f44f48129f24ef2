// The process-specific reports that read keys: weld equipment data
// (0x4003), Modbus and external IO state (0x5719, 0x5033), vision range
// (0x3F06), ground-rail ratio (0x700F), cooperative robot (0x7017), one
// global position (0x5606), the robot list (0x3E03), the servo and IO slave
// list (0x2E0F) and the safe-position check (0x2F16). Decoders are pure
// (ReportTable.h). Every other process message is a relay row of the
// table: the reader gets the payload byte for byte and no waiting call is
// woken.

#include "robot/Decoders.h"

#include "common/JsonRead.h"
#include "robot/HandlerLines.h"
#include "robot/RobotSignals.h"
#include "robot/RobotState.h"

#include <QCoreApplication>

#include <algorithm>

namespace qrx::decoders {

namespace {

// "自定义" (user-defined) is the pendant's entry for a robot model of the
// user's own; it always closes the robot list.
const char kUserDefined[] = "自定义";

// A per-robot flag of the safe-position report: an array holds one entry
// per robot (robot 1 first), a single number is the flag of "robot".
// Missing entries count as safe (1).
int flagOfRobot(const Json::Value &report, const char *key, int robot)
{
    const Json::Value &value = jsonMember(report, key);
    if (value.isArray())
        return Json::ArrayIndex(robot - 1) < value.size() ? jsonNumber(value[Json::ArrayIndex(robot - 1)]) : 1;
    if (value.isNull())
        return 1;
    return robot == jsonInt(report, "robot") ? jsonNumber(value) : 1;
}

} // namespace

// 0x4003 weld equipment data; the log line is the controller's own, the
// missing blank before "withdrawwire" included.
Change weldEquipment(const Json::Value &report, RobotState &)
{
    if (!hasAnyKey(report, {"arconDetect", "arconConfirm", "arcoffDetect", "preAspirated", "delAspirated",
                            "withdrawwire", "breakRewire", "time", "distance", "velocity", "restart"}))
        return {};
    Change change = taken();
    change.lines << fillLine(QT_TRANSLATE_NOOP("Robot", "接收焊接装备数据 arcDetect=%1 arcConfirm=%2 arcOffDetect=%3 "
                                                        "preAspirated=%4 delAspirated=%5withdrawwire=%6 "
                                                        "breakRewire=%7 distance=%8 velocity=%9"),
                             report,
                             {"arconDetect", "arconConfirm", "arcoffDetect", "preAspirated", "delAspirated",
                              "withdrawwire", "breakRewire", "distance", "velocity"});
    return change;
}

// 0x5719 {"ModbusConnect"}. values: "ModbusConnect".
Change modbusState(const Json::Value &report, RobotState &)
{
    return integersOf(report, {"ModbusConnect"});
}

void notifyModbusState(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_Modbus_State(change.values[0]);
}

// 0x5033 {"ModbusConnect","ExternIOConnect"}. values: the two.
Change modbusIoState(const Json::Value &report, RobotState &)
{
    return integersOf(report, {"ModbusConnect", "ExternIOConnect"});
}

void notifyModbusIoState(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_Modbus_Io_State(change.values[0], change.values[1]);
}

// 0x7017 {"cooperativeRobot"}. values: the robot.
Change cooperativeRobot(const Json::Value &report, RobotState &)
{
    return integersOf(report, {"cooperativeRobot"});
}

void notifyCooperativeRobot(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_recvCOOPERATIVE(change.values[0]);
}

// 0x5606 {"robot","posName","posValue"[14]}: globalPosition = "posValue"
// (robot axes [0..6], synchronous axes [7..13]; values not sent read 0).
Change globalPosition(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"posValue"}))
        return {};
    std::fill(std::begin(state.globalPosition), std::end(state.globalPosition), 0.0);
    jsonReals(report, "posValue", state.globalPosition, 14);
    return taken();
}

// 0x3E03 {"listnum","nameList"[]}: the first "listnum" names (all of them
// when "listnum" is 0 or missing), with "自定义" moved to the end. texts:
// the list.
Change robotList(const Json::Value &report, RobotState &)
{
    if (!hasAnyKey(report, {"nameList", "listnum"}))
        return {};
    Change change = taken();
    const Json::Value &names = jsonMember(report, "nameList");
    const int available = names.isArray() ? int(names.size()) : 0;
    const int listnum = jsonInt(report, "listnum");
    const int count = listnum > 0 ? qMin(listnum, available) : available;
    bool userDefined = false;
    for (int i = 0; i < count; ++i) {
        const Json::Value &entry = names[Json::ArrayIndex(i)];
        const QString name = entry.isString() ? QString::fromStdString(entry.asString()) : QString();
        if (name == QString::fromUtf8(kUserDefined))
            userDefined = true;
        else
            change.texts << name;
    }
    if (userDefined)
        change.texts << QString::fromUtf8(kUserDefined);
    return change;
}

void notifyRobotList(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.receivePresentRobotList(change.texts);
}

// 0x2E0F {"slaveType"[],"slaveTypeEnglish"[],"servoNum","IONum"}:
// servoSlaveLabels = "伺服-1".."伺服-servoNum", then "IO-1".."IO-IONum".
Change servoList(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"servoNum", "IONum"}))
        return {};
    // Bounded so that a corrupt count cannot exhaust memory.
    constexpr int kMaxSlaves = 64;
    const int servos = qBound(0, jsonInt(report, "servoNum"), kMaxSlaves);
    const int ios = qBound(0, jsonInt(report, "IONum"), kMaxSlaves);
    QStringList labels;
    for (int i = 1; i <= servos; ++i)
        labels << robotText(QT_TRANSLATE_NOOP("Robot", "伺服-")) + QString::number(i);
    for (int i = 1; i <= ios; ++i)
        labels << QStringLiteral("IO-") + QString::number(i);
    state.servoSlaveLabels = labels;
    return taken();
}

void notifyServoList(RobotSignals &to, const Change &, const QByteArray &)
{
    emit to.signal_updateRobotServoList();
}

// 0x2F16 {"robot","safePos","isSync"}: "safePos" and "isSync" hold, per
// robot, 1 when the robot (its external axes) is in the safe position and
// 0 when not - an array with robot 1 first, or one number for "robot".
// The robots out of place are logged as one message:
//   "机器人1 不在安全位置 ,  外部轴不在安全位置 ; 机器人2 不在安全位置  )!"
Change unsafePoint(const Json::Value &report, RobotState &)
{
    if (!hasAnyKey(report, {"safePos", "isSync"}))
        return {};
    Change change = taken();
    QStringList pieces;
    for (int robot = 1; robot <= 4; ++robot) {
        const bool robotOut = flagOfRobot(report, "safePos", robot) == 0;
        const bool axesOut = flagOfRobot(report, "isSync", robot) == 0;
        if (!robotOut && !axesOut)
            continue;
        QString piece = robotText(QT_TRANSLATE_NOOP("Robot", "机器人")) + QString::number(robot);
        if (robotOut)
            piece += robotText(QT_TRANSLATE_NOOP("Robot", " 不在安全位置 "));
        if (robotOut && axesOut)
            piece += QStringLiteral(", ");
        if (axesOut)
            piece += robotText(QT_TRANSLATE_NOOP("Robot", " 外部轴不在安全位置 "));
        pieces << piece;
    }
    if (!pieces.isEmpty())
        change.lines << pieces.join(QStringLiteral("; ")) + QStringLiteral(" )!");
    return change;
}

} // namespace qrx::decoders
