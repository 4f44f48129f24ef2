#pragma once
// Enumerated arguments of the link's send slots. Each is sent as its plain
// integer value; the controller defines the meaning, the host only names the
// values it uses. Values not named here may still be passed (the enums have
// a fixed underlying type, so any value of it is valid) and go out unchanged.
//
// All four are registered with the meta-type system (registerLinkMetaTypes),
// so the slots can be invoked queued or by name.

#include <QMetaType>
#include <QtGlobal>

// Servo drive state, as set with 0x2001 and reported with 0x2003 "status".
// setServoStatus sends it as a signed 8-bit value.
enum ServoStatus : qint8 {
    SERVO_STOP = 0,    // drives off
    SERVO_READY = 1,   // drives enabled, waiting for the deadman (what power-on asks for)
    SERVO_ERROR = 2,   // drive fault
    SERVO_RUNNING = 3, // drives powered and running: jogging is allowed
};

// Operating mode of the controller (0x2101 / 0x2103 "mode").
enum OperationMode : int {
    OPERATION_TEACH = 0,
    OPERATION_REMOTE = 1,
    OPERATION_RUN = 2,
};

// Coordinate system used for jogging and moves (0x2201 / 0x2203 "coord").
enum CoordinationMode : int {
    COORD_JOINT = 0,
    COORD_CARTESIAN = 1,
    COORD_TOOL = 2,
    COORD_USER = 3,
};

// Error value cleared with 0x2B01: the controller's 32-bit error code, sent
// as four raw bytes, most significant first. The host knows only a few of
// them by name; any other code is passed through as it is.
enum ErrorList : quint32 {
    ERROR_NONE = 0x0000,
    ERROR_SERVO = 0x6010, // servo error of one robot (text starts with the robot's name)
};

Q_DECLARE_METATYPE(ServoStatus)
Q_DECLARE_METATYPE(OperationMode)
Q_DECLARE_METATYPE(CoordinationMode)
Q_DECLARE_METATYPE(ErrorList)

namespace qrx {

// Registers the enumerations above and the non-QByteArray argument types of
// the link's notifications (QVector<double>, quint16, signed char, uchar)
// for queued delivery. Idempotent and thread-safe; the link calls it on
// construction.
void registerLinkMetaTypes();

} // namespace qrx
