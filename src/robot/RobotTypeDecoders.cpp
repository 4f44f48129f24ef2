// The robot model and its kinematic parameters: robot type (0x2E03), joint
// parameters (0x3B03), jog limits (0x2606, 0x2609), interpolation (0x2803),
// jog sensitivity (0x260C), positioner axis count (0x700B) and the DH
// parameters (0x3A03, 0x3E05). Decoders are pure (ReportTable.h). The one
// exception to the common shape: while the robot is the one-axis model, DH
// messages are ignored altogether and wake nobody.

#include "robot/Decoders.h"

#include "common/JsonRead.h"
#include "robot/DhForms.h"
#include "robot/HandlerLines.h"
#include "robot/RobotSignals.h"
#include "robot/RobotState.h"
#include "robot/RobotTypes.h"

#include <QCoreApplication>

namespace qrx::decoders {

namespace {

// The members of a DH message; one of them makes it a DH report.
const char *const kDhKeys[] = {"Link",   "CoupleCoe", "theta",   "upsideDown", "pitch",
                               "dynamicLimit", "x_ratio", "y_ratio", "z_ratio",    "conversionRatio"};

// Both DH messages, once the type allows them: the line of the type's form
// (DhForms.h). texts: the values; text: "upsideDown" as decimal text;
// reals: "pitch"; values: the axis count.
Change dh(const Json::Value &report, const RobotState &state)
{
    const DhForm form = dhFormForType(state.robotType);
    if (form == DhForm::Ignored) {
        Change ignored;
        ignored.wakes = false;
        return ignored;
    }
    if (!hasAnyKey(report, kDhKeys))
        return {};
    Change change = taken();
    const QString line = dhLogLine(form, report);
    if (!line.isEmpty())
        change.lines << line;
    change.texts = dhValueTexts(form, report);
    change.text = QString::number(jsonInt(report, "upsideDown"));
    change.reals = {jsonReal(report, "pitch")};
    change.values[0] = state.axisCount;
    return change;
}

} // namespace

// 0x2E03 {"type"}: robotType and axisCount from the wire code
// (RobotTypes.cpp). The delta and unknown codes keep the axis count; a few
// models log nothing. values: the type.
Change robotType(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"type"}))
        return {};
    Change change = taken();
    const RobotTypeRow &row = robotTypeForWire(jsonInt(report, "type"));
    state.robotType = change.values[0] = row.type;
    if (row.axes != kAxesUnchanged)
        state.axisCount = row.axes;
    if (row.logLine)
        change.lines << robotText(row.logLine);
    return change;
}

void notifyRobotType(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_change_CurRobotType(RobotType(change.values[0]));
}

// 0x3B03 {"Joint": {"AxisNum", limits, speeds, ratios, ...}}: no state.
// The report's one key is "Joint": {"AxisNum":3} beside it lacks it.
// values: "AxisNum".
Change jointParameters(const Json::Value &report, RobotState &)
{
    if (!hasAnyKey(report, {"Joint"}))
        return {};
    Change change = taken();
    const Json::Value &joint = jsonMember(report, "Joint");
    change.lines << fillLine(QT_TRANSLATE_NOOP("Robot", "接收关节参数数据 joint=%1 posSWLimit=%2 negSWLimit=%3 ratedvel=%4 "
                                                        "DeRatedVel=%5 maxRotSpeed=%6 maxDeRotSpeed=%7 maxAcc=%8 "),
                             joint,
                             {"AxisNum", "PosSWLimit", "NegSWLimit", "RatedVel", "DeRatedVel", "MaxRotSpeed",
                              "MaxDeRotSpeed", "MaxAcc"}) +
                        fillLine(QT_TRANSLATE_NOOP("Robot", "maxDecel=%9 reducRatio=%10 encoderResolution=%11 "
                                                            "ratedrotspeed=%12 ratedderotspeed=%13 backlash=%14 "
                                                            "direction=%15 AxisDirection=%16"),
                                 joint,
                                 {"MaxDecel", "ReducRatio", "EncoderResolution", "RatedRotSpeed", "RatedDeRotSpeed",
                                  "BackLash", "Direction", "AxisDirection"});
    change.values[0] = jsonInt(joint, "AxisNum");
    return change;
}

