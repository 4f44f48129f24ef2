#pragma once
// The state of the simulated controller. Handlers and tick hooks read and
// change it on the simulator thread; tests reach it through
// SimHandle::withModel. Each family of commands keeps its fields in its own
// section below, so that families never step on each other.

#include "sim/CellModel.h"

#include <QString>
#include <QtGlobal>
#include <json/value.h>
#include <array>
#include <map>
#include <string>
#include <vector>

namespace qrxsim {

// Continuous motion (commands/ContinuousCommands.cpp): the mode, the queue
// of instruction objects received with 0x50B4, and its run. While running,
// the instructions are executed in order (commands/QueueInstructions.cpp);
// `line` is the number (from 1) of the one being executed.
struct ContinuousMotion
{
    enum State { Stopped, Running, Suspended };
    enum Phase { Idle, Moving, Waiting }; // what the current instruction does
    bool open = false;
    State state = Stopped;
    std::vector<Json::Value> queue; // the "data" objects, in order, until worked off
    std::size_t next = 0;           // index of the next instruction to start
    int line = 0;                   // instruction being executed (from 1); 0 none
    Phase phase = Idle;
    SimWaypoint target;             // Moving: where the axes go
    double speedShare = 0.0;        // Moving: share of full speed, 0..1
    qint64 waitUntilMs = 0;         // Waiting: when the instruction ends
    qint64 waitLeftMs = 0;          // Waiting, while suspended: the time still to wait
    int pulsePort = 0;              // Waiting on a PULSEOUT: the port to switch off (1..16)
    int executed = 0;               // instructions worked off since start-up
    int refusedQueues = 0;          // queues refused (mode closed, an instruction not executable)
    std::vector<std::array<double, 7>> arrivals; // where each queued move ended, in order
};

// One tool of the controller (0x3805 sets it, 0x3807 reports it).
struct SimTool
{
    double deg[6] = {0, 0, 0, 0, 0, 0}; // x, y, z, A, B, C
    double mass = 1.5;
    double inertia = 0.25;
    double massCenter[3] = {0, 0, 0.125};
    std::string note = "tool";
};

struct ControllerModel
{
    // ---- controller identity ---------------------------------------------
    int robotCount = 1;    // robots driven by this controller (1..4)
    int currentRobot = 1;  // the robot that commands address by default

    // ---- status: servo, mode, coordinate, deadman, speed, test mode ------
    // Changed by the set commands (0x2001, 0x2101, 0x2201, 0x2301, 0x2601,
    // 0x2701) and reported back by StatusCommands.cpp.
    int servoStatus = 0;      // 0x2003 "status" (3 = running)
    int operationMode = 0;    // 0x2103 "mode": 0 teach, 1 remote, 2 run
    int coordinate = 0;       // 0x2203 "coord": 0 joint, 1 Cartesian, 2 tool, 3 user
    int deadman = 0;          // 0x2303 "deadman"
    int speed = 10;           // 0x2603 "speed": percent, or jog-step codes 101..103
    qint8 testMode = 0;       // 0x2703, one raw byte
    int currentTool = 0;      // 0x380C "curToolNum"
    int runStatus = 0;        // 0x3D03 "status"
    double positionDeg[7] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0}; // 0x2A03 "posDeg"
    int configuration = 0;    // 0x2A03 "configuration"

    // ---- robot reports: type, kinematic parameters, positions -------------
    int robotTypeWire = 1;    // 0x2E03 "type" (wire code: 1 six-axis)

    // ---- robot parameters, tools, user frames, calibration ----------------
    // (commands/RobotParamCommands.cpp)
    std::map<int, SimTool> tools;              // by tool number (0x3805, 0x3806/0x3807)
    int currentUserFrame = 0;                  // 0x3C08, 0x3C0B/0x3C0C "curUserNum"
    std::map<int, std::array<double, 6>> userFrames; // 0x3C0A/0x3C09 "posDeg" by frame number
    int userFrameValues = 6;                   // values per user frame: 6, or 4 for four-axis models
    int fourPointStatus[4] = {0, 0, 0, 0};     // 0x7202 marks of points 1..4
    double fourPointLength[3] = {0.5, 0.25, 0.125}; // 0x7204/0x7208 "length"
    double fourPointDtheta = 0.75;             // 0x7204/0x7208 "dtheta"
    std::vector<double> fourPointParams;       // last 0x7201 "ParamOf4Points"
    int dhApply = 1;                           // 0x7206 "apply"
    std::vector<int> zeroedAxes;               // 0x3301 "axis", in order
    double zeroShift[7] = {0, 0, 0, 0, 0, 0, 0}; // 0x3307 offsets by axis

    // ---- IO and variables -------------------------------------------------
    // (commands/IoCommands.cpp)
    SimIo io;
    SimGlobals globals;

    // ---- motion -----------------------------------------------------------
    // (commands/MotionCommands.cpp) moves and jogging of positionDeg and the
    // synchronous axes, drive engagement
    SimMotion motion;

    // ---- session: post-connection request, farewell, continuous motion ---
    int postConnectionRequests = 0; // 0x5052 received
    int farewells = 0;              // 0x7277 received
    ContinuousMotion continuous;

    // ---- jobs -------------------------------------------------------------
    // (commands/JobCommands.cpp) runStatus above is the state of the runner
    // that ran last: the job runner or the continuous-motion queue.
    SimJobRunner job;
    enum Runner { JobRunner, QueueRunner };
    Runner lastRunner = JobRunner;
};

} // namespace qrxsim
