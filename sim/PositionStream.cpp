#include "sim/PositionStream.h"

#include "sim/Simulator.h"

#include <json/value.h>

namespace qrxsim {

namespace {

Json::Value streamedReport(qint64 sequence)
{
    Json::Value v(Json::objectValue);
    v["robot"] = 1;
    v["coord"] = 0;
    Json::Value pos(Json::arrayValue), posDeg(Json::arrayValue);
    for (int axis = 0; axis < 7; ++axis) {
        // Moves a little with every report, so no two are alike.
        pos.append(100.0 + axis * 1.25 + double(sequence % 1000) / 1000.0);
        posDeg.append(10.0 + axis * 0.5);
    }
    v["pos"] = pos;
    v["posDeg"] = posDeg;
    return v;
}

} // namespace

PositionStream::PositionStream(Simulator &simulator, int reportsPerSecond)
    : m_simulator(simulator)
    , m_rate(reportsPerSecond)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(qMax(1, 1000 / qMax(1, reportsPerSecond)));
    connect(&m_timer, &QTimer::timeout, this, &PositionStream::onTick);
    if (m_rate > 0) {
        m_clock.start();
        m_timer.start();
    }
}

void PositionStream::onTick()
{
    const qint64 owed = m_clock.nsecsElapsed() * m_rate / 1000000000;
    while (m_sent < owed)
        m_simulator.broadcastJson(0x2F08, streamedReport(m_sent++));
}

} // namespace qrxsim
