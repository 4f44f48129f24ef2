#pragma once
// The families of simulated controller behaviour. Each is defined in
// commands/<Family>Commands.cpp and listed once in CommandTable.cpp.

#include "sim/ControllerModel.h"
#include "sim/commands/CommandTable.h"

#include <json/value.h>
#include <string>

namespace qrxsim {

// 0x7266 heartbeat request -> 0x7267 with the same payload.
std::vector<CommandEntry> heartbeatCommands();

// Post-connection request, farewell.
std::vector<CommandEntry> sessionCommands();

// Continuous motion: mode, queue, start, suspend, stop; the queue's run.
std::vector<CommandEntry> continuousCommands();
std::vector<TickEntry> continuousTicks();

// Status queries and set commands: servo, mode, coordinate, deadman, speed,
// test mode, position, tool, running state (reports 0x2003 ... 0x3D03).
std::vector<CommandEntry> statusCommands();
// The servo report (0x2003) about a robot and the mode report (0x2103).
Json::Value servoReport(const ControllerModel &model, int robot);
Json::Value modeReport(const ControllerModel &model);
// The running-state report (0x3D03) of the model: {"robot","status"}.
Json::Value runStatusReport(const ControllerModel &model);

// Reports about the robots: sent on connect (type, count, current robot,
// servo, mode) and on request (robot count, current robot).
std::vector<CommandEntry> robotReportCommands();
std::vector<ConnectEntry> robotReportsOnConnect();

// Robot parameters, tools, user frames and calibrations: queries answered
// from the model (0x2E02, 0x3806, 0x3C0A, 0x3C0B, 0x7201, 0x7205, 0x7207,
// 0x3301) and the settings that change it (0x3805, 0x3C08, 0x7202, 0x3307).
std::vector<CommandEntry> robotParamCommands();
// The robot type report (0x2E03) of the model: {"type": wire code}.
Json::Value robotTypeReportPayload(const ControllerModel &model);

// IO, positions, global variables and positions, motor figures
// (0x3601..0x360B, 0x2F07, 0x7012, 0x5604..0x560B, 0x2A04..0x2A0A).
std::vector<CommandEntry> ioCommands();
// The type of a global variable by its name: 1 "GB###", 2 "GI###",
// 3 "GD###"; 0 for any other name.
int globalVariableType(const std::string &name);

// Moves 0x4501..0x4509 and jogging 0x2901/0x2902, moved every tick; the
// drives engaging when the deadman power comes on.
std::vector<CommandEntry> motionCommands();
std::vector<TickEntry> motionTicks();
// Where the axes are now.
SimWaypoint here(const ControllerModel &model);
// "axis N target V is outside A..B" for the first axis of the point beyond
// its limit; empty when every axis is within.
std::string outsideLimits(const SimWaypoint &point);

// Jobs: open, run, step, pause, continue, stop, delete, runs, running line,
// cycle figures; the runner advances the line every tick.
std::vector<CommandEntry> jobCommands();
std::vector<TickEntry> jobTicks();

// Tool selection 0x380A, reported with 0x380C.
std::vector<CommandEntry> toolCommands();

} // namespace qrxsim
