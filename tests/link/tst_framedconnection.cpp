// FramedConnection on its own, as the file connection uses it: opened in the
// test's thread against a plain loopback server, no timers, no reconnect.
// Frames split over reads are completed, the options decide the head-error
// line, the state follows the socket, and drop() is the one way down; a
// sender sees its backlog, and an orderly release delivers the last frame.

#include "link/FrameCodec.h"
#include "link/FramedConnection.h"
#include "support/LogCapture.h"
#include "support/Loopback.h"

#include <QElapsedTimer>
#include <QThread>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <memory>
#include <vector>

using qrx::FramedConnection;
using State = FramedConnection::State;
using Reason = FramedConnection::DropReason;

Q_DECLARE_METATYPE(FramedConnection::Options)

namespace {

const QString kHeadError = QStringLiteral("onTcpSocketReadyRead: head error");
const QString kCloseLine = QStringLiteral("关闭网络连接");

QVector<int> statuses(const QSignalSpy &spy)
{
    QVector<int> out;
    for (const QList<QVariant> &args : spy)
        out << args.at(0).toInt();
    return out;
}

} // namespace

class tst_FramedConnection : public QObject
{
    Q_OBJECT

    QTcpServer server;
    QObject context; // the test thread's context for queued work
    std::unique_ptr<FramedConnection> connection;
    QTcpSocket *peer = nullptr;

    // Opens the connection and accepts it on the server side.
    bool openConnection(FramedConnection::Options options)
    {
        connection = std::make_unique<FramedConnection>(options);
        connection->setContext(&context);
        connection->open(server.serverAddress().toString(), server.serverPort());
        if (connection->state() != State::Connecting)
            return false;
        connection->waitForConnection(5000);
        if (!server.hasPendingConnections() && !server.waitForNewConnection(5000))
            return false;
        peer = server.nextPendingConnection();
        return peer && connection->state() == State::Connected;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(server.listen(QHostAddress(testsupport::loopbackAddress()), 0));
    }

    void cleanup()
    {
        connection.reset();
        delete peer;
        peer = nullptr;
    }

    void connectsAndWrites()
    {
        connection = std::make_unique<FramedConnection>(FramedConnection::fileConnectionOptions());
        connection->setContext(&context);
        QSignalSpy status(connection.get(), &FramedConnection::connectSucceed);
        QCOMPARE(connection->state(), State::Idle);
        QVERIFY(!connection->write(qrx::encodeFrame(0x5501, "{}\n")));

        connection->open(server.serverAddress().toString(), server.serverPort());
        connection->waitForConnection(5000);
        QCOMPARE(connection->state(), State::Connected);
        QCOMPARE(statuses(status), QVector<int>{1});
        QVERIFY(server.hasPendingConnections() || server.waitForNewConnection(5000));
        peer = server.nextPendingConnection();

        const QByteArray frame = qrx::encodeFrame(0x5501, "{\"name\":\"R1/A.JBR\"}\n");
        QVERIFY(connection->write(frame));
        QTRY_COMPARE_WITH_TIMEOUT(peer->bytesAvailable(), qint64(frame.size()), 5000);
        QCOMPARE(peer->readAll(), frame);
    }

    // Both the main link's and the file connection's options keep a frame
    // that arrives in pieces; only the main link logs a wrong head.
    void receives_data()
    {
        QTest::addColumn<FramedConnection::Options>("options");
        QTest::addColumn<int>("split");
        QTest::addColumn<int>("headErrors");
        QTest::newRow("main link, whole") << FramedConnection::mainLinkOptions() << 0 << 3;
        QTest::newRow("main link, split in the head") << FramedConnection::mainLinkOptions() << 4 << 3;
        QTest::newRow("file, split in the payload") << FramedConnection::fileConnectionOptions() << 12 << 0;
        QTest::newRow("file, split in the CRC") << FramedConnection::fileConnectionOptions() << 30 << 0;
    }

