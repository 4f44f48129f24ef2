#pragma once
// The continuous-motion queue: caller records (qrx_motion_record of
// qrx_host.h) become instructions of the job model, whose JSON objects are
// sent under "data". Pure functions; the exported function that sends is in
// ContinuousMotion.cpp.

#include "api/qrx_host.h"

#include <QStringList>
#include <json/value.h>

namespace qrx::api {

// Classes of a named operand, as the controller numbers them. Global
// classes keep the numbers of the global-variable commands (GB 1, GI 2,
// GD 3); 0 is a constant.
enum VariableClass {
    Unclassified = -1,
    Constant = 0,
    GlobalBool = 1,
    GlobalInt = 2,
    GlobalReal = 3,
    LocalInt = 4,
    LocalReal = 5,
    LocalBool = 6,
};

// The class of the variable `name` given with the type word `word`
// ("CONST", "INT", "GINT", "BOOL", "GBOOL", "AUTO"; empty means "AUTO", which
// classifies by the prefix "GI", "GD", "GB", "I" or "D"). An empty name, or
// the word "CONST", is a constant. Unclassified for an unknown word or
// prefix, or a name that does not end in a three-digit index.
VariableClass classifyVariable(const std::string &word, const std::string &name);

// The instruction objects of the records, in order, skipping the types that
// make no instruction. Returns false, with the offending parameters named in
// `outOfRange`, when a value lies outside its range or a variable cannot be
// classified.
bool buildQueue(const qrx_motion_record *records, int count, Json::Value &data, QStringList *outOfRange);

} // namespace qrx::api
