// The robot model and its kinematic parameters, through the link from
// qrx-sim: every wire code of the robot type report, the DH lines of each
// model, DH messages ignored by the one-axis model, and the parameter
// reports with their log lines and notifications.

#include "RobotFixture.h"
#include "ThreadSpy.h"
#include "robot/RobotTypes.h"
#include "support/LogCapture.h"

#include <QtTest>

namespace {

const QString kTypeLinePrefix = QStringLiteral("接收机器人型号");
const QString kDhLinePrefix = QStringLiteral("接收DH参数数据");

QByteArray typeReport(int wire)
{
    return "{\"type\":" + QByteArray::number(wire) + "}";
}

// Link lengths 1.5 .. 8.5, couplings named after their axes, theta 90.
const QByteArray kDhPayload =
    "{\"CoupleCoe\":{\"Couple_Coe_1_2\":12,\"Couple_Coe_2_3\":23,\"Couple_Coe_3_2\":32,"
    "\"Couple_Coe_3_4\":34,\"Couple_Coe_4_5\":45,\"Couple_Coe_4_6\":46,\"Couple_Coe_5_6\":56},"
    "\"Link\":[1.5,2.5,3.5,4.5,5.5,6.5,7.5,8.5],\"dynamicLimit\":1,\"pitch\":2.5,\"theta\":90.0,"
    "\"upsideDown\":1}";

const QString kSixAxisLine = QStringLiteral(
    "接收DH参数数据 d1=1.5 a2=2.5 a3=3.5 d4=4.5 d6=5.5 a1=6.5 1-2=12  2-3=23  3-2=32  3-4=34  "
    "4-5=45 4-6=46 5-6=56 theta=90");
const QString kSecondD6Line = QStringLiteral(
    "接收DH参数数据 d1=1.5 a2=2.5 a3=3.5 d4=4.5 d6=5.5  d6=7.5 a1=6.5 1-2=12  2-3=23  3-2=32  "
    "3-4=34  4-5=45 4-6=46 5-6=56 theta=90");
const QString kFourAxisLine =
    QStringLiteral("接收DH参数数据 a1=1.5 a2=2.5 a3=3.5 a4=4.5 d4=5.5 couple_2_3=23 couple_3_4=34");
const QString kSecondA2Line = QStringLiteral(
    "接收DH参数数据 d1=1.5 a2=2.5 a3=3.5 d4=4.5 d6=5.5 a1=6.5 a2=7.5 1-2=12  2-3=23  3-2=32  "
    "3-4=34  4-5=45 4-6=46 5-6=56");
const QString kEightLengthLine = QStringLiteral(
    "接收DH参数数据 L1=1.5 L2=2.5 L3=3.5 L4=4.5 L5=5.5 L6=6.5 L7=7.5 L8=8.5 couple_1_2=12  "
    "couple_2_3=23 couple_3_2=32  couple_3_4=34 couple_4_5=45 couple_4_6=46 couple_5_6=56");

} // namespace

class tst_RobotTypes : public RobotTestCase
{
    Q_OBJECT

private:
    void holdType(int wire)
    {
        fixture.send(0x2E03, typeReport(wire));
        QVERIFY(fixture.flush());
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(startRobot());
    }

    void cleanup()
    {
        // Back to the controller's single robot for the next case.
        if (robot && robot->robotCount != 1) {
            fixture.send(0x2E06, "{\"sum\":1}");
            QVERIFY(fixture.flush());
        }
    }

    // The controller reports its six-axis robot right after the connection.
    void startupType()
    {
        QCOMPARE(robot->robotType, 1);
        QCOMPARE(robot->axisCount, 6);
    }

