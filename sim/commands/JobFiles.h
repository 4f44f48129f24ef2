#pragma once
// Jobs the simulated controller holds as files: the job folder has one
// sub-folder per robot ("<folder>/R1/NAME.JBR"), where the file service
// stores uploaded jobs. A job run by name is read from there through the
// library's job reader; its instructions (between NOP and END) become the
// steps the job runner executes, as the instruction objects a host would
// queue (their toJson).

#include <json/value.h>

#include <string>
#include <vector>

namespace qrxsim {

struct JobFileSteps
{
    bool found = false;           // the file exists
    std::string problem;          // why it does not read; empty when it does
    std::vector<Json::Value> steps; // one per line of the job, from line 1
};

// The file of job `name` of robot `robot` (1..4) below `folder`: the name
// with ".JBR" added unless it has it. Empty when the folder is not set or the
// name could leave it.
std::string jobFilePath(const std::string &folder, int robot, const std::string &name);

// Reads the job file at `path` (never changes it: no version upgrade).
JobFileSteps readJobFile(const std::string &path);

} // namespace qrxsim
