#pragma once
// The parts of the simulated controller that the host's IO, motion and job
// commands work on: the IO cabinet, the global variables and positions, the
// axes in motion (moves and jogging), and the job runner. They are members
// of ControllerModel (sections "IO and variables", "motion", "jobs") and are
// changed by commands/IoCommands.cpp, MotionCommands.cpp and JobCommands.cpp.

#include <QString>
#include <QtGlobal>
#include <json/value.h>

#include <array>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace qrxsim {

// ---- IO and variables ------------------------------------------------------
// The cabinet wires digital output n back to digital input n and analog
// output n back to analog input n, so a host sees its own writes come back.
struct SimIo
{
    static constexpr int ports = 16;
    std::array<double, ports> dout{};  // 0x3601 {"port","status"}, port 1..16
    std::array<double, ports> aout{};  // 0x3607 {"port","value"}
    std::array<double, ports> dinOffset{}; // added to the looped-back inputs (tests)
    std::array<double, ports> ainOffset{};
    double din(int i) const { return dout[i] != 0.0 || dinOffset[i] != 0.0 ? 1.0 : 0.0; }
    double ain(int i) const { return aout[i] + ainOffset[i]; }
};

// Global variables by name ("GI001", "GD002", "GB003"), as last written with
// 0x5607; integers and booleans are kept in their type's value range.
struct SimVariable
{
    int varType = 0; // 1 GB, 2 GI, 3 GD, 0 other
    double value = 0.0;
};

struct SimGlobals
{
    std::map<std::string, SimVariable> variables;
    std::map<std::string, std::array<double, 14>> positions; // 0x5604 "pos": robot [0..6], sync [7..13]
    std::map<std::string, int> positionCoords;              // 0x5604 "coord"
};

// ---- motion ----------------------------------------------------------------
// The robot's seven axes are ControllerModel::positionDeg; the five
// synchronous (external) axes live here. The simulator has no kinematics:
// every coordinate system reports the same values.
struct SimWaypoint
{
    std::array<double, 7> robot{};
    std::array<double, 5> sync{};
};

struct SimMotion
{
    // Units per second of each axis at 100 %: robot axes 1..7, synchronous
    // axes 1..5. A move takes as long as its slowest axis needs.
    static constexpr double robotFullSpeed[7] = {100, 100, 100, 200, 200, 200, 200};
    static constexpr double syncFullSpeed[5] = {100, 100, 100, 100, 100};
    static constexpr double maxJogSpeed = 50.0;   // units per second at jog speed 100 %
    static constexpr qint64 jogHoldMs = 300;      // a jog step keeps the axis moving this long
    static constexpr qint64 driveEngageMs = 500;  // servo 1 + deadman on -> servo 3 after this

    std::array<double, 5> sync{};           // 0x7013 "pos"
    std::array<double, 7> axisSpeed{};      // last tick's speed per robot axis (0x2A05 "vel")
    std::array<double, 5> syncSpeed{};
    std::deque<SimWaypoint> waypoints;      // what the current move still has to reach
    double speedShare = 0.0;                // of the current move: share of full speed, 0..1
    bool held = false;                      // the queue is suspended: moves hold where they are
    int moves = 0;                          // moves accepted (0x4501..0x4509)

    int jogAxis = 0;                        // 1..7 robot axes, 8..12 external axes; 0 none
    int jogDirection = 0;                   // +1 or -1
    qint64 jogUntilMs = 0;                  // the axis moves until then
    int jogSteps = 0;                       // 0x2901 frames taken

    qint64 driveEngageAtMs = -1;            // when the drives switch to running

    bool busy() const { return !waypoints.empty(); }
};

// ---- jobs ------------------------------------------------------------------
// Jobs the controller holds (name -> line count) and the one that runs.
// Running state: 0 stopped, 1 paused, 2 running. While running, the line
// advances every lineMs; after the last line the job starts again until the
// runs set with 0x5011 are done (0 or 1: once).
// Jobs in the job folder (commands/JobFiles.h) are read when they are run:
// their lines execute their instructions, each taking lineMs or as long as
// its move or wait takes, whichever is longer.
struct SimJobRunner
{
    static constexpr qint64 lineMs = 100;
    std::map<std::string, int> jobs{{"DEMO", 8}, {"WELD01", 20}, {"PICK", 12}};
    std::string folder;        // job files, one sub-folder per robot (--job-dir); empty: none
    std::vector<Json::Value> steps; // the running job's instructions, when read from its file
    bool fromFile = false;     // the running job was read from its file
    std::string opened;        // 0x3114 "jobName"
    std::string running;       // the job of the current run
    int line = 0;              // line being executed (0x3504 "num")
    int runsWanted = 1;        // 0x5011 "index"
    int runsDone = 0;
    bool stepOnly = false;     // a step_job run: one line, then stop
    qint64 sinceLineMs = 0;
    qint64 cycleStartMs = 0;
    double lastCycleSeconds = 0.0;
    int cyclesDone = 0;        // whole cycles since start-up
};

} // namespace qrxsim
