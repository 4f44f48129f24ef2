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
