// The request-and-wait pattern seen from host threads: a getter sends its
// query and blocks, without a time-out, until any waking reply arrives; it
// then returns what is cached, stale or not. The controller (qrx-sim) is
// kept silent so that only the reports a case sends itself can end a wait.

#include "support/CacheLock.h"
#include "FamilyFixture.h"
#include "HostErrors.h"
#include "HostThread.h"
#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "sim/SimHandle.h"
#include "support/Loopback.h"

#include <QtTest>

#include <array>
#include <memory>

using familytest::positionReport;

namespace {

// A host thread blocked in a getter.
struct Waiter
{
    std::array<double, 16> out{};
    HostThread thread; // last: joined before out goes

    template <class Call>
    void start(Call call)
    {
        out.fill(-1.0);
        thread.start([this, call] { call(out.data()); });
    }
    bool done() const { return thread.done(); }
};

} // namespace

class TestRequestWait : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void anyWakingReplyEndsWait_data();
    void anyWakingReplyEndsWait();
    void silentMessagesLeaveWaitPending_data();
    void silentMessagesLeaveWaitPending();
    void twoThreadsBothWoken();
    void cleanupTestCase();

private:
    // Fills the position cache with first, first+1, ... and waits until the
    // Robot holds it (first must differ from what it holds).
    void primePosition(double first);
    void wakeEverybody();

    std::unique_ptr<qrxsim::SimHandle> m_sim;
    Robot *m_robot = nullptr;
    // Waiters outlive their case, so that cleanup() can release a thread
    // that a failed case left blocked.
    Waiter &newWaiter();
    std::vector<std::unique_ptr<Waiter>> m_waiters;
};

void TestRequestWait::initTestCase()
{
    Robot::setLinkTimeBase(30000);
    const QString address = testsupport::loopbackAddress();
    m_sim = std::make_unique<qrxsim::SimHandle>(address);
    QVERIFY2(m_sim->start(), qPrintable(address));
    QCOMPARE(connect_robot(address.toLatin1().constData()), 1);
    m_robot = qrx::api::apiRobot();
    QVERIFY(m_robot);
    setErrorHandle(hosterrors::collect);
}

void TestRequestWait::init()
{
    // Silent: no answers at all, so a wait ends only by what the case sends.
    m_sim->setSilent(true);
    m_sim->clearReceived();
}

void TestRequestWait::cleanup()
{
    wakeEverybody();
    m_sim->setSilent(false);
}

void TestRequestWait::wakeEverybody()
{
    // A failed case must not leave a thread blocked for ever.
    for (const auto &waiter : m_waiters) {
        while (waiter->thread.started() && !waiter->done()) {
            m_sim->sendJson(0x2203, Json::Value(Json::objectValue));
            waiter->thread.waitDone(200);
        }
    }
    m_waiters.clear();
}

Waiter &TestRequestWait::newWaiter()
{
    m_waiters.push_back(std::make_unique<Waiter>());
    return *m_waiters.back();
}

void TestRequestWait::primePosition(double first)
{
    m_sim->sendJson(0x2F08, positionReport(first));
    QTRY_COMPARE_WITH_TIMEOUT(withCache(m_robot, [&] { return m_robot->currentPosition[5]; }), first + 5, 10000);
}

void TestRequestWait::anyWakingReplyEndsWait_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("payload");

    QTest::newRow("coordinate report") << 0x2203 << QByteArray("{\"coord\":1,\"robot\":1}\n");
    QTest::newRow("servo report") << 0x2003 << QByteArray("{\"mode\":0,\"robot\":1,\"status\":3}\n");
    QTest::newRow("speed report") << 0x2603 << QByteArray("{\"robot\":1,\"speed\":30}\n");
    QTest::newRow("running state") << 0x3D03 << QByteArray("{\"robot\":1,\"status\":0}\n");
    QTest::newRow("digital outputs") << 0x3603 << QByteArray("{\"status\":[1,0,1,0,0,0,0,0,0,0,0,0,0,0,0,0]}\n");
    QTest::newRow("global variable") << 0x560C << QByteArray("{\"varName\":\"GI001\",\"varType\":2,\"varValue\":7}\n");
    QTest::newRow("not JSON at all") << 0x2203 << QByteArray("garbage");
}

