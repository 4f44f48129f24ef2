#include "robot/RobotTypes.h"

#include <QtGlobal>
#include <iterator>

namespace qrx {
namespace {

// Wire code -> type code and its name, axis count and log line. The delta
// keeps the axis count of the previous type, and the three-axis and
// seven-axis models are taken without a log line: the controller's
// operators know it that way.
#define TYPE(code) code, #code
const RobotTypeRow kRows[] = {
    {1, TYPE(R_GENERAL_6S), 6, QT_TRANSLATE_NOOP("Robot", "接收机器人型号 六轴机器人")},
    {2, TYPE(R_SCARA), 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号四轴SCARA机器人")},
    {3, TYPE(R_FOURAXIS_PALLET), 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号四轴码垛机器人")},
    {4, TYPE(R_FOURAXIS), 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号四轴机器人")},
    {5, TYPE(R_GENERAL_1S), 1, QT_TRANSLATE_NOOP("Robot", "接收机器人型号一轴机器人")},
    {6, TYPE(R_GENERAL_5S), 5, QT_TRANSLATE_NOOP("Robot", "接收机器人型号五轴机器人")},
    {7, TYPE(R_GENERAL_6S_1), 6, QT_TRANSLATE_NOOP("Robot", "接收机器人型号UR机器人")},
    {8, TYPE(R_SCARA_TWOAXIS), 2, QT_TRANSLATE_NOOP("Robot", "接收机器人型号二轴SCARA机器人")},
    {9, TYPE(R_SCARA_THREEAXIS), 3, nullptr},
    {10, TYPE(R_THREE_CARTESIAN_COORDINATE), 3, nullptr},
    {11, TYPE(R_THREE_CARTESIAN_COORDINATE_1), 3, nullptr},
    {12, TYPE(R_GENERAL_7S), 7, nullptr},
    {13, TYPE(R_SCARA_1), 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号SCARA异型一机器人")},
    {14, TYPE(R_FOURAXIS_PALLET_1), 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号四轴码垛异形一机器人")},
    {15, TYPE(R_SIXAXIS_SPRAY_BBR), 6, QT_TRANSLATE_NOOP("Robot", "接收机器人型号六轴喷涂机器人")},
    {16, TYPE(R_FOUR_CARTESIAN_COORDINATE), 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号四轴直角机器人")},
    {17, TYPE(R_FOUR_POLAR_COORDINATE_1), 4, QT_TRANSLATE_NOOP("Robot", "接收机器人型号四轴极坐标异型机器人")},
    {18, TYPE(R_GENERAL_6S_2), 6, QT_TRANSLATE_NOOP("Robot", "接收机器人型号 六轴异型一")},
    {19, TYPE(R_GANTRY_WELD), 5, QT_TRANSLATE_NOOP("Robot", "接收机器人型号龙门焊接机器人")},
    {20, TYPE(R_DELTA), kAxesUnchanged, QT_TRANSLATE_NOOP("Robot", "接收机器人型号delta机器人")},
};

const RobotTypeRow kUnknown = {0, TYPE(R_NULL), kAxesUnchanged, nullptr};
#undef TYPE

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
    for (const RobotTypeRow &row : kRows)
        if (row.type == typeCode)
            return QString::fromLatin1(row.name);
    return QString::fromLatin1(kUnknown.name);
}

void registerRobotTypeMetaType()
{
    qRegisterMetaType<RobotType>("RobotType");
}

} // namespace qrx