    void robotType_data()
    {
        QTest::addColumn<int>("wire");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("axes"); // after a seven-axis robot
        QTest::addColumn<QString>("line");

        QTest::newRow("1") << 1 << 1 << "R_GENERAL_6S" << 6 << "接收机器人型号 六轴机器人";
        QTest::newRow("2") << 2 << 6 << "R_SCARA" << 4 << "接收机器人型号四轴SCARA机器人";
        QTest::newRow("3") << 3 << 8 << "R_FOURAXIS_PALLET" << 4 << "接收机器人型号四轴码垛机器人";
        QTest::newRow("4") << 4 << 10 << "R_FOURAXIS" << 4 << "接收机器人型号四轴机器人";
        QTest::newRow("5") << 5 << 18 << "R_GENERAL_1S" << 1 << "接收机器人型号一轴机器人";
        QTest::newRow("6") << 6 << 5 << "R_GENERAL_5S" << 5 << "接收机器人型号五轴机器人";
        QTest::newRow("7") << 7 << 2 << "R_GENERAL_6S_1" << 6 << "接收机器人型号UR机器人";
        QTest::newRow("8") << 8 << 16 << "R_SCARA_TWOAXIS" << 2 << "接收机器人型号二轴SCARA机器人";
        QTest::newRow("9") << 9 << 13 << "R_SCARA_THREEAXIS" << 3 << QString();
        QTest::newRow("10") << 10 << 14 << "R_THREE_CARTESIAN_COORDINATE" << 3 << QString();
        QTest::newRow("11") << 11 << 15 << "R_THREE_CARTESIAN_COORDINATE_1" << 3 << QString();
        QTest::newRow("12") << 12 << 17 << "R_GENERAL_7S" << 7 << QString();
        QTest::newRow("13") << 13 << 7 << "R_SCARA_1" << 4 << "接收机器人型号SCARA异型一机器人";
        QTest::newRow("14") << 14 << 9 << "R_FOURAXIS_PALLET_1" << 4 << "接收机器人型号四轴码垛异形一机器人";
        QTest::newRow("15") << 15 << 3 << "R_SIXAXIS_SPRAY_BBR" << 6 << "接收机器人型号六轴喷涂机器人";
        QTest::newRow("16") << 16 << 11 << "R_FOUR_CARTESIAN_COORDINATE" << 4 << "接收机器人型号四轴直角机器人";
        QTest::newRow("17") << 17 << 12 << "R_FOUR_POLAR_COORDINATE_1" << 4
                            << "接收机器人型号四轴极坐标异型机器人";
        QTest::newRow("18") << 18 << 4 << "R_GENERAL_6S_2" << 6 << "接收机器人型号 六轴异型一";
        QTest::newRow("19") << 19 << 19 << "R_GANTRY_WELD" << 5 << "接收机器人型号龙门焊接机器人";
        QTest::newRow("20 delta keeps the axes") << 20 << 20 << "R_DELTA" << 7 << "接收机器人型号delta机器人";
        QTest::newRow("0 unknown") << 0 << 0 << "R_NULL" << 7 << QString();
        QTest::newRow("21 unknown") << 21 << 0 << "R_NULL" << 7 << QString();
        QTest::newRow("-1 unknown") << -1 << 0 << "R_NULL" << 7 << QString();
        QTest::newRow("1000 unknown") << 1000 << 0 << "R_NULL" << 7 << QString();
    }

    void robotType()
    {
        QFETCH(int, wire);
        QFETCH(int, type);
        QFETCH(QString, name);
        QFETCH(int, axes);
        QFETCH(QString, line);

        holdType(12); // seven axes: no other model has as many
        QCOMPARE(robot->axisCount, 7);

        LogCapture log;
        ThreadSpy changed(robot, SIGNAL(robot_change_CurRobotType(RobotType)));
        QVERIFY(changed.isValid());
        QVERIFY(fixture.sendWaking(0x2E03, typeReport(wire)));
        QVERIFY(fixture.flush());

        QCOMPARE(robot->robotType, type);
        QCOMPARE(robot->axisCount, axes);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(int(changed.at(0).value(0).value<RobotType>()), type);
        QCOMPARE(qrx::robotTypeName(type), name);

        const QStringList typeLines = log.lines().filter(kTypeLinePrefix);
        if (line.isEmpty())
            QVERIFY2(typeLines.isEmpty(), qPrintable(typeLines.join('|')));
        else
            QCOMPARE(typeLines, QStringList{line});
    }

    // A report that is not JSON changes nothing but still ends a wait.
    void robotTypeGarbage()
    {
        holdType(3);
        ThreadSpy changed(robot, SIGNAL(robot_change_CurRobotType(RobotType)));
        QVERIFY(fixture.sendWaking(0x2E03, "type=7", true));
        QVERIFY(fixture.flush());
        QCOMPARE(robot->robotType, 8);
        QCOMPARE(robot->axisCount, 4);
        QCOMPARE(changed.count(), 0);
    }

