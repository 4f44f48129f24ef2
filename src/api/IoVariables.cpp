// Digital and analog IO, positions, global positions and variables, motor
// figures. Writers send and return; readers send their query, wait for any
// waking reply and copy what the Robot then holds into the caller's buffer
// (a null buffer is left alone).

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "common/GlobalVarName.h"
#include "protocol/Codes.h"

#include <QString>

using namespace qrx::api;

namespace code = qrx::protocol::code;

namespace {

constexpr int kIoPorts = 16;

// The four IO readers: query code and the Robot cache the reply fills.
struct IoReader
{
    quint16 code;
    double (Robot::*cache)[kIoPorts];
};

constexpr IoReader kDout{code::GetDout, &Robot::dout};
constexpr IoReader kDin{code::GetDin, &Robot::din};
constexpr IoReader kAout{code::GetAout, &Robot::aout};
constexpr IoReader kAin{code::GetAin, &Robot::ain};

void readIo(const IoReader &reader, double *out)
{
    QRX_ROBOT_OR_RETURN(robot);
    requestAndWait(robot, reader.code);
    copyOut(robot, robot->*reader.cache, kIoPorts, out);
}

// The cached value of the named variable; 0.0 for an index outside the
// caches or a name of no global type.
double cachedGlobal(const Robot *robot, const QString &name)
{
    // A name without a numeric end reads index 0.
    const qrx::GlobalVarName var = qrx::GlobalVarName::parse(name);
    const int index = var.index;
    if (index < 0 || index >= Robot::kGlobalVarCount)
        return 0.0;
    std::lock_guard<std::recursive_mutex> lock(robot->cacheMutex);
    switch (var.type) {
    case qrx::GlobalVarName::Int: return double(robot->globalInt[index]);
    case qrx::GlobalVarName::Real: return robot->globalReal[index];
    case qrx::GlobalVarName::Bool: return robot->globalBool[index] ? 1.0 : 0.0;
    case qrx::GlobalVarName::Other: break;
    }
    return 0.0;
}

Json::Value varQuery(const QString &name)
{
    return object({{"varType", int(qrx::GlobalVarName::parse(name).type)}, {"varName", name.toStdString()}});
}

// Asks for the named global variable and waits for a reply.
void askGlobal(Robot *robot, const QString &varName)
{
    requestAndWait(robot, code::GetGlobalVariable, payloadOf(varQuery(varName)));
}

// The motor readers: a query and the rows its reply fills.
void readMotorRows(Robot *robot, quint16 code, const double (&robotRows)[2][7], const double (&syncRows)[2][5],
                   double *robotOne, double *robotTwo, double *syncOne, double *syncTwo)
{
    requestAndWait(robot, code, payloadOf(withCurrentRobot(robot)));
    copyOut(robot, robotRows[0], 7, robotOne);
    copyOut(robot, robotRows[1], 7, robotTwo);
    copyOut(robot, syncRows[0], 5, syncOne);
    copyOut(robot, syncRows[1], 5, syncTwo);
}

} // namespace

extern "C" {

void set_dout(int port, int status)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::SetDout, payloadOf(object({{"port", port}, {"status", status}})));
}

void set_aout(int port, double value)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::SetAout, payloadOf(object({{"port", port}, {"value", value}})));
}

void get_dout(double *out) { readIo(kDout, out); }
void get_din(double *out) { readIo(kDin, out); }
void get_aout(double *out) { readIo(kAout, out); }
void get_ain(double *out) { readIo(kAin, out); }

void get_current_position(double *pos, int coord)
{
    QRX_ROBOT_OR_RETURN(robot);
    requestAndWait(robot, code::GetCurrentPosition, payloadOf(withCurrentRobot(robot, {{"coord", coord}})));
    // Whatever coordinate system the reply that ended the wait carried.
    copyOut(robot, robot->currentPosition, 6, pos);
}

void get_current_sync_position(double *pos)
{
    QRX_ROBOT_OR_RETURN(robot);
    requestAndWait(robot, code::GetSyncPosition, payloadOf(withCurrentRobot(robot, {{"coord", 0}})));
    copyOut(robot, robot->syncPosition, 5, pos);
}

void get_GPosition(const char *name, double *out)
{
    QRX_ROBOT_OR_RETURN(robot);
    requestAndWait(robot, code::GetGlobalPosition, payloadOf(withCurrentRobot(robot, {{"posName", latin1Name(name)}})));
    copyOut(robot, robot->globalPosition, 14, out);
}

void set_GPosition(const char *posName, int coord, double *robotAxes, double *syncAxes)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (!robotAxes || !syncAxes)
        return;
    Json::Value pos(Json::arrayValue);
    for (int i = 0; i < 7; ++i)
        pos.append(robotAxes[i]);
    for (int i = 0; i < 7; ++i)
        pos.append(syncAxes[i]);
    const Json::Value v =
        withRobot(robot->overrideRobot(), {{"posName", latin1Name(posName)}, {"coord", coord}, {"pos", pos}});
    robot->send(code::SetGlobalPosition, payloadOf(v));
}

double get_global_variant(const char *name)
{
    QRX_ROBOT_OR_RETURN(robot, 0.0);
    const QString varName = QString::fromUtf8(nameOrEmpty(name));
    askGlobal(robot, varName);
    return cachedGlobal(robot, varName);
}

void set_global_variant(const char *name, double value)
{
    QRX_ROBOT_OR_RETURN(robot);
    const QString varName = QString::fromLatin1(nameOrEmpty(name));
    Json::Value v = varQuery(varName);
    v["varValue"] = value;
    robot->send(code::SetGlobalVariable, payloadOf(v));
}

double get_global_var(const char *name)
{
    QRX_ROBOT_OR_RETURN(robot, 0.0);
    askGlobal(robot, QString::fromLatin1(nameOrEmpty(name)));
    // The last global-variable reply, whatever variable it named.
    return robot->globalVarValue;
}

void get_motor_vel(double *robotOne, double *robotTwo, double *syncOne, double *syncTwo)
{
    QRX_ROBOT_OR_RETURN(robot);
    readMotorRows(robot, code::GetMotorSpeed, robot->motorVel, robot->motorVelSync, robotOne, robotTwo, syncOne, syncTwo);
}

void get_motor_torque(double *robotOne, double *robotTwo, double *syncOne, double *syncTwo)
{
    QRX_ROBOT_OR_RETURN(robot);
    readMotorRows(robot, code::GetMotorTorque, robot->motorTorque, robot->motorTorqueSync, robotOne, robotTwo, syncOne, syncTwo);
}

void get_motor_overload(double *robotRow, double *syncRow)
{
    QRX_ROBOT_OR_RETURN(robot);
    requestAndWait(robot, code::GetMotorLoad, payloadOf(withCurrentRobot(robot)));
    copyOut(robot, robot->motorOverload, 7, robotRow);
    copyOut(robot, robot->motorOverloadSync, 5, syncRow);
}

} // extern "C"
