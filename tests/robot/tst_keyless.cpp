// Reports that lack the keys their handler reads change nothing and emit
// nothing, but still wake a waiting call: one row per key-reading handler,
// with a cache field set to a known value first by a report that carries
// the key, then the keyless report, which must leave it as it was, emit no
// signal and write no log line. Handlers that hold no state are checked by
// their signal (which the report with the key must emit) and their line. Also the
// signals no other test observes, and the mode handler's pause before it
// wakes.

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
                               << QByteArray(SIGNAL(robot_servo_changed(QByteArray))) << servo << 3.0 << QString();
        const Reader mode = [](const Robot &r) { return double(r.operationMode); };
        QTest::newRow("operation mode") << 0x2103 << QByteArray(R"({"mode":2})") << QByteArray(R"({"robot":1})")
                                        << QByteArray(SIGNAL(robot_mode_changed(OperationMode))) << mode << 2.0
                                        << QString();
        QTest::newRow("coordinate") << 0x2203 << QByteArray(R"({"coord":2,"robot":1})") << QByteArray(R"({"robot":1})")
                                    << QByteArray(SIGNAL(robot_coord_changed(uchar))) << coord << 2.0 << QString();
        QTest::newRow("speed") << 0x2603 << QByteArray(R"({"robot":1,"speed":40})") << QByteArray(R"({"robot":1})")
                               << QByteArray(SIGNAL(robot_speed_changed(schar))) << speed << 40.0 << QString();
        QTest::newRow("tool") << 0x380C << QByteArray(R"({"curToolNum":5,"robot":1})") << QByteArray(R"({"robot":1})")
                              << QByteArray(SIGNAL(robot_tool_changed(int))) << tool << 5.0 << QString();
        QTest::newRow("deadman") << 0x2303 << QByteArray(R"({"deadman":1})") << QByteArray(R"({"x":1})")
                                 << QByteArray(SIGNAL(deadmanStateChange(int))) << deadman << 1.0 << QString();
        QTest::newRow("robot count, array") << 0x2E06 << QByteArray(R"({"sum":2})") << QByteArray("[2]")
                                            << QByteArray(SIGNAL(robot_change_RobotSum(int))) << robots << 2.0 << QString();
        QTest::newRow("current robot") << 0x5003 << QByteArray(R"({"mode":0,"robot":2})") << QByteArray(R"({"mode":0})")
                                       << QByteArray(SIGNAL(robot_change_CurRobot(int, int))) << current << 2.0 << QString();
        QTest::newRow("position") << 0x2F08 << QByteArray(R"({"coord":0,"pos":[11,0,0,0,0,0,0],"robot":1})")
                                  << QByteArray(R"({"coord":0,"robot":1})")
                                  << QByteArray(SIGNAL(receive_moreRobot_CurPosition(QByteArray, QByteArray))) << position
                                  << 11.0 << QString();
        QTest::newRow("digital outputs") << 0x3603 << QByteArray(R"({"status":[1,0]})") << QByteArray(R"({"port":1})")
                                         << QByteArray(SIGNAL(robot_dout_display(QByteArray))) << dout << 1.0 << QString();
        QTest::newRow("motor load") << 0x2A0B << QByteArray(R"({"motorOverload":[7.5]})") << QByteArray(R"({"robot":1})")
                                    << QByteArray(SIGNAL(signal_robotReceivedMotorLoad(QByteArray))) << load << 7.5 << QString();
        QTest::newRow("running state") << 0x3D03 << QByteArray(R"({"robot":1,"status":2})") << QByteArray(R"({"robot":1})")
                                       << QByteArray(SIGNAL(pro_run_status(QByteArray))) << running << 2.0 << QString();
        QTest::newRow("job line") << 0x3504 << QByteArray(R"({"num":9})") << QByteArray(R"({"line":3})")
                                  << QByteArray(SIGNAL(robot_JobfiletoLine(QByteArray))) << line << 9.0 << QString();
        QTest::newRow("robot type") << 0x2E03 << QByteArray(R"({"type":4})") << QByteArray(R"({"robot":1})")
                                    << QByteArray() << type << -1.0 << QString();
        QTest::newRow("tool parameters") << 0x3807 << QByteArray(R"({"toolDeg":[0,0,3.5,0,0,0],"toolNum":2})")
                                         << QByteArray(R"({"note":"x"})") << QByteArray() << toolZ << 3.5 << QString();
        QTest::newRow("user frame") << 0x3C0C << QByteArray(R"({"curUserNum":4,"robot":1})") << QByteArray(R"({"x":0})")
                                    << QByteArray() << userFrame << 4.0 << QString();
        QTest::newRow("global variable") << 0x560C << QByteArray(R"({"varName":"GD001","varType":3,"varValue":2.5})")
                                         << QByteArray(R"({"robot":1})")
                                         << QByteArray(SIGNAL(robot_get_oneglobalVariant(QByteArray))) << global << 2.5 << QString();

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
        QTest::newRow("step end") << 0x3501 << QByteArray(R"({"jobname":"A","num":3,"robot":1})") << QByteArray(R"({"x":1})")
                                  << QByteArray(SIGNAL(robot_step_end(int, QString, int))) << none << -1.0 << QString();
        QTest::newRow("BWB command") << 0x3502 << QByteArray(R"({"num":3,"robot":1})") << QByteArray(R"({"x":1})")
                                     << QByteArray(SIGNAL(robot_BWB_command(int, int))) << none << -1.0 << QString();
        QTest::newRow("cycle index") << 0x5013 << QByteArray(R"({"count":4,"index":2,"robot":1})")
                                     << QByteArray(R"({"x":1})") << QByteArray(SIGNAL(RobotCycleIndex(int, int, int)))
                                     << none << -1.0 << QString();

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
