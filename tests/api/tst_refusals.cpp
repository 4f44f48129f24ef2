// What qrx-sim refuses, seen from a host: every refused command produces the
// controller's error message at the host's error callback, the host can read
// the refusal with the code of the command it answered once qrx_confirm()
// returns, and the controller's state is the same afterwards as before.

#include "FamilyFixture.h"
#include "QueueRecords.h"

using namespace queuerecords;

namespace {

// The state a refusal must leave alone, as text (counters of frames taken
// are left out: they count what arrived, not what was done).
QString snapshot(const qrxsim::ControllerModel &m)
{
    QStringList parts;
    auto values = [](const double *v, int n) {
        QStringList list;
        for (int i = 0; i < n; ++i)
            list << QString::number(v[i], 'g', 15);
        return list.join(QLatin1Char(','));
    };
    parts << QStringLiteral("servo %1 mode %2 coord %3 deadman %4 speed %5 tool %6 run %7")
                 .arg(m.servoStatus)
                 .arg(m.operationMode)
                 .arg(m.coordinate)
                 .arg(m.deadman)
                 .arg(m.speed)
                 .arg(m.currentTool)
                 .arg(m.runStatus);
    parts << QStringLiteral("axes ") + values(m.positionDeg, 7) + QStringLiteral(" sync ") +
                 values(m.motion.sync.data(), 5);
    parts << QStringLiteral("moving %1 moves %2 jog %3").arg(m.motion.waypoints.size()).arg(m.motion.moves).arg(m.motion.jogAxis);
    parts << QStringLiteral("dout ") + values(m.io.dout.data(), 16) + QStringLiteral(" aout ") + values(m.io.aout.data(), 16);
    for (const auto &[name, variable] : m.globals.variables)
        parts << QStringLiteral("%1=%2").arg(QString::fromStdString(name)).arg(variable.value);
    for (const auto &[name, position] : m.globals.positions)
        parts << QString::fromStdString(name) + QLatin1Char(' ') + values(position.data(), 14);
    QStringList jobs;
    for (const auto &[name, lines] : m.job.jobs)
        jobs << QStringLiteral("%1:%2").arg(QString::fromStdString(name)).arg(lines);
    parts << QStringLiteral("jobs ") + jobs.join(QLatin1Char(',')) +
                 QStringLiteral(" opened %1 running %2 line %3")
                     .arg(QString::fromStdString(m.job.opened), QString::fromStdString(m.job.running))
                     .arg(m.job.line);
    parts << QStringLiteral("queue open %1 state %2 held %3 line %4 executed %5")
                 .arg(m.continuous.open)
                 .arg(m.continuous.state)
                 .arg(m.continuous.queue.size())
                 .arg(m.continuous.line)
                 .arg(m.continuous.executed);
    return parts.join(QLatin1Char('\n'));
}

// The controller before the refused call.
enum Setup {
    ServoOff,      // drives off, continuous motion closed
    ServoRunning,  // drives running, continuous motion closed
    QueueOpen,     // drives running, continuous motion open, nothing queued
    QueueWaiting,  // continuous motion open, one move queued, drives off
};

double g_inRange[6] = {10, 10, 10, 0, 0, 0};
double g_axis1Beyond[6] = {200, 0, 0, 0, 0, 0};
double g_axis2Beyond[6] = {0, -150, 0, 0, 0, 0};
double g_robotAxes[7] = {1, 2, 3, 4, 5, 6, 0};
double g_syncAxes[7] = {};

void queue(const Records &records)
{
    send_continuous_motion_queue(records.constData(), records.size());
}

QString refusalText()
{
    char text[512] = {};
    qrx_last_refusal(text, int(sizeof text));
    return QString::fromUtf8(text);
}

QString lastMessageText()
{
    char text[512] = {};
    qrx_last_message(text, int(sizeof text));
    return QString::fromUtf8(text);
}

} // namespace

Q_DECLARE_METATYPE(Setup)

class TestRefusals : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void refusedWithMessageAndNoChange_data();
    void refusedWithMessageAndNoChange();
    void keptRefusals();
    void refusedModeLeavesTheModeReadable();
    void cleanupTestCase();

private:
    bool prepare(Setup setup);
    QString modelText();

    familytest::Controller m_ctl;
};

void TestRefusals::initTestCase()
{
    qrx_set_wait_timeout(10000);
    setErrorHandle(hosterrors::collect);
    QVERIFY(m_ctl.start());
}

QString TestRefusals::modelText()
{
    QString text;
    m_ctl.model([&text](qrxsim::ControllerModel &m) { text = snapshot(m); });
    return text;
}

