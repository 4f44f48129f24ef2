// The Robot's one entry point as the host API uses it, through the link
// from qrx-sim: what the decoders ask for leaves on the wire, their lines
// are written, reports wake a waiting call or (relays, messages, ignored
// modes, payloads the link refuses) do not, relays arrive byte for byte;
// the send operation and its 0x2101 side effect, the connection flag, the
// current robot in the link's payloads. What each report does to the state
// is tst_decoders' part, without a socket.

#include "RobotFixture.h"
#include "ThreadSpy.h"
#include "link/TcpConnectModule.h"
#include "support/LogCapture.h"

#include <QElapsedTimer>
#include <QtTest>

Q_DECLARE_METATYPE(QVector<double>)

class tst_ReportEntry : public RobotTestCase
{
    Q_OBJECT

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

    void taken_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<bool>("wakes");
        QTest::addColumn<int>("asks");            // the request sent in answer, 0 none
        QTest::addColumn<QByteArray>("asksPayload");
        QTest::addColumn<QString>("line");        // written to the log, or empty

        QTest::newRow("teach mode acknowledged") << 0x2103 << QByteArray("{\"mode\":0}") << true << 0x2105
                                                 << QByteArray() << QStringLiteral("接收当前工作模式: 示教模式");
        QTest::newRow("remote mode") << 0x2103 << QByteArray("{\"mode\":1}") << true << 0 << QByteArray()
                                     << QStringLiteral("接收当前工作模式: 远程模式");
        QTest::newRow("user frame asked for") << 0x2203 << QByteArray("{\"coord\":3,\"robot\":1}") << true << 0x3C0B
                                              << QByteArray("{\"robot\":1}\n")
                                              << QStringLiteral("接收机器人1当前坐标系为用户坐标系");
        QTest::newRow("mode out of range") << 0x2103 << QByteArray("{\"mode\":3}") << false << 0 << QByteArray()
                                           << QString();
        QTest::newRow("position, not JSON") << 0x2F08 << QByteArray("{\"pos\":[1,2") << true << 0 << QByteArray()
                                            << QString();
        QTest::newRow("servo, not JSON: the link drops it") << 0x2003 << QByteArray("status") << false << 0
                                                            << QByteArray() << QString();
        QTest::newRow("information") << 0x2B05 << QByteArray("{\"data\":\"x\"}") << false << 0 << QByteArray()
                                     << QString();
        QTest::newRow("family still on its handler") << 0x700B << QByteArray("{\"AxisNum\":2}") << true << 0
                                                     << QByteArray() << QStringLiteral("接收变位机轴数 2");
    }

    // With the wait lock held for a report that does not wake: one that
    // tried would stall the link thread and the marker would never come.
    void taken()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, payload);
        QFETCH(bool, wakes);
        QFETCH(int, asks);
        QFETCH(QByteArray, asksPayload);
        QFETCH(QString, line);

        LogCapture log;
        if (wakes)
            QVERIFY(fixture.sendWaking(quint16(code), payload, true));
        else
            QVERIFY(fixture.sendWithoutWake(quint16(code), payload, true));
        QVERIFY(fixture.flush());
        if (asks) {
            QVERIFY(fixture.sim().waitForFrame(quint16(asks), 5000));
            QCOMPARE(fixture.sim().lastFrame(quint16(asks)).payload, asksPayload);
        }
        if (!line.isEmpty())
            QCOMPARE(log.count(line), 1);
    }

    void relayByteForByteWithoutWake_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("signal");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<int>("argument"); // index of the payload argument

        const QByteArray odd("{\"line\":7}\n\0tail\xff", 17);
        QTest::newRow("current run line") << 0x9106 << QByteArray(SIGNAL(signal_curRunLine(QByteArray)))
                                          << QByteArray("{\"line\":12,\"robot\":1}\n") << 0;
        QTest::newRow("current run line, raw bytes") << 0x9106 << QByteArray(SIGNAL(signal_curRunLine(QByteArray)))
                                                     << odd << 0;
        QTest::newRow("unlisted code") << 0x1234 << QByteArray(SIGNAL(robot_received_data(ushort, QByteArray)))
                                       << QByteArray("not even JSON \x01\x02", 16) << 1;
        QTest::newRow("controller version") << 0x3403
                                            << QByteArray(SIGNAL(robot_Rec_ControlVersion(QByteArray)))
                                            << QStringLiteral("{\"version\":\"控制器 V3.2\"}\n").toUtf8() << 0;
        QTest::newRow("weld monitor") << 0x4016 << QByteArray(SIGNAL(robot_receiveWeldMonitor(QByteArray)))
                                      << QByteArray("{\"I\":120.5,\"U\":18.25}\n") << 0;
        QTest::newRow("sync axis position") << 0x7003 << QByteArray(SIGNAL(robot_syncAxis_pos(QByteArray)))
                                            << QByteArray("{\"pos\":[1,2]}\n") << 0;
        QTest::newRow("job file list") << 0x5534 << QByteArray(SIGNAL(robot_job_File_list(QByteArray)))
                                       << QByteArray() << 0;
    }

    // The wait lock is held here: a relay that tried to wake would stall the
    // link thread and the marker behind it would never arrive.
    void relayByteForByteWithoutWake()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, signal);
        QFETCH(QByteArray, payload);
        QFETCH(int, argument);

        ThreadSpy relayed(robot, signal.constData());
        QVERIFY(relayed.isValid());
        QVERIFY(fixture.sendWithoutWake(quint16(code), payload, true));

        // The marker of flush() is relayed as raw data too: take the first call.
        QVERIFY(relayed.count() >= 1);
        const QList<QVariant> args = relayed.at(0);
        if (argument == 1)
            QCOMPARE(args.value(0).value<ushort>(), ushort(code));
        QCOMPARE(args.value(argument).toByteArray(), payload);
    }

    void connectionRelaysDoNotWake()
    {
        ThreadSpy status(robot, SIGNAL(robot_connect_succeed(int)));
        robot->replyMutex.lock();
        QMetaObject::invokeMethod(robot->link(), "connectSucceed", Qt::DirectConnection, Q_ARG(int, 1));
        robot->replyMutex.unlock();
        QCOMPARE(status.count(), 1);
        QCOMPARE(status.at(0).value(0).toInt(), 1);
        QCOMPARE(int(robot->connected.load()), 1);
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

    void twoWaitersWokenByOneReply()
    {
        ReplyWaiter first(*robot);
        ReplyWaiter second(*robot);
        first.start();
        second.start();
        fixture.send(0x2303, QByteArray("{\"deadman\":0}"));
        QTRY_VERIFY_WITH_TIMEOUT(first.finished() && second.finished(), 15000);
        QVERIFY(first.woken());
        QVERIFY(second.woken());
    }

    void sendStampsOnlySetMode_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<bool>("stamps");
        QTest::newRow("set mode") << 0x2101 << true;
        QTest::newRow("query mode") << 0x2102 << false;
        QTest::newRow("set mode, other family") << 0x3101 << false;
        QTest::newRow("farewell") << 0x7277 << false;
    }

    void sendStampsOnlySetMode()
    {
        QFETCH(int, code);
        QFETCH(bool, stamps);

        // The controller stays quiet about it, so nothing sets the flag again.
        fixture.sim().setHandler(quint16(code), [](qrxsim::Session &, const qrxsim::ReceivedFrame &) {});
        robot->replyFlag.store(1);
        robot->lastRequestTime = QDateTime();
        const QDateTime before = QDateTime::currentDateTime();
        const QByteArray payload("{\"mode\":2}\n");
        QVERIFY(robot->send(quint16(code), payload));
        QVERIFY(fixture.sim().waitForFrame(quint16(code), 5000));
        QCOMPARE(fixture.sim().lastFrame(quint16(code)).payload, payload);
        QCOMPARE(int(robot->replyFlag.load()), stamps ? 0 : 1);
        QCOMPARE(robot->lastRequestTime.isValid(), stamps);
        if (stamps)
            QVERIFY(robot->lastRequestTime >= before.addMSecs(-1));
    }

    void linkAddressesTheCurrentRobot_data()
    {
        QTest::addColumn<int>("current");
        QTest::newRow("robot 1") << 1;
        QTest::newRow("robot 3") << 3;
    }

    void linkAddressesTheCurrentRobot()
    {
        QFETCH(int, current);
        fixture.sim().setHandler(0x2202, [](qrxsim::Session &, const qrxsim::ReceivedFrame &) {});
        fixture.send(0x5003, QStringLiteral("{\"mode\":1,\"robot\":%1}").arg(current).toUtf8());
        QVERIFY(fixture.flush());
        QCOMPARE(robot->currentRobot(), current);
        QVERIFY(robot->link()->getCoordinationMode());
        QVERIFY(fixture.sim().waitForFrame(0x2202, 5000));
        QCOMPARE(fixture.sim().lastFrame(0x2202).payload, QStringLiteral("{\"robot\":%1}\n").arg(current).toUtf8());
    }

    void connectionFlagFollowsTheLink()
    {
        ThreadSpy status(robot, SIGNAL(robot_connect_succeed(int)));
        QVector<int> seen; // the flag at each notice, sampled on the notifying thread
        QMetaObject::Connection sample = connect(robot, &Robot::robot_connect_succeed, robot,
            [&](int) { seen.append(robot->connected.load()); }, Qt::DirectConnection);
        fixture.sim().dropConnections();
        // The loss (0, given twice), then the reconnect (1).
        QTRY_VERIFY_WITH_TIMEOUT(status.count() >= 3 && status.last().value(0).toInt() == 1, 15000);
        disconnect(sample);
        QCOMPARE(status.at(0).value(0).toInt(), 0);
        QCOMPARE(status.at(1).value(0).toInt(), 0);
        QCOMPARE(seen.value(0), 0);
        QCOMPARE(seen.last(), 1);
        QCOMPARE(int(robot->connected.load()), 1);
        QVERIFY(fixture.flush());
    }

    // After a manual restart the controller's first mode report is
    // announced even when the mode did not change.
    void restartAnnouncesTheModeAgain()
    {
        const int held = robot->operationMode;
        robot->close();
        QVERIFY(robot->isClosed());
        QVERIFY(!robot->isReady());
        QTRY_VERIFY_WITH_TIMEOUT(robot->connected.load() == 0, 10000);

        ThreadSpy changed(robot, SIGNAL(robot_mode_changed(OperationMode)));
        robot->modeReceived.store(false);
        robot->restart();
        QVERIFY(!robot->isClosed());
        QTRY_VERIFY_WITH_TIMEOUT(robot->connected.load() == 1, 15000);
        QTRY_VERIFY_WITH_TIMEOUT(robot->modeReceived.load(), 15000);
        QVERIFY(fixture.flush());
        QCOMPARE(robot->operationMode, held);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(int(changed.at(0).value(0).value<OperationMode>()), held);
        QVERIFY(!robot->takeForceModeNotification());
    }
};

QTEST_GUILESS_MAIN(tst_ReportEntry)
#include "tst_reportentry.moc"
