#pragma once
// A whole job program as one JSON document and back: header values,
// positions, variables and the instructions between NOP and END as their
// own JSON objects, each with its "keyword" beside its "type".

#include "job/JobProgram.h"

#include <json/value.h>
#include <memory>
#include <string>

namespace qrxjob {

Json::Value programToJson(const qrx::JobProgram &program);
// Null (and `error` set) when the document is not a job program.
std::unique_ptr<qrx::JobProgram> programFromJson(const Json::Value &json, std::string &error);

} // namespace qrxjob
