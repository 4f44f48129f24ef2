#pragma once
// The controller's state as qrx reads it through the exported functions,
// each waiting call within the bound, and the names of the state values.

#include "Report.h"

#include <array>
#include <string>
#include <vector>

namespace qrxcli {

// Names indexed by value.
const std::vector<std::string> &servoNames();   // 0 stopped, 1 ready, 2 alarm, 3 running
const std::vector<std::string> &modeNames();    // teach, remote, run
const std::vector<std::string> &coordNames();   // joint, cartesian, tool, user
const std::vector<std::string> &runningNames(); // stopped, paused, running

constexpr int kServoRunning = 3;
constexpr int kJobRunning = 2;

int readMode();
int readCoord();
int readSpeed();
int readRunning();
int readTool();
std::array<double, 6> readPosition(int coord);
// The servo state last reported, after the controller has answered
// everything sent before.
int readServo();
// The running line: the query's answer is read by a second query.
int readJobLine();

// One screen of state: link, servo, mode, coordinate system, speed,
// positions, running state and line, tool.
Report statusReport();

std::vector<double> toVector(const double *values, std::size_t count);

} // namespace qrxcli
