// Tool, user frame and calibration functions of the host API against
// qrx-sim: the frames on the wire, the zero-offset bounds, the values the
// waiting functions return, set_axis_zero_position's answers, and the
// results without a link.

#include "FamilyFixture.h"
#include "sim/Session.h"

using familytest::Call;
using familytest::frame;

namespace {

double g_tool[6] = {1.5, 2, 3, 90, 0, -45};

} // namespace

class TestTools : public QObject
{
    Q_OBJECT

private slots:
    void noLinkResults();
    void init();
    void framesOnTheWire_data();
    void framesOnTheWire();
    void currentTool();
    void toolParametersReadBack();
    void fourPointCalibration();
    void dhResult_data();
    void dhResult();
    void axisZeroPosition_data();
    void axisZeroPosition();
    void zeroPositionNeedsItsOwnAnswer();

private:
    familytest::Controller m_ctl;
};

void TestTools::noLinkResults()
{
    qrxsim::SimHandle sim(testsupport::loopbackAddress(), 6001);
    QVERIFY(sim.start());
    double out[9] = {-1, -1, -1, -1, -1, -1, -1, -1, -1};
    switch_tool_hand(1);
    QCOMPARE(get_current_tool_hand(), 0);
    set_tool_hand_param(1, g_tool);
    query_tool_hand_param(1, out);
    set_user_coord_number(1);
    ask_four_point(out); // no Robot to ask: returns, nothing written
    four_point_mark(1, 1);
    four_point_calculation(1.0, 2.0, out);
    QCOMPARE(result_for_DH(), false);
    QCOMPARE(set_axis_zero_position(1), true); // deliberately true
    set_zero_pos_shift(1, 1.0);
    for (double v : out)
        QCOMPARE(v, -1.0);
    QCOMPARE(sim.clientCount(), 0);
}

void TestTools::init()
{
    if (familytest::runsWithoutLink())
        return;
    QVERIFY(m_ctl.startOnce());
    m_ctl.model([](qrxsim::ControllerModel &m) {
        m.servoStatus = 0;
        m.deadman = 0;
        m.dhApply = 1;
        std::fill(m.fourPointStatus, m.fourPointStatus + 4, 0);
    });
    QVERIFY(m_ctl.holdServo(0));
    QVERIFY(m_ctl.settle());
}

void TestTools::framesOnTheWire_data()
{
    familytest::frameColumns();

    QTest::newRow("switch_tool_hand") << Call([] { switch_tool_hand(3); })
                                      << QStringList{frame(0x380a, R"({"curToolNum":3,"robot":1})")};
    QTest::newRow("get_current_tool_hand") << Call([] { get_current_tool_hand(); })
                                           << QStringList{frame(0x380b, R"({"robot":1})")};
    QTest::newRow("set_tool_hand_param")
        << Call([] { set_tool_hand_param(2, g_tool); })
        << QStringList{frame(0x3805, R"({"robot":1,"tool":{"A":90.0,"B":0.0,"C":-45.0,"x":1.50,"y":2.0,"z":3.0},"toolNum":2})")};
    QTest::newRow("set_tool_hand_param null") << Call([] { set_tool_hand_param(2, nullptr); }) << QStringList{};
    QTest::newRow("query_tool_hand_param") << Call([] { query_tool_hand_param(2, nullptr); })
                                           << QStringList{frame(0x3806, R"({"toolNum":2})")};
    QTest::newRow("set_user_coord_number, two frames")
        << Call([] { set_user_coord_number(2); })
        << QStringList{frame(0x3c08, R"({"robot":1,"userNum":2})"),
                       frame(0x3c0a, R"({"inquire":"Calibration","userNum":2})")};
    QTest::newRow("ask_four_point") << Call([] { ask_four_point(nullptr); }) << QStringList{frame(0x7207, nullptr)};
    QTest::newRow("four_point_mark") << Call([] { four_point_mark(1, 1); })
                                     << QStringList{frame(0x7202, R"({"pointNum":1,"status":1})")};
    QTest::newRow("four_point_calculation") << Call([] { four_point_calculation(0.5, 2, nullptr); })
                                            << QStringList{frame(0x7201, R"({"ParamOf4Points":[0.50,2.0]})")};
    QTest::newRow("result_for_DH") << Call([] { result_for_DH(); }) << QStringList{frame(0x7205, nullptr)};
    QTest::newRow("set_axis_zero_position") << Call([] { set_axis_zero_position(2); })
                                            << QStringList{frame(0x3301, R"({"axis":2,"clearEncoder":false})")};
    QTest::newRow("zero shift 360 kept") << Call([] { set_zero_pos_shift(3, 360.0); })
                                         << QStringList{frame(0x3307, R"({"axis":3,"robot":1,"value":[0,0,360.0,0,0,0,0]})")};
    QTest::newRow("zero shift -360 kept") << Call([] { set_zero_pos_shift(1, -360.0); })
                                          << QStringList{frame(0x3307, R"({"axis":1,"robot":1,"value":[-360.0,0,0,0,0,0,0]})")};
    QTest::newRow("zero shift axis 6") << Call([] { set_zero_pos_shift(6, 0.5); })
                                       << QStringList{frame(0x3307, R"({"axis":6,"robot":1,"value":[0,0,0,0,0,0.50,0]})")};
    QTest::newRow("zero shift 360.5") << Call([] { set_zero_pos_shift(3, 360.5); }) << QStringList{};
    QTest::newRow("zero shift -360.5") << Call([] { set_zero_pos_shift(3, -360.5); }) << QStringList{};
    QTest::newRow("zero shift axis 7") << Call([] { set_zero_pos_shift(7, 1.0); }) << QStringList{};
    QTest::newRow("zero shift axis 0") << Call([] { set_zero_pos_shift(0, 1.0); }) << QStringList{};
}

