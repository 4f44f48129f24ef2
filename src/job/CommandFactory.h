#pragma once
// Creation of instructions by type code. The table of classes and their
// type codes is in CommandFactory.cpp.

#include "job/Command.h"

#include <json/value.h>
#include <memory>
#include <vector>

namespace qrx {

// A new instruction of that type code with its defaults, or null for the
// codes that create nothing: 0, 29, 31 (the NOP/END brackets), 36, 38, 69,
// 100, 114 and every code outside 1-219.
std::unique_ptr<Command> newCommand(int type);

// newCommand, and also the codes that the job-file reader builds from
// their line although the factory creates nothing for them (114).
std::unique_ptr<Command> newLineCommand(int type);

// The instruction that a JSON object describes: "type" selects the class,
// then the object reads itself with fromJson(json, table). Null for the
// codes that create nothing (the caller skips them).
std::unique_ptr<Command> createCommand(const Json::Value &json, PositionTable *table);

struct FieldAtom;
// The fields of the class of a type code as the reader fills them (codes of
// newLineCommand), or null.
const std::vector<FieldAtom> *commandFieldAtoms(int type);

// The class name of a type code of newLineCommand ("MoveCommand"), or null.
const char *commandClassName(int type);

} // namespace qrx
