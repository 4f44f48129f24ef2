#pragma once
// What the controller would refuse or misrun in a job that reads: blocks
// that do not close, jumps to labels that do not exist, labels defined
// twice.

#include "job/JobProgram.h"

#include <string>
#include <vector>

namespace qrxjob {

struct Finding
{
    int line; // counted from 1
    std::string message;
};

// `firstLine` is the file line (from 1) of the NOP bracket.
std::vector<Finding> checkProgram(const qrx::JobProgram &program, int firstLine);

} // namespace qrxjob
