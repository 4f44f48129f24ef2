#pragma once
// What the state model makes of each report of the controller: one row per
// code (ReportTable.cpp), {code, decode, notify, wakes}.
//
//  - decode(report, state) -> Change: a pure function. It reads the parsed
//    payload (a null value when the payload is no JSON) and the state, writes
//    the state, and says what changed: whether the report was taken, the
//    values its listeners get, the log lines to write, a request the report
//    asks for (a teach-mode report is acknowledged with 0x2105) and whether
//    the waiters are woken. No signal, no socket, no Robot: the decoders are
//    tested with data rows of payload -> state.
//  - notify(signals, change, payload): tells the Robot's listeners, with
//    the named signals by member pointer; only for a report that was taken
//    (a relay, which decodes nothing, always).
//  - wakes: the report wakes every call waiting for a reply.
//
// Robot::take() is the one entry point: it finds the row, decodes under the
// state's lock, writes the lines, sends the request, notifies, wakes the
// waiters and tells the controller, once each.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QtGlobal>

#include <json/value.h>

class RobotSignals;

namespace qrx {

struct RobotState;

struct Change
{
    bool taken = false;       // the report was read into the state (its notify runs)
    bool wakes = true;        // false: ignored so wholly that not even the waiters wake
    int values[4] = {};       // what the listeners get (each decoder says which)
    QString text;             // a text the listeners get
    QStringList texts;        // a list the listeners get
    QVector<double> reals;    // values the listeners get
    QStringList lines;        // log lines (qrx.robot), in order
    quint16 request = 0;      // a request the report makes the Robot send (0: none)
    QByteArray requestPayload;
    int settleMs = 0;         // a pause, events running, before the waiters wake
    int messageLevel = -1;    // a controller message for the host: 0 error, 1 warning, 2 information
    QByteArray message;       // its text with its prefix (UTF-8)
};

using Decode = Change (*)(const Json::Value &report, RobotState &state);
using Notify = void (*)(RobotSignals &to, const Change &change, const QByteArray &payload);

struct ReportRow
{
    quint16 code;
    Decode decode;    // null: a relay
    Notify notify;    // null: nobody listens
    bool wakes;
};

// The row of an incoming code, or null (the Robot takes nothing of it).
const ReportRow *findReportRow(quint16 code);

// The pure part of a row: parses the payload (text to its first NUL) and
// decodes it into state. A row without a decoder changes nothing.
Change decodeReport(const ReportRow &row, const QByteArray &payload, RobotState &state);

// Tells the listeners of a decoded report (its notify, when the report was
// taken or the row is a relay); true when the row then wakes the waiters.
bool notifyReport(const ReportRow &row, const Change &change, RobotSignals &to, const QByteArray &payload);

} // namespace qrx
