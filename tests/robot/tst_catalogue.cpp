// The configuration-file catalogue: descriptions by file name and robot
// count, the filling order of both catalogues, translation at filling time.

#include "robot/ConfigCatalogue.h"

#include <QCoreApplication>
#include <QTranslator>
#include <QtTest>

using qrx::ConfigCatalogue;

namespace {

// Translates one text of the Robot context, so a test can tell whether the
// catalogue asked for the translation when it was filled.
class OneTextTranslator : public QTranslator
{
public:
    QString translate(const char *context, const char *sourceText, const char *, int) const override
    {
        if (qstrcmp(context, "Robot") == 0 && QString::fromUtf8(sourceText) == QStringLiteral("控制器参数配置"))
            return QStringLiteral("Controller parameters");
        return QString();
    }
    bool isEmpty() const override { return false; }
};

QStringList fileNames(const QVector<ConfigCatalogue::Entry> &entries)
{
    QStringList names;
    for (const auto &e : entries)
        names << e.first;
    return names;
}

// The robot a per-robot file belongs to, from the controller's three
// naming schemes ("_R2", "R2...", "_B"); 0 for shared files.
int robotOfFile(const QString &file)
{
    static const QRegularExpression scheme(QStringLiteral("^(?:R([1-4])\\D|.*_R([1-4])\\.|.*_([A-D])\\.)"));
    const QRegularExpressionMatch m = scheme.match(file);
    if (!m.hasMatch())
        return 0;
    for (int group = 1; group <= 2; ++group)
        if (!m.captured(group).isEmpty())
            return m.captured(group).toInt();
    return m.captured(3).at(0).unicode() - 'A' + 1;
}

} // namespace

class TestCatalogue : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void describe_data();
    void describe();
    void multiRobotOrder();
    void singleRobotOrder();
    void everyEntryDescribesItself_data();
    void everyEntryDescribesItself();
    void translationAtFillingTime();
};

void TestCatalogue::describe_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("robots");
    QTest::addColumn<QString>("expected");

    QTest::newRow("Robot_B one robot") << "Robot_B.json" << 1 << QString();
    QTest::newRow("Robot_B two robots") << "Robot_B.json" << 2 << QStringLiteral("机器人2参数配置");
    QTest::newRow("Robot_A one robot") << "Robot_A.json" << 1 << QStringLiteral("参数配置");
    QTest::newRow("Robot_A two robots") << "Robot_A.json" << 2 << QStringLiteral("机器人1参数配置");
    QTest::newRow("Robot_D four robots") << "Robot_D.json" << 4 << QStringLiteral("机器人4参数配置");
    QTest::newRow("no robot counts as one") << "Robot_A.json" << 0 << QStringLiteral("参数配置");
    QTest::newRow("negative counts as one") << "Robot_B.json" << -3 << QString();
    QTest::newRow("controller single") << "controller.json" << 1 << QStringLiteral("控制器参数配置");
    QTest::newRow("controller multi") << "controller.json" << 3 << QStringLiteral("控制器参数配置");
    QTest::newRow("positionExt_R1 single") << "positionExt_R1.json" << 1
                                           << QStringLiteral("全局外部轴点位参数配置");
    QTest::newRow("positionExt_R3 multi") << "positionExt_R3.json" << 3
                                          << QStringLiteral("机器人3全局外部轴点位参数配置");
    QTest::newRow("position_R1 single") << "position_R1.json" << 1 << QStringLiteral("全局点位参数配置");
    QTest::newRow("position_R2 single") << "position_R2.json" << 1 << QString();
    QTest::newRow("R1pallet single") << "R1palletparameter.json" << 1 << QStringLiteral("码垛参数配置");
    QTest::newRow("R4pallet multi") << "R4palletparameter.json" << 2 << QStringLiteral("机器人4码垛参数配置");
    QTest::newRow("R1spray single") << "R1spray.json" << 1 << QStringLiteral("喷涂参数配置");
    QTest::newRow("R2spray multi") << "R2spray.json" << 2 << QStringLiteral("机器人2喷涂参数配置");
    QTest::newRow("toolFrame_A single") << "toolFrame_A.json" << 1 << QStringLiteral("工具手参数配置");
    QTest::newRow("toolFrame_C multi") << "toolFrame_C.json" << 4 << QStringLiteral("机器人3工具手参数配置");
    QTest::newRow("userFrame_A single") << "userFrame_A.json" << 1 << QStringLiteral("用户坐标参数配置");
    QTest::newRow("userFrame_B multi") << "userFrame_B.json" << 2 << QStringLiteral("机器人2用户坐标参数配置");
    QTest::newRow("modbus") << "modbusAddr.json" << 1 << QStringLiteral("MODBUS参数配置");
    QTest::newRow("msg_comm") << "msg_comm.json" << 2 << QStringLiteral("TCP通讯配置");
    QTest::newRow("slaveTypeLib") << "slaveTypeLib.json" << 1 << QStringLiteral("伺服自定义添加配置");
    QTest::newRow("case matters") << "robot_a.json" << 2 << QString();
    QTest::newRow("case matters single") << "Controller.json" << 1 << QString();
    QTest::newRow("unknown name") << "job.json" << 2 << QString();
    QTest::newRow("empty name") << QString() << 1 << QString();
    QTest::newRow("no partial match") << "controller" << 2 << QString();
}

