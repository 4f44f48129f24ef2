#include "job/Condition.h"

#include "job/FieldTable.h"

#include <array>

namespace qrx {

using namespace jsonread;

namespace {

const std::array<const char *, 6> kOperators = {"==", "<>", ">", ">=", "<", "<="};

template <class Item>
std::string joined(const std::vector<Item> &items, const std::vector<LogicSymbolClass> &logics,
                   const char *open, const char *close)
{
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0 && i - 1 < logics.size())
            text += logics[i - 1].toString();
        text += open + items[i].toString() + close;
    }
    return text;
}

Json::Value logicArray(const std::vector<LogicSymbolClass> &logics)
{
    Json::Value array(Json::arrayValue);
    for (const LogicSymbolClass &symbol : logics)
        array.append(symbol.logic);
    return array;
}

std::vector<LogicSymbolClass> readLogics(const Json::Value &array)
{
    std::vector<LogicSymbolClass> logics;
    if (!array.isArray())
        return logics;
    for (const Json::Value &entry : array)
        logics.push_back(LogicSymbolClass{toInt(entry)});
    return logics;
}

const FieldList<CommandCondition> &conditionFields()
{
    using C = CommandCondition;
    static const FieldList<C> list = {
        {"keyType", &C::keyType}, {"key", &C::key}, {"inNumLeft", &C::inNumLeft}, {"inNumRight", &C::inNumRight},
        {"logicType", &C::logicType}, {"desType", &C::desType}, {"desValue", &C::desValue},
        {"paramType", &C::paramType}, {"paramName", &C::paramName}, {"soueceType", &C::soueceType},
        {"soueceName", &C::soueceName},
    };
    return list;
}

} // namespace

std::string LogicSymbolClass::toString() const
{
    switch (logic) {
    case 0: return " AND ";
    case 1: return " OR ";
    case 2: return " NOT ";
    default: return {};
    }
}

const char *CommandCondition::operatorText(int logicType)
{
    return logicType >= 0 && logicType < int(kOperators.size()) ? kOperators[std::size_t(logicType)] : "";
}

std::string CommandCondition::toString() const
{
    const std::string &right = desType == 2 ? paramName : desType == 3 ? soueceName : desValue;
    return "(" + key + " " + operatorText(logicType) + " " + right + ")";
}

Json::Value CommandCondition::toJson() const
{
    Json::Value json(Json::objectValue);
    writeFields(*this, conditionFields(), json);
    return json;
}

void CommandCondition::fromJson(const Json::Value &json)
{
    readFields(*this, conditionFields(), json);
}

std::string CommandConditionMid::toString() const
{
    return joined(conditions, logics, "", "");
}

std::string CommandConditionFINAL::toString() const
{
    return joined(groups, logics, "{", "}");
}

Json::Value CommandConditionFINAL::toJson() const
{
    Json::Value conditionGroup(Json::arrayValue);
    Json::Value logicGroup(Json::arrayValue);
    for (const CommandConditionMid &group : groups) {
        Json::Value conditions(Json::arrayValue);
        for (const CommandCondition &condition : group.conditions)
            conditions.append(condition.toJson());
        conditionGroup.append(conditions);
        logicGroup.append(logicArray(group.logics));
    }
    Json::Value json(Json::objectValue);
    json["conditionGroup"] = conditionGroup;
    json["logicGroup"] = logicGroup;
    json["logic"] = logicArray(logics);
    return json;
}

void CommandConditionFINAL::fromJson(const Json::Value &json)
{
    groups.clear();
    const Json::Value &conditionGroup = member(json, "conditionGroup");
    const Json::Value &logicGroup = member(json, "logicGroup");
    if (conditionGroup.isArray()) {
        for (Json::ArrayIndex g = 0; g < conditionGroup.size(); ++g) {
            CommandConditionMid group;
            if (conditionGroup[g].isArray()) {
                for (const Json::Value &entry : conditionGroup[g]) {
                    group.conditions.emplace_back();
                    group.conditions.back().fromJson(entry);
                }
            }
            if (logicGroup.isArray() && g < logicGroup.size())
                group.logics = readLogics(logicGroup[g]);
            groups.push_back(std::move(group));
        }
    }
    logics = readLogics(member(json, "logic"));
}

} // namespace qrx