    void typeNames_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("name");
        QTest::newRow("0") << 0 << "R_NULL";
        QTest::newRow("3") << 3 << "R_SIXAXIS_SPRAY_BBR";
        QTest::newRow("11") << 11 << "R_FOUR_CARTESIAN_COORDINATE";
        QTest::newRow("18") << 18 << "R_GENERAL_1S";
        QTest::newRow("20") << 20 << "R_DELTA";
        QTest::newRow("21") << 21 << "R_NULL";
        QTest::newRow("-5") << -5 << "R_NULL";
        QTest::newRow("255") << 255 << "R_NULL";
    }

    void typeNames()
    {
        QFETCH(int, code);
        QFETCH(QString, name);
        QCOMPARE(qrx::robotTypeName(code), name);
    }

    void dhLines_data()
    {
        QTest::addColumn<int>("wire");
        QTest::addColumn<quint16>("code");
        QTest::addColumn<QString>("line"); // empty: no DH line
        QTest::addColumn<int>("values");   // how many values robot_user_dhParaState carries

        const quint16 value = 0x3E05, state = 0x3A03;
        QTest::newRow("5S value") << 6 << value << kSixAxisLine << 14;
        QTest::newRow("SCARA value") << 2 << value << kSixAxisLine << 14;
        QTest::newRow("SCARA_1 state") << 13 << state << kSixAxisLine << 14;
        QTest::newRow("SCARA three-axis value") << 9 << value << kSixAxisLine << 14;
        QTest::newRow("SCARA two-axis state") << 8 << state << kSixAxisLine << 14;
        QTest::newRow("6S_2 value") << 18 << value << kSecondD6Line << 15;
        QTest::newRow("6S_2 state") << 18 << state << kSecondD6Line << 15;
        QTest::newRow("pallet value") << 3 << value << kFourAxisLine << 7;
        QTest::newRow("UR value") << 7 << value << kSecondA2Line << 14;
        QTest::newRow("UR state") << 7 << state << kSecondA2Line << 14;
        QTest::newRow("spray value") << 15 << value << kEightLengthLine << 15;
        // The models whose reading is the library's choice.
        QTest::newRow("6S value") << 1 << value << kSixAxisLine << 14;
        QTest::newRow("gantry value") << 19 << value << kSixAxisLine << 14;
        QTest::newRow("four-axis value") << 4 << value << kFourAxisLine << 7;
        QTest::newRow("pallet_1 state") << 14 << state << kFourAxisLine << 7;
        QTest::newRow("Cartesian value") << 16 << value << kFourAxisLine << 7;
        QTest::newRow("polar value") << 17 << value << kFourAxisLine << 7;
        QTest::newRow("three Cartesian value") << 10 << value << kFourAxisLine << 7;
        QTest::newRow("three Cartesian_1 value") << 11 << value << kFourAxisLine << 7;
        QTest::newRow("delta value") << 20 << value << kFourAxisLine << 7;
        QTest::newRow("7S value") << 12 << value << kEightLengthLine << 15;
        QTest::newRow("unknown type value") << 0 << value << QString() << 0;
    }

    void dhLines()
    {
        QFETCH(int, wire);
        QFETCH(quint16, code);
        QFETCH(QString, line);
        QFETCH(int, values);

        holdType(wire);
        LogCapture log;
        ThreadSpy state(robot, SIGNAL(robot_user_dhParaState(QStringList)));
        ThreadSpy mounting(robot, SIGNAL(robot_user_dhcoord(QString)));
        ThreadSpy pitch(robot, SIGNAL(signal_robotUserDhpitch(double)));
        ThreadSpy joint(robot, SIGNAL(robot_joint_para(int, QByteArray)));
        ThreadSpy finished(robot, SIGNAL(signal_DHreviewFinish()));
        QVERIFY(fixture.sendWaking(code, kDhPayload));
        QVERIFY(fixture.flush());

        const QStringList dhLines = log.lines().filter(kDhLinePrefix);
        if (line.isEmpty())
            QVERIFY2(dhLines.isEmpty(), qPrintable(dhLines.join('|')));
        else
            QCOMPARE(dhLines, QStringList{line});

        QCOMPARE(state.count(), 1);
        const QStringList read = state.at(0).value(0).toStringList();
        QCOMPARE(read.size(), values);
        if (values > 0)
            QCOMPARE(read.first(), QStringLiteral("1.5"));
        QCOMPARE(mounting.count(), 1);
        QCOMPARE(mounting.at(0).value(0).toString(), QStringLiteral("1"));
        QCOMPARE(pitch.count(), 1);
        QCOMPARE(pitch.at(0).value(0).toDouble(), 2.5);
        // Only the parameter values end a DH review.
        const int reviews = code == 0x3E05 ? 1 : 0;
        QCOMPARE(finished.count(), reviews);
        QCOMPARE(joint.count(), reviews);
        if (reviews)
            QCOMPARE(joint.at(0).value(1).toByteArray(), kDhPayload + '\n');
    }

    void dhMissingValues()
    {
        holdType(3);
        LogCapture log;
        fixture.send(0x3E05, "{\"Link\":[1]}");
        QVERIFY(fixture.flush());
        QCOMPARE(log.lines().filter(kDhLinePrefix),
                 QStringList{QStringLiteral(
                     "接收DH参数数据 a1=1 a2=0 a3=0 a4=0 d4=0 couple_2_3=0 couple_3_4=0")});
    }

    void dhIgnoredForOneAxis_data()
    {
        QTest::addColumn<quint16>("code");
        QTest::addColumn<QByteArray>("payload");
        QTest::newRow("values") << quint16(0x3E05) << kDhPayload;
        QTest::newRow("state") << quint16(0x3A03) << kDhPayload;
        QTest::newRow("values, not JSON") << quint16(0x3E05) << QByteArray("Link=1");
    }

    // With the wait lock held here, a DH handler that tried to wake would
    // stall the link thread and the marker behind it would never arrive.
    void dhIgnoredForOneAxis()
    {
        QFETCH(quint16, code);
        QFETCH(QByteArray, payload);

        holdType(5);
        QCOMPARE(robot->robotType, 18);
        LogCapture log;
        ThreadSpy state(robot, SIGNAL(robot_user_dhParaState(QStringList)));
        ThreadSpy finished(robot, SIGNAL(signal_DHreviewFinish()));

        QVERIFY(fixture.sendWithoutWake(code, payload));

        QVERIFY(log.lines().filter(kDhLinePrefix).isEmpty());
        QCOMPARE(state.count(), 0);
        QCOMPARE(finished.count(), 0);
        QCOMPARE(robot->robotType, 18);
    }

    void parameterReports_data()
    {
        QTest::addColumn<quint16>("code");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QString>("line"); // empty: none
        QTest::addColumn<QByteArray>("signal");
        QTest::addColumn<int>("number"); // the int argument, or -1 when there is none

        QTest::newRow("joint parameters")
            << quint16(0x3B03)
            << QByteArray("{\"Joint\":{\"AxisDirection\":-1,\"AxisNum\":3,\"BackLash\":0.01,\"DeRatedVel\":2500,"
                          "\"Direction\":1,\"EncoderResolution\":17,\"MaxAcc\":2.5,\"MaxDeRotSpeed\":3400,"
                          "\"MaxDecel\":3.5,\"MaxRotSpeed\":3500,\"NegSWLimit\":-170,\"PosSWLimit\":170,"
                          "\"RatedDeRotSpeed\":2900,\"RatedRotSpeed\":3000,\"RatedVel\":3000,"
                          "\"ReducRatio\":101,\"reduce_ratio_enable\":1}}")
            << QStringLiteral("接收关节参数数据 joint=3 posSWLimit=170 negSWLimit=-170 ratedvel=3000 "
                              "DeRatedVel=2500 maxRotSpeed=3500 maxDeRotSpeed=3400 maxAcc=2.5 maxDecel=3.5 "
                              "reducRatio=101 encoderResolution=17 ratedrotspeed=3000 ratedderotspeed=2900 "
                              "backlash=0.01 direction=1 AxisDirection=-1")
            << QByteArray(SIGNAL(robot_joint_para(int, QByteArray))) << 3;
        // {"AxisNum":3} without "Joint" lacks the report's key: tst_keyless.
        QTest::newRow("joint jog limits")
            << quint16(0x2606) << QByteArray("{\"AxisNum\":2,\"MaxAcc\":1.5,\"MaxSpeed\":30}")
            << QStringLiteral("接收关节轴最大点动速度 AxisNum=2 MaxSpeed=30 MaxAcc=1.5")
            << QByteArray(SIGNAL(robot_jointInchSpeed_data_check(int, QByteArray))) << 2;
        QTest::newRow("Cartesian jog limits")
            << quint16(0x2609) << QByteArray("{\"MaxAcc\":100,\"MaxSpeed\":250}") << QString()
            << QByteArray(SIGNAL(robot_rectInchSpeed_data_check(QByteArray))) << -1;
        QTest::newRow("interpolation")
            << quint16(0x2803)
            << QByteArray("{\"absolutePosResolution\":0.01,\"interpolationMethod\":1,\"runDelayTime\":5,"
                          "\"stopTime\":10}")
            << QStringLiteral("接收机器人插补方式 interpolationMethod=1")
            << QByteArray(SIGNAL(robot_interpolationMode_data_check(QByteArray))) << -1;
        QTest::newRow("sensitivity")
            << quint16(0x260C) << QByteArray("{\"Sensitivity\":3}") << QStringLiteral("接收点动灵敏度 Sensitivity=3")
            << QByteArray(SIGNAL(robot_sensitivity_data_check(QByteArray))) << -1;
        QTest::newRow("positioner axes")
            << quint16(0x700B) << QByteArray("{\"AxisNum\":2}") << QStringLiteral("接收变位机轴数 2")
            << QByteArray(SIGNAL(robot_tool_receiveOutterAxisCount(int))) << 2;
    }

    void parameterReports()
    {
        QFETCH(quint16, code);
        QFETCH(QByteArray, payload);
        QFETCH(QString, line);
        QFETCH(QByteArray, signal);
        QFETCH(int, number);

        LogCapture log;
        ThreadSpy spy(robot, signal.constData());
        QVERIFY(spy.isValid());
        QVERIFY(fixture.sendWaking(code, payload));
        QVERIFY(fixture.flush());

        QCOMPARE(spy.count(), 1);
        const QList<QVariant> args = spy.at(0);
        if (number >= 0)
            QCOMPARE(args.value(0).toInt(), number);
        // The payload, where the notification carries it, is the one received.
        for (const QVariant &arg : args)
            if (arg.userType() == QMetaType::QByteArray)
                QCOMPARE(arg.toByteArray(), payload + '\n');
        if (!line.isEmpty())
            QCOMPARE(log.count(line), 1);
        if (code == 0x700B)
            QCOMPARE(robot->positionerAxisCount, number);
    }

    // The controller answers the type query with the model it drives.
    void typeQueryAnswered()
    {
        holdType(3);
        fixture.sim().withModel([](qrxsim::ControllerModel &m) { m.robotTypeWire = 7; });
        QVERIFY(fixture.wokenBy([this] { return robot->send(0x2E02, QByteArray()); }));
        QCOMPARE(robot->robotType, 2);
        QCOMPARE(robot->axisCount, 6);
        fixture.sim().withModel([](qrxsim::ControllerModel &m) { m.robotTypeWire = 1; });
    }

    // The configuration files are described for the robot count reported.
    void configFilesByRobotCount_data()
    {
        QTest::addColumn<int>("sum");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("description");
        QTest::newRow("one robot, Robot_B") << 1 << "Robot_B.json" << QString();
        QTest::newRow("two robots, Robot_B") << 2 << "Robot_B.json" << QStringLiteral("机器人2参数配置");
        QTest::newRow("one robot, Robot_A") << 1 << "Robot_A.json" << QStringLiteral("参数配置");
        QTest::newRow("four robots, Robot_A") << 4 << "Robot_A.json" << QStringLiteral("机器人1参数配置");
        QTest::newRow("three robots, spray 3") << 3 << "R3spray.json" << QStringLiteral("机器人3喷涂参数配置");
    }

    void configFilesByRobotCount()
    {
        QFETCH(int, sum);
        QFETCH(QString, file);
        QFETCH(QString, description);
        fixture.send(0x2E06, "{\"sum\":" + QByteArray::number(sum) + "}");
        QVERIFY(fixture.flush());
        QCOMPARE(robot->robotCount, sum);
        QCOMPARE(robot->configFileDescription(file), description);
    }

    // The positioner axis count also travels on as the raw report.
    void positionerCountRelayed()
    {
        ThreadSpy relayed(robot, SIGNAL(signal_syncPositionerNum(QByteArray)));
        fixture.send(0x700B, "{\"AxisNum\":1}");
        QVERIFY(fixture.flush());
        QCOMPARE(relayed.count(), 1);
        QCOMPARE(relayed.at(0).value(0).toByteArray(), QByteArray("{\"AxisNum\":1}\n"));
    }
};

QTEST_GUILESS_MAIN(tst_RobotTypes)
#include "tst_robottypes.moc"
