// connect_robot, disconnect_robot, connection_status, setErrorHandle and
// show_log through the exported functions, against qrx-sim on the test's own
// loopback address. The cases build on each other in declaration order: the
// API state is process-wide, as it is for a host.

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "sim/SimHandle.h"
#include "support/LogCapture.h"
#include "support/Loopback.h"

#include <QElapsedTimer>
#include <mutex>
#include <QPointer>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>

namespace {

// Nothing listens on port 6001 here (test addresses are 127.100.x.y and up, the demo
// runs on 127.0.0.1).
const char kSilentAddress[] = "127.2.0.1";

std::mutex s_callbackMutex;
QStringList s_callbackTexts;

void collectText(const char *text)
{
    std::lock_guard<std::mutex> lock(s_callbackMutex);
    s_callbackTexts << QString::fromUtf8(text);
}

QStringList callbackTexts()
{
    std::lock_guard<std::mutex> lock(s_callbackMutex);
    return s_callbackTexts;
}

using Call = std::function<QVariant()>;

} // namespace

Q_DECLARE_METATYPE(Call)

class TestConnectionApi : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void noLinkResults_data();
    void noLinkResults();
    void connectSendsPostConnectionRequest();
    void secondConnectReturnsZeroAndSendsNothing();
    void controllerMessagesReachHandler_data();
    void controllerMessagesReachHandler();
    void handlerSwitchedOff();
    void disconnectSendsFarewellOnce();
    void reconnectBuildsFreshRobot();
    void connectWhereNothingListens();
    void connectWithinABound();
    void cleanupTestCase();

private:
    QByteArray ipText() const { return m_address.toLatin1(); }

    std::unique_ptr<qrxsim::SimHandle> m_sim;
    QString m_address;
    QPointer<Robot> m_firstRobot;
};

void TestConnectionApi::initTestCase()
{
    // A fast link: checks every 166 ms, so a connection comes within the
    // first poll of connect_robot.
    Robot::setLinkTimeBase(30000);
    m_address = testsupport::loopbackAddress();
    m_sim = std::make_unique<qrxsim::SimHandle>(m_address);
    QVERIFY2(m_sim->start(), qPrintable(m_address));
}

void TestConnectionApi::noLinkResults_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QVariant>("expected");

    const auto noRobot = [] { return QVariant(qrx::api::apiRobot() == nullptr); };
    QTest::newRow("connection_status") << Call([] { return QVariant(connection_status()); }) << QVariant(0);
    QTest::newRow("show_log") << Call([] { return QVariant(QString::fromStdString(show_log())); })
                              << QVariant(QStringLiteral("error"));
    QTest::newRow("disconnect_robot") << Call([=] { disconnect_robot(); return noRobot(); }) << QVariant(true);
    QTest::newRow("setErrorHandle") << Call([=] { setErrorHandle(nullptr); return noRobot(); }) << QVariant(true);
}

void TestConnectionApi::noLinkResults()
{
    QFETCH(Call, call);
    QFETCH(QVariant, expected);
    QCOMPARE(call(), expected);
    QCOMPARE(m_sim->clientCount(), 0);
}

void TestConnectionApi::connectSendsPostConnectionRequest()
{
    LogCapture log;
    // The caller's events keep running while connect_robot polls.
    bool timerFired = false;
    QTimer::singleShot(50, this, [&] { timerFired = true; });

    QElapsedTimer clock;
    clock.start();
    QCOMPARE(connect_robot(ipText().constData()), 1);
    QVERIFY(clock.elapsed() < 4500);
    QVERIFY(timerFired);

    QVERIFY(m_sim->waitForFrame(0x5052));
    const auto frames = m_sim->received(0x5052);
    QCOMPARE(frames.size(), 1);
    QCOMPARE(frames.first().payload, QByteArray());
    QCOMPARE(frames.first().raw, QByteArray::fromHex("4e6600005052") + frames.first().raw.right(4));
    QCOMPARE(connection_status(), 1);

    m_firstRobot = qrx::api::apiRobot();
    QVERIFY(m_firstRobot);
    QCOMPARE(m_firstRobot->isClosed(), false);
    // The host runs a Qt application: the library uses it and makes none.
    QCOMPARE(qrx::api::libraryContext(), nullptr);
    QCOMPARE(m_firstRobot->thread(), QThread::currentThread());
    // The line that prints the Robot object.
    QVERIFY2(log.contains(QStringLiteral("Robot(0x")), qPrintable(log.lines().join('\n')));
}

void TestConnectionApi::secondConnectReturnsZeroAndSendsNothing()
{
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(connect_robot(ipText().constData()), 0);
    QVERIFY(clock.elapsed() < 500);
    QCOMPARE(qrx::api::apiRobot(), m_firstRobot.data());

    // A frame sent afterwards on the same connection arrives after anything
    // the second call might have sent.
    // (A suspend with no queue running: the controller answers nothing.)
    continuous_motion_suspend();
    QVERIFY(m_sim->waitForFrame(0x50B7));
    QCOMPARE(m_sim->received(0x5052).size(), 1);
    QCOMPARE(m_sim->clientCount(), 1);
}

void TestConnectionApi::controllerMessagesReachHandler_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("handed");

    QTest::newRow("error") << 0x2B03 << QStringLiteral("机器人1 伺服报警") << QStringLiteral("错误： 机器人1 伺服报警");
    QTest::newRow("warning") << 0x2B04 << QStringLiteral("low battery") << QStringLiteral("警告： low battery");
    QTest::newRow("information") << 0x2B05 << QStringLiteral("job saved") << QStringLiteral("消息： job saved");
    QTest::newRow("empty data") << 0x2B03 << QString() << QStringLiteral("错误： ");
}

