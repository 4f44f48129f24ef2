#pragma once
// Small helpers shared by the toString of the instruction families
// (internal to the job part).

#include "job/InstructionTable.h"
#include "job/ParaCommand.h"
#include "job/TextFormat.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

namespace qrx::render {

using Keywords = std::initializer_list<std::pair<int, const char *>>;

// The text of `key` in a (key, text) table, or null.
inline const char *pick(int key, Keywords table)
{
    for (const auto &entry : table) {
        if (entry.first == key)
            return entry.second;
    }
    return nullptr;
}

// The leading word of a type's line as the instruction table has it (the
// `variant`-th word of a type whose word depends on a field: the table
// lists them in the field's order), then `rest`. Every family renders its
// keywords through this, so the reader's keywords are the rendered ones.
inline std::string lead(int type, const char *rest = "", std::size_t variant = 0)
{
    const char *word = instructionKeyword(type, variant);
    return std::string(word ? word : "") + rest;
}

// The move of an instruction that knows the first `kinds` of " MovJ ",
// " MovL ", " MovC " and " MovS " (moveType 0-3), or null.
inline const char *moveText(int moveType, int kinds)
{
    static const char *const moves[] = {" MovJ ", " MovL ", " MovC ", " MovS "};
    return moveType >= 0 && moveType < kinds && moveType < 4 ? moves[moveType] : nullptr;
}

// A parameter object's text, nothing when there is no object.
template <class P>
std::string textOf(const std::unique_ptr<P> &parameter)
{
    return parameter ? parameter->toString() : std::string();
}

// A target named through a variable (posidtype 1) or by the position name.
inline const std::string &target(int posidtype, const std::string &posidname, const std::string &positionId)
{
    return posidtype == 1 ? posidname : positionId;
}

} // namespace qrx::render