void TestCatalogue::describe()
{
    QFETCH(QString, file);
    QFETCH(int, robots);
    QFETCH(QString, expected);
    const ConfigCatalogue catalogue;
    const QString got = catalogue.describe(file, robots);
    QCOMPARE(got, expected);
    QCOMPARE(got.isNull() || got.isEmpty(), expected.isEmpty());
}

void TestCatalogue::multiRobotOrder()
{
    const QStringList expected = {
        "controller.json", "global.json", "arctrack.json", "conveytrack.json", "externProgram.json",
        "lasercut.json", "lasertrack.json", "polish.json", "positionExt_R1.json", "positionExt_R2.json",
        "positionExt_R3.json", "positionExt_R4.json", "position_R1.json", "position_R2.json",
        "position_R3.json", "position_R4.json", "R1palletparameter.json", "R2palletparameter.json",
        "R3palletparameter.json", "R4palletparameter.json", "R1spray.json", "R2spray.json", "R3spray.json",
        "R4spray.json", "remoteDataUpload.json", "Robot_A.json", "Robot_B.json", "Robot_C.json",
        "Robot_D.json", "toolFrame_A.json", "toolFrame_B.json", "toolFrame_C.json", "toolFrame_D.json",
        "touchsearch.json", "userFrame_A.json", "userFrame_B.json", "userFrame_C.json", "userFrame_D.json",
        "variant.json", "vision.json", "weavparameter.json", "weldcraft.json", "modbusAddr.json",
        "userDefinedProfile.json", "punch.json", "msg_comm.json", "slaveTypeLib.json",
    };
    QCOMPARE(expected.size(), 47);
    const ConfigCatalogue catalogue;
    QCOMPARE(catalogue.multiRobot().size(), 47);
    QCOMPARE(fileNames(catalogue.multiRobot()), expected);
}

void TestCatalogue::singleRobotOrder()
{
    const QStringList expected = {
        "controller.json", "global.json", "arctrack.json", "conveytrack.json", "externProgram.json",
        "lasercut.json", "lasertrack.json", "polish.json", "positionExt_R1.json", "position_R1.json",
        "R1palletparameter.json", "R1spray.json", "remoteDataUpload.json", "Robot_A.json",
        "toolFrame_A.json", "touchsearch.json", "userFrame_A.json", "variant.json", "vision.json",
        "weavparameter.json", "weldcraft.json", "modbusAddr.json", "userDefinedProfile.json", "punch.json",
        "msg_comm.json", "slaveTypeLib.json",
    };
    QCOMPARE(expected.size(), 26);
    const ConfigCatalogue catalogue;
    QCOMPARE(catalogue.singleRobot().size(), 26);
    QCOMPARE(fileNames(catalogue.singleRobot()), expected);
}

void TestCatalogue::everyEntryDescribesItself_data()
{
    QTest::addColumn<int>("robots");
    QTest::newRow("single") << 1;
    QTest::newRow("multi") << 2;
}

void TestCatalogue::everyEntryDescribesItself()
{
    QFETCH(int, robots);
    const ConfigCatalogue catalogue;
    const auto &entries = robots < 2 ? catalogue.singleRobot() : catalogue.multiRobot();
    QSet<QString> seen;
    for (const auto &e : entries) {
        QVERIFY2(!seen.contains(e.first), qPrintable(e.first));
        seen.insert(e.first);
        QVERIFY2(!e.second.isEmpty(), qPrintable(e.first));
        QCOMPARE(catalogue.describe(e.first, robots), e.second);
        // Per-robot files name their robot, and only with several robots.
        QCOMPARE(e.second.startsWith(QStringLiteral("机器人")), robots >= 2 && robotOfFile(e.first) > 0);
        if (robots >= 2 && robotOfFile(e.first) > 0)
            QVERIFY2(e.second.startsWith(QStringLiteral("机器人%1").arg(robotOfFile(e.first))), qPrintable(e.first));
    }
}

void TestCatalogue::translationAtFillingTime()
{
    const ConfigCatalogue before;
    OneTextTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const ConfigCatalogue after;
    QCoreApplication::removeTranslator(&translator);

    QCOMPARE(before.describe("controller.json", 1), QStringLiteral("控制器参数配置"));
    QCOMPARE(after.describe("controller.json", 1), QStringLiteral("Controller parameters"));
    QCOMPARE(after.describe("controller.json", 2), QStringLiteral("Controller parameters"));
    // Untranslated texts stay as they are.
    QCOMPARE(after.describe("global.json", 2), QStringLiteral("全局参数配置"));
    // The translation is taken once: removing the translator changes nothing.
    QCOMPARE(after.describe("controller.json", 1), QStringLiteral("Controller parameters"));
}

QTEST_GUILESS_MAIN(TestCatalogue)
#include "tst_catalogue.moc"
