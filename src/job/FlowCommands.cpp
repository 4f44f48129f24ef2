#include "job/FlowCommands.h"

#include "job/RenderHelpers.h"

namespace qrx {

using namespace render;

// --- TIMER, WAIT ---------------------------------------------------------

TimerCommand::TimerCommand(int type)
    : FieldCommand(type), paraTime(std::make_unique<ParaTimeCommand>())
{
}

const FieldList<TimerCommand> &TimerCommand::fields()
{
    using C = TimerCommand;
    static const FieldList<C> list = {
        {"duration", &C::duration}, {"desType", &C::desType}, {"desValue", &C::desValue},
        {"paraTime", &C::paraTime},
    };
    return list;
}

std::string TimerCommand::durationText() const
{
    return desType == 0 ? num(duration) : desValue;
}

std::string TimerCommand::body() const
{
    if (type != 7)
        return {};
    return lead(7, " T = ") + durationText();
}

const FieldList<WaitCommand> &WaitCommand::fields()
{
    using C = WaitCommand;
    static const FieldList<C> list = {
        {"waitConditionFinal", &C::waitConditionFinal}, {"now", &C::now},
        {"m_filterTime", &C::m_filterTime},
    };
    return list;
}

std::string WaitCommand::body() const
{
    if (type != 8)
        return {};
    return lead(8, " ") + waitConditionFinal.toString() + "  T = " + durationText() + "  F = "
        + num(m_filterTime) + " NOW = " + num(now);
}

// --- blocks ----------------------------------------------------------------

const FieldList<IFCommand> &IFCommand::fields()
{
    static const FieldList<IFCommand> list = {{"ifconditionArrayFINAL", &IFCommand::ifconditionArrayFINAL}};
    return list;
}

std::string IFCommand::body() const
{
    switch (type) {
    case 9: return lead(9, " ") + ifconditionArrayFINAL.toString();
    case 10: return lead(10);
    case 11: return lead(11, " ") + ifconditionArrayFINAL.toString();
    case 12: return lead(12);
    default: return {};
    }
}

const FieldList<WHILECommand> &WHILECommand::fields()
{
    static const FieldList<WHILECommand> list = {
        {"whileconditionArrayFINAL", &WHILECommand::whileconditionArrayFINAL}};
    return list;
}

std::string WHILECommand::body() const
{
    switch (type) {
    case 13: return lead(13, " ") + whileconditionArrayFINAL.toString();
    case 14: return lead(14);
    default: return {};
    }
}

const FieldList<UNTILCommand> &UNTILCommand::fields()
{
    static const FieldList<UNTILCommand> list = {
        {"untilconditionArrayFINAL", &UNTILCommand::untilconditionArrayFINAL}};
    return list;
}

std::string UNTILCommand::body() const
{
    switch (type) {
    case 87: return lead(87, " ") + untilconditionArrayFINAL.toString();
    case 88: return lead(88);
    default: return {};
    }
}

const FieldList<JUMPCommand> &JUMPCommand::fields()
{
    using C = JUMPCommand;
    static const FieldList<C> list = {
        {"label", &C::label}, {"jumpConditionFlag", &C::jumpConditionFlag},
        {"jumpCondition", &C::jumpCondition},
    };
    return list;
}

std::string JUMPCommand::body() const
{
    switch (type) {
    case 52: {
        std::string line = lead(52, " ") + label;
        if (jumpConditionFlag)
            line += "  WHEN " + jumpCondition.toString();
        return line;
    }
    case 53: return lead(53, " ") + label;
    default: return {};
    }
}

// --- calls and threads -------------------------------------------------------

const FieldList<CallCommand> &CallCommand::fields()
{
    static const FieldList<CallCommand> list = {
        {"lineNoToCall", &CallCommand::lineNoToCall}, {"jobName", &CallCommand::jobName}};
    return list;
}

std::string CallCommand::body() const
{
    if (type != 15)
        return {};
    return lead(15, " [$") + jobName + "$]";
}

const FieldList<Call_luafileCommand> &Call_luafileCommand::fields()
{
    static const FieldList<Call_luafileCommand> list = {
        {"luafileName", &Call_luafileCommand::luafileName}};
    return list;
}

std::string Call_luafileCommand::body() const
{
    if (type != 215)
        return {};
    return lead(215, " [$") + luafileName + "$]";
}

const FieldList<PTHREADCommand> &PTHREADCommand::fields()
{
    using C = PTHREADCommand;
    static const FieldList<C> list = {
        {"jobName", &C::jobName}, {"localOrGlobal", &C::localOrGlobal},
        {"m_VariableValue", &C::m_VariableValue},
    };
    return list;
}

std::string PTHREADCommand::body() const
{
    const bool global = localOrGlobal != 0;
    switch (type) {
    case 90: return lead(90, " [$") + jobName + (global ? "$] GLOBAL" : "$] LOCAL");
    case 91: return lead(91, " [$") + jobName + (global ? "$] GLOBAL" : "$] LOCAL");
    case 114: return lead(114);
    case 209:
        if (jobName.empty())
            return lead(209, " ") + " MainProgram " + m_VariableValue;
        return lead(209, " [$") + jobName + (global ? "$] GLOBAL " : "$] LOCAL ") + m_VariableValue;
    default: return {};
    }
}

const FieldList<PROGRAMRUNCommand> &PROGRAMRUNCommand::fields()
{
    static const FieldList<PROGRAMRUNCommand> list = {
        {"programtype", &PROGRAMRUNCommand::programtype}, {"jobname", &PROGRAMRUNCommand::jobname}};
    return list;
}

std::string PROGRAMRUNCommand::body() const
{
    switch (type) {
    case 111: return lead(111);
    case 112: return lead(112);
    case 113:
        if (programtype == 1)
            return lead(113, " ALL");
        if (programtype == 2)
            return lead(113, " MAIN");
        return lead(113, " ") + jobname;
    case 119:
        if (programtype == 2)
            return lead(119, " MAIN");
        return lead(119, " ") + jobname;
    default: return {};
    }
}

// --- statements ----------------------------------------------------------------

const FieldList<SysSettingCommand> &SysSettingCommand::fields()
{
    using C = SysSettingCommand;
    static const FieldList<C> list = {
        {"speedType", &C::speedType}, {"D_speed", &C::D_speed}, {"S_speed", &C::S_speed},
        {"sUnit", &C::sUnit},
    };
    return list;
}

std::string SysSettingCommand::body() const
{
    if (type != 30)
        return {};
    return lead(30, " = ") + num(speedType == 0 ? D_speed : S_speed) + speedUnitText(sUnit);
}

const FieldList<CRAFTLINECommand> &CRAFTLINECommand::fields()
{
    static const FieldList<CRAFTLINECommand> list = {{"line", &CRAFTLINECommand::line}};
    return list;
}

std::string CRAFTLINECommand::body() const
{
    if (type != 89)
        return {};
    return lead(89, " ") + num(line);
}

const FieldList<CMDNOTECommand> &CMDNOTECommand::fields()
{
    static const FieldList<CMDNOTECommand> list = {{"note", &CMDNOTECommand::note}};
    return list;
}

std::string CMDNOTECommand::body() const
{
    if (type != 127)
        return {};
    return "#" + note;
}

const FieldList<USERDEFINECommand> &USERDEFINECommand::fields()
{
    static const FieldList<USERDEFINECommand> list = {{"id", &USERDEFINECommand::id}};
    return list;
}

std::string USERDEFINECommand::body() const
{
    if (type != 171)
        return {};
    return lead(171, " ") + "ID = " + num(id);
}

const FieldList<WINDOWCommand> &WINDOWCommand::fields()
{
    using C = WINDOWCommand;
    static const FieldList<C> list = {
        {"text1", &C::text1}, {"text2", &C::text2}, {"text3", &C::text3}, {"text4", &C::text4},
        {"variable", &C::variable}, {"count", &C::count}, {"value1", &C::value1},
        {"value2", &C::value2}, {"value3", &C::value3},
    };
    return list;
}

std::string WINDOWCommand::body() const
{
    if (type != 208)
        return {};
    std::string line = lead(208, " [$") + text1 + "$] " + variable + " " + num(count);
    const std::string *texts[] = {&text2, &text3, &text4};
    const int values[] = {value1, value2, value3};
    for (int i = 0; i < count && i < 3; ++i)
        line += " [$" + *texts[i] + "$] " + num(values[i]);
    return line;
}

const FieldList<PRINTMSGCommand> &PRINTMSGCommand::fields()
{
    static const FieldList<PRINTMSGCommand> list = {
        {"printChar", &PRINTMSGCommand::printChar}, {"printType", &PRINTMSGCommand::printType}};
    return list;
}

std::string PRINTMSGCommand::body() const
{
    if (type != 120 || printType < 0 || printType > 2)
        return {};
    return lead(type, " ") + num(printType) + " " + printChar;
}

} // namespace qrx
