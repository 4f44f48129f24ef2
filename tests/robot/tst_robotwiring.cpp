// The Robot as the host API uses it: every link notification has its
// listener (or is left unconnected on purpose), relays arrive byte for byte
// and never end a wait while key-reading handlers do, the send operation and
// its 0x2101 side effect, the class-wide instance, the connection flag, the
// current robot in the link's payloads, and the caches the getters copy out.

#include "RobotFixture.h"
#include "ThreadSpy.h"
#include "link/TcpConnectModule.h"
#include "robot/RobotWiring.h"
#include "support/LogCapture.h"

#include <QMetaMethod>
#include <QSet>
#include <QtTest>

Q_DECLARE_METATYPE(QVector<double>)

namespace {

// Which cache a row reads back, as a flat vector.
using CacheReader = QVector<double> (*)(const Robot &);

template <size_t N>
QVector<double> flat(const double (&values)[N])
{
    return QVector<double>(values, values + N);
}

} // namespace
Q_DECLARE_METATYPE(CacheReader)

class tst_RobotWiring : public RobotTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(startRobot());
    }

    void init()
    {
        robot->setCurrentRobot(1);
        fixture.sim().clearReceived();
    }

    // Every notification the link declares is in the wiring table or on the
    // list of those left unconnected on purpose, and every row is connected.
    void everyNotificationHasItsListener()
    {
        int rowCount = 0;
        const qrx::WiringRow *rows = qrx::robotWiringRows(&rowCount);
        int unconnectedCount = 0;
        const char *const *unconnected = qrx::deliberatelyUnconnected(&unconnectedCount);

        QSet<QByteArray> wired;
        for (int i = 0; i < rowCount; ++i)
            wired.insert(QByteArray(rows[i].notification));
        QSet<QByteArray> leftOut;
        for (int i = 0; i < unconnectedCount; ++i)
            leftOut.insert(QByteArray(unconnected[i]));

        TcpConnectModule *link = robot->link();
        const QMetaObject *meta = link->metaObject();
        QStringList missing;
        QStringList both;
        int notifications = 0;
        for (int i = QObject::staticMetaObject.methodCount(); i < meta->methodCount(); ++i) {
            const QMetaMethod method = meta->method(i);
            if (method.methodType() != QMetaMethod::Signal)
                continue;
            ++notifications;
            const bool isWired = wired.contains(method.methodSignature());
            const bool isLeftOut = leftOut.contains(method.name());
            if (!isWired && !isLeftOut)
                missing << QString::fromLatin1(method.methodSignature());
            if (isWired && isLeftOut)
                both << QString::fromLatin1(method.name());
        }
        QVERIFY2(missing.isEmpty(), qPrintable(QStringLiteral("no listener: ") + missing.join(QStringLiteral(", "))));
        QVERIFY2(both.isEmpty(), qPrintable(QStringLiteral("wired and left out: ") + both.join(QStringLiteral(", "))));
        QVERIFY(notifications > 280);

        // Every row names a notification of the link and a member of the Robot.
        for (int i = 0; i < rowCount; ++i) {
            QVERIFY2(meta->indexOfSignal(rows[i].notification) >= 0, rows[i].notification);
            const QMetaObject *robotMeta = robot->metaObject();
            const int member = rows[i].target == qrx::WiringRow::Signal ? robotMeta->indexOfSignal(rows[i].member)
                                                                        : robotMeta->indexOfSlot(rows[i].member);
            QVERIFY2(member >= 0, rows[i].member);
        }
        for (int i = 0; i < unconnectedCount; ++i) {
            bool declared = false;
            for (int m = 0; m < meta->methodCount() && !declared; ++m)
                declared = meta->method(m).methodType() == QMetaMethod::Signal && meta->method(m).name() == unconnected[i];
            QVERIFY2(declared, unconnected[i]);
        }
    }

    // A new Robot has every row connected: each connection can be taken
    // down exactly once.
    void everyRowIsConnected()
    {
        LogCapture log;
        Robot fresh(QStringLiteral("127.0.0.1"));
        QVERIFY2(!log.contains(QStringLiteral("wiring failed")), qPrintable(log.lines().join('\n')));
        int rowCount = 0;
        const qrx::WiringRow *rows = qrx::robotWiringRows(&rowCount);
        for (int i = 0; i < rowCount; ++i) {
            const QByteArray signal = QByteArray("2") + rows[i].notification;
            const QByteArray member = QByteArray(rows[i].target == qrx::WiringRow::Signal ? "2" : "1") + rows[i].member;
            QVERIFY2(QObject::disconnect(fresh.link(), signal.constData(), &fresh, member.constData()), rows[i].member);
        }
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

    // 0x2A03 reaches the Robot decoded by the link, straight to its signal.
    void positionReportRelayed()
    {
        ThreadSpy update(robot, SIGNAL(robot_position_update(QVector<double>, int, int)));
        QVERIFY(update.isValid());
        QVERIFY(fixture.sendWithoutWake(
            0x2A03, QByteArray("{\"configuration\":5,\"coord\":2,\"posDeg\":[1.5,2,3,4,5,6,-7],\"robot\":2}")));
        QCOMPARE(update.count(), 1);
        QCOMPARE(update.at(0).value(0).value<QVector<double>>(), (QVector<double>{1.5, 2, 3, 4, 5, 6, -7}));
        QCOMPARE(update.at(0).value(1).toInt(), 2);
        QCOMPARE(update.at(0).value(2).toInt(), 2);
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

    void keyReadingHandlersWakeAndFill_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<CacheReader>("cache");
        QTest::addColumn<QVector<double>>("expected");

        QVector<double> ramp16;
        for (int i = 0; i < 16; ++i)
            ramp16 << (i % 3 == 0 ? 1 : 0);
        QTest::newRow("digital outputs") << 0x3603
            << QByteArray("{\"status\":[1,0,0,1,0,0,1,0,0,1,0,0,1,0,0,1]}")
            << CacheReader([](const Robot &r) { return flat(r.dout); }) << ramp16;
        QTest::newRow("digital inputs, short array") << 0x3606 << QByteArray("{\"status\":[1,1,0,1]}")
            << CacheReader([](const Robot &r) { return flat(r.din).mid(0, 4); }) << QVector<double>{1, 1, 0, 1};
        QTest::newRow("analog outputs") << 0x3609
            << QByteArray("{\"status\":[0.5,1.25,2,3,4,5,6,7,8,9,10,11,12,13,14,15.75]}")
            << CacheReader([](const Robot &r) { return flat(r.aout); })
            << QVector<double>{0.5, 1.25, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15.75};
        QTest::newRow("analog inputs, long array") << 0x360B
            << QByteArray("{\"status\":[9,9,9,9,9,9,9,9,9,9,9,9,9,9,9,9,7,7]}")
            << CacheReader([](const Robot &r) { return flat(r.ain); }) << QVector<double>(16, 9);
        QTest::newRow("external axes") << 0x7013 << QByteArray("{\"coord\":0,\"pos\":[1.5,2.5,3.5,4.5,5.5],\"robot\":1}")
            << CacheReader([](const Robot &r) { return flat(r.syncPosition); })
            << QVector<double>{1.5, 2.5, 3.5, 4.5, 5.5};
        QTest::newRow("motor speed")
            << 0x2A05
            << QByteArray("{\"maxVel\":[11,12,13,14,15,16,17],\"maxVelSync\":[21,22,23,24,25],"
                          "\"robot\":1,\"vel\":[1,2,3,4,5,6,7],\"velSync\":[31,32,33,34,35]}")
            << CacheReader([](const Robot &r) {
                   return flat(r.motorVel[0]) + flat(r.motorVel[1]) + flat(r.motorVelSync[0]) + flat(r.motorVelSync[1]);
               })
            << QVector<double>{1, 2, 3, 4, 5, 6, 7, 11, 12, 13, 14, 15, 16, 17, 31, 32, 33, 34, 35, 21, 22, 23, 24, 25};
        QTest::newRow("motor torque")
            << 0x2A07
            << QByteArray("{\"maxTheoTorq\":[0,0,0,0,0,0,0],\"maxTorq\":[8,8,8,8,8,8,8],\"maxTorqSync\":[6,6,6,6,6],"
                          "\"robot\":1,\"theoTorq\":[2,2,2,2,2,2,2],\"torq\":[-1,-2,-3,-4,-5,-6,-7],"
                          "\"torqSync\":[5,4,3,2,1]}")
            << CacheReader([](const Robot &r) {
                   return flat(r.motorTorque[0]) + flat(r.motorTorque[1]) + flat(r.motorTorqueSync[0]) +
                          flat(r.motorTorqueSync[1]) + flat(r.motorTheoTorque[0]);
               })
            << QVector<double>{-1, -2, -3, -4, -5, -6, -7, 8, 8, 8, 8, 8, 8, 8, 5, 4, 3, 2, 1, 6, 6, 6, 6, 6,
                               2, 2, 2, 2, 2, 2, 2};
        QTest::newRow("motor overload")
            << 0x2A0B << QByteArray("{\"motorOverload\":[10,20,30,40,50,60,70],\"motorOverloadSync\":[1,2,3,4,5],\"robot\":1}")
            << CacheReader([](const Robot &r) { return flat(r.motorOverload) + flat(r.motorOverloadSync); })
            << QVector<double>{10, 20, 30, 40, 50, 60, 70, 1, 2, 3, 4, 5};
        QTest::newRow("single cycle") << 0x330A << QByteArray("{\"value\":[0.5,1,1.5,2,2.5,3,3.5]}")
            << CacheReader([](const Robot &r) { return flat(r.singleCycle); })
            << QVector<double>{0.5, 1, 1.5, 2, 2.5, 3, 3.5};
        QTest::newRow("global real") << 0x560C << QByteArray("{\"varName\":\"GD012\",\"varType\":3,\"varValue\":2.75}")
            << CacheReader([](const Robot &r) { return QVector<double>{r.globalVarValue, r.globalReal[12]}; })
            << QVector<double>{2.75, 2.75};
        QTest::newRow("global int") << 0x560C << QByteArray("{\"varName\":\"GI999\",\"varType\":2,\"varValue\":-42}")
            << CacheReader([](const Robot &r) { return QVector<double>{r.globalVarValue, double(r.globalInt[999])}; })
            << QVector<double>{-42, -42};
        QTest::newRow("global bool") << 0x560C << QByteArray("{\"varName\":\"GB001\",\"varType\":1,\"varValue\":1}")
            << CacheReader([](const Robot &r) { return QVector<double>{r.globalVarValue, double(r.globalBool[1])}; })
            << QVector<double>{1, 1};
        QTest::newRow("job line") << 0x3504 << QByteArray("{\"num\":37}")
            << CacheReader([](const Robot &r) { return QVector<double>{double(r.currentRunLine)}; })
            << QVector<double>{37};
        QTest::newRow("running state") << 0x3D03 << QByteArray("{\"robot\":1,\"status\":2}")
            << CacheReader([](const Robot &r) { return QVector<double>{double(r.runningStatus)}; })
            << QVector<double>{2};
        QTest::newRow("deadman") << 0x2303 << QByteArray("{\"deadman\":1}")
            << CacheReader([](const Robot &r) { return QVector<double>{double(r.deadman)}; })
            << QVector<double>{1};
        QTest::newRow("tool") << 0x380C << QByteArray("{\"curToolNum\":4,\"robot\":1}")
            << CacheReader([](const Robot &r) { return QVector<double>{double(r.currentTool)}; })
            << QVector<double>{4};
        QTest::newRow("tool of another robot") << 0x380C << QByteArray("{\"curToolNum\":6,\"robot\":2}")
            << CacheReader([](const Robot &r) { return QVector<double>{double(r.currentTool)}; })
            << QVector<double>{4};
        QTest::newRow("continuous motion open") << 0x50B3 << QByteArray("{\"open\":true}")
            << CacheReader([](const Robot &r) { return QVector<double>{double(r.continuousMotionMode.load())}; })
            << QVector<double>{1};
        QTest::newRow("continuous motion closed") << 0x50B3 << QByteArray("{\"open\":false}")
            << CacheReader([](const Robot &r) { return QVector<double>{double(r.continuousMotionMode.load())}; })
            << QVector<double>{0};
    }

    void keyReadingHandlersWakeAndFill()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, payload);
        QFETCH(CacheReader, cache);
        QFETCH(QVector<double>, expected);

        QVERIFY(fixture.sendWaking(quint16(code), payload));
        QCOMPARE(cache(*robot), expected);
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

    void robotCountAndCurrentRobot()
    {
        ThreadSpy sum(robot, SIGNAL(robot_change_RobotSum(int)));
        ThreadSpy current(robot, SIGNAL(robot_change_CurRobot(int, int)));
        LogCapture log;
        fixture.send(0x2E06, QByteArray("{\"sum\":3}"));
        fixture.send(0x5003, QByteArray("{\"mode\":1,\"robot\":2}"));
        QVERIFY(fixture.flush());
        QCOMPARE(robot->robotCount, 3);
        QCOMPARE(robot->currentRobot(), 2);
        QCOMPARE(sum.count(), 1);
        QCOMPARE(sum.at(0).value(0).toInt(), 3);
        QCOMPARE(current.count(), 1);
        QCOMPARE(current.at(0), (QList<QVariant>{1, 2}));
        QCOMPARE(log.count(QStringLiteral("接收机器人数量 = 3")), 1);
        fixture.send(0x2E06, QByteArray("{\"sum\":1}"));
        QVERIFY(fixture.flush());
    }

    void jobReports()
    {
        ThreadSpy proRun(robot, SIGNAL(pro_run_status(QByteArray)));
        ThreadSpy job(robot, SIGNAL(robot_job_status(int, int, int)));
        ThreadSpy jobP(robot, SIGNAL(robotp_jstatus(int, int)));
        ThreadSpy step(robot, SIGNAL(robot_step_end(int, QString, int)));
        LogCapture log;
        // 0x4919 carries both the running state and the job status.
        fixture.send(0x4919, QByteArray("{\"continueRun\":1,\"robot\":2,\"status\":1}"));
        fixture.send(0x3501, QStringLiteral("{\"jobname\":\"焊接1\",\"num\":14,\"robot\":2}").toUtf8());
        QVERIFY(fixture.flush());
        QCOMPARE(proRun.count(), 1);
        QCOMPARE(proRun.at(0).value(0).toByteArray(), QByteArray("21"));
        QCOMPARE(job.at(0), (QList<QVariant>{2, 1, 1}));
        QCOMPARE(jobP.at(0), (QList<QVariant>{2, 1}));
        QCOMPARE(step.at(0), (QList<QVariant>{2, QStringLiteral("焊接1"), 14}));
        QCOMPARE(robot->runningStatus, 1);
        QCOMPARE(log.count(QStringLiteral("接收机器人运行状态 robot=2 status=1")), 1);
        QCOMPARE(log.count(QStringLiteral("收到机器人运行状态 robot=2 status=1")), 1);
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

QTEST_GUILESS_MAIN(tst_RobotWiring)
#include "tst_robotwiring.moc"
