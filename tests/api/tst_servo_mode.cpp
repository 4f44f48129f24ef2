// Servo, mode, coordinate, speed and jog functions of the host API against
// qrx-sim: the frames on the wire, the values the getters return after the
// controller's reply, the jog timer, and the results without a link.

#include "FamilyFixture.h"
#include "api/JogDriver.h"
#include "common/Payload.h"
#include "sim/Session.h"
#include "support/LogCapture.h"

#include <QTimer>

using familytest::Call;
using familytest::frame;
using familytest::json;

using IntCall = std::function<int()>;
using ModelChange = std::function<void(qrxsim::ControllerModel &)>;
Q_DECLARE_METATYPE(IntCall)
Q_DECLARE_METATYPE(ModelChange)

class TestServoMode : public QObject
{
    Q_OBJECT

private slots:
    void noLinkResults();
    void init();
    void framesOnTheWire_data();
    void framesOnTheWire();
    void gettersReturnTheReply_data();
    void gettersReturnTheReply();
    void servoStateIsCachedOnly();
    void powerOnEngagesTheDrives();
    void powerOnFailsUnlessStateOne();
    void jogRepeatsUntilStopped();
    void jogRefusals_data();
    void jogRefusals();
    void jogStopsItsTimerOutsideTeachMode();
    void externalAxisJog();

private:
    familytest::Controller m_ctl;
};

// Before any connect_robot(): every function returns at once with its
// no-link result and sends nothing (no client ever reaches the controller).
void TestServoMode::noLinkResults()
{
    qrxsim::SimHandle sim(testsupport::loopbackAddress(), 6001);
    QVERIFY(sim.start());
    QCOMPARE(servo_power_on(), 0);
    servo_power_off();
    set_servo_state(3);
    QCOMPARE(get_servo_state(), 0);
    clear_servo_error();
    set_current_mode(2);
    QCOMPARE(get_current_mode(), 0);
    set_current_coord(1);
    QCOMPARE(get_current_coord(), 0);
    set_jogging_speed(50);
    QCOMPARE(get_jogging_speed(), 0);
    start_jogging(1, true);
    stop_jogging(1);
    QCOMPARE(get_robot_running_state(), 0);
    QCOMPARE(sim.clientCount(), 0);
    QVERIFY(sim.received().isEmpty());
}

void TestServoMode::init()
{
    if (familytest::runsWithoutLink())
        return;
    QVERIFY(m_ctl.startOnce());
    m_ctl.robot->externalAxisJog = 0;
    m_ctl.model([](qrxsim::ControllerModel &m) {
        m.servoStatus = 0;
        m.deadman = 0;
        m.operationMode = 0;
        m.coordinate = 0;
        m.speed = 10;
        m.runStatus = 0;
        m.job = qrxsim::SimJobRunner();
    });
    QVERIFY(m_ctl.holdServo(0));
    QVERIFY(m_ctl.holdMode(0));
    QVERIFY(m_ctl.settle());
    m_ctl.sim->clearReceived();
}

