#include "job/IoCommands.h"

#include "job/RenderHelpers.h"

namespace qrx {

using namespace render;

const FieldList<IOCommand> &IOCommand::fields()
{
    using C = IOCommand;
    static const FieldList<C> list = {
        {"ParaGroup", &C::ParaGroup}, {"group", &C::group}, {"groupValue", &C::groupValue},
        {"groupType", &C::groupType}, {"portId", &C::portId}, {"portValue", &C::portValue},
        {"valueIsVariant", &C::valueIsVariant}, {"varName", &C::varName}, {"varType", &C::varType},
        {"rate", &C::rate}, {"sum", &C::sum}, {"time", &C::time}, {"errorHanding", &C::errorHanding},
    };
    return list;
}

std::string IOCommand::body() const
{
    const std::string port = group != 0 ? "(" + num(portId) + ")" : num(portId);
    const std::string value = valueIsVariant ? varName : num(group != 0 ? groupValue : portValue);
    switch (type) {
    case 16: return lead(16, " ") + port + " " + value;
    case 17: return lead(17, " ") + varName + " " + port;
    case 99: return lead(99, " ") + varName + " " + port;
    case 20: return lead(20, " ") + varName + " AIN" + num(portId);
    case 21: return lead(21, " AOUT") + num(portId) + " " + value;
    case 22:
        return lead(22, " RATE = ") + num(rate) + " SUM = " + num(sum) + " T = " + num(time) + " " + port;
    default: return {};
    }
}

const FieldList<AITOCommand> &AITOCommand::fields()
{
    using C = AITOCommand;
    static const FieldList<C> list = {
        {"ain", &C::ain}, {"aout", &C::aout}, {"para1", &C::para1}, {"para2", &C::para2},
        {"para3", &C::para3},
    };
    return list;
}

std::string AITOCommand::body() const
{
    switch (type) {
    case 18:
        return lead(18, " AIN") + num(ain) + " AOUT" + num(aout) + " " + num(para1) + " " + num(para2)
            + " " + num(para3);
    case 19: return lead(19);
    default: return {};
    }
}

const FieldList<VARCommand> &VARCommand::fields()
{
    using C = VARCommand;
    static const FieldList<C> list = {
        {"key", &C::key}, {"intValue", &C::intValue}, {"doubleValue", &C::doubleValue},
        {"boolValue", &C::boolValue}, {"varType", &C::varType}, {"strValue", &C::strValue},
    };
    return list;
}

bool VARCommand::isDeclaration() const
{
    return type == 35 || type == 37 || type == 39;
}

std::string VARCommand::body() const
{
    if (type != 35 && type != 37 && (type < 39 || type > 42))
        return {};
    return lead(type, " ") + key + " = " + strValue;
}

const FieldList<FORCESETCommand> &FORCESETCommand::fields()
{
    static const FieldList<FORCESETCommand> list = {
        {"gVarName", &FORCESETCommand::gVarName}, {"gVarType", &FORCESETCommand::gVarType}};
    return list;
}

std::string FORCESETCommand::body() const
{
    if (type != 43)
        return {};
    return lead(43, " ") + gVarName;
}

const FieldList<OPCommand> &OPCommand::fields()
{
    using C = OPCommand;
    static const FieldList<C> list = {
        {"key", &C::key}, {"desType", &C::desType}, {"desValue", &C::desValue},
        {"paraSourceGroup", &C::paraSourceGroup}, {"paraValueGroup", &C::paraValueGroup},
    };
    return list;
}

std::string OPCommand::body() const
{
    if ((type < 44 || type > 48) && (type < 102 || type > 104))
        return {};
    return lead(type, " ") + key + " " + desValue;
}

const FieldList<LOGICAL_OPCommand> &LOGICAL_OPCommand::fields()
{
    using C = LOGICAL_OPCommand;
    static const FieldList<C> list = {
        {"answerType", &C::answerType}, {"answerName", &C::answerName}, {"firstType", &C::firstType},
        {"firstName", &C::firstName}, {"secondType", &C::secondType}, {"secondName", &C::secondName},
        {"logicalType", &C::logicalType},
    };
    return list;
}

std::string LOGICAL_OPCommand::body() const
{
    if (type != 121)
        return {};
    std::string line = lead(121, " ") + answerName + " ";
    switch (logicalType) {
    case 0: line += firstName + " AND " + secondName; break;
    case 1: line += firstName + " OR " + secondName; break;
    case 2: line += "NOT " + firstName; break;
    default: return {};
    }
    return line;
}

const FieldList<MODBUSCommand> &MODBUSCommand::fields()
{
    using C = MODBUSCommand;
    static const FieldList<C> list = {
        {"ID", &C::ID}, {"m_variableValue", &C::m_variableValue}, {"m_addressType", &C::m_addressType},
        {"m_firstAddress", &C::m_firstAddress}, {"m_addressNum", &C::m_addressNum}, {"desType", &C::desType},
    };
    return list;
}

std::string MODBUSCommand::body() const
{
    switch (type) {
    case 210: return lead(210);
    case 211: return lead(211);
    case 212: return lead(212) + " ID = " + num(ID);
    case 213:
        return lead(213) + " ID = " + num(ID) + " " + num(m_addressType) + " "
            + num(m_firstAddress) + " " + m_variableValue;
    case 214:
        return lead(214) + " ID = " + num(ID) + " " + num(m_addressType) + " "
            + num(m_firstAddress) + " " + num(m_addressNum) + " " + m_variableValue;
    default: return {};
    }
}

const FieldList<SENDMSGCommand> &SENDMSGCommand::fields()
{
    static const FieldList<SENDMSGCommand> list = {
        {"ID", &SENDMSGCommand::ID}, {"sendChar", &SENDMSGCommand::sendChar}};
    return list;
}

std::string SENDMSGCommand::body() const
{
    if (type != 94)
        return {};
    return lead(94, " ID = ") + num(ID) + " " + sendChar;
}

const FieldList<MSG_CONN_STCommand> &MSG_CONN_STCommand::fields()
{
    using C = MSG_CONN_STCommand;
    static const FieldList<C> list = {
        {"ID", &C::ID}, {"m_varType", &C::m_varType}, {"m_valueName", &C::m_valueName}};
    return list;
}

std::string MSG_CONN_STCommand::body() const
{
    if (type != 95)
        return {};
    return lead(95, " ") + num(ID) + " " + m_valueName;
}

const FieldList<PARSEMSGCommand> &PARSEMSGCommand::fields()
{
    using C = PARSEMSGCommand;
    static const FieldList<C> list = {
        {"ID", &C::ID}, {"expvarType", &C::expvarType}, {"explainValue", &C::explainValue},
        {"clearCache", &C::clearCache},
    };
    return list;
}

std::string PARSEMSGCommand::body() const
{
    if (type != 96)
        return {};
    return lead(96, " ID = ") + num(ID) + " " + explainValue + " CLEARCACHE = " + num(clearCache);
}

const FieldList<OPENCLOSEMSGCommand> &OPENCLOSEMSGCommand::fields()
{
    static const FieldList<OPENCLOSEMSGCommand> list = {{"ID", &OPENCLOSEMSGCommand::ID}};
    return list;
}

std::string OPENCLOSEMSGCommand::body() const
{
    if (type != 115 && type != 116)
        return {};
    return lead(type, " ID = ") + num(ID);
}

const FieldList<READCOMMCommand> &READCOMMCommand::fields()
{
    using C = READCOMMCommand;
    static const FieldList<C> list = {
        {"ID", &C::ID}, {"commType", &C::commType}, {"positionId", &C::m_positionId},
        {"m_varname", &C::m_varname},
    };
    return list;
}

std::string READCOMMCommand::body() const
{
    if (type != 110)
        return {};
    return lead(110, " ID = ") + num(ID) + (commType == 0 ? " EHTERNET " : " MODBUS ") + m_varname + " "
        + m_positionId;
}

const FieldList<ClkCommand> &ClkCommand::fields()
{
    using C = ClkCommand;
    static const FieldList<C> list = {{"ID", &C::ID}, {"m_varname", &C::m_varname}, {"m_vartype", &C::m_vartype}};
    return list;
}

std::string ClkCommand::body() const
{
    switch (type) {
    case 128: return lead(128, " ID = ") + num(ID);
    case 129: return lead(129, " ID = ") + num(ID) + " " + m_varname;
    case 130: return lead(130, " ID = ") + num(ID);
    default: return {};
    }
}

} // namespace qrx
