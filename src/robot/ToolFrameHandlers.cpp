// The handlers of Robot for tool frames, user frames and their calibration:
// tool parameters (0x3807), user frame data, selection and comment (0x3C09,
// 0x3C0C, 0x3C0F), the taught points of the 2-, 7- and 20-point tool
// calibrations (0x3803, 0x3813, 0x7103, 0x710B), their state and results
// (0x3816, 0x7108, 0x3804, 0x7104, 0x7106), the four-point calculation
// (0x7208, 0x7204), the DH calculation result (0x7206) and the zero-point
// calibration (0x3303).
//
// Common shape: parse, read, store what the host API copies out, log, emit,
// wake every waiter at the end.
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

#include "robot/Robot.h"

#include "common/Payload.h"
#include "robot/HandlerShape.h"
#include "robot/HandlerLines.h"
#include "common/JsonRead.h"

#include <algorithm>
#include <initializer_list>

using qrx::fillLine;
using qrx::robotText;
using qrx::writeRobotLine;

namespace {

using PointSignal = void (Robot::*)(int, QByteArray);

// Calibration point record {"pointNum","pos"[6]} (a report holds one of
// the two, else it is not taken): log "... pointNum=%1
// x=%2 y=%3 z=%4 a=%5 b=%6 c=%7", emit (pointNum, payload).
void takeCalibrationPoint(Robot *robot, const Json::Value &root, const QByteArray &data, const char *text,
                          PointSignal notify)
{
    const int pointNum = qrx::jsonInt(root, "pointNum");
    double pos[6] = {};
    qrx::jsonReals(root, "pos", pos, 6);
    QString line = robotText(text).arg(pointNum);
    for (double v : pos)
        line = line.arg(v);
    writeRobotLine(line);
    emit(robot->*notify)(pointNum, data);
}

bool succeeded(const Json::Value &root, const char *key)
{
    return qrx::jsonInt(root, key) != 0;
}

// "result" and "apply" reports: the success or the failure line, then the
// value as sent, for the signal.
int logOutcome(const Json::Value &root, const char *key, const char *okText, const char *failText)
{
    writeRobotLine(robotText(succeeded(root, key) ? okText : failText));
    return qrx::jsonInt(root, key);
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
void fillSlots(const Json::Value &root, double *out, std::initializer_list<Slots> members)
{
    for (const Slots &m : members) {
        std::fill(out, out + m.count, 0.0);
        const Json::Value &member = qrx::jsonMember(root, m.key);
        if (member.isArray())
            qrx::jsonReals(root, m.key, out, m.count);
        else
            out[0] = qrx::jsonRealValue(member);
        out += m.count;
    }
}

} // namespace

// ---- tool parameters --------------------------------------------------------

// 0x3807 {"toolNum","toolDeg"[6],"payload_mass","payload_inertia",
// "payload_mass_center_X/Y/Z","note"}: toolParameters[toolNum] = "toolDeg"
// (x, y, z, A, B, C) for tool numbers 0..kToolCount-1, lastToolNum.
void Robot::robot_net_slot_ToolParameter(const QByteArray &data)
{
    takeReport(data, {"toolNum", "toolDeg"}, [&](const Json::Value &root) {
        const int toolNum = qrx::jsonInt(root, "toolNum");
        QVector<double> tool(6, 0.0);
        qrx::jsonReals(root, "toolDeg", tool.data(), 6);
        const QString note = qrx::jsonString(root, "note");
        lastToolNum = toolNum;
        if (toolNum >= 0 && toolNum < kToolCount)
            std::copy(tool.cbegin(), tool.cend(), toolParameters[toolNum]);

        QString line = robotText(QT_TRANSLATE_NOOP(
                                     "Robot", "接收工具手参数 toolNum=%1 x=%2 y=%3 z=%4 A=%5 B=%6 C=%7 note=%8"))
                           .arg(toolNum);
        for (double v : tool)
            line = line.arg(v);
        writeRobotLine(line.arg(note));
        emit robot_tool_count_check(toolNum, tool, data);
    });
}

// ---- user frames ------------------------------------------------------------

// 0x3C09 {"userNum","inquire","status","Calibration","posDeg"[4 or 6]}
void Robot::robot_net_slot_UserCoordsReply(const QByteArray &data)
{
    takeReport(data, {"userNum", "posDeg"}, [&](const Json::Value &root) {
        const int userNum = qrx::jsonInt(root, "userNum");
        const int inquire = qrx::jsonInt(root, "inquire");
        double values[6] = {};
        const int count = qrx::jsonReals(root, "posDeg", values, 6);
        const bool fourValues = count <= 4;
        const QVector<double> frame(values, values + (fourValues ? 4 : 6));

        QString line = fourValues
                           ? robotText(QT_TRANSLATE_NOOP(
                                 "Robot", "接收用户坐标数据 userNum=%1 inquire=%2 pos1=%3 pos2=%4 pos3=%5 pos4=%6"))
                           : robotText(QT_TRANSLATE_NOOP("Robot", "接收用户坐标数据 userNum=%1 inquire=%2 pos1=%3 "
                                                                  "pos2=%4 pos3=%5 pos4=%6 pos5=%7 pos6=%8"));
        line = line.arg(userNum).arg(inquire);
        for (double v : frame)
            line = line.arg(v);
        writeRobotLine(line);
        emit robot_usercoords_reply(userNum, line, frame, inquire != 0);
    });
}

// 0x3C0C {"curUserNum"}: currentUserFrame (the answer to 0x3C0B).
void Robot::robot_net_slot_CurrentUserCoords(const QByteArray &data)
{
    takeNumber(data, "curUserNum", currentUserFrame, QT_TRANSLATE_NOOP("Robot", "接收切换用户坐标 userNum=%1"),
               &Robot::robot_usercoords_inuse);
}

// 0x3C0F {"note"}
void Robot::robot_net_slot_UserCoordsNote(const QByteArray &data)
{
    takeReport(data, {"note"}, [&](const Json::Value &root) {
        const QString note = qrx::jsonString(root, "note");
        writeRobotLine(robotText(QT_TRANSLATE_NOOP("Robot", "接收用户坐标注释 note=%1")).arg(note));
        emit robot_usercoords_note(note);
    });
}

// ---- taught points ----------------------------------------------------------

void Robot::robot_net_slot_ToolCheck(const QByteArray &data)
{
    takeReport(data, {"pointNum", "pos"}, [&](const Json::Value &root) {
        takeCalibrationPoint(this, root, data,
                             QT_TRANSLATE_NOOP("Robot", "接收工具手标定数据 pointNum=%1 x=%2 y=%3 z=%4 a=%5 b=%6 c=%7"),
                             &Robot::robot_tool_check);
    });
}

void Robot::robot_net_slot_ToolCheckFor20(const QByteArray &data)
{
    takeReport(data, {"pointNum", "pos"}, [&](const Json::Value &root) {
        takeCalibrationPoint(this, root, data,
                             QT_TRANSLATE_NOOP("Robot", "接收工具手标定 20点标定数据 pointNum=%1 x=%2 y=%3 z=%4 "
                                                        "a=%5 b=%6 c=%7"),
                             &Robot::robot_tool_checkFor20);
    });
}

void Robot::robot_net_slot_20MarkedPoint(const QByteArray &data)
{
    takeReport(data, {"pointNum", "pos"}, [&](const Json::Value &root) {
        takeCalibrationPoint(this, root, data,
                             QT_TRANSLATE_NOOP("Robot", "接收工具手标定 20点标定中已经标定数据 pointNum=%1 x=%2 y=%3 "
                                                        "z=%4 a=%5 b=%6 c=%7"),
                             &Robot::robot_tool_receive20MarkedPoint);
    });
}

void Robot::robot_net_slot_7MarkedPoint(const QByteArray &data)
{
    takeReport(data, {"pointNum", "pos"}, [&](const Json::Value &root) {
        takeCalibrationPoint(this, root, data,
                             QT_TRANSLATE_NOOP("Robot", "接收工具手标定 7点标定中已经标定数据 pointNum=%1 x=%2 y=%3 "
                                                        "z=%4 a=%5 b=%6 c=%7"),
                             &Robot::robot_tool_receive7MarkedPoint);
    });
}

// 0x3816, 0x7108 {"status"}: the state of a tool calibration.
void Robot::robot_net_slot_ToolStatus(const QByteArray &data)
{
    takePayload(data, {}, {&Robot::signal_toolStatus});
}

// ---- results ----------------------------------------------------------------

// 0x3804 {"result"}
void Robot::robot_net_slot_CountSuccess(const QByteArray &data)
{
    takeReport(data, {"result"}, [&](const Json::Value &root) {
        emit robot_count_success(logOutcome(root, "result", QT_TRANSLATE_NOOP("Robot", "接收工具手标定计算成功"),
                                            QT_TRANSLATE_NOOP("Robot", "接收工具手标定失败")));
    });
}

// 0x7104 {"result","distance"}
void Robot::robot_net_slot_CountSuccessFor20(const QByteArray &data)
{
    takeReport(data, {"result", "distance"}, [&](const Json::Value &root) {
        const char *text = succeeded(root, "result")
                               ? QT_TRANSLATE_NOOP("Robot", "接收工具手标定计算成功,结果值为%1")
                               : QT_TRANSLATE_NOOP("Robot", "接收工具手标定失败,结果值为%1");
        writeRobotLine(fillLine(text, root, {"distance"}));
        emit robot_count_successFor20(qrx::jsonInt(root, "result"), qrx::jsonReal(root, "distance"));
    });
}

// 0x7106 {"apply"}
void Robot::robot_net_slot_ResetResultToZeroPoint(const QByteArray &data)
{
    takeReport(data, {"apply"}, [&](const Json::Value &root) {
        emit robot_ResetResult_ToZeroPoint(
            logOutcome(root, "apply", QT_TRANSLATE_NOOP("Robot", "20点标定，将结果位置标为零点成功"),
                       QT_TRANSLATE_NOOP("Robot", "20点标定，将结果位置标为零点失败")));
    });
}

// 0x7208 {"status"[4],"result","length"[3],"dtheta"}: fourPointData.
void Robot::robot_net_slot_4Point(const QByteArray &data)
{
    takeReport(data, {"status", "result", "length", "dtheta"}, [&](const Json::Value &root) {
        fillSlots(root, fourPointData, {{"status", 4}, {"result", 1}, {"length", 3}, {"dtheta", 1}});
        emit robot_received4Point(data);
    });
}

// 0x7204 {"result","length"[3],"dtheta"}: fourPointResult.
void Robot::robot_net_slot_CountSuccessFor4(const QByteArray &data)
{
    takeReport(data, {"result", "length", "dtheta"}, [&](const Json::Value &root) {
        fillSlots(root, fourPointResult, {{"result", 1}, {"length", 3}, {"dtheta", 1}});
        emit robot_count_successFor4(data);
    });
}

// 0x7206 {"apply"}: dhResult.
void Robot::robot_net_slot_resultForDH(const QByteArray &data)
{
    takeReport(data, {"apply"}, [&](const Json::Value &root) {
        dhResult.store(succeeded(root, "apply") ? 1 : 0);
        emit robot_receivedresultForDH(data);
    });
}

// 0x3303: zeroCalibrationSuccess = 1, whatever the payload.
void Robot::robot_net_slot_ZeroSuccess(const QByteArray &data)
{
    WakeAtEnd wake(this);
    zeroCalibrationSuccess.store(1);
    writeRobotLine(robotText(QT_TRANSLATE_NOOP("Robot", "接收零点标定成功")));
    emit robot_zero_success(data);
}
