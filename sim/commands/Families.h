#pragma once
// The families of simulated controller behaviour. Each is defined in
// commands/<Family>Commands.cpp and listed once in CommandTable.cpp.

#include "sim/commands/CommandTable.h"

namespace qrxsim {

// 0x7266 heartbeat request -> 0x7267 with the same payload.
std::vector<CommandEntry> heartbeatCommands();

// Post-connection request, farewell, continuous motion.
std::vector<CommandEntry> sessionCommands();
std::vector<TickEntry> sessionTicks();

// Status queries and set commands: servo, mode, coordinate, deadman, speed,
// test mode, position, tool, running state (reports 0x2003 ... 0x3D03).
std::vector<CommandEntry> statusCommands();

// Reports about the robots: sent on connect (type, count, current robot,
// servo, mode) and on request (robot count, current robot).
std::vector<CommandEntry> robotReportCommands();
std::vector<ConnectEntry> robotReportsOnConnect();

} // namespace qrxsim
