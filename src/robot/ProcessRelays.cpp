// The process-specific handlers of Robot that read keys themselves: weld
// equipment data (0x4003), Modbus and external IO state (0x5719, 0x5033),
// vision range (0x3F06), ground-rail ratio (0x700F), cooperative robot
// (0x7017), one global position (0x5606), the robot list (0x3E03), the
// servo and IO slave list (0x2E0F) and the safe-position check (0x2F16).
// They have the common shape and wake every waiter at the end.
//
// Every other process message is a relay: its row of the report table
// (ReportTable.cpp) emits its Robot signal, so the reader gets the payload
// byte for byte and no waiting call is woken.

#include "robot/Robot.h"

#include "common/Payload.h"
#include "robot/HandlerShape.h"
#include "robot/HandlerLines.h"
#include "common/JsonRead.h"

using qrx::fillLine;
using qrx::robotText;
using qrx::writeRobotLine;

namespace {

// "自定义" (user-defined) is the pendant's entry for a robot model of the
// user's own; it always closes the robot list.
const char kUserDefined[] = "自定义";

// A per-robot flag of the safe-position report: an array holds one entry
// per robot (robot 1 first), a single number is the flag of "robot".
// Missing entries count as safe (1).
int flagOfRobot(const Json::Value &root, const char *key, int robot)
{
    const Json::Value &value = qrx::jsonMember(root, key);
    if (value.isArray())
        return Json::ArrayIndex(robot - 1) < value.size() ? qrx::jsonNumber(value[Json::ArrayIndex(robot - 1)]) : 1;
    if (value.isNull())
        return 1;
    return robot == qrx::jsonInt(root, "robot") ? qrx::jsonNumber(value) : 1;
}

} // namespace

// 0x4003 weld equipment data; the log line is the controller's own, the
// missing blank before "withdrawwire" included.
void Robot::robot_net_slot_WeldEquipmentData(const QByteArray &data)
{
    takeReport(data,
               {"arconDetect", "arconConfirm", "arcoffDetect", "preAspirated", "delAspirated", "withdrawwire",
                "breakRewire", "time", "distance", "velocity", "restart"},
               [&](const Json::Value &root) {
        writeRobotLine(fillLine(QT_TRANSLATE_NOOP("Robot", "接收焊接装备数据 arcDetect=%1 arcConfirm=%2 arcOffDetect=%3 "
                                                           "preAspirated=%4 delAspirated=%5withdrawwire=%6 "
                                                           "breakRewire=%7 distance=%8 velocity=%9"),
                                root,
                                {"arconDetect", "arconConfirm", "arcoffDetect", "preAspirated", "delAspirated",
                                 "withdrawwire", "breakRewire", "distance", "velocity"}));
        emit robot_weldCheckData(data);
    });
}

// 0x5719 {"ModbusConnect"}
void Robot::robot_net_slot_ModbusState(const QByteArray &data)
{
    takeReport(data, {"ModbusConnect"}, [&](const Json::Value &root) {
        emit robot_Modbus_State(qrx::jsonInt(root, "ModbusConnect"));
    });
}

// 0x5033 {"ModbusConnect","ExternIOConnect"}
void Robot::robot_net_slot_ModbusIoState(const QByteArray &data)
{
    takeReport(data, {"ModbusConnect", "ExternIOConnect"}, [&](const Json::Value &root) {
        emit robot_Modbus_Io_State(qrx::jsonInt(root, "ModbusConnect"), qrx::jsonInt(root, "ExternIOConnect"));
    });
}

// 0x3F06 {"maxX","minX",...}: the reader takes the ranges from the payload.
void Robot::robot_net_slot_VisionRange(const QByteArray &data)
{
    takePayload(data, {}, {&Robot::robot_visionRange_data_check});
}

// 0x700F {"yConversionRatio",...}
void Robot::robot_net_slot_SyncGroundRail(const QByteArray &data)
{
    takePayload(data, {}, {&Robot::signal_robotSyncGroundRail});
}

