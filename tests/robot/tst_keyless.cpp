// Reports of the families still on their handler slots that lack the keys
// their handler reads change nothing and emit nothing, but still wake a
// waiting call: one row per key-reading handler, with a cache field set to
// a known value first by a report that carries the key, then the keyless
// report, which must leave it as it was, emit no signal and write no log
// line. Handlers that hold no state are checked by their signal (which the
// report with the key must emit) and their line. (The decoded families are
// checked without a socket by tst_decoders.) Also the mode report's pause
// before it wakes, through the link.

#include "RobotFixture.h"
#include "ThreadSpy.h"
#include "support/LogCapture.h"

#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QtTest>

namespace {

using Reader = double (*)(const Robot &);

} // namespace
Q_DECLARE_METATYPE(Reader)

class tst_Keyless : public RobotTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("qrx.robot.debug=true")); // the handlers' lines
        QVERIFY(startRobot());
    }

    void init() { robot->setCurrentRobot(1); }

    void keylessChangesNothing_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("withKeys");   // sets the cache to `expected`
        QTest::addColumn<QByteArray>("keyless");
        QTest::addColumn<QByteArray>("signal");     // must not be emitted by the keyless report
        QTest::addColumn<Reader>("read");           // null: the handler holds no state
        QTest::addColumn<double>("expected");
        QTest::addColumn<QString>("line");          // a piece of the handler's log line, or empty

        const Reader type = [](const Robot &r) { return double(r.robotType); };
        const Reader toolZ = [](const Robot &r) { return r.toolParameters[2][2]; };
        const Reader userFrame = [](const Robot &r) { return double(r.currentUserFrame); };

        QTest::newRow("robot type") << 0x2E03 << QByteArray(R"({"type":4})") << QByteArray(R"({"robot":1})")
                                    << QByteArray() << type << -1.0 << QString();
        QTest::newRow("tool parameters") << 0x3807 << QByteArray(R"({"toolDeg":[0,0,3.5,0,0,0],"toolNum":2})")
                                         << QByteArray(R"({"note":"x"})") << QByteArray() << toolZ << 3.5 << QString();
        QTest::newRow("user frame") << 0x3C0C << QByteArray(R"({"curUserNum":4,"robot":1})") << QByteArray(R"({"x":0})")
                                    << QByteArray() << userFrame << 4.0 << QString();

        // Handlers that hold no state: the signal and the line are all they do.
        const Reader none = nullptr;
        const QByteArray other(R"({"robot":1})");
        QTest::newRow("joint parameters, AxisNum beside Joint")
            << 0x3B03 << QByteArray(R"({"Joint":{"AxisNum":3}})") << QByteArray(R"({"AxisNum":3})")
            << QByteArray(SIGNAL(robot_joint_para(int, QByteArray))) << none << -1.0 << QStringLiteral("接收关节参数数据");
        QTest::newRow("joint jog limits") << 0x2606 << QByteArray(R"({"AxisNum":2,"MaxSpeed":30})") << other
                                          << QByteArray(SIGNAL(robot_jointInchSpeed_data_check(int, QByteArray))) << none
                                          << -1.0 << QStringLiteral("接收关节轴最大点动速度");
        QTest::newRow("interpolation") << 0x2803 << QByteArray(R"({"interpolationMethod":1})") << other
                                       << QByteArray(SIGNAL(robot_interpolationMode_data_check(QByteArray))) << none
                                       << -1.0 << QStringLiteral("接收机器人插补方式");
        QTest::newRow("sensitivity") << 0x260C << QByteArray(R"({"Sensitivity":3})") << other
                                     << QByteArray(SIGNAL(robot_sensitivity_data_check(QByteArray))) << none << -1.0
                                     << QStringLiteral("接收点动灵敏度");
        QTest::newRow("DH values") << 0x3E05 << QByteArray(R"({"Link":[1,2,3,4,5,6],"theta":0.5})") << other
                                   << QByteArray(SIGNAL(signal_DHreviewFinish())) << none << -1.0
                                   << QStringLiteral("接收DH参数数据");
        QTest::newRow("DH state") << 0x3A03 << QByteArray(R"({"pitch":2.5,"upsideDown":1})") << other
                                  << QByteArray(SIGNAL(robot_user_dhParaState(QStringList))) << none << -1.0
                                  << QStringLiteral("接收DH参数数据");
        QTest::newRow("tool calibration result") << 0x3804 << QByteArray(R"({"result":1})") << other
                                                 << QByteArray(SIGNAL(robot_count_success(int))) << none << -1.0
                                                 << QStringLiteral("接收工具手标定");
        QTest::newRow("zero point from the 20-point result")
            << 0x7106 << QByteArray(R"({"apply":1})") << other
            << QByteArray(SIGNAL(robot_ResetResult_ToZeroPoint(int))) << none << -1.0 << QStringLiteral("20点标定");
        QTest::newRow("weld equipment") << 0x4003 << QByteArray(R"({"arconDetect":1,"velocity":3})") << other
                                        << QByteArray(SIGNAL(robot_weldCheckData(QByteArray))) << none << -1.0
                                        << QStringLiteral("接收焊接装备数据");
        QTest::newRow("unsafe point") << 0x2F16 << QByteArray(R"({"isSync":[1],"safePos":[0]})") << other
                                      << QByteArray() << none << -1.0 << QStringLiteral("不在安全位置");

        const QByteArray point(R"({"pointNum":2,"pos":[1,2,3,4,5,6]})");
        QTest::newRow("2-point tool point") << 0x3803 << point << other
                                            << QByteArray(SIGNAL(robot_tool_check(int, QByteArray))) << none << -1.0
                                            << QStringLiteral("接收工具手标定数据");
        QTest::newRow("20-point tool point") << 0x7103 << point << other
                                             << QByteArray(SIGNAL(robot_tool_checkFor20(int, QByteArray))) << none
                                             << -1.0 << QStringLiteral("20点标定数据");
        QTest::newRow("20-point taught point")
            << 0x710B << point << other << QByteArray(SIGNAL(robot_tool_receive20MarkedPoint(int, QByteArray)))
            << none << -1.0 << QStringLiteral("20点标定中已经标定数据");
        QTest::newRow("7-point taught point")
            << 0x3813 << point << other << QByteArray(SIGNAL(robot_tool_receive7MarkedPoint(int, QByteArray)))
            << none << -1.0 << QStringLiteral("7点标定中已经标定数据");

        // Calibration results that also fill a cache.
        const Reader fourPoint = [](const Robot &r) { return r.fourPointData[5]; };
        const Reader fourPointResult = [](const Robot &r) { return r.fourPointResult[1]; };
        const Reader dhApplied = [](const Robot &r) { return double(r.dhResult); };
        QTest::newRow("four-point calculation")
            << 0x7208 << QByteArray(R"({"dtheta":1,"length":[4,5,6],"result":1,"status":[1,1,0,0]})") << other
            << QByteArray(SIGNAL(robot_received4Point(QByteArray))) << fourPoint << 4.0 << QString();
        QTest::newRow("four-point result") << 0x7204 << QByteArray(R"({"dtheta":1,"length":[7,8,9],"result":1})")
                                           << other << QByteArray(SIGNAL(robot_count_successFor4(QByteArray)))
                                           << fourPointResult << 7.0 << QString();
        QTest::newRow("DH calibration applied") << 0x7206 << QByteArray(R"({"apply":1})") << other
                                                << QByteArray(SIGNAL(robot_receivedresultForDH(QByteArray)))
                                                << dhApplied << 1.0 << QString();
    }

    void keylessChangesNothing()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, withKeys);
        QFETCH(QByteArray, keyless);
        QFETCH(QByteArray, signal);
        QFETCH(Reader, read);
        QFETCH(double, expected);
        QFETCH(QString, line);

        std::unique_ptr<ThreadSpy> spy;
        if (!signal.isEmpty()) {
            spy.reset(new ThreadSpy(robot, signal.constData()));
            QVERIFY(spy->isValid());
        }
        LogCapture log("qrx.robot");
        QVERIFY(fixture.sendWaking(quint16(code), withKeys));
        QVERIFY(fixture.flush());
        const double before = read ? read(*robot) : 0.0;
        if (expected >= 0)
            QCOMPARE(before, expected);
        const int emitted = spy ? spy->count() : 0;
        if (!read && spy) // a handler without state shows the report by its signal
            QVERIFY(emitted > 0);
        if (!line.isEmpty() && !read)
            QVERIFY2(log.contains(line), qPrintable(log.lines().join('\n')));

        log.clear();
        QVERIFY2(fixture.sendWaking(quint16(code), keyless), "the keyless report still wakes the waiter");
        QVERIFY(fixture.flush());
        if (read)
            QCOMPARE(read(*robot), before);
        if (spy)
            QCOMPARE(spy->count(), emitted);
        if (!line.isEmpty())
            QVERIFY2(!log.contains(line), qPrintable(log.lines().join('\n')));
    }

    // The mode report settles for 200 ms before the waiters wake.
    void modeReportPausesBeforeWaking()
    {
        QElapsedTimer clock;
        clock.start();
        QVERIFY(fixture.sendWaking(0x2103, R"({"mode":1})"));
        QVERIFY2(clock.elapsed() >= 200, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(fixture.flush());
        QCOMPARE(robot->operationMode, 1);
    }
};

QTEST_GUILESS_MAIN(tst_Keyless)
#include "tst_keyless.moc"
