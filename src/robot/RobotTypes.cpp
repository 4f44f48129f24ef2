#include "robot/RobotTypes.h"

#include <QtGlobal>
#include <iterator>

namespace qrx {
namespace {

// Wire code -> type code, axis count and log line. The delta keeps the axis
// count of the previous type, and the three-axis and seven-axis models are
// taken without a log line: the controller's operators know it that way.
const RobotTypeRow kRows[] = {
    {1, R_GENERAL_6S, 6, QT_TRANSLATE_NOOP("Robot", "接收机器人型号 六轴机器人")},
    {2, R_SCARA, 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号四轴SCARA机器人")},
    {3, R_FOURAXIS_PALLET, 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号四轴码垛机器人")},
    {4, R_FOURAXIS, 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号四轴机器人")},
    {5, R_GENERAL_1S, 1, QT_TRANSLATE_NOOP("Robot", "接收机器人型号一轴机器人")},
    {6, R_GENERAL_5S, 5, QT_TRANSLATE_NOOP("Robot", "接收机器人型号五轴机器人")},
    {7, R_GENERAL_6S_1, 6, QT_TRANSLATE_NOOP("Robot", "接收机器人型号UR机器人")},
    {8, R_SCARA_TWOAXIS, 2, QT_TRANSLATE_NOOP("Robot", "接收机器人型号二轴SCARA机器人")},
    {9, R_SCARA_THREEAXIS, 3, nullptr},
    {10, R_THREE_CARTESIAN_COORDINATE, 3, nullptr},
    {11, R_THREE_CARTESIAN_COORDINATE_1, 3, nullptr},
    {12, R_GENERAL_7S, 7, nullptr},
    {13, R_SCARA_1, 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号SCARA异型一机器人")},
    {14, R_FOURAXIS_PALLET_1, 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号四轴码垛异形一机器人")},
    {15, R_SIXAXIS_SPRAY_BBR, 6, QT_TRANSLATE_NOOP("Robot", "接收机器人型号六轴喷涂机器人")},
    {16, R_FOUR_CARTESIAN_COORDINATE, 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号四轴直角机器人")},
    {17, R_FOUR_POLAR_COORDINATE_1, 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号四轴极坐标异型机器人")},
    {18, R_GENERAL_6S_2, 6, QT_TRANSLATE_NOOP("Robot", "接收机器人型号 六轴异型一")},
    {19, R_GANTRY_WELD, 5, QT_TRANSLATE_NOOP("Robot", "接收机器人型号龙门焊接机器人")},
    {20, R_DELTA, kAxesUnchanged, QT_TRANSLATE_NOOP("Robot", "接收机器人型号delta机器人")},
};

const RobotTypeRow kUnknown = {0, R_NULL, kAxesUnchanged, nullptr};

// Type code -> display name, indexed by the type code.
const char *const kNames[] = {
    "R_NULL",
    "R_GENERAL_6S",
    "R_GENERAL_6S_1",
    "R_SIXAXIS_SPRAY_BBR",
    "R_GENERAL_6S_2",
    "R_GENERAL_5S",
    "R_SCARA",
    "R_SCARA_1",
    "R_FOURAXIS_PALLET",
    "R_FOURAXIS_PALLET_1",
    "R_FOURAXIS",
    "R_FOUR_CARTESIAN_COORDINATE",
    "R_FOUR_POLAR_COORDINATE_1",
    "R_SCARA_THREEAXIS",
    "R_THREE_CARTESIAN_COORDINATE",
    "R_THREE_CARTESIAN_COORDINATE_1",
    "R_SCARA_TWOAXIS",
    "R_GENERAL_7S",
    "R_GENERAL_1S",
    "R_GANTRY_WELD",
    "R_DELTA",
};

} // namespace

const RobotTypeRow &robotTypeForWire(int wire)
{
    // The rows are in wire order, 1 to 20.
    const int count = int(std::size(kRows));
    if (wire < 1 || wire > count)
        return kUnknown;
    return kRows[wire - 1];
}

const RobotTypeRow *robotTypeRows(int *count)
{
    if (count)
        *count = int(std::size(kRows));
    return kRows;
}

QString robotTypeName(int typeCode)
{
    if (typeCode < 0 || typeCode >= int(std::size(kNames)))
        typeCode = R_NULL;
    return QString::fromLatin1(kNames[typeCode]);
}

void registerRobotTypeMetaType()
{
    qRegisterMetaType<RobotType>("RobotType");
}

} // namespace qrx