void TestConnectionApi::controllerMessagesReachHandler()
{
    QFETCH(int, code);
    QFETCH(QString, data);
    QFETCH(QString, handed);

    setErrorHandle(collectText);
    const int before = callbackTexts().size();
    Json::Value message(Json::objectValue);
    message["data"] = data.toStdString();
    m_sim->sendJson(quint16(code), message);

    QTRY_COMPARE_WITH_TIMEOUT(callbackTexts().size(), before + 1, 10000);
    QCOMPARE(callbackTexts().last(), handed);
    QCOMPARE(QString::fromStdString(show_log()), data);
}

void TestConnectionApi::handlerSwitchedOff()
{
    setErrorHandle(collectText);
    Json::Value first(Json::objectValue);
    first["data"] = "first";
    m_sim->sendJson(0x2B03, first);
    QTRY_COMPARE_WITH_TIMEOUT(callbackTexts().last(), QStringLiteral("错误： first"), 10000);
    const int calls = callbackTexts().size();

    setErrorHandle(nullptr);
    Json::Value second(Json::objectValue);
    second["data"] = "second";
    m_sim->sendJson(0x2B03, second);
    // Still kept for show_log, but no longer handed over.
    QTRY_COMPARE_WITH_TIMEOUT(QString::fromStdString(show_log()), QStringLiteral("second"), 10000);
    QCOMPARE(callbackTexts().size(), calls);
}

void TestConnectionApi::disconnectSendsFarewellOnce()
{
    m_sim->clearReceived();
    disconnect_robot();
    QVERIFY(m_sim->waitForFrame(0x7277));
    QCOMPARE(m_sim->lastFrame(0x7277).payload, QByteArray());
    QVERIFY(m_firstRobot->isClosed());

    disconnect_robot();
    // Once the connection is gone, every frame the host sent has arrived.
    QTRY_COMPARE_WITH_TIMEOUT(m_sim->clientCount(), 0, 10000);
    QCOMPARE(m_sim->received(0x7277).size(), 1);
    int farewells = 0;
    m_sim->withModel([&](qrxsim::ControllerModel &model) { farewells = model.farewells; });
    QCOMPARE(farewells, 1);

    // The API keeps the closed Robot: not "no link" any more.
    QCOMPARE(qrx::api::apiRobot(), m_firstRobot.data());
    QTRY_COMPARE_WITH_TIMEOUT(connection_status(), 0, 10000);
    QCOMPARE(QString::fromStdString(show_log()), QStringLiteral("second"));
}

void TestConnectionApi::reconnectBuildsFreshRobot()
{
    m_sim->clearReceived();
    QCOMPARE(connect_robot(ipText().constData()), 1);
    Robot *fresh = qrx::api::apiRobot();
    QVERIFY(fresh);
    // Nobody can wait on the old one any more: it is freed, link and all.
    QVERIFY(!m_firstRobot);
    QCOMPARE(fresh->isClosed(), false);
    QVERIFY(m_sim->waitForFrame(0x5052));
    QCOMPARE(m_sim->received(0x5052).size(), 1);
    QCOMPARE(connection_status(), 1);
}

void TestConnectionApi::connectWhereNothingListens()
{
    disconnect_robot();
    QTRY_COMPARE_WITH_TIMEOUT(m_sim->clientCount(), 0, 10000);

    QElapsedTimer clock;
    clock.start();
    const QTime began = QTime::currentTime();
    QCOMPARE(connect_robot(kSilentAddress), 0);
    const qint64 took = clock.elapsed();
    // Five pauses of 1000 ms; a pause that would cross midnight ends at once.
    const bool crossedMidnight = QTime::currentTime() < began;
    QVERIFY2((took >= 4500 || crossedMidnight) && took < 9000, qPrintable(QString::number(took)));
    QVERIFY(qrx::api::apiRobot()->isClosed());
    QCOMPARE(connection_status(), 0);

    // The failed attempt leaves no running link behind: the next connect
    // builds a fresh Robot again.
    QPointer<Robot> failed = qrx::api::apiRobot();
    QCOMPARE(connect_robot(ipText().constData()), 1);
    QVERIFY(qrx::api::apiRobot());
    QVERIFY(!failed);
}

// The extension takes the same steps as connect_robot(), within the bound.
void TestConnectionApi::connectWithinABound()
{
    QCOMPARE(qrx_connect_robot_within(ipText().constData(), 6001, 5000), 0); // already connected
    disconnect_robot();
    QTRY_COMPARE_WITH_TIMEOUT(m_sim->clientCount(), 0, 10000);
    QCOMPARE(qrx_connect_robot_within(ipText().constData(), 6001, 0), 0); // no bound: no attempt
    QVERIFY(qrx::api::apiRobot()->isClosed());

    QElapsedTimer clock;
    clock.start();
    QCOMPARE(qrx_connect_robot_within(kSilentAddress, 6001, 300), 0);
    // The 300 ms bound, not the five pauses of 1000 ms (generous for a
    // loaded machine).
    QVERIFY2(clock.elapsed() < 3000, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(qrx::api::apiRobot()->isClosed());

    m_sim->clearReceived();
    QCOMPARE(qrx_connect_robot_within(ipText().constData(), 6001, 10000), 1);
    QCOMPARE(connection_status(), 1);
    QVERIFY(m_sim->waitForFrame(0x5052));
    QCOMPARE(m_sim->received(0x5052).size(), 1);
}

void TestConnectionApi::cleanupTestCase()
{
    setErrorHandle(nullptr);
    disconnect_robot();
}

QTEST_MAIN(TestConnectionApi)
#include "tst_connection_api.moc"
