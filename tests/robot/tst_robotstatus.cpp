// The status handlers of Robot, driven through the link from qrx-sim:
// operating mode (range, readiness, repeats, the force flag), servo per
// robot, speed log texts, coordinate gate and user-frame request, the
// position lines, and the caches the host API copies out after a wake.

#include "support/CacheLock.h"
#include "RobotFixture.h"
#include "ThreadSpy.h"
#include "support/LogCapture.h"

#include <QtTest>

Q_DECLARE_METATYPE(QVector<double>)

namespace {

QByteArray json(const char *text)
{
    return QByteArray(text);
}

} // namespace

class tst_RobotStatus : public RobotTestCase
{
    Q_OBJECT

private:
    // Puts the Robot into a known mode through the controller's report.
    void holdMode(int mode)
    {
        fixture.send(0x2103, QByteArray("{\"mode\":") + QByteArray::number(mode) + "}");
        QVERIFY(fixture.flush());
        QCOMPARE(robot->operationMode, mode);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(startRobot());
    }

    void init()
    {
        robot->setReady(true);
        robot->setCurrentRobot(1);
        robot->coordinateGate = 0;
        robot->takeForceModeNotification();
        fixture.sim().clearReceived();
    }

    void startupReportsHeld()
    {
        // The controller's own reports after the connection: one robot,
        // robot 1 current, servo 0, teach mode.
        QCOMPARE(robot->robotCount, 1);
        QCOMPARE(robot->currentRobot(), 1);
        QCOMPARE(robot->servoStatus, 0);
        QVERIFY(robot->modeReceived.load());
    }

    void modeTaken_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("written");   // line written to the log, or empty
        QTest::addColumn<bool>("teachNotice");  // 0x2105 sent

