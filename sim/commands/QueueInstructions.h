#pragma once
// The instructions of the continuous-motion queue, as the simulated
// controller executes them: each instruction object (the JSON the host sends
// under "data" of 0x50B4) is first checked when the queue arrives, then
// started in its turn; ContinuousCommands.cpp runs the queue.

#include "sim/ControllerModel.h"

#include <json/value.h>
#include <string>
#include <vector>

namespace qrxsim {

// Why the controller cannot execute the instruction; empty when it can.
// A disabled instruction ("logout") is always accepted: it is skipped.
std::string notExecutable(const Json::Value &instruction, const ControllerModel &model);

// Starts the instruction: IO and variables change at once, a move gives the
// axes their target, a wait its end. Sets model.continuous.phase: Idle when
// the instruction is done already, Moving until the axes arrive, Waiting
// until waitUntilMs. Returns why it cannot run now (a global position that
// does not exist, an incremental move beyond a limit); empty when it runs.
std::string startInstruction(const Json::Value &instruction, ControllerModel &model, qint64 nowMs);

// Ends a Waiting instruction (a pulse output goes off).
void finishWaiting(ControllerModel &model);

// "MOVJ (1)", ... : the instructions executed, for qrx-sim --help.
std::vector<std::string> executedInstructions();

} // namespace qrxsim
