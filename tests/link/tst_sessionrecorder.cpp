// The session recorder on a live framed connection: frames written from
// several threads and frames received, all in the file with the socket's
// real ends; a file that cannot be opened or written ends the recording
// with one warning and the connection carries on.

#include "link/FramedConnection.h"
#include "link/PcapSession.h"
#include "link/SessionRecorder.h"
#include "support/LogCapture.h"
#include "support/Loopback.h"

#include <QFile>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <thread>

using qrx::FramedConnection;
using qrx::SessionRecorder;
using qrx::pcap::RecordedFrame;
using qrx::pcap::Sender;

namespace {

constexpr int kPerThread = 200;

QByteArray payload(int thread, int n)
{
    return QStringLiteral("{\"n\":%1,\"thread\":%2}\n").arg(n).arg(thread).toUtf8();
}

} // namespace

class TestSessionRecorder : public QObject
{
    Q_OBJECT

    QTcpServer server;
    QObject context;
    std::unique_ptr<FramedConnection> connection;
    QTcpSocket *peer = nullptr;
    QTemporaryDir dir;

    bool open()
    {
        connection = std::make_unique<FramedConnection>();
        connection->setContext(&context);
        connection->open(server.serverAddress().toString(), server.serverPort());
        connection->waitForConnection(5000);
        if (!server.hasPendingConnections() && !server.waitForNewConnection(5000))
            return false;
        peer = server.nextPendingConnection();
        return peer && connection->isConnected();
    }

    // Three threads write kPerThread frames each (two queue them into the
    // socket's thread); the peer answers each with one frame of its own.
    // Returns when the peer has read every frame and the connection has
    // received every answer.
    bool exchange(int *received)
    {
        QByteArray peerBytes;
        qrx::FrameDecoder peerDecoder;
        int peerFrames = 0;
        connect(peer, &QTcpSocket::readyRead, this, [&] {
            for (const qrx::Frame &f : peerDecoder.feed(peer->readAll())) {
                ++peerFrames;
                peer->write(qrx::encodeFrame(0x2F08, f.payload));
            }
        });
        QSignalSpy frames(connection.get(), &FramedConnection::frameReceived);
        std::thread a([this] {
            for (int n = 0; n < kPerThread; ++n)
                connection->write(qrx::encodeFrame(0x2F07, payload(1, n)));
        });
        std::thread b([this] {
            for (int n = 0; n < kPerThread; ++n)
                connection->write(qrx::encodeFrame(0x2F07, payload(2, n)));
        });
        for (int n = 0; n < kPerThread; ++n)
            connection->write(qrx::encodeFrame(0x2F07, payload(0, n)));
        a.join();
        b.join();
        const bool done = QTest::qWaitFor([&] { return frames.size() == 3 * kPerThread; }, 20000);
        *received = frames.size();
        peer->disconnect(this);
        return done && peerFrames == 3 * kPerThread;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(dir.isValid());
        QVERIFY(server.listen(QHostAddress(testsupport::loopbackAddress()), 0));
    }

    void cleanup()
    {
        SessionRecorder::processWide().stop();
        connection.reset();
        delete peer;
        peer = nullptr;
    }

    void everyFrameOfBothDirectionsIsRecorded()
    {
        QVERIFY(open());
        const QString path = dir.filePath(QStringLiteral("both.pcap"));
        QVERIFY(SessionRecorder::processWide().start(path));
        int received = 0;
        QVERIFY(exchange(&received));
        SessionRecorder::processWide().stop();

        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const qrx::pcap::Recording recording = qrx::pcap::read(file.readAll());
        QCOMPARE(recording.error, QString());
        QCOMPARE(recording.frames.size(), 6 * kPerThread);
        int next[3] = {0, 0, 0}; // per writing thread: frames are in its order
        QVector<QByteArray> sent, answered;
        qint64 lastTime = 0;
        for (const RecordedFrame &f : recording.frames) {
            QCOMPARE(f.host.port, peer->peerPort());
            QCOMPARE(f.host.ipv4, peer->peerAddress().toIPv4Address());
            QCOMPARE(f.controller.port, server.serverPort());
            QCOMPARE(f.controller.ipv4, server.serverAddress().toIPv4Address());
            QVERIFY(f.timeUs >= lastTime);
            lastTime = f.timeUs;
            if (f.sender == Sender::Host) {
                QCOMPARE(f.code, quint16(0x2F07));
                const int thread = f.payload.mid(f.payload.indexOf("thread\":") + 8, 1).toInt();
                QCOMPARE(f.payload, payload(thread, next[thread]++));
                sent << f.payload;
            } else {
                QCOMPARE(f.code, quint16(0x2F08));
                answered << f.payload;
            }
        }
        QCOMPARE(next[0] + next[1] + next[2], 3 * kPerThread);
        QCOMPARE(answered, sent); // the peer answered in the order it read
    }

    void unusableFileWarnsOnceAndLeavesTheLinkAlone_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("opens");
        QTest::addColumn<QString>("warning");
        QTest::newRow("no such folder") << dir.filePath(QStringLiteral("none/x.pcap")) << false
                                        << QStringLiteral("cannot record into");
        if (QFile::exists(QStringLiteral("/dev/full")))
            QTest::newRow("full disk") << QStringLiteral("/dev/full") << true
                                       << QStringLiteral("recording stopped: cannot");
    }

    void unusableFileWarnsOnceAndLeavesTheLinkAlone()
    {
        QFETCH(QString, path);
        QFETCH(bool, opens);
        QFETCH(QString, warning);
        LogCapture log("qrx.record");
        QVERIFY(open());
        QCOMPARE(SessionRecorder::processWide().start(path), opens);
        int received = 0;
        QVERIFY(exchange(&received));
        QCOMPARE(received, 3 * kPerThread);
        QTRY_VERIFY_WITH_TIMEOUT(!SessionRecorder::processWide().isOn(), 10000);
        SessionRecorder::processWide().stop();
        QCOMPARE(log.lines().size(), 1);
        QVERIFY2(log.lines().first().contains(warning), qPrintable(log.lines().first()));
        QVERIFY(log.lines().first().contains(path));
    }
};

QTEST_GUILESS_MAIN(TestSessionRecorder)
#include "tst_sessionrecorder.moc"
