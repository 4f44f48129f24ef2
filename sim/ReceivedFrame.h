#pragma once
// One frame that the simulated controller received from a client.

#include <QByteArray>
#include <QtGlobal>

namespace qrxsim {

struct ReceivedFrame
{
    quint16 command = 0;
    QByteArray payload;
    QByteArray raw;   // the whole frame as it was on the wire
    qint64 atMs = -1; // simulator clock (ms since the simulator was created)
};

} // namespace qrxsim