void TestServoMode::framesOnTheWire_data()
{
    familytest::frameColumns();

    QTest::newRow("set_servo_state") << Call([] { set_servo_state(3); })
                                     << QStringList{frame(0x2001, R"({"robot":1,"status":3})")};
    QTest::newRow("set_servo_state signed byte") << Call([] { set_servo_state(255); })
                                                 << QStringList{frame(0x2001, R"({"robot":1,"status":-1})")};
    QTest::newRow("clear_servo_error") << Call([] { clear_servo_error(); })
                                       << QStringList{frame(0x3201, R"({"robot":1})")};
    QTest::newRow("set_current_mode") << Call([] { set_current_mode(1); })
                                      << QStringList{frame(0x2101, R"({"mode":1})")};
    QTest::newRow("set_current_mode unchecked") << Call([] { set_current_mode(9); })
                                                << QStringList{frame(0x2101, R"({"mode":9})")};
    // The teach-mode answer makes the Robot send 0x2105 of its own.
    QTest::newRow("get_current_mode") << Call([] { get_current_mode(); })
                                      << QStringList{frame(0x2102, nullptr), frame(0x2105, nullptr)};
    QTest::newRow("set_current_coord") << Call([] { set_current_coord(2); })
                                       << QStringList{frame(0x2201, R"({"coord":2,"robot":1})")};
    QTest::newRow("set_current_coord unchecked") << Call([] { set_current_coord(-4); })
                                                 << QStringList{frame(0x2201, R"({"coord":-4,"robot":1})")};
    QTest::newRow("get_current_coord") << Call([] { get_current_coord(); })
                                       << QStringList{frame(0x2202, R"({"robot":1})")};
    QTest::newRow("speed 42") << Call([] { set_jogging_speed(42); })
                              << QStringList{frame(0x2601, R"({"robot":1,"speed":42})")};
    QTest::newRow("speed 103 kept") << Call([] { set_jogging_speed(103); })
                                    << QStringList{frame(0x2601, R"({"robot":1,"speed":103})")};
    QTest::newRow("speed 150 clamped") << Call([] { set_jogging_speed(150); })
                                       << QStringList{frame(0x2601, R"({"robot":1,"speed":103})")};
    QTest::newRow("speed -5 clamped") << Call([] { set_jogging_speed(-5); })
                                      << QStringList{frame(0x2601, R"({"robot":1,"speed":0})")};
    QTest::newRow("get_jogging_speed") << Call([] { get_jogging_speed(); })
                                       << QStringList{frame(0x2602, R"({"robot":1})")};
    QTest::newRow("get_robot_running_state") << Call([] { get_robot_running_state(); })
                                             << QStringList{frame(0x3d02, R"({"robot":1})")};
    QTest::newRow("stop_jogging") << Call([] { stop_jogging(4); }) << QStringList{frame(0x2902, R"({"axis":4})")};
    QTest::newRow("servo_power_off") << Call([] { servo_power_off(); })
                                     << QStringList{frame(0x2301, R"({"deadman":0})")};
    QTest::newRow("get_servo_state") << Call([] { get_servo_state(); }) << QStringList{};
}

void TestServoMode::framesOnTheWire()
{
    m_ctl.compareRowFrames();
}

void TestServoMode::gettersReturnTheReply_data()
{
    QTest::addColumn<ModelChange>("controller");
    QTest::addColumn<IntCall>("getter");
    QTest::addColumn<int>("expected");

    QTest::newRow("run mode") << ModelChange([](qrxsim::ControllerModel &m) { m.operationMode = 2; })
                              << IntCall(get_current_mode) << 2;
    QTest::newRow("remote mode") << ModelChange([](qrxsim::ControllerModel &m) { m.operationMode = 1; })
                                 << IntCall(get_current_mode) << 1;
    QTest::newRow("tool coordinates") << ModelChange([](qrxsim::ControllerModel &m) { m.coordinate = 2; })
                                      << IntCall(get_current_coord) << 2;
    QTest::newRow("Cartesian coordinates") << ModelChange([](qrxsim::ControllerModel &m) { m.coordinate = 1; })
                                           << IntCall(get_current_coord) << 1;
    QTest::newRow("speed percent") << ModelChange([](qrxsim::ControllerModel &m) { m.speed = 55; })
                                   << IntCall(get_jogging_speed) << 55;
    QTest::newRow("jog step size") << ModelChange([](qrxsim::ControllerModel &m) { m.speed = 102; })
                                   << IntCall(get_jogging_speed) << 102;
    QTest::newRow("job paused") << ModelChange([](qrxsim::ControllerModel &m) { m.runStatus = 1; })
                                << IntCall(get_robot_running_state) << 1;
    // A job really running: drives up, WELD01 at its first of 20 lines.
    QTest::newRow("job running") << ModelChange([](qrxsim::ControllerModel &m) {
        m.servoStatus = 3;
        m.deadman = 1;
        m.job.running = "WELD01";
        m.job.line = 1;
        m.runStatus = 2;
    }) << IntCall(get_robot_running_state) << 2;
}