void notifyJointParameters(RobotSignals &to, const Change &change, const QByteArray &payload)
{
    emit to.robot_joint_para(change.values[0], payload);
}

// 0x2606 {"AxisNum","MaxSpeed","MaxAcc"}: the maximum jog speed of one
// joint. values: "AxisNum".
Change jointJogLimits(const Json::Value &report, RobotState &)
{
    if (!hasAnyKey(report, {"AxisNum", "MaxSpeed", "MaxAcc"}))
        return {};
    Change change = taken();
    change.lines << fillLine(QT_TRANSLATE_NOOP("Robot", "接收关节轴最大点动速度 AxisNum=%1 MaxSpeed=%2 MaxAcc=%3"),
                             report, {"AxisNum", "MaxSpeed", "MaxAcc"});
    change.values[0] = jsonInt(report, "AxisNum");
    return change;
}

void notifyJointJogLimits(RobotSignals &to, const Change &change, const QByteArray &payload)
{
    emit to.robot_jointInchSpeed_data_check(change.values[0], payload);
}

// 0x2803 {"interpolationMethod","absolutePosResolution","runDelayTime","stopTime"}
Change interpolation(const Json::Value &report, RobotState &)
{
    if (!hasAnyKey(report, {"interpolationMethod", "absolutePosResolution", "runDelayTime", "stopTime"}))
        return {};
    Change change = taken();
    change.lines << fillLine(QT_TRANSLATE_NOOP("Robot", "接收机器人插补方式 interpolationMethod=%1"), report,
                             {"interpolationMethod"});
    return change;
}

// 0x260C {"Sensitivity"}
Change sensitivity(const Json::Value &report, RobotState &)
{
    if (!hasAnyKey(report, {"Sensitivity"}))
        return {};
    Change change = taken();
    change.lines << fillLine(QT_TRANSLATE_NOOP("Robot", "接收点动灵敏度 Sensitivity=%1"), report, {"Sensitivity"});
    return change;
}

// 0x700B {"AxisNum"}: positionerAxisCount. Always taken: the payload goes
// on as received to signal_syncPositionerNum whatever it holds. values: the
// count, 1 when the report held it.
Change positionerAxes(const Json::Value &report, RobotState &state)
{
    Change change = taken();
    if (!hasAnyKey(report, {"AxisNum"}))
        return change;
    state.positionerAxisCount = change.values[0] = jsonInt(report, "AxisNum");
    change.values[1] = 1;
    change.lines << fillLine(QT_TRANSLATE_NOOP("Robot", "接收变位机轴数 %1"), report, {"AxisNum"});
    return change;
}

void notifyPositionerAxes(RobotSignals &to, const Change &change, const QByteArray &payload)
{
    if (change.values[1])
        emit to.robot_tool_receiveOutterAxisCount(change.values[0]);
    emit to.signal_syncPositionerNum(payload);
}

// 0x3A03: the DH parameter state.
Change dhState(const Json::Value &report, RobotState &state)
{
    return dh(report, state);
}

void notifyDhState(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_user_dhParaState(change.texts);
    emit to.robot_user_dhcoord(change.text);
    emit to.signal_robotUserDhpitch(change.reals.value(0));
}

// 0x3E05: the DH parameter values of the robot: what 0x3A03 gives, then
// robot_joint_para(axisCount, payload) and, last, signal_DHreviewFinish().
Change dhValues(const Json::Value &report, RobotState &state)
{
    return dh(report, state);
}

void notifyDhValues(RobotSignals &to, const Change &change, const QByteArray &payload)
{
    notifyDhState(to, change, payload);
    emit to.robot_joint_para(change.values[0], payload);
    emit to.signal_DHreviewFinish();
}

} // namespace qrx::decoders
