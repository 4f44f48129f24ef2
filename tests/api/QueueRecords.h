#pragma once
// Continuous-motion queue records for the tests that run queues on qrx-sim:
// zero-filled records of the types the controller executes.

#include "api/qrx_host.h"

#include <QtGlobal>
#include <QVector>

#include <array>
#include <cstring>

namespace queuerecords {

using Point = std::array<double, 6>;
using Records = QVector<qrx_motion_record>;

inline qrx_motion_record record(int type)
{
    qrx_motion_record r;
    std::memset(&r, 0, sizeof r);
    r.type = type;
    return r;
}

template <std::size_t N>
void put(char (&field)[N], const char *text)
{
    qstrncpy(field, text, N);
}

inline qrx_param constant(double value)
{
    qrx_param p;
    std::memset(&p, 0, sizeof p);
    p.value = value;
    return p;
}

inline qrx_param variable(const char *word, const char *name)
{
    qrx_param p = constant(0.0);
    put(p.varType, word);
    put(p.varName, name);
    return p;
}

// A move of `type` (1 MOVJ, 2 MOVL, 5 IMOV...) to a point carried with the
// record, speed in percent.
inline qrx_motion_record move(int type, const Point &target, double percent = 50)
{
    qrx_motion_record r = record(type);
    qrx_move_params &m = r.u.move;
    m.velocity = constant(percent);
    m.vUnit = 2;
    m.acc = constant(50);
    m.dec = constant(50);
    m.pl = constant(0);
    put(m.positionId, "P0001");
    put(m.pos.name, "P0001");
    for (std::size_t i = 0; i < target.size(); ++i)
        m.pos.data[i] = target[i];
    return r;
}

inline qrx_motion_record timer(double seconds)
{
    qrx_motion_record r = record(7);
    r.u.timer.duration = constant(seconds);
    return r;
}

// 16 DOUT, 21 AOUT: port <- value.
inline qrx_motion_record output(int type, int port, int value)
{
    qrx_motion_record r = record(type);
    r.u.io.portId = port;
    r.u.io.portValue = value;
    return r;
}

// 17 DIN, 20 AIN: the port read into a variable.
inline qrx_motion_record input(int type, int port, const char *variableName)
{
    qrx_motion_record r = record(type);
    r.u.io.portId = port;
    r.u.io.valueVar = variable("AUTO", variableName);
    return r;
}

inline qrx_motion_record call(const char *job)
{
    qrx_motion_record r = record(15);
    put(r.u.call.jobName, job);
    return r;
}

} // namespace queuerecords
