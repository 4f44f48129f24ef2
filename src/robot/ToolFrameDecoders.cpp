// Tool frames, user frames and their calibration: tool parameters (0x3807),
// user frame data, selection and comment (0x3C09, 0x3C0C, 0x3C0F), the
// taught points of the 2-, 7- and 20-point tool calibrations (0x3803,
// 0x3813, 0x7103, 0x710B), their state and results (0x3816, 0x7108,
// 0x3804, 0x7104, 0x7106), the four-point calculation (0x7208, 0x7204),
// the DH calculation result (0x7206) and the zero-point calibration
// (0x3303). Decoders are pure (ReportTable.h).
//
// Decisions of this controller's protocol:
//  - "result" and "apply" mean success when non-zero (true or 1);
//  - a member that the layout gives several slots may come as an array
//    (element by element) or as one number (first slot; the others 0);
//  - the user frame is logged with the four-value line when "posDeg" holds
//    four values or fewer (the four-axis models), else with the six-value
//    line; the text handed on with robot_usercoords_reply is that line;
//  - the zero-point calibration message reads no key: it means success
//    whatever its payload, so it is taken even when empty.

#include "robot/Decoders.h"

#include "common/JsonRead.h"
#include "robot/HandlerLines.h"
#include "robot/RobotSignals.h"
#include "robot/RobotState.h"

#include <QCoreApplication>

#include <algorithm>
#include <initializer_list>

namespace qrx::decoders {

namespace {

bool succeeded(const Json::Value &report, const char *key)
{
    return jsonInt(report, key) != 0;
}

// Calibration point record {"pointNum","pos"[6]} (a report holds one of
// the two, else it is not taken): the line "... pointNum=%1 x=%2 y=%3 z=%4
// a=%5 b=%6 c=%7". values: pointNum.
Change calibrationPoint(const Json::Value &report, const char *text)
{
    if (!hasAnyKey(report, {"pointNum", "pos"}))
        return {};
    Change change = taken();
    change.values[0] = jsonInt(report, "pointNum");
    double pos[6] = {};
    jsonReals(report, "pos", pos, 6);
    QString line = robotText(text).arg(change.values[0]);
    for (double v : pos)
        line = line.arg(v);
    change.lines << line;
    return change;
}

// "result" and "apply" reports: the success or the failure line. values:
// the member as sent.
Change outcome(const Json::Value &report, const char *key, const char *okText, const char *failText)
{
    if (!hasAnyKey(report, {key}))
        return {};
    Change change = taken();
    change.lines << robotText(succeeded(report, key) ? okText : failText);
    change.values[0] = jsonInt(report, key);
    return change;
}

// One member of a record laid out in slots, and how many slots it takes.
struct Slots
{
    const char *key;
    int count;
};

// Fills the slots of out from the members in turn: an array element by
// element, a single number into its first slot; the slots left over are
// cleared.
void fillSlots(const Json::Value &report, double *out, std::initializer_list<Slots> members)
{
    for (const Slots &m : members) {
        std::fill(out, out + m.count, 0.0);
        const Json::Value &member = jsonMember(report, m.key);
        if (member.isArray())
            jsonReals(report, m.key, out, m.count);
        else
            out[0] = jsonRealValue(member);
        out += m.count;
    }
}

} // namespace

// ---- tool parameters --------------------------------------------------------

// 0x3807 {"toolNum","toolDeg"[6],"payload_mass",...,"note"}:
// toolParameters[toolNum] = "toolDeg" (x, y, z, A, B, C) for tool numbers
// 0..kToolCount-1, lastToolNum. values: toolNum; reals: the six values.
Change toolParameters(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"toolNum", "toolDeg"}))
        return {};
    Change change = taken();
    const int toolNum = change.values[0] = jsonInt(report, "toolNum");
    change.reals = QVector<double>(6, 0.0);
    jsonReals(report, "toolDeg", change.reals.data(), 6);
    state.lastToolNum = toolNum;
    if (toolNum >= 0 && toolNum < RobotState::kToolCount)
        std::copy(change.reals.cbegin(), change.reals.cend(), state.toolParameters[toolNum]);
    QString line =
        robotText(QT_TRANSLATE_NOOP("Robot", "接收工具手参数 toolNum=%1 x=%2 y=%3 z=%4 A=%5 B=%6 C=%7 note=%8"))
            .arg(toolNum);
    for (double v : change.reals)
        line = line.arg(v);
    change.lines << line.arg(jsonString(report, "note"));
    return change;
}

