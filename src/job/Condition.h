#pragma once
// The condition tree of IF, ELSEIF, WHILE, UNTIL, JUMP ... WHEN and WAIT.
//
// Text: each group between "{" and "}", its conditions joined by their
// logic symbols; groups joined by the top-level symbols:
//   {(IN1 == 1) AND (IN2 <> 0)} OR {(D001 > 2.5)}
// One condition is "(", the left operand, " ", the operator, " ", the right
// operand, ")". Left operand: `key`. Right operand by `desType`: 2 the
// parameter name, 3 the source name, any other value `desValue`.
// Operators by `logicType`: 0 "==", 1 "<>", 2 ">", 3 ">=", 4 "<", 5 "<="
// (any other value writes nothing). The type fields and inNumLeft/Right
// travel in JSON only.

#include <json/value.h>
#include <string>
#include <vector>

namespace qrx {

class LogicSymbolClass
{
public:
    int logic = 0; // 0 AND, 1 OR, 2 NOT

    // " AND ", " OR ", " NOT ", or nothing for another value.
    std::string toString() const;
};

class CommandCondition
{
public:
    int keyType = 0;
    std::string key;
    int inNumLeft = 0;
    int inNumRight = 0;
    int logicType = 0;
    int desType = 0;
    std::string desValue;
    int paramType = 0;
    std::string paramName;
    int soueceType = 0;
    std::string soueceName;

    std::string toString() const;
    Json::Value toJson() const;
    void fromJson(const Json::Value &json);

    // The operator text of a logicType (empty when unknown).
    static const char *operatorText(int logicType);
};

class CommandConditionMid
{
public:
    std::vector<CommandCondition> conditions;
    std::vector<LogicSymbolClass> logics; // logics[i] joins conditions i and i+1

    std::string toString() const;
};

class CommandConditionFINAL
{
public:
    std::vector<CommandConditionMid> groups;
    std::vector<LogicSymbolClass> logics; // logics[i] joins groups i and i+1

    std::string toString() const;
    // {"conditionGroup": [[condition...]...], "logicGroup": [[symbol...]...],
    //  "logic": [symbol...]}, a symbol being a bare integer.
    Json::Value toJson() const;
    // Reads group by group; the logic symbols of group i come from
    // "logicGroup"[i] (none when that entry is missing).
    void fromJson(const Json::Value &json);
};

} // namespace qrx
