// The link with the library's own time base 300000, against a controller
// that accepts and never answers: heartbeats go out every 1666 ms, and the
// time-out (checked every 2000 ms) drops the silent link after 7 s, so the
// loss comes between 7 and about 9 s after the connect.

#include "link/FrameCodec.h"
#include "link/TcpConnectModule.h"
#include "support/Loopback.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

class tst_DefaultTimeBase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void heartbeatsAndSilenceTimeOut()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress(testsupport::loopbackAddress()), 0));
        TcpConnectModule link(server.serverAddress().toString(), server.serverPort(), 300000);
        QSignalSpy status(&link, &TcpConnectModule::connectSucceed);
        link.start();

        QVERIFY(server.waitForNewConnection(10000) || server.hasPendingConnections());
        QTcpSocket *controller = server.nextPendingConnection();
        QElapsedTimer sinceConnect;
        sinceConnect.start();
        QTRY_VERIFY_WITH_TIMEOUT(!status.isEmpty() && status.last().at(0).toInt() == 1, 10000);

        // Heartbeat arrival times, until the link gives up on the silence.
        qrx::FrameDecoder decoder;
        QVector<qint64> heartbeats;
        QObject::connect(controller, &QTcpSocket::readyRead, controller, [&] {
            for (const qrx::Frame &frame : decoder.feed(controller->readAll())) {
                if (frame.command == 0x7266)
                    heartbeats << sinceConnect.elapsed();
            }
        });
        QTRY_VERIFY_WITH_TIMEOUT(!status.isEmpty() && status.last().at(0).toInt() == 0, 20000);
        const qint64 droppedAfter = sinceConnect.elapsed();

        QVERIFY2(droppedAfter >= 7000, qPrintable(QString::number(droppedAfter)));
        QVERIFY2(droppedAfter <= 12000, qPrintable(QString::number(droppedAfter)));
        // Seven seconds hold at least three heartbeat periods of 1666 ms.
        QVERIFY2(heartbeats.size() >= 3, qPrintable(QString::number(heartbeats.size())));
        QVector<qint64> gaps;
        for (int i = 1; i < heartbeats.size(); ++i)
            gaps << heartbeats[i] - heartbeats[i - 1];
        std::sort(gaps.begin(), gaps.end());
        const qint64 median = gaps.at(gaps.size() / 2);
        QVERIFY2(median >= 1500 && median <= 2000, qPrintable(QString::number(median)));
        delete controller;
    }
};

QTEST_GUILESS_MAIN(tst_DefaultTimeBase)
#include "tst_defaulttimebase.moc"
