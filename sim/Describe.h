#pragma once
// What the simulated controller holds and refuses, as text for
// qrx-sim --help: built from the tables that drive it (sim/Ranges.h, the
// job runner's jobs, the queue's instructions, the refusal reasons).

#include <QString>

namespace qrxsim {

QString controllerDescription();

} // namespace qrxsim
