#include "sim/commands/CommandTable.h"

#include "sim/commands/Families.h"

namespace qrxsim {

namespace {

template <typename Entry>
void append(std::vector<Entry> &to, std::vector<Entry> from)
{
    to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
}

} // namespace

std::vector<CommandEntry> commandTable()
{
    std::vector<CommandEntry> table;
    append(table, heartbeatCommands());
    append(table, sessionCommands());
    append(table, continuousCommands());
    append(table, statusCommands());
    append(table, robotReportCommands());
    append(table, robotParamCommands());
    append(table, ioCommands());
    append(table, motionCommands());
    append(table, jobCommands());
    append(table, toolCommands());
    return table;
}

std::vector<TickEntry> tickTable()
{
    std::vector<TickEntry> table;
    append(table, continuousTicks());
    append(table, motionTicks());
    append(table, jobTicks());
    return table;
}

std::vector<ConnectEntry> connectTable()
{
    std::vector<ConnectEntry> table;
    append(table, robotReportsOnConnect());
    return table;
}

} // namespace qrxsim