    void receives()
    {
        QFETCH(FramedConnection::Options, options);
        QFETCH(int, split);
        QFETCH(int, headErrors);
        LogCapture log;
        QVERIFY(openConnection(options));
        QSignalSpy frames(connection.get(), &FramedConnection::frameReceived);

        const QByteArray payload("{\"answer\":\"yes\"}\n");
        const QByteArray bytes = QByteArray("xyz") + qrx::encodeFrame(0x5502, payload);
        const int cut = split > 0 ? 3 + split : bytes.size();
        peer->write(bytes.left(cut));
        peer->flush();
        if (cut < bytes.size()) {
            QTRY_VERIFY_WITH_TIMEOUT(connection->receiveBuffer().buffered() > 0, 5000);
            QCOMPARE(frames.count(), 0);
            peer->write(bytes.mid(cut));
            peer->flush();
        }
        QTRY_COMPARE_WITH_TIMEOUT(frames.count(), 1, 5000);
        QCOMPARE(frames.at(0).at(0).value<quint16>(), quint16(0x5502));
        QCOMPARE(frames.at(0).at(1).toByteArray(), payload);
        QCOMPARE(log.count(kHeadError), headErrors);
    }

    void peerCloses_data()
    {
        QTest::addColumn<FramedConnection::Options>("options");
        QTest::addColumn<int>("closeLines");
        QTest::newRow("main link") << FramedConnection::mainLinkOptions() << 1;
        QTest::newRow("file connection: no line of the main link") << FramedConnection::fileConnectionOptions() << 0;
    }

    // The peer going away: down twice, the socket closed once (with its log
    // line on the main link), and the connection waits for its owner to open
    // it again.
    void peerCloses()
    {
        QFETCH(FramedConnection::Options, options);
        QFETCH(int, closeLines);
        LogCapture log;
        QVERIFY(openConnection(options));
        QSignalSpy status(connection.get(), &FramedConnection::connectSucceed);
        peer->disconnectFromHost();
        QTRY_COMPARE_WITH_TIMEOUT(connection->state(), State::WaitingToConnect, 5000);
        QCOMPARE(statuses(status), (QVector<int>{0, 0}));
        QCOMPARE(log.count(kCloseLine), closeLines);
        QVERIFY(!connection->write(qrx::encodeFrame(0x5501, "{}\n")));
    }

    // A streaming sender sees its backlog: bytes the peer does not read
    // stay queued, and waiting lets them go once it reads again.
    void backlogIsVisibleAndDrains()
    {
        QVERIFY(openConnection(FramedConnection::fileConnectionOptions()));
        const QByteArray frame = qrx::encodeFrame(0x5511, QByteArray(2048, 'd'));
        qint64 written = 0;
        // More than the kernel's buffers on both sides hold.
        while (connection->bytesToWrite() == 0 && written < 256LL * 1024 * 1024) {
            QVERIFY(connection->write(frame));
            written += frame.size();
            connection->waitForBytesWritten(0);
        }
        QVERIFY(connection->bytesToWrite() > 0);
        qint64 read = 0;
        QElapsedTimer clock;
        clock.start();
        while ((connection->bytesToWrite() > 0 || read < written) && clock.elapsed() < 30000) {
            connection->waitForBytesWritten(10);
            if (peer->bytesAvailable() || peer->waitForReadyRead(10))
                read += peer->readAll().size();
        }
        QCOMPARE(connection->bytesToWrite(), qint64(0));
        QCOMPARE(read, written);
    }

