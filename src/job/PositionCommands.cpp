#include "job/PositionCommands.h"

#include "job/RenderHelpers.h"

namespace qrx {

using namespace render;

const FieldList<READPOSCommand> &READPOSCommand::fields()
{
    using C = READPOSCommand;
    static const FieldList<C> list = {
        {"varname", &C::varname}, {"positionId", &C::m_positionId}, {"coord", &C::coord}, {"axis", &C::axis},
        {"posidtype", &C::posidtype}, {"posidname", &C::posidname},
    };
    return list;
}

std::string READPOSCommand::body() const
{
    if (type != 92)
        return {};
    const std::string where = posidtype == 2 ? std::string("CURPOS") : target(posidtype, posidname, m_positionId);
    return lead(92, " ") + varname + " " + where + " " + num(coord) + " " + num(axis);
}

const FieldList<POSCALCommand> &POSCALCommand::fields()
{
    using C = POSCALCommand;
    static const FieldList<C> list = {
        {"caltype", &C::caltype}, {"positionId", &C::m_positionId}, {"coord", &C::coord}, {"axis", &C::axis},
        {"datatype", &C::datatype}, {"desData", &C::desData}, {"posidtype", &C::posidtype},
        {"posidname", &C::posidname},
    };
    return list;
}

std::string POSCALCommand::body() const
{
    if (type != 93 || caltype < 0 || caltype > 2) // POSADD, POSSUB, POSSET
        return {};
    return lead(type, " ", std::size_t(caltype)) + target(posidtype, posidname, m_positionId) + " " + num(coord) + " " + num(axis) + " "
        + desData;
}

const FieldList<POSCALALLCommand> &POSCALALLCommand::fields()
{
    using C = POSCALALLCommand;
    static const FieldList<C> list = {
        {"caltype", &C::caltype}, {"positionId", &C::m_positionId}, {"coord", &C::coord},
        {"calData", &C::calData}, {"datatype", &C::datatype}, {"posidtype", &C::posidtype},
        {"posidname", &C::posidname},
    };
    return list;
}

std::string POSCALALLCommand::body() const
{
    if (type != 140 || caltype < 0 || caltype > 2) // POSADDALL, POSSUBALL, POSSETALL
        return {};
    return lead(type, " ", std::size_t(caltype)) + target(posidtype, posidname, m_positionId) + " " + num(coord) + " " + calData;
}

const FieldList<COPYPOSCommand> &COPYPOSCommand::fields()
{
    using C = COPYPOSCommand;
    static const FieldList<C> list = {
        {"cpposId", &C::cpposId}, {"cppostype", &C::cppostype}, {"cpposname", &C::cpposname},
        {"cpdposId", &C::cpdposId}, {"cpdpostype", &C::cpdpostype}, {"cpdposname", &C::cpdposname},
        {"cpaxletype", &C::cpaxletype}, {"cpaxles", &C::cpaxles},
    };
    return list;
}

std::string COPYPOSCommand::body() const
{
    if (type != 118)
        return {};
    const std::string &destination = target(cpdpostype, cpdposname, cpdposId);
    if (cppostype == 2)
        return lead(118, " CURPOS TO ") + destination;
    return lead(118, " ") + target(cppostype, cpposname, cpposId) + " TO " + destination;
}

const FieldList<SETPOSMSGCommand> &SETPOSMSGCommand::fields()
{
    using C = SETPOSMSGCommand;
    static const FieldList<C> list = {
        {"posidtype", &C::posidtype}, {"positionId", &C::m_positionId}, {"posidname", &C::posidname},
        {"posDataType", &C::posDataType}, {"posData", &C::posData},
    };
    return list;
}

std::string SETPOSMSGCommand::body() const
{
    if (type != 207)
        return {};
    return lead(207, " ") + target(posidtype, posidname, m_positionId) + " " + posData;
}

const FieldList<READPOSMSGCommand> &READPOSMSGCommand::fields()
{
    using C = READPOSMSGCommand;
    static const FieldList<C> list = {
        {"varType", &C::varType}, {"message", &C::message}, {"positionId", &C::m_positionId},
        {"varName", &C::varName},
    };
    return list;
}

std::string READPOSMSGCommand::body() const
{
    const char *what = pick(varType, {{0, " TCS "}, {1, " UCS "}, {2, " CSTYPE "}, {3, " ANGLEUNIT "}, {4, " SHARP "}});
    if (type != 173 || !what)
        return {};
    return lead(173, " ") + m_positionId + what + varName;
}

const FieldList<TOFFSETCommand> &TOFFSETCommand::fields()
{
    using C = TOFFSETCommand;
    static const FieldList<C> list = {{"coord", &C::coord}, {"calData", &C::calData}, {"datatype", &C::datatype}};
    return list;
}

std::string TOFFSETCommand::body() const
{
    switch (type) {
    case 141: return lead(141, " ") + num(coord) + " " + calData;
    case 142: return lead(142);
    default: return {};
    }
}

FrameSetCommand::FrameSetCommand(int type, int ownType, const char *keyword)
    : FieldCommand(type), m_ownType(ownType), m_keyword(keyword)
{
}

const FieldList<FrameSetCommand> &FrameSetCommand::fields()
{
    using C = FrameSetCommand;
    static const FieldList<C> list = {
        {"ID", &C::ID}, {"coord", &C::coord}, {"varType", &C::varType}, {"m_varName", &C::m_varName},
        {"m_newValue", &C::m_newValue},
    };
    return list;
}

std::string FrameSetCommand::body() const
{
    if (type != m_ownType)
        return {};
    return m_keyword + std::string("ID = ") + num(ID) + " " + (varType == 0 ? m_newValue : m_varName);
}

const FieldList<COORDCommand> &COORDCommand::fields()
{
    using C = COORDCommand;
    static const FieldList<C> list = {
        {"coordNum", &C::coordNum}, {"coordType", &C::coordType}, {"CoordA", &C::CoordA}, {"CoordB", &C::CoordB},
        {"CoordC", &C::CoordC}, {"varType", &C::varType}, {"valueName", &C::valueName},
    };
    return list;
}

std::string COORDCommand::body() const
{
    switch (type) {
    case 49:
        return lead(49, " (") + num(coordNum) + ") " + num(CoordA) + " " + num(CoordB) + " "
            + num(CoordC);
    case 50: return lead(50, " (") + num(coordNum) + ")";
    case 117: return lead(117, " (") + valueName + ")";
    default: return {};
    }
}

const FieldList<POS_REACHABLECommand> &POS_REACHABLECommand::fields()
{
    using C = POS_REACHABLECommand;
    static const FieldList<C> list = {
        {"m_varType", &C::m_varType}, {"moveType", &C::moveType}, {"positionId", &C::m_positionId},
        {"m_varname", &C::m_varname},
    };
    return list;
}

std::string POS_REACHABLECommand::body() const
{
    const char *move = pick(moveType, {{0, " MOVJ "}, {1, " MOVL "}});
    if (type != 133 || !move)
        return {};
    return lead(133, " ") + m_varname + move + m_positionId;
}

const FieldList<SWITCHSYNCCommand> &SWITCHSYNCCommand::fields()
{
    static const FieldList<SWITCHSYNCCommand> list = {{"syncgroup", &SWITCHSYNCCommand::syncgroup}};
    return list;
}

std::string SWITCHSYNCCommand::body() const
{
    if (type != 51)
        return {};
    return lead(51, " ") + num(syncgroup);
}

const FieldList<STRETCHCommand> &STRETCHCommand::fields()
{
    using C = STRETCHCommand;
    static const FieldList<C> list = {
        {"position1Id", &C::position1Id}, {"position2Id", &C::position2Id}, {"position3Id", &C::position3Id},
        {"position1OutId", &C::position1OutId}, {"position2OutId", &C::position2OutId},
        {"stretchL1", &C::stretchL1}, {"stretchL2", &C::stretchL2}, {"stretchType", &C::stretchType},
    };
    return list;
}

std::string STRETCHCommand::body() const
{
    const char *shape = pick(stretchType, {{0, "LINE "}, {1, "ARC "}});
    if (type != 175 || !shape)
        return {};
    return lead(175, " ") + std::string(shape) + position1Id + " " + position2Id + " " + position3Id + " "
        + position1OutId + " " + position2OutId + " " + num(stretchL1) + " " + num(stretchL2);
}

const FieldList<MRESETCommand> &MRESETCommand::fields()
{
    static const FieldList<MRESETCommand> list = {{"exterAxis", &MRESETCommand::exterAxis}};
    return list;
}

std::string MRESETCommand::body() const
{
    if (type != 149)
        return {};
    return lead(149, " ") + num(exterAxis);
}

const FieldList<SWICHPAYLOADCommand> &SWICHPAYLOADCommand::fields()
{
    using C = SWICHPAYLOADCommand;
    static const FieldList<C> list = {{"intVar", &C::intVar}, {"stringVar", &C::stringVar}, {"posIDType", &C::posIDType}};
    return list;
}

std::string SWICHPAYLOADCommand::body() const
{
    if (type != 216)
        return {};
    return lead(216, " ") + (posIDType == 1 ? stringVar : num(intVar));
}

const FieldList<DragCommand> &DragCommand::fields()
{
    static const FieldList<DragCommand> list = {
        {"trackName", &DragCommand::trackName}, {"trackSpeed", &DragCommand::trackSpeed}};
    return list;
}

std::string DragCommand::body() const
{
    if (type != 172)
        return {};
    return lead(172, " ") + trackName + " " + num(trackSpeed);
}

} // namespace qrx
