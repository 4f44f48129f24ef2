#include "robot/DhForms.h"

#include "robot/RobotTypes.h"

#include <QCoreApplication>
#include <initializer_list>
#include <vector>

namespace qrx {
namespace {

// Where one placeholder takes its value from.
struct Source
{
    enum Kind { Link, Couple, Theta } kind;
    int index; // into "Link", or into kCoupleKeys
};

const char *const kCoupleKeys[] = {
    "Couple_Coe_1_2", "Couple_Coe_2_3", "Couple_Coe_3_2", "Couple_Coe_3_4",
    "Couple_Coe_4_5", "Couple_Coe_4_6", "Couple_Coe_5_6",
};
enum { C12, C23, C32, C34, C45, C46, C56 };

constexpr Source L(int i) { return {Source::Link, i}; }
constexpr Source C(int i) { return {Source::Couple, i}; }
constexpr Source T() { return {Source::Theta, 0}; }

struct FormRow
{
    DhForm form;
    const char *text;
    std::vector<Source> sources; // placeholder %1, %2, ... in turn
};

// The five lines, with their sources in placeholder order. The double
// blanks are the controller's own and stay.
const std::vector<FormRow> &formRows()
{
    // Never destroyed: a link thread may still decode a report while the
    // process exits.
    static const std::vector<FormRow> &rows = *new std::vector<FormRow>{
        {DhForm::SixAxis,
         QT_TRANSLATE_NOOP("Robot", "接收DH参数数据 d1=%1 a2=%2 a3=%3 d4=%4 d6=%5 a1=%6 1-2=%11  2-3=%12  "
                                    "3-2=%13  3-4=%14  4-5=%7 4-6=%8 5-6=%9 theta=%10"),
         {L(0), L(1), L(2), L(3), L(4), L(5), C(C45), C(C46), C(C56), T(), C(C12), C(C23), C(C32),
          C(C34)}},
        {DhForm::SixAxisSecondD6,
         QT_TRANSLATE_NOOP("Robot", "接收DH参数数据 d1=%1 a2=%2 a3=%3 d4=%4 d6=%5  d6=%15 a1=%6 1-2=%11  "
                                    "2-3=%12  3-2=%13  3-4=%14  4-5=%7 4-6=%8 5-6=%9 theta=%10"),
         {L(0), L(1), L(2), L(3), L(4), L(5), C(C45), C(C46), C(C56), T(), C(C12), C(C23), C(C32),
          C(C34), L(6)}},
        {DhForm::FourAxis,
         QT_TRANSLATE_NOOP("Robot", "接收DH参数数据 a1=%1 a2=%2 a3=%3 a4=%4 d4=%5 couple_2_3=%6 "
                                    "couple_3_4=%7"),
         {L(0), L(1), L(2), L(3), L(4), C(C23), C(C34)}},
        {DhForm::SixAxisSecondA2,
         QT_TRANSLATE_NOOP("Robot", "接收DH参数数据 d1=%1 a2=%2 a3=%3 d4=%4 d6=%5 a1=%6 a2=%7 1-2=%11  "
                                    "2-3=%12  3-2=%13  3-4=%14  4-5=%8 4-6=%9 5-6=%10"),
         {L(0), L(1), L(2), L(3), L(4), L(5), L(6), C(C45), C(C46), C(C56), C(C12), C(C23), C(C32),
          C(C34)}},
        {DhForm::EightLength,
         QT_TRANSLATE_NOOP("Robot", "接收DH参数数据 L1=%1 L2=%2 L3=%3 L4=%4 L5=%5 L6=%6 L7=%7 L8=%8 "
                                    "couple_1_2=%9  couple_2_3=%10 couple_3_2=%11  couple_3_4=%12 "
                                    "couple_4_5=%13 couple_4_6=%14 couple_5_6=%15"),
         {L(0), L(1), L(2), L(3), L(4), L(5), L(6), L(7), C(C12), C(C23), C(C32), C(C34), C(C45),
          C(C46), C(C56)}},
    };
    return rows;
}

const FormRow *rowOf(DhForm form)
{
    for (const FormRow &row : formRows())
        if (row.form == form)
            return &row;
    return nullptr;
}

double realOf(const Json::Value &v)
{
    return v.isNumeric() ? v.asDouble() : 0.0;
}

double valueOf(const Source &s, const Json::Value &doc)
{
    switch (s.kind) {
    case Source::Link: {
        const Json::Value &link = doc["Link"];
        if (!link.isArray() || Json::ArrayIndex(s.index) >= link.size())
            return 0.0;
        return realOf(link[Json::ArrayIndex(s.index)]);
    }
    case Source::Couple: {
        const Json::Value &couple = doc["CoupleCoe"];
        return couple.isObject() ? realOf(couple[kCoupleKeys[s.index]]) : 0.0;
    }
    case Source::Theta:
        return realOf(doc["theta"]);
    }
    return 0.0;
}

} // namespace

DhForm dhFormForType(int typeCode)
{
    switch (typeCode) {
    case R_GENERAL_1S:
        return DhForm::Ignored;
    case R_GENERAL_5S:
    case R_SCARA:
    case R_SCARA_1:
    case R_SCARA_THREEAXIS:
    case R_SCARA_TWOAXIS:
    case R_GENERAL_6S:
    case R_GANTRY_WELD:
        return DhForm::SixAxis;
    case R_GENERAL_6S_2:
        return DhForm::SixAxisSecondD6;
    case R_FOURAXIS_PALLET:
    case R_FOURAXIS_PALLET_1:
    case R_FOURAXIS:
    case R_FOUR_CARTESIAN_COORDINATE:
    case R_FOUR_POLAR_COORDINATE_1:
    case R_THREE_CARTESIAN_COORDINATE:
    case R_THREE_CARTESIAN_COORDINATE_1:
    case R_DELTA:
        return DhForm::FourAxis;
    case R_GENERAL_6S_1:
        return DhForm::SixAxisSecondA2;
    case R_SIXAXIS_SPRAY_BBR:
    case R_GENERAL_7S:
        return DhForm::EightLength;
    default:
        return DhForm::NoLine;
    }
}

QStringList dhValueTexts(DhForm form, const Json::Value &doc)
{
    QStringList texts;
    const FormRow *row = rowOf(form);
    if (!row || !doc.isObject())
        return texts;
    for (const Source &s : row->sources)
        texts << QString::number(valueOf(s, doc));
    return texts;
}

const char *dhLineTemplate(DhForm form)
{
    const FormRow *row = rowOf(form);
    return row ? row->text : nullptr;
}

QString dhLogLine(DhForm form, const Json::Value &doc)
{
    const FormRow *row = rowOf(form);
    if (!row)
        return QString();
    QString line = QCoreApplication::translate("Robot", row->text);
    // QString::arg fills the lowest placeholder left, so the values go in
    // placeholder order.
    for (const QString &text : dhValueTexts(form, doc))
        line = line.arg(text);
    return line;
}

} // namespace qrx