void notifyToolParameters(RobotSignals &to, const Change &change, const QByteArray &payload)
{
    emit to.robot_tool_count_check(change.values[0], change.reals, payload);
}

// ---- user frames ------------------------------------------------------------

// 0x3C09 {"userNum","inquire","status","Calibration","posDeg"[4 or 6]}: no
// state. values: userNum, inquire; reals: the frame; text: the line.
Change userFrame(const Json::Value &report, RobotState &)
{
    if (!hasAnyKey(report, {"userNum", "posDeg"}))
        return {};
    Change change = taken();
    const int userNum = change.values[0] = jsonInt(report, "userNum");
    const int inquire = change.values[1] = jsonInt(report, "inquire");
    double values[6] = {};
    const bool fourValues = jsonReals(report, "posDeg", values, 6) <= 4;
    change.reals = QVector<double>(values, values + (fourValues ? 4 : 6));
    QString line = fourValues
                       ? robotText(QT_TRANSLATE_NOOP(
                             "Robot", "接收用户坐标数据 userNum=%1 inquire=%2 pos1=%3 pos2=%4 pos3=%5 pos4=%6"))
                       : robotText(QT_TRANSLATE_NOOP("Robot", "接收用户坐标数据 userNum=%1 inquire=%2 pos1=%3 "
                                                              "pos2=%4 pos3=%5 pos4=%6 pos5=%7 pos6=%8"));
    line = line.arg(userNum).arg(inquire);
    for (double v : change.reals)
        line = line.arg(v);
    change.lines << line;
    change.text = line;
    return change;
}

void notifyUserFrame(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_usercoords_reply(change.values[0], change.text, change.reals, change.values[1] != 0);
}

// 0x3C0C {"curUserNum"}: currentUserFrame (the answer to 0x3C0B).
// values: the frame.
Change currentUserFrame(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"curUserNum"}))
        return {};
    Change change = taken();
    state.currentUserFrame = change.values[0] = jsonInt(report, "curUserNum");
    change.lines << robotText(QT_TRANSLATE_NOOP("Robot", "接收切换用户坐标 userNum=%1")).arg(change.values[0]);
    return change;
}

void notifyCurrentUserFrame(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_usercoords_inuse(change.values[0]);
}

// 0x3C0F {"note"}: no state. text: the note.
Change userFrameNote(const Json::Value &report, RobotState &)
{
    if (!hasAnyKey(report, {"note"}))
        return {};
    Change change = taken();
    change.text = jsonString(report, "note");
    change.lines << robotText(QT_TRANSLATE_NOOP("Robot", "接收用户坐标注释 note=%1")).arg(change.text);
    return change;
}

void notifyUserFrameNote(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_usercoords_note(change.text);
}

// ---- taught points: no state ---------------------------------------------------

Change toolPoint(const Json::Value &report, RobotState &)
{
    return calibrationPoint(report,
                            QT_TRANSLATE_NOOP("Robot", "接收工具手标定数据 pointNum=%1 x=%2 y=%3 z=%4 a=%5 b=%6 c=%7"));
}

void notifyToolPoint(RobotSignals &to, const Change &change, const QByteArray &payload)
{
    emit to.robot_tool_check(change.values[0], payload);
}

Change toolPointFor20(const Json::Value &report, RobotState &)
{
    return calibrationPoint(report, QT_TRANSLATE_NOOP("Robot", "接收工具手标定 20点标定数据 pointNum=%1 x=%2 y=%3 z=%4 "
                                                               "a=%5 b=%6 c=%7"));
}

void notifyToolPointFor20(RobotSignals &to, const Change &change, const QByteArray &payload)
{
    emit to.robot_tool_checkFor20(change.values[0], payload);
}

