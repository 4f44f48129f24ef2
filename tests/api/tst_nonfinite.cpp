// Commands whose payload would hold a NaN or an infinity: nothing goes on
// the wire (a robot that does not move is the safe outcome) and one qrx.api
// warning names the exported function and the value.

#include "FamilyFixture.h"
#include "support/LogCapture.h"

#include <cmath>
#include <limits>

using familytest::Call;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

double g_pos[7];
double g_posTwo[7] = {1, 2, 3, 4, 5, 6, 7};
double g_posThree[7] = {1, 2, 3, 4, 5, 6, 7};
double g_syncAxes[7] = {0, 0, 0, 0, 0, 0, 0};

// Seven axis values with bad at index at.
double *axesWith(int at, double bad)
{
    for (int i = 0; i < 7; ++i)
        g_pos[i] = i + 1;
    g_pos[at] = bad;
    return g_pos;
}

} // namespace

class TestNonFinite : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void notSent_data();
    void notSent();
    void finiteValuesStillLeave();
    void cleanupTestCase();

private:
    familytest::Controller m_ctl;
};

void TestNonFinite::init()
{
    QVERIFY(m_ctl.startOnce());
}

void TestNonFinite::notSent_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("line");
    QTest::newRow("set_aout nan") << Call([] { set_aout(1, kNan); }) << "set_aout: nan in the payload, not sent";
    QTest::newRow("set_aout inf") << Call([] { set_aout(1, kInf); }) << "set_aout: inf in the payload, not sent";
    QTest::newRow("set_global_variant nan") << Call([] { set_global_variant("GD001", kNan); })
                                            << "set_global_variant: nan in the payload, not sent";
    QTest::newRow("set_global_variant -inf") << Call([] { set_global_variant("GD001", -kInf); })
                                             << "set_global_variant: -inf in the payload, not sent";
    QTest::newRow("robot_movj nan") << Call([] { robot_movj(axesWith(2, kNan), 10, 0, 10, 10); })
                                    << "robot_movj: nan in the payload, not sent";
    QTest::newRow("robot_movl inf last axis") << Call([] { robot_movl(axesWith(5, kInf), 10, 0, 10, 10); })
                                              << "robot_movl: inf in the payload, not sent";
    QTest::newRow("robot_movc nan") << Call([] { robot_movc(axesWith(0, kNan), g_posTwo, g_posThree, 10, 1, 10, 10); })
                                    << "robot_movc: nan in the payload, not sent";
    QTest::newRow("set_GPosition nan") << Call([] { set_GPosition("GP001", 1, axesWith(3, kNan), g_syncAxes); })
                                       << "set_GPosition: nan in the payload, not sent";
    // A query that is not sent is not waited for either (the described wait
    // has no bound: it would never end).
    QTest::newRow("four_point_calculation nan") << Call([] { four_point_calculation(kNan, 1.0, g_pos); })
                                                << "four_point_calculation: nan in the payload, not sent";
}

void TestNonFinite::notSent()
{
    QFETCH(Call, call);
    QFETCH(QString, line);
    LogCapture log("qrx.");
    QCOMPARE(m_ctl.framesOf(call), QStringList());
    QCOMPARE(log.count(line), 1);
    // Refused before framing: the link has nothing to say about it.
    QVERIFY2(!log.contains(QStringLiteral("encodeFrame")), qPrintable(log.lines().join('\n')));
}

void TestNonFinite::finiteValuesStillLeave()
{
    LogCapture log("qrx.api");
    const QStringList frames = m_ctl.framesOf([] {
        set_aout(1, 1e300);
        robot_movj(axesWith(0, -0.0), 10, 0, 10, 10);
    });
    QCOMPARE(frames.size(), 2);
    QVERIFY(!log.contains(QStringLiteral("not sent")));
}

void TestNonFinite::cleanupTestCase()
{
    disconnect_robot();
}

QTEST_MAIN(TestNonFinite)
#include "tst_nonfinite.moc"
