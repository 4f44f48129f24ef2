// The controller link against qrx-sim: connect, heartbeat, echo, time-out,
// reconnect, manual stop and start, address change, sends while down,
// hostile bytes, and shutdown during a connect attempt.

#include "link/FrameCodec.h"
#include "link/TcpConnectModule.h"
#include "sim/SimHandle.h"
#include "support/LogCapture.h"
#include "support/Loopback.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QThread>
#include <QtTest>

#include <json/value.h>
#include <memory>
#include <zlib.h>
#include <vector>

#ifdef Q_OS_UNIX
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace {

constexpr quint16 kPort = 6001;
// Check every 100 ms, time-out check every 120 ms.
constexpr int kFastTimeBase = 18000;
constexpr int kCheckMs = kFastTimeBase / 180;
constexpr quint16 kHeartbeat = 0x7266;
// Codes the dispatcher does not know: they come out as receivedData().
constexpr quint16 kProbe = 0x7E01;
constexpr quint16 kMarker = 0x7E02;
constexpr quint16 kSettle = 0x7E03;

const QString kReconnectLine = QStringLiteral("重置网络连接 尝试连接IP");
const QString kCloseLine = QStringLiteral("关闭网络连接");
const QString kTimeoutLine = QStringLiteral("连接超时 主动断开");
const QString kHeadError = QStringLiteral("onTcpSocketReadyRead: head error");
const QString kCrcError = QStringLiteral("onTcpSocketReadyRead: crc32 error");

// A second address of the test's own, for resetIp.
QString otherAddress(const QString &address)
{
    QStringList parts = address.split(QLatin1Char('.'));
    parts.last() = QString::number(parts.last().toInt() % 250 + 1);
    return parts.join(QLatin1Char('.'));
}

QVector<int> statuses(const QSignalSpy &spy)
{
    QVector<int> result;
    for (const QList<QVariant> &args : spy)
        result.append(args.at(0).toInt());
    return result;
}

int countLinesStartingWith(const LogCapture &log, const QString &prefix)
{
    int n = 0;
    for (const QString &line : log.lines())
        n += line.startsWith(prefix) ? 1 : 0;
    return n;
}

// The test's own frames (codes 0x7E..) that reached the façade's
// receivedData(), collected in the test thread (the dispatcher emits in the
// link thread). What the controller reports by itself is left out.
class Received : public QObject
{
public:
    explicit Received(TcpConnectModule &link)
    {
        connect(&link, &LinkNotifications::receivedData, this, [this](quint16 command, QByteArray data) {
            if ((command >> 8) == 0x7E)
                frames.append({command, data});
        });
    }
    bool has(quint16 command) const
    {
        for (const auto &f : frames)
            if (f.first == command)
                return true;
        return false;
    }
    QVector<QPair<quint16, QByteArray>> frames;
};

// One link to the test's simulator, with its status notifications recorded.
struct Link
{
    explicit Link(const QString &address, int timeBase = kFastTimeBase)
        : module(address, kPort, timeBase)
        , status(&module, &LinkNotifications::connectSucceed)
    {
    }
    TcpConnectModule module;
    QSignalSpy status;
};

bool waitUp(Link &link, int timeoutMs = 10000)
{
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < timeoutMs) {
        if (!link.status.isEmpty() && link.status.last().at(0).toInt() == 1)
            return true;
        link.status.wait(50);
    }
    return false;
}

// Whatever the controller sent on connect has been handled once a frame it
// sends afterwards arrives (one connection keeps the order).
bool settle(qrxsim::SimHandle &sim, Received &received)
{
    if (!sim.waitForClient())
        return false;
    sim.send(kSettle, "{}\n");
    QElapsedTimer t;
    t.start();
    while (!received.has(kSettle) && t.elapsed() < 10000)
        QTest::qWait(10);
    received.frames.clear();
    return t.elapsed() < 10000;
}

} // namespace

class tst_Connection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void connectsAndSendsHeartbeats();
    void echoesControllerHeartbeat_data();
    void echoesControllerHeartbeat();
    void receiveTimeout_data();
    void receiveTimeout();
    void lossNotifiesTwiceAndReconnects();
    void retriesWhileUnreachable();
    void stopPreventsReconnect();
    void startConnectConnectsAtOnce();
    void resetIpMovesToOtherController();
    void connectStatusReportsState();
    void sendWhileDownWritesNothing_data();
    void sendWhileDownWritesNothing();
    void payloadSizes_data();
    void payloadSizes();
    void sendBytesWritesFrameAsIs();
    void concurrentSendersKeepFramesWhole();
    void hostileBytes_data();
    void hostileBytes();
    void connectAttemptGivesUpAfterFiveSeconds();
    void destroyWhileConnecting();