Change markedPointOf20(const Json::Value &report, RobotState &)
{
    return calibrationPoint(report, QT_TRANSLATE_NOOP("Robot", "接收工具手标定 20点标定中已经标定数据 pointNum=%1 x=%2 y=%3 "
                                                               "z=%4 a=%5 b=%6 c=%7"));
}

void notifyMarkedPointOf20(RobotSignals &to, const Change &change, const QByteArray &payload)
{
    emit to.robot_tool_receive20MarkedPoint(change.values[0], payload);
}

Change markedPointOf7(const Json::Value &report, RobotState &)
{
    return calibrationPoint(report, QT_TRANSLATE_NOOP("Robot", "接收工具手标定 7点标定中已经标定数据 pointNum=%1 x=%2 y=%3 "
                                                               "z=%4 a=%5 b=%6 c=%7"));
}

void notifyMarkedPointOf7(RobotSignals &to, const Change &change, const QByteArray &payload)
{
    emit to.robot_tool_receive7MarkedPoint(change.values[0], payload);
}

// ---- results -------------------------------------------------------------------

// 0x3804 {"result"}. values: "result".
Change toolResult(const Json::Value &report, RobotState &)
{
    return outcome(report, "result", QT_TRANSLATE_NOOP("Robot", "接收工具手标定计算成功"),
                   QT_TRANSLATE_NOOP("Robot", "接收工具手标定失败"));
}

void notifyToolResult(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_count_success(change.values[0]);
}

// 0x7104 {"result","distance"}. values: "result"; reals: "distance".
Change toolResultFor20(const Json::Value &report, RobotState &)
{
    if (!hasAnyKey(report, {"result", "distance"}))
        return {};
    Change change = taken();
    const char *text = succeeded(report, "result") ? QT_TRANSLATE_NOOP("Robot", "接收工具手标定计算成功,结果值为%1")
                                                   : QT_TRANSLATE_NOOP("Robot", "接收工具手标定失败,结果值为%1");
    change.lines << fillLine(text, report, {"distance"});
    change.values[0] = jsonInt(report, "result");
    change.reals = {jsonReal(report, "distance")};
    return change;
}

void notifyToolResultFor20(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_count_successFor20(change.values[0], change.reals.value(0));
}

// 0x7106 {"apply"}. values: "apply".
Change zeroPointOf20(const Json::Value &report, RobotState &)
{
    return outcome(report, "apply", QT_TRANSLATE_NOOP("Robot", "20点标定，将结果位置标为零点成功"),
                   QT_TRANSLATE_NOOP("Robot", "20点标定，将结果位置标为零点失败"));
}

void notifyZeroPointOf20(RobotSignals &to, const Change &change, const QByteArray &)
{
    emit to.robot_ResetResult_ToZeroPoint(change.values[0]);
}

// 0x7208 {"status"[4],"result","length"[3],"dtheta"}: fourPointData.
Change fourPoint(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"status", "result", "length", "dtheta"}))
        return {};
    fillSlots(report, state.fourPointData, {{"status", 4}, {"result", 1}, {"length", 3}, {"dtheta", 1}});
    return taken();
}

// 0x7204 {"result","length"[3],"dtheta"}: fourPointResult.
Change fourPointResult(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"result", "length", "dtheta"}))
        return {};
    fillSlots(report, state.fourPointResult, {{"result", 1}, {"length", 3}, {"dtheta", 1}});
    return taken();
}

// 0x7206 {"apply"}: dhResult.
Change dhResult(const Json::Value &report, RobotState &state)
{
    if (!hasAnyKey(report, {"apply"}))
        return {};
    state.dhResult.store(succeeded(report, "apply") ? 1 : 0);
    return taken();
}

// 0x3303: zeroCalibrationSuccess = 1, whatever the payload.
Change zeroCalibration(const Json::Value &, RobotState &state)
{
    Change change = taken();
    state.zeroCalibrationSuccess.store(1);
    change.lines << robotText(QT_TRANSLATE_NOOP("Robot", "接收零点标定成功"));
    return change;
}

} // namespace qrx::decoders
