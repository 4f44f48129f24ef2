// Connection events and the connection to another port, against a qrx-sim
// that listens on a port of its own: the link comes up, drops when the
// controller closes it, is stopped or falls silent, comes back by itself, and
// the host learns each change once, with its reason and its user pointer.
// Run whole, one link reconnects three times over (silent, dropped, closed
// and connected again, restarted); ctest also runs two shorter sequences.

#include "HostErrors.h"
#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "link/TcpConnectModule.h"
#include "sim/SimHandle.h"
#include "support/Loopback.h"

#include <mutex>
#include <QThread>
#include <QtTest>

#include <memory>

namespace {

struct Event
{
    int event;
    int reason;
    void *user;
    bool operator==(const Event &o) const { return event == o.event && reason == o.reason && user == o.user; }
};

std::mutex g_mutex;
QVector<Event> g_events;
QVector<QThread *> g_threads;

void record(int event, int reason, void *user)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_events.append({event, reason, user});
    g_threads.append(QThread::currentThread());
}

QVector<Event> events()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_events;
}

char g_user; // its address is the user pointer

// The library's log lines with their level, "qrx.api" only.
QStringList g_apiLines;
QtMessageHandler g_previousHandler = nullptr;

void keepApiLines(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (context.category && QByteArray(context.category) == "qrx.api") {
        static const char *const levels[] = {"debug", "warning", "critical", "fatal", "info"};
        std::lock_guard<std::mutex> lock(g_mutex);
        g_apiLines << QStringLiteral("%1: %2").arg(QLatin1String(levels[type]), text);
    }
    g_previousHandler(type, context, text);
}

bool logged(const QString &line)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_apiLines.contains(line);
}

char *bytes(const char *text)
{
    return const_cast<char *>(text);
}

} // namespace

QT_BEGIN_NAMESPACE
namespace QTest {
template <>
char *toString(const Event &e)
{
    return qstrdup(QStringLiteral("(event %1, reason %2%3)")
                       .arg(e.event)
                       .arg(e.reason)
                       .arg(e.user == &g_user ? "" : ", other user")
                       .toLatin1()
                       .constData());
}
} // namespace QTest
QT_END_NAMESPACE

class TestLinkEvents : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void portOutOfRangeConnectsNothing_data();
    void portOutOfRangeConnectsNothing();
    void upOnConnect();
    void statusRepeatsAreNoEvents();
    void controllerSilent();
    void droppedAndBack();
    void closedByHost();
    void reconnectIsUpAgain();
    void controllerRestarted();
    void handlerOff();
    void cleanupTestCase();

private:
    // The next event not looked at yet (event 0 when none came in time).
    Event nextEvent();
    // No event beyond those looked at.
    bool noNewEvent() const { return events().size() == m_seen; }
    void startSim();

    QString m_address;
    quint16 m_port = 0;
    std::unique_ptr<qrxsim::SimHandle> m_sim;
    int m_seen = 0;
};

void TestLinkEvents::initTestCase()
{
    Robot::setLinkTimeBase(30000);
    m_address = testsupport::loopbackAddress();
    m_sim = std::make_unique<qrxsim::SimHandle>(m_address, 0);
    QVERIFY2(m_sim->start(), qPrintable(m_address));
    m_port = m_sim->port();
    QVERIFY(m_port != 6001 && m_port != 0);
    qrx_set_link_event_handler(record, &g_user);
    setErrorHandle(hosterrors::collect);
    g_previousHandler = qInstallMessageHandler(keepApiLines);
}

void TestLinkEvents::startSim()
{
    m_sim = std::make_unique<qrxsim::SimHandle>(m_address, m_port);
    QVERIFY(m_sim->start());
}

