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
    case 71: return "PALON ID = " + id + " MULTI = " + num(MULTIPAL);
    case 72: return "PALOFF " + id;
    case 73: return "PALLET " + id + " TYPE = " + num(STACKTYPE) + " NUM = " + num(NUM);
    case 74: return move ? "PALENTER " + id + move + motionText() : std::string();
    case 75: return "PALSHIFT " + id;
    case 76: return move ? "PALREAL " + id + move + motionText() : std::string();
    case 77: return "PALCLEAR " + id;
    case 78: return "PALLET_POS " + id + " " + pointVariableName;
    case 203: return "PAL_SET_EXAMPLE " + id + " " + variableData;
    case 204: return "PALGRIPPER ID = " + id + " GRIPPERS = " + num(NUM) + " " + (tool ? "ON " : "OFF ");
    case 218: return "PH_PALON ID = " + id;
    case 219: return "PH_PALOFF " + id;
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
    case 122: return "SPRAY_ON G = " + gun;
    case 123: return "SPRAY_OFF G = " + gun;
    case 124:
        return "SPRAY_CHANGE G = " + gun + " T = " + num(traID) + " AO = " + num(anaID) + " COLOR = "
            + num(colorID);
    case 125: return "SPRAY_MOVE ID = " + num(seqID) + motionText();
    case 126: return "SPRAY_STARTPOS ID = " + num(seqID) + " POINT = " + num(point);
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
    const char *word = pick(type, {{160, "PUNCH "}, {161, "PUNCH_MOVE"}, {162, "PUNCH_PICK "},
                                   {163, "PUNCH_PICKSAFEPOS"}, {164, "PUNCH_PICKUPPERPOS"}, {165, "PUNCH_PICKPOS"},
                                   {166, "PUNCH_LAY "}, {167, "PUNCH_LAYSAFEPOS"}, {168, "PUNCH_LAYUPPERPOS"},
                                   {169, "PUNCH_LAYPOS"}});
    if (!word)
        return {};
    if (type == 160 || type == 162 || type == 166)
        return word + m_positionId;
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
    const char *moveWord = pick(type, {{183, "PH_TOPREVSAFEPOS "}, {184, "PH_REPREVSAFEPOS "},
                                       {185, "PH_TOLOCALSAFEPOS "}, {186, "PH_RELOCALSAFEPOS "},
                                       {187, "PH_TOPREVUPPOS "}, {188, "PH_REPREVUPPOS "},
                                       {189, "PH_TOLOCALUPPOS "}, {190, "PH_RELOCALUPPOS "},
                                       {191, "PH_REACHPICKPOS "}, {192, "PH_REACHDROPPOS "}});
    if (moveWord) {
        const char *move = pick(moveType, {{0, " MovJ VJ = "}, {1, " MovL V = "}});
        if (!move)
            return {};
        return moveWord + m_positionId + move + num(vUnit) + " PL = " + num(pl) + " SYNC = " + num(sync)
            + (notice ? " NOTICE" : " UNNOTICE") + (workstation == 0 ? " PREV" : " LOCAL");
    }
    switch (type) {
    case 193: return "PH_DEALBEFOREPICK";
    case 194: return "PH_DEALBEFOREDROP";
    case 195: return "PH_DEALAFTERPICK";
    case 196: return "PH_DEALAFTERDROP";
    case 197: return "PH_FIXTUREOPEN FIXTURE_ID = " + num(fixture);
    case 198: return "PH_FIXTURECLOSE FIXTURE_ID = " + num(fixture);
    case 199: return "PH_STARTPUNCH";
    case 200: return "PH_WAITPUNCHDONE";
    case 201: return "PH_WAITDIN " + num(waitInValue) + " " + num(waitInState);
    case 202: return "PH_DOUT " + num(outValue) + " " + num(outState);
    case 205: return "PH_MULTIPLEPUNON ID = " + num(ID);
    case 206: return "PH_MULTIPLEPUNOFF ID = " + num(ID);
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
    const char *word = pick(type, {{79, "VISION_RUN "}, {80, "VISION_TRG "}, {81, "VISION_POS "},
                                   {82, "VISION_POSNUM "}, {83, "VISION_END "}, {84, "VISION_CLEAR "}});
    if (!word)
        return {};
    std::string line = word + std::string("ID = ") + num(ID);
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
    case 105: return "CONVEYOR_ON " + id;
    case 106: return "CONVEYOR_OFF " + id;
    case 107: return "CONVEYOR_CHECKPOS " + id;
    case 108: return "CONVEYOR_CHECKEND " + id;
    case 174: return "CONVEYOR_POS " + where + " ID = " + id + textOf(paraV) + textOf(paraAcc);
    case 217:
        return "CONVEYOR_REMOVE " + (removeType ? std::string("OUTP") : where) + " ID = " + id
            + textOf(paraV) + textOf(paraAcc);
    default: return {};
    }
}

} // namespace qrx
