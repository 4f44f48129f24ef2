#pragma once
// What a recorded controller did on each of its connections, as a script to
// play again: the host's requests in order, each with the frames the
// controller answered it with, and the controller's unasked reports with
// their times from the connection's start.
//
// A frame from the controller answers
//  - the earliest request still unanswered that the protocol catalogue
//    pairs it with (0x2F08 answers 0x2F07), however late it came; else
//  - the host's latest frame, when it came within kAnswerWindowUs of it
//    (a set command answered with a status report);
// every other frame is an unasked report (start-up reports, a position
// stream, errors, the controller's heartbeat).

#include "link/PcapSession.h"

#include <QByteArray>
#include <QHash>
#include <QVector>

namespace qrxsim::replay {

constexpr qint64 kAnswerWindowUs = 100 * 1000;
constexpr quint16 kHeartbeat = 0x7266; // its payload is a time: never compared

struct Sent
{
    quint16 code = 0;
    QByteArray payload;
};

struct Request
{
    quint16 code = 0;
    QByteArray payload;
    QVector<Sent> answer; // may be empty
    // When the answer's first frame came, from the connection's first frame
    // (-1: no answer): the reports recorded before it go out before it.
    qint64 answeredAtUs = -1;
};

struct Report
{
    qint64 offsetUs = 0; // from the connection's first frame
    Sent frame;
};

// One recorded connection.
struct Script
{
    QVector<Request> requests;
    QVector<Report> reports; // in time order
    // Indexes into requests, per code, in order.
    QHash<quint16, QVector<int>> byCode;
};

struct Scripts
{
    QVector<Script> mainLink;       // in the order the connections opened
    QVector<Script> fileConnection;
};

Scripts build(const QVector<qrx::pcap::RecordedFrame> &frames);

} // namespace qrxsim::replay
