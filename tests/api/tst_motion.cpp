// Motion functions of the host API against qrx-sim: every move's frame on
// the wire (keys, integer and real forms, the deliberate differences between
// the kinds), and the simulated controller carrying the moves out over time.

#include "FamilyFixture.h"

#include <QElapsedTimer>

using familytest::Call;
using familytest::frame;

using Values6 = QVector<double>;

namespace {

double g_a[12] = {10, 20.5, -30, 0.25, 0, 90, 1, 2, 3, 4, 5, 6};
double g_b[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12.125};
double g_c[12] = {-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -11, -12};
double *g_points[2] = {g_a, g_b};

const char *const kA6 = "[10.0,20.50,-30.0,0.250,0.0,90.0]";
const char *const kB6 = "[1.0,2.0,3.0,4.0,5.0,6.0]";
const char *const kC6 = "[-1.0,-2.0,-3.0,-4.0,-5.0,-6.0]";
const char *const kA12 = "[10.0,20.50,-30.0,0.250,0.0,90.0,1.0,2.0,3.0,4.0,5.0,6.0]";
const char *const kB12 = "[1.0,2.0,3.0,4.0,5.0,6.0,7.0,8.0,9.0,10.0,11.0,12.1250]";
const char *const kC12 = "[-1.0,-2.0,-3.0,-4.0,-5.0,-6.0,-7.0,-8.0,-9.0,-10.0,-11.0,-12.0]";

} // namespace

class TestMotion : public QObject
{
    Q_OBJECT

private slots:
    void noLinkResults();
    void init();
    void framesOnTheWire_data();
    void framesOnTheWire();
    void nullPositionsSendNothing();
    void moveTravelsOverTime();
    void circleEndsAtItsLastPoint_data();
    void circleEndsAtItsLastPoint();
    void externalAxesMove();
    void moveRefusedWithServoOff();
    void cleanupTestCase();

private:
    // Polls the position until axis reaches value; the values seen on the way.
    QVector<double> travel(int axis, double value, qint64 *elapsedMs);

    familytest::Controller m_ctl;
};

void TestMotion::noLinkResults()
{
    qrxsim::SimHandle sim(testsupport::loopbackAddress(), 6001);
    QVERIFY(sim.start());
    robot_movj(g_a, 10, 0, 10, 10);
    robot_movl(nullptr, 10, 0, 10, 10);
    robot_movc(g_a, g_b, g_c, 10, 0, 10, 10);
    robot_movca(g_a, g_b, g_c, 10, 0, 10, 10);
    robot_movs(2, g_points, 10, 0, 10, 10);
    robot_extra_movj(g_a, 10, 0, 10, 10);
    robot_extra_movl(g_a, 10, 0);
    robot_extra_movc(g_a, g_b, g_c, 10, 0, 10, 10);
    QCOMPARE(sim.clientCount(), 0);
    QVERIFY(sim.received().isEmpty());
}

void TestMotion::init()
{
    if (familytest::runsWithoutLink())
        return;
    QVERIFY(m_ctl.startOnce());
    setErrorHandle(hosterrors::collect);
    m_ctl.model([](qrxsim::ControllerModel &m) {
        m.motion.waypoints.clear();
        std::fill(m.positionDeg, m.positionDeg + 7, 0.0);
        m.motion.sync.fill(0.0);
        m.servoStatus = 0;
        m.deadman = 0;
    });
    QVERIFY(m_ctl.settle());
}

