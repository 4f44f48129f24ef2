// Reports that lack the keys their handler reads change nothing and emit
// nothing, but still wake a waiting call: one row per key-reading handler,
// with a cache field set to a known value first by a report that carries
// the key, then the keyless report, which must leave it as it was. Also the
// signals no other test observes, and the mode handler's pause before it
// wakes.

#include "RobotFixture.h"
#include "ThreadSpy.h"

#include <QElapsedTimer>
#include <QtTest>

namespace {

using Reader = double (*)(const Robot &);

} // namespace
Q_DECLARE_METATYPE(Reader)

class tst_Keyless : public RobotTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(startRobot()); }

    void init() { robot->setCurrentRobot(1); }

    void keylessChangesNothing_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("withKeys");   // sets the cache to `expected`
        QTest::addColumn<QByteArray>("keyless");
        QTest::addColumn<QByteArray>("signal");     // must not be emitted by the keyless report
        QTest::addColumn<Reader>("read");
        QTest::addColumn<double>("expected");

        const Reader servo = [](const Robot &r) { return double(r.servoStatus); };
        const Reader coord = [](const Robot &r) { return double(r.coordinate); };
        const Reader speed = [](const Robot &r) { return double(r.speed); };
        const Reader tool = [](const Robot &r) { return double(r.currentTool); };
        const Reader deadman = [](const Robot &r) { return double(r.deadman); };
        const Reader robots = [](const Robot &r) { return double(r.robotCount); };
        const Reader current = [](const Robot &r) { return double(r.currentRobot()); };
        const Reader position = [](const Robot &r) { return r.currentPosition[0]; };
        const Reader dout = [](const Robot &r) { return r.dout[0]; };
        const Reader load = [](const Robot &r) { return r.motorOverload[0]; };
        const Reader running = [](const Robot &r) { return double(r.runningStatus); };
        const Reader line = [](const Robot &r) { return double(r.currentRunLine); };
        const Reader type = [](const Robot &r) { return double(r.robotType); };
        const Reader toolZ = [](const Robot &r) { return r.toolParameters[2][2]; };
        const Reader userFrame = [](const Robot &r) { return double(r.currentUserFrame); };
        const Reader global = [](const Robot &r) { return double(r.globalVarValue); };

        QTest::newRow("servo") << 0x2003 << QByteArray(R"({"mode":0,"robot":1,"status":3})") << QByteArray(R"({"x":1})")
                               << QByteArray(SIGNAL(robot_servo_changed(QByteArray))) << servo << 3.0;
        QTest::newRow("coordinate") << 0x2203 << QByteArray(R"({"coord":2,"robot":1})") << QByteArray(R"({"robot":1})")
                                    << QByteArray(SIGNAL(robot_coord_changed(uchar))) << coord << 2.0;
        QTest::newRow("speed") << 0x2603 << QByteArray(R"({"robot":1,"speed":40})") << QByteArray(R"({"robot":1})")
                               << QByteArray(SIGNAL(robot_speed_changed(schar))) << speed << 40.0;
        QTest::newRow("tool") << 0x380C << QByteArray(R"({"curToolNum":5,"robot":1})") << QByteArray(R"({"robot":1})")
                              << QByteArray(SIGNAL(robot_tool_changed(int))) << tool << 5.0;
        QTest::newRow("deadman") << 0x2303 << QByteArray(R"({"deadman":1})") << QByteArray(R"({"x":1})")
                                 << QByteArray(SIGNAL(deadmanStateChange(int))) << deadman << 1.0;
        QTest::newRow("robot count, array") << 0x2E06 << QByteArray(R"({"sum":2})") << QByteArray("[2]")
                                            << QByteArray(SIGNAL(robot_change_RobotSum(int))) << robots << 2.0;
        QTest::newRow("current robot") << 0x5003 << QByteArray(R"({"mode":0,"robot":2})") << QByteArray(R"({"mode":0})")
                                       << QByteArray(SIGNAL(robot_change_CurRobot(int, int))) << current << 2.0;
        QTest::newRow("position") << 0x2F08 << QByteArray(R"({"coord":0,"pos":[11,0,0,0,0,0,0],"robot":1})")
                                  << QByteArray(R"({"coord":0,"robot":1})")
                                  << QByteArray(SIGNAL(receive_moreRobot_CurPosition(QByteArray, QByteArray))) << position
                                  << 11.0;
        QTest::newRow("digital outputs") << 0x3603 << QByteArray(R"({"status":[1,0]})") << QByteArray(R"({"port":1})")
                                         << QByteArray(SIGNAL(robot_dout_display(QByteArray))) << dout << 1.0;
        QTest::newRow("motor load") << 0x2A0B << QByteArray(R"({"motorOverload":[7.5]})") << QByteArray(R"({"robot":1})")
                                    << QByteArray(SIGNAL(signal_robotReceivedMotorLoad(QByteArray))) << load << 7.5;
        QTest::newRow("running state") << 0x3D03 << QByteArray(R"({"robot":1,"status":2})") << QByteArray(R"({"robot":1})")
                                       << QByteArray(SIGNAL(pro_run_status(QByteArray))) << running << 2.0;
        QTest::newRow("job line") << 0x3504 << QByteArray(R"({"num":9})") << QByteArray(R"({"line":3})")
                                  << QByteArray(SIGNAL(robot_JobfiletoLine(QByteArray))) << line << 9.0;
        QTest::newRow("robot type") << 0x2E03 << QByteArray(R"({"type":4})") << QByteArray(R"({"robot":1})")
                                    << QByteArray() << type << -1.0;
        QTest::newRow("tool parameters") << 0x3807 << QByteArray(R"({"toolDeg":[0,0,3.5,0,0,0],"toolNum":2})")
                                         << QByteArray(R"({"note":"x"})") << QByteArray() << toolZ << 3.5;
        QTest::newRow("user frame") << 0x3C0C << QByteArray(R"({"curUserNum":4,"robot":1})") << QByteArray(R"({"x":0})")
                                    << QByteArray() << userFrame << 4.0;
        QTest::newRow("global variable") << 0x560C << QByteArray(R"({"varName":"GD001","varType":3,"varValue":2.5})")
                                         << QByteArray(R"({"robot":1})")
                                         << QByteArray(SIGNAL(robot_get_oneglobalVariant(QByteArray))) << global << 2.5;
    }

    void keylessChangesNothing()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, withKeys);
        QFETCH(QByteArray, keyless);
        QFETCH(QByteArray, signal);
        QFETCH(Reader, read);
        QFETCH(double, expected);

        QVERIFY(fixture.sendWaking(quint16(code), withKeys));
        QVERIFY(fixture.flush());
        const double before = read(*robot);
        if (expected >= 0)
            QCOMPARE(before, expected);

        std::unique_ptr<ThreadSpy> spy;
        if (!signal.isEmpty()) {
            spy.reset(new ThreadSpy(robot, signal.constData()));
            QVERIFY(spy->isValid());
        }
        QVERIFY2(fixture.sendWaking(quint16(code), keyless), "the keyless report still wakes the waiter");
        QVERIFY(fixture.flush());
        QCOMPARE(read(*robot), before);
        if (spy)
            QCOMPARE(spy->count(), 0);
    }

    // Signals that no other test observes, each from the report that leads
    // to it, with the argument it carries.
    void unobservedSignals_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QByteArray>("signal");
        QTest::addColumn<QVariant>("argument");

        const QByteArray speed(R"({"maxVel":[2],"vel":[1]})");
        const QByteArray torque(R"({"maxTorq":[4],"theoTorq":[5],"torq":[3]})");
        QTest::newRow("motor speed") << 0x2A05 << speed
                                     << QByteArray(SIGNAL(robot_tool_receiveMotorSpeed(QByteArray)))
                                     << QVariant(speed + "\n");
        QTest::newRow("motor torque") << 0x2A07 << torque
                                      << QByteArray(SIGNAL(robot_tool_receiveMotorTorque(QByteArray)))
                                      << QVariant(torque + "\n");
        QTest::newRow("theoretical torque") << 0x2A07 << torque
                                            << QByteArray(SIGNAL(robot_tool_receiveMotorTorqueTheo(QByteArray)))
                                            << QVariant(torque + "\n");
        QTest::newRow("motor load") << 0x2A0B << QByteArray(R"({"motorOverload":[1]})")
                                    << QByteArray(SIGNAL(signal_robotReceivedMotorLoad(QByteArray)))
                                    << QVariant(QByteArray("{\"motorOverload\":[1]}\n"));
        QTest::newRow("digital inputs") << 0x3606 << QByteArray(R"({"status":[1]})")
                                        << QByteArray(SIGNAL(robot_din_display(QByteArray)))
                                        << QVariant(QByteArray("{\"status\":[1]}\n"));
        QTest::newRow("analog outputs") << 0x3609 << QByteArray(R"({"status":[2.5]})")
                                        << QByteArray(SIGNAL(robot_aout_display(QByteArray)))
                                        << QVariant(QByteArray("{\"status\":[2.5]}\n"));
        QTest::newRow("analog inputs") << 0x360B << QByteArray(R"({"status":[0.5]})")
                                       << QByteArray(SIGNAL(robot_ain_display(QByteArray)))
                                       << QVariant(QByteArray("{\"status\":[0.5]}\n"));
        QTest::newRow("cycle index") << 0x5013 << QByteArray(R"({"count":4,"index":2,"robot":3})")
                                     << QByteArray(SIGNAL(sPBtnState(int))) << QVariant(3);
    }

    void unobservedSignals()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, payload);
        QFETCH(QByteArray, signal);
        QFETCH(QVariant, argument);
        ThreadSpy spy(robot, signal.constData());
        QVERIFY(spy.isValid());
        QVERIFY(fixture.sendWaking(quint16(code), payload));
        QVERIFY(fixture.flush());
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).value(0), argument);
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

    // The running-mode notification has no code of its own; its slot hands
    // the value on unchanged.
    void runningStatusChanged()
    {
        QSignalSpy spy(robot, SIGNAL(robot_running_status_changed(uchar)));
        QVERIFY(QMetaObject::invokeMethod(robot, "robot_net_slot_runningStatusProcess", Qt::DirectConnection,
                                          Q_ARG(quint8, 7)));
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).value<uchar>(), uchar(7));
    }
};

QTEST_GUILESS_MAIN(tst_Keyless)
#include "tst_keyless.moc"