void TestTools::framesOnTheWire()
{
    m_ctl.compareRowFrames();
}

// The selection is reported to every client; that report wakes waiting
// calls too, so each query starts once it has come in.
void TestTools::currentTool()
{
    QVERIFY(m_ctl.quietly([] { switch_tool_hand(5); }));
    QCOMPARE(get_current_tool_hand(), 5);
    QVERIFY(m_ctl.quietly([] { switch_tool_hand(0); }));
    QCOMPARE(get_current_tool_hand(), 0);
}

void TestTools::toolParametersReadBack()
{
    set_tool_hand_param(4, g_tool);
    double out[7] = {-1, -1, -1, -1, -1, -1, -1};
    query_tool_hand_param(4, out);
    for (int i = 0; i < 6; ++i)
        QCOMPARE(out[i], g_tool[i]);
    QCOMPARE(out[6], -1.0); // six values, not one more

    // A tool number outside the Robot's cache: the caller's buffer stays.
    double none[6] = {-1, -1, -1, -1, -1, -1};
    query_tool_hand_param(Robot::kToolCount, none);
    QCOMPARE(none[0], -1.0);
}

// The controller's four-point data: marks of points 1..4, the result,
// three lengths and the angle; the calculation: result, lengths, angle.
void TestTools::fourPointCalibration()
{
    four_point_mark(1, 1);
    four_point_mark(3, 1);
    double data[10];
    std::fill(data, data + 10, -1.0);
    ask_four_point(data);
    const double partial[10] = {1, 0, 1, 0, 0, 0.5, 0.25, 0.125, 0.75, -1};
    for (int i = 0; i < 10; ++i)
        QCOMPARE(data[i], partial[i]);

    four_point_mark(2, 1);
    four_point_mark(4, 1);
    double result[6];
    std::fill(result, result + 6, -1.0);
    four_point_calculation(0.5, 2.0, result);
    const double done[6] = {1, 0.5, 0.25, 0.125, 0.75, -1};
    for (int i = 0; i < 6; ++i)
        QCOMPARE(result[i], done[i]);
    std::vector<double> params;
    m_ctl.model([&params](qrxsim::ControllerModel &m) { params = m.fourPointParams; });
    QCOMPARE(params, (std::vector<double>{0.5, 2.0}));
}

void TestTools::dhResult_data()
{
    QTest::addColumn<int>("apply");
    QTest::addColumn<bool>("expected");
    QTest::newRow("applied") << 1 << true;
    QTest::newRow("not applied") << 0 << false;
}

void TestTools::dhResult()
{
    QFETCH(int, apply);
    QFETCH(bool, expected);
    m_ctl.model([apply](qrxsim::ControllerModel &m) { m.dhApply = apply; });
    QCOMPARE(result_for_DH(), expected);
}

void TestTools::axisZeroPosition_data()
{
    QTest::addColumn<int>("servo");
    QTest::addColumn<bool>("expected");
    QTest::addColumn<bool>("sends");
    QTest::newRow("servo off") << 0 << true << true;
    QTest::newRow("servo ready") << 1 << true << true;
    QTest::newRow("servo state 2") << 2 << false << false;
    QTest::newRow("drives running") << 3 << false << false;
}

void TestTools::axisZeroPosition()
{
    QFETCH(int, servo);
    QFETCH(bool, expected);
    QFETCH(bool, sends);
    QVERIFY(m_ctl.holdServo(servo));
    bool result = !expected;
    const QStringList frames = m_ctl.framesOf([&result] { result = set_axis_zero_position(4); });
    QCOMPARE(result, expected);
    QCOMPARE(frames.size(), sends ? 1 : 0);
}

// The success flag is cleared before each request: a waking reply of
// another kind ends the wait with false. (Last case: the handler stays.)
void TestTools::zeroPositionNeedsItsOwnAnswer()
{
    QVERIFY(set_axis_zero_position(1));
    m_ctl.sim->setHandler(0x3301, [](qrxsim::Session &s, const qrxsim::ReceivedFrame &) {
        Json::Value v(Json::objectValue);
        v["coord"] = 0;
        v["robot"] = 1;
        s.replyJson(0x2203, v);
    });
    QCOMPARE(set_axis_zero_position(1), false);
}

QTEST_GUILESS_MAIN(TestTools)
#include "tst_tools.moc"
