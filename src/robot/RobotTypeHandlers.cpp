// The handlers of Robot for the robot model and its kinematic parameters:
// robot type (0x2E03), joint parameters (0x3B03), jog limits (0x2606,
// 0x2609), interpolation (0x2803), jog sensitivity (0x260C), positioner axis
// count (0x700B) and the DH parameters (0x3A03, 0x3E05).
//
// Common shape: parse, read, store, log, emit, and wake every waiter at the
// end, parsed or not. The one exception: while the robot is the one-axis
// model, DH messages are ignored altogether and wake nobody.

#include "robot/Robot.h"

#include "common/Payload.h"
#include "robot/HandlerShape.h"
#include "robot/DhForms.h"
#include "robot/HandlerLines.h"
#include "common/JsonRead.h"

using qrx::fillLine;
using qrx::writeRobotLine;

// 0x2E03 {"type"}: robotType and axisCount from the wire code (RobotTypes.cpp).
// The delta and unknown codes keep the axis count; a few models log nothing.
void Robot::robot_net_slot_RobotType(const QByteArray &data)
{
    takeReport(data, {"type"}, [&](const Json::Value &root) {
        const qrx::RobotTypeRow &row = qrx::robotTypeForWire(qrx::jsonInt(root, "type"));
        robotType = row.type;
        if (row.axes != qrx::kAxesUnchanged)
            axisCount = row.axes;
        if (row.logLine)
            writeRobotLine(qrx::robotText(row.logLine));
        emit robot_change_CurRobotType(row.type);
    });
}

// 0x3B03 {"Joint": {"AxisNum", limits, speeds, ratios, ...}}: no state.
// Emits robot_joint_para("AxisNum", payload). The report's one key is
// "Joint": {"AxisNum":3} beside it lacks it and is not taken.
void Robot::robot_net_slot_JointPara(const QByteArray &data)
{
    takeReport(data, {"Joint"}, [&](const Json::Value &root) {
        const Json::Value &joint = qrx::jsonMember(root, "Joint");
        const QString line =
            fillLine(QT_TRANSLATE_NOOP("Robot", "接收关节参数数据 joint=%1 posSWLimit=%2 negSWLimit=%3 ratedvel=%4 "
                                                "DeRatedVel=%5 maxRotSpeed=%6 maxDeRotSpeed=%7 maxAcc=%8 "),
                     joint,
                     {"AxisNum", "PosSWLimit", "NegSWLimit", "RatedVel", "DeRatedVel", "MaxRotSpeed",
                      "MaxDeRotSpeed", "MaxAcc"})
            + fillLine(QT_TRANSLATE_NOOP("Robot", "maxDecel=%9 reducRatio=%10 encoderResolution=%11 "
                                                  "ratedrotspeed=%12 ratedderotspeed=%13 backlash=%14 "
                                                  "direction=%15 AxisDirection=%16"),
                       joint,
                       {"MaxDecel", "ReducRatio", "EncoderResolution", "RatedRotSpeed", "RatedDeRotSpeed",
                        "BackLash", "Direction", "AxisDirection"});
        writeRobotLine(line);
        emit robot_joint_para(qrx::jsonInt(joint, "AxisNum"), data);
    });
}

// 0x2606 {"AxisNum","MaxSpeed","MaxAcc"}: maximum jog speed of one joint.
void Robot::robot_net_slot_JointInchSpeed(const QByteArray &data)
{
    takeReport(data, {"AxisNum", "MaxSpeed", "MaxAcc"}, [&](const Json::Value &root) {
        writeRobotLine(fillLine(
            QT_TRANSLATE_NOOP("Robot", "接收关节轴最大点动速度 AxisNum=%1 MaxSpeed=%2 MaxAcc=%3"), root,
            {"AxisNum", "MaxSpeed", "MaxAcc"}));
        emit robot_jointInchSpeed_data_check(qrx::jsonInt(root, "AxisNum"), data);
    });
}

// 0x2609 {"MaxSpeed", ...}: Cartesian jog limits; the reader parses them.
void Robot::robot_net_slot_RectInchSpeed(const QByteArray &data)
{
    takePayload(data, {}, {&Robot::robot_rectInchSpeed_data_check});
}

