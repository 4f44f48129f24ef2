#include "job/HandlingCommands.h"

#include "job/RenderHelpers.h"

namespace qrx {

using namespace render;

// --- pallets -----------------------------------------------------------------

const FieldList<PALCommand> &PALCommand::fields()
{
    using C = PALCommand;
    static const FieldList<C> list = joinFields<C>(
        {
            {"ID", &C::ID}, {"STACKTYPE", &C::STACKTYPE}, {"NUM", &C::NUM}, {"tool", &C::tool},
            {"xyOpt", &C::xyOpt}, {"zOpt", &C::zOpt}, {"Posture", &C::Posture}, {"moveType", &C::moveType},
            {"VARNAME", &C::VARNAME}, {"MULTIPAL", &C::MULTIPAL}, {"PalVar", &C::PalVar},
            {"PalLevel", &C::PalLevel}, {"PalNumber", &C::PalNumber}, {"vUnit", &C::vUnit},
            {"m_numVariableType", &C::m_numVariableType}, {"variableData", &C::variableData},
            {"m_pointVariableType", &C::m_pointVariableType}, {"pointVariableName", &C::pointVariableName},
        },
        motionFields<C>());
    return list;
}

std::string PALCommand::body() const
{
    const std::string id = num(ID);
    const char *move = moveText(moveType, 3);
    switch (type) {
    case 71: return lead(71, " ID = ") + id + " MULTI = " + num(MULTIPAL);
    case 72: return lead(72, " ") + id;
    case 73: return lead(73, " ") + id + " TYPE = " + num(STACKTYPE) + " NUM = " + num(NUM);
    case 74: return move ? lead(74, " ") + id + move + motionText() : std::string();
    case 75: return lead(75, " ") + id;
    case 76: return move ? lead(76, " ") + id + move + motionText() : std::string();
    case 77: return lead(77, " ") + id;
    case 78: return lead(78, " ") + id + " " + pointVariableName;
    case 203: return lead(203, " ") + id + " " + variableData;
    case 204: return lead(204, " ID = ") + id + " GRIPPERS = " + num(NUM) + " " + (tool ? "ON " : "OFF ");
    case 218: return lead(218, " ID = ") + id;
    case 219: return lead(219, " ") + id;
    default: return {};
    }
}

// --- spraying ------------------------------------------------------------------

const FieldList<SPRAYCommand> &SPRAYCommand::fields()
{
    using C = SPRAYCommand;
    static const FieldList<C> list = joinFields<C>(
        {
            {"gunID", &C::gunID}, {"seqID", &C::seqID}, {"traID", &C::traID}, {"colorID", &C::colorID},
            {"anaID", &C::anaID}, {"flow", &C::flow}, {"sector", &C::sector}, {"atom", &C::atom},
            {"point", &C::point},
        },
        motionFields<C>());
    return list;
}

std::string SPRAYCommand::body() const
{
    const std::string gun = num(gunID);
    switch (type) {
    case 122: return lead(122, " G = ") + gun;
    case 123: return lead(123, " G = ") + gun;
    case 124:
        return lead(124, " G = ") + gun + " T = " + num(traID) + " AO = " + num(anaID) + " COLOR = "
            + num(colorID);
    case 125: return lead(125, " ID = ") + num(seqID) + motionText();
    case 126: return lead(126, " ID = ") + num(seqID) + " POINT = " + num(point);
    default: return {};
    }
}

// --- punch handling ------------------------------------------------------------

const FieldList<PUNCHCommand> &PUNCHCommand::fields()
{
    using C = PUNCHCommand;
    static const FieldList<C> list = {
        {"positionId", &C::m_positionId}, {"RobotPos", &C::robotPos}, {"markPoint", &C::markPoint},
        {"unDelete", &C::unDelete}, {"time", &C::time}, {"moveType", &C::moveType}, {"step", &C::step},
    };
    return list;
}

std::string PUNCHCommand::body() const
{
    // Keywords that end in a space take the position directly; the others
    // name the movement first.
    if (type < 160 || type > 169)
        return {};
    if (type == 160 || type == 162 || type == 166)
        return lead(type, " ") + m_positionId;
    const std::string word = lead(type);
    const char *move = moveText(moveType, 2);
    if (!move)
        return {};
    return word + std::string(move) + m_positionId;
}

const FieldList<NEWPUNCHCommand> &NEWPUNCHCommand::fields()
{
    using C = NEWPUNCHCommand;
    static const FieldList<C> list = {
        {"positionId", &C::m_positionId}, {"RobotPos", &C::robotPos}, {"notice", &C::notice},
        {"vUnit", &C::vUnit}, {"pl", &C::pl}, {"workstation", &C::workstation}, {"moveType", &C::moveType},
        {"fixture", &C::fixture}, {"time", &C::time}, {"palletOn", &C::palletOn}, {"ID", &C::ID},
        {"waitInValue", &C::waitInValue}, {"waitInState", &C::waitInState}, {"outValue", &C::outValue},
        {"outState", &C::outState}, {"sync", &C::sync},
    };
    return list;
}

std::string NEWPUNCHCommand::body() const
{
    if (type >= 183 && type <= 192) { // the moves to the safe, upper and pick/drop positions
        const std::string moveWord = lead(type, " ");
        const char *move = pick(moveType, {{0, " MovJ VJ = "}, {1, " MovL V = "}});
        if (!move)
            return {};
        return moveWord + m_positionId + move + num(vUnit) + " PL = " + num(pl) + " SYNC = " + num(sync)
            + (notice ? " NOTICE" : " UNNOTICE") + (workstation == 0 ? " PREV" : " LOCAL");
    }
    switch (type) {
    case 193: return lead(193);
    case 194: return lead(194);
    case 195: return lead(195);
    case 196: return lead(196);
    case 197: return lead(197, " FIXTURE_ID = ") + num(fixture);
    case 198: return lead(198, " FIXTURE_ID = ") + num(fixture);
    case 199: return lead(199);
    case 200: return lead(200);
    case 201: return lead(201, " ") + num(waitInValue) + " " + num(waitInState);
    case 202: return lead(202, " ") + num(outValue) + " " + num(outState);
    case 205: return lead(205, " ID = ") + num(ID);
    case 206: return lead(206, " ID = ") + num(ID);
    default: return {};
    }
}

// --- vision and conveyors ------------------------------------------------------

const FieldList<VisionCommand> &VisionCommand::fields()
{
    using C = VisionCommand;
    static const FieldList<C> list = {
        {"ID", &C::ID}, {"M_STRPOSNUM", &C::M_STRPOSNUM}, {"m_positionId", &C::m_positionId},
        {"RobotPos", &C::robotPos},
    };
    return list;
}

std::string VisionCommand::body() const
{
    if (type < 79 || type > 84)
        return {};
    std::string line = lead(type, " ID = ") + num(ID);
    if (type == 81)
        line += " " + m_positionId;
    else if (type == 82)
        line += " " + M_STRPOSNUM;
    return line;
}

CONYTRACKCommand::CONYTRACKCommand(int type)
    : FieldCommand(type), paraV(std::make_unique<ParaVCommand>()), paraAcc(std::make_unique<ParaAccCommand>())
{
}

const FieldList<CONYTRACKCommand> &CONYTRACKCommand::fields()
{
    using C = CONYTRACKCommand;
    static const FieldList<C> list = {
        {"ID", &C::ID}, {"posidtype", &C::posidtype}, {"posidname", &C::posidname},
        {"m_positionId", &C::m_positionId}, {"removeType", &C::removeType}, {"ParaV", "velocity", &C::paraV},
        {"ParaACC", "acc", &C::paraAcc}, {"m_postype", &C::m_postype}, {"RobotPos", &C::robotPos},
    };
    return list;
}

std::string CONYTRACKCommand::body() const
{
    const std::string id = num(ID);
    const std::string &where = target(posidtype, posidname, m_positionId);
    switch (type) {
    case 105: return lead(105, " ") + id;
    case 106: return lead(106, " ") + id;
    case 107: return lead(107, " ") + id;
    case 108: return lead(108, " ") + id;
    case 174: return lead(174, " ") + where + " ID = " + id + textOf(paraV) + textOf(paraAcc);
    case 217:
        return lead(217, " ") + (removeType ? std::string("OUTP") : where) + " ID = " + id
            + textOf(paraV) + textOf(paraAcc);
    default: return {};
    }
}

} // namespace qrx
