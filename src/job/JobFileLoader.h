#pragma once
// Loading a job file: open, parse, close, checks, then the version upgrade
// chain, which rewrites the file in place after every step.
//
// A job of another robot type than the connected robot's only warns: the
// load succeeds (the controller decides whether it runs the job).

#include "job/JobProgram.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace qrx {

struct JobLoadReport
{
    std::vector<std::string> upgrades; // the versions reached, in order
    bool robotTypeMismatch = false;
    int errorLine = -1;           // line of a parse error (0 for the first line)
    std::string errorMessage;     // "syntax error", ...
    std::string errorDescription; // with what the parser met: `syntax error at "FOO 1"`
    std::vector<std::pair<int, std::string>> missingPositions;
};

// Loads `fileName` for a robot of `robotType` whose double-robot value is
// `doubleRobot`; `third` is the controller's third value, accepted for the
// callers that pass it (no step of the chain needs it). Writes the loader's
// texts to `out`. Returns the program, or null on failure. Thread-safe for
// different files.
std::unique_ptr<JobProgram> loadJobFile(const std::string &fileName, const std::string &robotType,
                                        const std::string &doubleRobot, const std::string &third,
                                        std::ostream &out, JobLoadReport *report = nullptr);

// The upgrade chain on a program read from `fileName`: "" -> 1.0.0 -> ... ->
// 1.0.5, the file rewritten after each step; then an empty double-robot
// value becomes "NoCooperative" (rewritten too). Returns the versions reached.
std::vector<std::string> upgradeJobProgram(JobProgram &program, const std::string &fileName,
                                           const std::string &doubleRobot);

// The date text of a rewrite: the local time as "%Y.%m.%d %H:%M:%S".
std::string jobFileDate();

// Loads a job file as the controller's host does: the texts go to standard
// output, the program becomes the process-wide current job program.
// Returns 0 on failure, 1 on success.
int openJobFile(const std::string &fileName, const std::string &robotType, const std::string &doubleRobot,
                const std::string &third);

// The program of the last successful openJobFile (null before).
std::shared_ptr<JobProgram> currentJobProgram();

} // namespace qrx
