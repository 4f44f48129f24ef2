#pragma once
// Everything the simulated controller does on its own, in three tables:
//  - commandTable(): what it does when a frame with a given code arrives;
//  - tickTable():    what it does every tick (axes moving, job lines
//                    advancing), with the milliseconds since the last tick;
//  - connectTable(): what it sends when a client connects (start-up reports).
// Each table is the concatenation of the family tables declared in
// Families.h. A new family is one file commands/<Family>Commands.cpp, one
// declaration in Families.h and one line per table in CommandTable.cpp.

#include "sim/ReceivedFrame.h"

#include <QtGlobal>
#include <functional>
#include <vector>

namespace qrxsim {

class Session;
class Simulator;

struct CommandEntry
{
    quint16 code;
    std::function<void(Session &, const ReceivedFrame &)> handle;
};

struct TickEntry
{
    const char *name;
    std::function<void(Simulator &, qint64 elapsedMs)> tick;
};

struct ConnectEntry
{
    const char *name;
    std::function<void(Session &)> run;
};

std::vector<CommandEntry> commandTable();
std::vector<TickEntry> tickTable();
std::vector<ConnectEntry> connectTable();

} // namespace qrxsim
