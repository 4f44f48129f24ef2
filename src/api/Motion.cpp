// Single moves: joint, linear, circular, spline-like, and the same kinds
// with external axes. Each builds its payload and sends it once; nothing
// waits for the move to start or end (the running state is read apart).
//
// Payload differences that the controller relies on: robot_movc and
// robot_movca share 0x4503 and differ only in "isFull"; robot_extra_movc has
// no "isFull"; robot_extra_movl has neither "acc" nor "dec".
//
// The position buffers must hold the stated number of values; a null buffer
// sends nothing (no move to made-up coordinates).

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "protocol/Codes.h"

using namespace qrx::api;

namespace code = qrx::protocol::code;

namespace {

constexpr int kRobotPos = 6;
constexpr int kExtraPos = 12;

enum class Extras { AccDec, None };

// "robot", "vel", "coord", and "acc", "dec" where the move has them.
Json::Value moveHead(Robot *robot, int vel, int coord, int acc, int dec, Extras extras = Extras::AccDec)
{
    Json::Value v = withCurrentRobot(robot, {{"vel", vel}, {"coord", coord}});
    if (extras == Extras::AccDec) {
        v["acc"] = acc;
        v["dec"] = dec;
    }
    return v;
}

Json::Value reals(const double *values, int n)
{
    Json::Value array(Json::arrayValue);
    for (int i = 0; i < n; ++i)
        array.append(values[i]);
    return array;
}

void sendMove(quint16 code, const double *pos, int n, int vel, int coord, int acc, int dec)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (!pos)
        return;
    Json::Value v = moveHead(robot, vel, coord, acc, dec);
    v["pos"] = reals(pos, n);
    robot->send(code, payloadOf(v));
}

enum class Circle { Arc, Full, NoFlag };

void sendCircle(quint16 code, const double *one, const double *two, const double *three, int n, int vel,
                int coord, int acc, int dec, Circle circle)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (!one || !two || !three)
        return;
    Json::Value v = moveHead(robot, vel, coord, acc, dec);
    v["posOne"] = reals(one, n);
    v["posTwo"] = reals(two, n);
    v["posThree"] = reals(three, n);
    if (circle != Circle::NoFlag)
        v["isFull"] = circle == Circle::Full;
    robot->send(code, payloadOf(v));
}

} // namespace

extern "C" {

void robot_movj(double *pos, int vel, int coord, int acc, int dec)
{
    QRX_API_FUNCTION();
    sendMove(code::MoveJoint, pos, kRobotPos, vel, coord, acc, dec);
}

void robot_movl(double *pos, int vel, int coord, int acc, int dec)
{
    QRX_API_FUNCTION();
    sendMove(code::MoveLinear, pos, kRobotPos, vel, coord, acc, dec);
}

void robot_movc(double *posOne, double *posTwo, double *posThree, int vel, int coord, int acc, int dec)
{
    QRX_API_FUNCTION();
    sendCircle(code::MoveCircle, posOne, posTwo, posThree, kRobotPos, vel, coord, acc, dec, Circle::Arc);
}

void robot_movca(double *posOne, double *posTwo, double *posThree, int vel, int coord, int acc, int dec)
{
    QRX_API_FUNCTION();
    sendCircle(code::MoveCircle, posOne, posTwo, posThree, kRobotPos, vel, coord, acc, dec, Circle::Full);
}

void robot_movs(int count, double **pos, int vel, int coord, int acc, int dec)
{
    QRX_ROBOT_OR_RETURN(robot);
    Json::Value v = moveHead(robot, vel, coord, acc, dec);
    // No points: the frame goes out without "pos" at all.
    if (count > 0) {
        if (!pos)
            return;
        Json::Value points(Json::arrayValue);
        for (int i = 0; i < count; ++i) {
            if (!pos[i])
                return;
            points.append(reals(pos[i], kRobotPos));
        }
        v["pos"] = points;
    }
    robot->send(code::MoveSpline, payloadOf(v));
}

void robot_extra_movj(double *pos, int vel, int coord, int acc, int dec)
{
    QRX_API_FUNCTION();
    sendMove(code::MoveJointExtra, pos, kExtraPos, vel, coord, acc, dec);
}

void robot_extra_movl(double *pos, int vel, int coord)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (!pos)
        return;
    Json::Value v = moveHead(robot, vel, coord, 0, 0, Extras::None);
    v["pos"] = reals(pos, kExtraPos);
    robot->send(code::MoveLinearExtra, payloadOf(v));
}

void robot_extra_movc(double *posOne, double *posTwo, double *posThree, int vel, int coord, int acc, int dec)
{
    QRX_API_FUNCTION();
    sendCircle(code::MoveCircleExtra, posOne, posTwo, posThree, kExtraPos, vel, coord, acc, dec, Circle::NoFlag);
}

} // extern "C"
