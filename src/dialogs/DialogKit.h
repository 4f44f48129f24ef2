#pragma once
// What the dialogs share: the robot's state in words, the style of menu
// buttons, and whether a controller is there to talk to.

#include <QString>
#include <QtGlobal>

class QPushButton;
class Robot;

namespace qrx::dialogs {

// Where the dialogs find the Robot they show: the host API sets it (the
// dialogs know nothing of the API's state), and asks again at each use, as
// the Robot changes with each connect.
using RobotSource = Robot *(*)();
void setRobotSource(RobotSource source);

// The Robot of the host API (null when there is none).
Robot *currentRobot();
// The same when its link is up, else null. Calls that wait for a reply are
// made only with a connected Robot.
Robot *connectedRobot();

// Sends a query about the robot the controller currently addresses:
// {"robot": n} and, when coord is not negative, "coord".
void queryAboutCurrentRobot(Robot *robot, quint16 code, int coord = -1);

// Servo state, operation mode and coordinate system in words (translated in
// the DialogKit context).
QString servoText(int servoStatus);
QString modeText(int mode);
QString coordText(int coord);
constexpr int kCoordCount = 4; // joint, Cartesian, tool, user

// The label of an axis in a coordinate system: J1.. for joints, X Y Z A B C
// for the others.
QString axisLabel(int axis, int coord);

// A menu button drawn with the border-image of the library's resources.
void styleMenuButton(QPushButton *button);

} // namespace qrx::dialogs