private:
    QString m_address;
    std::unique_ptr<qrxsim::SimHandle> m_sim;
};

void tst_Connection::init()
{
    m_address = testsupport::loopbackAddress();
    m_sim = std::make_unique<qrxsim::SimHandle>(m_address, kPort);
    QVERIFY(m_sim->start());
}

void tst_Connection::cleanup()
{
    m_sim.reset();
}

void tst_Connection::connectsAndSendsHeartbeats()
{
    LogCapture log;
    Link link(m_address);
    const uint before = uint(QDateTime::currentSecsSinceEpoch());
    link.module.start();
    QVERIFY(waitUp(link));
    QVERIFY(m_sim->waitForClient());
    QCOMPARE(statuses(link.status), QVector<int>{1});

    // Several checks: each sends {"time": now} with a line feed.
    QTRY_VERIFY_WITH_TIMEOUT(m_sim->received(kHeartbeat).size() >= 8, 10000);
    const uint after = uint(QDateTime::currentSecsSinceEpoch());
    const auto beats = m_sim->received(kHeartbeat);
    const QRegularExpression shape(QStringLiteral("^\\{\"time\":(\\d+)\\}\n$"));
    for (const auto &beat : beats) {
        const auto match = shape.match(QString::fromUtf8(beat.payload));
        QVERIFY2(match.hasMatch(), beat.payload.constData());
        const uint time = match.captured(1).toUInt();
        QVERIFY(time >= before && time <= after);
    }
    // One per check: never two in quick succession, and not far apart.
    for (int i = 1; i < beats.size(); ++i) {
        const qint64 gap = beats[i].atMs - beats[i - 1].atMs;
        QVERIFY2(gap >= kCheckMs * 8 / 10, qPrintable(QString::number(gap)));
    }
    QVERIFY((beats.last().atMs - beats.first().atMs) / (beats.size() - 1) < kCheckMs * 5);
    // The simulator answered each with 0x7267: the link stays up.
    QCOMPARE(statuses(link.status), QVector<int>{1});

    const QRegularExpression line(QStringLiteral("^重置网络连接 尝试连接IP %1 端口 : 6001 \\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d$")
                                      .arg(QRegularExpression::escape(m_address)));
    QStringList reconnects = log.lines().filter(kReconnectLine);
    QCOMPARE(reconnects.size(), 1);
    QVERIFY2(line.match(reconnects.first()).hasMatch(), qPrintable(reconnects.first()));
}

void tst_Connection::echoesControllerHeartbeat_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("json") << QByteArray("{\"time\":1700000000}\n");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("binary") << QByteArray("\x00\xff\x4e\x66 not json", 14);
    QTest::newRow("long") << QByteArray(4000, 'h');
}

void tst_Connection::echoesControllerHeartbeat()
{
    QFETCH(QByteArray, payload);
    m_sim->setAnswerHeartbeats(false); // nothing else refreshes the link
    Link link(m_address);
    Received received(link.module);
    link.module.start();
    QVERIFY(waitUp(link));
    QVERIFY(settle(*m_sim, received));
    const QDateTime seen = link.module.lastReceiveTime();
    QVERIFY(seen.isValid());
    QTRY_VERIFY(QDateTime::currentDateTime().toMSecsSinceEpoch() > seen.toMSecsSinceEpoch() + 5);

    m_sim->send(kHeartbeat, payload);
    const auto echoed = [&] {
        for (const auto &f : m_sim->received(kHeartbeat))
            if (f.payload == payload)
                return true;
        return false;
    };
    QTRY_VERIFY_WITH_TIMEOUT(echoed(), 5000);
    // A heartbeat request is not a sign of life.
    QCOMPARE(link.module.lastReceiveTime(), seen);
}

void tst_Connection::receiveTimeout_data()
{
    QTest::addColumn<bool>("answerHeartbeats");
    QTest::addColumn<int>("controllerHeartbeatMs");
    QTest::addColumn<bool>("silent");
    QTest::addColumn<bool>("dropped");
    QTest::newRow("answers keep it alive") << true << 0 << false << false;
    QTest::newRow("requests alone do not") << false << 150 << false << true;
    QTest::newRow("silent controller") << true << 0 << true << true;
}