void TestServoMode::gettersReturnTheReply()
{
    QFETCH(ModelChange, controller);
    QFETCH(IntCall, getter);
    QFETCH(int, expected);
    m_ctl.model(controller);
    QCOMPARE(getter(), expected);
}

void TestServoMode::servoStateIsCachedOnly()
{
    QVERIFY(m_ctl.holdServo(2));
    int state = -1;
    QCOMPARE(m_ctl.framesOf([&state] { state = get_servo_state(); }), QStringList{});
    QCOMPARE(state, 2);
}

void TestServoMode::powerOnEngagesTheDrives()
{
    LogCapture log;
    int result = -1;
    const QStringList frames = m_ctl.framesOf([&result] { result = servo_power_on(); });
    QCOMPARE(result, 1);
    QCOMPARE(frames.mid(0, 2), (QStringList{frame(0x2001, R"({"robot":1,"status":1})"),
                                            frame(0x2301, R"({"deadman":1})")}));
    QVERIFY(log.contains(QStringLiteral("发送伺服状态 status=1")));
    QVERIFY(log.contains(QStringLiteral("向控制器发送上电命令")));
    // With the deadman powered the controller's drives come up: state 3.
    QTRY_COMPARE_WITH_TIMEOUT(get_servo_state(), 3, 10000);

    servo_power_off();
    QTRY_COMPARE_WITH_TIMEOUT(get_servo_state(), 1, 10000);
    QVERIFY(log.contains(QStringLiteral("向控制器发送下电命令")));
}

void TestServoMode::powerOnFailsUnlessStateOne()
{
    // A controller that answers the servo command with its drives running.
    m_ctl.sim->setHandler(0x2001, [](qrxsim::Session &s, const qrxsim::ReceivedFrame &) {
        Json::Value v(Json::objectValue);
        v["mode"] = 0;
        v["robot"] = 1;
        v["status"] = 3;
        s.replyJson(0x2003, v);
    });
    LogCapture log;
    QCOMPARE(servo_power_on(), 0);
    // The deadman state is whatever the Robot holds when the wait ends (the
    // controller's deadman report may or may not have come in by then).
    const QStringList lines = log.lines().filter(QRegularExpression(QStringLiteral("^servo 3 deadman [01]$")));
    QVERIFY2(lines.size() == 1, qPrintable(log.lines().join('\n')));
    // Back to the ordinary controller for the cases that follow.
    m_ctl.sim->setHandler(0x2001, [](qrxsim::Session &s, const qrxsim::ReceivedFrame &f) {
        Json::Value request;
        qrx::parsePayload(f.payload, request);
        s.model().servoStatus = request.get("status", 0).asInt();
        Json::Value v(Json::objectValue);
        v["mode"] = s.model().operationMode;
        v["robot"] = 1;
        v["status"] = s.model().servoStatus;
        s.broadcastJson(0x2003, v);
    });
}

