// Tool frames, user frames and their calibration, through the link from
// qrx-sim: what each report stores for the host API, its log line and
// notification, the wake at the end, and the controller's answers to the
// queries that the host API sends.

#include "support/CacheLock.h"
#include "RobotFixture.h"
#include "ThreadSpy.h"
#include "support/LogCapture.h"

#include <QtTest>

Q_DECLARE_METATYPE(QVector<double>)

namespace {

QVector<double> row(const double *values, int n)
{
    return QVector<double>(values, values + n);
}

} // namespace

class tst_ToolFrames : public RobotTestCase
{
    Q_OBJECT

private:
    // Sends one report and waits until the handler has woken a waiting call.
    void deliver(quint16 code, const QByteArray &payload)
    {
        QVERIFY(fixture.sendWaking(code, payload));
        QVERIFY(fixture.flush());
    }

    // Delivers the report with signal watched: it must write line once and
    // emit signal once; args takes that emission's arguments.
    void deliverOnce(quint16 code, const QByteArray &payload, const char *signal, const QString &line,
                     QList<QVariant> *args)
    {
        LogCapture log;
        ThreadSpy spy(robot, signal);
        QVERIFY(spy.isValid());
        deliver(code, payload);
        QCOMPARE(log.count(line), 1);
        QCOMPARE(spy.count(), 1);
        *args = spy.at(0);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(startRobot());
    }

    void toolParameters_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<int>("tool");
        QTest::addColumn<QVector<double>>("values");
        QTest::addColumn<bool>("stored"); // inside the cache
        QTest::addColumn<QString>("line");

