#pragma once
// The position report 0x2A03: "posDeg" (array of reals), "coord", "robot",
// "configuration". All four must be there; a payload that lacks one, does
// not parse, or holds values of the wrong kind is no position report.

#include <QByteArray>
#include <QVector>

namespace qrx {

struct PositionReport
{
    QVector<double> position;
    int coord = 0;
    int robot = 0;
    int configuration = 0;
};

bool decodePositionReport(const QByteArray &data, PositionReport &report);

} // namespace qrx
