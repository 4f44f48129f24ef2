#include "job/MoveCommand.h"

#include "job/InstructionTable.h"
#include "job/RenderHelpers.h"

#include <cstring>

namespace qrx {

using namespace render;

namespace {


bool between(int type, int low, int high)
{
    return type >= low && type <= high;
}

bool isMotionType(int type)
{
    return between(type, 1, 6) || type == 28 || between(type, 32, 34) || between(type, 54, 60)
        || between(type, 63, 66) || type == 109;
}

// The types that carry the time parameter: 1-6, 28, 32-34, 56-60, 63, 109.
bool hasTime(int type)
{
    return between(type, 1, 6) || type == 28 || between(type, 32, 34) || between(type, 56, 60)
        || type == 63 || type == 109;
}

} // namespace

MoveCommand::MoveCommand(int type)
    : FieldCommand(type),
      paraV(std::make_unique<ParaVCommand>()),
      paraAcc(std::make_unique<ParaAccCommand>()),
      paraDec(std::make_unique<ParaDecCommand>()),
      paraPl(std::make_unique<ParaPlCommand>()),
      paraTime(std::make_unique<ParaTimeCommand>()),
      paraSpin(std::make_unique<ParaSpinCommand>()),
      paraSync(std::make_unique<ParaSyncCommand>())
{
}

MoveCommand::~MoveCommand() = default;

const FieldList<MoveCommand> &MoveCommand::fields()
{
    using M = MoveCommand;
    static const FieldList<M> list = {
        {"velocity", &M::velocity}, {"vUnit", &M::vUnit}, {"acc", &M::acc}, {"dec", &M::dec},
        {"pl", &M::pl}, {"positionId", &M::m_positionId}, {"para", &M::para}, {"radius", &M::radius},
        {"side", &M::side}, {"length", &M::length}, {"width", &M::width}, {"margin", &M::margin},
        {"spin", &M::spin}, {"imovecoord", &M::imovecoord}, {"polish", &M::polish},
        {"polishID", &M::polishID}, {"polishAngle", &M::polishAngle}, {"sync", &M::sync},
        {"time", &M::time}, {"ctype", &M::ctype}, {"posidtype", &M::posidtype},
        {"posidname", &M::posidname},
        {"ParaACC", "acc", &M::paraAcc}, {"ParaV", "velocity", &M::paraV},
        {"ParaDEC", "dec", &M::paraDec}, {"ParaPL", "pl", &M::paraPl},
        {"ParaTIME", "time", &M::paraTime}, {"ParaSPIN", "spin", &M::paraSpin},
        {"ParaSYNC", "sync", &M::paraSync},
        {"RobotPos", &M::robotPos},
    };
    return list;
}

const char *MoveCommand::keyword(int type)
{
    // The motion keywords are the instruction table's (the word the reader
    // scans), written with the space that follows them.
    if (!isMotionType(type))
        return nullptr;
    const char *word = instructionKeyword(type);
    return word && std::strcmp(word, "///") != 0 ? word : nullptr;
}

void MoveCommand::fromJson(const Json::Value &json, PositionTable *table)
{
    // The begin and move of an external-axis circle carry no position: it is
    // neither read nor put into the table.
    if ((type == 54 || type == 55) && json.isObject() && json.isMember("RobotPos")) {
        Json::Value withoutPosition = json;
        withoutPosition.removeMember("RobotPos");
        FieldCommand::fromJson(withoutPosition, table);
        return;
    }
    FieldCommand::fromJson(json, table);
}

RobotPos *MoveCommand::position() const
{
    return robotPos.pos;
}

std::string MoveCommand::positionId() const
{
    return m_positionId;
}

Json::Value MoveCommand::positionJson() const
{
    Json::Value json(Json::objectValue);
    if (robotPos.pos)
        json["RobotPos"] = robotPos.toJson();
    return json;
}

std::string MoveCommand::body() const
{
    const char *word = keyword(type);
    std::string line;
    if (word && (posidtype == 0 || posidtype == 1)) {
        line = word;
        line += ' ';
        line += target(posidtype, posidname, m_positionId);
        if (type == 63) {
            line += " R = " + num(radius);
        } else if (type == 64 || type == 65) {
            line += " LENGTH = " + num(length) + " WIDTH = " + num(width);
        } else if (type == 66) {
            line += " SIDE = " + num(side);
        }
        line += textOf(paraV);
        if (type == 5) // the coordinate system follows the speed text as it is
            line += imovecoord;
    } else {
        line = "///";
    }

    const bool shape = type == 54 || type == 55 || between(type, 63, 66);
    if (!shape) {
        line += paraPl ? paraPl->toString() : " PL = " + num(pl);
        line += textOf(paraAcc) + textOf(paraDec);
        if (type == 4 || type == 59)
            line += textOf(paraSpin);
    } else {
        line += textOf(paraAcc) + textOf(paraDec);
        if (type == 63)
            line += " M = " + num(margin);
    }
    if (type == 33 || type == 34)
        line += textOf(paraSync);
    if (type == 28 || type == 54)
        line += " ID = " + num(para);
    if (type == 109)
        line += " T = " + num(polish) + " ID = " + num(polishID) + " ANGLE = " + num(polishAngle);
    if (hasTime(type))
        line += textOf(paraTime);
    return line;
}

} // namespace qrx