Event TestLinkEvents::nextEvent()
{
    QElapsedTimer clock;
    clock.start();
    while (events().size() <= m_seen && clock.elapsed() < 20000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    const QVector<Event> all = events();
    return all.size() > m_seen ? all.at(m_seen++) : Event{0, 0, nullptr};
}

void TestLinkEvents::portOutOfRangeConnectsNothing_data()
{
    QTest::addColumn<int>("port");
    QTest::newRow("zero") << 0;
    QTest::newRow("negative") << -6001;
    QTest::newRow("above 65535") << 65536;
}

void TestLinkEvents::portOutOfRangeConnectsNothing()
{
    QFETCH(int, port);
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(qrx_connect_robot_port(m_address.toLatin1().constData(), port), 0);
    QCOMPARE(qrx_connect_robot_within(m_address.toLatin1().constData(), port, 5000), 0);
    QVERIFY(clock.elapsed() < 1000); // refused before any attempt
    QVERIFY(!qrx::api::apiRobot());
    QCOMPARE(m_sim->clientCount(), 0);
    QVERIFY(noNewEvent());
}

void TestLinkEvents::upOnConnect()
{
    QCOMPARE(qrx_connect_robot_port(m_address.toLatin1().constData(), m_port), 1);
    QVERIFY(m_sim->waitForFrame(0x5052));
    QCOMPARE(m_sim->clientCount(), 1);
    QCOMPARE(nextEvent(), (Event{QRX_LINK_UP, QRX_LINK_REASON_NONE, &g_user}));
    // Delivered on the thread that runs the library's events (here the
    // test's own application thread), never on the connecting call.
    std::lock_guard<std::mutex> lock(g_mutex);
    QCOMPARE(g_threads.constLast(), qrx::api::apiRobot()->thread());
}

void TestLinkEvents::statusRepeatsAreNoEvents()
{
    // A status query makes the link repeat "connected".
    QVERIFY(qrx::api::apiRobot()->link()->connectStatus());
    QCOMPARE(connection_status(), 1);
    Json::Value v(Json::objectValue);
    v["data"] = "marker";
    m_sim->sendJson(0x2B05, v);
    QTRY_VERIFY_WITH_TIMEOUT(hosterrors::seen(QStringLiteral("消息： marker")), 10000);
    QCoreApplication::processEvents();
    QVERIFY(noNewEvent());
}

void TestLinkEvents::droppedAndBack()
{
    m_sim->clearReceived();
    m_sim->dropConnections();
    QCOMPARE(nextEvent(), (Event{QRX_LINK_DROPPED, QRX_LINK_REASON_CONNECTION_LOST, &g_user}));
    // The link reconnects by itself: back, not up.
    QCOMPARE(nextEvent(), (Event{QRX_LINK_BACK, QRX_LINK_REASON_NONE, &g_user}));
    QTRY_COMPARE_WITH_TIMEOUT(connection_status(), 1, 10000);
    // A host sees both in its log above debug level.
    QVERIFY(logged(QStringLiteral("warning: controller link dropped: connection lost")));
    QVERIFY(logged(QStringLiteral("info: controller link back")));
}

void TestLinkEvents::controllerRestarted()
{
    m_sim.reset(); // the controller goes away
    QCOMPARE(nextEvent(), (Event{QRX_LINK_DROPPED, QRX_LINK_REASON_CONNECTION_LOST, &g_user}));
    startSim();
    QCOMPARE(nextEvent(), (Event{QRX_LINK_BACK, QRX_LINK_REASON_NONE, &g_user}));
    QVERIFY(m_sim->waitForClient());
}

void TestLinkEvents::controllerSilent()
{
    // No answer to the heartbeats: the link's receive time-out closes it.
    m_sim->setSilent(true);
    QCOMPARE(nextEvent(), (Event{QRX_LINK_DROPPED, QRX_LINK_REASON_CONTROLLER_SILENT, &g_user}));
    m_sim->setSilent(false);
    QCOMPARE(nextEvent(), (Event{QRX_LINK_BACK, QRX_LINK_REASON_NONE, &g_user}));
}

void TestLinkEvents::closedByHost()
{
    disconnect_robot();
    QCOMPARE(nextEvent(), (Event{QRX_LINK_DROPPED, QRX_LINK_REASON_CLOSED_BY_HOST, &g_user}));
    // A stopped link does not come back by itself.
    QTest::qWait(500);
    QCoreApplication::processEvents();
    QVERIFY(noNewEvent());
}

void TestLinkEvents::reconnectIsUpAgain()
{
    QCOMPARE(qrx_connect_robot_port(m_address.toLatin1().constData(), m_port), 1);
    QCOMPARE(nextEvent(), (Event{QRX_LINK_UP, QRX_LINK_REASON_NONE, &g_user}));
}

void TestLinkEvents::handlerOff()
{
    qrx_set_link_event_handler(nullptr, bytes("unused"));
    // The link drops and comes back: its status says so, the host hears nothing.
    // The link emits its status on its own thread: the statuses are queued
    // to this one, where the loop below reads them.
    QVector<int> status;
    QObject receiver;
    connect(qrx::api::apiRobot()->link(), &LinkNotifications::connectSucceed, &receiver,
            [&status](int s) { status.append(s); }, Qt::QueuedConnection);
    m_sim->dropConnections();
    const auto cameBack = [&status] {
        const int dropped = status.indexOf(0);
        return dropped >= 0 && status.indexOf(1, dropped) > dropped;
    };
    QTRY_VERIFY_WITH_TIMEOUT(cameBack(), 20000);
    QCoreApplication::processEvents();
    QVERIFY(noNewEvent());
}

void TestLinkEvents::cleanupTestCase()
{
    qrx_set_link_event_handler(nullptr, nullptr);
    setErrorHandle(nullptr);
    disconnect_robot();
}

QTEST_MAIN(TestLinkEvents)
#include "tst_link_events.moc"
