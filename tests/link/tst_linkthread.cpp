// What the link thread records about its connection, seen from outside: the
// connect time (thread start and every connect attempt, a failed one
// included), and socket errors, which change nothing by themselves (a loss
// is the state change's and the time-out's business).

#include "LinkFixture.h"
#include "link/TcpConnectModulePrivate.h"
#include "support/LogCapture.h"
#include "support/Loopback.h"

#include <QDateTime>
#include <QtTest>

#include <memory>

using namespace linktest;

namespace {

uint nowSecs()
{
    return uint(QDateTime::currentSecsSinceEpoch());
}

} // namespace


class tst_LinkThread : public QObject
{
    Q_OBJECT

    std::unique_ptr<qrxsim::SimHandle> m_sim;
    std::unique_ptr<TcpConnectModulePrivate> m_link;
    QObject m_context; // receives the link thread's signals in the test thread
    QVector<int> m_statuses;
    QVector<quint16> m_frames;

    void startLink()
    {
        m_statuses.clear();
        m_frames.clear();
        m_link = std::make_unique<TcpConnectModulePrivate>(m_sim->address(), kPort, kFastTimeBase);
        connect(m_link.get(), &TcpConnectModulePrivate::connectSucceed, &m_context,
                [this](int status) { m_statuses << status; });
        connect(m_link.get(), &TcpConnectModulePrivate::receivedData, &m_context,
                [this](quint16 command, const QByteArray &) { m_frames << command; });
        m_link->startLink();
    }

private Q_SLOTS:
    void init()
    {
        m_sim = std::make_unique<qrxsim::SimHandle>(testsupport::loopbackAddress());
        QVERIFY(m_sim->start());
    }

    void cleanup()
    {
        m_link.reset();
        m_sim.reset();
    }

    void connectTimeRecorded()
    {
        const uint before = nowSecs();
        startLink();
        QVERIFY(m_link->connectTime() >= before);
        QVERIFY(m_link->connectTime() <= nowSecs());
        QTRY_VERIFY_WITH_TIMEOUT(m_link->isConnected(), 10000);
        const uint connected = m_link->connectTime();
        QVERIFY(connected >= before && connected <= nowSecs());

        // A later attempt that fails is recorded too: the time moves on
        // while the link stays down.
        QTRY_VERIFY_WITH_TIMEOUT(nowSecs() > connected, 3000);
        m_sim->setRefuseConnections(true);
        m_sim->dropConnections();
        QTRY_VERIFY_WITH_TIMEOUT(m_link->connectTime() > connected, 10000);
        QVERIFY(!m_link->isConnected());
        QVERIFY(m_link->connectTime() <= nowSecs());
    }

    void socketErrorsChangeNothing_data()
    {
        QTest::addColumn<QAbstractSocket::SocketError>("error");
        QTest::newRow("refused") << QAbstractSocket::ConnectionRefusedError;
        QTest::newRow("remote closed") << QAbstractSocket::RemoteHostClosedError;
        QTest::newRow("timed out") << QAbstractSocket::SocketTimeoutError;
        QTest::newRow("network") << QAbstractSocket::NetworkError;
        QTest::newRow("unknown") << QAbstractSocket::UnknownSocketError;
    }

    void socketErrorsChangeNothing()
    {
        QFETCH(QAbstractSocket::SocketError, error);
        startLink();
        QTRY_VERIFY_WITH_TIMEOUT(m_statuses.contains(1), 10000);
        QVERIFY(m_sim->waitForClient());
        QCoreApplication::processEvents();
        m_statuses.clear();
        const QDateTime seen = m_link->lastReceiveTime();
        LogCapture log;

        m_link->TcpSocketError(error);

        QVERIFY(m_link->isConnected());
        QCOMPARE(m_link->lastReceiveTime(), seen);
        // The connection carries on: a frame sent now arrives, no status
        // was announced, and nothing was closed.
        m_sim->send(kMarker, "{}");
        QTRY_VERIFY_WITH_TIMEOUT(m_frames.contains(kMarker), 10000);
        QVERIFY(m_statuses.isEmpty());
        QVERIFY(m_link->isConnected());
        QCOMPARE(log.count(kCloseLine), 0);
    }
};

QTEST_GUILESS_MAIN(tst_LinkThread)
#include "tst_linkthread.moc"