bool TestRefusals::prepare(Setup setup)
{
    continuous_motion_stop();
    continuous_motion_mode(setup == QueueOpen || setup == QueueWaiting ? 1 : 0);
    if (!m_ctl.settle() || !m_ctl.servoRunning())
        return false;
    if (setup == QueueWaiting)
        queue({move(1, {5, 5, 5, 0, 0, 0}, 50)});
    if (setup == ServoOff || setup == QueueWaiting) {
        m_ctl.model([](qrxsim::ControllerModel &m) {
            m.servoStatus = 1;
            m.deadman = 0;
        });
        if (!m_ctl.holdServo(1))
            return false;
    }
    // The drives report themselves once they are settled.
    return m_ctl.settle();
}

void TestRefusals::refusedWithMessageAndNoChange_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<familytest::Call>("call");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("command");
    using C = familytest::Call;

    QTest::newRow("mode 7") << ServoOff << C([] { set_current_mode(7); }) << "mode refused: 7 is outside 0..2" << 0x2101;
    QTest::newRow("mode -1") << ServoOff << C([] { set_current_mode(-1); }) << "mode refused: -1 is outside 0..2" << 0x2101;
    QTest::newRow("coordinate system 4") << ServoOff << C([] { set_current_coord(4); })
                                         << "coord refused: 4 is outside 0..3" << 0x2201;
    QTest::newRow("jog speed below 1") << ServoOff << C([] { set_jogging_speed(-5); })
                                       << "speed refused: 0 is outside 1..103" << 0x2601;
    QTest::newRow("digital port 17") << ServoOff << C([] { set_dout(17, 1); })
                                     << "digital output port refused: 17 is outside 1..16" << 0x3601;
    QTest::newRow("digital port 0") << ServoOff << C([] { set_dout(0, 0); })
                                    << "digital output port refused: 0 is outside 1..16" << 0x3601;
    QTest::newRow("digital value 2") << ServoOff << C([] { set_dout(3, 2); })
                                     << "digital output value refused: 2 is outside 0..1" << 0x3601;
    QTest::newRow("analog port 0") << ServoOff << C([] { set_aout(0, 1.0); })
                                   << "analog output port refused: 0 is outside 1..16" << 0x3607;
    QTest::newRow("analog value 12.5") << ServoOff << C([] { set_aout(1, 12.5); })
                                       << "analog output value refused: 12.5 is outside -10..10" << 0x3607;
    QTest::newRow("global position in coordinate system 5")
        << ServoOff << C([] { set_GPosition("GP001", 5, g_robotAxes, g_syncAxes); })
        << "global position coordinate system refused: 5 is outside 0..3" << 0x5604;

    QTest::newRow("move while the servo is off") << ServoOff << C([] { robot_movj(g_inRange, 50, 0, 50, 50); })
                                                 << "move refused: the servo is not running" << 0x4501;
    QTest::newRow("move speed 0") << ServoRunning << C([] { robot_movj(g_inRange, 0, 0, 50, 50); })
                                  << "move vel refused: 0 is outside 1..100" << 0x4501;
    QTest::newRow("move speed 150") << ServoRunning << C([] { robot_movl(g_inRange, 150, 0, 50, 50); })
                                    << "move vel refused: 150 is outside 1..100" << 0x4502;
    QTest::newRow("move acceleration 0") << ServoRunning << C([] { robot_movj(g_inRange, 50, 0, 0, 50); })
                                         << "move acc refused: 0 is outside 1..100" << 0x4501;
    QTest::newRow("move coordinate system 9") << ServoRunning << C([] { robot_movl(g_inRange, 50, 9, 50, 50); })
                                              << "move coord refused: 9 is outside 0..3" << 0x4502;
    QTest::newRow("axis 1 beyond its limit") << ServoRunning << C([] { robot_movj(g_axis1Beyond, 50, 0, 50, 50); })
                                             << "move refused: axis 1 target 200 is outside -170..170" << 0x4501;
    QTest::newRow("circle through a point beyond axis 2's limit")
        << ServoRunning << C([] { robot_movc(g_inRange, g_axis2Beyond, g_inRange, 50, 0, 50, 50); })
        << "move refused: axis 2 target -150 is outside -135..135" << 0x4503;

    QTest::newRow("run an unknown job") << ServoRunning << C([] { run_job("NOSUCH"); }) << "job not found: NOSUCH" << 0x2501;
    QTest::newRow("open an unknown job") << ServoRunning << C([] { open_job("NOSUCH"); }) << "job not found: NOSUCH" << 0x3114;
    QTest::newRow("delete an unknown job") << ServoRunning << C([] { delete_job("NOSUCH"); })
                                           << "job not found: NOSUCH" << 0x3111;

    QTest::newRow("queue while closed") << ServoRunning << C([] { queue({move(1, {1, 1, 1, 0, 0, 0})}); })
                                        << "queue refused: continuous motion is not open" << 0x50b4;
    QTest::newRow("start while closed") << ServoRunning << C([] { continuous_motion_start(); })
                                        << "start refused: continuous motion is not open" << 0x50b8;
    QTest::newRow("start with nothing queued") << QueueOpen << C([] { continuous_motion_start(); })
                                               << "start refused: the queue is empty" << 0x50b8;
    QTest::newRow("start while the servo is off") << QueueWaiting << C([] { continuous_motion_start(); })
                                                  << "start refused: the servo is not running" << 0x50b8;
    QTest::newRow("queue with an IF") << QueueOpen << C([] { queue({move(1, {1, 1, 1, 0, 0, 0}), record(9)}); })
                                      << "queue refused: instruction 2 of 2: type 9 cannot be executed by the "
                                         "simulator" << 0x50b4;
    QTest::newRow("queue with a target beyond a limit")
        << QueueOpen << C([] { queue({move(2, {0, 0, 0, 0, 0, 400})}); })
        << "queue refused: instruction 1 of 1: axis 6 target 400 is outside -360..360" << 0x50b4;
    QTest::newRow("queue with a local variable speed") << QueueOpen << C([] {
        qrx_motion_record r = move(1, {1, 1, 1, 0, 0, 0});
        r.u.move.velocity = variable("INT", "I001");
        queue({r});
    }) << "queue refused: instruction 1 of 1: speed from \"I001\": only global variables (GB, GI, GD) are held"
       << 0x50b4;
    QTest::newRow("queue calling an unknown job") << QueueOpen << C([] { queue({call("NOSUCH")}); })
                                                  << "queue refused: instruction 1 of 1: job not found: NOSUCH" << 0x50b4;
    QTest::newRow("queue with a port group") << QueueOpen << C([] {
        qrx_motion_record r = output(16, 1, 1);
        r.u.io.group = 1;
        queue({r});
    }) << "queue refused: instruction 1 of 1: port groups cannot be executed" << 0x50b4;
    QTest::newRow("queue reading an input into a local variable")
        << QueueOpen << C([] { queue({input(17, 2, "I004")}); })
        << "queue refused: instruction 1 of 1: variable \"I004\": only global variables (GB, GI, GD) are held" << 0x50b4;
}

