#pragma once
// Everything the simulated controller does on its own, in three tables:
//  - commandTable(): what it does when a frame with a given code arrives;
//  - tickTable():    what it does every tick (axes moving, job lines
//                    advancing), with the milliseconds since the last tick,
//                    and when it has something to do: the ticks run only
//                    while some family is busy, and start again on the
//                    next frame;
//  - connectTable(): what it sends when a client connects (start-up reports).
// Each table is the concatenation of the family tables declared in
// Families.h. A new family is one file commands/<Family>Commands.cpp, one
// declaration in Families.h and one line per table in CommandTable.cpp.

#include "protocol/Catalogue.h"
#include "sim/ControllerModel.h"
#include "sim/ReceivedFrame.h"

#include <QtGlobal>
#include <functional>
#include <vector>

namespace qrxsim {

// The codes by their names in the protocol catalogue; a query's answer is
// the reply the catalogue pairs with it (replyTo).
namespace code = qrx::protocol::code;
namespace report = qrx::protocol::report;
using qrx::protocol::replyTo;

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
    // Whether the next tick has work for this entry; none: always.
    std::function<bool(const ControllerModel &)> busy = {};
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
