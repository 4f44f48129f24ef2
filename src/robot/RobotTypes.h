#pragma once
// The kinds of robot a controller can drive.
//
// The controller reports its robot with a wire code (key "type" of 0x2E03);
// the library has a numbering of its own (RobotType). The two numberings
// differ on purpose, and so do the axis counts: the table in RobotTypes.cpp
// is the one place that joins them.

#include <QMetaType>
#include <QString>

enum RobotType {
    R_NULL = 0,
    R_GENERAL_6S = 1,
    R_GENERAL_6S_1 = 2,
    R_SIXAXIS_SPRAY_BBR = 3,
    R_GENERAL_6S_2 = 4,
    R_GENERAL_5S = 5,
    R_SCARA = 6,
    R_SCARA_1 = 7,
    R_FOURAXIS_PALLET = 8,
    R_FOURAXIS_PALLET_1 = 9,
    R_FOURAXIS = 10,
    R_FOUR_CARTESIAN_COORDINATE = 11,
    R_FOUR_POLAR_COORDINATE_1 = 12,
    R_SCARA_THREEAXIS = 13,
    R_THREE_CARTESIAN_COORDINATE = 14,
    R_THREE_CARTESIAN_COORDINATE_1 = 15,
    R_SCARA_TWOAXIS = 16,
    R_GENERAL_7S = 17,
    R_GENERAL_1S = 18,
    R_GANTRY_WELD = 19,
    R_DELTA = 20,
};
Q_DECLARE_METATYPE(RobotType)

namespace qrx {

// One reported robot model.
struct RobotTypeRow
{
    int wire;             // value of "type" in the controller's report
    RobotType type;       // the library's own code
    const char *name;     // its display name, the enum's name ("R_SCARA")
    int axes;             // axis count; kAxesUnchanged keeps the previous one
    const char *logLine;  // untranslated log text (Robot context), or nullptr
};

constexpr int kAxesUnchanged = -1;

// The row for a wire code. Codes the controller does not define give the
// R_NULL row: axis count unchanged, no log line.
const RobotTypeRow &robotTypeForWire(int wire);

// All defined wire codes, 1 to 20, in wire order.
const RobotTypeRow *robotTypeRows(int *count);

// Display name of a type code ("R_SCARA"); 0, negative and codes above 20
// give "R_NULL".
QString robotTypeName(int typeCode);

// Registers RobotType for queued signals (by the name "RobotType").
void registerRobotTypeMetaType();

} // namespace qrx