void TestMotion::framesOnTheWire_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("expected");

    const QString head = QStringLiteral(R"({"acc":20,"coord":1,"dec":30,)");
    QTest::newRow("robot_movj") << Call([] { robot_movj(g_a, 50, 1, 20, 30); })
                                << frame(0x4501, head + QStringLiteral(R"("pos":%1,"robot":1,"vel":50})").arg(kA6));
    QTest::newRow("robot_movl") << Call([] { robot_movl(g_b, 50, 1, 20, 30); })
                                << frame(0x4502, head + QStringLiteral(R"("pos":%1,"robot":1,"vel":50})").arg(kB6));
    QTest::newRow("negative values pass") << Call([] { robot_movj(g_c, -5, -1, -2, -3); })
                                          << frame(0x4501, QStringLiteral(R"({"acc":-2,"coord":-1,"dec":-3,"pos":%1,"robot":1,"vel":-5})").arg(kC6));
    QTest::newRow("robot_movc") << Call([] { robot_movc(g_a, g_b, g_c, 50, 1, 20, 30); })
                                << frame(0x4503, head + QStringLiteral(R"("isFull":false,"posOne":%1,"posThree":%3,"posTwo":%2,"robot":1,"vel":50})")
                                                            .arg(kA6, kB6, kC6));
    QTest::newRow("robot_movca") << Call([] { robot_movca(g_a, g_b, g_c, 50, 1, 20, 30); })
                                 << frame(0x4503, head + QStringLiteral(R"("isFull":true,"posOne":%1,"posThree":%3,"posTwo":%2,"robot":1,"vel":50})")
                                                             .arg(kA6, kB6, kC6));
    QTest::newRow("robot_movs two points") << Call([] { robot_movs(2, g_points, 50, 1, 20, 30); })
                                           << frame(0x4504, head + QStringLiteral(R"("pos":[%1,%2],"robot":1,"vel":50})").arg(kA6, kB6));
    QTest::newRow("robot_movs none") << Call([] { robot_movs(0, g_points, 50, 1, 20, 30); })
                                     << frame(0x4504, QStringLiteral(R"({"acc":20,"coord":1,"dec":30,"robot":1,"vel":50})"));
    QTest::newRow("robot_movs negative") << Call([] { robot_movs(-3, nullptr, 50, 1, 20, 30); })
                                         << frame(0x4504, QStringLiteral(R"({"acc":20,"coord":1,"dec":30,"robot":1,"vel":50})"));
    QTest::newRow("robot_extra_movj") << Call([] { robot_extra_movj(g_a, 50, 1, 20, 30); })
                                      << frame(0x4507, head + QStringLiteral(R"("pos":%1,"robot":1,"vel":50})").arg(kA12));
    QTest::newRow("robot_extra_movl four keys") << Call([] { robot_extra_movl(g_b, 50, 1); })
                                                << frame(0x4508, QStringLiteral(R"({"coord":1,"pos":%1,"robot":1,"vel":50})").arg(kB12));
    QTest::newRow("robot_extra_movc no isFull") << Call([] { robot_extra_movc(g_a, g_b, g_c, 50, 1, 20, 30); })
                                                << frame(0x4509, head + QStringLiteral(R"("posOne":%1,"posThree":%3,"posTwo":%2,"robot":1,"vel":50})")
                                                                            .arg(kA12, kB12, kC12));
}

void TestMotion::framesOnTheWire()
{
    QFETCH(Call, call);
    QFETCH(QString, expected);
    QCOMPARE(m_ctl.framesOf(call), QStringList{expected});
}

void TestMotion::nullPositionsSendNothing()
{
    double *withHole[2] = {g_a, nullptr};
    const QStringList frames = m_ctl.framesOf([&withHole] {
        robot_movj(nullptr, 10, 0, 10, 10);
        robot_movc(g_a, nullptr, g_c, 10, 0, 10, 10);
        robot_movs(2, nullptr, 10, 0, 10, 10);
        robot_movs(2, withHole, 10, 0, 10, 10);
        robot_extra_movl(nullptr, 10, 0);
    });
    QCOMPARE(frames, QStringList{});
}

QVector<double> TestMotion::travel(int axis, double value, qint64 *elapsedMs)
{
    QVector<double> seen;
    QElapsedTimer clock;
    clock.start();
    double pos[6] = {};
    do {
        get_current_position(pos, 0);
        if (seen.isEmpty() || seen.last() != pos[axis])
            seen << pos[axis];
    } while (qAbs(pos[axis] - value) > 1e-9 && clock.elapsed() < 20000);
    *elapsedMs = clock.elapsed();
    return seen;
}