void TestServoMode::jogRepeatsUntilStopped()
{
    m_ctl.model([](qrxsim::ControllerModel &m) {
        m.positionDeg[2] = 10.0;
        m.speed = 50;
    });
    QVERIFY(m_ctl.servoRunning());
    m_ctl.sim->clearReceived();

    start_jogging(3, false);
    QVERIFY(qrx::controller::Controller::defaultController().jogDriver()->isActive());
    QTRY_VERIFY_WITH_TIMEOUT(m_ctl.sim->received(0x2901).size() >= 4, 10000);
    const auto steps = m_ctl.sim->received(0x2901);
    for (const auto &jogStep : steps)
        QCOMPARE(jogStep.payload, json(R"({"axis":3,"direction":-1})"));
    // One step at once, then one per 200 ms tick: never a burst (the bound
    // leaves room for a frame that the network held back).
    const qint64 span = steps.last().atMs - steps.first().atMs;
    QVERIFY2(span >= 120 * (steps.size() - 1), qPrintable(QString::number(span)));
    // The simulated axis moves down while the steps keep coming.
    double axis3 = 10.0;
    m_ctl.model([&axis3](qrxsim::ControllerModel &m) { axis3 = m.positionDeg[2]; });
    QVERIFY2(axis3 < 10.0, qPrintable(QString::number(axis3)));

    stop_jogging(3);
    QVERIFY(!qrx::controller::Controller::defaultController().jogDriver()->isActive());
    QCOMPARE(m_ctl.robot->jogging.load(), quint8(0));
    QVERIFY(m_ctl.sim->waitForFrame(0x2902));
    QCOMPARE(m_ctl.sim->lastFrame(0x2902).payload, json(R"({"axis":3})"));
}

void TestServoMode::jogRefusals_data()
{
    QTest::addColumn<int>("servo");
    QTest::addColumn<int>("axis");
    QTest::addColumn<bool>("logsRefusal");

    QTest::newRow("axis 8") << 3 << 8 << false;
    QTest::newRow("axis 0") << 3 << 0 << false;
    QTest::newRow("axis -1") << 3 << -1 << false;
    QTest::newRow("servo off") << 0 << 1 << true;
    QTest::newRow("servo ready, not running") << 1 << 2 << true;
}

void TestServoMode::jogRefusals()
{
    QFETCH(int, servo);
    QFETCH(int, axis);
    QFETCH(bool, logsRefusal);
    if (servo == 3)
        QVERIFY(m_ctl.servoRunning());
    else
        QVERIFY(m_ctl.holdServo(servo));
    LogCapture log;
    QCOMPARE(m_ctl.framesOf([axis] { start_jogging(axis, true); }), QStringList{});
    QVERIFY(!qrx::controller::Controller::defaultController().jogDriver()->isActive());
    QCOMPARE(log.count(QStringLiteral("伺服不在运行状态,无法执行点动操作!")), logsRefusal ? 1 : 0);
}

// Outside teach mode each step stops the timer: the first step at once and
// one more from the timer's first tick, then nothing.
void TestServoMode::jogStopsItsTimerOutsideTeachMode()
{
    QVERIFY(m_ctl.servoRunning());
    QVERIFY(m_ctl.holdMode(1));
    m_ctl.sim->clearReceived();
    start_jogging(1, true);
    QTRY_VERIFY_WITH_TIMEOUT(!qrx::controller::Controller::defaultController().jogDriver()->isActive(), 10000);
    const QStringList frames = m_ctl.framesSoFar();
    const QString step = frame(0x2901, R"({"axis":1,"direction":1})");
    QCOMPARE(frames, (QStringList{step, step}));
    stop_jogging(1);
}

// With the external-axis jog selection, axes 1..5 jog as 8..12; the stop
// goes out with the axis as given.
void TestServoMode::externalAxisJog()
{
    QVERIFY(m_ctl.servoRunning());
    m_ctl.robot->externalAxisJog = 1;
    m_ctl.sim->clearReceived();
    start_jogging(2, true);
    QVERIFY(m_ctl.sim->waitForFrame(0x2901));
    stop_jogging(2);
    QStringList frames = m_ctl.framesSoFar();
    QVERIFY(frames.size() >= 2);
    QCOMPARE(frames.first(), frame(0x2901, R"({"axis":9,"direction":1})"));
    QCOMPARE(frames.last(), frame(0x2902, R"({"axis":2})"));

    // Axis 6 has no external counterpart: the step sends nothing.
    LogCapture log;
    QCOMPARE(m_ctl.framesOf([] { start_jogging(6, true); }), QStringList{});
    stop_jogging(6);
    m_ctl.robot->externalAxisJog = 0;
}

QTEST_GUILESS_MAIN(TestServoMode)
#include "tst_servo_mode.moc"
