#include "job/ParaCommand.h"

#include "job/JsonRead.h"
#include "job/TextFormat.h"

namespace qrx {

using namespace jsonread;

std::string ParaCommand::valueText() const
{
    return value == 0 ? num(data) : varname;
}

std::string ParaCommand::toString() const
{
    return label() + valueText();
}

Json::Value ParaCommand::toJson() const
{
    Json::Value json(Json::objectValue);
    json["value"] = value;
    json["data"] = data;
    json["varname"] = varname;
    return json;
}

void ParaCommand::fromJson(const Json::Value &json)
{
    value = readInt(json, "value");
    data = readDouble(json, "data");
    varname = readString(json, "varname");
}

const char *ParaAccCommand::label() const { return " ACC = "; }
const char *ParaDecCommand::label() const { return " DEC = "; }
const char *ParaPlCommand::label() const { return " PL = "; }
const char *ParaSpinCommand::label() const { return " SPIN = "; }
const char *ParaSyncCommand::label() const { return " SYNC = "; }
const char *ParaTimeCommand::label() const { return " "; }

const char *ParaVCommand::label() const
{
    const std::string &unit = speedUnitText(m_vUnit);
    if (unit == " %")
        return " VJ = ";
    if (unit == " mm/s")
        return " V = ";
    return "";
}

std::string ParaVCommand::toString() const
{
    const std::string prefix = label();
    if (prefix.empty())
        return {}; // " cm/s" (or no unit): neither label nor value
    return value == 0 ? prefix + num(data) + speedUnitText(m_vUnit) : prefix + varname;
}

Json::Value ParaVCommand::toJson() const
{
    Json::Value json = ParaCommand::toJson();
    json["m_vUnit"] = m_vUnit;
    return json;
}

void ParaVCommand::fromJson(const Json::Value &json)
{
    ParaCommand::fromJson(json);
    m_vUnit = readInt(json, "m_vUnit");
}

Json::Value ParaVarCommand::toJson() const
{
    Json::Value json(Json::objectValue);
    json["value"] = value;
    json["data"] = data;
    json["varname"] = varname;
    json["secondvalue"] = secondvalue;
    return json;
}

void ParaVarCommand::fromJson(const Json::Value &json)
{
    value = readInt(json, "value");
    data = readDouble(json, "data");
    varname = readString(json, "varname");
    secondvalue = readInt(json, "secondvalue");
}

} // namespace qrx