// 0x2803 {"interpolationMethod","absolutePosResolution","runDelayTime","stopTime"}
void Robot::robot_net_slot_InterpolationMode(const QByteArray &data)
{
    takeReport(data, {"interpolationMethod", "absolutePosResolution", "runDelayTime", "stopTime"}, [&](const Json::Value &root) {
        writeRobotLine(fillLine(QT_TRANSLATE_NOOP("Robot", "接收机器人插补方式 interpolationMethod=%1"), root,
                                {"interpolationMethod"}));
        emit robot_interpolationMode_data_check(data);
    });
}

// 0x260C {"Sensitivity"}
void Robot::robot_net_slot_Sensitivity(const QByteArray &data)
{
    takeReport(data, {"Sensitivity"}, [&](const Json::Value &root) {
        writeRobotLine(fillLine(QT_TRANSLATE_NOOP("Robot", "接收点动灵敏度 Sensitivity=%1"), root, {"Sensitivity"}));
        emit robot_sensitivity_data_check(data);
    });
}

// 0x700B {"AxisNum"}: positionerAxisCount.
void Robot::robot_net_slot_OutterAxisCount(const QByteArray &data)
{
    takeReport(data, {"AxisNum"}, [&](const Json::Value &root) {
        positionerAxisCount = qrx::jsonInt(root, "AxisNum");
        writeRobotLine(fillLine(QT_TRANSLATE_NOOP("Robot", "接收变位机轴数 %1"), root, {"AxisNum"}));
        emit robot_tool_receiveOutterAxisCount(positionerAxisCount);
    });
}

namespace {

// The members of a DH message; one of them makes it a DH report.
const char *const kDhKeys[] = {"Link",   "CoupleCoe", "theta",   "upsideDown", "pitch",
                               "dynamicLimit", "x_ratio", "y_ratio", "z_ratio",    "conversionRatio"};

// What both DH handlers do once the type allows the message: the line of
// the type's form (DhForms.h), then robot_user_dhParaState with the values,
// robot_user_dhcoord with the mounting flag ("upsideDown" as decimal text)
// and signal_robotUserDhpitch with the pitch.
void takeDh(Robot *robot, const Json::Value &root)
{
    const qrx::DhForm form = qrx::dhFormForType(robot->robotType);
    const QString line = qrx::dhLogLine(form, root);
    if (!line.isEmpty())
        writeRobotLine(line);
    const QStringList values = qrx::dhValueTexts(form, root);
    const QString upsideDown = QString::number(qrx::jsonInt(root, "upsideDown"));
    const double pitch = qrx::jsonReal(root, "pitch");
    emit robot->robot_user_dhParaState(values);
    emit robot->robot_user_dhcoord(upsideDown);
    emit robot->signal_robotUserDhpitch(pitch);
}

} // namespace

// 0x3E05: the DH parameter values of the robot: what 0x3A03 gives, then
// robot_joint_para(axisCount, payload) and, last, signal_DHreviewFinish().
void Robot::robot_net_slot_DHParaValue(const QByteArray &data)
{
    if (qrx::dhFormForType(robotType) == qrx::DhForm::Ignored)
        return;
    takeReport(data, [&](const Json::Value &root) {
        if (!qrx::hasAnyKey(root, kDhKeys))
            return;
        takeDh(this, root);
        emit robot_joint_para(axisCount, data);
        emit signal_DHreviewFinish();
    });
}

// 0x3A03: the DH parameter state.
void Robot::robot_net_slot_dhParaState(const QByteArray &data)
{
    if (qrx::dhFormForType(robotType) == qrx::DhForm::Ignored)
        return;
    takeReport(data, [&](const Json::Value &root) {
        if (qrx::hasAnyKey(root, kDhKeys))
            takeDh(this, root);
    });
}

// The catalogue is chosen by the robot count held (0x2E06).
QString Robot::configFileDescription(const QString &fileName) const
{
    return configCatalogue.describe(fileName, robotCount);
}
