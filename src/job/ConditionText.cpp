#include "job/ConditionText.h"

#include <array>

namespace qrx {

namespace {

// The joiners of conditions and groups; -1 stands for a joiner that writes
// nothing.
int readLogic(std::string_view &text)
{
    static const std::array<std::string_view, 3> joiners = {" AND ", " OR ", " NOT "};
    for (std::size_t i = 0; i < joiners.size(); ++i) {
        if (text.substr(0, joiners[i].size()) == joiners[i]) {
            text.remove_prefix(joiners[i].size());
            return int(i);
        }
    }
    return -1;
}

// "(left op right)": the operator is the first " op " of the text; at the
// same place the longer operator wins (">=" before ">").
bool readComparison(std::string_view &text, CommandCondition &condition)
{
    if (text.empty() || text.front() != '(')
        return false;
    text.remove_prefix(1);
    std::size_t best = std::string_view::npos;
    std::size_t bestLength = 0;
    int bestType = -1;
    for (int type = 0; type < 6; ++type) {
        const std::string separator = std::string(" ") + CommandCondition::operatorText(type) + " ";
        const std::size_t at = text.find(separator);
        if (at != std::string_view::npos && (at < best || (at == best && separator.size() > bestLength))) {
            best = at;
            bestLength = separator.size();
            bestType = type;
        }
    }
    const std::size_t none = text.find("  "); // an operator outside the table writes nothing
    if (none != std::string_view::npos && none < best) {
        best = none;
        bestLength = 2;
        bestType = -1;
    }
    if (best == std::string_view::npos)
        return false;
    condition.key = std::string(text.substr(0, best));
    condition.logicType = bestType;
    text.remove_prefix(best + bestLength);
    const std::size_t close = text.find(')');
    if (close == std::string_view::npos)
        return false;
    condition.desType = 0;
    condition.desValue = std::string(text.substr(0, close));
    text.remove_prefix(close + 1);
    return true;
}

bool readGroup(std::string_view &text, CommandConditionMid &group)
{
    if (text.empty() || text.front() != '{')
        return false;
    text.remove_prefix(1);
    for (;;) {
        group.conditions.emplace_back();
        if (!readComparison(text, group.conditions.back()))
            return false;
        if (!text.empty() && text.front() == '}') {
            text.remove_prefix(1);
            return true;
        }
        const int logic = readLogic(text);
        group.logics.push_back(LogicSymbolClass{logic});
        if (text.empty() || text.front() != '(')
            return false;
    }
}

} // namespace

bool parseConditionText(std::string_view text, CommandConditionFINAL &condition)
{
    condition.groups.clear();
    condition.logics.clear();
    while (!text.empty()) {
        if (!condition.groups.empty())
            condition.logics.push_back(LogicSymbolClass{readLogic(text)});
        condition.groups.emplace_back();
        if (!readGroup(text, condition.groups.back()))
            return false;
    }
    return true;
}

} // namespace qrx
