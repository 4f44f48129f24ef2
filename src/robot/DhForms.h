#pragma once
// Reading of the controller's DH parameter messages (0x3A03, 0x3E05).
//
// The payload carries "Link" (array of link lengths and offsets), "CoupleCoe"
// (object of axis-coupling coefficients "Couple_Coe_1_2", "_2_3", "_3_2",
// "_3_4", "_4_5", "_4_6", "_5_6"), "theta", "upsideDown", "pitch",
// "dynamicLimit" and, for the linear-axis models, "x_ratio", "y_ratio",
// "z_ratio", "conversionRatio". Which log line is written depends on the
// robot type held:
//
//   form 1, six-axis:          R_GENERAL_5S, R_SCARA, R_SCARA_1,
//                              R_SCARA_THREEAXIS, R_SCARA_TWOAXIS,
//                              and also R_GENERAL_6S and R_GANTRY_WELD
//   form 2, second d6:         R_GENERAL_6S_2
//   form 3, four-axis:         R_FOURAXIS_PALLET, and also
//                              R_FOURAXIS_PALLET_1, R_FOURAXIS,
//                              R_FOUR_CARTESIAN_COORDINATE,
//                              R_FOUR_POLAR_COORDINATE_1,
//                              R_THREE_CARTESIAN_COORDINATE(_1), R_DELTA
//   form 4, second a2:         R_GENERAL_6S_1 (UR geometry)
//   form 5, eight lengths:     R_SIXAXIS_SPRAY_BBR, and also R_GENERAL_7S
//   ignored:                   R_GENERAL_1S (no log, no signal, no wake)
//   no line:                   R_NULL (signals are still emitted)
//
// The link values fill the line in the order of the "Link" array (a missing
// element reads 0): in forms 1, 2 and 4 Link[0..5] are d1, a2, a3, d4, d6,
// a1, form 2's second d6 is Link[6], form 4's second a2 is Link[6]; in form
// 3 Link[0..4] are a1, a2, a3, a4, d4; in form 5 Link[0..7] are L1..L8. The
// linear-axis models reuse form 3: their Link array carries the axis lengths
// and their ratios travel only in the payload (the notifications pass it on).

#include <QString>
#include <QStringList>
#include <json/value.h>

namespace qrx {

enum class DhForm {
    Ignored,         // the handler returns at once
    NoLine,          // read and emitted, but no log line
    SixAxis,         // form 1
    SixAxisSecondD6, // form 2
    FourAxis,        // form 3
    SixAxisSecondA2, // form 4
    EightLength,     // form 5
};

DhForm dhFormForType(int typeCode);

// The values of a DH message in the order of the form's placeholders
// (%1, %2, ...), formatted as the log line shows them. Empty for Ignored
// and NoLine.
QStringList dhValueTexts(DhForm form, const Json::Value &doc);

// The untranslated log text of a form ("接收DH参数数据 ..."), or nullptr.
const char *dhLineTemplate(DhForm form);

// The complete log line: the translated template filled with the values.
// Empty for Ignored and NoLine.
QString dhLogLine(DhForm form, const Json::Value &doc);

} // namespace qrx
