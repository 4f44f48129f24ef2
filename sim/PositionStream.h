#pragma once
// Unasked position reports: 0x2F08 {"robot","coord","pos"[7],"posDeg"[7]}
// sent to every connected host at a steady rate, as a controller that
// streams its position does. Each report goes out as its own write, spread
// evenly over the second (a late timer tick catches up on what it owes).

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace qrxsim {

class Simulator;

class PositionStream : public QObject
{
    Q_OBJECT
public:
    PositionStream(Simulator &simulator, int reportsPerSecond);

private:
    void onTick();

    Simulator &m_simulator;
    const int m_rate;
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_sent = 0;
};

} // namespace qrxsim