        QTest::newRow("tool 5")
            << QByteArray("{\"note\":\"焊枪\",\"payload_inertia\":0.25,\"payload_mass\":2.5,"
                          "\"payload_mass_center_X\":0.0,\"payload_mass_center_Y\":0.0,"
                          "\"payload_mass_center_Z\":0.125,\"toolDeg\":[10.5,-20.25,300.0,0.0,90.0,-45.5],"
                          "\"toolNum\":5}")
            << 5 << QVector<double>{10.5, -20.25, 300.0, 0.0, 90.0, -45.5} << true
            << QStringLiteral("接收工具手参数 toolNum=5 x=10.5 y=-20.25 z=300 A=0 B=90 C=-45.5 note=焊枪");
        QTest::newRow("tool 0 like any other")
            << QByteArray("{\"note\":\"\",\"toolDeg\":[1,2,3,4,5,6],\"toolNum\":0}") << 0
            << QVector<double>{1, 2, 3, 4, 5, 6} << true
            << QStringLiteral("接收工具手参数 toolNum=0 x=1 y=2 z=3 A=4 B=5 C=6 note=");
        QTest::newRow("short toolDeg")
            << QByteArray("{\"note\":\"n\",\"toolDeg\":[7.5,8.5],\"toolNum\":31}") << 31
            << QVector<double>{7.5, 8.5, 0, 0, 0, 0} << true
            << QStringLiteral("接收工具手参数 toolNum=31 x=7.5 y=8.5 z=0 A=0 B=0 C=0 note=n");
        QTest::newRow("tool beyond the cache")
            << QByteArray("{\"note\":\"%1\",\"toolDeg\":[1,1,1,1,1,1],\"toolNum\":400}") << 400
            << QVector<double>{1, 1, 1, 1, 1, 1} << false
            << QStringLiteral("接收工具手参数 toolNum=400 x=1 y=1 z=1 A=1 B=1 C=1 note=%1");
    }

    void toolParameters()
    {
        QFETCH(QByteArray, payload);
        QFETCH(int, tool);
        QFETCH(QVector<double>, values);
        QFETCH(bool, stored);
        QFETCH(QString, line);

        QList<QVariant> args;
        deliverOnce(0x3807, payload, SIGNAL(robot_tool_count_check(int, QVector<double>, QByteArray)), line, &args);
        if (QTest::currentTestFailed())
            return;

        QCOMPARE(robot->lastToolNum, tool);
        if (stored)
            QCOMPARE(row(robot->toolParameters[tool], 6), values);
        QCOMPARE(args.value(0).toInt(), tool);
        QCOMPARE(args.value(1).value<QVector<double>>(), values);
        QCOMPARE(args.value(2).toByteArray(), payload + '\n');
    }

    void userFrame_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QVector<double>>("frame");
        QTest::addColumn<bool>("inquire");

        QTest::newRow("six values")
            << QByteArray("{\"Calibration\":1,\"inquire\":1,\"posDeg\":[100.5,200.0,-50.25,0.0,0.0,90.0],"
                          "\"status\":1,\"userNum\":3}")
            << QStringLiteral("接收用户坐标数据 userNum=3 inquire=1 pos1=100.5 pos2=200 pos3=-50.25 pos4=0 "
                              "pos5=0 pos6=90")
            << QVector<double>{100.5, 200.0, -50.25, 0.0, 0.0, 90.0} << true;
        QTest::newRow("four values")
            << QByteArray("{\"inquire\":0,\"posDeg\":[1.5,2.5,3.5,4.5],\"userNum\":2}")
            << QStringLiteral("接收用户坐标数据 userNum=2 inquire=0 pos1=1.5 pos2=2.5 pos3=3.5 pos4=4.5")
            << QVector<double>{1.5, 2.5, 3.5, 4.5} << false;
        QTest::newRow("no values")
            << QByteArray("{\"userNum\":7}")
            << QStringLiteral("接收用户坐标数据 userNum=7 inquire=0 pos1=0 pos2=0 pos3=0 pos4=0")
            << QVector<double>{0, 0, 0, 0} << false;
    }

    void userFrame()
    {
        QFETCH(QByteArray, payload);
        QFETCH(QString, line);
        QFETCH(QVector<double>, frame);
        QFETCH(bool, inquire);

        QList<QVariant> args;
        deliverOnce(0x3C09, payload, SIGNAL(robot_usercoords_reply(int, QString, QVector<double>, bool)), line, &args);
        if (QTest::currentTestFailed())
            return;

        QCOMPARE(args.value(1).toString(), line);
        QCOMPARE(args.value(2).value<QVector<double>>(), frame);
        QCOMPARE(args.value(3).toBool(), inquire);
    }

    void userFrameSelectedAndNote()
    {
        LogCapture log;
        ThreadSpy inUse(robot, SIGNAL(robot_usercoords_inuse(int)));
        ThreadSpy note(robot, SIGNAL(robot_usercoords_note(QString)));
        deliver(0x3C0C, "{\"curUserNum\":4}");
        deliver(0x3C0F, "{\"note\":\"夹具 A\"}");
        QCOMPARE(robot->currentUserFrame, 4);
        QCOMPARE(inUse.count(), 1);
        QCOMPARE(inUse.at(0).value(0).toInt(), 4);
        QCOMPARE(note.count(), 1);
        QCOMPARE(note.at(0).value(0).toString(), QStringLiteral("夹具 A"));
        QCOMPARE(log.count(QStringLiteral("接收切换用户坐标 userNum=4")), 1);
        QCOMPARE(log.count(QStringLiteral("接收用户坐标注释 note=夹具 A")), 1);
    }

    void calibrationPoints_data()
    {
        QTest::addColumn<quint16>("code");
        QTest::addColumn<QByteArray>("signal");
        QTest::addColumn<QString>("line");

        const QString values = QStringLiteral("pointNum=2 x=1.5 y=-2.5 z=300 a=0 b=90 c=180");
        QTest::newRow("2-point") << quint16(0x3803) << QByteArray(SIGNAL(robot_tool_check(int, QByteArray)))
                                 << QStringLiteral("接收工具手标定数据 ") + values;
        QTest::newRow("20-point") << quint16(0x7103)
                                  << QByteArray(SIGNAL(robot_tool_checkFor20(int, QByteArray)))
                                  << QStringLiteral("接收工具手标定 20点标定数据 ") + values;
        QTest::newRow("20-point taught") << quint16(0x710B)
                                         << QByteArray(SIGNAL(robot_tool_receive20MarkedPoint(int, QByteArray)))
                                         << QStringLiteral("接收工具手标定 20点标定中已经标定数据 ") + values;
        QTest::newRow("7-point taught") << quint16(0x3813)
                                        << QByteArray(SIGNAL(robot_tool_receive7MarkedPoint(int, QByteArray)))
                                        << QStringLiteral("接收工具手标定 7点标定中已经标定数据 ") + values;
    }

    void calibrationPoints()
    {
        QFETCH(quint16, code);
        QFETCH(QByteArray, signal);
        QFETCH(QString, line);

        const QByteArray payload = "{\"pointNum\":2,\"pos\":[1.5,-2.5,300.0,0.0,90.0,180.0]}";
        QList<QVariant> args;
        deliverOnce(code, payload, signal.constData(), line, &args);
        if (QTest::currentTestFailed())
            return;
        QCOMPARE(args.value(0).toInt(), 2);
        QCOMPARE(args.value(1).toByteArray(), payload + '\n');
    }

    void results_data()
    {
        QTest::addColumn<quint16>("code");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QByteArray>("signal");
        QTest::addColumn<int>("first");

        QTest::newRow("2-point success") << quint16(0x3804) << QByteArray("{\"result\":1}")
                                         << QStringLiteral("接收工具手标定计算成功")
                                         << QByteArray(SIGNAL(robot_count_success(int))) << 1;
        QTest::newRow("2-point failure") << quint16(0x3804) << QByteArray("{\"result\":0}")
                                         << QStringLiteral("接收工具手标定失败")
                                         << QByteArray(SIGNAL(robot_count_success(int))) << 0;
        QTest::newRow("20-point success") << quint16(0x7104) << QByteArray("{\"distance\":0.25,\"result\":1}")
                                          << QStringLiteral("接收工具手标定计算成功,结果值为0.25")
                                          << QByteArray(SIGNAL(robot_count_successFor20(int, double))) << 1;
        QTest::newRow("20-point failure") << quint16(0x7104) << QByteArray("{\"distance\":3.5,\"result\":0}")
                                          << QStringLiteral("接收工具手标定失败,结果值为3.5")
                                          << QByteArray(SIGNAL(robot_count_successFor20(int, double))) << 0;
        QTest::newRow("zero point applied") << quint16(0x7106) << QByteArray("{\"apply\":1}")
                                            << QStringLiteral("20点标定，将结果位置标为零点成功")
                                            << QByteArray(SIGNAL(robot_ResetResult_ToZeroPoint(int))) << 1;
        QTest::newRow("zero point refused") << quint16(0x7106) << QByteArray("{\"apply\":0}")
                                            << QStringLiteral("20点标定，将结果位置标为零点失败")
                                            << QByteArray(SIGNAL(robot_ResetResult_ToZeroPoint(int))) << 0;
    }

    void results()
    {
        QFETCH(quint16, code);
        QFETCH(QByteArray, payload);
        QFETCH(QString, line);
        QFETCH(QByteArray, signal);
        QFETCH(int, first);

        QList<QVariant> args;
        deliverOnce(code, payload, signal.constData(), line, &args);
        if (QTest::currentTestFailed())
            return;
        QCOMPARE(args.value(0).toInt(), first);
        if (code == 0x7104)
            QCOMPARE(args.value(1).toDouble(), first ? 0.25 : 3.5);
    }

    void fourPoint_data()
    {
        QTest::addColumn<quint16>("code");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QVector<double>>("cache");

        QTest::newRow("points")
            << quint16(0x7208)
            << QByteArray("{\"dtheta\":0.5,\"length\":[10.5,20.5,30.5],\"result\":1,\"status\":[1,1,0,1]}")
            << QVector<double>{1, 1, 0, 1, 1, 10.5, 20.5, 30.5, 0.5};
        QTest::newRow("points, scalar length")
            << quint16(0x7208) << QByteArray("{\"dtheta\":2.5,\"length\":7.5,\"result\":0,\"status\":[1]}")
            << QVector<double>{1, 0, 0, 0, 0, 7.5, 0, 0, 2.5};
        QTest::newRow("calculation")
            << quint16(0x7204) << QByteArray("{\"dtheta\":0.75,\"length\":[1.5,2.5,3.5],\"result\":1}")
            << QVector<double>{1, 1.5, 2.5, 3.5, 0.75};
        // A report without its keys ("{}") is not taken: tst_keyless.
    }

    void fourPoint()
    {
        QFETCH(quint16, code);
        QFETCH(QByteArray, payload);
        QFETCH(QVector<double>, cache);

        // A previous report leaves no trace.
        withCache(robot, [&] {
            std::fill(std::begin(robot->fourPointData), std::end(robot->fourPointData), 99.0);
            std::fill(std::begin(robot->fourPointResult), std::end(robot->fourPointResult), 99.0);
        });
        ThreadSpy spy(robot, code == 0x7208 ? SIGNAL(robot_received4Point(QByteArray))
                                            : SIGNAL(robot_count_successFor4(QByteArray)));
        deliver(code, payload);
        if (code == 0x7208)
            QCOMPARE(row(robot->fourPointData, 9), cache);
        else
            QCOMPARE(row(robot->fourPointResult, 5), cache);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).value(0).toByteArray(), payload + '\n');
    }

    void dhResult_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<int>("flag");
        QTest::newRow("applied") << QByteArray("{\"apply\":1}") << 1;
        QTest::newRow("applied, true") << QByteArray("{\"apply\":true}") << 1;
        QTest::newRow("not applied") << QByteArray("{\"apply\":0}") << 0;
        // {} lacks "apply" and changes nothing: tst_keyless.
    }

    void dhResult()
    {
        QFETCH(QByteArray, payload);
        QFETCH(int, flag);
        robot->dhResult.store(flag ? 0 : 1);
        ThreadSpy spy(robot, SIGNAL(robot_receivedresultForDH(QByteArray)));
        deliver(0x7206, payload);
        QCOMPARE(int(robot->dhResult.load()), flag);
        QCOMPARE(spy.count(), 1);
    }

    void zeroCalibration_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::newRow("with axis") << QByteArray("{\"axis\":3}");
        QTest::newRow("empty") << QByteArray();
    }

    void zeroCalibration()
    {
        QFETCH(QByteArray, payload);
        robot->zeroCalibrationSuccess.store(0);
        LogCapture log;
        ThreadSpy spy(robot, SIGNAL(robot_zero_success(QByteArray)));
        deliver(0x3303, payload);
        QCOMPARE(int(robot->zeroCalibrationSuccess.load()), 1);
        QCOMPARE(log.count(QStringLiteral("接收零点标定成功")), 1);
        QCOMPARE(spy.count(), 1);
    }

    void toolStatus_data()
    {
        QTest::addColumn<quint16>("code");
        QTest::newRow("all tool points") << quint16(0x3816);
        QTest::newRow("20-point state") << quint16(0x7108);
    }

    void toolStatus()
    {
        QFETCH(quint16, code);
        ThreadSpy spy(robot, SIGNAL(signal_toolStatus(QByteArray)));
        deliver(code, "{\"status\":[1,0,1]}");
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).value(0).toByteArray(), QByteArray("{\"status\":[1,0,1]}\n"));
    }

    // A report that is not JSON changes no cache but still ends a wait.
    void garbageStillWakes_data()
    {
        QTest::addColumn<quint16>("code");
        QTest::newRow("tool") << quint16(0x3807);
        QTest::newRow("user frame") << quint16(0x3C09);
        QTest::newRow("four points") << quint16(0x7208);
        QTest::newRow("DH result") << quint16(0x7206);
    }

    void garbageStillWakes()
    {
        QFETCH(quint16, code);
        robot->fourPointData[0] = 42.0;
        robot->dhResult.store(1);
        robot->lastToolNum = 17;
        deliver(code, "\xff\xfe not json");
        QCOMPARE(robot->fourPointData[0], 42.0);
        QCOMPARE(int(robot->dhResult.load()), 1);
        QCOMPARE(robot->lastToolNum, 17);
    }

    // ---- the controller's answers to the host's queries ----------------------

    void toolQueryAnswered()
    {
        fixture.sim().withModel([](qrxsim::ControllerModel &m) {
            qrxsim::SimTool tool;
            const double deg[6] = {11.5, 12.5, 13.5, 14.5, 15.5, 16.5};
            std::copy(deg, deg + 6, tool.deg);
            m.tools[9] = tool;
        });
        deliverQuery(0x3806, "{\"toolNum\":9}\n");
        QCOMPARE(robot->lastToolNum, 9);
        QCOMPARE(row(robot->toolParameters[9], 6), (QVector<double>{11.5, 12.5, 13.5, 14.5, 15.5, 16.5}));
    }

    void toolSetThenQueried()
    {
        robot->send(0x3805, "{\"robot\":1,\"tool\":{\"A\":4.0,\"B\":5.0,\"C\":6.0,\"x\":1.0,\"y\":2.0,\"z\":3.0},"
                            "\"toolNum\":12}\n");
        deliverQuery(0x3806, "{\"toolNum\":12}\n");
        QCOMPARE(row(robot->toolParameters[12], 6), (QVector<double>{1, 2, 3, 4, 5, 6}));
    }

    void fourPointAnswered()
    {
        fixture.sim().withModel([](qrxsim::ControllerModel &m) {
            std::fill(std::begin(m.fourPointStatus), std::end(m.fourPointStatus), 0);
        });
        for (int point = 1; point <= 4; ++point)
            robot->send(0x7202, "{\"pointNum\":" + QByteArray::number(point) + ",\"status\":1}\n");
        deliverQuery(0x7207, QByteArray());
        QCOMPARE(row(robot->fourPointData, 9), (QVector<double>{1, 1, 1, 1, 1, 0.5, 0.25, 0.125, 0.75}));
        deliverQuery(0x7201, "{\"ParamOf4Points\":[1.5,2.5]}\n");
        QCOMPARE(row(robot->fourPointResult, 5), (QVector<double>{1, 0.5, 0.25, 0.125, 0.75}));
        std::vector<double> params;
        fixture.sim().withModel([&](qrxsim::ControllerModel &m) { params = m.fourPointParams; });
        QCOMPARE(params, (std::vector<double>{1.5, 2.5}));
    }

    void dhAndZeroAnswered()
    {
        robot->dhResult.store(0);
        deliverQuery(0x7205, QByteArray());
        QCOMPARE(int(robot->dhResult.load()), 1);
        robot->zeroCalibrationSuccess.store(0);
        deliverQuery(0x3301, "{\"axis\":4,\"clearEncoder\":false}\n");
        QCOMPARE(int(robot->zeroCalibrationSuccess.load()), 1);
    }

    void currentUserFrameAnswered()
    {
        fixture.sim().withModel([](qrxsim::ControllerModel &m) { m.currentUserFrame = 6; });
        deliverQuery(0x3C0B, "{\"robot\":1}\n");
        QCOMPARE(robot->currentUserFrame, 6);
    }

    void userFrameSelectionAnswered()
    {
        fixture.sim().withModel([](qrxsim::ControllerModel &m) {
            m.userFrames[5] = {10.5, 20.5, 30.5, 0.0, 0.0, 45.0};
            m.userFrameValues = 6;
        });
        // The selection is reported back, then the inquiry answered.
        deliverQuery(0x3C08, "{\"robot\":1,\"userNum\":5}\n");
        QCOMPARE(robot->currentUserFrame, 5);
        ThreadSpy reply(robot, SIGNAL(robot_usercoords_reply(int, QString, QVector<double>, bool)));
        deliverQuery(0x3C0A, "{\"inquire\":\"Calibration\",\"userNum\":5}\n");
        QCOMPARE(reply.count(), 1);
        QCOMPARE(reply.at(0).value(0).toInt(), 5);
        QCOMPARE(reply.at(0).value(2).value<QVector<double>>(), (QVector<double>{10.5, 20.5, 30.5, 0.0, 0.0, 45.0}));
        QVERIFY(reply.at(0).value(3).toBool());
    }

    void zeroShiftTaken()
    {
        robot->send(0x3307, "{\"axis\":3,\"robot\":1,\"value\":[0,0,360.0,0,0,0,0]}\n");
        // Frames are taken in order: once the next query is answered, the
        // offset is in the model.
        deliverQuery(0x3C0B, "{\"robot\":1}\n");
        double shift[7] = {};
        fixture.sim().withModel([&](qrxsim::ControllerModel &m) { std::copy(m.zeroShift, m.zeroShift + 7, shift); });
        QCOMPARE(row(shift, 7), (QVector<double>{0, 0, 360.0, 0, 0, 0, 0}));
    }

private:
    // Sends a query the way the host API does: lock, send, wait for a wake.
    void deliverQuery(quint16 code, const QByteArray &payload)
    {
        QVERIFY(fixture.wokenBy([&] { return robot->send(code, payload); }));
        QVERIFY(fixture.flush());
    }
};

QTEST_GUILESS_MAIN(tst_ToolFrames)
#include "tst_toolframes.moc"