// 30 units at 50 % of 100 units/s: about 0.6 s, passing values in between.
void TestMotion::moveTravelsOverTime()
{
    QVERIFY(m_ctl.servoRunning());
    double target[6] = {30, -15, 0, 0, 0, 0};
    robot_movj(target, 50, 0, 10, 10);
    qint64 elapsed = 0;
    const QVector<double> seen = travel(0, 30.0, &elapsed);
    QCOMPARE(seen.last(), 30.0);
    QVERIFY2(elapsed >= 400, qPrintable(QString::number(elapsed)));
    QVERIFY2(seen.size() >= 3, "no values between start and target");
    for (int i = 1; i < seen.size(); ++i)
        QVERIFY(seen[i] > seen[i - 1]);
    double pos[6] = {};
    get_current_position(pos, 1);
    QCOMPARE(pos[1], -15.0); // all axes arrive together
}

void TestMotion::circleEndsAtItsLastPoint_data()
{
    QTest::addColumn<bool>("full");
    QTest::addColumn<Values6>("end");
    QTest::newRow("arc ends at the third point") << false << Values6{-1, -2, -3, -4, -5, -6};
    QTest::newRow("full circle returns to the first") << true << Values6{10, 20.5, -30, 0.25, 0, 90};
}

// The controller passes the three points in order; a full circle comes
// back to the first one.
void TestMotion::circleEndsAtItsLastPoint()
{
    QFETCH(bool, full);
    QFETCH(Values6, end);
    QVERIFY(m_ctl.servoRunning());
    // framesOf() returns once the controller holds the move.
    QCOMPARE(m_ctl.framesOf([full] {
                 if (full)
                     robot_movca(g_a, g_b, g_c, 100, 0, 10, 10);
                 else
                     robot_movc(g_a, g_b, g_c, 100, 0, 10, 10);
             }).size(),
             1);
    bool moving = true;
    QTRY_VERIFY_WITH_TIMEOUT(
        (m_ctl.model([&moving](qrxsim::ControllerModel &m) { moving = m.motion.busy(); }), !moving), 20000);
    double pos[6] = {};
    get_current_position(pos, 0);
    for (int i = 0; i < 6; ++i)
        QCOMPARE(pos[i], end[i]);
    int moves = 0;
    m_ctl.model([&moves](qrxsim::ControllerModel &m) { moves = m.motion.moves; });
    QVERIFY(moves >= 1);
}

void TestMotion::externalAxesMove()
{
    QVERIFY(m_ctl.servoRunning());
    robot_extra_movl(g_b, 100, 0);
    double sync[5] = {};
    QTRY_COMPARE_WITH_TIMEOUT((get_current_sync_position(sync), sync[4]), 11.0, 20000);
    QCOMPARE(sync[0], 7.0);
    double pos[6] = {};
    get_current_position(pos, 0);
    QCOMPARE(pos[5], 6.0);
}

void TestMotion::moveRefusedWithServoOff()
{
    QVERIFY(m_ctl.holdServo(0));
    robot_movj(g_a, 100, 0, 10, 10);
    QTRY_VERIFY_WITH_TIMEOUT(hosterrors::seen(QStringLiteral("错误： move refused: the servo is not running")), 10000);
    double pos[6] = {-1, -1, -1, -1, -1, -1};
    get_current_position(pos, 0);
    QCOMPARE(pos[0], 0.0);
}

// The handler and the link end before the process does: a message that
// arrives during exit must not reach a handler whose texts are gone.
void TestMotion::cleanupTestCase()
{
    setErrorHandle(nullptr);
    disconnect_robot();
}

QTEST_GUILESS_MAIN(TestMotion)
#include "tst_motion.moc"
