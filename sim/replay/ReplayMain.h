#pragma once
// qrx-sim --replay FILE: reads the recording and plays it until the
// application quits; 1 when the file cannot be read at all or the port
// cannot be bound. A damaged recording plays up to its fault.

#include <QHostAddress>
#include <QString>

namespace qrxsim::replay {

int run(const QString &file, const QHostAddress &address, quint16 port);

} // namespace qrxsim::replay