void TestRequestWait::anyWakingReplyEndsWait()
{
    QFETCH(int, code);
    QFETCH(QByteArray, payload);

    static double first = 0.0;
    first += 100.0; // a value the cache does not hold yet
    primePosition(first);
    Waiter &waiter = newWaiter();
    waiter.start([](double *out) { get_current_position(out, 1); });

    QVERIFY(m_sim->waitForFrame(0x2F07));
    QCOMPARE(m_sim->lastFrame(0x2F07).payload, QByteArray("{\"coord\":1,\"robot\":1}\n"));
    QVERIFY(!waiter.done());

    // Not the position answer: the wait ends all the same, and the getter
    // returns the position cached before.
    m_sim->send(quint16(code), payload);
    QTRY_VERIFY_WITH_TIMEOUT(waiter.done(), 10000);
    for (int i = 0; i < 6; ++i)
        QCOMPARE(waiter.out[std::size_t(i)], first + i);
    QCOMPARE(waiter.out[6], -1.0); // six values, not one more
}

void TestRequestWait::silentMessagesLeaveWaitPending_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("payload");

    QTest::newRow("error message") << 0x2B03 << QByteArray("{\"data\":\"alarm\"}\n");
    QTest::newRow("warning message") << 0x2B04 << QByteArray("{\"data\":\"low\"}\n");
    QTest::newRow("mode out of range") << 0x2103 << QByteArray("{\"mode\":3}\n");
    QTest::newRow("heartbeat answer") << 0x7267 << QByteArray("{\"time\":1}\n");
}

void TestRequestWait::silentMessagesLeaveWaitPending()
{
    QFETCH(int, code);
    QFETCH(QByteArray, payload);
    static int round = 0;
    const QString marker = QStringLiteral("marker %1").arg(++round);

    Waiter &waiter = newWaiter();
    waiter.start([](double *out) { get_dout(out); });
    QVERIFY(m_sim->waitForFrame(0x3602));

    m_sim->send(quint16(code), payload);
    // The link handles frames in order: once the marker's handler has run,
    // the message before it has been handled too.
    Json::Value info(Json::objectValue);
    info["data"] = marker.toStdString();
    m_sim->sendJson(0x2B05, info);
    QTRY_VERIFY_WITH_TIMEOUT(hosterrors::seen(QStringLiteral("消息： ") + marker), 10000);
    QVERIFY(!waiter.done());

    // The answer itself ends it.
    Json::Value dout(Json::objectValue);
    for (int i = 0; i < 16; ++i)
        dout["status"].append(i % 2);
    m_sim->sendJson(0x3603, dout);
    QTRY_VERIFY_WITH_TIMEOUT(waiter.done(), 10000);
    for (int i = 0; i < 16; ++i)
        QCOMPARE(waiter.out[std::size_t(i)], double(i % 2));
}

void TestRequestWait::twoThreadsBothWoken()
{
    primePosition(-20.0);
    Waiter &position = newWaiter();
    Waiter &outputs = newWaiter();
    position.start([](double *out) { get_current_position(out, 0); });
    outputs.start([](double *out) { get_dout(out); });
    QVERIFY(m_sim->waitForFrame(0x2F07));
    QVERIFY(m_sim->waitForFrame(0x3602));

    // One reply of a third kind wakes both.
    m_sim->sendJson(0x2203, Json::Value(Json::objectValue));
    QTRY_VERIFY_WITH_TIMEOUT(position.done() && outputs.done(), 10000);
    QCOMPARE(position.out[0], -20.0);
    QCOMPARE(position.out[5], -15.0);
}

void TestRequestWait::cleanupTestCase()
{
    setErrorHandle(nullptr);
    disconnect_robot();
}

QTEST_MAIN(TestRequestWait)
#include "tst_requestwait.moc"