// 0x7017 {"cooperativeRobot"}
void Robot::robot_net_slot_COOPERATIVE(const QByteArray &data)
{
    takeReport(data, {"cooperativeRobot"}, [&](const Json::Value &root) {
        emit robot_recvCOOPERATIVE(qrx::jsonInt(root, "cooperativeRobot"));
    });
}

// 0x5606 {"robot","posName","posValue"[14]}: globalPosition = "posValue"
// (robot axes [0..6], synchronous axes [7..13]; values not sent read 0).
void Robot::robot_net_slot_GlobalPosition(const QByteArray &data)
{
    takeReport(data, {"posValue"}, [&](const Json::Value &root) {
        std::fill(std::begin(globalPosition), std::end(globalPosition), 0.0);
        qrx::jsonReals(root, "posValue", globalPosition, 14);
        emit robot_rec_globalPosition(data);
    });
}

// 0x3E03 {"listnum","nameList"[]}: the first "listnum" names (all of them
// when "listnum" is 0 or missing), with "自定义" moved to the end.
void Robot::robot_net_slot_PresentRobot(const QByteArray &data)
{
    takeReport(data, {"nameList", "listnum"}, [&](const Json::Value &root) {
        const Json::Value &names = qrx::jsonMember(root, "nameList");
        const int available = names.isArray() ? int(names.size()) : 0;
        const int listnum = qrx::jsonInt(root, "listnum");
        const int count = listnum > 0 ? qMin(listnum, available) : available;
        QStringList robots;
        bool userDefined = false;
        for (int i = 0; i < count; ++i) {
            const Json::Value &entry = names[Json::ArrayIndex(i)];
            const QString name = entry.isString() ? QString::fromStdString(entry.asString()) : QString();
            if (name == QString::fromUtf8(kUserDefined))
                userDefined = true;
            else
                robots << name;
        }
        if (userDefined)
            robots << QString::fromUtf8(kUserDefined);
        emit receivePresentRobotList(robots);
    });
}

// 0x2E0F {"slaveType"[],"slaveTypeEnglish"[],"servoNum","IONum"}:
// servoSlaveLabels = "伺服-1".."伺服-servoNum", then "IO-1".."IO-IONum".
void Robot::robot_net_slot_ServoList(const QByteArray &data)
{
    takeReport(data, {"servoNum", "IONum"}, [&](const Json::Value &root) {
        // Bounded so that a corrupt count cannot exhaust memory.
        constexpr int kMaxSlaves = 64;
        const int servos = qBound(0, qrx::jsonInt(root, "servoNum"), kMaxSlaves);
        const int ios = qBound(0, qrx::jsonInt(root, "IONum"), kMaxSlaves);
        QStringList labels;
        for (int i = 1; i <= servos; ++i)
            labels << robotText(QT_TRANSLATE_NOOP("Robot", "伺服-")) + QString::number(i);
        for (int i = 1; i <= ios; ++i)
            labels << QStringLiteral("IO-") + QString::number(i);
        servoSlaveLabels = labels;
        emit signal_updateRobotServoList();
    });
}

// 0x2F16 {"robot","safePos","isSync"}: "safePos" and "isSync" hold, per
// robot, 1 when the robot (its external axes) is in the safe position and
// 0 when not - an array with robot 1 first, or one number for "robot".
// The robots out of place are logged as one message:
//   "机器人1 不在安全位置 ,  外部轴不在安全位置 ; 机器人2 不在安全位置  )!"
void Robot::robot_net_slot_UnsafePoint(const QByteArray &data)
{
    takeReport(data, {"safePos", "isSync"}, [&](const Json::Value &root) {
        QStringList pieces;
        for (int robot = 1; robot <= 4; ++robot) {
            const bool robotOut = flagOfRobot(root, "safePos", robot) == 0;
            const bool axesOut = flagOfRobot(root, "isSync", robot) == 0;
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
            writeRobotLine(pieces.join(QStringLiteral("; ")) + QStringLiteral(" )!"));
    });
}