void TestRefusals::refusedWithMessageAndNoChange()
{
    QFETCH(Setup, setup);
    QFETCH(familytest::Call, call);
    QFETCH(QString, message);
    QFETCH(int, command);

    QVERIFY(prepare(setup));
    const QString handed = QStringLiteral("错误： ") + message;
    const int before = hosterrors::count(handed);
    const QString state = modelText();

    QVERIFY(qrx_confirm() >= 0); // the controller has taken what prepare() sent
    qrx_clear_refusal();
    QCOMPARE(qrx_last_refusal(nullptr, 0), 0);
    call();
    // Once the controller has answered what came after, the refusal is there.
    QCOMPARE(qrx_confirm(), command);
    QCOMPARE(refusalText(), message);
    QTRY_COMPARE_WITH_TIMEOUT(hosterrors::count(handed), before + 1, 10000);
    QCOMPARE(modelText(), state);
}

// What answers no command is no refusal: a servo alarm (0x6010), warnings.
// The first refusal is kept until the host clears it.
void TestRefusals::keptRefusals()
{
    QVERIFY(prepare(ServoOff));
    QVERIFY(qrx_confirm() >= 0);
    qrx_clear_refusal();
    Json::Value alarm(Json::objectValue);
    alarm["data"] = "机器人1 伺服报警";
    alarm["type"] = 0x6010;
    m_ctl.sim->sendJson(0x2B03, alarm);
    Json::Value warning(Json::objectValue);
    warning["data"] = "a warning";
    m_ctl.sim->sendJson(0x2B04, warning);
    QCOMPARE(qrx_confirm(), 0);
    QCOMPARE(lastMessageText(), QStringLiteral("a warning"));

    set_current_mode(7);
    QCOMPARE(qrx_confirm(), 0x2101);
    set_dout(17, 1);
    QCOMPARE(qrx_confirm(), 0x2101);
    QCOMPARE(refusalText(), QStringLiteral("mode refused: 7 is outside 0..2"));
    QVERIFY(qrx_last_refusal_type() != 0);
    qrx_clear_refusal();
    QCOMPARE(qrx_last_refusal(nullptr, 0), 0);
    QCOMPARE(qrx_last_refusal_type(), 0);
    QCOMPARE(refusalText(), QString());
}

// A refused mode is never reported, so the mode read back is the one held:
// the host's read ends instead of waiting on a mode it would ignore.
void TestRefusals::refusedModeLeavesTheModeReadable()
{
    QVERIFY(m_ctl.quietly([] { set_current_mode(1); }));
    QVERIFY(m_ctl.quietly([] { set_current_mode(7); }));
    QCOMPARE(get_current_mode(), 1);
    QVERIFY(m_ctl.quietly([] { set_current_mode(0); }));
}

// The handler and the link end before the process does.
void TestRefusals::cleanupTestCase()
{
    setErrorHandle(nullptr);
    disconnect_robot();
}

QTEST_GUILESS_MAIN(TestRefusals)
#include "tst_refusals.moc"