void tst_Connection::receiveTimeout()
{
    QFETCH(bool, answerHeartbeats);
    QFETCH(int, controllerHeartbeatMs);
    QFETCH(bool, silent);
    QFETCH(bool, dropped);
    LogCapture log;
    m_sim->setAnswerHeartbeats(answerHeartbeats);
    m_sim->setControllerHeartbeat(controllerHeartbeatMs);
    m_sim->setSilent(silent);
    Link link(m_address);
    link.module.start();
    QVERIFY(waitUp(link));
    const QDateTime alive = link.module.lastReceiveTime();

    if (!dropped) {
        // Well past the 7 s: still up, heartbeats flowing both ways.
        QVERIFY(!link.status.wait(9500));
        QCOMPARE(statuses(link.status), QVector<int>{1});
        QVERIFY(m_sim->received(kHeartbeat).size() >= 40);
        QCOMPARE(log.count(kTimeoutLine), 0);
        return;
    }
    if (controllerHeartbeatMs > 0)
        QTRY_VERIFY(m_sim->received(kHeartbeat).size() >= 2);
    QTRY_VERIFY_WITH_TIMEOUT(statuses(link.status).contains(0), 12000);
    const qint64 after = alive.msecsTo(QDateTime::currentDateTime());
    QVERIFY2(after >= 7000 && after <= 9000, qPrintable(QString::number(after)));
    QCOMPARE(log.count(kTimeoutLine), 1);
    // And back by itself. Closing the socket reports the loss twice, as any
    // loss does, and the time-out once more.
    QTRY_VERIFY_WITH_TIMEOUT(statuses(link.status).count(1) == 2, 10000);
    QCOMPARE(statuses(link.status), (QVector<int>{1, 0, 0, 0, 1}));
    QCOMPARE(countLinesStartingWith(log, kReconnectLine), 2);
}

void tst_Connection::lossNotifiesTwiceAndReconnects()
{
    LogCapture log;
    Link link(m_address);
    link.module.start();
    QVERIFY(waitUp(link));
    m_sim->clearReceived();

    m_sim->dropConnections();
    QTRY_VERIFY_WITH_TIMEOUT(link.status.size() >= 4, 10000);
    QCOMPARE(statuses(link.status).mid(0, 4), (QVector<int>{1, 0, 0, 1}));
    QVERIFY(log.count(kCloseLine) >= 1);
    QCOMPARE(countLinesStartingWith(log, kReconnectLine), 2);
    // The new connection carries heartbeats again.
    QVERIFY(m_sim->waitForFrame(kHeartbeat, 5000));
}

void tst_Connection::retriesWhileUnreachable()
{
    LogCapture log;
    m_sim->setRefuseConnections(true);
    Link link(m_address);
    link.module.start();
    // One attempt per check, each failing with the double notice.
    QTRY_VERIFY_WITH_TIMEOUT(countLinesStartingWith(log, kReconnectLine) >= 4, 10000);
    QTRY_VERIFY(link.status.size() >= 6);
    QVERIFY(!statuses(link.status).contains(1));
    QCOMPARE(statuses(link.status).mid(0, 6), (QVector<int>{0, 0, 0, 0, 0, 0}));

    m_sim->setRefuseConnections(false);
    QVERIFY(waitUp(link));
    QVERIFY(m_sim->waitForClient());
}

