#pragma once
// The code-to-notification table of the controller link: one row per
// incoming command code, sorted by code. The dispatcher
// (LinkNotifications::onReceivedData) looks a code up here and does what
// the row's kind says; a new message is one new row in DispatchTable.cpp.

#include "link/LinkNotifications.h"

#include <QtGlobal>

namespace qrx {

// A notification that carries the received payload.
using PayloadSignal = void (LinkNotifications::*)(const QByteArray &);

struct DispatchRow
{
    enum Kind : quint8 {
        Forward,       // emit `first` (then `second`, if set) with the payload as it came
        ForwardIfJson, // as Forward, but only when the payload parses as JSON
        TestModeByte,  // receivedTestMode(signed char) for a payload of exactly one byte
        Position,      // receivedPosition(...) decoded from "posDeg", "coord", "robot", "configuration"
        NoArgument,    // recvJobFileInfoFinish(), payload ignored
    };

    quint16 code;
    Kind kind;
    PayloadSignal first;
    PayloadSignal second = nullptr;
};

// The row of an incoming code, or nullptr if the code is not in the table.
// Binary search over a sorted constant array: no allocation, no lock.
const DispatchRow *findDispatchRow(quint16 code);

// Number of rows (for diagnostics and benchmarks).
int dispatchRowCount();

} // namespace qrx
