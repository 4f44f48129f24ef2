#include "job/RobotPos.h"

#include "job/JsonRead.h"

namespace qrx {

using namespace jsonread;

Json::Value RobotPos::toJson() const
{
    Json::Value json(Json::objectValue);
    json["key"] = key;
    json["ctype"] = ctype;
    Json::Value values(Json::arrayValue);
    for (double value : data)
        values.append(value);
    json["data"] = values;
    Json::Value variables(Json::arrayValue);
    for (int i = 0; i < kCoordinates; ++i) {
        if (const auto &variable = paraVarData[std::size_t(i)]) {
            Json::Value entry = variable->toJson();
            entry["data"] = data[std::size_t(i)];
            variables[Json::ArrayIndex(i)] = entry;
        }
    }
    json["paraVarData"] = variables;
    return json;
}

void RobotPos::fromJson(const Json::Value &json)
{
    key = readString(json, "key");
    ctype = readInt(json, "ctype");
    const Json::Value &values = member(json, "data");
    const Json::Value &variables = member(json, "paraVarData");
    for (int i = 0; i < kCoordinates; ++i) {
        const auto index = Json::ArrayIndex(i);
        data[std::size_t(i)] = values.isArray() && index < values.size() ? toDouble(values[index]) : 0.0;
        auto &variable = paraVarData[std::size_t(i)];
        variable.reset();
        if (variables.isArray() && index < variables.size() && variables[index].isObject()) {
            variable = std::make_unique<ParaVarCommand>();
            variable->fromJson(variables[index]);
        }
    }
}

RobotPos *PositionTable::find(const std::string &name) const
{
    const auto it = m_positions.find(name);
    return it == m_positions.end() ? nullptr : it->second.get();
}

RobotPos *PositionTable::insert(std::unique_ptr<RobotPos> position)
{
    if (!position)
        return nullptr;
    auto &slot = m_positions[position->key];
    if (!slot) // a name already held keeps its position: instructions share it
        slot = std::move(position);
    return slot.get();
}

Json::Value PositionRef::toJson() const
{
    if (!pos)
        return Json::Value();
    Json::Value json = pos->toJson();
    json["noFile"] = isOwned();
    return json;
}

void PositionRef::fromJson(const Json::Value &robotPos, PositionTable *table)
{
    reset();
    if (!robotPos.isObject())
        return;
    if (readBool(robotPos, "noFile")) {
        auto position = std::make_unique<RobotPos>();
        position->fromJson(robotPos);
        own(std::move(position));
        return;
    }
    if (!table)
        return;
    if (RobotPos *known = table->find(readString(robotPos, "key"))) {
        share(known);
        return;
    }
    auto position = std::make_unique<RobotPos>();
    position->fromJson(robotPos);
    share(table->insert(std::move(position)));
}

} // namespace qrx