    // The main link's frames written from the socket's thread and from
    // others at once, more than the kernel's buffers hold: every frame
    // arrives whole, in the order its writer wrote it.
    void writersOnEveryThreadKeepTheirOrder()
    {
        QVERIFY(openConnection(FramedConnection::mainLinkOptions()));
        constexpr int kWriters = 4; // writer 0 is the socket's thread
        constexpr int kFrames = 100;
        const auto payload = [](int writer, int n) {
            return QByteArray::number(writer) + ':' + QByteArray::number(n) + ':' + QByteArray(60000, char('a' + writer));
        };
        const auto write = [&](int writer, int n) {
            QVERIFY(connection->write(qrx::encodeFrame(0x5511, payload(writer, n))));
        };
        std::vector<std::unique_ptr<QThread>> threads;
        for (int writer = 1; writer < kWriters; ++writer) {
            threads.emplace_back(QThread::create([&write, writer] {
                for (int n = 0; n < kFrames; ++n)
                    write(writer, n);
            }));
            threads.back()->start();
        }
        qrx::FrameDecoder decoder;
        QVector<int> next(kWriters, 0);
        const auto take = [&] {
            for (const qrx::Frame &frame : decoder.feed(peer->readAll())) {
                const int writer = frame.payload.left(1).toInt();
                QVERIFY(writer >= 0 && writer < kWriters);
                QCOMPARE(frame.payload, payload(writer, next[writer]));
                ++next[writer];
            }
        };
        // The peer reads while frames are written, so that the kernel takes
        // some of a frame while others wait behind it.
        for (int n = 0; n < kFrames && !QTest::currentTestFailed(); ++n) {
            write(0, n);
            // Writes queued into this thread, and the socket's own backlog.
            QCoreApplication::processEvents();
            take();
        }
        for (auto &thread : threads)
            QVERIFY(thread->wait(30000));
        QElapsedTimer clock;
        clock.start();
        while (next != QVector<int>(kWriters, kFrames) && !QTest::currentTestFailed() && clock.elapsed() < 30000) {
            QCoreApplication::processEvents();
            if (peer->bytesAvailable() || peer->waitForReadyRead(10))
                take();
        }
        QCOMPARE(next, QVector<int>(kWriters, kFrames));
    }

    // An orderly release delivers what was written last, then the end.
    void releaseDeliversTheLastFrame()
    {
        QVERIFY(openConnection(FramedConnection::fileConnectionOptions()));
        const QByteArray last = qrx::encodeFrame(0x5544, "{\"finish\":\"yes\"}\n");
        QVERIFY(connection->write(last));
        connection->release(5000);
        QCOMPARE(connection->state(), State::Idle);
        QTRY_COMPARE_WITH_TIMEOUT(peer->bytesAvailable(), qint64(last.size()), 5000);
        QCOMPARE(peer->readAll(), last);
        QTRY_COMPARE_WITH_TIMEOUT(peer->state(), QAbstractSocket::UnconnectedState, 5000);
        QCOMPARE(connection->bytesToWrite(), qint64(0));
    }

    void drop_data()
    {
        QTest::addColumn<Reason>("reason");
        QTest::addColumn<State>("after");
        QTest::addColumn<int>("closeLines");
        // Closing a connected socket makes it report the loss at once, which
        // goes the socket-lost way (one close line) before the drop ends.
        QTest::newRow("timed out") << Reason::TimedOut << State::WaitingToConnect << 1;
        QTest::newRow("socket lost") << Reason::SocketLost << State::WaitingToConnect << 2;
        QTest::newRow("address changed") << Reason::AddressChanged << State::WaitingToConnect << 2;
        QTest::newRow("manual stop") << Reason::ManualStop << State::Idle << 2;
    }

    // drop() from the owner: the state it names, a 0 at the end, never a 1,
    // the socket closed.
    void drop()
    {
        QFETCH(Reason, reason);
        QFETCH(State, after);
        QFETCH(int, closeLines);
        QVERIFY(openConnection(FramedConnection::mainLinkOptions()));
        LogCapture log;
        QSignalSpy status(connection.get(), &FramedConnection::connectSucceed);
        connection->drop(reason);
        QCOMPARE(connection->state(), after);
        QVERIFY(!connection->write(qrx::encodeFrame(0x2002, "{}\n")));
        QVERIFY(!statuses(status).isEmpty());
        QCOMPARE(statuses(status).last(), 0);
        QVERIFY(!statuses(status).contains(1));
        QTRY_VERIFY_WITH_TIMEOUT(peer->state() == QAbstractSocket::UnconnectedState
                                     || peer->waitForDisconnected(100),
                                 5000);
        QCOMPARE(log.count(kCloseLine), closeLines);
    }

