// Tools, user frames and calibration: select a tool, write and read its
// parameters, select a user frame, the four-point calibration, the DH
// result, an axis's zero position and zero-position offsets.
//
// Every frame leaves through the API's Robot. While connected that is the
// class-wide Robot instance; after a close, asking the instance accessor
// would build an idle Robot without an address (which the next
// connect_robot() would then pick up), and its frame would reach no
// controller either, so the closed Robot's link takes it instead.

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "protocol/Codes.h"

using namespace qrx::api;

namespace code = qrx::protocol::code;

namespace {

constexpr int kToolValues = 6;
constexpr double kZeroShiftLimit = 360.0;
constexpr int kZeroShiftAxes = 6;
constexpr int kZeroShiftValues = 7;

} // namespace

extern "C" {

void switch_tool_hand(int toolNum)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::SetCurrentTool, payloadOf(withCurrentRobot(robot, {{"curToolNum", toolNum}})));
}

int get_current_tool_hand(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    requestAndWait(robot, code::GetCurrentTool, payloadOf(withCurrentRobot(robot)));
    return robot->currentTool;
}

void set_tool_hand_param(int toolNum, double *tool)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (!tool)
        return;
    static const char *const keys[kToolValues] = {"x", "y", "z", "A", "B", "C"};
    Json::Value values(Json::objectValue);
    for (int i = 0; i < kToolValues; ++i)
        values[keys[i]] = tool[i];
    robot->send(code::SetToolData, payloadOf(withCurrentRobot(robot, {{"toolNum", toolNum}, {"tool", values}})));
}

// The reply fills the parameters of the tool it names; the caller gets
// those of the tool asked for (a tool number outside the cache gives
// nothing).
void query_tool_hand_param(int toolNum, double *out)
{
    QRX_ROBOT_OR_RETURN(robot);
    requestAndWait(robot, code::GetToolData, payloadOf(object({{"toolNum", toolNum}})));
    if (toolNum >= 0 && toolNum < Robot::kToolCount)
        copyOut(robot, robot->toolParameters[toolNum], kToolValues, out);
}

void set_user_coord_number(int userNum)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::SetCurrentUserFrame, payloadOf(withCurrentRobot(robot, {{"userNum", userNum}})));
    robot->send(code::GetUserFrame, payloadOf(object({{"userNum", userNum}, {"inquire", "Calibration"}})));
}

// Takes no "no link" test: the controller's four points are asked for at
// once. Before any connect_robot() there is no Robot to ask, so nothing is
// sent and out is left alone rather than waiting for ever.
void ask_four_point(double *out)
{
    Robot *robot = currentRobot();
    if (!robot)
        return;
    requestAndWait(robot, code::GetFourPoint);
    copyOut(robot, robot->fourPointData, 9, out);
}

void four_point_mark(int pointNum, int status)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::MarkFourPoint, payloadOf(object({{"pointNum", pointNum}, {"status", status}})));
}

void four_point_calculation(double first, double second, double *out)
{
    QRX_ROBOT_OR_RETURN(robot);
    Json::Value params(Json::arrayValue);
    params.append(first);
    params.append(second);
    requestAndWait(robot, code::SetFourPointParams, payloadOf(object({{"ParamOf4Points", params}})));
    copyOut(robot, robot->fourPointResult, 5, out);
}

bool result_for_DH(void)
{
    QRX_ROBOT_OR_RETURN(robot, false);
    requestAndWait(robot, code::ApplyFourPointDh);
    return robot->dhResult.load() != 0;
}

bool set_axis_zero_position(int axis)
{
    QRX_ROBOT_OR_RETURN(robot, true); // true without a link, deliberately
    if (robot->servoStatus == 2 || robot->servoStatus == 3)
        return false;
    robot->zeroCalibrationSuccess.store(0);
    requestAndWait(robot, code::CalibrateZero, payloadOf(object({{"axis", axis}, {"clearEncoder", false}})));
    return robot->zeroCalibrationSuccess.load() != 0;
}

void set_zero_pos_shift(int axis, double value)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (value < -kZeroShiftLimit || value > kZeroShiftLimit)
        return;
    if (axis < 1 || axis > kZeroShiftAxes)
        return;
    // Integer zeros, the one shifted axis as a real.
    Json::Value values(Json::arrayValue);
    for (int i = 0; i < kZeroShiftValues; ++i)
        values.append(0);
    values[axis - 1] = value;
    robot->send(code::SetZeroShift, payloadOf(withCurrentRobot(robot, {{"axis", axis}, {"value", values}})));
}

} // extern "C"