void tst_Connection::stopPreventsReconnect()
{
    LogCapture log;
    Link link(m_address);
    link.module.start();
    QVERIFY(waitUp(link));
    QVERIFY(!link.module.isStopped());

    link.module.stopConnect();
    QVERIFY(link.module.isStopped());
    QCOMPARE(log.count(QStringLiteral("手动停止")), 1);
    QCOMPARE(link.status.last().at(0).toInt(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(m_sim->clientCount(), 0, 5000);
    QTRY_VERIFY(log.count(kCloseLine) >= 1);
    QCOMPARE(link.module.sendData(kProbe, "{}\n"), false);

    // Ten checks go by without an attempt.
    const int attempts = countLinesStartingWith(log, kReconnectLine);
    QTest::qWait(kCheckMs * 10);
    QCOMPARE(countLinesStartingWith(log, kReconnectLine), attempts);
    QCOMPARE(m_sim->clientCount(), 0);
    QVERIFY(!statuses(link.status).mid(1).contains(1));

    link.module.startConnect();
    QVERIFY(!link.module.isStopped());
    QCOMPARE(log.count(QStringLiteral("手动开始")), 1);
    QTRY_VERIFY_WITH_TIMEOUT(statuses(link.status).count(1) == 2, 5000);
    QVERIFY(m_sim->waitForClient());
}

void tst_Connection::startConnectConnectsAtOnce()
{
    // Checks 5 s apart: a connection within 2 s comes from startConnect.
    Link link(m_address, 900000);
    link.module.start();
    QElapsedTimer t;
    t.start();
    link.module.startConnect();
    QVERIFY(waitUp(link, 10000));
    QVERIFY2(t.elapsed() < 2000, qPrintable(QString::number(t.elapsed())));
}

void tst_Connection::resetIpMovesToOtherController()
{
    qrxsim::SimHandle second(otherAddress(m_address), kPort);
    QVERIFY(second.start());
    Link link(m_address);
    link.module.start();
    QVERIFY(waitUp(link));
    QVERIFY(m_sim->waitForClient());

    link.module.resetIp(second.address());
    QCOMPARE(link.status.last().at(0).toInt(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(m_sim->clientCount(), 0, 5000);
    QVERIFY(second.waitForClient());
    QVERIFY(waitUp(link));
    QVERIFY(second.waitForFrame(kHeartbeat, 5000));
    m_sim->clearReceived();
    QVERIFY(link.module.sendData(kMarker, "{}\n"));
    QVERIFY(second.waitForFrame(kMarker, 5000));
    QVERIFY(m_sim->received(kMarker).isEmpty());
}

void tst_Connection::connectStatusReportsState()
{
    Link link(m_address);
    QCOMPARE(link.module.connectStatus(), false);
    QCOMPARE(statuses(link.status), QVector<int>{0});
    link.module.start();
    QVERIFY(waitUp(link));
    const int before = link.status.size();
    QCOMPARE(link.module.connectStatus(), true);
    QCOMPARE(link.status.size(), before + 1);
    QCOMPARE(link.status.last().at(0).toInt(), 1);
    QCOMPARE(link.module.onConnectSucceed(0), false);
    QCOMPARE(link.module.onConnectSucceed(1), true);
}

void tst_Connection::sendWhileDownWritesNothing_data()
{
    QTest::addColumn<QString>("situation");
    QTest::newRow("not started") << QStringLiteral("not started");
    QTest::newRow("controller unreachable") << QStringLiteral("unreachable");
    QTest::newRow("stopped") << QStringLiteral("stopped");
}

void tst_Connection::sendWhileDownWritesNothing()
{
    QFETCH(QString, situation);
    Link link(m_address);
    if (situation == QLatin1String("unreachable")) {
        m_sim->setRefuseConnections(true);
        LogCapture log;
        link.module.start();
        QTRY_VERIFY(countLinesStartingWith(log, kReconnectLine) >= 2);
    } else if (situation == QLatin1String("stopped")) {
        link.module.start();
        QVERIFY(waitUp(link));
        link.module.stopConnect();
        QTRY_COMPARE(m_sim->clientCount(), 0);
    }
    QCOMPARE(link.module.sendData(kProbe, "{\"a\":1}\n"), false);
    QCOMPARE(link.module.sendBytes(qrx::encodeFrame(kProbe, "{\"b\":2}\n")), false);

    // Bring it up: what was refused never arrives, what follows does.
    if (situation == QLatin1String("not started"))
        link.module.start();
    else if (situation == QLatin1String("unreachable"))
        m_sim->setRefuseConnections(false);
    else
        link.module.startConnect();
    QTRY_VERIFY_WITH_TIMEOUT(link.module.sendData(kMarker, "{}\n"), 10000);
    QVERIFY(m_sim->waitForFrame(kMarker, 5000));
    QVERIFY(m_sim->received(kProbe).isEmpty());
}

void tst_Connection::payloadSizes_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("sent");
    QTest::newRow("empty") << 0 << true;
    QTest::newRow("one byte") << 1 << true;
    QTest::newRow("largest") << 65535 << true;
    QTest::newRow("one too many") << 65536 << false;
    QTest::newRow("far too many") << 200000 << false;
}

void tst_Connection::payloadSizes()
{
    QFETCH(int, size);
    QFETCH(bool, sent);
    Link link(m_address);
    link.module.start();
    QVERIFY(waitUp(link));
    QByteArray payload(size, 'p');
    for (int i = 0; i < size; i += 97)
        payload[i] = char('a' + i % 26);

    QCOMPARE(link.module.sendData(kProbe, payload), sent);
    QVERIFY(link.module.sendData(kMarker, "{}\n"));
    QVERIFY(m_sim->waitForFrame(kMarker, 5000));
    const auto probes = m_sim->received(kProbe);
    if (!sent) {
        QVERIFY(probes.isEmpty());
        return;
    }
    QCOMPARE(probes.size(), 1);
    QCOMPARE(probes.first().payload, payload);
}

void tst_Connection::sendBytesWritesFrameAsIs()
{
    Link link(m_address);
    link.module.start();
    QVERIFY(waitUp(link));
    // Framed by hand: head, length 3, code 0x7E01, "x\0y", CRC-32 of the
    // seven bytes from the length field on.
    QByteArray frame = QByteArray::fromHex("4e6600037e01780079");
    const uLong crc = crc32(crc32(0L, Z_NULL, 0), reinterpret_cast<const Bytef *>(frame.constData() + 2), 7);
    for (int shift = 24; shift >= 0; shift -= 8)
        frame.append(char((crc >> shift) & 0xFF));
    QVERIFY(link.module.sendBytes(frame));
    QVERIFY(m_sim->waitForFrame(kProbe, 5000));
    QCOMPARE(m_sim->lastFrame(kProbe).payload, QByteArray("x\0y", 3));
}

void tst_Connection::concurrentSendersKeepFramesWhole()
{
    Link link(m_address);
    link.module.start();
    QVERIFY(waitUp(link));
    constexpr int kThreads = 4;
    constexpr int kFrames = 150;
    std::vector<std::unique_ptr<QThread>> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back(QThread::create([&link, t] {
            for (int n = 0; n < kFrames; ++n)
                link.module.sendData(kProbe, QStringLiteral("{\"n\":%1,\"t\":%2}\n").arg(n).arg(t).toUtf8());
        }));
        threads.back()->start();
    }
    for (auto &thread : threads)
        QVERIFY(thread->wait(20000));

    QTRY_COMPARE_WITH_TIMEOUT(m_sim->received(kProbe).size(), kThreads * kFrames, 10000);
    // Every frame whole and, per sender, in the order sent.
    QVector<int> next(kThreads, 0);
    const QRegularExpression shape(QStringLiteral("^\\{\"n\":(\\d+),\"t\":(\\d)\\}\n$"));
    for (const auto &f : m_sim->received(kProbe)) {
        const auto match = shape.match(QString::fromUtf8(f.payload));
        QVERIFY2(match.hasMatch(), f.payload.constData());
        const int t = match.captured(2).toInt();
        QCOMPARE(match.captured(1).toInt(), next[t]);
        ++next[t];
    }
}

void tst_Connection::hostileBytes_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("headErrors");
    QTest::addColumn<int>("crcErrors");
    QTest::newRow("garbage") << QStringLiteral("garbage") << 23 << 0;
    QTest::newRow("split delivery") << QStringLiteral("split") << 0 << 0;
    QTest::newRow("corrupt CRC") << QStringLiteral("crc") << -1 << 1;
    QTest::newRow("length claim swallowing the next bytes") << QStringLiteral("claim") << 65544 << 1;
}

void tst_Connection::hostileBytes()
{
    QFETCH(QString, kind);
    QFETCH(int, headErrors);
    QFETCH(int, crcErrors);
    Link link(m_address);
    Received received(link.module);
    link.module.start();
    QVERIFY(waitUp(link));
    QVERIFY(settle(*m_sim, received));
    LogCapture log;

    const QByteArray good("{\"ok\":true}\n");
    if (kind == QLatin1String("garbage")) {
        m_sim->sendGarbage("hello, this is no frame"); // 23 bytes, no "N"
    } else if (kind == QLatin1String("split")) {
        m_sim->setSplitDelivery(true);
    } else if (kind == QLatin1String("crc")) {
        m_sim->corruptNextCrc();
        m_sim->send(kProbe, "{\"bad\":1}\n");
    } else {
        // Claims 65535 bytes: the frame that follows is taken as its payload
        // until the claim is filled, then fails its CRC.
        QByteArray claim = QByteArray::fromHex("4e66ffff7e01");
        claim.append(QByteArray(65535, 'x'));
        claim.append(QByteArray(4, '\0'));
        m_sim->sendGarbage(claim.left(1000));
        m_sim->sendGarbage(claim.mid(1000));
    }
    m_sim->send(kMarker, good);

    QTRY_VERIFY_WITH_TIMEOUT(received.has(kMarker), 10000);
    QVERIFY(!received.has(kProbe));
    QCOMPARE(received.frames.last().second, good);
    if (headErrors >= 0)
        QCOMPARE(log.count(kHeadError), headErrors);
    QCOMPARE(log.count(kCrcError), crcErrors);
    // Still the same connection.
    QCOMPARE(statuses(link.status), QVector<int>{1});
    m_sim->setSplitDelivery(false);
    m_sim->send(kMarker, "{\"again\":1}\n");
    QTRY_COMPARE_WITH_TIMEOUT(received.frames.size(), 2, 5000);
}

#ifdef Q_OS_UNIX
namespace {

// A listening socket whose accept queue is full: connects to it neither
// succeed nor fail, they hang as towards an unreachable controller.
class FullListener
{
public:
    explicit FullListener(const QString &address)
    {
        m_fd = ::socket(AF_INET, SOCK_STREAM, 0);
        const int one = 1;
        ::setsockopt(m_fd, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
        sockaddr_in addr{};
        addr.sin_family = AF_INET;
        addr.sin_port = htons(kPort);
        ::inet_pton(AF_INET, address.toLatin1().constData(), &addr.sin_addr);
        if (::bind(m_fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr) != 0 || ::listen(m_fd, 0) != 0)
            return;
        // Fill the queue until a connect no longer completes.
        for (int i = 0; i < 8; ++i) {
            auto filler = std::make_unique<QTcpSocket>();
            filler->connectToHost(address, kPort);
            const bool done = filler->waitForConnected(300);
            m_fillers.push_back(std::move(filler));
            if (!done) {
                m_fillers.back()->abort();
                m_hanging = true;
                return;
            }
        }
    }
    ~FullListener()
    {
        m_fillers.clear();
        if (m_fd >= 0)
            ::close(m_fd);
    }
    bool hanging() const { return m_hanging; }

private:
    int m_fd = -1;
    bool m_hanging = false;
    std::vector<std::unique_ptr<QTcpSocket>> m_fillers;
};

} // namespace
#endif

void tst_Connection::connectAttemptGivesUpAfterFiveSeconds()
{
#ifdef Q_OS_UNIX
    m_sim.reset();
    FullListener listener(m_address);
    if (!listener.hanging())
        QSKIP("this system does not leave a connect to a full listener pending");
    LogCapture log;
    Link link(m_address);
    link.module.start();
    QTRY_VERIFY_WITH_TIMEOUT(countLinesStartingWith(log, kReconnectLine) == 1, 5000);
    QElapsedTimer attempt;
    attempt.start();
    QTRY_VERIFY_WITH_TIMEOUT(link.status.size() >= 2, 10000);
    QVERIFY2(attempt.elapsed() >= 4800 && attempt.elapsed() < 8000, qPrintable(QString::number(attempt.elapsed())));
    QCOMPARE(statuses(link.status).mid(0, 2), (QVector<int>{0, 0}));
    // The next check tries again.
    QTRY_VERIFY_WITH_TIMEOUT(countLinesStartingWith(log, kReconnectLine) == 2, 5000);
#else
    QSKIP("needs a full listen queue");
#endif
}

void tst_Connection::destroyWhileConnecting()
{
#ifdef Q_OS_UNIX
    m_sim.reset();
    FullListener listener(m_address);
    if (!listener.hanging())
        QSKIP("this system does not leave a connect to a full listener pending");
    LogCapture log;
    auto link = std::make_unique<Link>(m_address);
    link->module.start();
    QTRY_VERIFY_WITH_TIMEOUT(countLinesStartingWith(log, kReconnectLine) == 1, 5000);
    QCoreApplication::processEvents();
    QVERIFY(link->status.isEmpty()); // the attempt is still waiting

    QElapsedTimer t;
    t.start();
    link.reset();
    QVERIFY2(t.elapsed() < 2000, qPrintable(QString::number(t.elapsed())));
#else
    QSKIP("needs a full listen queue");
#endif
}

QTEST_GUILESS_MAIN(tst_Connection)
#include "tst_connection.moc"
