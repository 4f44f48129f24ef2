#pragma once
// The simulator logs under a category of its own, "sim", so that tests which
// capture the library's "qrx.*" lines never see the controller's side.
// Debug lines are off unless enabled with QT_LOGGING_RULES="sim.debug=true".

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcSim)
