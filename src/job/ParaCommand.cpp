#include "job/ParaCommand.h"

#include "job/FieldTable.h"
#include "job/TextFormat.h"

namespace qrx {

namespace {

// The keys of a constant-or-variable value.
template <class C>
FieldList<C> valueFields()
{
    return {{"value", &C::value}, {"data", &C::data}, {"varname", &C::varname}};
}

const FieldList<ParaCommand> &paraFields()
{
    static const FieldList<ParaCommand> list = valueFields<ParaCommand>();
    return list;
}

const FieldList<ParaVarCommand> &paraVarFields()
{
    using C = ParaVarCommand;
    static const FieldList<C> list = joinFields<C>(valueFields<C>(), {{"secondvalue", &C::secondvalue}});
    return list;
}

} // namespace

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
    writeFields(*this, paraFields(), json);
    return json;
}

void ParaCommand::fromJson(const Json::Value &json)
{
    readFields(*this, paraFields(), json);
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
    m_vUnit = jsonread::readInt(json, "m_vUnit");
}

Json::Value ParaVarCommand::toJson() const
{
    Json::Value json(Json::objectValue);
    writeFields(*this, paraVarFields(), json);
    return json;
}

void ParaVarCommand::fromJson(const Json::Value &json)
{
    readFields(*this, paraVarFields(), json);
}

} // namespace qrx
