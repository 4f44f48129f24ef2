// The robot model and its kinematic parameters, through the link from
// qrx-sim: the type the controller starts with and answers a query with,
// the type names, the DH lines of each model, and the configuration files
// by robot count. What each report does to the state, its lines and its
// signals is tst_decoders' part, without a socket.

#include "RobotFixture.h"
#include "ThreadSpy.h"
#include "robot/RobotTypes.h"
#include "support/LogCapture.h"

#include <QtTest>

namespace {

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
};

QTEST_GUILESS_MAIN(tst_RobotTypes)
#include "tst_robottypes.moc"