        QTest::newRow("teach") << 0 << QStringLiteral("接收当前工作模式: 示教模式") << true;
        QTest::newRow("remote") << 1 << QStringLiteral("接收当前工作模式: 远程模式") << false;
        QTest::newRow("run") << 2 << QString() << false;
    }

    void modeTaken()
    {
        QFETCH(int, mode);
        QFETCH(QString, written);
        QFETCH(bool, teachNotice);

        holdMode(mode == 2 ? 1 : 2);
        fixture.sim().clearReceived();
        robot->replyFlag.store(0);
        robot->modeReceived.store(false);

        LogCapture log;
        QVERIFY(fixture.sendWaking(0x2103, QByteArray("{\"mode\":") + QByteArray::number(mode) + "}"));
        QCOMPARE(robot->operationMode, mode);
        QVERIFY(robot->modeReceived.load());
        QCOMPARE(int(robot->replyFlag.load()), 1);
        QVERIFY(fixture.flush());

        const QStringList modeLines = log.lines().filter(QStringLiteral("接收当前工作模式"));
        if (written.isEmpty())
            QVERIFY2(modeLines.isEmpty(), qPrintable(modeLines.join('|')));
        else
            QCOMPARE(modeLines, QStringList{written});

        if (teachNotice) {
            QVERIFY(fixture.sim().waitForFrame(0x2105, 5000));
            QCOMPARE(fixture.sim().lastFrame(0x2105).payload, QByteArray());
        } else {
            QCOMPARE(fixture.sim().received(0x2105).size(), 0);
        }
    }

    void modeIgnored_data()
    {
        QTest::addColumn<bool>("ready");
        QTest::addColumn<QByteArray>("payload");

        QTest::newRow("above range") << true << json("{\"mode\":3}");
        QTest::newRow("below range") << true << json("{\"mode\":-1}");
        QTest::newRow("far above") << true << json("{\"mode\":250}");
        QTest::newRow("not ready, valid mode") << false << json("{\"mode\":2}");
        QTest::newRow("not ready, garbage") << false << json("not json");
    }

    // An ignored report changes nothing and never touches the wait lock: with
    // the lock held here, a handler that tried to wake would stall the link
    // thread and the marker behind it would never arrive.
    void modeIgnored()
    {
        QFETCH(bool, ready);
        QFETCH(QByteArray, payload);

        holdMode(1);
        ThreadSpy changed(robot, SIGNAL(robot_mode_changed(OperationMode)));
        robot->modeReceived.store(false);
        robot->modeRepeated.store(false);
        robot->setReady(ready);

        QVERIFY(fixture.sendWithoutWake(0x2103, payload));

        QCOMPARE(robot->operationMode, 1);
        QVERIFY(!robot->modeReceived.load());
        QVERIFY(!robot->modeRepeated.load());
        QCOMPARE(changed.count(), 0);
    }

    void modeRepeatAndForce_data()
    {
        QTest::addColumn<int>("held");
        QTest::addColumn<int>("reported");
        QTest::addColumn<bool>("force");
        QTest::addColumn<bool>("emitted");
        QTest::addColumn<bool>("repeated");

        QTest::newRow("changed") << 1 << 2 << false << true << false;
        QTest::newRow("repeated") << 2 << 2 << false << false << true;
        QTest::newRow("repeated, forced") << 2 << 2 << true << true << true;
        QTest::newRow("changed, forced") << 1 << 0 << true << true << false;
    }

    void modeRepeatAndForce()
    {
        QFETCH(int, held);
        QFETCH(int, reported);
        QFETCH(bool, force);
        QFETCH(bool, emitted);
        QFETCH(bool, repeated);

        holdMode(held);
        robot->modeRepeated.store(false);
        ThreadSpy changed(robot, SIGNAL(robot_mode_changed(OperationMode)));
        if (force)
            robot->forceModeNotification();
        fixture.send(0x2103, QByteArray("{\"mode\":") + QByteArray::number(reported) + "}");
        QVERIFY(fixture.flush());

        QCOMPARE(changed.count(), emitted ? 1 : 0);
        if (emitted)
            QCOMPARE(changed.at(0).value(0).value<OperationMode>(), OperationMode(reported));
        QCOMPARE(robot->modeRepeated.load(), repeated);
        // The flag is spent by the report that used it.
        QVERIFY(!robot->takeForceModeNotification());
    }

    void servo_data()
    {
        QTest::addColumn<int>("operationMode");
        QTest::addColumn<int>("current");
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("robotNo");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("shown");     // servoStatus afterwards (starts at 9)
        QTest::addColumn<int>("perRobot");  // index 1..4 of the per-robot field set, 0 none
        QTest::addColumn<bool>("axisWidget");

        //                                   opMode cur mode robot status shown perRobot axis
        QTest::newRow("teach, current robot") << 0 << 1 << 0 << 1 << 3 << 3 << 0 << false;
        QTest::newRow("teach, other robot") << 0 << 1 << 0 << 2 << 3 << 9 << 0 << false;
        QTest::newRow("teach, other robot, off") << 0 << 1 << 0 << 2 << 0 << 9 << 0 << true;
        QTest::newRow("teach, running off") << 0 << 1 << 0 << 1 << 1 << 1 << 0 << true;
        QTest::newRow("remote, other robot") << 1 << 1 << 0 << 2 << 1 << 1 << 0 << true;
        QTest::newRow("run, status 3") << 2 << 1 << 0 << 3 << 3 << 3 << 0 << true;
        QTest::newRow("multi, robot 1") << 1 << 1 << 1 << 1 << 2 << 2 << 1 << true;
        QTest::newRow("multi, robot 2") << 1 << 1 << 1 << 2 << 3 << 3 << 2 << true;
        QTest::newRow("multi, robot 3, teach") << 0 << 3 << 1 << 3 << 3 << 3 << 3 << false;
        QTest::newRow("multi, robot 4, teach") << 0 << 1 << 1 << 4 << 1 << 9 << 4 << true;
        QTest::newRow("multi, robot 5") << 1 << 1 << 1 << 5 << 1 << 1 << 0 << true;
        QTest::newRow("multi, robot 0") << 1 << 1 << 1 << 0 << 1 << 1 << 0 << true;
    }

    void servo()
    {
        QFETCH(int, operationMode);
        QFETCH(int, current);
        QFETCH(int, mode);
        QFETCH(int, robotNo);
        QFETCH(int, status);
        QFETCH(int, shown);
        QFETCH(int, perRobot);
        QFETCH(bool, axisWidget);

        robot->setCurrentRobot(current);
        withCache(robot, [&] {
            robot->operationMode = operationMode;
            robot->servoStatus = 9;
            for (int &s : robot->robotServoStatus)
                s = 9;
        });
        ThreadSpy changed(robot, SIGNAL(robot_servo_changed(QByteArray)));
        ThreadSpy axis(robot, SIGNAL(show_hide_Axis_widget(int)));
        const char *const buttons[] = {SIGNAL(updateR1MotButtonText()), SIGNAL(updateR2MotButtonText()),
                                       SIGNAL(updateR3MotButtonText()), SIGNAL(updateR4MotButtonText())};
        std::vector<std::unique_ptr<ThreadSpy>> buttonSpies;
        for (const char *b : buttons)
            buttonSpies.emplace_back(new ThreadSpy(robot, b));

        LogCapture log;
        const QByteArray payload = QStringLiteral("{\"mode\":%1,\"robot\":%2,\"status\":%3}")
                                       .arg(mode).arg(robotNo).arg(status).toUtf8();
        fixture.send(0x2003, payload);
        QVERIFY(fixture.flush());

        QCOMPARE(robot->servoStatus, shown);
        for (int r = 1; r <= 4; ++r) {
            QCOMPARE(robot->robotServoStatus[r - 1], r == perRobot ? status : 9);
            QCOMPARE(buttonSpies[size_t(r - 1)]->count(), r == perRobot ? 1 : 0);
        }
        QCOMPARE(changed.count(), 1);
        QByteArray bytes;
        bytes.append(char(mode)).append(char(robotNo)).append(char(status));
        QCOMPARE(changed.at(0).value(0).toByteArray(), bytes);
        QCOMPARE(axis.count(), axisWidget ? 1 : 0);
        if (axisWidget)
            QCOMPARE(axis.at(0).value(0).toInt(), 0);
        QCOMPARE(log.count(QStringLiteral("接收伺服状态 mode=%1 robot=%2 status=%3").arg(mode).arg(robotNo).arg(status)),
                 1);
    }

    void speed_data()
    {
        QTest::addColumn<int>("coordinate");
        QTest::addColumn<int>("speed");
        QTest::addColumn<QString>("line");

        QTest::newRow("101 joint") << 0 << 101 << QStringLiteral("接收当前速度为0.1°");
        QTest::newRow("101 Cartesian") << 1 << 101 << QStringLiteral("接收当前速度为1mm");
        QTest::newRow("102 joint") << 0 << 102 << QStringLiteral("接收当前速度为0.01°");
        QTest::newRow("102 tool") << 2 << 102 << QStringLiteral("接收当前速度为0.1mm");
        QTest::newRow("103 joint") << 0 << 103 << QStringLiteral("接收当前速度为0.001°");
        QTest::newRow("103 user") << 3 << 103 << QStringLiteral("接收当前速度为0.01mm");
        QTest::newRow("percent joint") << 0 << 55 << QStringLiteral("接收当前速度为55%");
        QTest::newRow("percent Cartesian") << 1 << 100 << QStringLiteral("接收当前速度为100%");
        QTest::newRow("104 is a percentage") << 0 << 104 << QStringLiteral("接收当前速度为104%");
    }

    void speed()
    {
        QFETCH(int, coordinate);
        QFETCH(int, speed);
        QFETCH(QString, line);

        robot->coordinate = quint8(coordinate);
        ThreadSpy changed(robot, SIGNAL(robot_speed_changed(schar)));
        LogCapture log;
        fixture.send(0x2603, QStringLiteral("{\"robot\":1,\"speed\":%1}").arg(speed).toUtf8());
        QVERIFY(fixture.flush());

        QCOMPARE(robot->speed, speed);
        QCOMPARE(log.lines().filter(QStringLiteral("接收当前速度为")), QStringList{line});
        QCOMPARE(changed.count(), 1);
        QCOMPARE(int(changed.at(0).value(0).value<schar>()), int(schar(speed)));
    }

    void coordinate_data()
    {
        QTest::addColumn<int>("current");
        QTest::addColumn<int>("gate");
        QTest::addColumn<int>("robotNo");
        QTest::addColumn<int>("coord");
        QTest::addColumn<bool>("taken");
        QTest::addColumn<QString>("line");

        QTest::newRow("joint") << 1 << 0 << 1 << 0 << true << QStringLiteral("接收机器人1当前坐标系为关节坐标系");
        QTest::newRow("Cartesian") << 1 << 0 << 1 << 1 << true << QStringLiteral("接收机器人1当前坐标系为直角坐标系");
        QTest::newRow("tool, robot 2") << 2 << 0 << 2 << 2 << true << QStringLiteral("接收机器人2当前坐标系为工具坐标系");
        QTest::newRow("user") << 1 << 0 << 1 << 3 << true << QStringLiteral("接收机器人1当前坐标系为用户坐标系");
        QTest::newRow("user, robot 3") << 3 << 0 << 3 << 3 << true << QStringLiteral("接收机器人3当前坐标系为用户坐标系");
        QTest::newRow("gate 6 lets through") << 1 << 6 << 1 << 2 << true << QStringLiteral("接收机器人1当前坐标系为工具坐标系");
        QTest::newRow("other robot") << 1 << 0 << 2 << 1 << false << QString();
        QTest::newRow("gate 7") << 1 << 7 << 1 << 1 << false << QString();
        QTest::newRow("gate 7, user") << 1 << 7 << 1 << 3 << false << QString();
    }

    void coordinate()
    {
        QFETCH(int, current);
        QFETCH(int, gate);
        QFETCH(int, robotNo);
        QFETCH(int, coord);
        QFETCH(bool, taken);
        QFETCH(QString, line);

        robot->setCurrentRobot(current);
        robot->coordinate = 9;
        robot->coordinateGate = gate;
        ThreadSpy changed(robot, SIGNAL(robot_coord_changed(uchar)));
        LogCapture log;
        fixture.sim().clearReceived();
        fixture.send(0x2203, QStringLiteral("{\"coord\":%1,\"robot\":%2}").arg(coord).arg(robotNo).toUtf8());
        QVERIFY(fixture.flush());

        QCOMPARE(int(robot->coordinate), taken ? coord : 9);
        QCOMPARE(changed.count(), taken ? 1 : 0);
        const QStringList lines = log.lines().filter(QStringLiteral("当前坐标系为"));
        QCOMPARE(lines, taken ? QStringList{line} : QStringList());

        const bool asksUserFrame = taken && coord == 3;
        if (asksUserFrame) {
            QVERIFY(fixture.sim().waitForFrame(0x3C0B, 5000));
            QCOMPARE(fixture.sim().lastFrame(0x3C0B).payload,
                     QStringLiteral("{\"robot\":%1}\n").arg(current).toUtf8());
        } else {
            // The request would have left before the marker was relayed.
            QCOMPARE(fixture.sim().received(0x3C0B).size(), 0);
        }
    }

    void position_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QByteArray>("posDegLine");
        QTest::addColumn<QByteArray>("posLine");
        QTest::addColumn<QVector<double>>("stored");

        QTest::newRow("seven values each")
            << json("{\"coord\":1,\"pos\":[1.5,-2.25,3,400.125,5,6,7],"
                    "\"posDeg\":[10,20,30,40,50,60,70],\"robot\":1}")
            << json("1 1 10.0000 20.0000 30.0000 40.0000 50.0000 60.0000 70.0000")
            << json("1 1 1.5000 -2.2500 3.0000 400.1250 5.0000 6.0000 7.0000")
            << QVector<double>{1.5, -2.25, 3, 400.125, 5, 6};
        QTest::newRow("robot 2, joint, rounding")
            << json("{\"coord\":0,\"pos\":[0.00004,0.00006,-0.00004,1e3,2,3,4],"
                    "\"posDeg\":[1,2,3,4,5,6,7],\"robot\":2}")
            << json("2 0 1.0000 2.0000 3.0000 4.0000 5.0000 6.0000 7.0000")
            << json("2 0 0.0000 0.0001 -0.0000 1000.0000 2.0000 3.0000 4.0000")
            << QVector<double>{0.00004, 0.00006, -0.00004, 1000, 2, 3};
        QTest::newRow("no posDeg")
            << json("{\"coord\":3,\"pos\":[6,5,4,3,2,1,0],\"robot\":1}")
            << json("1 3")
            << json("1 3 6.0000 5.0000 4.0000 3.0000 2.0000 1.0000 0.0000")
            << QVector<double>{6, 5, 4, 3, 2, 1};
    }

    void position()
    {
        QFETCH(QByteArray, payload);
        QFETCH(QByteArray, posDegLine);
        QFETCH(QByteArray, posLine);
        QFETCH(QVector<double>, stored);

        ThreadSpy lines(robot, SIGNAL(receive_moreRobot_CurPosition(QByteArray, QByteArray)));
        QVERIFY(fixture.sendWaking(0x2F08, payload));
        QVERIFY(fixture.flush());

        QCOMPARE(lines.count(), 1);
        QCOMPARE(lines.at(0).value(0).toByteArray(), posDegLine);
        QCOMPARE(lines.at(0).value(1).toByteArray(), posLine);
        for (int i = 0; i < 6; ++i)
            QCOMPARE(robot->currentPosition[i], stored[i]);
    }

    void reportSignals_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QByteArray>("signal");
        QTest::addColumn<QVariantList>("args");
        QTest::addColumn<QString>("line"); // log line written, or empty

        const QByteArray dout("{\"status\":[1,0,1]}");
        QTest::newRow("tool 3") << 0x380C << json("{\"curToolNum\":3,\"robot\":1}")
            << QByteArray(SIGNAL(robot_tool_changed(int))) << QVariantList{3} << QStringLiteral("接收当前工具手为3");
        QTest::newRow("no tool") << 0x380C << json("{\"curToolNum\":0,\"robot\":1}")
            << QByteArray(SIGNAL(robot_tool_changed(int))) << QVariantList{0} << QStringLiteral("接收当前无工具手");
        QTest::newRow("deadman") << 0x2303 << json("{\"deadman\":1}")
            << QByteArray(SIGNAL(deadmanStateChange(int))) << QVariantList{1}
            << QStringLiteral("接收当前控制器工作模式deadman=1");
        QTest::newRow("deadman hard-wired") << 0x2306
            << json("{\"deadmanMode\":1,\"deadmanPortOne\":5,\"deadmanPortTwo\":6}")
            << QByteArray(SIGNAL(deadmanModeChange(bool, int, int))) << QVariantList{true, 5, 6} << QString();
        QTest::newRow("deadman on the pendant") << 0x2306
            << json("{\"deadmanMode\":0,\"deadmanPortOne\":0,\"deadmanPortTwo\":0}")
            << QByteArray(SIGNAL(deadmanModeChange(bool, int, int))) << QVariantList{false, 0, 0} << QString();
        QTest::newRow("jog teaching") << 0x2106 << json("{\"teachType\":0}")
            << QByteArray(SIGNAL(signal_updateTeachtype(QString))) << QVariantList{QStringLiteral("点动")} << QString();
        QTest::newRow("drag teaching") << 0x2106 << json("{\"teachType\":1}")
            << QByteArray(SIGNAL(signal_updateTeachtype(QString))) << QVariantList{QStringLiteral("拖拽")} << QString();
        QTest::newRow("breakpoint line") << 0x3502 << json("{\"num\":17,\"robot\":2}")
            << QByteArray(SIGNAL(robot_BWB_command(int, int))) << QVariantList{2, 17} << QString();
        QTest::newRow("job file line") << 0x3504 << json("{\"num\":9}")
            << QByteArray(SIGNAL(robot_JobfiletoLine(QByteArray))) << QVariantList{QByteArray("{\"num\":9}\n")}
            << QString();
        QTest::newRow("cycle index") << 0x5013 << json("{\"count\":20,\"index\":4,\"robot\":1}")
            << QByteArray(SIGNAL(RobotCycleIndex(int, int, int))) << QVariantList{1, 20, 4} << QString();
        QTest::newRow("cycle count") << 0x5013 << json("{\"count\":20,\"index\":4,\"robot\":1}")
            << QByteArray(SIGNAL(robot_cycletimes_update(int))) << QVariantList{20} << QString();
        QTest::newRow("digital outputs shown") << 0x3603 << dout
            << QByteArray(SIGNAL(robot_dout_display(QByteArray))) << QVariantList{dout + '\n'} << QString();
        QTest::newRow("single cycle shown") << 0x330A << json("{\"value\":[1]}")
            << QByteArray(SIGNAL(robot_singlevalue(QByteArray))) << QVariantList{QByteArray("{\"value\":[1]}\n")}
            << QString();
        QTest::newRow("one global variable") << 0x560C << json("{\"varName\":\"GI001\",\"varType\":2,\"varValue\":5}")
            << QByteArray(SIGNAL(robot_get_oneglobalVariant(QByteArray)))
            << QVariantList{QByteArray("{\"varName\":\"GI001\",\"varType\":2,\"varValue\":5}\n")} << QString();
    }

    void reportSignals()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, payload);
        QFETCH(QByteArray, signal);
        QFETCH(QVariantList, args);
        QFETCH(QString, line);

        ThreadSpy spy(robot, signal.constData());
        QVERIFY(spy.isValid());
        LogCapture log;
        fixture.send(quint16(code), payload);
        QVERIFY(fixture.flush());
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0), args);
        if (!line.isEmpty())
            QCOMPARE(log.count(line), 1);
    }

    void malformedPayloadsStillWake_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("payload");

        QTest::newRow("position, not JSON") << 0x2F08 << json("{\"pos\":[1,2");
        QTest::newRow("deadman, empty") << 0x2303 << QByteArray();
        QTest::newRow("dout, wrong kind") << 0x3603 << json("{\"status\":\"on\"}");
        QTest::newRow("tool, string robot") << 0x380C << json("{\"curToolNum\":\"x\",\"robot\":\"1\"}");
        // JSON that is no object: the member lookups must not throw on the
        // link thread (jsoncpp's isMember() and operator[] do on an array).
        QTest::newRow("speed, array") << 0x2603 << json("[101,102]");
        QTest::newRow("speed, number") << 0x2603 << json("101");
        QTest::newRow("tool, array") << 0x380C << json("[{\"curToolNum\":2}]");
        QTest::newRow("servo, string") << 0x2003 << json("\"status\"");
        QTest::newRow("coordinate, array") << 0x2203 << json("[1,3]");
        QTest::newRow("position, members of other kinds")
            << 0x2F08 << json("{\"robot\":[1],\"coord\":{},\"pos\":{\"0\":5},\"posDeg\":\"x\"}");
    }

    void malformedPayloadsStillWake()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, payload);

        const double before = robot->currentPosition[0];
        const int deadman = robot->deadman;
        const int speed = robot->speed;
        const int tool = robot->currentTool;
        const quint8 coordinate = robot->coordinate;
        QVERIFY(fixture.sendWaking(quint16(code), payload, true));
        QCOMPARE(robot->currentPosition[0], before);
        QCOMPARE(robot->deadman, deadman);
        QCOMPARE(robot->speed, speed);
        QCOMPARE(robot->currentTool, tool);
        QCOMPARE(robot->coordinate, coordinate);
    }
};

QTEST_GUILESS_MAIN(tst_RobotStatus)
#include "tst_robotstatus.moc"
