#pragma once
// What the link tests share: a link under test with its status
// notifications recorded, the frames it forwards, and the texts of its log.

#include "link/TcpConnectModule.h"
#include "sim/SimHandle.h"
#include "support/LogCapture.h"

#include <QByteArray>
#include <QObject>
#include <QPair>
#include <QSignalSpy>
#include <QString>
#include <QTcpSocket>
#include <QVector>

#include <memory>
#include <vector>

namespace linktest {

constexpr quint16 kPort = 6001;
// Check every 100 ms, time-out check every 120 ms.
constexpr int kFastTimeBase = 18000;
constexpr int kCheckMs = kFastTimeBase / 180;
constexpr quint16 kHeartbeat = 0x7266;
// Codes the dispatcher does not know: they come out as receivedData().
constexpr quint16 kProbe = 0x7E01;
constexpr quint16 kMarker = 0x7E02;
constexpr quint16 kSettle = 0x7E03;

extern const QString kReconnectLine;
extern const QString kCloseLine;
extern const QString kTimeoutLine;
extern const QString kHeadError;
extern const QString kCrcError;

// A second address of the test's own, for resetIp.
QString otherAddress(const QString &address);

QVector<int> statuses(const QSignalSpy &spy);
int countLinesStartingWith(const LogCapture &log, const QString &prefix);

// The test's own frames (codes 0x7E..) that reached the façade's
// receivedData(), collected in the test thread (the dispatcher emits in the
// link thread). What the controller reports by itself is left out.
class Received : public QObject
{
public:
    explicit Received(TcpConnectModule &link);
    bool has(quint16 command) const;
    QVector<QPair<quint16, QByteArray>> frames;
};

// One link with its status notifications recorded.
struct Link
{
    explicit Link(const QString &address, int timeBase = kFastTimeBase);
    TcpConnectModule module;
    QSignalSpy status;
};

// True once the latest status is 1.
bool waitUp(Link &link, int timeoutMs = 10000);

// Whatever the controller sent on connect has been handled once a frame it
// sends afterwards arrives (one connection keeps the order).
bool settle(qrxsim::SimHandle &sim, Received &received);

// A listening socket on the controller port whose accept queue is full:
// connects to it neither succeed nor fail, they hang as towards an
// unreachable controller. hanging() is false where the system does not
// behave so (the tests then skip).
class FullListener
{
public:
    explicit FullListener(const QString &address);
    ~FullListener();
    FullListener(const FullListener &) = delete;
    FullListener &operator=(const FullListener &) = delete;
    bool hanging() const { return m_hanging; }

private:
    int m_fd = -1;
    bool m_hanging = false;
    std::vector<std::unique_ptr<QTcpSocket>> m_fillers;
};

} // namespace linktest