    // Frames that arrive while the connection waits to connect again are
    // not handed out.
    void framesIgnoredWhileWaitingToConnect()
    {
        QVERIFY(openConnection(FramedConnection::mainLinkOptions()));
        QSignalSpy frames(connection.get(), &FramedConnection::frameReceived);
        connection->setState(State::WaitingToConnect);
        // The ignored frame, then the head of the next one: once the head
        // waits in the buffer, the whole frame before it has been read.
        const QByteArray next = qrx::encodeFrame(0x2003, "{\"status\":3}\n");
        peer->write(qrx::encodeFrame(0x2003, "{\"status\":1}\n") + next.left(8));
        peer->flush();
        QTRY_COMPARE_WITH_TIMEOUT(connection->receiveBuffer().buffered(), 8, 5000);
        QCOMPARE(frames.count(), 0);
        connection->setState(State::Connected);
        peer->write(next.mid(8));
        peer->flush();
        QTRY_COMPARE_WITH_TIMEOUT(frames.count(), 1, 5000);
        QCOMPARE(frames.at(0).at(1).toByteArray(), QByteArray("{\"status\":3}\n"));
    }

    // The receive buffer is kept across a reconnect: the head of a frame
    // read from the old socket is completed by the bytes of the new one.
    void bufferKeptAcrossReconnect()
    {
        QVERIFY(openConnection(FramedConnection::mainLinkOptions()));
        QSignalSpy frames(connection.get(), &FramedConnection::frameReceived);
        const QByteArray frame = qrx::encodeFrame(0x2F08, "{\"pos\":[1]}\n");
        peer->write(frame.left(8));
        peer->flush();
        QTRY_COMPARE_WITH_TIMEOUT(connection->receiveBuffer().buffered(), 8, 5000);

        connection->open(server.serverAddress().toString(), server.serverPort());
        connection->waitForConnection(5000);
        QCOMPARE(connection->state(), State::Connected);
        QVERIFY(server.hasPendingConnections() || server.waitForNewConnection(5000));
        delete peer;
        peer = server.nextPendingConnection();
        peer->write(frame.mid(8));
        peer->flush();
        QTRY_COMPARE_WITH_TIMEOUT(frames.count(), 1, 5000);
        QCOMPARE(frames.at(0).at(0).value<quint16>(), quint16(0x2F08));
    }

    // A listener that spins an event loop for a while (as the mode report's
    // pause does) while the controller sends its next frame: that frame is
    // handed out once the listener returns, without waiting for more bytes
    // to come (the socket does not announce bytes that arrived while its
    // announcement was being handled).
    void frameArrivingDuringAListenersEventLoop()
    {
        QVERIFY(openConnection(FramedConnection::mainLinkOptions()));
        QSignalSpy frames(connection.get(), &FramedConnection::frameReceived);
        const QByteArray second = qrx::encodeFrame(0x2F08, "{\"pos\":[2]}\n");
        bool paused = false;
        connect(connection.get(), &FramedConnection::frameReceived, &context, [&](quint16 command) {
            if (command != 0x2103 || paused)
                return;
            paused = true;
            peer->write(second);
            peer->flush();
            QTest::qWait(200);
        });
        peer->write(qrx::encodeFrame(0x2103, "{\"mode\":1}\n"));
        peer->flush();
        QTRY_COMPARE_WITH_TIMEOUT(frames.count(), 2, 5000);
        QVERIFY(paused);
        QCOMPARE(frames.at(1).at(0).value<quint16>(), quint16(0x2F08));
    }

    // Closing is final: neither a drop nor the socket brings it back.
    void closingIsFinal()
    {
        QVERIFY(openConnection(FramedConnection::mainLinkOptions()));
        QSignalSpy frames(connection.get(), &FramedConnection::frameReceived);
        connection->setState(State::Closing);
        connection->drop(Reason::AddressChanged);
        QCOMPARE(connection->state(), State::Closing);
        connection->setState(State::Connected);
        QCOMPARE(connection->state(), State::Closing);
        peer->write(qrx::encodeFrame(0x2003, "{\"status\":1}\n"));
        peer->flush();
        QTest::qWait(0);
        QVERIFY(!connection->write(qrx::encodeFrame(0x2002, "{}\n")));
        QCOMPARE(frames.count(), 0);
    }
};

QTEST_GUILESS_MAIN(tst_FramedConnection)
#include "tst_framedconnection.moc"
